// The names of the ways to maximise the likelihood.
#pragma once

namespace tavo {

/// For the baseline-category logit the observed information equals the expected one, so that all three take
/// the same steps and end at the same estimates; the method decides what an analysis is said to have used. A
/// hybrid fit starts with Fisher scoring and switches once.
enum class EstimationMethod : int { kFisherScoring = 0, kNewtonRaphson = 1, kHybrid = 2 };

}  // namespace tavo
