// The design tree against the textbook formulas over randomly generated designs, and properties that need no
// oracle.

#include "nested_design.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <random>

#include "design_feed.h"

namespace design_test {
namespace {

using nested_design::Matrix;
using nested_design::Rate;
using nested_design::Stratum;
using nested_design::Unit;
using nested_design::Vector;

constexpr int kVariables = 4;

/// A random sample design and a sample from it, both as a tree of units and as sorted groups.
class RandomSurvey {
 public:
  explicit RandomSurvey(unsigned seed) : fRandom(seed) {
    const int stages = Whole(1, 3);
    for (int s = 0; s < stages; ++s)
      fStages.push_back(RandomStage(s == stages - 1));
    fSample = RandomUnit(0);
    Flatten(fSample, 0, {}, {});
  }

  const std::vector<DesignStage>& Stages() const { return fStages; }
  const Unit& Sample() const { return fSample; }
  std::vector<Group> Groups() const {
    std::vector<Group> groups;
    for (const auto& [key, group] : fGroups)
      groups.push_back(group);
    return groups;
  }

 private:
  int Whole(int low, int high) { return std::uniform_int_distribution<int>(low, high)(fRandom); }
  bool Chance(double p) { return std::bernoulli_distribution(p)(fRandom); }
  double Fraction() {
    return Chance(0.15) ? 1.0 : std::uniform_real_distribution<double>(0.01, 1.0)(fRandom);
  }

  DesignStage RandomStage(bool isLast) {
    using enum InclProbType;
    const int strata = Whole(0, 2);
    const int clusters = isLast ? Whole(0, 2) : Whole(1, 2);
    constexpr InclProbType kTypes[] = {kInclProbValue, kInclProbVariable, kInclProbMatrix,
                                       kPopSizeValue,  kPopSizeVariable,  kPopSizeMatrix};
    const int choice = Whole(-2, 5);
    if (choice < 0) return WithReplacement(strata, clusters);
    const InclProbType type = kTypes[choice];
    return WithoutReplacement(strata, clusters, type,
                              type == kPopSizeValue ? Whole(kMostUnits, 30) : Fraction());
  }

  Unit RandomUnit(std::size_t stage) {
    Unit unit;
    if (stage == fStages.size()) {
      unit.values = RandomValues();
      return unit;
    }
    const int strata = fStages[stage].strata.empty() ? 1 : Whole(1, 4);
    for (int h = 0; h < strata; ++h)
      unit.strata.push_back(RandomStratum(stage));
    return unit;
  }

  std::vector<double> RandomValues() {
    std::vector<double> values(kVariables, 0.0);
    if (Chance(0.2)) return values;  // outside the subpopulation
    std::normal_distribution<double> normal;
    values[0] = normal(fRandom);
    values[1] = 1000.0 * normal(fRandom) + 300.0;
    values[2] = Chance(0.5) ? 0.0 : 1e-3 * normal(fRandom);
    values[3] = values[0] + 0.1 * normal(fRandom);
    return values;
  }

  Stratum RandomStratum(std::size_t stage) {
    Stratum stratum;
    const int units = Chance(0.2) ? 1 : Whole(2, kMostUnits);
    SetRate(stratum, fStages[stage], units);
    for (int u = 0; u < units; ++u)
      stratum.units.push_back(RandomUnit(stage + 1));
    return stratum;
  }

  void SetRate(Stratum& stratum, const DesignStage& stage, int units) {
    if (stage.estimator == StageEstimator::kWithReplacement) return;
    switch (stage.InclusionType()) {
      case InclProbType::kInclProbValue:
        stratum.rate = Rate::kFraction;
        stratum.value = stage.InclusionProbability();
        break;
      case InclProbType::kPopSizeValue:
        stratum.rate = Rate::kPopulation;
        stratum.value = stage.PopulationSize();
        break;
      case InclProbType::kPopSizeVariable:
      case InclProbType::kPopSizeMatrix:
        stratum.rate = Rate::kPopulation;
        stratum.value = Whole(units, units + 5);
        break;
      default:
        stratum.rate = Rate::kFraction;
        stratum.value = Fraction();
    }
  }

