// The design-based covariance of a vector of totals, straight from the definition of the design.
#pragma once

#include <vector>

#include "reference_columns.h"

namespace reference {

struct DesignVariance {
  Matrix covariance;
  int strata = 0, units = 0;  // of the first stage
};

/// The estimated covariance of the sums of `values` over the sample; row i of `values` belongs to
/// `cases.inDomain[i]`, cases outside the domain count with 0, so that the domain keeps the whole design.
///
/// With replacement or equal probabilities, for each stratum of a stage with n units, sampling fraction f (0
/// with replacement), unit totals t and their own covariances V from the next stage:
/// (1 - f) n / (n - 1) sum (t - mean)(t - mean)' + f sum V (Cochran 1977, Sampling Techniques, 11.21;
/// Saerndal, Swensson and Wretman 1992, 4.3). A single unit shows no variance between units.
/// With unequal probabilities without replacement: the sum over pairs of units of
/// (pi_a pi_b / pi_ab - 1) (t_a - t_b)(t_a - t_b)', plus sum pi V (Yates and Grundy 1953; Sen 1953).
DesignVariance EstimateVariance(const Problem& problem, const AnalysedCases& cases, const Matrix& values);

/// The covariance that a simple random sample of the same size would have: sum over cases of v v' / w,
/// times N / (n - 1), and times 1 - n / N when that sample is without replacement (0 when n >= N). `n` and
/// `N` count all analysed cases and their weights. Values are those above, which carry the weight.
Matrix SimpleRandomVariance(const Problem& problem, const AnalysedCases& cases, const Vector& weights,
                            const Matrix& values);

}  // namespace reference
