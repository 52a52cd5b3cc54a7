// The evaluation of the likelihood in slices of rows.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <stdexcept>

#include "tabulation_bench.h"

namespace tavo {
namespace {

using namespace tavo_test;

struct Sliced {
  explicit Sliced(const std::vector<Case>& cases, int threads = 1) {
    settings.Stage({kStratum}, {kCluster})
        .Factor(kA, 3)
        .Factor(kB, 2)
        .Covariate(kX)
        .Effect({kA})
        .Effect({kB});
    settings.Effect({}, {kX});
    settings.Get().SetThreads(threads, &service);
    bench = std::make_unique<TabulationBench>(settings, RowsOf(cases));
    bench->Prepare();
  }

  TavoPatternTabulator& Tabulator() { return *bench->tabulator; }
  /// One full evaluation at parameters that differ from 0.
  std::unique_ptr<TavoAccumStats> Evaluate() {
    for (std::size_t i = 0; i < bench->estimates.size(); ++i)
      bench->estimates[i] = 0.1 * static_cast<double>(i) - 0.2;
    auto accumulator = bench->MakeAccumulator();
    Tabulator().AttachAccumulator(*accumulator, bench->model);
    Tabulator().SetMode(EstimationMethod::kFisherScoring, false);
    EXPECT_TRUE(Tabulator().EvaluateRows(false).IsOK());
    Tabulator().Detach();
    return accumulator;
  }

  ThreadService service;
  SurveySettings settings;
  std::unique_ptr<TabulationBench> bench;
};

TEST(Slices, TenRowsAndThreeThreadsMakeFourThreeThree) {
  Sliced sliced(SampleSurvey(10), 3);
  EXPECT_EQ(sliced.Tabulator().SliceRows(), (std::vector<int>{4, 3, 3}));
  EXPECT_EQ(sliced.service.PoolSize(), 3);
}

TEST(Slices, MoreThreadsThanRowsGiveOneRowEach) {
  Sliced sliced(SampleSurvey(5), 64);
  EXPECT_EQ(sliced.Tabulator().SliceCount(), 5);
  EXPECT_EQ(sliced.Tabulator().SliceRows(), (std::vector<int>{1, 1, 1, 1, 1}));
}

TEST(Slices, ZeroOrNegativeThreadsGiveOneSliceAndNoPool) {
  for (const int threads : {0, -3, 1}) {
    Sliced sliced(SampleSurvey(10), threads);
    EXPECT_EQ(sliced.Tabulator().SliceRows(), (std::vector<int>{10}));
    EXPECT_EQ(sliced.service.PoolSize(), 0);
  }
}

TEST(Slices, WithoutAThreadServiceThereIsOneSlice) {
  Sliced sliced(SampleSurvey(10));
  sliced.settings.Get().SetThreads(4, nullptr);
  sliced.Tabulator().SetThreads(4);
  EXPECT_EQ(sliced.Tabulator().SliceCount(), 1);
}

class NoThreads final : public host::TaskThreadService {
 public:
  std::unique_ptr<host::TaskThreadPool> MakePool(int) override {
    throw std::runtime_error("no threads left");
  }
  std::unique_ptr<host::TaskCompletion> MakeCompletion() override { return std::make_unique<Countdown>(); }
};

TEST(Slices, AHostWithoutThreadsToGiveLeavesOneSlice) {
  Sliced sliced(SampleSurvey(10));
  NoThreads service;
  sliced.settings.Get().SetThreads(4, &service);
  sliced.Tabulator().SetThreads(4);
  EXPECT_EQ(sliced.Tabulator().SliceRows(), (std::vector<int>{10}));
  EXPECT_LT(sliced.Evaluate()->LogLikelihood(), 0);
}

TEST(Slices, TwoRunsWithTheSameThreadCountGiveIdenticalSums) {
  const std::vector<Case> cases = SampleSurvey(500);
  Sliced first(cases, 4);
  Sliced second(cases, 4);
  const auto a = first.Evaluate();
  const auto b = second.Evaluate();
  const auto again = first.Evaluate();
  EXPECT_EQ(a->LogLikelihood(), b->LogLikelihood());
  EXPECT_EQ(a->Scores(), b->Scores());
  EXPECT_EQ(a->Scores(), again->Scores());
}

TEST(Slices, AnyNumberOfSlicesGivesTheSumsOfOne) {
  const std::vector<Case> cases = SampleSurvey(301);
  const auto expected = Sliced(cases, 1).Evaluate();
  for (const int threads : {2, 3, 7, 301}) {
    const auto sums = Sliced(cases, threads).Evaluate();
    EXPECT_NEAR(sums->LogLikelihood(), expected->LogLikelihood(),
                1e-12 * std::abs(expected->LogLikelihood()));
    for (std::size_t i = 0; i < expected->Scores().size(); ++i) {
      EXPECT_NEAR(sums->Scores()[i], expected->Scores()[i], 1e-10);
    }
    int valid = 0;
    int invalid = 0;
    double weight = 0;
    sums->GetCounts(valid, invalid, weight);
    EXPECT_EQ(valid, 301);
  }
}

/// Hands out clones of which one refuses every row.
class OneBadClone final : public TavoAccumStats {
 public:
  using TavoAccumStats::TavoAccumStats;

