// A fitted model with its covariances: what tests, intervals and odds ratios are made from.
#pragma once

#include "reference_fit.h"
#include "reference_value.h"
#include "reference_variance.h"

namespace reference {

struct Estimates {
  std::size_t parameters = 0;  // of one equation
  std::vector<bool> isKept;    // by parameter of all equations
  Vector b;
  Matrix covariance, srsCovariance;  // 0 at redundant parameters
  Matrix influences;                 // of the cases of the domain
  Matrix modelCovariance;            // the inverse information
  Real weight = 0;                   // of the domain
  Real degreesOfFreedom = 0;
  int strata = 0, units = 0;
  /// How much nearly redundant columns enlarge rounding errors: above 1 when they cost more digits than the
  /// tolerances have to spare.
  Real loss = 1;
  bool isNegative = false;  // a variance came out below 0, which unequal probabilities allow
  bool isZero = false;      // no parameter has a variance
  bool isDecided = true;    // no variance is so small that rounding decides whether it is 0

  /// l'b, and how far rounding may carry it.
  Value Contrast(const Vector& l) const;
  /// The standard error of l'b; exactly 0 when nothing in it varies.
  Value StandardError(const Vector& l) const;
  Vector Unit(std::size_t i) const;
  /// The scale on which l'b is known: what the cases' influences on it sum to without their signs, and what
  /// they would if the model were true.
  Real Scale(const Vector& l) const;
};

/// Covariance of the estimates from the influences of the cases.
Estimates Estimate(const Problem& problem, const AnalysedCases& cases, const Columns& columns,
                   const Fit& fit);

/// Quantile of Student's t at (1 + level) / 2; missing without degrees of freedom.
Value TPercentile(Real level, Real degreesOfFreedom);

}  // namespace reference
