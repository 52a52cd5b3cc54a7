// From the fit and the design totals to the covariance of the estimates.
#pragma once

#include <memory>
#include <vector>

#include "component/frame/orv_cancel_info.h"
#include "component/frame/orv_status.h"
#include "component/inference/estimate_basis.h"
#include "component/inference/param_stats.h"
#include "component/inference/test_stats.h"
#include "component/input/comp_settings.h"
#include "component/input/custom_test.h"
#include "component/numerics/bit_set.h"
#include "component/numerics/rect_matrix.h"
#include "component/numerics/sym_matrix.h"

namespace tavo {

class EffectContrasts;
class OrvModelTests;
class SampleDesign;
class TavoModel;

/// The sandwich V = G M G (Binder 1983): G is the generalised inverse of the information matrix, M the
/// design-based covariance of the score totals, and V is brought back from the scale of the fit to the scale
/// of the data.
///
/// Calling order: ComputePECovar when the design has been fed and the model is built, ComputePECovarSRS, then
/// ComputeParamStats at any time. The model may release its information matrix and SRS centre after
/// ComputePECovarSRS, and X'WX after PrepareTests. From then on the tests may be asked for in any order.
class TavoInference {
 public:
  /// The two hypotheses of TestEffect beside those of the effects.
  static constexpr int kWholeModel = -2;
  static constexpr int kIntercept = -1;

  /// Settings, model and cancel object are not owned; the design is read here and in ComputePECovar only. The
  /// degrees of freedom are those of TavoCompSettings::DegreesOfFreedom.
  TavoInference(const TavoCompSettings& settings, const TavoModel& model, const SampleDesign& design,
                const OrvCancelInfo& cancel);
  ~TavoInference();

  /// Errors: kModelNotBuilt, kUserError without a design covariance or information matrix, kTooManyParameters
  /// when memory runs out, kCancelled. Warnings: kVarianceZero and kVarianceZeroSomeNegative no variance
  /// above 0 (the second with the count of negative ones), kNegativeVariance some negative (count),
  /// kDesignCovarianceSingular. With a warning there is a covariance all the same; rows and columns of
  /// variances that aren't above 0 are 0 in it.
  OrvStatus ComputePECovar(const SampleDesign& design);
  /// The covariance under simple random sampling. `useDesignAsSRS`: the design itself is one, so its
  /// covariance is taken. None without the model's SRS centre. kModelNotBuilt, kTooManyParameters when memory
  /// runs out, warning kSRSVarianceZero when no variance is above 0.
  OrvStatus ComputePECovarSRS(bool useDesignAsSRS);
  /// Completes the records (one per parameter, in order; estimate and redundancy are set): standard error,
  /// confidence bounds, t test against 0, and the design effect, the variance over that of a simple random
  /// sample of the same size (Kish 1965). kUserError without a covariance, or without one row per parameter.
  OrvStatus ComputeParamStats(std::vector<OrvParamStats>& rows) const;

  /// Takes from the model's X'WX what the contrasts need: the basis of the estimable functions and, when
  /// `withEffects`, the cross-products behind the hypotheses of effects. kUserError without a covariance or
  /// X'WX, kTooManyParameters when memory runs out, kCancelled.
  OrvStatus PrepareTests(bool withEffects);

  // ---- tests ----
  //
  // L gets one column per parameter of all logits and one row per contrast, logit after logit; it has no rows
  // when the result is no success. Errors of all: kUserError before PrepareTests, kNoColumns when nothing is
  // estimable, kTooManyParameters when memory runs out, kCancelled. A warning that all variances are 0
  // (kVarianceZero, kVarianceZeroSomeNegative) stops every test and is returned.

  /// An effect of the settings' list, kIntercept or kWholeModel: the type III hypothesis, with the settings'
  /// test type and adjustment. `columns` gets, for each row of one logit, the number (from 1) of the
  /// parameter to which the row belongs. kInvalidEffect, kNothingEstimable when the effect has no testable
  /// row, kNoDesignCovariance for an adjusted test without SRS covariance. Prepared with effects.
  OrvStatus TestEffect(int effect, MCCommonMath::MCRectMatrix& L, std::vector<int>& columns,
                       OrvTestStats& overall) const;
  /// The basis of the estimable functions of one logit: L has one row per non-redundant parameter and the
  /// columns of one logit, `columns` the numbers (from 1) of these parameters.
  OrvStatus GeneralEstimableFunction(MCCommonMath::MCRectMatrix& L, std::vector<int>& columns) const;
  /// A custom hypothesis; without rows, that of the intercept. Rows other than kAll are tested in each logit:
  /// all rows of logit 1, then all of logit 2 and so on, K likewise. `rows` gets one record per row of L.
  /// Errors: those of TavoModel::BuildHypothesisMatrix, kNotEstimable for any row, kMoreThanOneRow when K has
  /// not one value per row (without rows, not one), kNoDesignCovariance.
  OrvStatus TestCustom(const OrvCustomTest& test, TestType type, PAdjustMethod method,
                       MCCommonMath::MCRectMatrix& L, std::vector<OrvTestStats>& rows,
                       OrvTestStats& overall) const;

  /// The estimate of a contrast of one logit's parameters, on the scale of the data, and its standard error:
  /// missing before ComputePECovar, 0 when its variance isn't above 0.
  void TestContrast(int logit, const std::vector<double>& row, double& estimate, double& standardError) const;
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

  SymMatrixPtr InBasis(const std::vector<double>& central) const;
  SymMatrixPtr OnDataScale(const MCCommonMath::MCSymMatrix& inBasis) const;
  std::vector<double> RowOfParameter(int parameter) const;
  void SetRounding(const std::vector<double>& central, int units);
  std::vector<double> StandardErrors(const MCCommonMath::MCSymMatrix& inBasis) const;
  OrvStatus CheckCovariance(const std::vector<double>& central);
  void FillTest(OrvParamStats& row) const;
  OrvStatus EffectTestStatus(int effect) const;
  OrvStatus EffectContrast(int effect, MCCommonMath::MCRectMatrix& L, std::vector<int>& columns) const;
  OrvModelTests ModelTests(TestType type, PAdjustMethod method) const;
  OrvStatus InterceptContrast(const OrvCustomTest& test, MCCommonMath::MCRectMatrix& L,
                              std::vector<double>& K) const;
  OrvStatus CustomContrasts(const OrvCustomTest& test, MCCommonMath::MCRectMatrix& L,
                            std::vector<double>& K) const;
  bool IsEstimable(const MCCommonMath::MCRectMatrix& L, bool isFull) const;

  const TavoCompSettings& fSettings;
  const TavoModel& fModel;
  const OrvCancelInfo& fCancel;
  OrvStatus fStatus;                             // what stands against all tests
  std::unique_ptr<EffectContrasts> fpContrasts;  // null until PrepareTests
  OrvEstimateBasis fBasis;
  SymMatrixPtr fpInBasis;  // the covariance in the basis
  SymMatrixPtr fpInBasisSRS;
  SymMatrixPtr fpPECovar;
  SymMatrixPtr fpPECovarSRS;
  std::vector<double> fStandardErrors;  // by parameter, 0 without a variance above 0
  std::vector<double> fStandardErrorsSRS;
  MCCommonMath::MCBitSet fBadVariances;
  double fNDegFreedom = 0;
  double fTPercentile = 0;
};

}  // namespace tavo
