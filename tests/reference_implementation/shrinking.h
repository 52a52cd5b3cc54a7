// Making a problem that shows something as small as it can be.
#pragma once

#include <functional>

#include "reference_problem.h"

namespace reference {

/// Drops cases, effects, variables, hypotheses, odds ratios, strata, stages and settings one after the other,
/// as long as `isShown` stays true, until nothing more can go. `isShown` holds of `problem`.
Problem Shrink(Problem problem, const std::function<bool(const Problem&)>& isShown);

/// The problem with only those cases. The joint probabilities of strata without cases go with them.
Problem WithCases(const Problem& problem, const std::vector<bool>& isLeft);

}  // namespace reference
