// How a fit ends: each termination state reached by data made for it.
#include <gtest/gtest.h>

#include "component/estimation/optimizer.h"
#include "component/numerics/missing_value.h"
#include "small_fits.h"

namespace {

using namespace tavo;
using namespace tavo_test;
using MCCommonMath::MCMV;

TEST(TerminationState, OneForASmallChangeOfTheLogLikelihood) {
  FitBench bench(2, {}, 1);
  AddOrdered(bench, true);
  bench.settings.SetLogLikCriterion(1e-4);
  bench.settings.SetParamCriterion(0);
  const TavoOptimizer& fit = FitAll(bench);
  EXPECT_EQ(fit.GetTerminationState(), TerminationState::kLogLikelihoodConverged);
  EXPECT_LT(fit.GetIterationSummary().logLikelihoodChange, 1e-4);
}

TEST(TerminationState, TwoForASmallChangeOfTheParameters) {
  FitBench bench(2, {}, 1);
  AddOrdered(bench, true);
  const TavoOptimizer& fit = FitAll(bench);
  EXPECT_EQ(fit.GetTerminationState(), TerminationState::kParametersConverged);
  EXPECT_LT(fit.GetIterationSummary().parameterChange, 1e-6);
}

TEST(TerminationState, ThreeForBothAtOnce) {
  FitBench bench(2, {}, 1);
  AddOrdered(bench, true);
  bench.settings.SetLogLikCriterion(1e-12);
  EXPECT_EQ(FitAll(bench).GetTerminationState(), TerminationState::kBothConverged);
}

TEST(TerminationState, FourBeforeTheStartingIterationOfTheSeparationCheckNeverSevenOrEight) {
  for (const bool quasi : {false, true}) {
    FitBench bench(2, {}, 1);
    if (quasi) {
      AddQuasiSeparated(bench);
    } else {
      AddOrdered(bench, false);
    }
    bench.settings.SetStartingIteration(quasi ? 90 : 0);
    bench.settings.SetParamCriterion(0);
    EXPECT_EQ(FitAll(bench).GetTerminationState(), TerminationState::kSingularHessian);
  }
}

TEST(TerminationState, FiveWhenNoHalvingOfTheStepIncreasesTheLogLikelihood) {
  FitBench bench(2, {}, 1);
  AddOrdered(bench, true);
  bench.settings.SetMaxStepHalving(3);
  ASSERT_TRUE(bench.PrepareModel());
  const std::vector<double> start = bench.estimates;
  bench.PrepareFit<BentStats>();
  static_cast<BentStats&>(*bench.accumulator).MakeTrialsWorse();
  ASSERT_FALSE(bench.RunFit().IsError());
  EXPECT_EQ(bench.optimizer->GetTerminationState(), TerminationState::kNoIncrease);
  EXPECT_EQ(bench.estimates, start) << "the estimates before the step";
  EXPECT_EQ(bench.history.Rows().back().stepHalvings, 3);
  const TavoOptimizer::Summary summary = bench.optimizer->GetIterationSummary();
  EXPECT_EQ(summary.logLikelihoodChange, 0);
  EXPECT_EQ(summary.parameterChange, 0);
  EXPECT_DOUBLE_EQ(summary.finalLogLikelihood, summary.initialLogLikelihood);
  EXPECT_GT(bench.optimizer->Hessian().GetElem(0, 0), 0) << "inverted at the restored estimates";
}

TEST(TerminationState, FiveAfterAsManyTrialsAsAllowed) {
  // No setter accepts 0 halvings, so the smallest limit: a worse step, one worse half, no more.
  FitBench bench(2, {}, 1);
  AddOrdered(bench, true);
  bench.settings.SetMaxStepHalving(1);
  ASSERT_TRUE(bench.PrepareModel());
  bench.PrepareFit<BentStats>();
  static_cast<BentStats&>(*bench.accumulator).MakeTrialsWorse();
  ASSERT_FALSE(bench.RunFit().IsError());
  EXPECT_EQ(bench.optimizer->GetTerminationState(), TerminationState::kNoIncrease);
  EXPECT_EQ(bench.history.Rows().back().stepHalvings, 1);
}

TEST(TerminationState, SixForTheMaximumNumberOfIterations) {
  FitBench bench(2, {}, 1);
  AddOrdered(bench, true);
  bench.settings.SetMaxIterations(2);
  const TavoOptimizer& fit = FitAll(bench);
  EXPECT_EQ(fit.GetTerminationState(), TerminationState::kMaxIterations);
  EXPECT_EQ(fit.GetIterationSummary().iterations, 2);
}

TEST(TerminationState, SevenWhenAllObservedProbabilitiesAreNearOneEvenWithARegularHessian) {
  FitBench bench(2, {}, 1);
  AddOrdered(bench, false);
  bench.settings.SetStartingIteration(1);
  bench.settings.SetParamCriterion(0);
  const TavoOptimizer& fit = FitAll(bench);
  EXPECT_EQ(fit.GetTerminationState(), TerminationState::kCompleteSeparation);
  EXPECT_GT(fit.Hessian().GetElem(0, 0), 0);
  EXPECT_GT(fit.Hessian().GetElem(1, 1), 0);
  EXPECT_LT(fit.GetIterationSummary().iterations, 20);
}

TEST(TerminationState, SevenIsFoundAtTheDefaultStartingIterationAtTheLatest) {
  FitBench bench(2, {}, 1);
  AddOrdered(bench, false);
  const TavoOptimizer& fit = FitAll(bench);
  EXPECT_EQ(fit.GetTerminationState(), TerminationState::kCompleteSeparation);
  EXPECT_EQ(fit.GetIterationSummary().iterations, 20);
}

TEST(TerminationState, EightForQuasiCompleteSeparation) {
  FitBench bench(2, {}, 1);
  AddQuasiSeparated(bench);
  bench.settings.SetStartingIteration(1);
  bench.settings.SetParamCriterion(0);
  const TavoOptimizer& fit = FitAll(bench);
  EXPECT_EQ(fit.GetTerminationState(), TerminationState::kQuasiCompleteSeparation);
  EXPECT_LT(fit.GetIterationSummary().iterations, 100);
}

TEST(TerminationState, PopulationWeightsAreNoSeparationWithoutIntercept) {
  // The internal scale of factor columns depends on the total weight then; the distance from singularity must
  // not.
  for (const double factor : {1.0, 1e8}) {
    FitBench bench(2, {3}, 1, 1, false);
    bench.Effect({0}, {}).Effect({}, {0});
    for (const auto& c : kReferenceCases)
      bench.Case(c.response, {c.level}, {c.x}, c.weight * factor);
    bench.settings.SetStartingIteration(1);
    EXPECT_EQ(FitAll(bench).GetTerminationState(), TerminationState::kParametersConverged) << factor;
  }
}

TEST(TerminationState, EightIsFoundWithoutInterceptToo) {
  for (const double factor : {1.0, 1e8}) {
    FitBench bench(2, {2}, 1, 0, false);
    bench.Effect({0}, {}).Effect({}, {0});
    // Level 2 has one category only; in level 1 they overlap.
    for (const auto& c : kReferenceCases)
      bench.Case(c.response, {1}, {c.x}, factor);
    bench.Case(2, {2}, {1}, factor).Case(2, {2}, {3}, factor);
    bench.settings.SetStartingIteration(1);
    bench.settings.SetParamCriterion(0);
    EXPECT_EQ(FitAll(bench).GetTerminationState(), TerminationState::kQuasiCompleteSeparation) << factor;
  }
}

TEST(TerminationState, NineForInterceptsOnlyAndTheHessianIsInvertedAllTheSame) {
  FitBench bench(2, {}, 1);
  for (const auto& c : kReferenceCases)
    bench.Case(c.response, {}, {c.x}, c.weight);
  const TavoOptimizer& fit = FitAll(bench);
  EXPECT_EQ(fit.GetTerminationState(), TerminationState::kNoIterations);
  EXPECT_EQ(fit.GetIterationSummary().iterations, 0);
  const double p = 8.0 / 18 + 1.0 / 18;  // weight 9 of 18 in category 1
  EXPECT_NEAR(fit.Hessian().GetElem(0, 0), 1 / (18 * p * (1 - p)), 1e-12);
  EXPECT_DOUBLE_EQ(fit.AccumulatedWeight(), 18);
  ASSERT_EQ(bench.history.Rows().size(), 1u) << "a fit in state 9 still has the row of iteration 0";
  EXPECT_EQ(bench.history.Rows()[0].iteration, 0);
  EXPECT_NEAR(bench.history.Rows()[0].minusTwoLogLikelihood, -2 * kBinaryInitialLogLikelihood, 1e-12);
}

TEST(TerminationState, NineForNoIterationsAllowedAndTheFinalLogLikelihoodStaysMissing) {
  FitBench bench(2, {3}, 1);
  AddBinaryReference(bench);
  bench.settings.SetMaxIterations(0);
  const TavoOptimizer& fit = FitAll(bench);
  EXPECT_EQ(fit.GetTerminationState(), TerminationState::kNoIterations);
  EXPECT_EQ(fit.GetIterationSummary().finalLogLikelihood, MCMV::gMissingValue);
  EXPECT_NEAR(fit.GetIterationSummary().initialLogLikelihood, kBinaryInitialLogLikelihood, 1e-13);
  EXPECT_GT(fit.Hessian().GetElem(3, 3), 0);
}

TEST(TerminationState, NineBeforeTheFit) {
  FitBench bench(2, {3}, 1);
  AddBinaryReference(bench);
  ASSERT_TRUE(bench.PrepareModel());
  bench.PrepareFit();
  EXPECT_EQ(bench.optimizer->GetTerminationState(), TerminationState::kNoIterations);
  EXPECT_EQ(bench.optimizer->GetIterationSummary().initialLogLikelihood, MCMV::gMissingValue);
}

}  // namespace
