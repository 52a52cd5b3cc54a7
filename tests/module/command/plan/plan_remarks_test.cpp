// What an analysis plan says that no run reads.
#include "module/command/plan/plan_remarks.h"

#include "plan_fixture.h"

namespace tavo {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::StartsWith;

const std::string kUnknownElement = "Unknown element ^1 in ^2 of the plan at ^3, known are ^4...";
const std::string kUnknownAttribute = "Unknown attribute ^1 of ^2 in the plan at ^3, known are ^4...";
const std::string kAgain = "Element ^1 stands in ^2 of the plan again at ^3...";
const std::string kMissing = "Attribute ^1 of ^2 is missing in the plan at ^3...";
const std::string kFewRows = "^1 is less than the ^2 rows of the matrix in the plan at ^3...";

class PlanRemarks : public PlanReading {
 protected:
  /// The key and the arguments of each remark on a document.
  std::vector<std::vector<std::string>> Of(const std::string& text) {
    PlanDocument document;
    EXPECT_TRUE(document.ParseText(text, "p.xml")) << document.Error();
    std::vector<std::vector<std::string>> remarks;
    for (const PlanRemark& remark : FindPlanRemarks(document)) {
      remarks.push_back({remark.key});
      remarks.back().insert(remarks.back().end(), remark.arguments.begin(), remark.arguments.end());
    }
    return remarks;
  }
};

std::string Matrix(const std::string& attributes) {
  return "<PopulationSize><Matrix " + attributes + "><MatrixVarList>" + Variable("h") +
         "</MatrixVarList><MatrixValue sizeValue=\"3\"><Category value=\"1\"/></MatrixValue>"
         "<MatrixValue sizeValue=\"4\"><Category value=\"2\"/></MatrixValue></Matrix></PopulationSize>";
}

TEST_F(PlanRemarks, ASoundPlanHasNone) {
  EXPECT_THAT(Of(Plan(SmallAnalysis())), IsEmpty());
  const std::string full = Strata(Variable("h")) + Clusters(Variable("psu")) + Matrix("numberOfValues=\"2\"");
  EXPECT_THAT(Of(Plan("<Header x=\"1\"><A/></Header><SampleDesign><B/></SampleDesign>" +
                      Analysis(Stage("equal_wor", full), "SRSestimator=\"wr\" numberOfStages=\"1\""))),
              IsEmpty());
}

TEST_F(PlanRemarks, AMisspeltElementIsNamedWithItsPlaceAndWhatIsKnownThere) {
  const std::string plan = Plan(
      Analysis("\n<AnalysisStage stageNumber=\"1\" estimationMethod=\"wr\">\n  <StratificationVarList/>\n"
               "  <ClusterVarlist><Variable name=\"psu\"/></ClusterVarlist></AnalysisStage>"));
  const std::string known = "StrataVarList, ClusterVarList, PopulationSize, IncProb, InclusionProbability";
  EXPECT_THAT(
      Of(plan),
      ElementsAre(ElementsAre(kUnknownElement, "StratificationVarList", "AnalysisStage", "p.xml:4:27", known),
                  ElementsAre(kUnknownElement, "ClusterVarlist", "AnalysisStage", "p.xml:5:19", known)));
}

TEST_F(PlanRemarks, AnUnknownSectionAndAnUnknownAttributeAreNamed) {
  EXPECT_THAT(Of(Plan(SmallAnalysis() + "<AnalysisDesing/>")), ElementsAre(Contains("AnalysisDesing")));
  EXPECT_THAT(Of(Plan(Analysis("", "SRSEstimator=\"wr\" xml:lang=\"en\""))),
              ElementsAre(ElementsAre(kUnknownAttribute, "SRSEstimator", "AnalysisDesign",
                                      StartsWith("p.xml:2:"), "SRSestimator, numberOfStages")));
}

TEST_F(PlanRemarks, WhatIsReadOnceAndStandsTwiceIsNamed) {
  const std::string weight = "<Weight>" + Variable("w") + "</Weight>";
  EXPECT_THAT(Of(Plan(Analysis(weight + Stage("wr", "") + weight))),
              ElementsAre(ElementsAre(kAgain, "Weight", "AnalysisDesign", StartsWith("p.xml:2:"))));
  EXPECT_THAT(Of(Plan(SmallAnalysis() + SmallAnalysis())), ElementsAre(Contains("AnalysisDesign")));
  EXPECT_THAT(Of(Plan(Analysis(Stage("wr", Strata("") + Strata(""))))),
              ElementsAre(Contains("StrataVarList")));
}

TEST_F(PlanRemarks, AnElementWithoutTheAttributeThatItNeedsIsNamed) {
  EXPECT_THAT(Of(Plan(Analysis(Stage("wr", Strata("<Variable>h</Variable>"))))),
              ElementsAre(ElementsAre(kMissing, "name", "Variable", StartsWith("p.xml:2:"))));
  EXPECT_THAT(Of(Plan(Analysis(Stage("equal_wor", Strata(Variable("h")) + Matrix(""))))),
              ElementsAre(ElementsAre(kMissing, "numberOfValues", "Matrix", StartsWith("p.xml:2:"))));
}

TEST_F(PlanRemarks, RowsOfAMatrixThatAreNotReadAreNamed) {
  for (const char* stated : {"3x", "", "1", "-2", "1.5"}) {
    const std::string attribute = "numberOfValues=\"" + std::string(stated) + "\"";
    EXPECT_THAT(Of(Plan(Analysis(Stage("equal_wor", Strata(Variable("h")) + Matrix(attribute))))),
                ElementsAre(ElementsAre(kFewRows, attribute, "2", StartsWith("p.xml:2:"))));
  }
}

TEST_F(PlanRemarks, AreAtMostTwentyHoweverDeepOrWideADocumentIs) {
  std::string many, deep;
  for (int i = 0; i < 50000; ++i)
    many += "<x/>";
  for (int i = 0; i < 50000; ++i)
    deep += "<x>";
  for (int i = 0; i < 50000; ++i)
    deep += "</x>";
  EXPECT_THAT(Of(Plan(Analysis(many))), SizeIs(20));
  EXPECT_THAT(Of(Plan(Analysis(deep + Strata("")))), ElementsAre(Contains("x"), Contains("StrataVarList")));
}

TEST_F(PlanRemarks, AReaderHasThemWhateverItsStatusIs) {
  OrvPlanReader reader(fPlan);
  const std::string plan = Plan(Analysis(Stage("wr", "<Clusters/>") + Stage("wr", "", "2")));
  EXPECT_EQ(reader.ReadAnalysisText(plan, "p.xml"), PlanStatus::kClustersRequired);
  EXPECT_THAT(reader.Remarks(), SizeIs(1));
}

}  // namespace
}  // namespace tavo
