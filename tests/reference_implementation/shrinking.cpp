#include "shrinking.h"

#include <algorithm>
#include <cmath>

namespace reference {

namespace {

using Step = std::function<bool(Problem&)>;  // false when there is nothing to change
using Test = std::function<bool(const Problem&)>;

template <class T>
void Keep(std::vector<T>& values, const std::vector<bool>& isLeft) {
  std::vector<T> left;
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (isLeft[i]) left.push_back(std::move(values[i]));
  }
  values = std::move(left);
}

template <class T>
bool Erase(std::vector<T>& values, std::size_t place) {
  if (place >= values.size()) return false;
  values.erase(values.begin() + static_cast<std::ptrdiff_t>(place));
  return true;
}

template <class T>
bool Set(T& to, const T& value) {
  if (to == value) return false;
  to = value;
  return true;
}

/// Calls `visit` with each categorical variable that has codes.
template <class Visit>
void EachCategorical(Problem& problem, const Visit& visit) {
  visit(problem.dependent);
  for (Categorical& variable : problem.factors)
    visit(variable);
  for (Categorical& variable : problem.domain)
    visit(variable);
  for (Stage& stage : problem.stages) {
    for (Categorical& variable : stage.strata)
      visit(variable);
    for (Categorical& variable : stage.clusters)
      visit(variable);
  }
}

/// Drops runs of cases, half of them first, then ever shorter ones.
bool DropCases(Problem& problem, const Test& isShown) {
  bool hasChanged = false;
  for (std::size_t run = problem.cases / 2; run > 0; run /= 2) {
    for (std::size_t first = 0; first < problem.cases;) {
      std::vector<bool> isLeft(problem.cases, true);
      for (std::size_t c = first; c < std::min(first + run, problem.cases); ++c)
        isLeft[c] = false;
      Problem smaller = WithCases(problem, isLeft);
      if (smaller.cases > 0 && isShown(smaller)) {
        problem = std::move(smaller);
        hasChanged = true;
      } else {
        first += run;
      }
    }
  }
  return hasChanged;
}

bool DropEffect(Problem& problem, std::size_t place) {
  if (!Erase(problem.effects, place)) return false;
  if (problem.effects.empty()) problem.hasIntercept = true;
  const auto renumber = [place](HypothesisRow& row) {
    for (std::size_t t = row.effects.size(); t-- > 0;) {
      if (row.effects[t] == place) {
        Erase(row.effects, t);
        Erase(row.coefficients, t);
      } else if (row.effects[t] > place) {
        --row.effects[t];
      }
    }
  };
  for (Hypothesis& hypothesis : problem.hypotheses) {
    for (HypothesisRow& row : hypothesis.rows)
      renumber(row);
  }
  // What is left of a hypothesis must still say something.
  std::erase_if(problem.hypotheses, [](const Hypothesis& hypothesis) {
    return std::any_of(hypothesis.rows.begin(), hypothesis.rows.end(),
                       [](const HypothesisRow& row) { return row.isAll || row.coefficients.empty(); });
  });
  problem.oddsRatios.clear();
  return true;
}

bool DropFactor(Problem& problem, std::size_t place) {
  const auto uses = [place](const Effect& effect) {
    return std::find(effect.factors.begin(), effect.factors.end(), place) != effect.factors.end();
  };
  if (std::any_of(problem.effects.begin(), problem.effects.end(), uses)) return false;
  if (!problem.oddsRatios.empty() || !Erase(problem.factors, place)) return false;
  for (Effect& effect : problem.effects) {
    for (std::size_t& factor : effect.factors)
      factor -= factor > place ? 1 : 0;
  }
  return true;
}

bool DropCovariate(Problem& problem, std::size_t place) {
  for (const Effect& effect : problem.effects) {
    if (place < effect.powers.size() && effect.powers[place] > 0) return false;
  }
  if (!problem.oddsRatios.empty() || !Erase(problem.covariates, place)) return false;
  for (Effect& effect : problem.effects)
    Erase(effect.powers, place);
  return true;
}

bool DropLastStage(Problem& problem) {
  if (problem.stages.size() < 2) return false;
  problem.stages.pop_back();
  return true;
}

/// Draws the units of all stages with replacement, which needs no sizes.
bool DropSizes(Problem& problem) {
  bool hasChanged = !problem.joint.empty();
  problem.joint.clear();
  for (Stage& stage : problem.stages)
    hasChanged = Set(stage.estimator, Estimator::kWithReplacement) || hasChanged;
  return hasChanged;
}

bool RoundNumbers(Numeric& variable, double unit) {
  bool hasChanged = false;
  for (double& value : variable.values) {
    if (!std::isnan(value)) hasChanged = Set(value, std::round(value / unit) * unit) || hasChanged;
  }
  return hasChanged;
}

bool SetWeightsToOne(Problem& problem) {
  bool hasChanged = false;
  for (double& weight : problem.weight.values)
    hasChanged = Set(weight, 1.0) || hasChanged;
  return hasChanged;
}

bool ForgetCriteria(Problem& problem) {
  Criteria& criteria = problem.criteria;
  bool hasChanged = Set(criteria.level, 95.0);
  hasChanged = Set(criteria.maxIterations, 100) || hasChanged;
  hasChanged = Set(criteria.degreesOfFreedom, std::optional<double>()) || hasChanged;
  hasChanged = Set(problem.threads, 1) || hasChanged;
  return Set(problem.isSrsWithReplacement, true) || hasChanged;
}

std::vector<Step> SmallSteps(const Problem& problem) {
  std::vector<Step> steps;
  for (std::size_t i = problem.hypotheses.size(); i-- > 0;) {
    steps.emplace_back([i](Problem& p) { return Erase(p.hypotheses, i); });
    for (std::size_t row = problem.hypotheses[i].rows.size(); row-- > 0;) {
      steps.emplace_back([i, row](Problem& p) {
        if (i >= p.hypotheses.size() || p.hypotheses[i].rows.size() < 2) return false;
        Erase(p.hypotheses[i].values, row);
        return Erase(p.hypotheses[i].rows, row);
      });
    }
  }
  for (std::size_t i = problem.oddsRatios.size(); i-- > 0;)
    steps.emplace_back([i](Problem& p) { return Erase(p.oddsRatios, i); });
  for (std::size_t i = problem.effects.size(); i-- > 0;)
    steps.emplace_back([i](Problem& p) { return DropEffect(p, i); });
  for (std::size_t i = problem.factors.size(); i-- > 0;)
    steps.emplace_back([i](Problem& p) { return DropFactor(p, i); });
  for (std::size_t i = problem.covariates.size(); i-- > 0;) {
    steps.emplace_back([i](Problem& p) { return DropCovariate(p, i); });
    steps.emplace_back(
        [i](Problem& p) { return i < p.covariates.size() && RoundNumbers(p.covariates[i], 1); });
    steps.emplace_back(
        [i](Problem& p) { return i < p.covariates.size() && RoundNumbers(p.covariates[i], 0x1.0p-6); });
  }
  steps.emplace_back([](Problem& p) { return Erase(p.domain, 0); });
  steps.emplace_back(DropLastStage);
  steps.emplace_back(DropSizes);
  for (std::size_t s = problem.stages.size(); s-- > 0;) {
    steps.emplace_back([s](Problem& p) {
      if (s >= p.stages.size() || p.stages[s].strata.empty() || !p.joint.empty()) return false;
      p.stages[s].strata.pop_back();
      return true;
    });
  }
  steps.emplace_back([](Problem& p) {
    if (p.stages.size() > 1 || p.stages[0].clusters.empty() || !p.joint.empty()) return false;
    p.stages[0].clusters.clear();
    return true;
  });
  steps.emplace_back(SetWeightsToOne);
  steps.emplace_back([](Problem& p) { return RoundNumbers(p.weight, 1); });
  steps.emplace_back(ForgetCriteria);
  steps.emplace_back([](Problem& p) { return Set(p.testType, TestType::kF); });
  steps.emplace_back([](Problem& p) { return Set(p.adjustment, Adjustment::kNone); });
  steps.emplace_back([](Problem& p) { return Set(p.reference.kind, Extreme::kHigh); });
  return steps;
}

}  // namespace

