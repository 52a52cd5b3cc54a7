#include "component/estimation/optimizer.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "component/numerics/missing_value.h"
#include "fit_bench.h"
#include "small_fits.h"

namespace {

using namespace tavo;
using MCCommonMath::MCMV;
using namespace tavo_test;
namespace Code = tavo::StatusCode;

void ExpectNear(const std::vector<double>& actual, const std::vector<double>& expected, double tolerance) {
  ASSERT_EQ(actual.size(), expected.size());
  for (std::size_t k = 0; k < expected.size(); ++k) {
    EXPECT_NEAR(actual[k], expected[k], tolerance * std::max(1.0, std::abs(expected[k]))) << k;
  }
}

std::vector<double> WithoutAliased(const TavoModel& model) {
  std::vector<double> kept;
  for (int k = 0; k < model.ParameterCount(); ++k) {
    if (model.AllBits().IsIn(k)) kept.push_back(model.Estimates()[static_cast<std::size_t>(k)]);
  }
  return kept;
}

TEST(Optimizer, FindsTheReferenceFitWithAnAliasedLevel) {
  FitBench bench(2, {3}, 1);
  AddBinaryReference(bench);
  ASSERT_TRUE(bench.Fit());
  ExpectNear(WithoutAliased(*bench.model), kBinaryEstimates, 1e-11);
  ExpectNear(bench.VariancesOnDataScale(), kBinaryVariances, 1e-10);
  const TavoOptimizer::Summary summary = bench.optimizer->GetIterationSummary();
  EXPECT_NEAR(summary.initialLogLikelihood, kBinaryInitialLogLikelihood, 1e-13);
  EXPECT_NEAR(summary.finalLogLikelihood, kBinaryLogLikelihood, 1e-13);
  EXPECT_DOUBLE_EQ(bench.optimizer->AccumulatedWeight(), 18);
}

TEST(Optimizer, FindsTheReferenceFitOfThreeCategories) {
  FitBench bench(3, {}, 1, 1);
  AddThreeReference(bench);
  ASSERT_TRUE(bench.Fit());
  ExpectNear(bench.model->Estimates(), kThreeEstimates, 1e-11);
  ExpectNear(bench.VariancesOnDataScale(), kThreeVariances, 1e-10);
  EXPECT_NEAR(bench.optimizer->GetIterationSummary().finalLogLikelihood, kThreeLogLikelihood, 1e-13);
}

TEST(Optimizer, FindsTheReferenceFitWithoutIntercept) {
  FitBench bench(2, {3}, 1, 1, false);
  AddBinaryReference(bench);
  ASSERT_TRUE(bench.Fit());
  ExpectNear(bench.model->Estimates(), kNoInterceptEstimates, 1e-11);
  ExpectNear(bench.VariancesOnDataScale(), kNoInterceptVariances, 1e-10);
  EXPECT_NEAR(bench.optimizer->GetIterationSummary().finalLogLikelihood, kBinaryLogLikelihood, 1e-13)
      << "the same model in other parameters";
}

TEST(Optimizer, WithoutInterceptACaseAtZeroCountsInTheLikelihood) {
  // Slope through the origin of (-1: 1), (1: 2), (1: 1), (1: 2) and (0: 1). At x = +-1 three of four cases
  // lie on the side of the slope: b = log 3. The case at 0 adds log(1/2).
  FitBench bench(2, {}, 1, -1, false);
  bench.Effect({}, {0}).Case(1, {}, {-1}).Case(2, {}, {1}).Case(1, {}, {1}).Case(2, {}, {1}).Case(1, {}, {0});
  ASSERT_TRUE(bench.Fit());
  EXPECT_NEAR(bench.model->Estimates()[0], std::log(3.0), 1e-10);
  EXPECT_NEAR(bench.optimizer->GetIterationSummary().finalLogLikelihood,
              3 * std::log(0.75) + std::log(0.25) + std::log(0.5), 1e-12);
  EXPECT_DOUBLE_EQ(bench.optimizer->AccumulatedWeight(), 5);
}

// ---- rules of the loop ----

TEST(Optimizer, AStepWithExactlyTheSameLogLikelihoodIsAcceptedWithoutHalving) {
  // Sums far above 0 are all clamped to 0, so every step leaves the log-likelihood as it was.
  FitBench bench(2, {}, 1);
  AddOrdered(bench, true);
  ASSERT_TRUE(bench.PrepareModel());
  bench.PrepareFit<BentStats>();
  static_cast<BentStats&>(*bench.accumulator).offset = 1e6;
  ASSERT_FALSE(bench.RunFit().IsError());
  EXPECT_EQ(bench.optimizer->GetTerminationState(), TerminationState::kParametersConverged);
  for (const OrvIterationData::Row& row : bench.history.Rows()) {
    EXPECT_EQ(row.stepHalvings, 0);
    EXPECT_EQ(row.minusTwoLogLikelihood, 0) << "a positive log-likelihood is never seen";
  }
}

TEST(Optimizer, ADecreaseBelowTheRoundingOfTheSumIsNone) {
  // A unit in the last place of 1e6 is 1.2e-10; the last steps of the fit gain less than that.
  FitBench bench(2, {}, 1);
  AddOrdered(bench, true);
  ASSERT_TRUE(bench.PrepareModel());
  bench.PrepareFit<BentStats>();
  auto& stats = static_cast<BentStats&>(*bench.accumulator);
  stats.offset = -1e6;
  stats.drift = 1.2e-10;
  ASSERT_FALSE(bench.RunFit().IsError());
  EXPECT_EQ(bench.optimizer->GetTerminationState(), TerminationState::kParametersConverged);
  EXPECT_LT(bench.history.Rows().back().minusTwoLogLikelihood, 2e6 + 20);
  for (const OrvIterationData::Row& row : bench.history.Rows())
    EXPECT_EQ(row.stepHalvings, 0);
}

TEST(Optimizer, ALogLikelihoodOfZeroMakesTheRelativeChangeADivisionByZeroThatNeverConverges) {
  FitBench bench(2, {}, 1);
  AddOrdered(bench, true);
  bench.settings.SetLogLikCriterion(0.5);
  ASSERT_TRUE(bench.PrepareModel());
  bench.PrepareFit<BentStats>();
  static_cast<BentStats&>(*bench.accumulator).offset = 1e6;
  ASSERT_FALSE(bench.RunFit().IsError());
  EXPECT_EQ(bench.optimizer->GetTerminationState(), TerminationState::kParametersConverged)
      << "not 1 and not 3";
  EXPECT_FALSE(bench.optimizer->GetIterationSummary().logLikelihoodChange < 0.5);
}

TEST(Optimizer, CriteriaOfZeroNeverFire) {
  FitBench bench(2, {}, 1);
  AddOrdered(bench, true);
  bench.settings.SetLogLikCriterion(0);
  bench.settings.SetParamCriterion(0);
  bench.settings.SetMaxIterations(12);
  const TerminationState state = FitAll(bench).GetTerminationState();
  EXPECT_TRUE(state == TerminationState::kMaxIterations || state == TerminationState::kNoIncrease);
}

TEST(Optimizer, AbsoluteCriteriaCompareUndividedChanges) {
  FitBench bench(2, {}, 1);
  AddOrdered(bench, true);
  bench.settings.SetLogLikAbsolute(true);
  bench.settings.SetParamAbsolute(true);
  bench.settings.SetMaxIterations(1);
  const TavoOptimizer& fit = FitAll(bench);
  const TavoOptimizer::Summary summary = fit.GetIterationSummary();
  EXPECT_DOUBLE_EQ(summary.logLikelihoodChange, summary.finalLogLikelihood - summary.initialLogLikelihood);
  const auto& rows = bench.history.Rows();
  ASSERT_EQ(rows.size(), 2u);
  EXPECT_DOUBLE_EQ(summary.parameterChange, std::abs(rows[1].estimates[0] - rows[0].estimates[0]) +
                                                std::abs(rows[1].estimates[1] - rows[0].estimates[1]));
}

TEST(Optimizer, ScalingTheWeightsLeavesTheEstimatesAlone) {
  std::vector<double> estimates;
  for (const double factor : {1.0, 1e-3, 1e5}) {
    FitBench bench(2, {3}, 1);
    bench.Effect({0}, {}).Effect({}, {0});
    for (const auto& c : kReferenceCases)
      bench.Case(c.response, {c.level}, {c.x}, c.weight * factor);
    ASSERT_TRUE(bench.Fit());
    ExpectNear(WithoutAliased(*bench.model), kBinaryEstimates, 1e-10);
  }
}

TEST(Optimizer, FarOutlyingCasesDoNotBreakTheFit) {
  FitBench bench(2, {}, 1);
  AddOrdered(bench, true);
  bench.Case(1, {}, {-1e8}).Case(2, {}, {1e8});
  const TavoOptimizer& fit = FitAll(bench);
  EXPECT_TRUE(std::isfinite(fit.GetIterationSummary().finalLogLikelihood));
  for (const double b : bench.estimates)
    EXPECT_TRUE(std::isfinite(b));
}

// ---- reports ----

TEST(History, AFrequencyOfThreeWithSevenIterationsReportsZeroThreeSixAndSeven) {
  FitBench bench(2, {}, 1);
  AddOrdered(bench, false);  // separated: it would go on
  bench.settings.SetHistoryFrequency(3);
  bench.settings.SetMaxIterations(7);
  FitAll(bench);
  std::vector<int> iterations;
  for (const auto& row : bench.history.Rows())
    iterations.push_back(row.iteration);
  EXPECT_EQ(iterations, (std::vector<int>{0, 3, 6, 7}));
}

TEST(History, TheLastIterationIsNotReportedTwice) {
  FitBench bench(2, {}, 1);
  AddOrdered(bench, false);
  bench.settings.SetHistoryFrequency(3);
  bench.settings.SetMaxIterations(6);
  FitAll(bench);
  ASSERT_EQ(bench.history.Rows().size(), 3u);
  EXPECT_EQ(bench.history.Rows().back().iteration, 6);
}

TEST(History, RowsHoldEstimatesOnTheScaleOfTheData) {
  FitBench bench(2, {3}, 1);
  AddBinaryReference(bench);
  ASSERT_TRUE(bench.Fit());
  const auto& rows = bench.history.Rows();
  EXPECT_EQ(static_cast<int>(rows.size()), bench.optimizer->GetIterationSummary().iterations + 1);
  ExpectNear(rows.back().estimates, kBinaryEstimates, 1e-11);
  ExpectNear(rows.front().estimates, {0, 0, 0, 0}, 1e-14);  // both categories have half the weight
  EXPECT_NEAR(rows.back().minusTwoLogLikelihood, -2 * kBinaryLogLikelihood, 1e-12);
}

// ---- stops ----

// Cancels while it takes a row.
class CancellingStats : public TavoAccumStats {
 public:
  using TavoAccumStats::TavoAccumStats;
  int UpdateForRow(const std::vector<int>& indices, const std::vector<double>& values, int category,
                   double weight, bool likelihoodOnly) override {
    cancel->Cancel();
    return TavoAccumStats::UpdateForRow(indices, values, category, weight, likelihoodOnly);
  }
  OrvCancelInfo* cancel = nullptr;
};

TEST(Cancel, DuringTheFirstEvaluationLeavesNoRowAndStatusOne) {
  FitBench bench(2, {3}, 1);
  AddBinaryReference(bench);
  ASSERT_TRUE(bench.PrepareModel());
  bench.PrepareFit<CancellingStats>();
  static_cast<CancellingStats&>(*bench.accumulator).cancel = &bench.cancel;
  const OrvStatus status = bench.RunFit();
  EXPECT_TRUE(status.IsError());
  EXPECT_EQ(status.Code(), Code::kCancelled);
  EXPECT_TRUE(bench.history.Rows().empty());
  EXPECT_EQ(bench.optimizer->Hessian().GetNRows(), 0);
}

// Does something at the report of one iteration.
template <class Action>
class ActingListener : public ProgressListener {
 public:
  ActingListener(int iteration, Action action) : fIteration(iteration), fAction(action) {}
  void Update(const ProgressReport& report) override {
    if (report.GetInt("iterNum") == fIteration) fAction();
  }

