// A small survey for tests of the component: one record layout, cases in it, and settings over it.
#pragma once

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "component/input/comp_settings.h"
#include "component/numerics/missing_value.h"
#include "memory_record_iterator.h"

namespace tavo_test {

inline constexpr double kMissing = MCCommonMath::MCMV::gMissingValue;

/// The record columns.
enum Column : int {
  kStratum,
  kCluster,
  kSecondCluster,
  kWeight,
  kY,
  kA,
  kB,
  kX,
  kZ,
  kDomain,
  kSize,
  kSecondSize
};

struct Case {
  double stratum = 1;
  double cluster = 1;
  double secondCluster = 1;
  double weight = 1;
  double y = 1;
  double a = 1;
  double b = 1;
  double x = 0;
  double z = 0;
  double domain = 1;
  double size = kMissing;
  double secondSize = kMissing;

  std::vector<double> Row() const {
    return {stratum, cluster, secondCluster, weight, y, a, b, x, z, domain, size, secondSize};
  }
};

inline Rows RowsOf(const std::vector<Case>& cases) {
  Rows rows;
  for (const Case& each : cases)
    rows.push_back(each.Row());
  return rows;
}

/// Settings over that layout: weight and dependent are set. Factors come before covariates, and both before
/// effects.
class SurveySettings {
 public:
  explicit SurveySettings(int categories = 2, int reference = 0) {
    fSettings.SetWeightVar(kWeight);
    fSettings.SetDependent(kY, categories, reference);
  }

  tavo::TavoCompSettings& Get() { return fSettings; }
  const tavo::TavoCompSettings& Get() const { return fSettings; }

  SurveySettings& Stage(std::vector<int> strata, std::vector<int> clusters,
                        tavo::StageEstimator estimator = tavo::StageEstimator::kWithReplacement,
                        int number = 1) {
    for (const int column : strata) {
      fSettings.AddDesignCategorical(column, tavo::DesignVariableKind::kStrata, number);
    }
    for (const int column : clusters) {
      fSettings.AddDesignCategorical(column, tavo::DesignVariableKind::kCluster, number);
    }
    fSettings.SetStageEstimator(estimator, number);
    return *this;
  }
  SurveySettings& Factor(int column, int levels) {
    fSettings.AddFactor(column, levels);
    fPredictors->push_back(column);
    return *this;
  }
  SurveySettings& Covariate(int column) {
    fSettings.AddCovariate(column);
    fPredictors->push_back(column);
    return *this;
  }
  SurveySettings& Effect(const std::vector<int>& factors, const std::vector<int>& covariates = {}) {
    tavo::OrvModelEffect effect(static_cast<int>(fSettings.Factors().size()),
                                static_cast<int>(fSettings.Covariates().size()), fPredictors.get());
    for (const int column : factors)
      effect.AddFactor(column, false);
    for (const int column : covariates)
      effect.AddCovariate(column);
    fSettings.AddEffect(effect);
    return *this;
  }

 private:
  std::unique_ptr<std::vector<int>> fPredictors = std::make_unique<std::vector<int>>();
  tavo::TavoCompSettings fSettings;
};

/// Numbers that only look random, the same on every machine (Park and Miller 1988).
class Dice {
 public:
  explicit Dice(std::int64_t seed = 20) : fState(seed) {}
  /// Uniform in (0, 1).
  double Uniform() {
    fState = fState * 48271 % 2147483647;
    return static_cast<double>(fState) / 2147483647.0;
  }
  /// Uniform in 1 … sides.
  int Throw(int sides) { return 1 + static_cast<int>(Uniform() * sides); }

 private:
  std::int64_t fState;
};

/// A survey of `count` cases: 4 strata of 5 clusters, factors of 3 and 2 levels, 2 covariates, response 1 …
/// categories that depends on all of them, weights from 1 to 4.
inline std::vector<Case> SampleSurvey(int count, int categories = 2, std::int64_t seed = 20) {
  Dice dice(seed);
  std::vector<Case> cases;
  for (int i = 0; i < count; ++i) {
    Case each;
    each.stratum = dice.Throw(4);
    each.cluster = dice.Throw(5);
    each.weight = 1 + 3 * dice.Uniform();
    each.a = dice.Throw(3);
    each.b = dice.Throw(2);
    each.x = 10 * dice.Uniform() - 3 + each.cluster / 2;
    each.z = dice.Uniform() + dice.Uniform();
    each.domain = dice.Throw(2);
    const double lean = 0.3 * each.x - 0.5 * each.a + 0.2 * each.stratum + 0.4 * each.b * each.z;
    const double noise = 6 * (dice.Uniform() + dice.Uniform() - 1);
    const int level = 1 + static_cast<int>((lean + noise + 3) / 6 * categories);
    each.y = level < 1 ? 1 : (level > categories ? categories : level);
    cases.push_back(each);
  }
  return cases;
}

}  // namespace tavo_test
