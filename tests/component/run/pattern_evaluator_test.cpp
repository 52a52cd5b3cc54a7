#include "component/run/pattern_evaluator.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>

#include "tabulation_bench.h"

namespace tavo {
namespace {

using namespace tavo_test;
using MCCommonMath::MCSymMatrix;

/// A prepared survey of three categories, at parameters that differ from 0.
struct Prepared {
  explicit Prepared(int threads = 1) {
    settings.Stage({kStratum}, {kCluster}).Factor(kA, 3).Covariate(kX).Effect({kA}).Effect({}, {kX});
    settings.Get().SetThreads(threads, &service);
    bench = std::make_unique<TabulationBench>(settings, RowsOf(SampleSurvey(200, 3)));
    bench->Prepare();
    for (std::size_t i = 0; i < bench->estimates.size(); ++i)
      bench->estimates[i] = 0.1 * static_cast<double>(i) - 0.2;
    accumulator = bench->MakeAccumulator();
  }

  ThreadService service;
  SurveySettings settings = SurveySettings(3);
  std::unique_ptr<TabulationBench> bench;
  std::unique_ptr<TavoAccumStats> accumulator;
};

TEST(PatternEvaluator, BothQuestionsHaveOneLogLikelihoodWithAnyNumberOfThreads) {
  for (const int threads : {1, 3}) {
    Prepared survey(threads);
    TavoPatternEvaluator evaluator(*survey.bench->tabulator, *survey.accumulator, survey.bench->model);
    double logLikelihood = 0;
    ASSERT_TRUE(evaluator.EvaluateLikelihood(logLikelihood).IsOK());
    TavoEvaluation sums;
    MCSymMatrix information;
    ASSERT_TRUE(evaluator.EvaluateAll(EstimationMethod::kFisherScoring, false, sums, information).IsOK());
    EXPECT_LT(logLikelihood, 0);
    EXPECT_EQ(sums.logLikelihood, logLikelihood);
    EXPECT_NEAR(sums.weight, survey.bench->tables.TotalWeight(), 1e-10);
    EXPECT_EQ(information.GetNRows(), survey.bench->model.AllNonRedundantCount());
  }
}

TEST(PatternEvaluator, TheScoreIsTheSlopeOfTheLogLikelihoodAndTheInformationThatOfTheScore) {
  Prepared survey;
  TavoPatternEvaluator evaluator(*survey.bench->tabulator, *survey.accumulator, survey.bench->model);
  TavoEvaluation here, above, below;
  MCSymMatrix information, other;
  ASSERT_TRUE(evaluator.EvaluateAll(EstimationMethod::kFisherScoring, false, here, information).IsOK());
  constexpr double kStep = 1e-5;
  for (std::size_t k = 0; k < survey.bench->estimates.size(); ++k) {
    double& estimate = survey.bench->estimates[k];
    const double at = estimate;
    estimate = at + kStep;
    evaluator.EvaluateAll(EstimationMethod::kFisherScoring, false, above, other);
    estimate = at - kStep;
    evaluator.EvaluateAll(EstimationMethod::kFisherScoring, false, below, other);
    estimate = at;
    EXPECT_NEAR((above.logLikelihood - below.logLikelihood) / (2 * kStep), here.scores[k], 1e-4);
    for (std::size_t j = 0; j <= k; ++j) {
      EXPECT_NEAR((above.scores[j] - below.scores[j]) / (2 * kStep),
                  -information.GetElem(static_cast<int>(k), static_cast<int>(j)), 1e-4);
    }
  }
}

TEST(PatternEvaluator, FollowsTheExtremesOfTheProbabilitiesWhenAskedTo) {
  Prepared survey;
  TavoPatternEvaluator evaluator(*survey.bench->tabulator, *survey.accumulator, survey.bench->model);
  TavoEvaluation sums;
  MCSymMatrix information;
  ASSERT_TRUE(evaluator.EvaluateAll(EstimationMethod::kFisherScoring, false, sums, information).IsOK());
  EXPECT_GT(sums.minObserved, 1) << "not followed";
  ASSERT_TRUE(evaluator.EvaluateAll(EstimationMethod::kFisherScoring, true, sums, information).IsOK());
  EXPECT_GT(sums.minComputed, 0);
  EXPECT_LE(sums.minComputed, sums.minObserved);
  EXPECT_LT(sums.minObserved, sums.maxObserved);
  EXPECT_LT(sums.maxObserved, 1);
}

TEST(PatternEvaluator, AfterACancelBothQuestionsAnswerAnError) {
  Prepared survey;
  TavoPatternEvaluator evaluator(*survey.bench->tabulator, *survey.accumulator, survey.bench->model);
  survey.bench->cancel.Cancel();
  double logLikelihood = 0;
  TavoEvaluation sums;
  MCSymMatrix information;
  EXPECT_EQ(evaluator.EvaluateLikelihood(logLikelihood), OrvStatus::Error(StatusCode::kCancelled));
  EXPECT_EQ(evaluator.EvaluateAll(EstimationMethod::kFisherScoring, false, sums, information),
            OrvStatus::Error(StatusCode::kCancelled));
  EXPECT_EQ(information.GetNRows(), 0) << "nothing was filled";
}

TEST(PatternEvaluator, TwoFitsOneAfterTheOtherHaveSumsOfTheirOwn) {
  Prepared survey(2);
  double first = 0;
  {
    TavoPatternEvaluator evaluator(*survey.bench->tabulator, *survey.accumulator, survey.bench->model);
    ASSERT_TRUE(evaluator.EvaluateLikelihood(first).IsOK());
  }
  const auto other = survey.bench->MakeAccumulator();
  survey.bench->estimates[0] += 1;
  TavoPatternEvaluator evaluator(*survey.bench->tabulator, *other, survey.bench->model);
  double second = 0;
  ASSERT_TRUE(evaluator.EvaluateLikelihood(second).IsOK());
  EXPECT_NE(second, first);
  EXPECT_EQ(survey.accumulator->LogLikelihood(), first);
}

}  // namespace
}  // namespace tavo
