// English: plan files, designs and joint inclusion probabilities.
#include <array>

#include "standalone/output/catalogue.h"

namespace standalone {

namespace {

constexpr std::array kEntries = {
    // Reading the plan.
    CatalogueEntry{"Global plan stage...", "Plan"},
    CatalogueEntry{"Plan stage ^1...", "Stage ^1 of the plan"},
    CatalogueEntry{"Invalid plan file...",
                   "The plan file cannot be read: ^1. Check that it is the file you meant and that its XML "
                   "is complete."},
    CatalogueEntry{"Variable is not a valid VORN variable...",
                   "The plan names a variable that cannot be the name of one (^1). Write a letter first, "
                   "then letters, digits and the signs . _ @ # $."},
    CatalogueEntry{
        "Variable is repeated more than once...",
        "The plan names a variable more than once (^1). Each variable can serve it in one place only."},
    CatalogueEntry{
        "Illegal estimation method for this stage...",
        "The plan gives a stage an estimation method that is not possible there (^1). Unequal "
        "probabilities without replacement are for the first stage only, and it needs cluster variables."},
    CatalogueEntry{"Population size value is incorrect...",
                   "A population size in the plan is not right (^1). It must be a whole number above 0."},
    CatalogueEntry{
        "Inclusion probability value is incorrect...",
        "An inclusion probability in the plan is not right (^1). It must be above 0 and at most 1."},
    CatalogueEntry{"Cluster variables are required for non-final stages...",
                   "A stage of the plan before the last has no cluster variables (^1). Name the variables "
                   "that tell its units apart."},
    CatalogueEntry{"Matrix variable is invalid...",
                   "A matrix in the plan cannot use this variable (^1). Its variables are strata of this "
                   "stage, or strata and clusters of the stages before."},
    CatalogueEntry{"Matrix category list does not match the matrix variable list...",
                   "A matrix in the plan does not fit together (^1). Give one row for each combination, with "
                   "one category for each variable, and state the number of rows."},
    CatalogueEntry{
        "The plan cannot have more than ^1 stages...",
        "The plan has more than ^1 stages. Join the last stages: the variance rests mostly on the first."},
    CatalogueEntry{"AnalysisDesign is missing in plan file...",
                   "The plan file ^1 has no AnalysisDesign element, which says how to estimate. Prepare the "
                   "plan for analysis."},
    CatalogueEntry{"Sample size values are not positive...",
                   "A sample size in the plan is not right (^1). It must be a whole number above 0."},
    CatalogueEntry{"Sample rate values are not positive...",
                   "A sampling rate in the plan is not right (^1). It must be a number above 0."},
    CatalogueEntry{
        "SampleDesign is missing in plan file...",
        "The plan file ^1 has no SampleDesign element, which says how the sample was drawn. Add the "
        "description of the selection."},
    CatalogueEntry{
        "Illegal selection method at second or third stage...",
        "The plan gives a stage a selection method that is not possible there (^1). Probabilities "
        "proportional to size are for the first stage only; later stages take simple_wor, simple_wr, "
        "simple_systematic or simple_chromy."},
    CatalogueEntry{"Sample size or rate is not specified...",
                   "A stage of the plan gives neither a sample size nor a rate (^1). Add one of them."},
    CatalogueEntry{
        "MOS missing when PPS selection method specified...",
        "A stage of the plan selects with probability proportional to size but gives no measure of "
        "size (^1). Add it."},
    CatalogueEntry{
        "MOS variable or source is not specified...",
        "The measure of size in the plan names neither a variable nor the data as its source (^1). "
        "Write fromData=\"yes\", or fromData=\"no\" and a Variable."},
    CatalogueEntry{"Minimum MOS value is greater than maximum MOS value...",
                   "A smallest size in the plan is above the largest (^1). Exchange or correct them."},
    CatalogueEntry{
        "Minimum or maximum MOS values are not positive...",
        "A smallest or largest size in the plan is not right (^1). It must be a SingleValue that is "
        "not below 0, and a whole number where it bounds a sample size."},
    CatalogueEntry{
        "Cluster variable is missing in the last stage...",
        "The selection method of the first stage draws clusters whose cases are drawn in a further "
        "stage (^1). Name its cluster variables and add the next stage, or choose another method."},
    CatalogueEntry{
        "Variable is repeated more than once in sample design...",
        "The sample design in the plan names a variable more than once (^1). Each variable can serve "
        "it in one place only."},
    CatalogueEntry{
        "The parser cannot get plan file specifications...",
        "The plan selects with replacement in a stage before the last (^1), but what was drawn twice "
        "cannot be drawn from further. Choose another method there."},
    CatalogueEntry{
        "Illegal SRS estimator method...",
        "The attribute SRSestimator in the plan must be wor or wr (^1). Correct it, or leave it out."},
    CatalogueEntry{
        "Unknown element ^1 in ^2 of the plan at ^3, known are ^4...",
        "The plan has an element ^1 in ^2 (^3), which is not known there and was passed over. Known "
        "there: ^4."},
    CatalogueEntry{
        "Unknown attribute ^1 of ^2 in the plan at ^3, known are ^4...",
        "The plan has an attribute ^1 of ^2 (^3), which is not known there and was passed over. Known "
        "there: ^4."},
    CatalogueEntry{
        "Element ^1 stands in ^2 of the plan again at ^3...",
        "The plan has another ^1 in ^2 (^3), where one is read. The first one counts; take out the "
        "others."},
    CatalogueEntry{
        "Attribute ^1 of ^2 is missing in the plan at ^3...",
        "The plan has an element ^2 without the attribute ^1 (^3), which says nothing like this and "
        "was passed over. Add ^1."},
    CatalogueEntry{"^1 is less than the ^2 rows of the matrix in the plan at ^3...",
                   "The plan states ^1 for a matrix that has ^2 rows (^3); the rows beyond that number were "
                   "not read. State the number of rows."},

    // The plan against the data and the command.
    CatalogueEntry{
        "The plan doesn't name a weight variable...",
        "The plan names no weight variable, without which the sample cannot stand for its population. Add a "
        "Weight element to AnalysisDesign."},
    CatalogueEntry{
        "Stage ^1 of the plan has no estimation method...",
        "Stage ^1 of the plan has no estimation method that is known. Write estimationMethod=\"equal_wor\", "
        "\"unequal_wor\" or \"wr\"."},
    CatalogueEntry{
        "Stage ^1 of the plan is sampled without replacement but gives neither population sizes nor "
        "inclusion "
        "probabilities...",
        "Stage ^1 of the plan is sampled without replacement but gives neither population sizes nor "
        "inclusion "
        "probabilities, so its variance cannot be found. Add PopulationSize or IncProb, or set the method "
        "to wr."},
    CatalogueEntry{"The plan doesn't have any stage...",
                   "The plan has no stage. Add an AnalysisStage element for each stage of the sample."},
    CatalogueEntry{
        "Parser cannot get information for the current stage...",
        "A stage of the plan is incomplete. Number the stages 1, 2 and so on, and give each its method."},
    CatalogueEntry{"Stage Number Sequence [%1:, ^1:]1 is invalid",
                   "The stages of the plan are numbered [%1:, ^1:]1. Number them 1, 2, 3 in this order."},
    CatalogueEntry{
        "Default joint probability file ^1 cannot be accessed...",
        "The plan samples with unequal probabilities without replacement, which needs joint inclusion "
        "probabilities, but neither the file ^1 nor one with the ending .csv in its place can be read. Name "
        "the file with JOINTPROB, or put it beside the plan."},
    CatalogueEntry{"Plan variable name ^1 for parameter ^2 cannot be used for variable list ^3...",
                   "Variable ^1 serves the plan (^2), so it cannot stand in the variable list of ^3 as well. "
                   "Take it out "
                   "of the list."},
    CatalogueEntry{
        "Plan variable name ^1 cannot be used for parameter ^2 of subcommand ^3...",
        "Variable ^1 serves the plan, so it cannot be used for ^2 of subcommand ^3 as well. Name another "
        "variable there."},
    CatalogueEntry{
        "MATRIX variable ^1 in column ^4 has value ^2 of invalid type or format in row ^3...",
        "Row ^3 of a matrix in the plan gives ^2 for variable ^1 in column ^4, which cannot be read as a "
        "value of that variable. Correct it in the plan file."},

    // The design against the cases.
    CatalogueEntry{
        "Invalid value in pop. size variable ^1 ...",
        "Case ^2 has a population size in variable ^1 that is not a whole number above 0. Correct the data."},
    CatalogueEntry{"Invalid value in incl. prob. variable ^1 ...",
                   "Case ^2 has an inclusion probability in variable ^1 that is not above 0 and at most 1. "
                   "Correct the data."},
    CatalogueEntry{"No population size ^1 [%1 = %2:, ^1 = ^2:]2 ...",
                   "The matrix of population sizes of stage ^1 has no row for [%1 = %2:, ^1 = ^2:]2. Add it "
                   "to the plan."},
    CatalogueEntry{
        "No inclusion prob ^1 [%1 = %2:, ^1 = ^2:]2 ...",
        "The matrix of inclusion probabilities of stage ^1 has no row for [%1 = %2:, ^1 = ^2:]2. Add it to "
        "the plan."},
    CatalogueEntry{
        "Unequal incl prob in stage ^1 stratum ...",
        "The inclusion probability is not the same for all units of a stratum in stage ^1. One of them was "
        "used; check the data."},
    CatalogueEntry{"Unequal incl prob in stage ^1 ...",
                   "The inclusion probability is not the same for all units of stage ^1. One of them was "
                   "used; check the "
                   "data."},
    CatalogueEntry{
        "Unequal pop size in stage ^1 stratum ...",
        "The population size is not the same for all units of a stratum in stage ^1. One of them was used; "
        "check the data."},
    CatalogueEntry{
        "Unequal pop size in stage ^1 ...",
        "The population size is not the same for all units of stage ^1. One of them was used; check the "
        "data."},
    CatalogueEntry{"No incl prob in active in stage ^1 stratum ...",
                   "A unit of a stratum in stage ^1 has no inclusion probability or population size. Fill "
                   "the gap in the "
                   "data."},
    CatalogueEntry{
        "No incl prob in active in stage ^1 ...",
        "A unit of stage ^1 has no inclusion probability or population size. Fill the gap in the data."},
    CatalogueEntry{
        "Pop size too big in stage ^1 stratum ...",
        "A stratum of stage ^1 has more units in the sample than its population size says. Correct the "
        "population size."},
    CatalogueEntry{
        "Pop size too big in stage ^1 ...",
        "Stage ^1 has more units in the sample than its population size says. Correct the population size."},

    // Joint inclusion probabilities.
    CatalogueEntry{
        "Some strata or cluster variable not in joint prob file ...",
        "The file of joint inclusion probabilities does not begin with the stratification and cluster "
        "variables of the first stage. Put them first, in the order of the plan, then Unit_No_."},
    CatalogueEntry{
        "Some strata or cluster variable have wrong types in joint prob file ...",
        "A stratification or cluster variable has another type in the file of joint inclusion probabilities "
        "than in the data, or what follows them is no number. Make the variable a number, or a string of the "
        "same width, in both; Unit_No_ and the probabilities must be numbers."},
    CatalogueEntry{
        "No missing joint incl prob ...",
        "A stratification or cluster variable, or Unit_No_, is missing in the file of joint inclusion "
        "probabilities. Fill the gap."},
    CatalogueEntry{"Duplicate cluster or Unit_No_ ...",
                   "A cluster or a unit number stands twice in one stratum of the file of joint inclusion "
                   "probabilities. "
                   "Give each unit one row."},
    CatalogueEntry{
        "Invalid Unit_No_ value ...",
        "The units of a stratum in the file of joint inclusion probabilities are not numbered 1, 2, 3 and so "
        "on. Correct Unit_No_."},
    CatalogueEntry{
        "Unit_No_ value too big ...",
        "A unit number in the file of joint inclusion probabilities is above the number of its probability "
        "columns. Add the columns, or correct Unit_No_."},
    CatalogueEntry{"Some levels not in joint prob file ...",
                   "The data have a stratum or cluster that the file of joint inclusion probabilities does "
                   "not list. Add "
                   "its rows."},
    CatalogueEntry{
        "Some cluster levels not in sample file ...",
        "The file of joint inclusion probabilities lists units that the data do not have. They were left out "
        "of the variance."},
    CatalogueEntry{
        "Invalid joint incl probability ...",
        "A joint inclusion probability is missing, or is not above 0 and at most 1. Correct the file."},
    CatalogueEntry{
        "Joint incl prob out of range ...",
        "A joint inclusion probability of two units is above the inclusion probability of one of them. "
        "Correct the file."},
};

}  // namespace

std::span<const CatalogueEntry> DesignCatalogue() {
  return kEntries;
}

}  // namespace standalone
