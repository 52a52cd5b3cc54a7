// English: mistakes about effects, custom tests and odds ratios.
#include <array>

#include "standalone/output/catalogue.h"

namespace standalone {

namespace {

constexpr std::array kEntries = {
    // Effects.
    CatalogueEntry{
        "Model effect is opening with ^1, subcommand ^2 ...",
        "An effect must begin with a factor or covariate of the command, but ^1 was found in subcommand ^2. "
        "Name a variable of the BY or WITH list there."},
    CatalogueEntry{"Syntax error in effect ^1, subcommand ^2 ...",
                   "^1 does not fit into the effect in subcommand ^2. Effects join factors and covariates of "
                   "the command "
                   "by * or BY, and nest them in factors in parentheses, as in A*B or A(B)."},
    CatalogueEntry{
        "Covariate ^1 nested in effect, subcommand ^2 ...",
        "An effect in subcommand ^2 is nested in the covariate ^1. Only factors can stand inside the "
        "parentheses."},
    CatalogueEntry{"Repeated factor in effect ^1, subcommand ^2 ...",
                   "The factor ^1 stands twice in one effect of subcommand ^2. Name it once."},
    CatalogueEntry{
        "Unbalanced parentheses in effect, subcommand ^1 ...",
        "The parentheses of an effect in subcommand ^1 do not match. Close each one that is opened."},
    CatalogueEntry{"Duplicate effect in ^1 ...",
                   "An effect stands more than once in subcommand ^1. It was used once."},
    CatalogueEntry{
        "No factors, no covariates, no intercept ...",
        "The model is empty: it has no factor, no covariate and no intercept. Name predictors behind BY or "
        "WITH and in MODEL, or leave the intercept in."},
    CatalogueEntry{
        "Model does not use [%1:, ^1:]1",
        "The model does not use these variables of the command: [%1:, ^1:]1. Cases in which they are missing "
        "are left out all the same."},

    // Custom tests.
    CatalogueEntry{
        "Invalid type of ^2 row ^1, subcommand ^3 ...",
        "A row of ^2 in subcommand ^3 cannot begin with ^1. Begin it with an effect, with the number for the "
        "intercept, or with ALL."},
    CatalogueEntry{
        "Intercept value was expected in ^2 row but ^1 was found, subcommand ^3 ...",
        "The first row of ^2 in subcommand ^3 begins with the number for the intercept, so this row must "
        "begin with a number too, but ^1 was found."},
    CatalogueEntry{
        "Model effect was expected in ^2 row but ^1 was found, subcommand ^3 ...",
        "The first row of ^2 in subcommand ^3 begins with an effect, so this row must begin with an effect "
        "too, but ^1 was found."},
    CatalogueEntry{
        "ALL was expected in ^2 row but ^1 was found, subcommand ^3 ...",
        "The first row of ^2 in subcommand ^3 begins with ALL, so this row must begin with ALL too, but ^1 "
        "was found."},
    CatalogueEntry{
        "Effect ^1 in ^2 not in MODEL, subcommand ^3 ...",
        "The effect ^1 in ^2 of subcommand ^3 is not in the model. Add it to subcommand MODEL, or name an "
        "effect of the model."},
    CatalogueEntry{
        "Duplicate effect ^1 in ^2 row, subcommand ^3 ...",
        "The effect ^1 stands twice in one row of ^2 in subcommand ^3. Name it once, with all its values."},
    CatalogueEntry{"Different number of values in ^1 for the same effect, subcommand ^2 ...",
                   "The rows of ^1 in subcommand ^2 give different numbers of values for the same effect. "
                   "Give one value "
                   "for each of its parameters in every row."},
    CatalogueEntry{
        "Different number of values in ^1, subcommand ^2 ...",
        "The rows of ^1 in subcommand ^2 have different numbers of values. Give as many in every row."},
    CatalogueEntry{
        "Intercept cannot be used in ^1, subcommand ^2 ...",
        "^1 in subcommand ^2 gives a value for the intercept, but the model has none. Remove the number, or "
        "include the intercept."},
    CatalogueEntry{
        "Only intercept can be used in ^1, subcommand ^2 ...",
        "The model holds only the intercept, so each row of ^1 in subcommand ^2 takes one value. Remove the "
        "others."},
    CatalogueEntry{
        "No denominator for numerator ^1 in fraction for ^2, subcommand ^3 ...",
        "The fraction that begins with ^1 in ^2 of subcommand ^3 has no denominator. Write it behind the "
        "slash."},
    CatalogueEntry{
        "Denominator ^1 in fraction for ^2 is not a valid number, subcommand ^3 ...",
        "^1 stands as a denominator in ^2 of subcommand ^3, but is not a number. Write a number above 0."},
    CatalogueEntry{
        "Not positive denominator ^1 in fraction for ^2, subcommand ^3 ...",
        "The denominator ^1 in ^2 of subcommand ^3 must be above 0. Put a minus sign in front of the "
        "numerator instead."},
    CatalogueEntry{"^2 row should contain ^1 value, subcommand ^3 ...",
                   "A row of ^2 in subcommand ^3 takes ^1 value. Separate the rows by semicolons."},
    CatalogueEntry{
        "^1 should be scalar when ^2 is not used, subcommand ^3...",
        "Without ^2, ^1 in subcommand ^3 must be a single number: the value that the intercept is tested "
        "against."},
    CatalogueEntry{"^1 and ^2 different number of rows, subcommand ^3 ...",
                   "^1 and ^2 in subcommand ^3 have different numbers of rows. Give one value of ^2 for each "
                   "row of ^1."},
    CatalogueEntry{
        "For ^1 no of values after ALL must be equal to no of parameters ^2",
        "Custom test ^1 was not done: the number of values behind ALL differs from the number of parameters, "
        "redundant ones included, of all equations. See the list of parameters for their order."},
    CatalogueEntry{
        "For ^1 matrix cannot be constructed because zero DF ^2",
        "Custom test ^1 was not done: its matrix cannot be built because no degrees of freedom are left for "
        "it. Give the rows of the matrix in LMATRIX."},
    CatalogueEntry{
        "For ^1 L matrix is not estimable ^2",
        "Custom test ^1 was not done: its L matrix is not estimable. Each row must be a combination of the "
        "rows of the general estimable function; PRINT GEF shows it."},
    CatalogueEntry{
        "For ^1 number of values must be equal to number of parameters ^2",
        "Custom test ^1 was not done: an effect has another number of values than parameters. Give one value "
        "for each parameter of the effect, redundant ones included."},
    CatalogueEntry{
        "For ^1 K matrix is invalid ^2",
        "Custom test ^1 was not done: its K matrix does not fit. Give one value for each row of the L "
        "matrix."},

    // Odds ratios.
    CatalogueEntry{
        "^1 for ^2 is not a factor variable name, subcommand ^3 ...",
        "^1, named for ^2 in subcommand ^3, is not a factor of the command. Name a variable of the BY list."},
    CatalogueEntry{
        "^1 for ^2 is not a covariate variable name, subcommand ^3 ...",
        "^1, named for ^2 in subcommand ^3, is not a covariate of the command. Name a variable of the WITH "
        "list."},
    CatalogueEntry{
        "^1 specified for ^2 is not a factor or covariate variable name, subcommand ^3 ...",
        "^1, named for ^2 in subcommand ^3, is neither a factor nor a covariate of the command. Name a "
        "variable of the BY or WITH list."},
    CatalogueEntry{"Repeated factor ^1 in parameter ^2, subcommand ^3 ...",
                   "The factor ^1 stands twice in ^2 of subcommand ^3. Name it once."},
    CatalogueEntry{"Repeated covariate ^1 in parameter ^2, subcommand ^3 ...",
                   "The covariate ^1 stands twice in ^2 of subcommand ^3. Name it once."},
    CatalogueEntry{"For OddsRatio ^1 reference category out of range [%1:, ^1:]2",
                   "Odds ratios ^1: the reference given for [%1:, ^1:]2 does not occur in the data. The "
                   "highest category "
                   "is the reference instead."},
    CatalogueEntry{
        "For OddsRatio ^1 factor value out of range on Control [%1:, ^1:]2",
        "Odds ratios ^1: the value given under CONTROL for [%1:, ^1:]2 does not occur in the data. The "
        "highest category is used instead."},
    CatalogueEntry{"For ^1 factor has only one level ^2",
                   "Odds ratios ^1 were not computed: the factor has only one category in use."},
};

}  // namespace

std::span<const CatalogueEntry> ModelCatalogue() {
  return kEntries;
}

}  // namespace standalone