  static bool HasVariable(const DesignStage& stage) {
    using enum InclProbType;
    const InclProbType type = stage.InclusionType();
    return type == kInclProbVariable || type == kInclProbMatrix || type == kPopSizeVariable ||
           type == kPopSizeMatrix;
  }

  /// A number as the codes of `variables` variables: 4 is (4), or (3, 1).
  static void AppendCodes(std::vector<int>& key, std::size_t number, std::size_t variables) {
    const int code = static_cast<int>(number);
    if (variables == 1) key.push_back(code + 1);
    if (variables == 2) key.insert(key.end(), {code / 2 + 1, code % 2 + 1});
  }

  void Flatten(const Unit& unit, std::size_t stage, const std::vector<int>& key,
               const std::vector<double>& constants) {
    if (stage == fStages.size()) {
      Group& group = fGroups[key];
      group.key = key;
      group.constants = constants;
      group.units.push_back(unit.values);
      return;
    }
    for (std::size_t h = 0; h < unit.strata.size(); ++h) {
      const Stratum& stratum = unit.strata[h];
      std::vector<int> stratumKey = key;
      AppendCodes(stratumKey, h, fStages[stage].strata.size());
      std::vector<double> stratumConstants = constants;
      if (HasVariable(fStages[stage])) stratumConstants.push_back(stratum.value);
      for (std::size_t u = 0; u < stratum.units.size(); ++u) {
        std::vector<int> unitKey = stratumKey;
        AppendCodes(unitKey, u, fStages[stage].clusters.size());
        Flatten(stratum.units[u], stage + 1, unitKey, stratumConstants);
      }
    }
  }

  static constexpr int kMostUnits = 9;

