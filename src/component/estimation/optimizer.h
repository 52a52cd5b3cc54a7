// The iterative fit.
#pragma once

#include <atomic>
#include <chrono>
#include <memory>
#include <utility>
#include <vector>

#include "component/estimation/estimation_method.h"
#include "component/estimation/evaluator.h"
#include "component/estimation/fit_layout.h"
#include "component/estimation/fit_progress.h"
#include "component/estimation/precise_fit.h"
#include "component/frame/orv_cancel_info.h"
#include "component/frame/orv_status.h"
#include "component/input/comp_settings.h"
#include "component/numerics/sym_matrix.h"

namespace tavo {

/// How a fit ended.
enum class TerminationState : int {
  kNone = 0,
  kLogLikelihoodConverged = 1,
  kParametersConverged = 2,
  kBothConverged = 3,
  kSingularHessian = 4,
  kNoIncrease = 5,
  kMaxIterations = 6,
  kCompleteSeparation = 7,
  kQuasiCompleteSeparation = 8,
  kNoIterations = 9
};

/// Maximises the pseudo-log-likelihood (Binder 1983) by Fisher scoring (McCullagh and Nelder 1989,
/// section 2.5) with step-halving: the step goes along d = H^-1 s, with the score s and the information H,
/// and is halved until the log-likelihood is not worse (backtracking; Dennis and Schnabel 1983, section 6.3).
/// After a decided stop the information matrix is inverted (generalised: zero rows at singular pivots). For
/// this model observed and expected information are equal, so Newton-Raphson takes the same steps; the method
/// changes what is shown.
class TavoOptimizer {
 public:
  /// Nothing is owned, and all but `evaluator`, which is used during `Estimate` only, outlives the object.
  /// `estimates`, the vector over which the evaluator was made, holds the start values and receives the
  /// result (internal scale, non-redundant parameters, in the order of `layout`). `listener` may be null; it
  /// hears of iteration 0, of each `reportPeriod`-th one and of the last. `fisherIterations` is where a
  /// hybrid fit switches at the latest.
  TavoOptimizer(const TavoCompSettings& settings, TavoFitLayout layout, TavoEvaluator& evaluator,
                std::vector<double>& estimates, const OrvCancelInfo& cancel, ProgressListener* listener,
                int reportPeriod, EstimationMethod method = EstimationMethod::kFisherScoring,
                int fisherIterations = 0);

  /// Runs the fit, once. The status is an evaluation's error, StatusCode::kTooManyParameters when memory ran
  /// out, or StatusCode::kCancelled; how a fit without error ended tells the termination state.
  OrvStatus Estimate();
  /// May come from another thread; the loop ends at its next head, in no termination state.
  void RequestStop() { fbStopRequested.store(true, std::memory_order_relaxed); }

  struct Summary {
    int iterations = 0;
    double initialLogLikelihood = 0;  // missing before the fit
    double finalLogLikelihood = 0;    // missing without iterations
    double logLikelihoodChange = 0;
    double parameterChange = 0;
  };
  Summary GetIterationSummary() const { return fSummary; }
  TerminationState GetTerminationState() const { return fState; }
  /// The generalised inverse of the information; of no rows when the fit was interrupted or failed.
  const MCCommonMath::MCSymMatrix& Hessian() const { return fHessian; }
  const std::vector<double>& Estimates() const { return fvBeta; }
  /// The end of the fit in twice the precision, where the information is so close to singular that its
  /// inverse has lost half its digits; null where it isn't.
  std::unique_ptr<TavoPreciseFit> TakePreciseFit() { return std::move(fpPreciseFit); }
  /// Iterations of a hybrid fit before its switch; 0 for the other methods.
  int FisherIterationsUsed() const;
  /// Of the cases of the last evaluation.
  double AccumulatedWeight() const { return fWeight; }
  /// With L0 and L1 the log-likelihoods at the start values and at the end and W the weight of the cases: Cox
  /// and Snell (1989, pages 208 to 209) 1 - exp(2 (L0 - L1)/W), Nagelkerke (1991) the same over its largest
  /// value 1 - exp(2 L0/W), McFadden (1974) 1 - L1/L0. False when one can't be computed; it stays missing
  /// then. All are 0 for a fit without iterations.
  bool ComputeRSquares(double& coxSnell, double& nagelkerke, double& mcFadden) const;
  /// Frees the inverse when it has been handed over.
  void ReleaseHessian() { fHessian.Resize(0); }

 private:
  enum class StepResult { kTaken, kNoIncrease, kInterrupted };

  /// A step that made the likelihood worse is divided by twice this.
  static constexpr double StepHalvingFactor() { return 1.0; }

  void BeginFit();
  OrvStatus EvaluateStart();
  void Iterate();
  bool DoIteration();
  void InvertInformation();
  bool IsIllConditioned() const;
  void RefineFit();
  bool MustStop() const;
  bool IsAcceptable(double trial) const;
  double LikelihoodRounding() const;
  void EvaluateAll(bool separationCheck);
  StepResult TakeStep();
  void FactorInformation();
  void SetPivotUnits();
  double MeasureInUnits() const;
  bool HasNothingToIterate() const;
  bool ChecksSeparation() const;
  TerminationState CheckConvergence(double logLikelihoodBefore, bool separationCheck);
  bool FindSeparation(TerminationState& state) const;
  double LogLikelihoodChange(double before, double after) const;
  double ParameterChange() const;
  void SwitchToNewton();
  void Report();
  std::vector<double> OnDataScale(const std::vector<double>& estimates) const;

  const TavoCompSettings& fSettings;
  const TavoFitLayout fLayout;
  TavoEvaluator& fEvaluator;
  std::vector<double>& fvBeta;
  const OrvCancelInfo& fCancel;
  ProgressListener* fpListener;
  int fReportPeriod;
  EstimationMethod fMethod;
  int fNFisherIterations;
  int fNParameters;
  TavoEvaluation fSums;                // at the estimates, of the last full evaluation
  MCCommonMath::MCSymMatrix fHessian;  // the information, then its factor, at last its inverse
  std::vector<double> fDiagonal;       // of the information that was factored last
  std::unique_ptr<TavoPreciseFit> fpPreciseFit;
  int fNSingularPivots = 0;         // of the last factorisation
  double fMeasure = 0;              // its distance from singularity
  std::vector<double> fPivotUnits;  // by parameter, see SetPivotUnits; empty in a model with an intercept
  TerminationState fState = TerminationState::kNoIterations;
  EstimationMethod fCurrentMethod = EstimationMethod::kFisherScoring;
  std::vector<double> fStep;      // direction: inverse information times score
  std::vector<double> fPrevious;  // estimates before the step
  double fLogLikelihood = 0;      // at the estimates
  int fNStepHalvings = 0;         // of the current iteration
  Summary fSummary;
  double fWeight = 0;
  int fReportCountdown = 0;
  std::chrono::steady_clock::time_point fStart;
  std::atomic<bool> fbStopRequested{false};
  OrvStatus fStatus;
};

}  // namespace tavo
