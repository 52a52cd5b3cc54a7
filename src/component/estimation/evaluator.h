// What the iteration asks of the data.
#pragma once

#include <limits>
#include <vector>

#include "component/estimation/estimation_method.h"
#include "component/frame/orv_status.h"
#include "component/numerics/precise_sym_matrix.h"
#include "component/numerics/precise_vectors.h"
#include "component/numerics/sym_matrix.h"

namespace tavo {

/// The sums over all cases at one vector of estimates, beside the information matrix. Score and information
/// are divided by a unit of weights that the evaluator chooses, so that they neither over- nor underflow;
/// steps don't depend on it.
struct TavoEvaluation {
  double logLikelihood = 0;    // sum of w log(probability of the observed category); missing when unknown
  std::vector<double> scores;  // its gradient, (K-1) p' values, logit by logit, over the unit of weights
  double weight = 0;           // of the cases summed
  // Extremes over the cases, when the evaluation was asked to follow them: of the probability of a case's own
  // category, and of all categories' probabilities.
  double minObserved = std::numeric_limits<double>::max();
  double maxObserved = std::numeric_limits<double>::lowest();
  double minComputed = std::numeric_limits<double>::max();
};

/// Answers two questions: "log-likelihood here?" and "log-likelihood, score, information here?". Here is what
/// the vector of estimates holds at the call: the iteration moves that vector, and an evaluator is made over
/// it. The iteration knows nothing of rows, threads or machines, the evaluator nothing of steps and criteria;
/// each can be replaced, and tested, without the other.
///
/// Both answer an error when the sums could not be made, StatusCode::kCancelled among them; then nothing that
/// they were to fill may be read.
class TavoEvaluator {
 public:
  virtual ~TavoEvaluator() = default;
  /// The cheap question, asked for every trial of a step.
  virtual OrvStatus EvaluateLikelihood(double& logLikelihood) = 0;
  /// The full question. `information` gets (K-1) p' rows, positive semi-definite, or none when memory for it
  /// ran out. With `separationCheck` the extremes of the probabilities are filled.
  virtual OrvStatus EvaluateAll(EstimationMethod method, bool separationCheck, TavoEvaluation& sums,
                                MCCommonMath::MCSymMatrix& information) = 0;
  /// Score and information at `estimates`, in twice the precision. It costs many times as much, and is asked
  /// when a fit has ended with an information matrix in which most digits cancel. An error also when a
  /// predictor isn't finite.
  virtual OrvStatus EvaluatePrecisely(const MCCommonMath::PreciseColumn& estimates,
                                      MCCommonMath::PreciseColumn& scores,
                                      MCCommonMath::PreciseSymMatrix& information) = 0;
};

}  // namespace tavo
