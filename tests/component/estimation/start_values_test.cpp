#include "component/estimation/start_values.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using tavo::OrvResponseCategories;
using tavo::StartValues;
using tavo::TavoFitLayout;

OrvResponseCategories ThreeCategories() {
  const std::vector<tavo::OrvFactorCounts::CountPair> counts = {{2, 1}, {6, 2}, {3, 9}};
  OrvResponseCategories response;
  response.Set(&counts, 2);
  return response;
}

TEST(StartValues, AreTheLogRatiosOfTheWeightedCountsAndZeroSlopes) {
  const TavoFitLayout layout{2, true, {0, 5, 5}, {1, 2, 2}, {true, false, false}};
  EXPECT_EQ(StartValues(ThreeCategories(), layout),
            (std::vector<double>{std::log(2.0 / 6), 0, 0, std::log(3.0 / 6), 0, 0}));
}

TEST(StartValues, WithoutInterceptAreZero) {
  const TavoFitLayout layout{2, false, {0, 0}, {2, 3}, {false, false}};
  EXPECT_EQ(StartValues(ThreeCategories(), layout), std::vector<double>(4, 0.0));
}

TEST(StartValues, OfNoParametersAreNone) {
  EXPECT_TRUE(StartValues(ThreeCategories(), {2, true, {}, {}, {}}).empty());
}

}  // namespace
