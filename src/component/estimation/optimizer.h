// The iterative fit.
#pragma once

#include <atomic>
#include <chrono>
#include <memory>
#include <vector>

#include "component/estimation/estimation_method.h"
#include "component/estimation/fit_progress.h"
#include "component/frame/orv_cancel_info.h"
#include "component/frame/orv_status.h"
#include "component/input/comp_settings.h"
#include "component/numerics/sym_matrix.h"

namespace tavo {

class TavoAccumStats;
class TavoModel;
class TavoPatternTabulator;

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

/// Maximises the pseudo-log-likelihood by Fisher scoring with step-halving. Each evaluation is the pattern
/// tabulator's. After a decided stop the information matrix is inverted (generalised: zero rows at singular
/// pivots). For this model Newton-Raphson takes the same steps as Fisher scoring; the method changes what is
/// shown.
class TavoOptimizer {
 public:
  /// Everything is lent; `estimates` holds the start values and receives the result (internal scale, kept
  /// parameters). `listener` may be null. `tabulator` and `accumulator` are used during `Estimate` only.
  TavoOptimizer(const TavoCompSettings& settings, const TavoModel& model, TavoPatternTabulator& tabulator,
                TavoAccumStats& accumulator, std::vector<double>& estimates, const OrvCancelInfo& cancel,
                ProgressListener* listener, int reportPeriod,
                EstimationMethod method = EstimationMethod::kFisherScoring, int fisherIterations = 0);

  /// Runs the fit once. The status is an evaluation's error, 95045 when memory ran out, or 1 after a cancel;
  /// how a fit without error ended tells the termination state.
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
  /// The generalised inverse of the information; of size 0 when the fit was interrupted or failed.
  const MCCommonMath::MCSymMatrix& Hessian() const { return fHessian; }
  const std::vector<double>& Estimates() const { return fvBeta; }
  /// Iterations of a hybrid fit before its switch; 0 for the other methods.
  int FisherIterationsUsed() const;
  double AccumulatedWeight() const { return fWeight; }
  /// Cox and Snell (1989), Nagelkerke (1991), McFadden (1974). False when one can't be computed; it stays
  /// missing then. All are 0 for a fit without iterations.
  bool ComputeRSquares(double& coxSnell, double& nagelkerke, double& mcFadden) const;
  /// Frees the inverse when it has been handed over.
  void ReleaseHessian() { fHessian.Resize(0); }

 private:
  enum class StepResult { kTaken, kNoIncrease, kInterrupted };

  void BeginFit();
  OrvStatus EvaluateStart();
  void Iterate();
  bool DoIteration();
  void InvertInformation();
  double CurrentLogLikelihood() const;
  bool MustStop() const;
  void EvaluateAll(EstimationMethod method, bool separationCheck);
  StepResult TakeStep();
  void FactorInformation();
  void SetPivotUnits();
  double MeasureInUnits(const std::vector<double>& diagonal) const;
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
  const TavoModel& fModel;
  TavoPatternTabulator& fTabulator;
  TavoAccumStats& fAccumulator;
  std::vector<double>& fvBeta;
  const OrvCancelInfo& fCancel;
  ProgressListener* fpListener;
  int fReportPeriod;
  EstimationMethod fMethod;
  int fNFisherIterations;
  int fNParameters;
  MCCommonMath::MCSymMatrix fHessian;  // the information, then its factor, at last its inverse
  int fNSingularPivots = 0;            // of the last factorisation
  double fMeasure = 0;                 // its distance from singularity
  std::vector<double> fPivotUnits;     // by parameter, see SetPivotUnits; empty in a model with an intercept
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
