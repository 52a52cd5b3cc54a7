// Copies what is small, so that reports never depend on what the algorithm releases; questions about
// hypotheses and odds ratios are passed on, as they are answered when they are asked.
#include "component/run/output_stats.h"

#include "component/run/algorithm.h"

namespace tavo {

TavoOutputStats::TavoOutputStats(const TavoAlgorithm& algorithm)
    : fAlgorithm(algorithm),
      fMeanValues(algorithm.MeanValues()),
      fFactorCounts(algorithm.FactorTables()),  // the counts alone, not the tables
      fParameters(algorithm.Model().AllParameters()),
      fParamEstimates(algorithm.Model().Estimates()),
      fPopulationSize(algorithm.FactorTables().PopulationEstimate()),
      fSubpopulationSize(algorithm.FactorTables().TotalWeight()),
      fNStrata(algorithm.StrataCount()),
      fNUnits(algorithm.ClusterCount()),
      fNDegFreedom(algorithm.Settings().DegreesOfFreedom(fNUnits, fNStrata)) {
  if (const TavoOptimizer* optimizer = algorithm.Optimizer()) {
    optimizer->ComputeRSquares(fCoxSnell, fNagelkerke, fMcFadden);
  }
  FillParamStats();
  if (const TavoInference* inference = algorithm.Inference()) {
    fpCovariance = inference->PECovar();
    inference->ComputeParamStats(fParamStats);  // without a covariance the statistics stay missing
  }
}

/// What the model alone knows of each parameter.
void TavoOutputStats::FillParamStats() {
  const MCCommonMath::MCBitSet& nonRedundant = fAlgorithm.Model().AllBits();
  const std::size_t count = fParameters.size();
  fParamStats.resize(count);
  fRedundancyBits.assign(count, false);
  if (static_cast<std::size_t>(nonRedundant.Size()) != count || fParamEstimates.size() != count) return;
  for (std::size_t i = 0; i < count; ++i) {
    OrvParamStats& row = fParamStats[i];
    row.parameterIndex = static_cast<int>(i);
    row.estimate = fParamEstimates[i];
    row.redundant = !nonRedundant.IsIn(row.parameterIndex);
    row.effectIndex = fParameters[i].effectIndex;
    fRedundancyBits[i] = row.redundant;
  }
}

const MCCommonMath::MCRectMatrix& TavoOutputStats::ClassificationMatrix() const {
  return fAlgorithm.Model().ClassificationTable();
}

const std::vector<double>& TavoOutputStats::DependentWeightedCounts() const {
  return fAlgorithm.Model().WeightedCounts();
}

int TavoOutputStats::ReferenceCategory() const {
  const std::vector<int>& categories = DependentCategories();
  return categories.empty() ? 0 : categories.back();
}

const std::vector<int>& TavoOutputStats::DependentCategories() const {
  return fAlgorithm.Model().Categories();
}

TerminationState TavoOutputStats::TerminationCode() const {
  const TavoOptimizer* optimizer = fAlgorithm.Optimizer();
  return optimizer == nullptr ? TerminationState::kNone : optimizer->GetTerminationState();
}

TavoOutputStats::Convergence TavoOutputStats::ConvergenceValues() const {
  const TavoOptimizer* optimizer = fAlgorithm.Optimizer();
  if (optimizer == nullptr) return {};
  const TavoOptimizer::Summary summary = optimizer->GetIterationSummary();
  return {optimizer->GetTerminationState(), summary.logLikelihoodChange, summary.parameterChange};
}

OrvStatus TavoOutputStats::OddsRatios(const OrvOddsRatioSpec& request,
                                      std::vector<TavoOddsRatioStats>& results,
                                      std::vector<TavoOddsRatioEstimator::FixedPair>& fixedPairs,
                                      std::vector<OrvStatus>& warnings) const {
  const TavoInference* inference = fAlgorithm.Inference();
  if (inference == nullptr) return OrvStatus::Error(StatusCode::kUserError);
  TavoOddsRatioEstimator estimator(fAlgorithm.Model(), request, fMeanValues, *inference);
  const OrvStatus status = estimator.Estimate();
  results = estimator.Results();
  fixedPairs = estimator.FixedPairs();
  warnings = estimator.Warnings();
  return status;
}

OrvStatus TavoOutputStats::TestEffect(int effect, MCCommonMath::MCRectMatrix& L, std::vector<int>& columns,
                                      OrvTestStats& overall) const {
  const TavoInference* inference = fAlgorithm.Inference();
  if (inference == nullptr) return OrvStatus::Error(StatusCode::kUserError);
  return inference->TestEffect(effect, L, columns, overall);
}

OrvStatus TavoOutputStats::GeneralEstimableFunction(MCCommonMath::MCRectMatrix& L,
                                                    std::vector<int>& columns) const {
  const TavoInference* inference = fAlgorithm.Inference();
  if (inference == nullptr) return OrvStatus::Error(StatusCode::kUserError);
  return inference->GeneralEstimableFunction(L, columns);
}

OrvStatus TavoOutputStats::TestCustom(const OrvCustomTest& test, TestType type, PAdjustMethod method,
                                      MCCommonMath::MCRectMatrix& L, std::vector<OrvTestStats>& rows,
                                      OrvTestStats& overall) const {
  const TavoInference* inference = fAlgorithm.Inference();
  if (inference == nullptr) {  // a model all of whose parameters are redundant has nothing to be tested
    return OrvStatus::Error(fAlgorithm.IsModelBuilt() ? StatusCode::kNoColumns : StatusCode::kUserError);
  }
  return inference->TestCustom(test, type, method, L, rows, overall);
}

}  // namespace tavo
