// What the writer writes, the reader reads back.

#include "module/command/plan/plan_writer.h"

#include <random>

#include "module/command/plan/plan_methods.h"
#include "plan_fixture.h"

namespace tavo {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

/// Plans that a reader accepts, at random.
class RandomPlan {
 public:
  explicit RandomPlan(unsigned seed) : fRandom(seed) {}

  OrvPlanData Analysis() {
    OrvPlanData plan;
    plan.mode = PlanMode::ANALYSIS_MODE;
    if (Throw(2) == 1) plan.srsEstimator = PlanSRSEstimator::WR;
    plan.stages.resize(static_cast<std::size_t>(Throw(3)));
    for (std::size_t k = 0; k < plan.stages.size(); ++k) {
      constexpr PlanMethod kMethods[] = {PlanMethod::WR, PlanMethod::EQUAL_WOR, PlanMethod::EQUAL_WOR,
                                         PlanMethod::UNEQUAL_WOR};
      OrvPlanStage& stage = plan.stages[k];
      Head(plan, k);
      stage.method = kMethods[Throw(k == 0 ? 4 : 3) - 1];
      if (stage.method != PlanMethod::EQUAL_WOR) continue;
      stage.valueKind = Throw(2) == 1 ? PlanValueKind::POPSIZE : PlanValueKind::INCLPROB;
      Value(plan, stage);
    }
    if (Throw(3) > 1) plan.weight = NewName(plan);
    return plan;
  }

  OrvPlanData Sample() {
    OrvPlanData plan;
    plan.mode = PlanMode::SAMPLE_MODE;
    if (Throw(2) == 1) plan.estimation = PlanEstimation::WR;
    plan.stages.resize(static_cast<std::size_t>(1 + Throw(2)));
    for (std::size_t k = 0; k < plan.stages.size(); ++k) {
      constexpr int kFirst[] = {1, 3, 4, 5, 7, 8, 9, 10, 11};
      constexpr int kLater[] = {1, 3, 4};
      OrvPlanStage& stage = plan.stages[k];
      Head(plan, k);
      stage.method = static_cast<PlanMethod>(k == 0 ? kFirst[Throw(9) - 1] : kLater[Throw(3) - 1]);
      stage.valueKind = Throw(2) == 1 ? PlanValueKind::SIZE : PlanValueKind::RATE;
      Value(plan, stage);
      if (stage.valueKind == PlanValueKind::RATE) {
        stage.minSize = Throw(5) - 1;
        stage.maxSize = Throw(2) == 1 ? 0 : 10 + Throw(5);
      }
      if (IsProportionalToSize(stage.method)) Measure(plan);
      for (host::VornVarName* name :
           {&stage.indexVariable, &stage.inclusionProbVariable, &stage.populationSizeVariable,
            &stage.sampleSizeVariable, &stage.sampleRateVariable, &stage.weightVariable,
            &stage.cumulativeWeightVariable}) {
        if (Throw(2) == 1) *name = NewName(plan);
      }
    }
    if (Throw(2) == 1) plan.previousWeight = NewName(plan);
    if (Throw(2) == 1) plan.weight = NewName(plan);
    return plan;
  }

  /// Texts with all that XML treats in a way of its own.
  std::string Text() {
    static const std::vector<std::string> kPieces = {"a",  " ",  "&",   "<", ">",  "\"", "'",     "\t",
                                                     "\n", "\r", "]]>", "ß", "日", "😀",  "&amp;", "  "};
    std::string text;
    for (int n = Throw(8) - 1; n > 0; --n)
      text += kPieces[static_cast<std::size_t>(Throw(16)) - 1];
    return text;
  }

 private:
  int Throw(int sides) { return std::uniform_int_distribution<int>(1, sides)(fRandom); }

  host::VornVarName NewName(OrvPlanData& plan) {
    static const std::vector<std::string> kStems = {"v", "Var_", "@x", "größe", "a.b"};
    const std::string name = kStems[static_cast<std::size_t>(Throw(5)) - 1] + std::to_string(++fNNames) +
                             "_" + std::to_string(Throw(9));
    plan.planVariables.insert(host::GetUpperVarName(name));
    return name;
  }

  void Head(OrvPlanData& plan, std::size_t position) {
    OrvPlanStage& stage = plan.stages[position];
    stage.label = Text();
    stage.stageNumber = static_cast<int>(position) + 1;
    for (int n = Throw(3) - 1; n > 0; --n) {
      stage.strata.push_back(NewName(plan));
      plan.designVariables.insert(host::GetUpperVarName(stage.strata.back().Text()));
    }
    const bool isLast = position + 1 == plan.stages.size();
    for (int n = isLast ? Throw(3) - 1 : Throw(2); n > 0; --n) {
      stage.clusters.push_back(NewName(plan));
      const std::string upper = host::GetUpperVarName(stage.clusters.back().Text());
      plan.designVariables.insert(upper);
      stage.stageVariables.insert(upper);
    }
  }

