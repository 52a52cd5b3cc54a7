// Designs whose first stage has unequal probabilities without replacement, against the full double sum over
// all pairs of units (Yates and Grundy 1953) and, for the stages below, the textbook formulas.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "design_feed.h"
#include "nested_design.h"

namespace design_test {
namespace {

using nested_design::Matrix;
using nested_design::Rate;
using nested_design::Stratum;
using nested_design::Unit;
using nested_design::Vector;

constexpr std::size_t kVariables = 3;

DesignStage Unequal(int strata, int clusters) {
  DesignStage stage = WithReplacement(strata, clusters);
  stage.estimator = StageEstimator::kUnequalWor;
  return stage;
}

/// A first-stage stratum: all units of the file, of which some are not in the sample.
struct JointStratum {
  std::size_t count = 0;
  std::vector<double> joint;  // count * count
  std::vector<bool> isSampled;
  std::vector<Unit> units;
};

/// 1/2 the sum over all ordered pairs, with the probability of a pair taken from the lower triangle, plus the
/// variance within the units times their probability.
Matrix DoubleSum(const JointStratum& stratum) {
  Matrix sum(kVariables);
  const auto joint = [&](std::size_t a, std::size_t b) {
    return static_cast<long double>(stratum.joint[std::max(a, b) * stratum.count + std::min(a, b)]);
  };
  for (std::size_t a = 0; a < stratum.count; ++a) {
    if (!stratum.isSampled[a]) continue;
    sum.Add(joint(a, a), Covariance(stratum.units[a], kVariables));
    const Vector ta = Total(stratum.units[a], kVariables);
    for (std::size_t b = 0; b < stratum.count; ++b) {
      if (!stratum.isSampled[b] || a == b) continue;
      const Vector tb = Total(stratum.units[b], kVariables);
      const long double weight = joint(a, a) * joint(b, b) / joint(a, b) - 1.0L;
      for (std::size_t i = 0; i < kVariables; ++i) {
        for (std::size_t j = 0; j < kVariables; ++j)
          sum.At(i, j) += 0.5L * weight * (ta[i] - tb[i]) * (ta[j] - tb[j]);
      }
    }
  }
  return sum;
}

class RandomJointSurvey {
 public:
  explicit RandomJointSurvey(unsigned seed) : fRandom(seed) {
    hasStrata = Whole(0, 1) == 1;
    isTwoStage = Whole(0, 2) > 0;
    recordsAreUnits = Whole(0, 1) == 1;
    const int count = hasStrata ? Whole(1, 4) : 1;
    for (int h = 0; h < count; ++h)
      strata.push_back(RandomStratum());
  }

  std::vector<DesignStage> Stages() const {
    std::vector<DesignStage> stages = {Unequal(hasStrata ? 1 : 0, 1)};
    if (!isTwoStage) return stages;
    stages.push_back(WithoutReplacement(0, recordsAreUnits ? 0 : 1, InclProbType::kInclProbValue, kFraction));
    return stages;
  }
  Matrix Expected() const {
    Matrix sum(kVariables);
    for (const JointStratum& stratum : strata)
      sum.Add(1.0L, DoubleSum(stratum));
    return sum;
  }

  bool hasStrata;
  bool isTwoStage;
  bool recordsAreUnits;  // of the last of two stages
  std::vector<JointStratum> strata;

 private:
  static constexpr double kFraction = 0.3;

  int Whole(int low, int high) { return std::uniform_int_distribution<int>(low, high)(fRandom); }
  double Real(double low, double high) { return std::uniform_real_distribution<double>(low, high)(fRandom); }

  JointStratum RandomStratum() {
    JointStratum stratum;
    stratum.count = static_cast<std::size_t>(Whole(1, 8));
    stratum.joint.resize(stratum.count * stratum.count);
    for (double& probability : stratum.joint)
      probability = Real(0.05, 0.3);  // on purpose not symmetric
    for (std::size_t a = 0; a < stratum.count; ++a) {
      stratum.joint[a * stratum.count + a] = Real(0.3, 1.0);
      stratum.isSampled.push_back(a == 0 || Whole(0, 4) > 0);
      stratum.units.push_back(RandomUnit());
    }
    return stratum;
  }
  Unit RandomUnit() {
    Unit unit;
    if (!isTwoStage) {
      unit.values = RandomValues();
      return unit;
    }
    Stratum below{Rate::kFraction, kFraction, {}};
    const int count = Whole(1, 5);
    for (int k = 0; k < count; ++k)
      below.units.push_back({RandomValues(), {}});
    unit.strata.push_back(below);
    return unit;
  }
  std::vector<double> RandomValues() {
    const double level = Real(0, 50);
    return {level + Real(-5, 5), level * 2, Real(-1e3, 1e3)};
  }