Problem WithCases(const Problem& problem, const std::vector<bool>& isLeft) {
  Problem result = problem;
  EachCategorical(result, [&](Categorical& variable) { Keep(variable.codes, isLeft); });
  for (Numeric& covariate : result.covariates)
    Keep(covariate.values, isLeft);
  Keep(result.weight.values, isLeft);
  for (Stage& stage : result.stages) {
    if (!stage.size.values.empty()) Keep(stage.size.values, isLeft);
  }
  result.cases = static_cast<std::size_t>(std::count(isLeft.begin(), isLeft.end(), true));
  const auto isIn = [&](const JointStratum& stratum, std::size_t c) {
    for (std::size_t v = 0; v < stratum.strata.size(); ++v) {
      if (result.stages[0].strata[v].codes[c] != stratum.strata[v]) return false;
    }
    return true;
  };
  std::erase_if(result.joint, [&](const JointStratum& stratum) {
    for (std::size_t c = 0; c < result.cases; ++c) {
      if (isIn(stratum, c)) return false;
    }
    return true;
  });
  return result;
}

Problem Shrink(Problem problem, const std::function<bool(const Problem&)>& isShown) {
  for (bool hasChanged = true; hasChanged;) {
    hasChanged = DropCases(problem, isShown);
    for (const Step& step : SmallSteps(problem)) {
      Problem smaller = problem;
      if (!step(smaller) || !isShown(smaller)) continue;
      problem = std::move(smaller);
      hasChanged = true;
    }
  }
  return problem;
}

}  // namespace reference
