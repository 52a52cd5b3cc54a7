// Models with any effects on a small survey, and what theory says of the hypotheses of their effects.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <utility>
#include <vector>

#include "component/inference/inference.h"
#include "component/run/algorithm.h"
#include "component/run/output_stats.h"
#include "memory_record_iterator.h"

namespace effect_bench {

using MCCommonMath::MCRectMatrix;

struct Case {
  int response = 1;
  std::vector<int> factors;
  std::vector<double> covariates;
  double weight = 1;
  int stratum = 1;
  int cluster = 1;
};

/// Positions among the factors and covariates of the cases. `nested`: the last factor is nested in the
/// others.
struct Effect {
  std::vector<int> factors;
  std::vector<int> covariates;
  bool nested = false;
};

struct Options {
  int categories = 2;
  bool hasIntercept = true;
  bool needsSRS = true;
  tavo::TestType type = tavo::TestType::WaldF;
  tavo::PAdjustMethod adjustment = tavo::PAdjustMethod::LeastSignificanceDifference;
  host::MCStopProcessor* stop = nullptr;
};

struct EffectTest {
  tavo::OrvStatus status;
  MCRectMatrix L;
  std::vector<int> columns;
  tavo::OrvTestStats overall;
};

/// A finished run. Columns: response, weight, stratum, cluster, factors, covariates.
class FittedModel {
 public:
  FittedModel(const std::vector<Case>& cases, const std::vector<Effect>& effects,
              const Options& options = {}) {
    const int factors = static_cast<int>(cases.front().factors.size());
    const int covariates = static_cast<int>(cases.front().covariates.size());
    fSettings.SetDependent(0, options.categories, 0);
    fSettings.SetWeightVar(1);
    fSettings.SetIntercept(options.hasIntercept);
    fSettings.SetNeedSRS(options.needsSRS);
    fSettings.SetParamCriterion(1e-12);
    fSettings.SetTestType(options.type);
    fSettings.SetStopProcessor(options.stop);
    fSettings.SetAdjustment(options.adjustment);
    fSettings.AddDesignCategorical(2, tavo::DesignVariableKind::kStrata, 1);
    fSettings.AddDesignCategorical(3, tavo::DesignVariableKind::kCluster, 1);
    fSettings.SetStageEstimator(tavo::StageEstimator::kWithReplacement, 1);
    for (int f = 0; f < factors; ++f)
      fSettings.AddFactor(4 + f, LevelCount(cases, f));
    for (int c = 0; c < covariates; ++c)
      fSettings.AddCovariate(4 + factors + c);
    for (int k = 0; k < factors + covariates; ++k)
      fPredictors.push_back(4 + k);
    for (const Effect& each : effects) {
      tavo::OrvModelEffect effect(factors, covariates, &fPredictors);
      for (std::size_t k = 0; k < each.factors.size(); ++k)
        effect.AddFactor(4 + each.factors[k], each.nested && k + 1 == each.factors.size());
      for (const int c : each.covariates)
        effect.AddCovariate(4 + factors + c);
      fSettings.AddEffect(effect);
    }
    fpAlgorithm = std::make_unique<tavo::TavoAlgorithm>(fSettings);
    tavo_test::Rows rows;
    for (const Case& c : cases)
      rows.push_back(RowOf(c));
    tavo_test::MemoryRecordIterator iterator(rows);
    fStatus = fpAlgorithm->BuildModel(iterator);
    fpOutput = std::make_unique<tavo::TavoOutputStats>(*fpAlgorithm);
  }

  FittedModel(const FittedModel&) = delete;
  FittedModel& operator=(const FittedModel&) = delete;

  const tavo::TavoOutputStats& Output() const { return *fpOutput; }
  const tavo::TavoModel& Model() const { return fpAlgorithm->Model(); }
  const tavo::TavoInference& Inference() const { return *fpAlgorithm->Inference(); }
  const tavo::TavoCompSettings& Settings() const { return fSettings; }
  bool IsBuilt() const { return fpAlgorithm->IsModelBuilt(); }
  const tavo::OrvStatus& Status() const { return fStatus; }

  EffectTest Test(int effect) const {
    EffectTest test;
    test.status = fpOutput->TestEffect(effect, test.L, test.columns, test.overall);
    return test;
  }

 private:
  static int LevelCount(const std::vector<Case>& cases, int factor) {
    int highest = 2;
    for (const Case& c : cases)
      highest = std::max(highest, c.factors[static_cast<std::size_t>(factor)]);
    return highest;
  }
  static std::vector<double> RowOf(const Case& c) {
    std::vector<double> row{static_cast<double>(c.response), c.weight, static_cast<double>(c.stratum),
                            static_cast<double>(c.cluster)};
    row.insert(row.end(), c.factors.begin(), c.factors.end());
    row.insert(row.end(), c.covariates.begin(), c.covariates.end());
    return row;
  }

  std::vector<int> fPredictors;
  tavo::TavoCompSettings fSettings;
  std::unique_ptr<tavo::TavoAlgorithm> fpAlgorithm;
  std::unique_ptr<tavo::TavoOutputStats> fpOutput;
  tavo::OrvStatus fStatus;
};

/// Numbers that only look random, the same on every machine (Park and Miller 1988).
class Dice {
 public:
  explicit Dice(std::int64_t seed) : fState(seed) {}
  double Uniform() {
    fState = fState * 48271 % 2147483647;
    return static_cast<double>(fState) / 2147483647.0;
  }
  int Throw(int sides) { return 1 + static_cast<int>(Uniform() * sides); }

