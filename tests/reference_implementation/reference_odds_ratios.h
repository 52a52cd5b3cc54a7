// Odds ratios of one factor or covariate, with the others held.
#pragma once

#include <string>

#include "reference_estimates.h"

namespace reference {

/// exp(x'b) for the difference x of two design rows, with an interval formed on the log scale.
struct OddsRatio {
  std::size_t logit = 0;  // position in `Fit::logits`
  std::string variable;
  std::string comparison;  // "2 vs. 1", or the change as it is printed
  Value ratio, lower, upper;
};

/// The ratios of a request. A factor is held at the category of its control, the highest in use without one;
/// a covariate at its control, the weighted mean in the domain without one.
std::vector<OddsRatio> EstimateOddsRatios(const Problem& problem, const AnalysedCases& cases,
                                          const Columns& columns, const Fit& fit, const Estimates& estimates,
                                          const OddsRatioRequest& request);

/// The weighted means of the covariates in the domain; the tolerance covers the sum's rounding.
std::vector<Value> CovariateMeans(const Problem& problem, const AnalysedCases& cases);

/// exp of a value; missing beyond the range of double precision.
Value Exponential(const Value& value);

}  // namespace reference