  std::mt19937 fRandom;
  std::vector<DesignStage> fStages;
  Unit fSample;
  std::map<std::vector<int>, Group> fGroups;
};

std::vector<double> TreeCovariance(const std::vector<DesignStage>& stages, const std::vector<Group>& groups) {
  SampleDesign design = Build(stages, kVariables);
  const Outcome outcome = Feed(design, groups);
  EXPECT_EQ(outcome.fault, DesignFault::kNone);
  EXPECT_TRUE(outcome.unequal.empty());
  EXPECT_EQ(outcome.groups, groups.size());
  return RootCovariance(design);
}

double Diagonal(const std::vector<double>& packed, int i) {
  return packed[static_cast<std::size_t>(i * (i + 3) / 2)];
}

/// Element by element, relative to what the two standard deviations allow.
void ExpectSame(const std::vector<double>& packed, const std::vector<double>& expected, double tolerance) {
  std::size_t k = 0;
  for (int i = 0; i < kVariables; ++i) {
    for (int j = 0; j <= i; ++j, ++k) {
      const double scale = std::sqrt(Diagonal(expected, i) * Diagonal(expected, j));
      EXPECT_NEAR(packed[k], expected[k], tolerance * scale) << i << ", " << j;
    }
  }
}

std::vector<double> Packed(const Matrix& matrix) {
  std::vector<double> packed;
  for (std::size_t i = 0; i < matrix.size; ++i) {
    for (std::size_t j = 0; j <= i; ++j)
      packed.push_back(static_cast<double>(matrix.At(i, j)));
  }
  return packed;
}

/// Runs a check on many surveys; a failure names the seed.
template <class Check>
void ForEachSurvey(Check check) {
  for (unsigned seed = 1; seed <= 300; ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    RandomSurvey survey(seed);
    check(survey);
    if (testing::Test::HasFailure()) return;
  }
}

TEST(NestedDesign, CovarianceOfTotalsFollowsTheFormulas) {
  ForEachSurvey([](const RandomSurvey& survey) {
    const Matrix expected = nested_design::Covariance(survey.Sample(), kVariables);
    ExpectSame(TreeCovariance(survey.Stages(), survey.Groups()), Packed(expected), 1e-12);
  });
}

TEST(NestedDesign, VariancesAndCountsAtTheRootFollowTheFormulas) {
  ForEachSurvey([](const RandomSurvey& survey) {
    SampleDesign design = Build(survey.Stages(), kVariables);
    ASSERT_EQ(Feed(design, survey.Groups()).fault, DesignFault::kNone);
    const Matrix covariance = nested_design::Covariance(survey.Sample(), kVariables);
    const Vector total = nested_design::Total(survey.Sample(), kVariables);
    std::size_t units = 0;
    for (const Stratum& stratum : survey.Sample().strata)
      units += stratum.units.size();

    for (int i = 0; i < kVariables; ++i) {
      const auto k = static_cast<std::size_t>(i);
      const auto variance = static_cast<double>(covariance.At(k, k));
      EXPECT_NEAR(RootVariance(design, i), variance, 1e-12 * variance);
      const double magnitude = 1e-10 * (1.0 + std::abs(static_cast<double>(total[k])));
      EXPECT_NEAR(RootTotal(design, i), static_cast<double>(total[k]), magnitude);
      EXPECT_EQ(design.StrataCount(i), static_cast<int>(survey.Sample().strata.size()));
      EXPECT_EQ(design.UnitCount(i), static_cast<int>(units));
    }
  });
}

TEST(NestedDesign, OrderOfUnitsInsideAStratumDoesNotMatter) {
  ForEachSurvey([](const RandomSurvey& survey) {
    std::vector<Group> groups = survey.Groups();
    const std::vector<double> expected = TreeCovariance(survey.Stages(), groups);
    for (Group& group : groups)
      std::reverse(group.units.begin(), group.units.end());
    // The codes of the first stage's units run backwards too.
    const DesignStage& first = survey.Stages().front();
    for (Group& group : groups) {
      for (std::size_t c = 0; c < first.clusters.size(); ++c)
        group.key[first.strata.size() + c] *= -1;
    }
    ExpectSame(TreeCovariance(survey.Stages(), groups), expected, 1e-12);
  });
}

TEST(NestedDesign, ScalingAVariableScalesItsRowAndColumn) {
  ForEachSurvey([](const RandomSurvey& survey) {
    std::vector<Group> groups = survey.Groups();
    std::vector<double> expected = TreeCovariance(survey.Stages(), groups);
    for (Group& group : groups) {
      for (auto& values : group.units)
        values[1] *= -8.0;  // a power of two: exact
    }
    expected[1] *= -8.0;  // (1, 0)
    expected[2] *= 64.0;  // (1, 1)
    expected[4] *= -8.0;  // (2, 1)
    expected[7] *= -8.0;  // (3, 1)
    EXPECT_EQ(TreeCovariance(survey.Stages(), groups), expected);
  });
}

TEST(NestedDesign, WithAFractionOfOneInEveryStageNothingIsUncertain) {
  ForEachSurvey([](const RandomSurvey& survey) {
    std::vector<DesignStage> stages = survey.Stages();
    for (DesignStage& stage : stages) {
      stage = WithoutReplacement(static_cast<int>(stage.strata.size()),
                                 static_cast<int>(stage.clusters.size()), InclProbType::kInclProbValue, 1.0);
    }
    for (const double element : TreeCovariance(stages, survey.Groups()))
      EXPECT_EQ(element, 0.0);
  });
}

TEST(NestedDesignFormulas, GiveTheSquaredDifferenceOfTwoUnitsDrawnWithReplacement) {
  // Worked by hand: 2/1 ((3-5)^2 + (7-5)^2) = 16, and 2/1 (-2*1 + 2*-1) = -8 with a second variable of 5
  // and 3.
  const Unit sample{{}, {{Rate::kWithReplacement, 0, {{{3.0, 5.0}, {}}, {{7.0, 3.0}, {}}}}}};
  const Matrix covariance = nested_design::Covariance(sample, 2);
  EXPECT_EQ(covariance.At(0, 0), 16.0L);
  EXPECT_EQ(covariance.At(1, 0), -8.0L);
  EXPECT_EQ(covariance.At(1, 1), 4.0L);
}

}  // namespace
}  // namespace design_test
