#include "reference_variance.h"

#include <algorithm>
#include <map>

namespace reference {

namespace {

/// An estimated total and its covariance.
struct Total {
  Vector sum;
  Matrix covariance;
};

std::vector<int> Key(const std::vector<Categorical>& variables, std::size_t c) {
  std::vector<int> key;
  for (const Categorical& variable : variables)
    key.push_back(variable.codes[c]);
  return key;
}

using Positions = std::vector<std::size_t>;  // in `AnalysedCases::cases`

void AddOuter(Matrix& to, const Vector& x, Real factor) {
  for (std::size_t i = 0; i < x.size(); ++i) {
    for (std::size_t j = 0; j < x.size(); ++j)
      to(i, j) += factor * x[i] * x[j];
  }
}

void Add(Matrix& to, const Matrix& what, Real factor) {
  for (std::size_t i = 0; i < to.Rows(); ++i) {
    for (std::size_t j = 0; j < to.Columns(); ++j)
      to(i, j) += factor * what(i, j);
  }
}

class Design {
 public:
  Design(const Problem& problem, const AnalysedCases& cases, const Matrix& values)
      : fProblem(problem), fCases(cases), fVariables(values.Columns()) {
    std::size_t row = 0;
    for (const bool isInside : cases.isInDomain)
      fValues.push_back(isInside ? values.Row(row++) : Vector(fVariables, 0.0L));
  }

  /// The total over some cases, which one unit of the stage above holds, and its covariance from this stage
  /// on.
  Total Estimate(const Positions& cases, std::size_t stage) const {
    Total result{Vector(fVariables, 0.0L), Matrix(fVariables, fVariables)};
    if (stage == fProblem.stages.size()) {
      for (const std::size_t i : cases)
        AddSum(result, fValues[i]);
      return result;
    }
    for (const auto& [key, stratum] : Split(cases, fProblem.stages[stage].strata)) {
      const Total part = EstimateStratum(stratum, stage, key);
      AddSum(result, part.sum);
      Add(result.covariance, part.covariance, 1);
    }
    return result;
  }

  using Groups = std::map<std::vector<int>, Positions>;
  Groups Split(const Positions& cases, const std::vector<Categorical>& variables) const {
    Groups groups;
    for (const std::size_t i : cases)
      groups[Key(variables, fCases.cases[i])].push_back(i);
    return groups;
  }
  /// The units of a stratum: groups of cases by the cluster variables, or the cases themselves.
  Groups Units(const Positions& stratum, const Stage& stage) const {
    if (!stage.clusters.empty()) return Split(stratum, stage.clusters);
    Groups units;
    for (const std::size_t i : stratum)
      units[{static_cast<int>(i)}] = {i};
    return units;
  }

 private:
  static void AddSum(Total& to, const Vector& x) {
    for (std::size_t k = 0; k < x.size(); ++k)
      to.sum[k] += x[k];
  }

  Real Fraction(const Stage& stage, const Positions& stratum, std::size_t units) const {
    if (stage.estimator != Estimator::kEqualWithoutReplacement) return 0;
    const auto n = static_cast<Real>(units);
    const std::size_t first = fCases.cases[stratum.front()];
    switch (stage.sizeKind) {
      case SizeKind::kRateValue:
        return stage.sizeValue;
      case SizeKind::kRateVariable:
        return stage.size.values[first];
      case SizeKind::kCountValue:
        return n / stage.sizeValue;
      case SizeKind::kCountVariable:
        return n / stage.size.values[first];
      case SizeKind::kNone:
        break;
    }
    return 0;
  }

  Total EstimateStratum(const Positions& stratum, std::size_t stageNumber,
                        const std::vector<int>& key) const {
    const Stage& stage = fProblem.stages[stageNumber];
    std::vector<Total> units;
    std::vector<std::vector<int>> keys;
    for (const auto& [unitKey, unit] : Units(stratum, stage)) {
      units.push_back(Estimate(unit, stageNumber + 1));
      keys.push_back(unitKey);
    }
    Total result{Vector(fVariables, 0.0L), Matrix(fVariables, fVariables)};
    for (const Total& unit : units)
      AddSum(result, unit.sum);
    if (stage.estimator == Estimator::kUnequalWithoutReplacement) {
      AddUnequal(result.covariance, units, keys, key);
      return result;
    }
    const Real n = static_cast<Real>(units.size());
    const Real f = Fraction(stage, stratum, units.size());
    for (const Total& unit : units) {
      Add(result.covariance, unit.covariance, f);
      if (units.size() < 2) continue;
      Vector deviation = unit.sum;
      for (std::size_t k = 0; k < fVariables; ++k)
        deviation[k] -= result.sum[k] / n;
      AddOuter(result.covariance, deviation, (1 - f) * n / (n - 1));
    }
    return result;
  }

  void AddUnequal(Matrix& covariance, const std::vector<Total>& units,
                  const std::vector<std::vector<int>>& keys, const std::vector<int>& stratum) const {
    const JointStratum& joint = *std::find_if(fProblem.joint.begin(), fProblem.joint.end(),
                                              [&](const JointStratum& s) { return s.strata == stratum; });
    std::vector<std::size_t> rows;  // of the probabilities, by unit
    for (const std::vector<int>& key : keys) {
      const auto found = std::find(joint.units.begin(), joint.units.end(), key);
      rows.push_back(static_cast<std::size_t>(found - joint.units.begin()));
    }
    const auto pi = [&](std::size_t a, std::size_t b) {  // the element below the diagonal
      return static_cast<Real>(joint.probabilities[std::max(rows[a], rows[b])][std::min(rows[a], rows[b])]);
    };
    for (std::size_t a = 0; a < units.size(); ++a) {
      Add(covariance, units[a].covariance, pi(a, a));
      for (std::size_t b = 0; b < a; ++b) {
        Vector difference = units[a].sum;
        for (std::size_t k = 0; k < fVariables; ++k)
          difference[k] -= units[b].sum[k];
        AddOuter(covariance, difference, pi(a, a) * pi(b, b) / pi(a, b) - 1);
      }
    }
  }

  const Problem& fProblem;
  const AnalysedCases& fCases;
  std::size_t fVariables;
  std::vector<Vector> fValues;  // by position in `AnalysedCases::cases`
};

}  // namespace

DesignVariance EstimateVariance(const Problem& problem, const AnalysedCases& cases, const Matrix& values) {
  const Design design(problem, cases, values);
  Positions all(cases.cases.size());
  for (std::size_t i = 0; i < all.size(); ++i)
    all[i] = i;
  DesignVariance result;
  result.covariance = design.Estimate(all, 0).covariance;
  for (const auto& [key, stratum] : design.Split(all, problem.stages[0].strata)) {
    ++result.strata;
    result.units += static_cast<int>(design.Units(stratum, problem.stages[0]).size());
  }
  return result;
}

Matrix SimpleRandomVariance(const Problem& problem, const AnalysedCases& cases, const Vector& weights,
                            const Matrix& values) {
  Matrix result(values.Columns(), values.Columns());
  const auto n = static_cast<Real>(cases.cases.size());
  Real factor = n > 1 ? cases.totalWeight / (n - 1) : 0;
  if (!problem.isSrsWithReplacement) factor *= cases.totalWeight > n ? 1 - n / cases.totalWeight : 0;
  for (std::size_t i = 0; i < values.Rows(); ++i)
    AddOuter(result, values.Row(i), factor / weights[i]);
  return result;
}

}  // namespace reference
