// Wald tests of linear hypotheses about the estimates.
#pragma once

#include "reference_estimates.h"

namespace reference {

/// What a test says; `standardError` and `estimate` of single rows only.
struct TestResult {
  Value estimate, standardError;
  Value df1, df2, wald, significance, adjusted;
};

struct HypothesisResult {
  TestResult overall;
  std::vector<TestResult> rows;
};

/// The test of L b = k and of its rows. Plain types: X = (L b - k)' (L V L')^- (L b - k) with r degrees of
/// freedom, or F = (d - r + 1) / (r d) X with r and d - r + 1 (Korn and Graubard 1990, Simultaneous testing
/// of regression coefficients with complex survey data). Adjusted types: the statistic under simple random
/// sampling, corrected by the first two moments of its distribution under the design (Rao and Scott 1984,
/// second order; Thomas and Rao 1987 for the F form). Rows have one degree of freedom and, for the F types,
/// d.
HypothesisResult TestLinearHypothesis(const Estimates& estimates, const Matrix& l, const Vector& k,
                                      TestType type, Adjustment adjustment);

/// The test of an effect: the overall one, adjusted for the smallest significance of its distinct rows.
TestResult TestEffect(const Estimates& estimates, const Matrix& l, TestType type, Adjustment adjustment);

}  // namespace reference
