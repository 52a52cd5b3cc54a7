#include "component/estimation/response_categories.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using tavo::OrvResponseCategories;
using tavo::OrvStatus;
using Counts = std::vector<tavo::OrvFactorCounts::CountPair>;
namespace StatusCode = tavo::StatusCode;

// Categories 1, 3 and 4 of five have weight: pairs of weighted and unweighted counts.
const Counts kThreeOfFive = {{1, 1}, {0, 0}, {3.5, 2}, {5, 1}, {0, 3}};

TEST(ResponseCategories, TheReferenceIsLastAndTheOthersAscend) {
  const struct {
    int wanted;
    std::vector<int> codes;
    std::vector<double> weights;
  } cases[] = {{0, {1, 3, 4}, {1, 3.5, 5}},
               {-1, {3, 4, 1}, {3.5, 5, 1}},
               {-7, {3, 4, 1}, {3.5, 5, 1}},
               {3, {1, 4, 3}, {1, 5, 3.5}}};
  for (const auto& c : cases) {
    OrvResponseCategories response;
    EXPECT_TRUE(response.Set(&kThreeOfFive, c.wanted).IsOK());
    EXPECT_EQ(response.Codes(), c.codes);
    EXPECT_EQ(response.WeightedCounts(), c.weights);
    EXPECT_EQ(response.Count(), 3);
    EXPECT_EQ(response.LogitCount(), 2);
  }
}

TEST(ResponseCategories, AReferenceWithoutWeightFallsBackOnTheHighestWithAWarning) {
  for (const int wanted : {2, 5, 9}) {
    OrvResponseCategories response;
    EXPECT_EQ(response.Set(&kThreeOfFive, wanted), OrvStatus::Warning(StatusCode::kReferenceNotInUse));
    EXPECT_EQ(response.Codes(), (std::vector<int>{1, 3, 4}));
  }
}

TEST(ResponseCategories, FewerThanTwoWithWeightAreAnErrorAndLeaveNone) {
  const Counts one = {{0, 0}, {2, 2}, {0, 1}};
  const Counts none = {{0, 0}, {0, 0}};
  for (const Counts* counts : {&one, &none, static_cast<const Counts*>(nullptr)}) {
    OrvResponseCategories response;
    response.Set(&kThreeOfFive, 0);
    EXPECT_EQ(response.Set(counts, 0), OrvStatus::Error(StatusCode::kOneDependentValue));
    EXPECT_EQ(response.Count(), 0);
    EXPECT_EQ(response.LogitCount(), 0);
    EXPECT_TRUE(response.LocalIndices().empty());
  }
}

TEST(ResponseCategories, LocalIndicesCoverAllCodesOfTheCounts) {
  OrvResponseCategories response;
  response.Set(&kThreeOfFive, 3);
  EXPECT_EQ(response.LocalIndices(), (std::vector<int>{0, -1, 2, 1, -1}));
  EXPECT_EQ(response.UnweightedCounts(), (std::vector<double>{1, 1, 2}));
  EXPECT_EQ(response.LocalIndexOf(3.0), 2);
  EXPECT_EQ(response.LocalIndexOf(3.4), 2) << "the nearest code";
  for (const double cell : {2.0, 5.0, 0.0, -1.0, 6.0})
    EXPECT_EQ(response.LocalIndexOf(cell), -1) << cell;
}

TEST(ResponseCategories, ATieGoesToWeightThenToCasesThenToTheSmallestCode) {
  const struct {
    Counts counts;
    std::vector<int> tied;
    int expected;
  } cases[] = {{{{5, 2}, {3, 9}, {3, 9}}, {0, 1, 2}, 0},
               {{{4, 2}, {4, 3}, {4, 1}}, {2, 0, 1}, 1},
               {{{4, 2}, {4, 2}, {9, 2}}, {1, 0}, 0},
               {{{4, 1}, {4, 2}, {4, 2}}, {2, 1, 0}, 1}};
  for (const auto& c : cases) {
    OrvResponseCategories response;
    response.Set(&c.counts, 0);
    std::vector<int> tied = c.tied;
    EXPECT_EQ(response.BreakTie(tied), c.expected);
  }
}

TEST(ResponseCategories, TheSmallestCodeWinsATieAlsoAsTheReference) {
  const Counts equal = {{4, 2}, {4, 2}};
  OrvResponseCategories response;
  response.Set(&equal, -1);  // code 1 is the reference, local index 1
  std::vector<int> tied = {0, 1};
  EXPECT_EQ(response.BreakTie(tied), 1);
}

}  // namespace
