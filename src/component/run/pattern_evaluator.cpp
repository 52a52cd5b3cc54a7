#include "component/run/pattern_evaluator.h"

#include "component/estimation/accum_stats.h"
#include "component/numerics/missing_value.h"
#include "component/run/pattern_tabulator.h"

namespace tavo {

TavoPatternEvaluator::TavoPatternEvaluator(TavoPatternTabulator& tabulator, TavoAccumStats& accumulator,
                                           const TavoModel& model)
    : fTabulator(tabulator), fAccumulator(accumulator) {
  fTabulator.AttachAccumulator(fAccumulator, model);
}

TavoPatternEvaluator::~TavoPatternEvaluator() {
  fTabulator.Detach();
}

double TavoPatternEvaluator::InUnitsOfData(double sum) const {
  return MCCommonMath::IsMissing(sum) ? sum : sum * fTabulator.WeightUnit();
}

// A trial's method is of no consequence: no information is summed.
OrvStatus TavoPatternEvaluator::EvaluateLikelihood(double& logLikelihood) {
  fTabulator.SetMode(EstimationMethod::kFisherScoring, false);
  const OrvStatus status = fTabulator.EvaluateRows(true);
  logLikelihood = InUnitsOfData(fAccumulator.LogLikelihood());
  return status;
}

OrvStatus TavoPatternEvaluator::EvaluateAll(EstimationMethod method, bool separationCheck,
                                            TavoEvaluation& sums, MCCommonMath::MCSymMatrix& information) {
  fTabulator.SetMode(method, separationCheck);
  const OrvStatus status = fTabulator.EvaluateRows(false);
  if (status.IsError()) return status;
  sums.logLikelihood = InUnitsOfData(fAccumulator.LogLikelihood());
  sums.scores = fAccumulator.Scores();
  int valid = 0;
  int invalid = 0;
  fAccumulator.GetCounts(valid, invalid, sums.weight);
  sums.weight = InUnitsOfData(sums.weight);
  fAccumulator.GetObservedProbabilities(sums.minObserved, sums.maxObserved, sums.minComputed);
  fAccumulator.GetHessian(information);  // of no rows when memory ran out
  return status;
}

OrvStatus TavoPatternEvaluator::EvaluatePrecisely(const MCCommonMath::PreciseColumn& estimates,
                                                  MCCommonMath::PreciseColumn& scores,
                                                  MCCommonMath::PreciseSymMatrix& information) {
  return fTabulator.EvaluatePrecisely(estimates, scores, information);
}

}  // namespace tavo
