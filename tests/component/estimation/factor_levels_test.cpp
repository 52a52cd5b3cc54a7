// The categories of a factor that are in use, and which of them is compared with.
#include <gtest/gtest.h>

#include "fit_bench.h"

namespace {

using namespace tavo;
using tavo_test::FitBench;
namespace Code = tavo::StatusCode;

constexpr int kFactorColumn = 1;

// Categories 1, 3 and 4 of five have weight; 2 has a case of weight 0, 5 has none.
FitBench& WithThreeLevelsOfFive(FitBench& bench) {
  bench.Effect({0}, {});
  bench.Case(1, {4}, {}, 2).Case(2, {1}, {}, 1.5).Case(1, {3}, {}, 4).Case(2, {4}, {}, 0.5);
  bench.Case(2, {2}, {}, 0);
  EXPECT_FALSE(bench.SetUp().IsError());
  return bench;
}

TEST(FactorLevels, OtherLevelsAscendAndTheReferenceStandsLastWithItsCount) {
  FitBench bench(2, {5}, 0);
  WithThreeLevelsOfFive(bench);
  const struct {
    int request;
    std::vector<int> levels;
    std::vector<double> counts;
  } cases[] = {{0, {1, 3, 4}, {1.5, 4, 2.5}},   // the highest
               {-1, {3, 4, 1}, {4, 2.5, 1.5}},  // the lowest
               {4, {1, 3, 4}, {1.5, 4, 2.5}},   // named
               {3, {1, 4, 3}, {1.5, 2.5, 4}},   // named, in the middle
               {1, {3, 4, 1}, {4, 2.5, 1.5}}};
  for (const auto& c : cases) {
    for (const bool isControl : {false, true}) {
      std::vector<int> levels = {9, 9};
      std::vector<double> counts = {9};
      EXPECT_TRUE(bench.model->FactorLevels(0, c.request, isControl, levels, counts).IsOK()) << c.request;
      EXPECT_EQ(levels, c.levels) << c.request;
      EXPECT_EQ(counts, c.counts) << c.request;
    }
  }
}

TEST(FactorLevels, ARequestedCategoryThatIsNotInUseFallsBackOnTheHighestWithAWarning) {
  FitBench bench(2, {5}, 0);
  WithThreeLevelsOfFive(bench);
  for (const int request : {2, 5, 17}) {
    for (const bool isControl : {false, true}) {
      std::vector<int> levels;
      std::vector<double> counts;
      const OrvStatus status = bench.model->FactorLevels(0, request, isControl, levels, counts);
      EXPECT_TRUE(status.IsWarning());
      EXPECT_EQ(status.Code(), isControl ? Code::kOddsControlNotInUse : Code::kOddsReferenceNotInUse);
      EXPECT_EQ(status.Integer(0), kFactorColumn);
      EXPECT_EQ(status.Integer(1), request);
      EXPECT_EQ(levels, (std::vector<int>{1, 3, 4})) << request;
    }
  }
}

TEST(FactorLevels, OfASingleLevelWarnWhereAComparisonIsWantedAndChooseNoReference) {
  FitBench bench(2, {3}, 0);
  bench.Effect({0}, {}).Case(1, {2}, {}, 2).Case(2, {2}, {}, 1);
  ASSERT_FALSE(bench.SetUp().IsError());
  for (const int request : {0, -1, 2, 3}) {
    std::vector<int> levels;
    std::vector<double> counts;
    const OrvStatus status = bench.model->FactorLevels(0, request, false, levels, counts);
    EXPECT_TRUE(status.IsWarning());
    EXPECT_EQ(status.Code(), Code::kOddsFactorOneLevel);
    EXPECT_EQ(status.Integer(0), kFactorColumn);
    EXPECT_EQ(levels, std::vector<int>{2}) << "what is there, uncompared";
  }
}

TEST(FactorLevels, OfASingleLevelHoldAControlWithoutAWarning) {
  FitBench bench(2, {3}, 0);
  bench.Effect({0}, {}).Case(1, {2}, {}, 2).Case(2, {2}, {}, 1);
  ASSERT_FALSE(bench.SetUp().IsError());
  std::vector<int> levels;
  std::vector<double> counts;
  EXPECT_TRUE(bench.model->FactorLevels(0, 0, true, levels, counts).IsOK());
  EXPECT_EQ(levels, std::vector<int>{2});
  EXPECT_EQ(counts, std::vector<double>{3});
  EXPECT_EQ(bench.model->FactorLevels(0, 3, true, levels, counts).Code(), Code::kOddsControlNotInUse);
  EXPECT_EQ(levels, std::vector<int>{2});
}

TEST(FactorLevels, EachFactorHasItsOwn) {
  FitBench bench(2, {2, 4}, 0);
  bench.Effect({0}, {}).Effect({1}, {});
  bench.Case(1, {1, 4}, {}, 1).Case(2, {2, 2}, {}, 2);
  ASSERT_FALSE(bench.SetUp().IsError());
  std::vector<int> levels;
  std::vector<double> counts;
  EXPECT_TRUE(bench.model->FactorLevels(1, 0, false, levels, counts).IsOK());
  EXPECT_EQ(levels, (std::vector<int>{2, 4}));
  EXPECT_EQ(counts, (std::vector<double>{2, 1}));
  EXPECT_EQ(bench.model->FactorLevels(1, 3, false, levels, counts).Integer(0), kFactorColumn + 1);
}

}  // namespace
