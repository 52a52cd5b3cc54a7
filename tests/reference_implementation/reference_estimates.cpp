#include "reference_estimates.h"

#include <algorithm>
#include <boost/math/distributions/students_t.hpp>
#include <cmath>

namespace reference {

namespace {

/// How much the rounding of double precision may matter, against the sum of what cancels.
constexpr Real kRelative = 1e-9L;
constexpr Real kOfInfluences = 1e-11L;
constexpr Real kOfTerms = 1e-12L;
constexpr Real kOfSquares = 1e-12L;

Matrix Spread(const Matrix& part, const std::vector<std::size_t>& places, std::size_t size) {
  Matrix whole(size, size);
  for (std::size_t i = 0; i < places.size(); ++i) {
    for (std::size_t j = 0; j < places.size(); ++j)
      whole(places[i], places[j]) = part(i, j);
  }
  return whole;
}

/// Clears rows and columns whose variance is 0 but for the rounding of extended precision, and notes what
/// that says of the variances.
void ClearZeros(Estimates& estimates, Matrix& v) {
  estimates.isZero = true;
  for (std::size_t i = 0; i < v.Rows(); ++i) {
    if (!estimates.isKept[i]) continue;
    const Real scale = estimates.Scale(estimates.Unit(i));
    const Real share = v(i, i) / (scale * scale);
    if (share < -1e-30L) estimates.isNegative = true;
    if (share > 1e-30L && share < 1e-16L) estimates.isDecided = false;
    if (share > 1e-30L) {
      estimates.isZero = false;
      continue;
    }
    for (std::size_t j = 0; j < v.Rows(); ++j)
      v(i, j) = v(j, i) = 0;
  }
}

}  // namespace

Real Estimates::Scale(const Vector& l) const {
  Real sum = std::sqrt(std::max(0.0L, weight * QuadraticForm(l, modelCovariance)));
  for (std::size_t i = 0; i < influences.Rows(); ++i) {
    Real own = 0;
    for (std::size_t k = 0; k < l.size(); ++k) {
      if (l[k] != 0) own += l[k] * influences(i, k);
    }
    sum += std::abs(own);
  }
  return sum;
}

Vector Estimates::Unit(std::size_t i) const {
  Vector l(b.size(), 0.0L);
  l[i] = 1;
  return l;
}

Value Estimates::Contrast(const Vector& l) const {
  Real sum = 0, terms = 0;
  for (std::size_t k = 0; k < l.size(); ++k) {
    sum += l[k] * b[k];
    terms += std::abs(l[k] * b[k]);
  }
  return Value::Of(sum, loss * (kRelative * std::abs(sum) + kOfInfluences * Scale(l) + kOfTerms * terms));
}

Value Estimates::StandardError(const Vector& l) const {
  Real terms = 0;
  for (std::size_t k = 0; k < l.size(); ++k)
    terms += std::abs(l[k]) * std::sqrt(covariance(k, k));
  const Real variance = QuadraticForm(l, covariance);
  if (terms == 0) return Value::Exactly(0);
  if (variance < 1e-14L * terms * terms) return Value::Undecided();
  const Real error = std::sqrt(variance);
  const Real scale = Scale(l);
  return Value::Of(error, loss * (kRelative * error + kOfSquares * scale * scale / error +
                                  kOfTerms * terms * terms / error));
}

Estimates Estimate(const Problem& problem, const AnalysedCases& cases, const Columns& columns,
                   const Fit& fit) {
  Estimates result;
  result.parameters = columns.parameters.size();
  result.b = fit.estimates;
  result.influences = fit.influences;
  result.modelCovariance = fit.modelCovariance;
  result.weight = cases.domainWeight;
  result.loss = std::max(1.0L, 3e-6L * fit.inflation * fit.information);
  result.isKept.assign(result.b.size(), false);
  std::vector<std::size_t> places;
  for (std::size_t j = 0; j < fit.Equations(); ++j) {
    for (const std::size_t k : fit.kept)
      result.isKept[j * result.parameters + k] = true;
  }
  for (std::size_t i = 0; i < result.b.size(); ++i) {
    if (result.isKept[i]) places.push_back(i);
  }
  Matrix values;
  for (std::size_t i = 0; i < fit.influences.Rows(); ++i) {
    Vector row;
    for (const std::size_t place : places)
      row.push_back(fit.influences(i, place));
    values.Append(row);
  }
  const DesignVariance design = EstimateVariance(problem, cases, values);
  result.strata = design.strata;
  result.units = design.units;
  result.degreesOfFreedom = problem.criteria.degreesOfFreedom.value_or(design.units - design.strata);
  result.covariance = Spread(design.covariance, places, result.b.size());
  // A simple random sample of cases, if the design is one, is its own yardstick.
  const bool isSimple = problem.stages.size() == 1 && design.strata == 1 &&
                        problem.stages[0].estimator == Estimator::kEqualWithoutReplacement &&
                        static_cast<std::size_t>(design.units) == cases.cases.size();
  const Matrix srs =
      isSimple ? design.covariance : SimpleRandomVariance(problem, cases, columns.weights, values);
  result.srsCovariance = Spread(srs, places, result.b.size());
  ClearZeros(result, result.srsCovariance);
  ClearZeros(result, result.covariance);
  return result;
}

Value TPercentile(Real level, Real degreesOfFreedom) {
  if (!(degreesOfFreedom > 0)) return Value::Missing();
  const Real p = (1 + level) / 2;
  const Real t = boost::math::quantile(boost::math::students_t_distribution<Real>(degreesOfFreedom), p);
  return Value::Of(t, kRelative * std::abs(t) + 1e-14L);
}

}  // namespace reference