  double Number(PlanValueKind kind) {
    if (kind == PlanValueKind::SIZE || kind == PlanValueKind::POPSIZE) {
      return Throw(3) == 1 ? 2147483647 : Throw(1000000);
    }
    return std::nextafter(std::uniform_real_distribution<double>(0, 1)(fRandom), 1.0);
  }

  void Value(OrvPlanData& plan, OrvPlanStage& stage) {
    stage.valueWay = static_cast<PlanValueWay>(stage.strata.empty() ? Throw(2) : Throw(3));
    if (stage.valueWay == PlanValueWay::BY_VALUE) stage.value = Number(stage.valueKind);
    if (stage.valueWay == PlanValueWay::BY_VARNAME) stage.valueVariable = NewName(plan);
    if (stage.valueWay != PlanValueWay::BY_VARCATLIST) return;
    for (const host::VornVarName& name : stage.strata)
      stage.valueMatrix.addVarName(name.Text());
    for (int n = Throw(5) - 1; n > 0; --n) {
      for (std::size_t i = 0; i < stage.strata.size(); ++i)
        stage.valueMatrix.addStringToCatList(Text());
      stage.valueMatrix.addCatList(Number(stage.valueKind));
    }
  }

  void Measure(OrvPlanData& plan) {
    plan.mosFromData = Throw(2) == 1;
    if (!plan.mosFromData) plan.mosVariable = NewName(plan);
    plan.mosMinimum = Throw(2) == 1 ? 0 : 0.125;
    plan.mosMaximum = Throw(2) == 1 ? 0 : 1e6 / 3;
  }

