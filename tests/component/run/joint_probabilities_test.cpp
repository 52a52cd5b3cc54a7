// Joint inclusion probabilities in whole runs of the component.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

#include "component/run/algorithm.h"
#include "component_run.h"

namespace tavo {
namespace {

using namespace tavo_test;

/// Joint probabilities from memory, by stratum.
class MemoryJoint final : public MCOrv::JointInclProbs {
 public:
  struct Stratum {
    Units units;
    std::vector<double> matrix;
  };

  bool ReadStratum(const std::vector<std::int32_t>& strataKey, Units& units,
                   std::vector<double>& matrix) override {
    asked.push_back(strataKey);
    const auto found = strata.find(strataKey);
    if (found == strata.end()) return false;
    units = found->second.units;
    matrix = found->second.matrix;
    return true;
  }
  int GetError() const override { return 0; }

  std::map<std::vector<std::int32_t>, Stratum> strata;
  std::vector<std::vector<std::int32_t>> asked;
};

/// The units of each stratum of the cases, numbered from the highest code down, with `more` units that no
/// case has. Simple random sampling at rate `fraction`: pi_ab = f (n - 1) / (n / f - 1).
MemoryJoint EqualJoint(const std::vector<Case>& cases, double fraction, int more = 0) {
  std::map<int, std::set<int>> clusters;
  for (const Case& each : cases)
    clusters[static_cast<int>(each.stratum)].insert(static_cast<int>(each.cluster));
  MemoryJoint joint;
  for (auto& [stratum, codes] : clusters) {
    const double sampled = static_cast<double>(codes.size());
    for (int k = 0; k < more; ++k)
      codes.insert(100 + k);
    const std::size_t n = codes.size();
    MemoryJoint::Stratum& entry = joint.strata[{stratum}];
    entry.matrix.assign(n * n, fraction * (sampled - 1) / (sampled / fraction - 1));
    int unit = static_cast<int>(n);
    for (const int code : codes)
      entry.units[{code}] = unit--;
    for (std::size_t a = 0; a < n; ++a)
      entry.matrix[a * n + a] = fraction;
  }
  return joint;
}

SurveySettings Model(StageEstimator estimator) {
  SurveySettings settings;
  settings.Stage({kStratum}, {kCluster}, estimator);
  return settings;
}
SurveySettings& WithEffects(SurveySettings& settings) {
  settings.Factor(kA, 3).Covariate(kX).Effect({kA}).Effect({}, {kX});
  settings.Get().SetParamCriterion(1e-12);
  return settings;
}

struct JointRun {
  JointRun(const SurveySettings& settings, const std::vector<Case>& cases, MemoryJoint* joint)
      : iterator(RowsOf(cases)), component(settings.Get()), status(component.BuildModel(iterator, joint)) {
    component.OutputStatistics(statistics);
  }
  MemoryRecordIterator iterator;
  TavoComponent component;
  OrvStatus status;
  const TavoOutputStats* statistics = nullptr;
};

void ExpectSameErrors(const JointRun& a, const JointRun& b) {
  ASSERT_NE(a.statistics, nullptr);
  ASSERT_NE(b.statistics, nullptr);
  for (std::size_t i = 0; i < b.statistics->ParamStats().size(); ++i) {
    const OrvParamStats& want = b.statistics->ParamStats()[i];
    if (want.redundant) continue;
    EXPECT_NEAR(a.statistics->ParamStats()[i].standardError, want.standardError, 1e-9 * want.standardError);
    EXPECT_EQ(a.statistics->ParamStats()[i].df, want.df);
  }
}

TEST(JointProbabilities, OfEqualProbabilitiesGiveTheStandardErrorsOfSamplingWithoutReplacement) {
  const std::vector<Case> cases = SampleSurvey(200);
  MemoryJoint joint = EqualJoint(cases, 0.25);
  SurveySettings unequal = Model(StageEstimator::kUnequalWor);
  SurveySettings equal = Model(StageEstimator::kEqualWor);
  equal.Get().SetDesignConstant(0.25, InclProbType::kInclProbValue, 1);
  const JointRun run(WithEffects(unequal), cases, &joint);
  EXPECT_TRUE(run.status.IsOK());
  ExpectSameErrors(run, JointRun(WithEffects(equal), cases, nullptr));
  EXPECT_EQ(joint.asked, (std::vector<std::vector<std::int32_t>>{{1}, {2}, {3}, {4}})) << "each stratum once";
}

TEST(JointProbabilities, OfTwoStagesWithRecordsAsUnitsAgreeLikewise) {
  const std::vector<Case> cases = SampleSurvey(200);
  MemoryJoint joint = EqualJoint(cases, 0.25);
  SurveySettings unequal = Model(StageEstimator::kUnequalWor);
  SurveySettings equal = Model(StageEstimator::kEqualWor);
  equal.Get().SetDesignConstant(0.25, InclProbType::kInclProbValue, 1);
  for (SurveySettings* settings : {&unequal, &equal}) {
    settings->Get().SetStageEstimator(StageEstimator::kEqualWor, 2);
    settings->Get().SetDesignConstant(0.5, InclProbType::kInclProbValue, 2);
  }
  const JointRun run(WithEffects(unequal), cases, &joint);
  EXPECT_TRUE(run.status.IsOK());
  ExpectSameErrors(run, JointRun(WithEffects(equal), cases, nullptr));
}

TEST(JointProbabilities, OfTwoStagesSelectAFirstStageUnitOncePerCluster) {
  std::vector<Case> cases = SampleSurvey(200);
  Dice dice(5);
  for (Case& each : cases)
    each.secondCluster = dice.Throw(3);
  MemoryJoint joint = EqualJoint(cases, 0.25);
  SurveySettings unequal = Model(StageEstimator::kUnequalWor);
  SurveySettings equal = Model(StageEstimator::kEqualWor);
  equal.Get().SetDesignConstant(0.25, InclProbType::kInclProbValue, 1);
  for (SurveySettings* settings : {&unequal, &equal}) {
    settings->Stage({}, {kSecondCluster}, StageEstimator::kEqualWor, 2);
    settings->Get().SetDesignConstant(0.5, InclProbType::kInclProbValue, 2);
  }
  const JointRun run(WithEffects(unequal), cases, &joint);
  EXPECT_TRUE(run.status.IsOK());
  ExpectSameErrors(run, JointRun(WithEffects(equal), cases, nullptr));
}

TEST(JointProbabilities, OfMoreUnitsThanTheDataHaveWarnOnceForTheWholeRun) {
  const std::vector<Case> cases = SampleSurvey(200);
  MemoryJoint joint = EqualJoint(cases, 0.25, 2);
  MemoryJoint exact = EqualJoint(cases, 0.25);
  SurveySettings settings = Model(StageEstimator::kUnequalWor);
  WithEffects(settings);
  const JointRun run(settings, cases, &joint);
  EXPECT_EQ(run.status, OrvStatus::Warning(StatusCode::kJointFileHasMoreUnits));
  const std::vector<OrvStatus> list = run.component.WarningList();
  EXPECT_EQ(std::count(list.begin(), list.end(), run.status), 1);
  ExpectSameErrors(run, JointRun(settings, cases, &exact));
}

TEST(JointProbabilities, WithoutAStratumOrAUnitOfTheSampleStopTheRun) {
  const std::vector<Case> cases = SampleSurvey(200);
  SurveySettings settings = Model(StageEstimator::kUnequalWor);
  WithEffects(settings);
  MemoryJoint noStratum = EqualJoint(cases, 0.25);
  noStratum.strata.erase({3});
  EXPECT_EQ(JointRun(settings, cases, &noStratum).status, OrvStatus::Error(StatusCode::kJointFileUnreadable));
  MemoryJoint noUnit = EqualJoint(cases, 0.25, 1);
  noUnit.strata[{2}].units.erase({1});
  noUnit.strata[{2}].units[{101}] = 6;
  const JointRun run(settings, cases, &noUnit);
  EXPECT_EQ(run.status, OrvStatus::Error(StatusCode::kClusterNotInJointFile));
  EXPECT_EQ(run.statistics, nullptr);
}

TEST(JointProbabilities, WithAMatrixOfAnotherSizeOrAUnitOutsideItStopTheRun) {
  const std::vector<Case> cases = SampleSurvey(200);
  SurveySettings settings = Model(StageEstimator::kUnequalWor);
  WithEffects(settings);
  MemoryJoint wrongSize = EqualJoint(cases, 0.25);
  wrongSize.strata[{1}].matrix.pop_back();
  EXPECT_EQ(JointRun(settings, cases, &wrongSize).status, OrvStatus::Error(StatusCode::kUserError));
  MemoryJoint outside = EqualJoint(cases, 0.25);
  outside.strata[{1}].units.begin()->second = 9;
  EXPECT_EQ(JointRun(settings, cases, &outside).status, OrvStatus::Error(StatusCode::kUserError));
}

TEST(JointProbabilities, AreNotReadForOtherDesigns) {
  const std::vector<Case> cases = SampleSurvey(200);
  MemoryJoint joint;
  SurveySettings settings = Model(StageEstimator::kWithReplacement);
  EXPECT_TRUE(JointRun(WithEffects(settings), cases, &joint).status.IsOK());
  EXPECT_TRUE(joint.asked.empty());
}

TEST(JointProbabilities, OfPairsThatAreTooLikelyGiveANegativeVarianceThatIsMarked) {
  const std::vector<Case> cases = SampleSurvey(200);
  MemoryJoint joint = EqualJoint(cases, 0.25);
  for (auto& [key, stratum] : joint.strata)
    std::fill(stratum.matrix.begin(), stratum.matrix.end(), 0.25);  // weights 0.25 - 1
  SurveySettings settings = Model(StageEstimator::kUnequalWor);
  const JointRun run(WithEffects(settings), cases, &joint);
  EXPECT_TRUE(run.status.IsWarning());
  EXPECT_EQ(run.status.Code(), StatusCode::kVarianceZeroSomeNegative);
  ASSERT_NE(run.statistics, nullptr);
  EXPECT_TRUE(run.statistics->ParamStats()[0].negativeVariance);
  EXPECT_EQ(run.statistics->ParamStats()[0].standardError, 0.0);
}

TEST(JointProbabilities, NeedClusterVariablesThatTellTheUnitsApart) {
  SurveySettings settings;
  settings.Stage({kStratum}, {}, StageEstimator::kUnequalWor);
  const TavoComponent component(WithEffects(settings).Get());
  EXPECT_EQ(component.Status(), OrvStatus::Error(StatusCode::kStageWithoutClusters).SetInteger(1, 1));
}

}  // namespace
}  // namespace tavo
