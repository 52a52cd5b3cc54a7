// The evaluator of a run: the likelihood over the rows of the pattern tabulator.
#pragma once

#include <vector>

#include "component/estimation/evaluator.h"

namespace tavo {

class TavoAccumStats;
class TavoModel;
class TavoPatternTabulator;

/// Lives as long as one fit: from its construction to its end the tabulator has accumulator and model
/// attached, and a clone of the accumulator for each slice. Evaluates at the estimates that the accumulator
/// was made over. The unit of weights is that of the tabulator's rows.
class TavoPatternEvaluator final : public TavoEvaluator {
 public:
  /// Nothing is owned. The tabulator has its patterns already. Memory that runs out throws std::bad_alloc.
  TavoPatternEvaluator(TavoPatternTabulator& tabulator, TavoAccumStats& accumulator, const TavoModel& model);
  ~TavoPatternEvaluator() override;
  TavoPatternEvaluator(const TavoPatternEvaluator&) = delete;
  TavoPatternEvaluator& operator=(const TavoPatternEvaluator&) = delete;

  OrvStatus EvaluateLikelihood(double& logLikelihood) override;
  OrvStatus EvaluateAll(EstimationMethod method, bool separationCheck, TavoEvaluation& sums,
                        MCCommonMath::MCSymMatrix& information) override;
  OrvStatus EvaluatePrecisely(const MCCommonMath::PreciseColumn& estimates,
                              MCCommonMath::PreciseColumn& scores,
                              MCCommonMath::PreciseSymMatrix& information) override;

 private:
  double InUnitsOfData(double sum) const;

  TavoPatternTabulator& fTabulator;
  TavoAccumStats& fAccumulator;
};

}  // namespace tavo
