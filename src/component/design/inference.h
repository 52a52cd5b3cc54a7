// From the fit and the design totals to the covariance of the estimates.
#pragma once

#include <memory>
#include <vector>

#include "estimation/numerics/bit_set.h"
#include "estimation/numerics/sym_matrix.h"
#include "frame/orv_cancel_info.h"
#include "frame/orv_status.h"
#include "inference/param_stats.h"
#include "input/comp_settings.h"

namespace tavo {

class SampleDesign;
class TavoModel;

/// V = G M G with G the generalised inverse of the information matrix and M the design-based covariance of the score
/// totals (Binder 1983), brought to the scale of the data.
class TavoInference {
 public:
  /// Settings, model and cancel object are lent. Degrees of freedom: the settings' when above 0, otherwise first-stage
  /// units minus strata.
  TavoInference(const TavoCompSettings& settings, const TavoModel& model, const SampleDesign& design,
                const OrvCancelInfo& cancel);

  /// 95006, 1; warnings 95023, 95025, 95026, 95046.
  OrvStatus ComputePECovar(const SampleDesign& design);
  /// The covariance under simple random sampling. `useDesignAsSRS`: the design itself is one. Warning 95044.
  OrvStatus ComputePECovarSRS(bool useDesignAsSRS);
  /// Completes the records (one per parameter, in order; estimate and redundancy are set). 91000 without a covariance.
  OrvStatus ComputeParamStats(std::vector<OrvParamStats>& rows) const;

  /// Covariance of all parameters, data scale, K-1 blocks; null before ComputePECovar.
  const MCCommonMath::MCSymMatrix* PECovar() const { return fpPECovar.get(); }
  /// Null until computed.
  const MCCommonMath::MCSymMatrix* PECovarSRS() const { return fpPECovarSRS.get(); }
  const MCCommonMath::MCBitSet& BadVariances() const { return fBadVariances; }
  double DegreesOfFreedom() const { return fNDegFreedom; }
  /// The quantile of Student's t for the confidence level; missing without degrees of freedom.
  double TPercentile() const { return fTPercentile; }

 private:
  bool ComputeSandwich(const std::vector<double>& central, MCCommonMath::MCSymMatrix& result) const;
  OrvStatus CheckCovariance(const std::vector<double>& central, bool sandwichOk);

  const TavoCompSettings& fSettings;
  const TavoModel& fModel;
  const OrvCancelInfo& fCancel;
  std::unique_ptr<MCCommonMath::MCSymMatrix> fpPECovar;
  std::unique_ptr<MCCommonMath::MCSymMatrix> fpPECovarSRS;
  MCCommonMath::MCBitSet fBadVariances;
  double fNDegFreedom = 0;
  double fTPercentile = 0;
};

}  // namespace tavo
