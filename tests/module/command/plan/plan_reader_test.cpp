#include "plan_fixture.h"

namespace tavo {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;

std::vector<std::string> Texts(const std::vector<host::VornVarName>& names) {
  std::vector<std::string> texts;
  for (const host::VornVarName& name : names)
    texts.push_back(name.Text());
  return texts;
}

TEST_F(PlanReading, FillsEveryFieldOfAThreeStagePlan) {
  const std::string first =
      "<AnalysisStage label=\"Schools\" stageNumber=\"1\" estimationMethod=\"equal_wor\">" +
      Strata(Variable("Region") + Variable("size")) + Clusters(Variable("School")) + "<PopulationSize>" +
      Variable("NSchools") + "</PopulationSize></AnalysisStage>";
  const std::string second = Stage(
      "equal_wor", Clusters(Variable("class")) + "<IncProb><SingleValue value=\"0.25\"/></IncProb>", "2");
  const std::string third = Stage("wr", "", "3");
  ASSERT_EQ(ReadDesign(first + second + third + "<Weight>" + Variable("FinalWt") + "</Weight>",
                       "SRSestimator=\"wr\""),
            PlanStatus::kOK);
  EXPECT_EQ(fDetail, "");
  EXPECT_EQ(fPlan.mode, PlanMode::ANALYSIS_MODE);
  EXPECT_EQ(fPlan.file, fFolder.Path("plan.xml"));
  EXPECT_EQ(fPlan.weight.Text(), "FinalWt");
  EXPECT_EQ(fPlan.srsEstimator, PlanSRSEstimator::WR);
  EXPECT_THAT(fPlan.planVariables, ElementsAre("CLASS", "FINALWT", "NSCHOOLS", "REGION", "SCHOOL", "SIZE"));
  EXPECT_THAT(fPlan.designVariables, ElementsAre("CLASS", "REGION", "SCHOOL", "SIZE"));
  ASSERT_EQ(fPlan.stages.size(), 3U);
  const OrvPlanStage& one = fPlan.stages[0];
  EXPECT_EQ(one.label, "Schools");
  EXPECT_EQ(one.stageNumber, 1);
  EXPECT_EQ(one.method, PlanMethod::EQUAL_WOR);
  EXPECT_THAT(Texts(one.strata), ElementsAre("Region", "size"));
  EXPECT_THAT(Texts(one.clusters), ElementsAre("School"));
  EXPECT_THAT(one.stageVariables, ElementsAre("SCHOOL"));
  EXPECT_EQ(one.valueKind, PlanValueKind::POPSIZE);
  EXPECT_EQ(one.valueWay, PlanValueWay::BY_VARNAME);
  EXPECT_EQ(one.valueVariable.Text(), "NSchools");
  const OrvPlanStage& two = fPlan.stages[1];
  EXPECT_EQ(two.stageNumber, 2);
  EXPECT_EQ(two.valueKind, PlanValueKind::INCLPROB);
  EXPECT_EQ(two.valueWay, PlanValueWay::BY_VALUE);
  EXPECT_EQ(two.value, 0.25);
  EXPECT_EQ(fPlan.stages[2].method, PlanMethod::WR);
  EXPECT_EQ(fPlan.stages[2].valueWay, PlanValueWay::NOT_GIVEN);
}

TEST_F(PlanReading, FileWhoseRootHasAnyOtherNameStillReads) {
  EXPECT_EQ(ReadText("<plan>" + SmallAnalysis() + "</plan>"), PlanStatus::kOK);
  EXPECT_EQ(fPlan.weight.Text(), "w");
}

TEST_F(PlanReading, FileWithoutHeaderStillReadsAndOneWithAnyHeaderToo) {
  EXPECT_EQ(ReadText(Plan(SmallAnalysis())), PlanStatus::kOK);
  EXPECT_EQ(
      ReadText(Plan("<Header copyright=\"c\" description=\"d\"><Application name=\"a\" version=\"1.0\"/>"
                    "<Whatever/></Header>" +
                    SmallAnalysis())),
      PlanStatus::kOK);
}

TEST_F(PlanReading, VersionNeedsNoHandling) {
  EXPECT_EQ(ReadText("<VORNTessel version=\"99\">" + SmallAnalysis() + "</VORNTessel>"), PlanStatus::kOK);
  EXPECT_EQ(ReadText("<VORNTessel>" + SmallAnalysis() + "</VORNTessel>"), PlanStatus::kOK);
}

TEST_F(PlanReading, SchemaLocationIsNotFollowed) {
  EXPECT_EQ(ReadText("<VORNTessel xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" "
                     "xsi:noNamespaceSchemaLocation=\"vorntessel.xsd\">" +
                     SmallAnalysis() + "</VORNTessel>"),
            PlanStatus::kOK);
}

TEST_F(PlanReading, AnalysisDesignWithoutStageGivesNoStatusHere) {
  EXPECT_EQ(ReadDesign(""), PlanStatus::kOK);
  EXPECT_TRUE(fPlan.stages.empty());
  EXPECT_TRUE(fPlan.weight.Empty());
}

TEST_F(PlanReading, MissingAnalysisDesignIsNamed) {
  EXPECT_EQ(ReadText(Plan("<SampleDesign/>")), PlanStatus::kNoAnalysisDesign);
  EXPECT_EQ(fDetail, fFolder.Path("plan.xml"));
  EXPECT_EQ(ReadText(Plan("<Nested>" + SmallAnalysis() + "</Nested>")), PlanStatus::kNoAnalysisDesign)
      << "the section is a child of the root";
}

TEST_F(PlanReading, FourAnalysisStagesGiveStatus10AndTheDetailNames3AsTheLimit) {
  std::string stages;
  for (int i = 1; i <= 4; ++i) {
    stages += Stage("wr", Clusters(Variable("c" + std::to_string(i))), std::to_string(i));
  }
  EXPECT_EQ(ReadDesign(stages), PlanStatus::kTooManyStages);
  EXPECT_EQ(fDetail, "3");
}

TEST_F(PlanReading, UnequalWorOnTheSecondStageGives4) {
  EXPECT_EQ(ReadDesign(Stage("wr", Clusters(Variable("psu"))) +
                       Stage("unequal_wor", Clusters(Variable("hh")), "2")),
            PlanStatus::kIllegalEstimation);
  EXPECT_THAT(fDetail, StartsWith("AnalysisStage 2"));
  EXPECT_EQ(ReadDesign(Stage("unequal_wor", Clusters(Variable("psu")))), PlanStatus::kOK);
  EXPECT_EQ(FirstStage().method, PlanMethod::UNEQUAL_WOR);
}

TEST_F(PlanReading, AnyOtherEstimationMethodLeavesItUnset) {
  for (const char* method : {"", "WR", "equal", "pps_wor"}) {
    EXPECT_EQ(ReadDesign(Stage(method, Clusters(Variable("psu")))), PlanStatus::kOK) << method;
    EXPECT_EQ(FirstStage().method, PlanMethod::NO_VALUE) << method;
  }
  EXPECT_EQ(ReadDesign("<AnalysisStage/>"), PlanStatus::kOK);
  EXPECT_EQ(FirstStage().method, PlanMethod::NO_VALUE);
  EXPECT_EQ(FirstStage().stageNumber, 0);
}

TEST_F(PlanReading, EmptySRSEstimatorIsAcceptedAsAbsent) {
  EXPECT_EQ(ReadDesign("", "SRSestimator=\"\""), PlanStatus::kOK);
  EXPECT_EQ(fPlan.srsEstimator, PlanSRSEstimator::WOR);
  EXPECT_EQ(ReadDesign(""), PlanStatus::kOK);
  EXPECT_EQ(fPlan.srsEstimator, PlanSRSEstimator::WOR);
}

TEST_F(PlanReading, SRSEstimatorIsWorOrWrAndAnythingElseStatus24) {
  EXPECT_EQ(ReadDesign("", "SRSestimator=\"wor\""), PlanStatus::kOK);
  EXPECT_EQ(fPlan.srsEstimator, PlanSRSEstimator::WOR);
  EXPECT_EQ(ReadDesign("", "SRSestimator=\"wr\""), PlanStatus::kOK);
  EXPECT_EQ(fPlan.srsEstimator, PlanSRSEstimator::WR);
  EXPECT_EQ(ReadDesign("", "SRSestimator=\"WR\""), PlanStatus::kIllegalSRSEstimator);
  EXPECT_EQ(fDetail, "AnalysisDesign, SRSestimator=\"WR\"");
}

TEST_F(PlanReading, SRSEstimatorIsNotReadAfterAnotherStatus) {
  EXPECT_EQ(ReadDesign("<Weight>" + Variable("1w") + "</Weight>", "SRSestimator=\"x\""),
            PlanStatus::kInvalidName);
}

TEST_F(PlanReading, InclusionProbabilityOfExactly1PassesAnd0And1_5Give6) {
  const auto probability = [](const std::string& text) {
    return "<IncProb><SingleValue value=\"" + text + "\"/></IncProb>";
  };
  for (const auto& [text, value] : {std::pair<const char*, double>{"1", 1.0},
                                    {"1.0", 1.0},
                                    {".5", 0.5},
                                    {" 0.25 ", 0.25},
                                    {"+0.125", 0.125},
                                    {"1e-3", 0.001}}) {
    EXPECT_EQ(ReadValue(probability(text)), PlanStatus::kOK) << text;
    EXPECT_EQ(FirstStage().value, value) << text;
    EXPECT_EQ(FirstStage().valueKind, PlanValueKind::INCLPROB);
    EXPECT_EQ(FirstStage().valueWay, PlanValueWay::BY_VALUE);
  }
  for (const char* text :
       {"0", "1.5", "-0.5", "1.0000000001", "", "nan", "inf", "1e999", "half", "0.5x", "0,5"}) {
    EXPECT_EQ(ReadValue(probability(text)), PlanStatus::kInclusionProbIncorrect) << text;
    EXPECT_EQ(fDetail, "AnalysisStage 1, value \"" + std::string(text) + "\"");
  }
}

TEST_F(PlanReading, PopulationSizeIsAPositiveWholeNumberOrGives5) {
  const auto size = [](const std::string& text) {
    return "<PopulationSize><SingleValue value=\"" + text + "\"/></PopulationSize>";
  };
  for (const auto& [text, value] : {std::pair<const char*, double>{"1", 1.0},
                                    {"100.0", 100.0},
                                    {"1e3", 1000.0},
                                    {"2147483647", 2147483647.0},
                                    {"3000000000", 3000000000.0}}) {
    EXPECT_EQ(ReadValue(size(text)), PlanStatus::kOK) << text;
    EXPECT_EQ(FirstStage().value, value) << text;
    EXPECT_EQ(FirstStage().valueKind, PlanValueKind::POPSIZE);
  }
  for (const char* text : {"0", "-3", "10.5", "many", "", "1e300", "12 13"}) {
    EXPECT_EQ(ReadValue(size(text)), PlanStatus::kPopulationSizeIncorrect) << text;
    EXPECT_THAT(fDetail, HasSubstr("\"" + std::string(text) + "\""));
  }
}

TEST_F(PlanReading, StageNumberOutOfOrderIsNoReadersError) {
  EXPECT_EQ(ReadDesign(Stage("wr", Clusters(Variable("a")), "2") + Stage("wr", Clusters(Variable("b")), "7") +
                       Stage("wr", "", "x")),
            PlanStatus::kOK);
  EXPECT_EQ(fPlan.stages[0].stageNumber, 2);
  EXPECT_EQ(fPlan.stages[1].stageNumber, 7);
  EXPECT_EQ(fPlan.stages[2].stageNumber, 0);
}

TEST_F(PlanReading, PopulationSizeGoesBeforeInclusionProbability) {
  EXPECT_EQ(ReadValue("<IncProb><SingleValue value=\"7\"/></IncProb>"
                      "<PopulationSize><SingleValue value=\"40\"/></PopulationSize>"),
            PlanStatus::kOK);
  EXPECT_EQ(FirstStage().valueKind, PlanValueKind::POPSIZE);
  EXPECT_EQ(FirstStage().value, 40);
}

TEST_F(PlanReading, WithReplacementAndUnequalProbabilitiesReadNoSizes) {
  for (const char* method : {"wr", "unequal_wor", "other"}) {
    EXPECT_EQ(ReadDesign(Stage(method, Clusters(Variable("psu")) +
                                           "<PopulationSize><SingleValue value=\"-1\"/></PopulationSize>")),
              PlanStatus::kOK)
        << method;
    EXPECT_EQ(FirstStage().valueKind, PlanValueKind::kNone);
  }
}

TEST_F(PlanReading, OfSeveralFormsOfAValueTheLaterOneWins) {
  EXPECT_EQ(ReadValue("<PopulationSize>" + Variable("n") + "<SingleValue value=\"3\"/></PopulationSize>"),
            PlanStatus::kOK);
  EXPECT_EQ(FirstStage().valueWay, PlanValueWay::BY_VARNAME);
  EXPECT_EQ(FirstStage().value, 3);
  EXPECT_EQ(ReadValue("<PopulationSize><Matrix numberOfValues=\"0\"/>" + Variable("n") + "</PopulationSize>"),
            PlanStatus::kOK);
  EXPECT_EQ(FirstStage().valueWay, PlanValueWay::BY_VARCATLIST);
}

TEST_F(PlanReading, InvalidNamesGive2) {
  for (const char* name : {"", "1a", "a b", "a+b", "With", "end."}) {
    EXPECT_EQ(ReadDesign(Stage("wr", Strata(Variable(name)))), PlanStatus::kInvalidName) << name;
    EXPECT_EQ(fDetail, "AnalysisStage 1, variable \"" + std::string(name) + "\"");
  }
  EXPECT_EQ(ReadDesign(Stage("wr", Clusters(Variable(std::string(65, 'a'))))), PlanStatus::kInvalidName);
  EXPECT_EQ(ReadValue("<PopulationSize>" + Variable("1n") + "</PopulationSize>"), PlanStatus::kInvalidName);
  EXPECT_EQ(ReadDesign("<Weight>" + Variable("1w") + "</Weight>"), PlanStatus::kInvalidName);
  EXPECT_EQ(fDetail, "AnalysisDesign, variable \"1w\"");
}

TEST_F(PlanReading, NamesMayHoldLettersOfAnyAlphabet) {
  EXPECT_EQ(ReadDesign(Stage("wr", Strata(Variable("Größe")))), PlanStatus::kOK);
  EXPECT_EQ(FirstStage().strata.at(0).Text(), "Größe");
}

TEST_F(PlanReading, ARepeatedVariableGives3WhereverItStandsAndWhateverItsCase) {
  const std::string h = Variable("h");
  for (const std::string& stage : {
           Strata(h + h),
           Strata(h) + Clusters(Variable("H")),
           Clusters(h + h),
           Strata(h) + "<PopulationSize>" + h + "</PopulationSize>",
           Strata(h) + "<IncProb>" + Variable("H") + "</IncProb>",
       }) {
    EXPECT_EQ(ReadDesign(Stage("equal_wor", stage)), PlanStatus::kRepeatedVariable) << stage;
    EXPECT_THAT(fDetail, StartsWith("AnalysisStage 1, variable"));
  }
  EXPECT_EQ(ReadDesign(Stage("wr", Clusters(h)) + Stage("wr", Strata(h), "2")),
            PlanStatus::kRepeatedVariable);
  EXPECT_THAT(fDetail, StartsWith("AnalysisStage 2"));
  EXPECT_EQ(ReadDesign(Stage("wr", Clusters(h)) + "<Weight>" + h + "</Weight>"),
            PlanStatus::kRepeatedVariable);
}

TEST_F(PlanReading, AStageOtherThanTheLastWithoutClustersGives7) {
  EXPECT_EQ(ReadDesign(Stage("wr", Strata(Variable("h"))) + Stage("wr", Clusters(Variable("a")), "2")),
            PlanStatus::kClustersRequired);
  EXPECT_THAT(fDetail, StartsWith("AnalysisStage 1"));
  EXPECT_EQ(ReadDesign(Stage("wr", Clusters(Variable("a"))) + Stage("wr", "", "2") + Stage("wr", "", "3")),
            PlanStatus::kClustersRequired);
  EXPECT_THAT(fDetail, StartsWith("AnalysisStage 2"));
  EXPECT_EQ(ReadDesign(Stage("wr", "")), PlanStatus::kOK) << "the last stage needs none";
}

TEST_F(PlanReading, TheFirstStatusWinsAndLaterElementsAreStillRead) {
  const std::string bad = "<IncProb><SingleValue value=\"2\"/></IncProb>";
  EXPECT_EQ(ReadDesign(Stage("equal_wor", Clusters(Variable("a")) + bad) +
                       Stage("wr", Clusters(Variable("A")), "2") + "<Weight>" + Variable("w") + "</Weight>"),
            PlanStatus::kInclusionProbIncorrect);
  EXPECT_EQ(fPlan.weight.Text(), "w");
  EXPECT_EQ(fPlan.stages[1].clusters.size(), 1U);
}

TEST_F(PlanReading, VariablesWithoutNameAndAWeightWithoutVariableAreNothing) {
  EXPECT_EQ(ReadDesign(Stage("wr", Strata("<Variable/>") + Clusters("<Other name=\"x\"/>")) + "<Weight/>"),
            PlanStatus::kOK);
  EXPECT_TRUE(FirstStage().strata.empty());
  EXPECT_TRUE(FirstStage().clusters.empty());
  EXPECT_TRUE(fPlan.weight.Empty());
  EXPECT_EQ(ReadDesign("<Weight><Variable/></Weight>"), PlanStatus::kOK);
  EXPECT_TRUE(fPlan.weight.Empty());
}

std::string MatrixOf(const std::string& variables, const std::string& rows, const std::string& count) {
  return "<Matrix numberOfValues=\"" + count + "\"><MatrixVarList numberOfVariables=\"9\">" + variables +
         "</MatrixVarList>" + rows + "</Matrix>";
}
std::string Row(const std::string& categories, const std::string& value) {
  return "<MatrixValue sizeValue=\"" + value + "\">" + categories + "</MatrixValue>";
}
std::string Category(const std::string& value) {
  return "<Category value=\"" + value + "\"/>";
}

class PlanMatrix : public PlanReading {
 protected:
  /// A matrix of the stage's population sizes; the stage has the strata h and k and the cluster psu.
  PlanStatus ReadMatrix(const std::string& matrix, const std::string& kind = "PopulationSize") {
    return ReadDesign(Stage("equal_wor", Strata(Variable("h") + Variable("k")) + Clusters(Variable("psu")) +
                                             "<" + kind + ">" + matrix + "</" + kind + ">"));
  }
};

TEST_F(PlanMatrix, RowsKeepTheirCategoriesOrderAndValues) {
  ASSERT_EQ(
      ReadMatrix(MatrixOf(
          Variable("h") + Variable("K"),
          Row(Category("1") + Category("north"), "10") + Row(Category("2") + "<C value=\"\"/>", "20"), "2")),
      PlanStatus::kOK);
  EXPECT_EQ(FirstStage().valueWay, PlanValueWay::BY_VARCATLIST);
  EXPECT_THAT(FirstStage().valueMatrix.copyVarList(), ElementsAre("h", "K"));
  const auto& rows = FirstStage().valueMatrix.copyMapKeyVal();
  ASSERT_EQ(rows.size(), 2U);
  EXPECT_THAT(rows[0].categories, ElementsAre("1", "north"));
  EXPECT_EQ(rows[0].value, 10);
  EXPECT_THAT(rows[1].categories, ElementsAre("2", ""));
  EXPECT_EQ(rows[1].value, 20);
}

TEST_F(PlanMatrix, OnlyTheStatedNumberOfRowsIsRead) {
  const std::string rows = Row(Category("1"), "10") + Row(Category("2"), "20");
  EXPECT_EQ(ReadMatrix(MatrixOf(Variable("h"), rows, "1")), PlanStatus::kOK);
  EXPECT_EQ(FirstStage().valueMatrix.getMapSize(), 1U);
  EXPECT_EQ(ReadMatrix(MatrixOf(Variable("h"), rows, "-1")), PlanStatus::kOK);
  EXPECT_EQ(FirstStage().valueMatrix.getMapSize(), 0U);
}

TEST_F(PlanMatrix, MoreRowsStatedThanThereAreGives9AndReadsThoseThereAre) {
  EXPECT_EQ(ReadMatrix(MatrixOf(Variable("h"), Row(Category("1"), "10"), "2147483647")),
            PlanStatus::kMatrixCategoriesMismatch);
  EXPECT_THAT(fDetail, HasSubstr("numberOfValues=\"2147483647\""));
  EXPECT_EQ(FirstStage().valueMatrix.getMapSize(), 1U);
}

TEST_F(PlanMatrix, ARowWithTooFewOrTooManyCategoriesGives9) {
  for (const std::string& row :
       {Row("", "10"), Row(Category("1"), "10"), Row("<Category/>" + Category("1"), "10"),
        Row(Category("1") + Category("2") + Category("3"), "10")}) {
    EXPECT_EQ(ReadMatrix(MatrixOf(Variable("h") + Variable("k"), row, "1")),
              PlanStatus::kMatrixCategoriesMismatch)
        << row;
    EXPECT_EQ(fDetail, "AnalysisStage 1, MatrixValue number 1");
    EXPECT_EQ(FirstStage().valueMatrix.getMapSize(), 0U);
  }
  EXPECT_EQ(ReadMatrix(MatrixOf("", Row("", "10"), "1")), PlanStatus::kMatrixCategoriesMismatch);
}

TEST_F(PlanMatrix, ABadRowDoesNotSpoilTheNext) {
  EXPECT_EQ(ReadMatrix(MatrixOf(Variable("h"),
                                Row(Category("1") + Category("2"), "10") + Row(Category("3"), "30"), "2")),
            PlanStatus::kMatrixCategoriesMismatch);
  ASSERT_EQ(FirstStage().valueMatrix.getMapSize(), 1U);
  EXPECT_THAT(FirstStage().valueMatrix.copyMapKeyVal()[0].categories, ElementsAre("3"));
}

TEST_F(PlanMatrix, AVariableThatIsNoDesignVariableOrACellOfItsOwnStageGives8) {
  EXPECT_EQ(ReadMatrix(MatrixOf(Variable("other"), "", "0")), PlanStatus::kMatrixVariableInvalid);
  EXPECT_EQ(fDetail, "AnalysisStage 1, matrix variable \"other\"");
  EXPECT_EQ(ReadMatrix(MatrixOf(Variable("PSU"), "", "0")), PlanStatus::kMatrixVariableInvalid);
  EXPECT_EQ(ReadMatrix(MatrixOf(Variable("2h"), "", "0")), PlanStatus::kInvalidName);
}

TEST_F(PlanMatrix, AClusterOfAnOuterStageMayBeAKey) {
  EXPECT_EQ(ReadDesign(Stage("wr", Clusters(Variable("psu"))) +
                       Stage("equal_wor",
                             Clusters(Variable("hh")) + "<IncProb>" +
                                 MatrixOf(Variable("psu"), Row(Category("1"), "0.5"), "1") + "</IncProb>",
                             "2")),
            PlanStatus::kOK);
}

TEST_F(PlanMatrix, ValuesAreCheckedLikeSingleValues) {
  EXPECT_EQ(ReadMatrix(MatrixOf(Variable("h"), Row(Category("1"), "1.5"), "1")),
            PlanStatus::kPopulationSizeIncorrect);
  EXPECT_EQ(ReadMatrix(MatrixOf(Variable("h"), Row(Category("1"), "1.5"), "1"), "IncProb"),
            PlanStatus::kInclusionProbIncorrect);
  EXPECT_EQ(ReadMatrix(MatrixOf(Variable("h"), Row(Category("1"), "1"), "1"), "IncProb"), PlanStatus::kOK);
}

TEST_F(PlanReading, EveryStatusSendsItsMessageAtErrorLevelWithTheDetail) {
  const standalone::CommandTokens command;
  const standalone::SourceText source;
  fSession.BeginCommand(command, source);
  const auto& messages = fSession.CurrentOutput()->messages;
  for (int status = 1; status <= 24; ++status) {
    OrvPlanMessages::Report(static_cast<PlanStatus>(status), "AnalysisStage 2, variable \"q\"");
    ASSERT_EQ(messages.size(), static_cast<std::size_t>(status));
    EXPECT_TRUE(messages.back().isError) << status;
    EXPECT_THAT(messages.back().key, ::testing::EndsWith("...")) << status;
    EXPECT_THAT(messages.back().text, ::testing::Not(HasSubstr("^1"))) << status;
    EXPECT_NE(messages.back().text, messages.back().key) << "status " << status << " has no sentence";
  }
  EXPECT_EQ(messages[0].key, "Invalid plan file...");
  EXPECT_EQ(messages[9].key, "The plan cannot have more than ^1 stages...");
  EXPECT_EQ(messages[10].key, "AnalysisDesign is missing in plan file...");
  EXPECT_EQ(messages[23].key, "Illegal SRS estimator method...");
  EXPECT_THAT(messages[2].text, HasSubstr("AnalysisStage 2, variable \"q\""));
}

TEST_F(PlanReading, SuccessAndUnknownStatusesAreSilent) {
  const standalone::CommandTokens command;
  const standalone::SourceText source;
  fSession.BeginCommand(command, source);
  for (const int status : {0, 25, -1, 1000000})
    OrvPlanMessages::Report(static_cast<PlanStatus>(status), "x");
  EXPECT_TRUE(fSession.CurrentOutput()->messages.empty());
}

}  // namespace
}  // namespace tavo