  std::unique_ptr<TavoAccumStats> CloneEmpty() const override {
    if (fNClones++ != fBad) return TavoAccumStats::CloneEmpty();
    auto bad = std::make_unique<OneBadClone>(fSettings, fNParameters, fNCategories, fEstimates);
    bad->fbRefuses = true;
    return bad;
  }
  int UpdateForRow(const std::vector<int>& indices, const std::vector<double>& values, int category,
                   double weight, bool likelihoodOnly) override {
    if (fbRefuses) return -1;
    return TavoAccumStats::UpdateForRow(indices, values, category, weight, likelihoodOnly);
  }
  void SetBad(int clone) { fBad = clone; }

 private:
  mutable int fNClones = 0;
  int fBad = -1;
  bool fbRefuses = false;
};

TEST(Slices, AFailingRowInOneSliceReportsItsStatusAndNothingIsMergedFromThereOn) {
  Sliced sliced(SampleSurvey(40), 4);
  TabulationBench& bench = *sliced.bench;
  OneBadClone accumulator(sliced.settings.Get(), bench.model.BasicNonRedundantCount(),
                          bench.model.CategoryCount(), bench.estimates);
  accumulator.SetBad(2);
  sliced.Tabulator().AttachAccumulator(accumulator, bench.model);
  sliced.Tabulator().SetMode(EstimationMethod::kFisherScoring, false);
  const OrvStatus status = sliced.Tabulator().EvaluateRows(false);
  EXPECT_TRUE(status.IsError());
  EXPECT_EQ(status.Code(), StatusCode::kUserError);
  int valid = 0;
  int invalid = 0;
  double weight = 0;
  accumulator.GetCounts(valid, invalid, weight);
  EXPECT_EQ(valid, 20);  // the first two slices
}

TEST(Slices, ACancelledEvaluationAnswersOne) {
  for (const int threads : {1, 3}) {
    Sliced sliced(SampleSurvey(30), threads);
    const auto accumulator = sliced.bench->MakeAccumulator();
    sliced.Tabulator().AttachAccumulator(*accumulator, sliced.bench->model);
    sliced.bench->cancel.Cancel();
    EXPECT_EQ(sliced.Tabulator().EvaluateRows(false).Code(), StatusCode::kCancelled);
  }
}

#ifndef NDEBUG
TEST(SlicesDeathTest, AnEvaluationNeedsAnAccumulatorAndASliceThatExists) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  Sliced sliced(SampleSurvey(10));
  EXPECT_DEATH(sliced.Tabulator().EvaluateSlice(0), "fpAccumulator");
  EXPECT_DEATH(sliced.Tabulator().EvaluateRows(true), "fpAccumulator");
  const auto accumulator = sliced.bench->MakeAccumulator();
  sliced.Tabulator().AttachAccumulator(*accumulator, sliced.bench->model);
  EXPECT_DEATH(sliced.Tabulator().EvaluateSlice(1), "fNSlices");
  EXPECT_DEATH(sliced.Tabulator().EvaluateSlice(-1), "fNSlices");
  EXPECT_TRUE(sliced.Tabulator().EvaluateSlice(0).IsOK());
}
#endif

}  // namespace
}  // namespace tavo
