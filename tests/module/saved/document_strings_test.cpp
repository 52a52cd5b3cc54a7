// The lines of a matrix file's document.
#include "module/saved/document_strings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "../input/scripted_source.h"
#include "standalone/session/embedded_session.h"

namespace tavo {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

using Lines = std::vector<std::string>;

TEST(DocumentStrings, AStringOfExactly71CharactersIsOnePieceAndOf72Two) {
  OrvRegDocumentStrings strings;
  EXPECT_EQ(strings.AddString(std::string(71, 'a')), 71U);
  EXPECT_EQ(strings.AddString(std::string(72, 'b')), 72U);
  EXPECT_EQ(strings.AddString(""), 0U);
  EXPECT_EQ(strings.AddString(std::string(142, 'c')), 142U);
  EXPECT_EQ(strings.Count(), 4U);
  EXPECT_EQ(strings.ChunkCount(0, 71), 1U);
  EXPECT_EQ(strings.ChunkCount(1, 71), 2U);
  EXPECT_EQ(strings.ChunkCount(2, 71), 0U) << "empty";
  EXPECT_EQ(strings.ChunkCount(3, 71), 2U);
  EXPECT_EQ(strings.ChunkCount(4, 71), 0U) << "out of range";
  EXPECT_EQ(strings.ChunkLine(1, 0, 71), std::string(71, 'b'));
  EXPECT_EQ(strings.ChunkLine(1, 1, 71), "b");
  EXPECT_EQ(strings.ChunkLine(1, 2, 71), "");
  EXPECT_EQ(strings.ChunkLine(4, 0, 71), "");
}

TEST(DocumentStrings, APieceEndsBetweenCharactersAndHoldsNoMoreBytesThanItsWidth) {
  OrvRegDocumentStrings strings;
  std::string accents;
  for (int i = 0; i < 60; ++i)
    accents += "é";  // two bytes
  strings.AddString(accents);
  strings.AddString("ab😀cd");  // four bytes in the middle
  ASSERT_EQ(strings.ChunkCount(0, 71), 2U);
  EXPECT_EQ(strings.ChunkLine(0, 0, 71), accents.substr(0, 70));
  EXPECT_EQ(strings.ChunkLine(0, 1, 71), accents.substr(70));
  ASSERT_EQ(strings.ChunkCount(1, 5), 3U);
  EXPECT_EQ(strings.ChunkLine(1, 0, 5), "ab");
  EXPECT_EQ(strings.ChunkLine(1, 1, 5), "😀c");
  EXPECT_EQ(strings.ChunkLine(1, 2, 5), "d");
}

TEST(DocumentStrings, BytesThatAreNoTextAreCutAnywhere) {
  OrvRegDocumentStrings strings;
  strings.AddString(std::string(7, '\x80'));
  ASSERT_EQ(strings.ChunkCount(0, 3), 3U);
  EXPECT_EQ(strings.ChunkLine(0, 2, 3).size(), 1U);
}

TEST(DocumentStrings, APrefixStandsBeforeTheFirstPieceAndBlanksBeforeTheOthers) {
  OrvRegDocumentStrings strings;
  strings.AddString(std::string(72, 'a'));
  strings.AddString("end");
  const Lines lines = BuildDocument(strings).Lines();
  ASSERT_EQ(lines.size(), 4U);
  EXPECT_EQ(lines[0], "document " + std::string(71, 'a'));
  EXPECT_EQ(lines[1], "         a");
  EXPECT_EQ(lines[2], "         end");
  const host::CalendarDate today = host::BCLOCK();
  EXPECT_THAT(lines[3], HasSubstr(std::to_string(today.year)));
}

TEST(DocumentStrings, WithoutLinesThereIsNoDocument) {
  EXPECT_THAT(BuildDocument(OrvRegDocumentStrings()).Lines(), IsEmpty());
}

/// A dictionary of y, w, h, psu, n and p, and specifications to fill by hand.
class DocumentLinesTest : public ::testing::Test {
 protected:
  enum Index : int { kY, kW, kH, kPsu, kN, kP };

  DocumentLinesTest() : fScope(fSession) {
    fSession.BeginCommand(fCommand, fText);
    for (const char* name : {"y", "w", "h", "psu", "n", "p"})
      fSource.AddVariable(name);
    fSpecs.SetDependent(kY, true, {});
  }
  ~DocumentLinesTest() override { fSession.EndCommand(); }

