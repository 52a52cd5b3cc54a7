// The one object through which reporting sees a finished run.
#pragma once

#include <vector>

#include "component/estimation/optimizer.h"
#include "component/estimation/regr_parameter.h"
#include "component/frame/orv_status.h"
#include "component/inference/odds_ratios.h"
#include "component/inference/param_stats.h"
#include "component/inference/test_stats.h"
#include "component/input/custom_test.h"
#include "component/numerics/rect_matrix.h"
#include "component/numerics/sym_matrix.h"
#include "component/tabulation/factor_tables.h"

namespace tavo {

class TavoAlgorithm;

/// A read-only facade. Refers to what is large in the algorithm, which is not owned and must outlive it, and
/// copies the rest. A run without fit or covariance leaves missing values.
class TavoOutputStats {
 public:
  explicit TavoOutputStats(const TavoAlgorithm& algorithm);

  /// Weighted counts, observed by predicted, in DependentCategories order.
  const MCCommonMath::MCRectMatrix& ClassificationMatrix() const;
  const MCCommonMath::MCSymMatrix* Covariance() const { return fpCovariance; }
  double CoxSnell() const { return fCoxSnell; }
  double Nagelkerke() const { return fNagelkerke; }
  double McFadden() const { return fMcFadden; }
  const std::vector<double>& DependentWeightedCounts() const;
  int ReferenceCategory() const;
  const std::vector<int>& DependentCategories() const;  // codes, reference last
  /// kNone without an optimizer.
  TerminationState TerminationCode() const;
  struct Convergence {
    TerminationState state = TerminationState::kNone;
    double logLikelihoodChange = 0;
    double parameterChange = 0;
  };
  Convergence ConvergenceValues() const;
  const OrvFactorCounts& FactorCounts() const { return fFactorCounts; }
  const std::vector<double>& MeanValues() const { return fMeanValues; }
  const std::vector<double>& Estimates() const { return fParamEstimates; }
  const std::vector<OrvParamStats>& ParamStats() const { return fParamStats; }
  const std::vector<OrvRegrParameter>& Parameters() const { return fParameters; }
  double DegreesOfFreedom() const { return fNDegFreedom; }
  int StrataCount() const { return fNStrata; }
  int UnitCount() const { return fNUnits; }
  double PopulationSize() const { return fPopulationSize; }
  double SubpopulationSize() const { return fSubpopulationSize; }
  /// A set entry marks a redundant parameter.
  const std::vector<bool>& RedundancyBits() const { return fRedundancyBits; }

  /// The tests of TavoInference, which tells the arguments; kUserError without one.
  OrvStatus TestEffect(int effect, MCCommonMath::MCRectMatrix& L, std::vector<int>& columns,
                       OrvTestStats& overall) const;
  OrvStatus GeneralEstimableFunction(MCCommonMath::MCRectMatrix& L, std::vector<int>& columns) const;
  OrvStatus TestCustom(const OrvCustomTest& test, TestType type, PAdjustMethod method,
                       MCCommonMath::MCRectMatrix& L, std::vector<OrvTestStats>& rows,
                       OrvTestStats& overall) const;
  /// The odds ratios of a request over record columns; see TavoOddsRatioEstimator. kUserError without a
  /// covariance.
  OrvStatus OddsRatios(const OrvOddsRatioSpec& request, std::vector<TavoOddsRatioStats>& results,
                       std::vector<TavoOddsRatioEstimator::FixedPair>& fixedPairs,
                       std::vector<OrvStatus>& warnings) const;

 private:
  void FillParamStats();

  const TavoAlgorithm& fAlgorithm;
  std::vector<double> fMeanValues;
  OrvFactorCounts fFactorCounts;
  std::vector<OrvRegrParameter> fParameters;
  std::vector<double> fParamEstimates;
  double fPopulationSize = 0;
  double fSubpopulationSize = 0;
  int fNStrata = 0;
  int fNUnits = 0;
  double fNDegFreedom = 0;
  double fCoxSnell = MCCommonMath::MCMV::gMissingValue;
  double fNagelkerke = MCCommonMath::MCMV::gMissingValue;
  double fMcFadden = MCCommonMath::MCMV::gMissingValue;
  const MCCommonMath::MCSymMatrix* fpCovariance = nullptr;
  std::vector<OrvParamStats> fParamStats;
  std::vector<bool> fRedundancyBits;
};

}  // namespace tavo
