// English: messages of a run, about cases, the fit, saved results and the program itself.
#include <array>

#include "standalone/output/catalogue.h"

namespace standalone {

namespace {

constexpr std::array kEntries = {
    // The host's settings.
    CatalogueEntry{
        "No split file ...",
        "The data are split into groups, which this command does not use: it analysed all cases together."},
    CatalogueEntry{
        "No VORN weight ...",
        "A case weight is on, which this command does not use: the weight of the plan took its place."},

    // Cases.
    CatalogueEntry{
        "There are no valid cases for selection ...",
        "The data have no variables, so there is nothing to analyse. Name a data file with --data."},
    CatalogueEntry{"There are no valid cases ...",
                   "No case can be used: the data have no case in which all variables of the command and of "
                   "the plan have a valid value. Check the missing values, or include user-missing "
                   "categories with MISSING CLASSMISSING=INCLUDE."},
    CatalogueEntry{"No case has a positive weight ...",
                   "No case can be used: the weight that the plan names is zero or negative in all valid "
                   "cases. Check the weight variable, and the Weight element of the plan."},
    CatalogueEntry{
        "There are no valid cases in the subpopulation",
        "The subpopulation holds no case with a positive weight. Check subcommand DOMAIN and the weight."},
    CatalogueEntry{"Invalid domain variable value",
                   "No case has the value that subcommand DOMAIN gives. Check the value against the data."},
    CatalogueEntry{
        "Dependant variable has only one value",
        "The dependent variable has only one value among the cases in use, so there is nothing to explain. "
        "Check the data, the missing values and the subpopulation."},
    CatalogueEntry{
        "Highest factor level is used",
        "The reference category does not occur among the cases in use. The highest category took its place."},

    // Model and fit.
    CatalogueEntry{"Unexpected singularities in Hessian matrix are encountered",
                   "The fit stopped at a singular Hessian matrix: some parameters are not determined by the "
                   "data. Remove "
                   "predictors, or merge categories with few cases."},
    CatalogueEntry{"Log-likelihood value cannot be increased",
                   "The fit stopped because no step raises the log-likelihood any more, though the "
                   "convergence criterion "
                   "is not met. Allow more step-halvings with CRITERIA MXSTEP, or check the predictors."},
    CatalogueEntry{
        "Maximum iterations was reached",
        "The fit did not converge within the allowed iterations. Raise CRITERIA MXITER, or check the "
        "predictors."},
    CatalogueEntry{
        "Log-likelihood value is zero",
        "The fit reached a log-likelihood of zero: the predictors determine the dependent variable "
        "completely, so the estimates have no finite value."},
    CatalogueEntry{
        "Quasi-complete separation may exist in data",
        "There may be quasi-complete separation in the data: some estimates grow without limit. Remove the "
        "predictor that separates the categories, or merge its categories."},
    CatalogueEntry{"Tavoreg continues despite warnings",
                   "TAVOREG went on despite the warning above. The results rest on the last iteration; "
                   "whether the model "
                   "fits is uncertain."},
    CatalogueEntry{
        "Variance for all parameters is zero",
        "The design gives every parameter a variance of zero, so nothing can be tested. Check that each "
        "stratum has more than one unit, and take from a covariate that lies far from 0 its mean."},
    CatalogueEntry{
        "Atleast one estimate was negative",
        "The estimated variance of at least one parameter is negative, which the variance of unequal "
        "probability sampling allows. Its standard error and tests are left out."},
    CatalogueEntry{
        "Parameter variance for SRS design is zero",
        "The variance under simple random sampling is zero for every parameter, so there are no design "
        "effects."},
    CatalogueEntry{"Design based covariance matrix is singular",
                   "The design-based covariance matrix of the parameters is singular, mostly because the "
                   "design has fewer degrees of freedom than the model has parameters. Remove predictors, or "
                   "take tests of many parameters at once with care."},
    CatalogueEntry{
        "Number of parameters ^1 exceeds limit ^2",
        "The model has ^1 parameters, more than the limit of ^2. Remove interactions, or merge categories."},
    CatalogueEntry{
        "Number params ^1 too large for available memory",
        "The memory does not suffice for a model with ^1 parameters. Remove interactions, or merge "
        "categories."},

    CatalogueEntry{"Custom test ^1 not done for lack of memory...",
                   "Custom test ^1 was not done: the memory does not suffice for its matrices. Give it fewer "
                   "rows, or use a smaller model."},
    CatalogueEntry{
        "Odds ratios ^1 not estimated for lack of memory...",
        "Odds ratios ^1 were not estimated: the memory does not suffice. Ask for fewer of them, or "
        "use a smaller model."},
    CatalogueEntry{"Test of effect ^1 not done for lack of memory...",
                   "The test of effect ^1 of the model was not done: the memory does not suffice for its "
                   "matrices. Remove interactions, or merge categories."},

    CatalogueEntry{
        "The joint inclusion probabilities cannot be used ...",
        "The analysis needs joint inclusion probabilities, but their file cannot be used. Correct what the "
        "warning before this message names."},
    CatalogueEntry{
        "The analysis ended with status ^1: ^2",
        "The analysis ended with status ^1: ^2 Please report the command and the data that lead here."},

    // Saved results.
    CatalogueEntry{"Predictions could not be written into the data...",
                   "The predictions could not be written into the data: a variable for them could not be "
                   "made, or the data could not be "
                   "read again. The tables are complete."},
    CatalogueEntry{
        "Model file could not be saved ^1...",
        "The model was not saved: ^1. The tables are complete. Check the name that OUTFILE gives."},
    CatalogueEntry{"Model can not be exported, status ^1...",
                   "The model was not saved: it does not agree with the variables of the data (status ^1). "
                   "The tables are "
                   "complete; please report the command and the data that lead here."},
    CatalogueEntry{
        "Predicted probabilities exceeds limit ^1",
        "The dependent variable has more categories than SAVE PREDPROB allows. Probabilities of the first ^1 "
        "were saved; give a larger count to save all."},
    CatalogueEntry{"Predicted Values for Population", "Predicted Values for Population"},
    CatalogueEntry{"Predicted Values for Subpopulation:", "Predicted Values for Subpopulation:"},
    CatalogueEntry{"Predicted Values for", "Predicted Values for"},

    // The program.
    CatalogueEntry{"Command ^1 is not recognized...",
                   "There is no command ^1. This program runs the command TAVOREG."},
    CatalogueEntry{"Did you mean ^1?", "Did you mean ^1?"},
    CatalogueEntry{"Run was interrupted...",
                   "The run was interrupted, so no output was written. Run it again."},
    CatalogueEntry{"Messages of the same kind were left out...",
                   "More messages of a kind that is shown above were left out."},
    CatalogueEntry{
        "Not enough memory...",
        "The memory does not suffice for this command. Try a smaller model, or a machine with more memory."},
    CatalogueEntry{"Fault of the program ^1...",
                   "The program met a fault of its own (^1). The results of this command are not complete; "
                   "please report "
                   "the command and the data that lead here."},
};

}  // namespace

std::span<const CatalogueEntry> RunCatalogue() {
  return kEntries;
}

}  // namespace standalone
