// The messages that reading and parsing a command can send: their dictionary keys, and the sentences for the
// message catalogue.
#pragma once

#include <span>

namespace standalone {

/// A dictionary key with the sentence that a person reads; ^1 to ^5 stand for the message's arguments.
struct CatalogueEntry {
  const char* key;
  const char* text;
};

/// Every key below, with its sentence.
std::span<const CatalogueEntry> ParserCatalogue();

namespace keys {

// Mistakes in the text itself.
inline constexpr const char* kFileTooLarge = "Command file larger than ^1 megabytes...";
inline constexpr const char* kCommentNotClosed = "Comment not closed...";
inline constexpr const char* kLiteralNotClosed = "Literal not closed on its line...";
inline constexpr const char* kNulByte = "NUL byte in command...";
inline constexpr const char* kInvalidEncoding = "Invalid UTF-8 in command...";
inline constexpr const char* kControlCharacter = "Control character in command...";
inline constexpr const char* kTypographicCharacter = "Typographic character ^1 in command...";
inline constexpr const char* kCommaBetweenDigits = "Comma between two digits...";
inline constexpr const char* kNumberOutOfRange = "Number ^1 out of range...";
inline constexpr const char* kNoCommandName = "Command name expected but ^1 found...";

// Mistakes against a command's grammar.
inline constexpr const char* kVariableListRequired = "Variable list is required for command ^1...";
inline constexpr const char* kNoSubcommandPlace = "Parameter ^1 does not belong to any subcommand...";
inline constexpr const char* kSubcommandNameMissing = "No subcommand name after the last slash...";
inline constexpr const char* kSubcommandNameInvalid = "Subcommand name ^1 is invalid...";
inline constexpr const char* kSubcommandUnknown = "Subcommand ^1 is not recognized...";
inline constexpr const char* kSubcommandRepeated = "Subcommand ^1 already called...";
inline constexpr const char* kSubcommandRequired = "Subcommand ^1 is required...";
inline constexpr const char* kParameterUnknown = "^1 is not a valid parameter for subcommand ^2...";
inline constexpr const char* kParameterRepeated = "Parameter ^1 already occurred in subcommand ^2...";
inline constexpr const char* kParameterRequired = "Parameter ^1 is required in subcommand ^2...";
inline constexpr const char* kEqualsExpected = "Equals sign expected after parameter ^1, subcommand ^2...";
inline constexpr const char* kValueMissing = "Parameter ^1 of subcommand ^2 needs a value...";
inline constexpr const char* kValueOfWrongType = "Parameter ^1 of subcommand ^2 has incorrect value type...";
inline constexpr const char* kValueNotAllowed = "Keyword ^1 cannot have a value, subcommand ^2...";
inline constexpr const char* kParenthesisNotClosed =
    "Closing parenthesis missing after parameter ^1, subcommand ^2...";

}  // namespace keys
}  // namespace standalone
