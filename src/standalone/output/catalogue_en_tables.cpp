// English: titles, labels, captions and notes of the tables.
#include <array>

#include "standalone/output/catalogue.h"

namespace standalone {

namespace {

constexpr CatalogueEntry Same(const char* text) {
  return {text, text};
}

constexpr std::array kEntries = {
    CatalogueEntry{"TavoReg", "TAVOREG"},

    // Titles and headings.
    Same("Sample Design Information"),
    Same("Categorical Variable Information"),
    Same("Covariate Information"),
    Same("Iteration History"),
    Same("Pseudo R Squares"),
    Same("Parameter Estimates"),
    Same("Covariances of Parameter Estimates"),
    Same("Correlations of Parameter Estimates"),
    Same("Classification"),
    Same("Tests of Model Effects"),
    Same("Effect Contrast Coefficients"),
    Same("General Estimable Function"),
    Same("Contrast Coefficients"),
    Same("Individual Test Results"),
    Same("Overall Test Results"),
    Same("Odds Ratios"),
    Same("Odds Ratios ^1"),
    Same("Custom Hypothesis Tests"),
    Same("Custom Hypothesis Tests ^1"),
    CatalogueEntry{"Custom Hypothesis Tests ^1 label", "Custom Hypothesis Tests: ^1"},
    CatalogueEntry{"Custom Hypothesis Tests ^1 ^2", "Custom Hypothesis Tests ^1: ^2"},

    // Captions. The argument before each part is a line break.
    CatalogueEntry{"Dependent ^1 = ^2 ^3 Model [%1:, ^1:]4",
                   "Dependent Variable: ^1 (reference category = ^2)^3Model: [%1:, ^1:]4"},
    CatalogueEntry{
        "Subpop ^1 = ^2 ^3Dependent ^4 = ^5 ^6Model [%1:, ^1:]7",
        "Subpopulation: ^1 = ^2^3Dependent Variable: ^4 (reference category = ^5)^6Model: [%1:, ^1:]7"},
    CatalogueEntry{"Redundant params ^1 Dependent^2^3^4 Model [%1:, ^1:]5",
                   "Redundant parameters are not shown; their values are zero in all iterations.^1Dependent "
                   "Variable: ^2 "
                   "(reference category = ^3)^4Model: [%1:, ^1:]5"},
    CatalogueEntry{
        "Redundant params ^1Subpop^2^3^4Dependent^5^6^7Model [%1:, ^1:]8",
        "Redundant parameters are not shown; their values are zero in all iterations.^1Subpopulation: ^2 = "
        "^3^4Dependent Variable: ^5 (reference category = ^6)^7Model: [%1:, ^1:]8"},
    CatalogueEntry{"Subpopulation ^1 = ^2", "Subpopulation: ^1 = ^2"},
    CatalogueEntry{"[:^1:]1", "[:^1:]1"},

    // Dimensions.
    Same("Content"),
    Same("Number"),
    Same("Variables"),
    Same("Statistics"),
    Same("Covariate"),
    Same("Iteration Number"),
    Same("Parameter"),
    Same("Parameter ^1"),
    CatalogueEntry{"^1 row dimension", "^1"},
    CatalogueEntry{"^1 col dimension", "^1"},
    Same("Observed"),
    Same("Predicted"),
    CatalogueEntry{"Values", ""},  // a group that only keeps categories together
    Same("Source"),
    Same("Contrast"),
    Same("Ratio Pairs"),
    Same("Units of Change"),

    // Rows of the design and variable tables.
    Same("Unweighted Cases"),
    Same("Valid"),
    Same("Invalid"),
    Same("Total"),
    Same("N"),
    Same("Population Size"),
    Same("Subpopulation Size"),
    Same("Stage ^1"),
    CatalogueEntry{"Stage ^1 label ^2", "Stage ^1: ^2"},
    Same("Strata"),
    Same("Units"),
    Same("Sampling Design DF"),
    CatalogueEntry{"User specified", "The degrees of freedom are those of subcommand CRITERIA."},
    Same("Weighted Count"),
    Same("Weighted Percent"),
    Same("Mean"),
    Same("Dependent Variable"),
    Same("Reference Category"),

    // Statistics.
    Same("(Intercept)"),
    Same("(Corrected Model)"),
    Same("(Model)"),
    Same("N Step-halving"),
    Same("Pseudo -2 Log Likelihood"),
    Same("Cox and Snell"),
    Same("Nagelkerke"),
    Same("McFadden"),
    Same("B"),
    Same("Std. Error"),
    CatalogueEntry{"^1 Confidence Interval", "^1% Confidence Interval"},
    CatalogueEntry{"^1 Confidence Interval for B", "^1% Confidence Interval for Exp(B)"},
    Same("Lower"),
    Same("Upper"),
    Same("Hypothesis Test"),
    Same("t"),
    Same("degrees of freedom"),
    Same("Significance"),
    Same("Design Effect"),
    Same("Square Root Design Effect"),
    Same("Exp(B)"),
    Same("Overall Percent"),
    Same("Percent Correct"),
    Same("df1"),
    Same("df2"),
    Same("Wald F"),
    Same("Adjusted Wald F"),
    Same("Wald Chi-Square"),
    Same("Adjusted Wald Chi-Square"),
    Same("Sig."),
    Same("Bonferroni Sig."),
    Same("Sequential Bonferroni Sig."),
    Same("Sidak Sig."),
    Same("Sequential Sidak Sig."),
    Same("L^1"),
    Same("Contrast Estimate"),
    Same("Hypothesized Value"),
    Same("Difference (Estimate - Hypothesized)"),
    Same("Odds Ratio"),
    Same("^1 vs. ^2"),

    // Notes on cells.
    CatalogueEntry{"Set to system missing due to overflow",
                   "Left empty because the number is too large to be held."},
    CatalogueEntry{"Parameter is redundant", "The parameter is redundant and stands at zero."},
    CatalogueEntry{"Estimate was negative", "Zero because the estimated variance is negative."},
    CatalogueEntry{"Variance estimate was negative", "Left empty because an estimated variance is negative."},
    CatalogueEntry{"Parameter estimates was redundant", "Left empty because a parameter is redundant."},

    // How the fit ended.
    Same("relative"),
    Same("absolute"),
    CatalogueEntry{"Number of iterations is zero",
                   "No iteration was made because the maximum number of iterations is 0."},
    CatalogueEntry{"Log-likelihood value converges ^1 ^2 ^3 ^4",
                   "The log-likelihood has converged. Its last ^1 change is ^2; the largest last ^3 change "
                   "of a parameter "
                   "estimate is ^4."},
    CatalogueEntry{
        "Parameter estimates converge ^1 ^2 ^3 ^4",
        "The parameter estimates have converged. The last ^1 change of the log-likelihood is ^2; the largest "
        "last ^3 change of a parameter estimate is ^4."},
    CatalogueEntry{"Both converge ^1 ^2 ^3 ^4",
                   "The log-likelihood and the parameter estimates have converged. The last ^1 change of the "
                   "log-likelihood is ^2; the largest last ^3 change of a parameter estimate is ^4."},
    CatalogueEntry{
        "Unexpected singularities in Hessian matrix are encountered ^1 ^2 ^3 ^4",
        "Stopped at a singular Hessian matrix. The last ^1 change of the log-likelihood is ^2; the largest "
        "last ^3 change of a parameter estimate is ^4."},
    CatalogueEntry{"Cannot increase log-likelihood",
                   "Stopped because no step raises the log-likelihood any more."},
    CatalogueEntry{
        "Maximum iterations was reached ^1 ^2 ^3 ^4",
        "Stopped at the maximum number of iterations. The last ^1 change of the log-likelihood is ^2; the "
        "largest last ^3 change of a parameter estimate is ^4."},
    CatalogueEntry{"Log-likelihood value is zero ^1 ^2 ^3 ^4",
                   "Stopped because the log-likelihood is zero. Its last ^1 change is ^2; the largest last "
                   "^3 change of a "
                   "parameter estimate is ^4."},
    CatalogueEntry{
        "Quasi complete separation exists ^1 ^2 ^3 ^4",
        "Stopped at quasi-complete separation. The last ^1 change of the log-likelihood is ^2; the largest "
        "last ^3 change of a parameter estimate is ^4."},
    CatalogueEntry{"No iterations are necessary", "No iterations are necessary for this model."},

    // Notes on tests.
    CatalogueEntry{"Total number of contrasts used ^1", "The adjustment is for ^1 contrasts in all."},
    CatalogueEntry{"Coefficients used across logits", "The coefficients are the same for every equation."},
    CatalogueEntry{"Number of values is not equal to the number of parameters",
                   "Not shown: the number of values is not the number of parameters."},
    CatalogueEntry{"Matrix not constructed due to zero DF",
                   "Not shown: the matrix cannot be built because no degrees of freedom are left for it."},
    CatalogueEntry{"This ^1 matrix is not estimable", "This ^1 matrix is not estimable."},
    CatalogueEntry{"Number of values is not equal to number of parameters for that effect",
                   "Not shown: the number of values of an effect is not the number of its parameters."},
    CatalogueEntry{"Display matrix is transpose of the ^1 matrix",
                   "The matrix shown is the transpose of the ^1 matrix."},
    CatalogueEntry{"Estimable Function for Intercept", "The estimable function of the intercept is tested."},
    CatalogueEntry{"The following contrasts are used [%1%2:, ^1^2:]1",
                   "The rows are not independent. These contrasts are used: [%1%2:, ^1^2:]1"},
    CatalogueEntry{
        "Contrasts used [%1%2(%3=%4):, ^1^2(^3=^4):]1",
        "The rows are not independent. These contrasts are used: [%1%2 (%3 = %4):, ^1^2 (^3 = ^4):]1"},

    // Notes on odds ratios.
    CatalogueEntry{"Factors and covariates [%1=%2:, ^1=^2:]1",
                   "Where they are not compared, factors and covariates are held at [%1 = %2:, ^1 = ^2:]1"},
    CatalogueEntry{"^1 has only one level.No odds ratios computed",
                   "^1 has only one category in use. No odds ratios are computed."},
    CatalogueEntry{"Factor out of range on Control keyword",
                   "A value under CONTROL does not occur in the data. The highest category is used."},

    // Notes of the command.
    Same("Plan File"),
    Same("Joint Probabilities File"),
    Same("Joint Inclusion Probabilities File"),
    Same("Covariances"),
    Same("Correlations"),
    Same("Parameter estimates"),
    Same("Standard errors"),
    Same("Significance levels"),
    Same("Sampling design degrees of freedom"),
    Same("Parameter Covariance Matrix File"),
    Same("Parameter Correlation Matrix File"),
    Same("Model File"),
    Same("Parameter File"),
    Same("Predicted Values"),
    Same("Predicted Probabilities"),
};

}  // namespace

std::span<const CatalogueEntry> TableCatalogue() {
  return kEntries;
}

}  // namespace standalone
