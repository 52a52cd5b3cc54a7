// The sample section of a plan: how the sample was drawn.

#include "plan_fixture.h"

namespace tavo {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

std::string Element(const std::string& name, const std::string& content) {
  return "<" + name + ">" + content + "</" + name + ">";
}
std::string Single(const std::string& value) {
  return "<SingleValue value=\"" + value + "\"/>";
}
std::string Size(const std::string& value = "10") {
  return Element("InputSampleSize", Single(value));
}
std::string Rate(const std::string& value, const std::string& bounds = "") {
  return Element("InputSampleRate", Single(value) + bounds);
}
std::string Mos(const std::string& content = "", const std::string& fromData = "yes") {
  return "<MOS fromData=\"" + fromData + "\">" + content + "</MOS>";
}
std::string Min(const std::string& value) {
  return Element("MinSize", Single(value));
}
std::string Max(const std::string& value) {
  return Element("MaxSize", Single(value));
}
std::string Drawn(const std::string& method, const std::string& content, const std::string& number = "1") {
  return "<SampleStage stageNumber=\"" + number + "\" selectionMethod=\"" + method + "\">" + content +
         "</SampleStage>";
}
/// A last stage that is in order.
std::string Last(const std::string& number = "2") {
  return Drawn("simple_wor", Size(), number);
}
std::string InClusters(const std::string& content) {
  return Clusters(Variable("psu")) + content;
}

TEST_F(PlanReading, FillsEveryFieldOfASampleSection) {
  const std::string outputs = Element("Index", Variable("i")) + Element("IncProb", Variable("p")) +
                              Element("PopulationSize", Variable("n")) +
                              Element("OutputSampleSize", Variable("s")) +
                              Element("OutputSampleRate", Variable("r")) + Element("Weight", Variable("w1")) +
                              Element("CumulativeWeight", Variable("cw"));
  const std::string first =
      "<SampleStage label=\"Schools\" stageNumber=\"1\" selectionMethod=\"pps_wor\">" +
      Strata(Variable("Region")) + Clusters(Variable("School")) + Rate("0.25", Min("2") + Max("40")) +
      Mos(Variable("pupils") + Min("0.5") + Max("900"), "no") + outputs + "</SampleStage>";
  ASSERT_EQ(ReadSample(
                first + Last() + Element("PreviousWeight", Variable("w0")) + Element("Weight", Variable("w")),
                "wrEstimation=\"yes\""),
            PlanStatus::kOK)
      << fDetail;
  EXPECT_EQ(fPlan.mode, PlanMode::SAMPLE_MODE);
  EXPECT_EQ(fPlan.file, fFolder.Path("plan.xml"));
  EXPECT_EQ(fPlan.estimation, PlanEstimation::WR);
  EXPECT_EQ(fPlan.weight.Text(), "w");
  EXPECT_EQ(fPlan.previousWeight.Text(), "w0");
  EXPECT_EQ(fPlan.mosVariable.Text(), "pupils");
  EXPECT_FALSE(fPlan.mosFromData);
  EXPECT_EQ(fPlan.mosMinimum, 0.5);
  EXPECT_EQ(fPlan.mosMaximum, 900);
  EXPECT_THAT(fPlan.designVariables, ElementsAre("REGION", "SCHOOL"));
  EXPECT_EQ(fPlan.planVariables.size(), 12U);
  ASSERT_EQ(fPlan.stages.size(), 2U);
  const OrvPlanStage& stage = FirstStage();
  EXPECT_EQ(stage.label, "Schools");
  EXPECT_EQ(stage.stageNumber, 1);
  EXPECT_EQ(stage.method, PlanMethod::PPS_WOR);
  EXPECT_EQ(stage.strata.at(0).Text(), "Region");
  EXPECT_EQ(stage.clusters.at(0).Text(), "School");
  EXPECT_THAT(stage.stageVariables, ElementsAre("SCHOOL"));
  EXPECT_EQ(stage.valueKind, PlanValueKind::RATE);
  EXPECT_EQ(stage.valueWay, PlanValueWay::BY_VALUE);
  EXPECT_EQ(stage.value, 0.25);
  EXPECT_EQ(stage.minSize, 2);
  EXPECT_EQ(stage.maxSize, 40);
  EXPECT_EQ(stage.indexVariable.Text(), "i");
  EXPECT_EQ(stage.inclusionProbVariable.Text(), "p");
  EXPECT_EQ(stage.populationSizeVariable.Text(), "n");
  EXPECT_EQ(stage.sampleSizeVariable.Text(), "s");
  EXPECT_EQ(stage.sampleRateVariable.Text(), "r");
  EXPECT_EQ(stage.weightVariable.Text(), "w1");
  EXPECT_EQ(stage.cumulativeWeightVariable.Text(), "cw");
}

TEST_F(PlanReading, AFreshPlanHasTheDefaultsOfTheFormat) {
  const OrvPlanData plan;
  EXPECT_EQ(plan.mode, PlanMode::NO_MODE);
  EXPECT_EQ(static_cast<int>(plan.srsEstimator), 16);
  EXPECT_EQ(static_cast<int>(plan.estimation), 14);
  EXPECT_EQ(plan.printOption, PlanPrintOption::PRINT_PLAN);
  EXPECT_FALSE(plan.mosFromData);
  EXPECT_EQ(plan.mosMinimum, 0);
  EXPECT_EQ(plan.mosMaximum, 0);
  const OrvPlanStage stage;
  EXPECT_EQ(stage.minSize, 0);
  EXPECT_EQ(stage.maxSize, 0);
  EXPECT_EQ(stage.method, PlanMethod::NO_VALUE);
}

TEST_F(PlanReading, SelectionMethodsHaveTheirNumbers) {
  const std::vector<std::pair<const char*, int>> methods = {
      {"simple_wor", 1}, {"simple_wr", 2},     {"simple_systematic", 3}, {"simple_chromy", 4},
      {"pps_wor", 5},    {"pps_wr", 6},        {"pps_systematic", 7},    {"pps_brewer", 8},
      {"pps_murthy", 9}, {"pps_sampford", 10}, {"pps_chromy", 11}};
  for (const auto& [word, number] : methods) {
    ReadSample(Drawn(word, InClusters(Size() + Mos())));
    EXPECT_EQ(static_cast<int>(FirstStage().method), number) << word;
  }
}

struct Fault {
  const char* what;
  std::string content;
  int status;
};

TEST_F(PlanReading, EachFaultOfASampleSectionHasItsStatus) {
  const std::string pps = InClusters(Size() + Mos());
  const std::vector<Fault> faults = {
      {"an invalid name", Drawn("simple_wor", Strata(Variable("1a")) + Size()), 2},
      {"an invalid output name", Drawn("simple_wor", Size() + Element("Index", Variable("a b"))), 2},
      {"an invalid weight", Last("1") + Element("Weight", Variable("1w")), 2},
      {"a stage before the last without clusters", Drawn("simple_wor", Size()) + Last(), 7},
      {"a matrix variable of its own stage",
       Drawn("simple_wor",
             InClusters(Element("InputSampleSize", "<Matrix numberOfValues=\"0\"><MatrixVarList>" +
                                                       Variable("psu") + "</MatrixVarList></Matrix>"))),
       8},
      {"a matrix row without category",
       Drawn("simple_wor",
             Strata(Variable("h")) +
                 Element("InputSampleSize", "<Matrix numberOfValues=\"1\"><MatrixVarList>" + Variable("h") +
                                                "</MatrixVarList><MatrixValue "
                                                "sizeValue=\"3\"/></Matrix>")),
       9},
      {"four stages", Last("1") + Last("2") + Last("3") + Last("4"), 10},
      {"a sample size of 0", Drawn("simple_wor", Size("0")), 12},
      {"a sample size that isn't whole", Drawn("simple_wor", Size("2.5")), 12},
      {"a sample size that is no number", Drawn("simple_wor", Size("many")), 12},
      {"a rate of 0", Drawn("simple_wor", Rate("0")), 13},
      {"a negative rate", Drawn("simple_wor", Rate("-0.5")), 13},
      {"pps at the second stage",
       Drawn("simple_wor", InClusters(Size())) + Drawn("pps_systematic", Size() + Mos(), "2"), 15},
      {"an unknown method", Drawn("by_hand", Size()), 15},
      {"no method", "<SampleStage>" + Size() + "</SampleStage>", 15},
      {"neither size nor rate", Drawn("simple_wor", ""), 16},
      {"neither size nor rate for pps", Drawn("pps_wor", InClusters(Mos())) + Last(), 16},
      {"no measure of size", Drawn("pps_wor", InClusters(Size())) + Last(), 17},
      {"a measure of size without variable", Drawn("pps_wor", InClusters(Size() + Mos("", "no"))) + Last(),
       18},
      {"a measure of size without source", Drawn("pps_wor", InClusters(Size() + "<MOS/>")) + Last(), 18},
      {"bounds in the wrong order", Drawn("simple_wor", Rate("0.1", Min("9") + Max("8"))), 19},
      {"bounds of the measure in the wrong order",
       Drawn("pps_wor", InClusters(Size() + Mos(Min("9") + Max("8.5")))) + Last(), 19},
      {"a negative bound", Drawn("simple_wor", Rate("0.1", Min("-1"))), 20},
      {"a bound that isn't whole", Drawn("simple_wor", Rate("0.1", Max("2.5"))), 20},
      {"a bound without a value", Drawn("simple_wor", Rate("0.1", "<MinSize/>")), 20},
      {"a negative bound of the measure", Drawn("pps_wor", InClusters(Size() + Mos(Max("-1")))) + Last(), 20},
      {"Brewer's method in a single stage", Drawn("pps_brewer", pps), 21},
      {"pps in a single stage", Drawn("pps_wor", pps), 21},
      {"Murthy's method in a single stage", Drawn("pps_murthy", pps), 21},
      {"Sampford's method in a single stage", Drawn("pps_sampford", Size() + Mos()), 21},
      {"a variable twice in a list", Drawn("simple_wor", Strata(Variable("h") + Variable("H")) + Size()), 22},
      {"a variable in two slots",
       Drawn("simple_wor", Size() + Element("Index", Variable("i")) + Element("IncProb", Variable("I"))), 22},
      {"a weight that is a stratum",
       Drawn("simple_wor", Strata(Variable("h")) + Size()) + Element("Weight", Variable("h")), 22},
      {"one variable for both weights",
       Last("1") + Element("PreviousWeight", Variable("w")) + Element("Weight", Variable("W")), 22},
      {"with replacement before the last stage", Drawn("simple_wr", InClusters(Size())) + Last(), 23},
      {"pps with replacement before the last stage", Drawn("pps_wr", pps) + Last(), 23},
  };
  for (const Fault& fault : faults) {
    EXPECT_EQ(static_cast<int>(ReadSample(fault.content)), fault.status) << fault.what << ": " << fDetail;
    EXPECT_NE(fDetail, "") << fault.what;
  }
  EXPECT_EQ(static_cast<int>(ReadSampleText("no plan")), 1);
  EXPECT_EQ(static_cast<int>(ReadSampleText(Plan(SmallAnalysis()))), 14);
}

TEST_F(PlanReading, WhatASampleSectionMayLeaveOutGivesNoStatus) {
  const std::vector<std::pair<const char*, std::string>> sound = {
      {"no stage", ""},
      {"a rate above 1", Drawn("simple_wor", Rate("1.5"))},
      {"a smallest size without a largest", Drawn("simple_wor", Rate("0.1", Min("9")))},
      {"bounds of 0", Drawn("simple_wor", Rate("0.1", Min("0") + Max("0")))},
      {"no measure of size without pps", Drawn("simple_wor", Size())},
      {"Brewer's method without a size", Drawn("pps_brewer", InClusters(Mos())) + Last()},
      {"Murthy's method without a size", Drawn("pps_murthy", InClusters(Mos())) + Last()},
      {"with replacement in the last stage",
       Drawn("simple_wor", InClusters(Size())) + Drawn("simple_wr", Size(), "2")},
      {"pps with replacement as the only stage", Drawn("pps_wr", Size() + Mos())},
      {"systematic pps as the only stage", Drawn("pps_systematic", Size() + Mos())},
      {"an output element without variable", Drawn("simple_wor", Size() + "<Index/>")},
      {"a size by variable", Drawn("simple_wor", Element("InputSampleSize", Variable("n")))},
  };
  for (const auto& [what, content] : sound) {
    EXPECT_EQ(ReadSample(content), PlanStatus::kOK) << what << ": " << fDetail;
  }
}

TEST_F(PlanReading, ASizeGoesBeforeARate) {
  EXPECT_EQ(ReadSample(Drawn("simple_wor", Rate("-1") + Size("7"))), PlanStatus::kOK);
  EXPECT_EQ(FirstStage().valueKind, PlanValueKind::SIZE);
  EXPECT_EQ(FirstStage().value, 7);
}

TEST_F(PlanReading, FaultsOfASampleSectionNameTheirStage) {
  ReadSample(Drawn("simple_wor", InClusters(Size())) + Drawn("simple_wor", Size("0"), "2"));
  EXPECT_EQ(fDetail, "SampleStage 2, value \"0\"");
  ReadSample(Last("1") + Element("PreviousWeight", Variable("1w")));
  EXPECT_EQ(fDetail, "SampleDesign, variable \"1w\"");
}

class UncheckedReading : public PlanReading {
 protected:
  PlanStatus Analysis(const std::string& document) {
    fPlan = OrvPlanData();
    OrvPlanReader reader(fPlan);
    return reader.ReadAnalysisUnchecked(fFolder.Write("plan.xml", document));
  }
  PlanStatus Sample(const std::string& document) {
    fPlan = OrvPlanData();
    OrvPlanReader reader(fPlan);
    return reader.ReadSampleUnchecked(fFolder.Write("plan.xml", document));
  }
};

TEST_F(UncheckedReading, DropsEveryStatusButThoseOfTheFileAndTheSection) {
  const std::string bad =
      "<AnalysisDesign SRSestimator=\"wr\">" +
      Stage("equal_wor",
            Strata(Variable("h") + Variable("h")) + "<IncProb><SingleValue value=\"2\"/></IncProb>") +
      Stage("unequal_wor", "", "2") + "<Weight>" + Variable("1w") + "</Weight></AnalysisDesign>";
  EXPECT_EQ(Analysis(Plan(bad)), PlanStatus::kOK);
  ASSERT_EQ(fPlan.stages.size(), 2U);
  EXPECT_EQ(FirstStage().value, 2);
  EXPECT_EQ(FirstStage().strata.size(), 2U);
  EXPECT_EQ(fPlan.weight.Text(), "1w");
  EXPECT_EQ(fPlan.srsEstimator, PlanSRSEstimator::WR);
  EXPECT_EQ(Sample(Plan("<SampleDesign><SampleStage/></SampleDesign>")), PlanStatus::kOK);
  EXPECT_EQ(fPlan.stages.size(), 1U);

  EXPECT_EQ(Analysis("<p>"), PlanStatus::kInvalidFile);
  EXPECT_EQ(Sample("<p>"), PlanStatus::kInvalidFile);
  EXPECT_EQ(Analysis(Plan("<SampleDesign/>")), PlanStatus::kNoAnalysisDesign);
  EXPECT_EQ(Sample(Plan("<AnalysisDesign/>")), PlanStatus::kNoSampleDesign);
}

TEST_F(UncheckedReading, ReadsTheSizesOfAnyMethod) {
  const std::string stage = Stage("wr", "<PopulationSize><SingleValue value=\"40\"/></PopulationSize>");
  EXPECT_EQ(Analysis(Plan("<AnalysisDesign>" + stage + "</AnalysisDesign>")), PlanStatus::kOK);
  EXPECT_EQ(FirstStage().valueKind, PlanValueKind::POPSIZE);
  EXPECT_EQ(FirstStage().value, 40);
}

}  // namespace
}  // namespace tavo
