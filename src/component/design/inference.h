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

/// The sandwich V = G M G (Binder 1983): G is the generalised inverse of the information matrix, M the
/// design-based covariance of the score totals, and V is brought back from the scale of the fit to the scale
/// of the data.
///
/// Calling order: ComputePECovar when the design has been fed and the model is built, ComputePECovarSRS, then
/// ComputeParamStats at any time. The model may release its matrices after ComputePECovarSRS.
class TavoInference {
 public:
  /// Settings, model and cancel object are lent; the design is read here and in ComputePECovar only. Degrees
  /// of freedom: the settings' when above 0, otherwise first-stage units minus strata.
  TavoInference(const TavoCompSettings& settings, const TavoModel& model, const SampleDesign& design,
                const OrvCancelInfo& cancel);

  /// Errors: 95006 before the model is built, 91000 without a design covariance or information matrix, 95045
  /// out of memory, 1 cancelled. Warnings: 95023 and 95026 no variance above 0 (95026 with the count of
  /// negative ones), 95025 some negative (count), 95046 singular. With a warning there is a covariance all
  /// the same; rows and columns of variances that aren't above 0 are 0 in it.
  OrvStatus ComputePECovar(const SampleDesign& design);
  /// The covariance under simple random sampling. `useDesignAsSRS`: the design itself is one, so its
  /// covariance is taken. None without the model's SRS centre. 95006, 95045, warning 95044 when no variance
  /// is above 0.
  OrvStatus ComputePECovarSRS(bool useDesignAsSRS);
  /// Completes the records (one per parameter, in order; estimate and redundancy are set): standard error,
  /// confidence bounds, t test against 0, design effect. 91000 without a covariance of the right size.
  OrvStatus ComputeParamStats(std::vector<OrvParamStats>& rows) const;

  /// Covariance of all parameters, data scale, K-1 blocks; null before ComputePECovar. Rows of redundant
  /// parameters are 0.
  const MCCommonMath::MCSymMatrix* PECovar() const { return fpPECovar.get(); }
  /// Null until computed.
  const MCCommonMath::MCSymMatrix* PECovarSRS() const { return fpPECovarSRS.get(); }
  /// By parameter: a set bit marks a variance that came out negative.
  const MCCommonMath::MCBitSet& BadVariances() const { return fBadVariances; }
  double DegreesOfFreedom() const { return fNDegFreedom; }
  /// The quantile of Student's t for the confidence level; missing without degrees of freedom.
  double TPercentile() const { return fTPercentile; }

 private:
  using SymMatrixPtr = std::unique_ptr<MCCommonMath::MCSymMatrix>;

  SymMatrixPtr ComputeSandwich(const std::vector<double>& central) const;
  OrvStatus CheckCovariance(const std::vector<double>& central);
  OrvStatus OutOfMemory() const;
  void FillTest(OrvParamStats& row) const;

  const TavoModel& fModel;
  const OrvCancelInfo& fCancel;
  SymMatrixPtr fpPECovar;
  SymMatrixPtr fpPECovarSRS;
  MCCommonMath::MCBitSet fBadVariances;
  double fNDegFreedom = 0;
  double fTPercentile = 0;
};

}  // namespace tavo