  std::mt19937 fRandom;
};

/// Walks the sampled units as the data tabulator does, with stratum and unit number as the key.
void FeedJoint(SampleDesign& design, const RandomJointSurvey& survey) {
  std::vector<std::vector<int>> keys;
  std::vector<std::vector<std::vector<double>>> groups;
  for (std::size_t h = 0; h < survey.strata.size(); ++h) {
    for (std::size_t a = 0; a < survey.strata[h].count; ++a) {
      if (!survey.strata[h].isSampled[a]) continue;
      const Unit& unit = survey.strata[h].units[a];
      std::vector<int> key;
      if (survey.hasStrata) key.push_back(static_cast<int>(h));
      key.push_back(static_cast<int>(a) + 1);
      std::vector<std::vector<double>> records;
      for (const Unit& below : unit.strata.empty() ? std::vector<Unit>{unit} : unit.strata[0].units)
        records.push_back(below.values);
      if (!survey.isTwoStage || survey.recordsAreUnits) {
        keys.push_back(key);
        groups.push_back(records);
        continue;
      }
      for (std::size_t k = 0; k < records.size(); ++k) {
        keys.push_back(key);
        keys.back().push_back(static_cast<int>(k));
        groups.push_back({records[k]});
      }
    }
  }
  int openStratum = -1;
  for (std::size_t g = 0; g < keys.size(); ++g) {
    const int h = survey.hasStrata ? keys[g][0] : 0;
    const JointStratum& stratum = survey.strata[static_cast<std::size_t>(h)];
    if (h != openStratum) {
      ASSERT_TRUE(design.SetJointProbabilities(static_cast<int>(stratum.count), stratum.joint));
    }
    openStratum = h;
    ASSERT_TRUE(design.SetUnitIndex(keys[g][survey.hasStrata ? 1 : 0]));
    for (const auto& record : groups[g])
      design.AddUnit(record);
    int level = -1;
    if (g + 1 < keys.size()) level = tavo::SharedPrefix(tavo::OrvKey(keys[g]), tavo::OrvKey(keys[g + 1]));
    DesignFault fault = DesignFault::kNone;
    int index = -1;
    ASSERT_TRUE(design.CloseLevels(level, fault, index));
  }
}

TEST(JointDesign, AgreesWithTheFullDoubleSumOverRandomDesignsAndMatrices) {
  for (unsigned seed = 1; seed <= 300; ++seed) {
    const RandomJointSurvey survey(seed);
    SampleDesign design = Build(survey.Stages(), static_cast<int>(kVariables));
    ASSERT_TRUE(design.NeedsJointProbabilities());
    FeedJoint(design, survey);
    const Matrix expected = survey.Expected();
    const auto scale = [&](std::size_t i) {
      return std::sqrt(std::abs(static_cast<double>(expected.At(i, i)))) + 1.0;
    };
    std::size_t packed = 0;
    for (std::size_t i = 0; i < kVariables; ++i) {
      EXPECT_NEAR(RootVariance(design, static_cast<int>(i)), static_cast<double>(expected.At(i, i)),
                  1e-11 * scale(i) * scale(i))
          << "seed " << seed;
      for (std::size_t j = 0; j <= i; ++j, ++packed) {
        EXPECT_NEAR(RootCovariance(design)[packed], static_cast<double>(expected.At(i, j)),
                    1e-11 * scale(i) * scale(j))
            << "seed " << seed << " element " << i << ", " << j;
      }
    }
    int units = 0;
    for (const JointStratum& stratum : survey.strata)
      units += static_cast<int>(std::count(stratum.isSampled.begin(), stratum.isSampled.end(), true));
    EXPECT_EQ(design.UnitCount(0), units);
    EXPECT_EQ(design.StrataCount(0), static_cast<int>(survey.strata.size()));
  }
}

// Simple random sampling of 3 of 10: pi = 3/10, joint 3 * 2 / (10 * 9).
TEST(JointDesign, OfEqualProbabilitiesAgreesWithSamplingWithoutReplacement) {
  const double pair = 6.0 / 90.0;
  SampleDesign joint = Build({Unequal(0, 1)}, 1);
  ASSERT_TRUE(joint.SetJointProbabilities(3, {0.3, pair, pair, pair, 0.3, pair, pair, pair, 0.3}));
  SampleDesign equal = Build({WithoutReplacement(0, 1, InclProbType::kInclProbValue, 0.3)}, 1);
  DesignFault fault = DesignFault::kNone;
  int index = -1;
  for (int u = 1; u <= 3; ++u) {
    ASSERT_TRUE(joint.SetUnitIndex(u));
    for (SampleDesign* design : {&joint, &equal}) {
      design->AddUnit({u * u + 0.5});
      ASSERT_TRUE(design->CloseLevels(u < 3 ? 0 : -1, fault, index));
    }
  }
  EXPECT_NEAR(RootVariance(joint, 0), RootVariance(equal, 0), 1e-12);
  EXPECT_NEAR(RootCovariance(joint)[0], RootCovariance(equal)[0], 1e-12);
  EXPECT_EQ(joint.UnitCount(0), 3);
}

TEST(JointDesign, PutsUnitsOfOneStageStraightInThePsuNode) {
  SampleDesign design = Build({Unequal(1, 2)}, 1);
  EXPECT_EQ(design.NodeCount(), 2);
  EXPECT_TRUE(design.NeedsJointProbabilities());
  SampleDesign twoStages = Build({Unequal(0, 1), WithReplacement(1, 0)}, 1);
  EXPECT_EQ(twoStages.NodeCount(), 3);
  EXPECT_TRUE(twoStages.NeedsJointProbabilities());
}

TEST(JointDesign, IsRefusedInALaterStageAndWithoutClusters) {
  SampleDesign design;
  EXPECT_FALSE(design.BuildTree({Unequal(1, 0)}, 1));
  EXPECT_FALSE(design.BuildTree({WithReplacement(0, 1), Unequal(0, 1)}, 1));
  EXPECT_FALSE(design.BuildTree({Unequal(0, 1), Unequal(0, 1)}, 1));
  EXPECT_EQ(design.NodeCount(), 0);
  EXPECT_FALSE(design.NeedsJointProbabilities());
}

TEST(JointDesign, NeedsJointProbabilitiesForUnequalOnesAlone) {
  EXPECT_FALSE(Build({WithReplacement(0, 1)}, 1).NeedsJointProbabilities());
  EXPECT_TRUE(Build({Unequal(0, 1)}, 1).NeedsJointProbabilities());
}

}  // namespace
}  // namespace design_test
