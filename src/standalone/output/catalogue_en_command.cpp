// English: mistakes in the values of a command.
#include <array>

#include "standalone/output/catalogue.h"

namespace standalone {

namespace {

constexpr std::array kEntries = {
    // Variable lists.
    CatalogueEntry{"Variable name ^1 in variable list ^2 is not valid...",
                   "A variable was expected in the variable list of ^2, but ^1 was found. Write the name of "
                   "a variable."},
    CatalogueEntry{
        "Variable ^1 for variable list ^2 is not found in the dictionary...",
        "The data have no variable ^1, which the variable list of ^2 names. Check the spelling against the "
        "header of the data file."},
    CatalogueEntry{
        "Variable ^1 for variable list ^2 is not numeric...",
        "Variable ^1 in the variable list of ^2 holds text, but a covariate must be numeric. Name it behind "
        "BY to use it as a factor, or check the data file for cells that are no numbers."},
    CatalogueEntry{
        "Variable ^1 has value ^2 of invalid type or format, variable list ^3...",
        "The value ^2 given for variable ^1 in the variable list of ^3 cannot be read as a value of that "
        "variable. Write a number for a numeric variable, and a text that is not longer than the variable's "
        "width for a string."},
    CatalogueEntry{
        "Invalid syntax in variable list ^2, symbol ^1 ...",
        "^1 does not fit into the variable list of ^2. The list is the dependent variable, then BY and the "
        "factors, then WITH and the covariates."},
    CatalogueEntry{
        "Keyword ^1 should be followed by a valid variable name in ^2 variable list...",
        "No variable follows the keyword ^1 in the variable list of ^2. Name one behind it, or remove the "
        "keyword."},
    CatalogueEntry{
        "Keyword ^1 already occured in ^2 variable list...",
        "The keyword ^1 was given before in the variable list of ^2. Join the two lists behind one ^1."},
    CatalogueEntry{
        "Keyword TO improperly used in ^1...",
        "The keyword TO is misused in ^1. It stands between two variables, the first of which comes earlier "
        "in the data file, and each range has its own first variable."},

    // Variables of subcommands and plans.
    CatalogueEntry{
        "Variable name ^1 for parameter ^2 of subcommand ^3 is not valid...",
        "A variable was expected for ^2 of subcommand ^3, but ^1 was found. Write the name of a variable."},
    CatalogueEntry{"Variable name ^1 for parameter ^2 is not valid...",
                   "A variable was expected for ^2, but ^1 was found. Write the name of a variable."},
    CatalogueEntry{"Variable ^1 for parameter ^2 of subcommand ^3 is not found in the dictionary...",
                   "The data have no variable ^1, which ^2 of subcommand ^3 names. Check the spelling "
                   "against the header "
                   "of the data file."},
    CatalogueEntry{
        "Variable ^1 for subcommand ^2 is not found in the dictionary...",
        "The data have no variable ^1, which subcommand ^2 names. Check the spelling against the header of "
        "the data file."},
    CatalogueEntry{
        "Variable ^1 for parameter ^2 is not found in the dictionary...",
        "The data have no variable ^1, which ^2 names. Check the plan file against the header of the data "
        "file."},
    CatalogueEntry{
        "Variable ^1 for parameter ^2 of subcommand ^3 is not numeric...",
        "Variable ^1, which ^2 of subcommand ^3 names, holds text, but a numeric variable is needed. Name "
        "another one, or check the data file for cells that are no numbers."},
    CatalogueEntry{
        "Variable ^1 for subcommand ^2 is not numeric...",
        "Variable ^1, which subcommand ^2 names, holds text, but a numeric variable is needed. Name another "
        "one, or check the data file for cells that are no numbers."},
    CatalogueEntry{
        "Variable ^1 for parameter ^2 is not numeric...",
        "Variable ^1, which ^2 names, holds text, but a numeric variable is needed. Name another one in the "
        "plan file, or check the data file for cells that are no numbers."},
    CatalogueEntry{"Variable ^1 for parameter ^2 of subcommand ^3 already occured...",
                   "Variable ^1 is named more than once for ^2. Name it once."},
    CatalogueEntry{
        "Variable ^1 for parameter ^2 already occured...",
        "Variable ^1 is named more than once in ^2. Name it once, as the dependent variable, a factor or a "
        "covariate."},
    CatalogueEntry{
        "Variable name ^1 for variable list ^2 cannot be used for parameter ^3...",
        "Variable ^1 stands in the variable list of ^2, so it cannot be used for ^3 as well. Take it out of "
        "one of the two."},
    CatalogueEntry{
        "Variable ^1 for parameter ^2 has invalid value, subcommand ^3...",
        "The value of variable ^1 for ^2 in ^3 is missing or not well formed. Write one value in parentheses "
        "behind the variable, such as ^1(1) or ^1('a')."},
    CatalogueEntry{
        "^3 variable ^1 has value ^2 of invalid type or format, subcommand ^4...",
        "The value ^2 given for variable ^1 in subcommand ^4 cannot be read as a value of that variable. "
        "Write a number for a numeric variable, and a text that is not longer than the variable's width for "
        "a string."},
    CatalogueEntry{
        "^3 variable ^1 has value ^2 of invalid type or format...",
        "The value ^2 given for variable ^1 cannot be read as a value of that variable. Write a number for a "
        "numeric variable, and a text that is not longer than the variable's width for a string."},
    CatalogueEntry{
        "Output variable ^1 already exists...",
        "The data have a variable ^1 already, so it cannot be made. Give the new variable another name."},

    // Values of keywords.
    CatalogueEntry{"Parameter ^1 of subcommand ^2 cannot take value ^3...",
                   "^1 of subcommand ^2 cannot be ^3. It takes ^4."},
    CatalogueEntry{
        "Parameter ^1 of subcommand ^2 does not have a valid integer value...",
        "The value of ^1 in subcommand ^2 must be a whole number: 0 or above for MXITER and CHKSEP, 1 or "
        "above for the others. Correct the value."},
    CatalogueEntry{
        "Parameter ^1 of subcommand ^2 does not have a valid numerical value...",
        "The value of ^1 in subcommand ^2 is out of its range. CILEVEL is from 0 to below 100; DF and "
        "SINGULAR are above 0; LCONVERGE and PCONVERGE are 0 or above. Correct "
        "the value."},
    CatalogueEntry{"Square brackets required for parameter ^1 in subcommand ^2...",
                   "The value of ^1 in subcommand ^2 must stand in square brackets. Put it between them."},
    CatalogueEntry{"Invalid syntax in parameter ^2, symbol ^1, subcommand ^3 ...",
                   "^1 does not fit into the value of ^2 in subcommand ^3. Remove it, or complete what "
                   "stands before it."},
    CatalogueEntry{"Invalid syntax in parameter ^2, symbol ^1 ...",
                   "^1 does not fit into the value of ^2. Remove it, or complete what stands before it."},
    CatalogueEntry{
        "Symbol ^1 in parameter ^2 is not a number, subcommand ^3 ...",
        "A number was expected in ^2 of subcommand ^3, but ^1 was found. Write a number in its place."},
    CatalogueEntry{"No valid number after symbol ^1 in parameter ^2, subcommand ^3 ...",
                   "No number follows ^1 in ^2 of subcommand ^3. Add the numbers that belong to it."},
    CatalogueEntry{
        "Parameter ^1 of subcommand ^2 with value ^3 is ignored...",
        "^1=^3 in subcommand ^2 was ignored: an intercept that is not in the model cannot be hidden, and one "
        "that is the whole model must be shown."},
    CatalogueEntry{"Parameter ^1 of subcommand ^3 cannot be given with parameter ^2...",
                   "^1 and ^2 cannot both be given in subcommand ^3. Remove one of them."},
    CatalogueEntry{"Parameter ^1 is required when parameter ^2 takes value ^4, subcommand ^3...",
                   "^1 is needed in subcommand ^3 because ^2 is ^4. Add ^1."},
    CatalogueEntry{"Parameter ^1 is required when parameter ^2 is used, subcommand ^3...",
                   "^1 is needed in subcommand ^3 because ^2 is given. Add ^1."},
    CatalogueEntry{"Either ^1 or ^2, or both, required for ^3...",
                   "Subcommand ^3 needs ^1, or ^2, or both. Add what is missing."},
    CatalogueEntry{"Either ^1 or ^2, but not both, required for ^3...",
                   "Subcommand ^3 needs ^1 or ^2, one of the two. Add the one that you mean."},
    CatalogueEntry{"Subcommand ^1 is invalid when parameter ^2 has value ^3...",
                   "Subcommand ^1 cannot be given when ^2 is ^3. Remove one of the two."},
    CatalogueEntry{
        "Empty label in subcommand ^1 ...",
        "The label in subcommand ^1 is empty. Write a text between its quotes, or leave LABEL out."},
    CatalogueEntry{
        "The command doesn't have any subcommand...",
        "The command is empty. Name the dependent variable, and the plan file with subcommand PLAN."},

    // Files.
    CatalogueEntry{
        "File ^1 cannot be accessed...",
        "The file ^1 cannot be read. Check that it exists beside the command file or give its full path, and "
        "that you may read it."},
    CatalogueEntry{
        "File ^1 cannot be used for both ^2 and ^3...",
        "The file ^1 is named for both ^2 and ^3, so one would overwrite the other. Give them different "
        "names."},
};

}  // namespace

std::span<const CatalogueEntry> CommandCatalogue() {
  return kEntries;
}

}  // namespace standalone