  std::mt19937 fRandom;
  int fNNames = 0;
};

void ExpectSameStage(const OrvPlanStage& got, const OrvPlanStage& want) {
  EXPECT_EQ(got.stageNumber, want.stageNumber);
  EXPECT_EQ(got.label, want.label);
  EXPECT_EQ(got.strata, want.strata);
  EXPECT_EQ(got.clusters, want.clusters);
  EXPECT_EQ(got.stageVariables, want.stageVariables);
  EXPECT_EQ(got.method, want.method);
  EXPECT_EQ(got.valueKind, want.valueKind);
  EXPECT_EQ(got.valueWay, want.valueWay);
  EXPECT_EQ(got.value, want.value);
  EXPECT_EQ(got.valueVariable, want.valueVariable);
  EXPECT_EQ(got.valueMatrix.copyVarList(), want.valueMatrix.copyVarList());
  ASSERT_EQ(got.valueMatrix.getMapSize(), want.valueMatrix.getMapSize());
  for (std::size_t i = 0; i < want.valueMatrix.getMapSize(); ++i) {
    EXPECT_EQ(got.valueMatrix.copyMapKeyVal()[i].categories, want.valueMatrix.copyMapKeyVal()[i].categories);
    EXPECT_EQ(got.valueMatrix.copyMapKeyVal()[i].value, want.valueMatrix.copyMapKeyVal()[i].value);
  }
  EXPECT_EQ(got.minSize, want.minSize);
  EXPECT_EQ(got.maxSize, want.maxSize);
  EXPECT_EQ(got.inclusionProbVariable, want.inclusionProbVariable);
  EXPECT_EQ(got.cumulativeWeightVariable, want.cumulativeWeightVariable);
  EXPECT_EQ(got.indexVariable, want.indexVariable);
  EXPECT_EQ(got.populationSizeVariable, want.populationSizeVariable);
  EXPECT_EQ(got.sampleSizeVariable, want.sampleSizeVariable);
  EXPECT_EQ(got.sampleRateVariable, want.sampleRateVariable);
  EXPECT_EQ(got.weightVariable, want.weightVariable);
}

void ExpectSamePlan(const OrvPlanData& got, const OrvPlanData& want) {
  EXPECT_EQ(got.mode, want.mode);
  EXPECT_EQ(got.weight, want.weight);
  EXPECT_EQ(got.previousWeight, want.previousWeight);
  EXPECT_EQ(got.srsEstimator, want.srsEstimator);
  EXPECT_EQ(got.mosVariable, want.mosVariable);
  EXPECT_EQ(got.mosFromData, want.mosFromData);
  EXPECT_EQ(got.mosMinimum, want.mosMinimum);
  EXPECT_EQ(got.mosMaximum, want.mosMaximum);
  EXPECT_EQ(got.estimation, want.estimation);
  EXPECT_EQ(got.planVariables, want.planVariables);
  EXPECT_EQ(got.designVariables, want.designVariables);
  ASSERT_EQ(got.stages.size(), want.stages.size());
  for (std::size_t i = 0; i < want.stages.size(); ++i)
    ExpectSameStage(got.stages[i], want.stages[i]);
}

/// What is written names the definition and the schema, so that reading validates against both.
TEST_F(PlanReading, RandomPlansComeBackFromTheirFilesAsTheyWere) {
  for (unsigned seed = 1; seed <= 200; ++seed) {
    RandomPlan random(seed);
    const OrvPlanData analysis = random.Analysis();
    const OrvPlanData sample = random.Sample();
    const PlanHeader header = {random.Text(), random.Text(), random.Text(), "1.0", random.Text(), "now"};
    const std::string text = OrvPlanWriter::Write(header, &sample, &analysis);
    ASSERT_EQ(ReadText(text), PlanStatus::kOK) << "seed " << seed << ": " << fDetail << "\n" << text;
    ExpectSamePlan(fPlan, analysis);
    ASSERT_EQ(ReadSampleText(text), PlanStatus::kOK) << "seed " << seed << ": " << fDetail << "\n" << text;
    ExpectSamePlan(fPlan, sample);
    ASSERT_FALSE(HasFailure()) << "seed " << seed << "\n" << text;
  }
}

TEST_F(PlanReading, ASmallPlanIsWrittenLikeThis) {
  OrvPlanData plan;
  plan.weight = "w";
  OrvPlanStage stage;
  stage.stageNumber = 1;
  stage.label = "R & D <1>";
  stage.strata = {"region"};
  stage.method = PlanMethod::EQUAL_WOR;
  stage.valueKind = PlanValueKind::POPSIZE;
  stage.valueWay = PlanValueWay::BY_VALUE;
  stage.value = 1000000;
  plan.stages.push_back(stage);
  EXPECT_EQ(OrvPlanWriter::Write({"c", "d", "app", "1.0", "a > b", "t"}, nullptr, &plan),
            "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
            "<!DOCTYPE VORNTessel SYSTEM \"vorn-tessel-1.0.dtd\">\n"
            "<VORNTessel version=\"12.0\" xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" "
            "xsi:noNamespaceSchemaLocation=\"vorntessel.xsd\">\n"
            "  <Header copyright=\"c\" description=\"d\">\n"
            "    <Application name=\"app\" version=\"1.0\"/>\n"
            "    <Annotation>a &gt; b</Annotation>\n"
            "    <Timestamp>t</Timestamp>\n"
            "  </Header>\n"
            "  <AnalysisDesign SRSestimator=\"wor\">\n"
            "    <AnalysisStage label=\"R &amp; D &lt;1&gt;\" stageNumber=\"1\" "
            "estimationMethod=\"equal_wor\">\n"
            "      <StrataVarList>\n"
            "        <Variable name=\"region\"/>\n"
            "      </StrataVarList>\n"
            "      <PopulationSize>\n"
            "        <SingleValue value=\"1000000\"/>\n"
            "      </PopulationSize>\n"
            "    </AnalysisStage>\n"
            "    <Weight>\n"
            "      <Variable name=\"w\"/>\n"
            "    </Weight>\n"
            "  </AnalysisDesign>\n"
            "</VORNTessel>\n");
}

// Found by fuzzing: the empty element that was written in its place broke the definition that the file names.
TEST_F(PlanReading, APopulationSizeWithoutAValueIsNotWritten) {
  ASSERT_EQ(ReadDesign(Stage("equal_wor", Strata(Variable("h")) + "<PopulationSize/>")), PlanStatus::kOK);
  EXPECT_EQ(FirstStage().valueWay, PlanValueWay::NOT_GIVEN);
  const std::string text = OrvPlanWriter::Write({}, nullptr, &fPlan);
  EXPECT_THAT(text, Not(HasSubstr("PopulationSize")));
  EXPECT_EQ(ReadText(text), PlanStatus::kOK) << fDetail;
}

TEST(OrvPlanWriter, WhatXMLCannotHoldIsReplacedAndCanBeAskedFor) {
  for (const char* bad : {"a\x01", "\x1b[31m", "\xff", "\xc3", "\xef\xbf\xbf", "\xed\xa0\x80"}) {
    EXPECT_FALSE(OrvPlanWriter::CanHold(bad));
    OrvPlanData plan;
    plan.stages.resize(1);
    plan.stages[0].label = bad;
    const std::string text = OrvPlanWriter::Write({}, nullptr, &plan);
    EXPECT_THAT(text, HasSubstr("\xef\xbf\xbd"));
    EXPECT_TRUE(OrvPlanWriter::CanHold(text));
  }
  for (const char* good : {"", "plain", "tab\tline\n", "größe", "😀", "\xef\xbf\xbd"}) {
    EXPECT_TRUE(OrvPlanWriter::CanHold(good)) << good;
  }
  EXPECT_FALSE(OrvPlanWriter::CanHold(std::string_view("a\0b", 3)));
}

}  // namespace
}  // namespace tavo