  Lines Of(const std::vector<std::string>& effects) {
    const OrvRegDocumentStrings strings = DocumentLines(fSpecs, fSource, "1.00", effects);
    Lines lines;
    for (std::size_t i = 0; i < strings.Count(); ++i)
      lines.push_back(strings.At(i));
    return lines;
  }
  PlanStageSpec Stage(StageEstimator estimator) {
    PlanStageSpec spec;
    spec.stage.stageNumber = static_cast<int>(fSpecs.Stages().size()) + 1;
    spec.stage.estimator = estimator;
    return spec;
  }

  standalone::CommandTokens fCommand;
  standalone::SourceText fText;
  standalone::Session fSession;
  standalone::SessionScope fScope;
  ScriptedSource fSource;
  TavoValidSpecs fSpecs;
};

TEST_F(DocumentLinesTest, WithoutStagesAndWithAnEmptyPlanFileNameOnlyTheLabelStands) {
  EXPECT_THAT(Of({}), ElementsAre("Plan File: ", "Dependent Variable: y (reference category = 1.00)"));
}

TEST_F(DocumentLinesTest, EachStageSaysHowItsUnitsWereDrawn) {
  fSpecs.SetPlanFileName("survey.xml");
  fSpecs.SetWeightVariable(kW);
  PlanStageSpec first = Stage(StageEstimator::kUnequalWor);
  first.label = "towns";
  first.stage.strata = {kH, kN};
  first.stage.clusters = {kPsu};
  fSpecs.AddStage(std::move(first));
  PlanStageSpec second = Stage(StageEstimator::kEqualWor);
  second.stage.SetInclusionProbability(0.25);
  fSpecs.AddStage(std::move(second));
  PlanStageSpec third = Stage(StageEstimator::kWithReplacement);
  fSpecs.AddStage(std::move(third));
  EXPECT_THAT(
      Of({"a", "x"}),
      ElementsAre(
          "Plan File: survey.xml", "Weight Variable: w", "Stage 1: towns", "Stratification Variables: h n ",
          "Cluster Variables: psu ",
          "Estimator Assumption: Unequal probability sampling without replacement(using joint inclusion "
          "probabilitites)",
          "Stage 2", "Estimator Assumption: Equal probability sampling without replacement",
          "Inclusion Probability: 0.25", "Stage 3", "Estimator Assumption: Sampling with replacement",
          "Dependent Variable: y (reference category = 1.00)", "Model: y = (Intercept) + a + x"));
}

TEST_F(DocumentLinesTest, SizesAndProbabilitiesComeFromAValueAVariableOrAMatrix) {
  using Fill = void (*)(DesignStage&);
  const std::pair<Fill, const char*> cases[] = {
      {[](DesignStage& s) { s.SetInclusionProbabilityVariable(kP); },
       "Inclusion Probability: Obtained from variable p"},
      {[](DesignStage& s) { s.SetMatrix(InclProbType::kInclProbMatrix); },
       "Inclusion Probability: Obtained from matrix specification"},
      {[](DesignStage& s) { s.SetPopulationSize(1200); }, "Population Size: 1200"},
      {[](DesignStage& s) { s.SetPopulationSizeVariable(kN); }, "Population Size: Obtained from variable n"},
      {[](DesignStage& s) { s.SetMatrix(InclProbType::kPopSizeMatrix); },
       "Population Size: Obtained from matrix specification"}};
  for (const auto& [fill, expected] : cases) {
    PlanStageSpec spec = Stage(StageEstimator::kEqualWor);
    fill(spec.stage);
    if (std::string(expected).ends_with("matrix specification")) {
      spec.matrix = std::make_unique<StageMatrix>();
      spec.matrix->variables = {kH};
      spec.matrix->values = std::make_unique<host::ObsVecMap>(host::ObsVecMap::MakeKeySpec(fSource, {kH}), 1);
      const Cells one = Number(1);
      spec.matrix->values->Insert(one.data())->number = 0.5;
    }
    fSpecs.AddStage(std::move(spec));
  }
  const Lines lines = Of({});
  for (const auto& [fill, expected] : cases)
    EXPECT_THAT(lines, testing::Contains(expected));
}

}  // namespace
}  // namespace tavo
