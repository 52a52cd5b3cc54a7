#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "command_run.h"

namespace command_parser_test {

namespace {

using tavo::InclProbType;
using tavo::PlanStageSpec;
using tavo::StageEstimator;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kNoInclusionData =
    "Stage ^1 of the plan is sampled without replacement but gives neither population sizes nor inclusion "
    "probabilities...";

std::string Size(const std::string& child) {
  return "<PopulationSize>" + child + "</PopulationSize>";
}
std::string Prob(const std::string& child) {
  return "<IncProb>" + child + "</IncProb>";
}
std::string Variable(const std::string& name) {
  return "<Variable name='" + name + "'/>";
}
std::string Value(const std::string& value) {
  return "<SingleValue value='" + value + "'/>";
}

struct Row {
  std::vector<std::string> categories;
  std::string value;
};

std::string Matrix(const std::vector<std::string>& variables, const std::vector<Row>& rows) {
  std::string text = "<Matrix numberOfValues='" + std::to_string(rows.size()) + "'><MatrixVarList>";
  for (const std::string& name : variables)
    text += Variable(name);
  text += "</MatrixVarList>";
  for (const Row& row : rows) {
    text += "<MatrixValue sizeValue='" + row.value + "'>";
    for (const std::string& category : row.categories)
      text += "<Category value='" + category + "'/>";
    text += "</MatrixValue>";
  }
  return text + "</Matrix>";
}

/// The only stage of a plan that samples without replacement with equal probabilities.
const PlanStageSpec& EqualWorStage(CommandRun& run, const std::string& inside,
                                   const std::vector<std::string>& strata = {"st", "ts"}) {
  run.WritePlan(Plan(Stage(1, "equal_wor", strata, {"psu"}, inside)));
  EXPECT_TRUE(run.Parse("TAVOREG y")) << testing::PrintToString(run.Keys());
  return run.Specs().Stages().at(0);
}

host::OBS Number(double value) {
  host::OBS cell;
  cell.number = value;
  return cell;
}

host::OBS Text(const char (&text)[9]) {
  host::OBS cell;
  std::copy_n(text, 8, cell.text);
  return cell;
}

TEST(PlanChecks, AStageIsResolvedToDictionaryIndices) {
  CommandRun run;
  run.WritePlan(Plan(
      Stage(1, "equal_wor", {"st", "ts"}, {"psu"}, Size(Variable("n"))) + Stage(2, "wr", {"st2"}, {"psu2"}),
      "W", "wr"));
  ASSERT_TRUE(run.Parse("TAVOREG y"));
  EXPECT_EQ(run.Specs().WeightVariable(), run.IndexOf("w"));
  EXPECT_FALSE(run.Specs().IsSRSWithoutReplacement());
  ASSERT_EQ(run.Specs().Stages().size(), 2U);
  const PlanStageSpec& first = run.Specs().Stages()[0];
  EXPECT_EQ(first.label, "L1");
  EXPECT_EQ(first.stage.stageNumber, 1);
  EXPECT_EQ(first.stage.estimator, StageEstimator::kEqualWor);
  EXPECT_THAT(first.stage.strata, ElementsAre(run.IndexOf("st"), run.IndexOf("ts")));
  EXPECT_THAT(first.stage.clusters, ElementsAre(run.IndexOf("psu")));
  EXPECT_EQ(first.stage.InclusionType(), InclProbType::kPopSizeVariable);
  EXPECT_EQ(first.stage.PopulationSizeVariable(), run.IndexOf("n"));
  const PlanStageSpec& second = run.Specs().Stages()[1];
  EXPECT_EQ(second.stage.estimator, StageEstimator::kWithReplacement);
  EXPECT_EQ(second.stage.stageNumber, 2);
  EXPECT_EQ(second.stage.InclusionType(), InclProbType::kNone);
}

TEST(PlanChecks, SizesAndProbabilitiesComeAsValuesOrVariables) {
  CommandRun sizes;
  const tavo::DesignStage& size = EqualWorStage(sizes, Size(Value("120"))).stage;
  EXPECT_EQ(size.InclusionType(), InclProbType::kPopSizeValue);
  EXPECT_EQ(size.PopulationSize(), 120);
  CommandRun values;
  const tavo::DesignStage& value = EqualWorStage(values, Prob(Value("1"))).stage;
  EXPECT_EQ(value.InclusionType(), InclProbType::kInclProbValue);
  EXPECT_EQ(value.InclusionProbability(), 1);
  CommandRun variables;
  const tavo::DesignStage& variable = EqualWorStage(variables, Prob(Variable("p"))).stage;
  EXPECT_EQ(variable.InclusionType(), InclProbType::kInclProbVariable);
  EXPECT_EQ(variable.InclusionProbabilityVariable(), variables.IndexOf("p"));
}

TEST(PlanChecks, AMatrixIsReadByTheFormatsOfItsVariables) {
  CommandRun run;
  const PlanStageSpec& spec =
      EqualWorStage(run, Size(Matrix({"st", "ts"}, {{{"1", "ab"}, "10"}, {{"2.0", "abc"}, "20"}})));
  EXPECT_EQ(spec.stage.InclusionType(), InclProbType::kPopSizeMatrix);
  ASSERT_NE(spec.matrix, nullptr);
  EXPECT_THAT(spec.matrix->variables, ElementsAre(run.IndexOf("st"), run.IndexOf("ts")));
  const host::OBS first[] = {Number(1), Text("ab      ")};
  const host::OBS second[] = {Number(2), Text("abc     ")};
  ASSERT_NE(spec.matrix->values->Contains(first), nullptr);
  ASSERT_NE(spec.matrix->values->Contains(second), nullptr);
  EXPECT_EQ(spec.matrix->values->Contains(first)->number, 10);
  EXPECT_EQ(spec.matrix->values->Contains(second)->number, 20);
}

TEST(PlanChecks, OfTwoEqualKeyRowsTheLaterValueStands) {
  CommandRun run;
  const PlanStageSpec& spec = EqualWorStage(run, Prob(Matrix({"st"}, {{{"1"}, "0.25"}, {{"1.0"}, "0.5"}})));
  EXPECT_EQ(spec.stage.InclusionType(), InclProbType::kInclProbMatrix);
  const host::OBS key = Number(1);
  EXPECT_EQ(spec.matrix->values->Size(), 1U);
  EXPECT_EQ(spec.matrix->values->Contains(&key)->number, 0.5);
}

TEST(PlanChecks, ABadMatrixValueIsNamedWithRowAndColumn) {
  CommandRun run;
  run.WritePlan(Plan(Stage(1, "equal_wor", {"st", "ts"}, {"psu"},
                           Size(Matrix({"ts", "st"}, {{{"a", "1"}, "5"}, {{"b", "one"}, "6"}})))));
  EXPECT_FALSE(run.Parse("TAVOREG y"));
  ASSERT_EQ(run.Messages().size(), 1U);
  EXPECT_THAT(run.Messages()[0].text,
              testing::HasSubstr("Row 2 of a matrix in the plan gives one for variable st"));
  EXPECT_THAT(run.Messages()[0].text, testing::HasSubstr("column 2"));
}

TEST(PlanChecks, AMatrixWithoutVariablesIsRefused) {
  CommandRun run;
  run.WritePlan(Plan(Stage(1, "equal_wor", {"st"}, {"psu"}, Size(Matrix({}, {})))));
  EXPECT_FALSE(run.Parse("TAVOREG y"));
  EXPECT_THAT(run.Keys(), ElementsAre("Matrix variable is invalid..."));
}

TEST(PlanChecks, TheDefaultJointProbFileKeepsAllPointsButTheLast) {
  CommandRun run;
  run.WriteFile("my.survey.xml", Plan(Stage(1, "unequal_wor", {"st"}, {"psu"})));
  run.WriteFile("my.survey.vdt", "x");
  EXPECT_TRUE(run.Parse("TAVOREG y /PLAN FILE='my.survey.xml'"));
  EXPECT_EQ(run.Specs().JointProbFile().DocumentationString(), "my.survey.vdt");
}

TEST(PlanChecks, TheDefaultJointProbFileMayBeACsvFileWhenThereIsNoOther) {
  CommandRun run;
  run.WritePlan(Plan(Stage(1, "unequal_wor", {"st"}, {"psu"})));
  run.WriteFile("plan.csv", "x");
  EXPECT_TRUE(run.Parse("TAVOREG y"));
  EXPECT_EQ(run.Specs().JointProbFile().DocumentationString(), "plan.csv");

  CommandRun both;
  both.WritePlan(Plan(Stage(1, "unequal_wor", {"st"}, {"psu"})));
  both.WriteFile("plan.csv", "x");
  both.WriteFile("plan.vdt", "x");
  EXPECT_TRUE(both.Parse("TAVOREG y"));
  EXPECT_EQ(both.Specs().JointProbFile().DocumentationString(), "plan.vdt");
}

TEST(PlanChecks, APointInAFolderIsNoEndingOfThePlan) {
  CommandRun run;
  run.WriteFile("plan", Plan(Stage(1, "unequal_wor", {"st"}, {"psu"})));
  EXPECT_FALSE(run.Parse("TAVOREG y /PLAN FILE='./plan'"));
  EXPECT_EQ(run.Specs().JointProbFile().DocumentationString(), "./plan.vdt");
}

TEST(PlanChecks, WithJointProbGivenTheDefaultIsNotTried) {
  CommandRun run;
  run.WritePlan(Plan(Stage(1, "unequal_wor", {"st"}, {"psu"})));
  run.WriteFile("joint.vdt", "x");
  EXPECT_TRUE(run.Parse("TAVOREG y /JOINTPROB FILE='joint.vdt'"));
  EXPECT_EQ(run.Specs().JointProbFile().DocumentationString(), "joint.vdt");
}

TEST(PlanChecks, AWeightThatIsTheDependentVariableIsAnErrorAboutAnalysisWeight) {
  CommandRun run;
  EXPECT_FALSE(run.Parse("TAVOREG w"));
  EXPECT_THAT(run.Keys(),
              ElementsAre("Plan variable name ^1 for parameter ^2 cannot be used for variable list ^3..."));
  EXPECT_THAT(run.Messages()[0].text, testing::HasSubstr("ANALYSISWEIGHT"));
}

TEST(PlanChecks, AStrataVariableListedTwiceIsCaughtByTheReader) {
  CommandRun run;
  run.WritePlan(Plan(Stage(1, "wr", {"st", "ST"}, {"psu"})));
  EXPECT_FALSE(run.Parse("TAVOREG y"));
  EXPECT_THAT(run.Keys(), ElementsAre("Variable is repeated more than once..."));
}

TEST(PlanChecks, AStrataVariableUnderDomainIsLegal) {
  CommandRun run;
  EXPECT_TRUE(run.Parse("TAVOREG y /DOMAIN VARIABLE=st(1)"));
  EXPECT_THAT(run.Keys(), IsEmpty());
}

TEST(PlanChecks, ADomainVariableAsPopSizeVariableIsAnError) {
  CommandRun run;
  run.WritePlan(Plan(Stage(1, "equal_wor", {"st"}, {"psu"}, Size(Variable("n")))));
  EXPECT_FALSE(run.Parse("TAVOREG y /DOMAIN VARIABLE=n(1)"));
  EXPECT_THAT(run.Keys(),
              ElementsAre("Plan variable name ^1 cannot be used for parameter ^2 of subcommand ^3..."));
}

TEST(PlanChecks, AnEqualWorStageWithoutSizesAndProbabilitiesHasNoInclusionDataAndIsRefused) {
  CommandRun run;
  run.WritePlan(Plan(Stage(1, "equal_wor", {"st"}, {"psu"})));
  EXPECT_FALSE(run.Parse("TAVOREG y"));
  ASSERT_EQ(run.Specs().Stages().size(), 1U);
  EXPECT_EQ(run.Specs().Stages()[0].stage.InclusionType(), InclProbType::kNone);
  EXPECT_THAT(run.Keys(), ElementsAre(kNoInclusionData));
}

TEST(PlanChecks, UnequalProbabilitiesWithoutClustersAreAnIllegalMethod) {
  CommandRun run;
  run.WritePlan(Plan(Stage(1, "unequal_wor", {"st"}, {})));
  run.WriteFile("plan.vdt", "x");
  EXPECT_FALSE(run.Parse("TAVOREG y"));
  EXPECT_THAT(run.Keys(), ElementsAre("Illegal estimation method for this stage..."));
  EXPECT_THAT(run.Messages()[0].text, testing::HasSubstr("needs cluster variables"));
}

TEST(PlanChecks, AFaultOfThePlanFileIsReportedOnce) {
  CommandRun run;
  run.WriteFile("plan.xml", "<VORNTessel>");
  EXPECT_FALSE(run.Parse("TAVOREG y"));
  EXPECT_THAT(run.Keys(), ElementsAre("Invalid plan file..."));
}

TEST(PlanChecks, AnUnknownPlanVariableSuggestsTheNearestName) {
  CommandRun run;
  run.WritePlan(Plan(Stage(1, "wr", {"st"}, {"psu22"})));
  EXPECT_FALSE(run.Parse("TAVOREG y"));
  ASSERT_EQ(run.Messages().size(), 1U);
  EXPECT_THAT(run.Messages()[0].text, testing::HasSubstr("Did you mean psu2?"));
}

}  // namespace

}  // namespace command_parser_test
