#include "reference_odds_ratios.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>

namespace reference {

Value Exponential(const Value& value) {
  if (value.isMissing || value.IsUndecided()) return value;
  const Real limit = std::log(static_cast<Real>(std::numeric_limits<double>::max()));
  if (std::abs(value.number - limit) <= value.tolerance) return Value::Undecided();
  if (value.number > limit) return Value::Missing();
  const Real result = std::exp(value.number);
  return Value::Of(result, result * (std::expm1(value.tolerance) + 1e-13L) + 1e-300L);
}

std::vector<Value> CovariateMeans(const Problem& problem, const AnalysedCases& cases) {
  std::vector<Value> means;
  for (const Numeric& covariate : problem.covariates) {
    Real sum = 0, absolute = 0;
    for (const std::size_t c : cases.inDomain) {
      sum += problem.weight.values[c] * static_cast<Real>(covariate.values[c]);
      absolute += std::abs(problem.weight.values[c] * static_cast<Real>(covariate.values[c]));
    }
    means.push_back(Value::Of(sum / cases.domainWeight, 1e-13L * absolute / cases.domainWeight));
  }
  return means;
}

namespace {

/// The values at which predictors are held.
struct Held {
  std::vector<int> factors;
  Vector covariates;
};

Held HeldValues(const Problem& problem, const AnalysedCases& cases, const OddsRatioRequest& request) {
  Held held;
  for (std::size_t f = 0; f < problem.factors.size(); ++f) {
    CategoryRequest category;
    for (const auto& control : request.factorControls) {
      if (control.factor == f) category = control.category;
    }
    const CategoryCounts counts = CountCategories(problem, cases, problem.factors[f]);
    held.factors.push_back(counts.codes[PositionOf(counts, category)]);
  }
  for (const Value& mean : CovariateMeans(problem, cases))
    held.covariates.push_back(mean.number);
  for (const auto& control : request.covariateControls) {
    if (control.value) held.covariates[control.covariate] = *control.value;
  }
  return held;
}

std::string PrintedChange(double change) {
  char text[32];
  std::snprintf(text, sizeof text, "%.3f", change);
  return text;
}

}  // namespace

std::vector<OddsRatio> EstimateOddsRatios(const Problem& problem, const AnalysedCases& cases,
                                          const Columns& columns, const Fit& fit, const Estimates& estimates,
                                          const OddsRatioRequest& request) {
  const Held held = HeldValues(problem, cases, request);
  const Value percentile = TPercentile(problem.criteria.level / 100, estimates.degreesOfFreedom);
  std::vector<OddsRatio> result;
  const auto compare = [&](std::size_t logit, const Held& changed, const Held& fixed) {
    const Vector to = DesignRow(columns, changed.factors, changed.covariates);
    const Vector from = DesignRow(columns, fixed.factors, fixed.covariates);
    Vector x(estimates.b.size(), 0.0L);
    Real terms = 0;  // products of covariates cancel in the difference
    for (std::size_t k = 0; k < to.size(); ++k) {
      const std::size_t place = logit * estimates.parameters + k;
      x[place] = to[k] - from[k];
      terms += (std::abs(to[k]) + std::abs(from[k])) *
               (std::abs(estimates.b[place]) + std::sqrt(estimates.covariance(place, place)));
    }
    OddsRatio ratio;
    ratio.logit = logit;
    Value g = estimates.Contrast(x);
    Value se = estimates.StandardError(x);
    g.tolerance += 1e-13L * terms;
    if (!se.IsUndecided() && se.number > 0) se.tolerance += 1e-13L * terms;
    ratio.ratio = Exponential(g);
    if (se.IsUndecided()) {
      ratio.lower = ratio.upper = Value::Undecided();
    } else if (!percentile.isMissing) {
      const Real c = percentile.number;
      const Real off = g.tolerance + std::abs(c) * se.tolerance + percentile.tolerance * se.number;
      ratio.lower = Exponential(Value::Of(g.number - c * se.number, off));
      ratio.upper = Exponential(Value::Of(g.number + c * se.number, off));
    }
    return ratio;
  };
  for (std::size_t logit = 0; logit < fit.Equations(); ++logit) {
    for (const auto& compared : request.factors) {
      const Categorical& variable = problem.factors[compared.factor];
      const CategoryCounts counts = CountCategories(problem, cases, variable);
      const int reference = counts.codes[PositionOf(counts, compared.reference)];
      for (const int code : counts.codes) {
        if (code == reference) continue;
        Held changed = held, fixed = held;
        changed.factors[compared.factor] = code;
        fixed.factors[compared.factor] = reference;
        OddsRatio ratio = compare(logit, changed, fixed);
        ratio.variable = variable.name;
        ratio.comparison = variable.labels[static_cast<std::size_t>(code)] + " vs. " +
                           variable.labels[static_cast<std::size_t>(reference)];
        result.push_back(ratio);
      }
    }
    if (!request.factors.empty()) continue;
    for (const auto& compared : request.covariates) {
      for (const double change : compared.changes) {
        Held changed = held;
        changed.covariates[compared.covariate] += change;
        OddsRatio ratio = compare(logit, changed, held);
        ratio.variable = problem.covariates[compared.covariate].name;
        ratio.comparison = PrintedChange(change);
        result.push_back(ratio);
      }
    }
  }
  return result;
}

}  // namespace reference
