// The levels of a factor that are in use, and which of them is compared with.
#include "component/estimation/factor_levels.h"

#include <gtest/gtest.h>

namespace {

using namespace tavo;
namespace Code = tavo::StatusCode;

constexpr int kColumn = 7;
const std::vector<double> kThreeOfFive = {1.5, 0, 4, 2.5, 0};

TEST(FactorLevels, OtherLevelsAscendAndTheReferenceStandsLastWithItsCount) {
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
      EXPECT_TRUE(FactorLevels(kThreeOfFive, {kColumn, c.request, isControl}, levels, counts).IsOK());
      EXPECT_EQ(levels, c.levels) << c.request;
      EXPECT_EQ(counts, c.counts) << c.request;
    }
  }
}

TEST(FactorLevels, ARequestedCodeThatIsNotInUseFallsBackOnTheHighestWithAWarning) {
  for (const int request : {2, 5, 17}) {
    for (const bool isControl : {false, true}) {
      std::vector<int> levels;
      std::vector<double> counts;
      const OrvStatus status = FactorLevels(kThreeOfFive, {kColumn, request, isControl}, levels, counts);
      EXPECT_TRUE(status.IsWarning());
      EXPECT_EQ(status.Code(), isControl ? Code::kOddsControlNotInUse : Code::kOddsReferenceNotInUse);
      EXPECT_EQ(status.Integer(0), kColumn);
      EXPECT_EQ(status.Integer(1), request);
      EXPECT_EQ(levels, (std::vector<int>{1, 3, 4})) << request;
    }
  }
}

TEST(FactorLevels, OfASingleLevelWarnWhereAComparisonIsWantedAndChooseNoReference) {
  for (const int request : {0, -1, 2, 3}) {
    std::vector<int> levels;
    std::vector<double> counts;
    const OrvStatus status = FactorLevels({0, 3, 0}, {kColumn, request, false}, levels, counts);
    EXPECT_TRUE(status.IsWarning());
    EXPECT_EQ(status.Code(), Code::kOddsFactorOneLevel);
    EXPECT_EQ(status.Integer(0), kColumn);
    EXPECT_EQ(levels, std::vector<int>{2}) << "what is there, uncompared";
  }
}

TEST(FactorLevels, OfASingleLevelHoldAControlWithoutAWarning) {
  std::vector<int> levels;
  std::vector<double> counts;
  EXPECT_TRUE(FactorLevels({0, 3, 0}, {kColumn, 0, true}, levels, counts).IsOK());
  EXPECT_EQ(levels, std::vector<int>{2});
  EXPECT_EQ(counts, std::vector<double>{3});
  EXPECT_EQ(FactorLevels({0, 3, 0}, {kColumn, 3, true}, levels, counts).Code(), Code::kOddsControlNotInUse);
  EXPECT_EQ(levels, std::vector<int>{2});
}

TEST(FactorLevels, OfNoLevelHoldAControlAtNone) {
  std::vector<int> levels = {9};
  std::vector<double> counts = {9};
  EXPECT_TRUE(FactorLevels({0, 0}, {kColumn, 1, true}, levels, counts).IsOK());
  EXPECT_TRUE(levels.empty());
  EXPECT_TRUE(counts.empty());
}

}  // namespace
