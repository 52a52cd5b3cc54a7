// Odds ratios between two points of the predictors.
//
// In logit m the log odds of a row x are x'b_m, so those of a changed row differ from those of the row held
// fixed by the contrast c = x_changed - x_fixed: the log odds ratio is c'b_m, with variance c' V_mm c. It is
// nearly normal where the ratio itself is skewed and bounded by 0, so the limits are formed on the log scale,
// c'b -+ t se, and exponentiated (Hosmer, Lemeshow and Sturdivant 2013, ch. 3). t is the quantile on the
// design degrees of freedom.
//
// An example: in a model with age, sex and their crossing, the odds ratio of a year of age is exp(b_age) for
// the reference sex and exp(b_age + b_crossing) for the other one. The difference of the design rows holds
// both coefficients, because age occurs in both columns: what sex is held at decides.
#pragma once

#include <map>
#include <utility>
#include <vector>

#include "component/estimation/model.h"
#include "component/frame/orv_status.h"
#include "component/input/odds_ratio_spec.h"
#include "component/numerics/missing_value.h"

namespace tavo {

class TavoInference;

/// One odds ratio with its confidence limits. A factor's has both categories, a covariate's the change.
struct TavoOddsRatioStats {
  int variable = -1;   // record column
  int category = -1;   // code compared
  int reference = -1;  // code of the reference
  double change = MCCommonMath::MCMV::gMissingValue;
  int dependentCategory = -1;  // code of the logit
  double oddsRatio = MCCommonMath::MCMV::gMissingValue;
  double confidenceLower = MCCommonMath::MCMV::gMissingValue;
  double confidenceUpper = MCCommonMath::MCMV::gMissingValue;
};

/// Made for one request and run once. The ratios come from the difference of two whole design rows, so
/// interactions and nesting need no special cases. Each limit is exponentiated for itself: a number that
/// overflows is missing while the others stand.
class TavoOddsRatioEstimator {
 public:
  struct FixedPair {
    int variable;  // record column
    double value;  // a factor's code, a covariate's value
  };

  /// Nothing is owned; the request is over record columns of predictors of the model's settings. `means` are
  /// the covariate means in settings' order.
  TavoOddsRatioEstimator(const TavoModel& model, const OrvOddsRatioSpec& request,
                         const std::vector<double>& means, const TavoInference& inference);

  /// Results logit by logit, in the order of the request. Error kOddsFactorOneLevel when no factor gave a
  /// ratio.
  OrvStatus Estimate();
  const std::vector<TavoOddsRatioStats>& Results() const { return fResults; }
  /// The values at which the predictors are held.
  const std::vector<FixedPair>& FixedPairs() const { return fFixedPairs; }
  /// kOddsFactorOneLevel, kOddsReferenceNotInUse, kOddsControlNotInUse; each once.
  const std::vector<OrvStatus>& Warnings() const { return fWarnings; }

 private:
  void HoldFactors();
  void HoldCovariates(const std::vector<double>& means);
  void FactorOddsRatios(const OrvOddsRatioSpec::Factor& wanted, int logit);
  void CovariateOddsRatios(std::size_t covariate, int logit);
  void ComputeOneRatio(TavoOddsRatioStats stats, int logit);
  void Warn(const OrvStatus& status);
  std::size_t PositionOf(int column) const;

  const TavoModel& fModel;
  const OrvOddsRatioSpec& fRequest;
  const TavoInference& fInference;
  OrvRecordExtractor fLayout;
  std::map<int, double> fControls;  // by record column
  // Data rows in the layout of the extractor. Both rows of a ratio are the base row between two requests:
  // each request changes the cell of its own predictor and puts the base value back.
  std::vector<double> fBase;
  std::vector<double> fFixed;
  std::vector<double> fChanged;
  std::vector<double> fFixedRow;  // design rows
  std::vector<double> fChangedRow;
  std::vector<double> fDifference;
  std::vector<FixedPair> fFixedPairs;
  std::vector<TavoOddsRatioStats> fResults;
  std::vector<OrvStatus> fWarnings;
};

}  // namespace tavo