 private:
  std::int64_t fState;
};

/// 4 strata of 6 clusters, factors with the given numbers of levels, covariates about 10, unequal weights.
/// Every predictor has to do with the response. `isFilled` says which cells of the factors may occur.
inline std::vector<Case> Survey(
    int count, const std::vector<int>& levels, int covariates, int categories = 2, std::int64_t seed = 7,
    const std::function<bool(const std::vector<int>&)>& isFilled = [](const std::vector<int>&) {
      return true;
    }) {
  Dice dice(seed);
  std::vector<Case> cases;
  while (static_cast<int>(cases.size()) < count) {
    Case c;
    c.stratum = dice.Throw(4);
    c.cluster = dice.Throw(6);
    c.weight = 1 + 4 * dice.Uniform();
    double lean = 0.1 * (c.cluster - 3.5);
    for (const int n : levels) {
      // Cells are of unequal size, but none is so small that it has one response only.
      c.factors.push_back(dice.Uniform() < 0.2 ? 1 : dice.Throw(n));
      lean += 0.3 * (c.factors.back() - (n + 1) / 2.0);
    }
    for (int k = 0; k < covariates; ++k) {
      c.covariates.push_back(10 + 4 * (dice.Uniform() + dice.Uniform()) + 0.3 * c.stratum);
      lean += 0.15 * (c.covariates.back() - 14.75);
    }
    const double noise = 4 * (dice.Uniform() + dice.Uniform() - 1);
    const int level = 1 + static_cast<int>((lean + noise + 2) / 4.0 * categories);
    c.response = std::max(1, std::min(categories, level));
    if (isFilled(c.factors)) cases.push_back(c);
  }
  return cases;
}

// ---- theory, on dense matrices ----

using Real = long double;
using Rows = std::vector<std::vector<Real>>;

/// Reduced row echelon form with the largest pivot of each column; rows that vanish are dropped. The pivot
/// columns are returned.
inline std::vector<std::size_t> Reduce(Rows& a) {
  constexpr Real kZero = 1e-9L;
  std::vector<std::size_t> pivots;
  std::size_t rank = 0;
  const std::size_t columns = a.empty() ? 0 : a.front().size();
  for (std::size_t k = 0; k < columns && rank < a.size(); ++k) {
    std::size_t best = rank;
    for (std::size_t i = rank; i < a.size(); ++i) {
      if (std::abs(a[i][k]) > std::abs(a[best][k])) best = i;
    }
    if (std::abs(a[best][k]) < kZero) continue;
    std::swap(a[rank], a[best]);
    const Real pivot = a[rank][k];
    for (Real& element : a[rank])
      element /= pivot;
    for (std::size_t i = 0; i < a.size(); ++i) {
      const Real factor = a[i][k];
      if (i == rank || factor == 0) continue;
      for (std::size_t j = 0; j < columns; ++j)
        a[i][j] -= factor * a[rank][j];
    }
    pivots.push_back(k);
    ++rank;
  }
  a.resize(rank);
  return pivots;
}

inline std::size_t Rank(Rows a) {
  return Reduce(a).size();
}

/// Vectors v with a v = 0, one per column without pivot.
inline Rows NullSpace(Rows a, std::size_t columns) {
  const std::vector<std::size_t> pivots = Reduce(a);
  const std::set<std::size_t> bound(pivots.begin(), pivots.end());
  Rows space;
  for (std::size_t free = 0; free < columns; ++free) {
    if (bound.count(free) > 0) continue;
    std::vector<Real> v(columns, 0);
    v[free] = 1;
    for (std::size_t i = 0; i < pivots.size(); ++i)
      v[pivots[i]] = -a[i][free];
    space.push_back(v);
  }
  return space;
}

inline Real Dot(const std::vector<Real>& a, const std::vector<Real>& b) {
  Real sum = 0;
  for (std::size_t i = 0; i < a.size(); ++i)
    sum += a[i] * b[i];
  return sum;
}

/// Distinct design rows of one logit, in the units of the data; covariates are divided by 10 to have one
/// size.
inline Rows DesignRows(const FittedModel& run, const std::vector<Case>& cases) {
  std::set<std::vector<Real>> distinct;
  for (const Case& c : cases) {
    std::vector<Real> row;
    const int factors = static_cast<int>(c.factors.size());
    for (const tavo::OrvRegrParameter& parameter : run.Model().BasicParameters()) {
      Real value = 1;
      for (std::size_t f = 0; f < parameter.factors.size(); ++f) {
        const auto position = static_cast<std::size_t>(parameter.factors[f] - 4);
        if (c.factors[position] != parameter.levels[f]) value = 0;
      }
      for (std::size_t k = 0; k < parameter.covariates.size(); ++k) {
        const auto position = static_cast<std::size_t>(parameter.covariates[k] - 4 - factors);
        for (int power = 0; power < parameter.multiplicities[k]; ++power)
          value *= c.covariates[position];
      }
      row.push_back(value);
    }
    distinct.insert(row);
  }
  return {distinct.begin(), distinct.end()};
}

/// The columns of `a` whose mark is set.
inline Rows Columns(const Rows& a, const std::vector<bool>& marks) {
  Rows part;
  for (const auto& row : a) {
    std::vector<Real> kept;
    for (std::size_t j = 0; j < marks.size(); ++j) {
      if (marks[j]) kept.push_back(row[j]);
    }
    part.push_back(kept);
  }
  return part;
}

}  // namespace effect_bench
