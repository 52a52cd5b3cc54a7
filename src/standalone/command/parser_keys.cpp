#include "standalone/command/parser_keys.h"

#include <array>

namespace standalone {

namespace {

constexpr std::array kCatalogue = {
    CatalogueEntry{
        keys::kFileTooLarge,
        "The command file is larger than ^1 megabytes, which no file of commands needs. Check that it is "
        "the file you meant."},
    CatalogueEntry{keys::kCommentNotClosed,
                   "The comment that starts here is never closed. End it with an asterisk and a slash."},
    CatalogueEntry{
        keys::kLiteralNotClosed,
        "The text in quotes that starts here has no closing quote on its line. Add the quote; a quote "
        "inside the text is written twice."},
    CatalogueEntry{keys::kNulByte,
                   "The command holds a NUL byte. Check that the file is a text file, encoded in UTF-8."},
    CatalogueEntry{
        keys::kInvalidEncoding,
        "The command holds a byte that is not valid UTF-8. Save the command file with the encoding UTF-8."},
    CatalogueEntry{
        keys::kControlCharacter,
        "The command holds a control character that does not show. Delete it, or type the line anew."},
    CatalogueEntry{
        keys::kTypographicCharacter,
        "^1 is a typographic character that the command language does not know. Use the plain quote, the "
        "plain minus sign or the plain blank instead."},
    CatalogueEntry{
        keys::kCommaBetweenDigits,
        "A comma between two digits can be read in two ways. Write a period for a decimal point, or put a "
        "blank behind the comma between two numbers."},
    CatalogueEntry{
        keys::kNumberOutOfRange,
        "The number ^1 is too large or too close to zero to be held. Use a number of ordinary size."},
    CatalogueEntry{
        keys::kNoCommandName,
        "A command must begin with its name, but ^1 was found. If it belongs to the command above, remove "
        "the blank line or the period that ended that command. A comment stands between /* and */."},

    CatalogueEntry{keys::kVariableListRequired,
                   "The variables of ^1 are missing. Name them right behind ^1, before the first slash."},
    CatalogueEntry{
        keys::kNoSubcommandPlace,
        "^1 does not belong to any subcommand. Put a slash and the subcommand's name in front of it."},
    CatalogueEntry{keys::kSubcommandNameMissing,
                   "Nothing follows the last slash. Name a subcommand behind it, or remove it."},
    CatalogueEntry{
        keys::kSubcommandNameInvalid,
        "A subcommand's name was expected behind the slash, but ^1 was found. Name a subcommand, or remove "
        "the slash."},
    CatalogueEntry{
        keys::kSubcommandUnknown,
        "There is no subcommand ^1. Check its spelling; a file name that holds a slash must stand in "
        "quotes."},
    CatalogueEntry{
        keys::kSubcommandRepeated,
        "Subcommand ^1 was given before, and may be given only once. Join the two, or remove one."},
    CatalogueEntry{keys::kSubcommandRequired, "Subcommand ^1 is missing. Add it to the command."},
    CatalogueEntry{
        keys::kParameterUnknown,
        "^1 is not a keyword of subcommand ^2. Check its spelling, and that each keyword has one value."},
    CatalogueEntry{keys::kParameterRepeated,
                   "Keyword ^1 was given before in subcommand ^2, and may be given only once. Remove one."},
    CatalogueEntry{keys::kParameterRequired,
                   "Subcommand ^2 needs the keyword ^1. Write ^1, an equals sign and the value."},
    CatalogueEntry{
        keys::kEqualsExpected,
        "The value of ^1 in subcommand ^2 must stand behind an equals sign. Write ^1, an equals sign and "
        "the value."},
    CatalogueEntry{
        keys::kValueMissing,
        "Keyword ^1 of subcommand ^2 has no value. Write its value behind it, or remove the keyword."},
    CatalogueEntry{
        keys::kValueOfWrongType,
        "The value of ^1 in subcommand ^2 is not of the kind that ^1 takes. Write one value of that kind: "
        "numbers, words and names without quotes, texts in quotes."},
    CatalogueEntry{keys::kValueNotAllowed,
                   "Keyword ^1 of subcommand ^2 takes no value. Write the keyword alone."},
    CatalogueEntry{
        keys::kParenthesisNotClosed,
        "The parenthesis behind ^1 in subcommand ^2 is never closed. Add the closing parenthesis."},
};

}  // namespace

std::span<const CatalogueEntry> ParserCatalogue() {
  return kCatalogue;
}

}  // namespace standalone
