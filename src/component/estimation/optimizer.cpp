#include "component/estimation/optimizer.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <limits>
#include <utility>

#include "component/numerics/machine_constants.h"
#include "component/numerics/math_functions.h"
#include "component/numerics/missing_value.h"

namespace tavo {

using MCCommonMath::IsMissing;
using MCCommonMath::MCMathFun;
using MCCommonMath::MCMV;
using MCCommonMath::MCPower;
using MCCommonMath::PreciseColumn;
namespace precise = MCCommonMath::precise;

namespace {

// Separation (Albert and Anderson 1984): where a linear combination of the columns tells the categories
// apart, for all cases (complete) or for all but those on the border (quasi-complete), the likelihood has no
// maximum at finite estimates. The fit runs away then, and is recognised by where it goes, not by a linear
// program over the cases. Complete: no observed response has a probability below 1 - kNearOne.
// Quasi-complete: the information is nearly singular while probabilities have come near 1 or 0.
constexpr double kNearOne = 0.01;
constexpr double kNearZero = 0.001;
constexpr double kNearSingular = 0.000316;

// Parameters smaller than this change by absolute amounts in the relative criterion.
constexpr double kSmallestDenominator = 1e-6;

bool IsSettled(TerminationState state) {
  return state == TerminationState::kLogLikelihoodConverged ||
         state == TerminationState::kParametersConverged || state == TerminationState::kBothConverged;
}

// A sum of logarithms, and of the terms of the predictors behind them, is known to a few units in its last
// place. Near the maximum a good step raises it by less than that, and may seem to lower it.
constexpr double kRounding = 8 * std::numeric_limits<double>::epsilon();

// From this variance inflation on the inverse of the information has 12 digits at most, and the fit is
// refined in twice the precision, with as many parameters as it takes seconds for.
constexpr double kLargestInflation = 1e4;
constexpr int kMostPrecise = 1000;

// A positive sum is rounding: no likelihood is above 1. Written so that NaN stays NaN.
double AtMostZero(double logLikelihood) {
  return logLikelihood > 0 ? 0.0 : logLikelihood;
}

}  // namespace

TavoOptimizer::TavoOptimizer(const TavoCompSettings& settings, TavoFitLayout layout, TavoEvaluator& evaluator,
                             std::vector<double>& estimates, const OrvCancelInfo& cancel,
                             ProgressListener* listener, int reportPeriod, EstimationMethod method,
                             int fisherIterations)
    : fSettings(settings),
      fLayout(std::move(layout)),
      fEvaluator(evaluator),
      fvBeta(estimates),
      fCancel(cancel),
      fpListener(listener),
      fReportPeriod(reportPeriod),
      fMethod(method),
      fNFisherIterations(fisherIterations),
      fNParameters(fLayout.ParameterCount()) {
  fvBeta.resize(static_cast<std::size_t>(fNParameters), 0.0);
  fSummary.initialLogLikelihood = MCMV::gMissingValue;
  fSummary.finalLogLikelihood = MCMV::gMissingValue;
}

OrvStatus TavoOptimizer::Estimate() {
  assert(fSummary.iterations == 0 && IsMissing(fSummary.initialLogLikelihood));
  BeginFit();
  if (!EvaluateStart().IsError()) {
    if (HasNothingToIterate()) {
      fState = TerminationState::kNoIterations;
    } else {
      Iterate();
    }
  }
  InvertInformation();
  if (!fStatus.IsError() && IsIllConditioned()) RefineFit();
  if (!fStatus.IsError() && fReportCountdown != fReportPeriod) Report();
  return fStatus;
}

void TavoOptimizer::BeginFit() {
  fStart = std::chrono::steady_clock::now();
  fReportCountdown = fReportPeriod;
  fStep.assign(fvBeta.size(), 0.0);
  fPrevious = fvBeta;
  SetPivotUnits();
  const bool startsWithFisher = fMethod == EstimationMethod::kHybrid && fNFisherIterations > 0;
  fCurrentMethod = startsWithFisher ? EstimationMethod::kFisherScoring : fMethod;
}

// Likelihood, direction and report at the start values.
OrvStatus TavoOptimizer::EvaluateStart() {
  EvaluateAll(false);
  if (fStatus.IsError()) return fStatus;
  fSummary.initialLogLikelihood = fLogLikelihood;
  Report();
  FactorInformation();
  if (!fStatus.IsError() && fNParameters > 0) fHessian.LTSubstitute(fSums.scores, fStep);
  return fStatus;
}

// A model of intercepts alone is solved by its start values, the log-odds of the counts.
bool TavoOptimizer::HasNothingToIterate() const {
  const bool interceptsOnly = fLayout.hasIntercept && fNParameters <= fLayout.logits;
  return interceptsOnly || fNParameters == 0 || fSettings.MaxIterations() == 0;
}

void TavoOptimizer::Iterate() {
  fState = TerminationState::kNone;
  while (fState == TerminationState::kNone && !MustStop() && !fStatus.IsError()) {
    if (!DoIteration()) return;
  }
}

// One step, and a full evaluation where it led; that runs also after a step that found no increase, since
// scores and information are wanted at the estimates that stand. False when the fit was interrupted or an
// evaluation failed.
bool TavoOptimizer::DoIteration() {
  ++fSummary.iterations;
  const double before = fLogLikelihood;
  const StepResult result = TakeStep();
  if (result == StepResult::kInterrupted) {
    --fSummary.iterations;
    return false;
  }
  const bool separationCheck = ChecksSeparation();
  EvaluateAll(separationCheck);
  FactorInformation();
  if (fStatus.IsError()) return false;
  fSummary.finalLogLikelihood = fLogLikelihood;

  fState = result == StepResult::kNoIncrease ? TerminationState::kNoIncrease
                                             : CheckConvergence(before, separationCheck);
  if (fMethod == EstimationMethod::kHybrid && fCurrentMethod == EstimationMethod::kFisherScoring)
    SwitchToNewton();
  if (fStatus.IsError()) return false;
  if (fState == TerminationState::kNone) fHessian.LTSubstitute(fSums.scores, fStep);
  if (--fReportCountdown <= 0) {
    Report();
    fReportCountdown = fReportPeriod;
  }
  return true;
}

// Goes along the direction, halving the step until the likelihood is not worse. A trial asks for the
// likelihood alone, which costs a fraction of scores and information. On an interruption and without an
// increase the estimates stand where they were.
TavoOptimizer::StepResult TavoOptimizer::TakeStep() {
  fPrevious = fvBeta;
  fNStepHalvings = 0;
  for (double length = 1; !MustStop(); length /= 2 * StepHalvingFactor(), ++fNStepHalvings) {
    MCMathFun::Daxpy(fNParameters, length, fStep, 0, 1, fvBeta, 0, 1);
    double trial = 0;
    fStatus = fEvaluator.EvaluateLikelihood(trial);
    if (fStatus.IsError()) return StepResult::kInterrupted;
    if (IsAcceptable(AtMostZero(trial))) return StepResult::kTaken;
    fvBeta = fPrevious;
    if (fNStepHalvings >= fSettings.MaxStepHalving()) {
      fSummary.logLikelihoodChange = fSummary.parameterChange = 0;
      return StepResult::kNoIncrease;
    }
  }
  return StepResult::kInterrupted;
}

// Not worse than before, as far as rounding lets one tell. A NaN is never accepted.
bool TavoOptimizer::IsAcceptable(double trial) const {
  if (IsMissing(trial)) return false;
  return IsMissing(fLogLikelihood) || trial >= fLogLikelihood - LikelihoodRounding();
}

// A column has a mean square of 1, or is the value of an indicator: so this bounds the sum over the cases of
// the absolute terms of their predictors. With nearly dependent columns these are far larger than the
// log-likelihood.
double TavoOptimizer::LikelihoodRounding() const {
  const std::size_t columns = fLayout.scales.size();
  double terms = 0;
  for (std::size_t i = 0; i < fvBeta.size(); ++i) {
    const double size = fLayout.isIndicator[i % columns] ? 1 / fLayout.scales[i % columns] : 1.0;
    terms += size * std::abs(fvBeta[i]);
  }
  return kRounding * (std::abs(fLogLikelihood) + fSums.weight * terms);
}

void TavoOptimizer::EvaluateAll(bool separationCheck) {
  fStatus = fEvaluator.EvaluateAll(fCurrentMethod, separationCheck, fSums, fHessian);
  if (!fStatus.IsError()) fLogLikelihood = AtMostZero(fSums.logLikelihood);
}

void TavoOptimizer::FactorInformation() {
  if (fStatus.IsError() || fNParameters == 0) return;
  if (fHessian.GetNRows() == fNParameters) {
    fHessian.GetDiagonal(fDiagonal);
    fNSingularPivots = fHessian.LTChol(fSettings.Tolerance(), fMeasure, false);
    if (fHessian.IsValidMatrix()) {
      if (!fPivotUnits.empty()) fMeasure = MeasureInUnits();
      return;
    }
  }
  fStatus = OutOfMemory(fNParameters);
}

// Without an intercept a column without covariates holds the root of the total weight where it would hold 1,
// and its information is larger by the total weight. The distance from singularity compares pivots of such
// columns with those of covariates, so it needs them in the units of a column of 1.
void TavoOptimizer::SetPivotUnits() {
  fPivotUnits.clear();
  if (fLayout.hasIntercept) return;
  for (int logit = 0; logit < fLayout.logits; ++logit) {
    for (std::size_t k = 0; k < fLayout.scales.size(); ++k) {
      const double scale = fLayout.scales[k];
      fPivotUnits.push_back(fLayout.isIndicator[k] ? 1 / (scale * scale) : 1.0);
    }
  }
}

// What the factorisation's own measure would be with the columns in their units: the root of the smallest
// reduced pivot over the largest element of the information's diagonal.
double TavoOptimizer::MeasureInUnits() const {
  if (fNSingularPivots > 0) return 0;
  double smallest = std::numeric_limits<double>::max();
  double largest = 0;
  for (std::size_t i = 0; i < fPivotUnits.size(); ++i) {
    const double root = fHessian.GetElem(static_cast<int>(i), static_cast<int>(i));
    smallest = std::min(smallest, root * root / fPivotUnits[i]);
    largest = std::max(largest, fDiagonal[i] / fPivotUnits[i]);
  }
  return std::sqrt(smallest / largest);
}

bool TavoOptimizer::MustStop() const {
  return fbStopRequested.load(std::memory_order_relaxed) || fCancel.IsCancelled();
}

bool TavoOptimizer::ChecksSeparation() const {
  return fSettings.StartingIteration() > 0 && fSummary.iterations >= fSettings.StartingIteration();
}

TerminationState TavoOptimizer::CheckConvergence(double logLikelihoodBefore, bool separationCheck) {
  TerminationState state = TerminationState::kNone;
  if (!(separationCheck && FindSeparation(state)) && fNSingularPivots > 0)
    state = TerminationState::kSingularHessian;

  fSummary.logLikelihoodChange = LogLikelihoodChange(logLikelihoodBefore, fLogLikelihood);
  if (state == TerminationState::kNone && fSettings.LogLikCriterion() > fSummary.logLikelihoodChange) {
    state = TerminationState::kLogLikelihoodConverged;
  }
  fSummary.parameterChange = ParameterChange();
  if (fSettings.ParamCriterion() > fSummary.parameterChange) {
    if (state == TerminationState::kNone) {
      state = TerminationState::kParametersConverged;
    } else if (state == TerminationState::kLogLikelihoodConverged) {
      state = TerminationState::kBothConverged;
    }
  }
  if (state == TerminationState::kNone && fSummary.iterations >= fSettings.MaxIterations()) {
    state = TerminationState::kMaxIterations;
  }
  return state;
}

// True when the probabilities or the information decide the state. A nearly singular information far from the
// bounds is a matter of the columns, not of separation.
bool TavoOptimizer::FindSeparation(TerminationState& state) const {
  if (kNearOne >= 1 - fSums.minObserved && kNearOne >= 1 - fSums.maxObserved) {
    state = TerminationState::kCompleteSeparation;
    return true;
  }
  if (!(kNearSingular >= fMeasure)) return false;
  const bool isNearBound = fSums.maxObserved > 1 - kNearOne || kNearZero > fSums.minComputed;
  state = isNearBound ? TerminationState::kQuasiCompleteSeparation : TerminationState::kSingularHessian;
  return true;
}

// Relative to a log-likelihood of 0 the change is infinite or no number: neither is below a criterion.
double TavoOptimizer::LogLikelihoodChange(double before, double after) const {
  if (IsMissing(before) || IsMissing(after)) return std::numeric_limits<double>::infinity();
  const double change = std::abs(before - after);
  return fSettings.IsLogLikAbsolute() ? change : change / std::abs(before);
}

// On the scale of the data: the criterion is about the numbers that the user sees.
double TavoOptimizer::ParameterChange() const {
  const std::vector<double> now = OnDataScale(fvBeta);
  const std::vector<double> before = OnDataScale(fPrevious);
  return fSettings.IsParamAbsolute() ? MCMathFun::VNrm1Diff(now, before)
                                     : MCMathFun::VMaxRelDiff(now, before, kSmallestDenominator);
}

// A hybrid fit goes on after its Fisher scoring has settled or is spent; the steps are the same (see the
// class).
void TavoOptimizer::SwitchToNewton() {
  const bool isSpent = fSummary.iterations >= fNFisherIterations && fState == TerminationState::kNone;
  if (!IsSettled(fState) && !isSpent) return;
  fCurrentMethod = EstimationMethod::kNewtonRaphson;
  fState = TerminationState::kNone;
  fNFisherIterations = fSummary.iterations;
  EvaluateAll(false);
  FactorInformation();
  if (!fStatus.IsError() && fNSingularPivots > 0) fState = TerminationState::kSingularHessian;
}

// Only a fit that ended by its own rules has an information matrix to give; the estimates of an interrupted
// one are on their way, and its matrix would be taken for a result.
void TavoOptimizer::InvertInformation() {
  const bool isDecided = !fStatus.IsError() && fState != TerminationState::kNone;
  if (!fStatus.IsError() && !isDecided && fCancel.IsCancelled())
    fStatus = OrvStatus::Error(StatusCode::kCancelled);
  if (!isDecided) {
    fHessian.Resize(0);
    return;
  }
  if (fNParameters == 0) return;
  if (!fHessian.LTInverse()) {
    fStatus = OutOfMemory(fNParameters);
    return;
  }
  fWeight = fSums.weight;
}

// By the largest variance inflation (Marquardt 1970), which is about the share of the digits that cancel in
// the inverse. A singular information says too little to be refined.
bool TavoOptimizer::IsIllConditioned() const {
  if (fNParameters == 0 || fNParameters > kMostPrecise || fNSingularPivots > 0) return false;
  if (fHessian.GetNRows() != fNParameters) return false;
  for (int k = 0; k < fNParameters; ++k) {
    if (fHessian.GetElem(k, k) * fDiagonal[static_cast<std::size_t>(k)] > kLargestInflation) return true;
  }
  return false;
}

// Takes the last digits of a converged fit, which rounding kept from the iteration, by Newton steps in twice
// the precision, and the factor of the information there. The length of a score in the basis of the factor is
// how far the estimates are from their limit, in units of a standard error without a design. A fit that ended
// otherwise stays where it is. When the precise sums can't be had the fit is as good as it was.
void TavoOptimizer::RefineFit() {
  constexpr int kMostSteps = 5;
  constexpr double kNear = 1e-13;
  auto pFit = std::make_unique<TavoPreciseFit>();
  pFit->estimates = PreciseColumn(fvBeta.size());
  pFit->estimates.high = fvBeta;
  PreciseColumn step;
  double distance = std::numeric_limits<double>::infinity();
  for (int steps = 0;; ++steps) {
    const OrvStatus status = fEvaluator.EvaluatePrecisely(pFit->estimates, step, pFit->factor);
    if (status.Code() == StatusCode::kCancelled) fStatus = status;
    if (status.IsError() || pFit->factor.Factor(fSettings.Tolerance()) > 0) return;
    pFit->factor.ForwardSolve(step);
    const double before = distance;
    distance = std::sqrt(precise::Dot(step, step, step.Size()).Value());
    if (!IsSettled(fState) || !(distance > kNear) || !(distance < before / 2) || steps == kMostSteps) break;
    pFit->factor.BackSolve(step);
    precise::AddScaled(1.0, step, step.Size(), pFit->estimates);
  }
  fvBeta = pFit->estimates.high;
  fpPreciseFit = std::move(pFit);
}

void TavoOptimizer::Report() {
  if (fpListener == nullptr) return;
  const std::vector<double> estimates = OnDataScale(fvBeta);
  const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - fStart;
  OrvIterationReporter reporter;
  reporter.Set(&estimates, fSummary.iterations, fNStepHalvings, fLogLikelihood, elapsed.count());
  fpListener->Update(reporter);
}

std::vector<double> TavoOptimizer::OnDataScale(const std::vector<double>& estimates) const {
  std::vector<double> onDataScale = estimates;
  MCMathFun::TransformParameters(onDataScale, fLayout.centres, fLayout.scales, fLayout.logits,
                                 fLayout.InterceptCount());
  return onDataScale;
}

int TavoOptimizer::FisherIterationsUsed() const {
  if (fMethod != EstimationMethod::kHybrid || fSummary.iterations < 1) return 0;
  return std::min(fSummary.iterations, fNFisherIterations);
}

bool TavoOptimizer::ComputeRSquares(double& coxSnell, double& nagelkerke, double& mcFadden) const {
  const double initial = fSummary.initialLogLikelihood;
  const double final = fSummary.finalLogLikelihood;
  coxSnell = nagelkerke = mcFadden = 0;
  if (fSummary.iterations <= 0 || !(fWeight > 0) || IsMissing(initial) || IsMissing(final)) return true;

  // expm1 keeps the digits of 1 - exp(x) for a fit that improves little.
  coxSnell = nagelkerke = mcFadden = MCMV::gMissingValue;
  const double perWeight = (2 * initial - 2 * final) / fWeight;
  if (perWeight <= MCPower::gMachineMaxExp) coxSnell = -std::expm1(perWeight);
  const double largest = 2 * initial / fWeight;
  if (largest <= MCPower::gMachineMaxExp && std::expm1(largest) != 0 && !IsMissing(coxSnell)) {
    nagelkerke = coxSnell / -std::expm1(largest);
  }
  if (initial != 0) {
    mcFadden = 1 - final / initial;
  } else if (final == 0) {
    mcFadden = 0;
  }
  return !IsMissing(coxSnell) && !IsMissing(nagelkerke) && !IsMissing(mcFadden);
}

}  // namespace tavo
