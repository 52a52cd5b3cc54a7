// The iterative fit.
#pragma once

#include <atomic>
#include <memory>
#include <vector>

#include "estimation/numerics/sym_matrix.h"
#include "estimation/progress.h"
#include "frame/orv_cancel_info.h"
#include "frame/orv_status.h"
#include "input/comp_settings.h"

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

enum class EstimationMethod : int { kFisherScoring = 0, kNewtonRaphson = 1, kHybrid = 2 };

/// Maximises the pseudo-log-likelihood by Fisher scoring with step-halving. Each evaluation is the pattern tabulator's.
/// After a decided stop the information matrix is inverted (generalised: zero rows at singular pivots).
class TavoOptimizer {
 public:
  /// Everything is lent; `estimates` holds the start values and receives the result (internal scale, kept parameters).
  /// `listener` may be null. `tabulator` and `accumulator` are used during `Estimate` only.
  TavoOptimizer(const TavoCompSettings& settings, const TavoModel& model, TavoPatternTabulator& tabulator,
                TavoAccumStats& accumulator, std::vector<double>& estimates, const OrvCancelInfo& cancel,
                ProgressListener* listener, int reportPeriod,
                EstimationMethod method = EstimationMethod::kFisherScoring, int fisherIterations = 0);

  OrvStatus Estimate();
  /// May come from another thread; the loop ends at its next head.
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
  const MCCommonMath::MCSymMatrix& Hessian() const { return fHessian; }
  const std::vector<double>& Estimates() const { return fvBeta; }
  int FisherIterationsUsed() const;
  double AccumulatedWeight() const { return fWeight; }
  /// Cox and Snell (1989), Nagelkerke (1991), McFadden (1974). False when one can't be computed; it stays missing then.
  bool ComputeRSquares(double& coxSnell, double& nagelkerke, double& mcFadden) const;
  /// Frees the inverse when it has been handed over.
  void ReleaseHessian() { fHessian.Resize(0); }

 private:
  double CurrentLogLikelihood() const;
  bool MustStop() const;
  OrvStatus Evaluate(int method, bool separationCheck, bool likelihoodOnly);
  int FactorHessian();
  void SolveDirection();
  bool HasNothingToIterate() const;
  bool TakeStep(double logLikelihoodBefore, int& stepHalvings);
  TerminationState CheckConvergence(double logLikelihoodBefore, int singularPivots, bool separationCheck);
  TerminationState CheckSeparation(int singularPivots) const;
  void SwitchToNewton();
  void Report(int stepHalvings, double logLikelihood);
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
  MCCommonMath::MCSymMatrix fHessian;
  double fMeasure = 0;
  TerminationState fState = TerminationState::kNoIterations;
  EstimationMethod fCurrentMethod = EstimationMethod::kFisherScoring;
  std::vector<double> fStep;
  std::vector<double> fPrevious;
  Summary fSummary;
  double fWeight = 0;
  double fStartSeconds = 0;
  std::atomic<bool> fbStopRequested{false};
  OrvStatus fStatus;
};

}  // namespace tavo