 private:
  int fIteration;
  Action fAction;
};

TEST(Cancel, BetweenIterationsKeepsTheEstimatesReachedAndGivesStatusOne) {
  FitBench bench(2, {3}, 1);
  AddBinaryReference(bench);
  ASSERT_TRUE(bench.PrepareModel());
  bench.PrepareFit();
  std::vector<double> reached;
  ActingListener listener(2, [&] {
    reached = bench.estimates;
    bench.cancel.Cancel();
  });
  TavoOptimizer fit(bench.settings, bench.model->FitLayout(), *bench.evaluator, bench.estimates, bench.cancel,
                    &listener, 1);
  EXPECT_EQ(fit.Estimate().Code(), Code::kCancelled);
  EXPECT_EQ(fit.GetIterationSummary().iterations, 2);
  EXPECT_EQ(bench.estimates, reached);
}

TEST(RequestStop, EndsTheFitWithoutErrorStateOrInverse) {
  FitBench bench(2, {3}, 1);
  AddBinaryReference(bench);
  ASSERT_TRUE(bench.PrepareModel());
  bench.PrepareFit();
  TavoOptimizer* running = nullptr;
  ActingListener listener(1, [&] { running->RequestStop(); });
  TavoOptimizer fit(bench.settings, bench.model->FitLayout(), *bench.evaluator, bench.estimates, bench.cancel,
                    &listener, 1);
  running = &fit;
  EXPECT_TRUE(fit.Estimate().IsOK());
  EXPECT_EQ(fit.GetTerminationState(), TerminationState::kNone);
  EXPECT_EQ(fit.GetIterationSummary().iterations, 1);
  EXPECT_EQ(fit.Hessian().GetNRows(), 0);
}

// Asks for a stop during the first trial of a step.
class StoppingStats : public BentStats {
 public:
  using BentStats::BentStats;
  void Reset(EstimationMethod method, bool check) override {
    BentStats::Reset(method, check);
    if (++passes == 2) optimizer->RequestStop();
  }
  TavoOptimizer* optimizer = nullptr;
  int passes = 0;
};

TEST(RequestStop, AtTheHeadOfATrialRestoresTheEstimatesAndIsNoConvergence) {
  FitBench bench(2, {}, 1);
  AddOrdered(bench, true);
  bench.settings.SetLogLikCriterion(0.5);
  ASSERT_TRUE(bench.PrepareModel());
  const std::vector<double> start = bench.estimates;
  bench.PrepareFit<StoppingStats>();
  auto& stats = static_cast<StoppingStats&>(*bench.accumulator);
  stats.optimizer = bench.optimizer.get();
  stats.MakeTrialsWorse();
  EXPECT_TRUE(bench.RunFit().IsOK());
  EXPECT_EQ(bench.optimizer->GetTerminationState(), TerminationState::kNone);
  EXPECT_EQ(bench.estimates, start);
}

class RefusingStats : public TavoAccumStats {
 public:
  using TavoAccumStats::TavoAccumStats;
  int UpdateForRow(const std::vector<int>&, const std::vector<double>&, int, double, bool) override {
    return -1;
  }
};

TEST(Optimizer, ABadStatusOfAnEvaluationEndsTheFit) {
  FitBench bench(2, {3}, 1);
  AddBinaryReference(bench);
  ASSERT_TRUE(bench.PrepareModel());
  bench.PrepareFit<RefusingStats>();
  EXPECT_EQ(bench.RunFit().Code(), Code::kUserError);
  EXPECT_EQ(bench.optimizer->Hessian().GetNRows(), 0);
  EXPECT_TRUE(bench.history.Rows().empty());
}

// ---- methods ----

TEST(Hybrid, SwitchesOnceAndReachesTheSameEstimates) {
  for (const int fisherIterations : {2, 50}) {
    FitBench bench(2, {3}, 1);
    AddBinaryReference(bench);
    ASSERT_TRUE(bench.PrepareModel());
    bench.PrepareFit(EstimationMethod::kHybrid, fisherIterations);
    ASSERT_FALSE(bench.RunFit().IsError());
    bench.model->SetEstimates(bench.estimates, bench.optimizer->Hessian());
    ExpectNear(WithoutAliased(*bench.model), kBinaryEstimates, 1e-11);
    EXPECT_EQ(bench.optimizer->GetTerminationState(), TerminationState::kParametersConverged);
    const int used = bench.optimizer->FisherIterationsUsed();
    EXPECT_LE(used, fisherIterations);
    EXPECT_GE(used, 2);
    EXPECT_GT(bench.optimizer->GetIterationSummary().iterations, used) << "it goes on after the switch";
  }
}

TEST(Hybrid, OtherMethodsUseNoFisherIterations) {
  for (const EstimationMethod method : {EstimationMethod::kFisherScoring, EstimationMethod::kNewtonRaphson}) {
    FitBench bench(2, {3}, 1);
    AddBinaryReference(bench);
    ASSERT_TRUE(bench.PrepareModel());
    bench.PrepareFit(method, 3);
    ASSERT_FALSE(bench.RunFit().IsError());
    EXPECT_EQ(bench.optimizer->FisherIterationsUsed(), 0);
  }
}

// ---- pseudo R squares ----

TEST(RSquares, AreThoseOfTheReferenceFit) {
  FitBench bench(2, {3}, 1);
  AddBinaryReference(bench);
  ASSERT_TRUE(bench.Fit());
  double coxSnell = 0, nagelkerke = 0, mcFadden = 0;
  ASSERT_TRUE(bench.optimizer->ComputeRSquares(coxSnell, nagelkerke, mcFadden));
  EXPECT_NEAR(coxSnell, kBinaryCoxSnell, 1e-14);
  EXPECT_NEAR(nagelkerke, kBinaryNagelkerke, 1e-14);
  EXPECT_NEAR(mcFadden, kBinaryMcFadden, 1e-14);
}

TEST(RSquares, AreZeroWithoutIterations) {
  FitBench bench(2, {3}, 1);
  AddBinaryReference(bench);
  bench.settings.SetMaxIterations(0);
  double coxSnell = 1, nagelkerke = 1, mcFadden = 1;
  EXPECT_TRUE(FitAll(bench).ComputeRSquares(coxSnell, nagelkerke, mcFadden));
  EXPECT_EQ(coxSnell, 0);
  EXPECT_EQ(nagelkerke, 0);
  EXPECT_EQ(mcFadden, 0);
}

TEST(RSquares, WithBothLogLikelihoodsZeroNagelkerkeStaysMissing) {
  FitBench bench(2, {}, 1);
  AddOrdered(bench, true);
  ASSERT_TRUE(bench.PrepareModel());
  bench.PrepareFit<BentStats>();
  static_cast<BentStats&>(*bench.accumulator).offset = 1e6;
  ASSERT_FALSE(bench.RunFit().IsError());
  double coxSnell = 1, nagelkerke = 1, mcFadden = 1;
  EXPECT_FALSE(bench.optimizer->ComputeRSquares(coxSnell, nagelkerke, mcFadden));
  EXPECT_EQ(coxSnell, 0);
  EXPECT_EQ(nagelkerke, MCMV::gMissingValue);
  EXPECT_EQ(mcFadden, 0);
}

}  // namespace
