// One evaluation shared between workers.
#include <gtest/gtest.h>

#include "component/run/call_back_comp_stats.h"
#include "fit_bench.h"
#include "host/threads.h"
#include "test_threads.h"

namespace {

using namespace tavo;
using tavo_test::FitBench;
using tavo_test::ThreadService;

struct Sums {
  OrvStatus status;
  double logLikelihood = 0;
  double weight = 0;
  std::vector<double> scores;
  int slices = 0;
  int poolSize = 0;
};

template <class Stats = TavoAccumStats>
Sums EvaluateWith(int threads) {
  ThreadService service;
  FitBench bench(2, {3}, 1);
  tavo_test::AddBinaryReference(bench);
  bench.settings.SetThreads(threads, &service);
  EXPECT_TRUE(bench.PrepareModel());
  bench.PrepareFit<Stats>();
  bench.tabulator->AttachAccumulator(*bench.accumulator, *bench.model);
  bench.tabulator->SetMode(EstimationMethod::kFisherScoring, false);
  Sums sums;
  sums.status = bench.tabulator->EvaluateRows(false);
  sums.logLikelihood = bench.accumulator->LogLikelihood();
  sums.scores = bench.accumulator->Scores();
  int valid = 0, invalid = 0;
  bench.accumulator->GetCounts(valid, invalid, sums.weight);
  sums.slices = bench.tabulator->SliceCount();
  sums.poolSize = service.PoolSize();
  return sums;
}

TEST(Parallel, RequestedZeroOrNegativeGivesOneSliceAndNoPool) {
  for (const int threads : {0, -3, 1}) {
    const Sums sums = EvaluateWith(threads);
    EXPECT_EQ(sums.slices, 1);
    EXPECT_EQ(sums.poolSize, 0);
    EXPECT_FALSE(sums.status.IsError());
  }
}

TEST(Parallel, MoreThreadsThanRowsGivesOneRowPerSlice) {
  const Sums sums = EvaluateWith(40);
  EXPECT_EQ(sums.slices, 12);
  EXPECT_DOUBLE_EQ(sums.weight, 18);
}

TEST(Parallel, AnyNumberOfThreadsGivesTheSameSumsToRounding) {
  const Sums one = EvaluateWith(1);
  for (const int threads : {2, 3, 5, 12}) {
    const Sums many = EvaluateWith(threads);
    EXPECT_NEAR(many.logLikelihood, one.logLikelihood, 1e-14);
    for (std::size_t k = 0; k < one.scores.size(); ++k)
      EXPECT_NEAR(many.scores[k], one.scores[k], 1e-13);
  }
}

TEST(Parallel, TwoRunsWithTheSameThreadCountGiveIdenticalSums) {
  const Sums first = EvaluateWith(4);
  for (int run = 0; run < 20; ++run) {
    const Sums again = EvaluateWith(4);
    EXPECT_EQ(again.logLikelihood, first.logLikelihood);
    EXPECT_EQ(again.scores, first.scores);
  }
}

// Refuses the row whose weight is 3; with four slices of three rows in pattern order it lies beyond the first
// slice.
class StatsRefusingOneRow : public TavoAccumStats {
 public:
  using TavoAccumStats::TavoAccumStats;
  std::unique_ptr<TavoAccumStats> CloneEmpty() const override {
    return std::make_unique<StatsRefusingOneRow>(fSettings, fNParameters, fNCategories, fEstimates);
  }
  int UpdateForRow(const std::vector<int>& indices, const std::vector<double>& values, int category,
                   double weight, bool likelihoodOnly) override {
    return weight == 3.0 ? -1
                         : TavoAccumStats::UpdateForRow(indices, values, category, weight, likelihoodOnly);
  }
};

TEST(Parallel, AFailingRowReportsItsStatusAndItsSliceAndLaterOnesAreNotMerged) {
  const Sums sums = EvaluateWith<StatsRefusingOneRow>(4);
  EXPECT_TRUE(sums.status.IsError());
  EXPECT_EQ(sums.status.Code(), StatusCode::kUserError);
  // Each level's pattern holds four rows, in record order; the slices of three before the failing row are
  // whole.
  const double weightsOfSlices[] = {1.5 + 2.0 + 1.0, 0.75 + 1.0 + 0.5, 2.5 + 1.5 + 3.0};
  EXPECT_LT(sums.weight, 18 - 3.0);
  EXPECT_DOUBLE_EQ(sums.weight, weightsOfSlices[0] + weightsOfSlices[1]);
}

TEST(Parallel, AWholeFitAgreesWithTheFitOfOneThread) {
  ThreadService service;
  FitBench bench(2, {3}, 1);
  tavo_test::AddBinaryReference(bench);
  bench.settings.SetThreads(3, &service);
  ASSERT_TRUE(bench.Fit());
  EXPECT_EQ(bench.tabulator->SliceCount(), 3);
  const std::vector<double>& b = bench.model->Estimates();
  const auto& expected = tavo_test::kBinaryEstimates;
  EXPECT_NEAR(b[0], expected[0], 1e-10);
  EXPECT_NEAR(b[4], expected[3], 1e-10);
  EXPECT_NEAR(bench.optimizer->GetIterationSummary().finalLogLikelihood, tavo_test::kBinaryLogLikelihood,
              1e-13);
}

class SignalCounter final : public host::TaskCompletion {
 public:
  void Arm(int) override {}
  void Signal() override { ++signals; }
  void Wait() override {}
  int signals = 0;
};

TEST(CallBack, RunStoresTheStatusOfItsSliceAndSignals) {
  FitBench bench(2, {3}, 1);
  tavo_test::AddBinaryReference(bench);
  ASSERT_TRUE(bench.PrepareModel());
  bench.PrepareFit();
  SignalCounter counter;
  OrvStatus status = OrvStatus::Error(StatusCode::kUserError);
  EXPECT_EQ(TavoCallBackCompStats(*bench.tabulator, 0, counter, status).Run(), 0);
  EXPECT_TRUE(status.IsOK());
  EXPECT_EQ(counter.signals, 1);
  StatsRefusingOneRow refusing(bench.settings, bench.model->BasicNonRedundantCount(), 2, bench.estimates);
  bench.tabulator->AttachAccumulator(refusing, *bench.model);
  EXPECT_EQ(TavoCallBackCompStats(*bench.tabulator, 0, counter, status).Run(), 0);
  EXPECT_EQ(status.Code(), StatusCode::kUserError);
  EXPECT_EQ(counter.signals, 2);
}

}  // namespace
