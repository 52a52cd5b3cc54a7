// Sums in twice the precision against the ordinary ones.
#include "component/estimation/precise_sums.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "component/estimation/accum_stats.h"

namespace {

using MCCommonMath::MCSymMatrix;
using MCCommonMath::PreciseColumn;
using tavo::OrvPreciseBlock;
using tavo::TavoRowBlock;

constexpr int kParameters = 4;

/// Entries 0 and 3 constant, 1 and 2 by row.
TavoRowBlock MakeBlock(std::size_t rows, int categories) {
  TavoRowBlock block;
  block.AddConstant(0, 1.0);
  block.AddConstant(3, -0.7);
  block.AddColumn(1, 0);
  block.AddColumn(2, 1);
  block.SetRowCount(rows);
  for (std::size_t r = 0; r < rows; ++r) {
    const auto t = static_cast<double>(r);
    block.Column(0)[r] = std::sin(1 + t);
    block.Column(1)[r] = std::cos(2 * t);
    block.Categories()[r] = static_cast<double>(r % static_cast<std::size_t>(categories));
    block.Weights()[r] = 0.5 + static_cast<double>(r % 7);
  }
  return block;
}

void Start(const TavoRowBlock& block, OrvPreciseBlock& precise) {
  precise.Start(block);
  for (std::size_t v = 0; v < block.ColumnCount(); ++v) {
    for (std::size_t r = 0; r < block.RowCount(); ++r)
      precise.Column(v).Set(r, block.Column(v)[r]);
  }
}

PreciseColumn Estimates(int categories) {
  PreciseColumn estimates(static_cast<std::size_t>((categories - 1) * kParameters));
  for (std::size_t i = 0; i < estimates.Size(); ++i)
    estimates.Set(i, 0.3 * static_cast<double>(i % 5) - 0.55);
  return estimates;
}

TEST(PreciseSums, AreTheOrdinarySumsWhereNothingCancels) {
  for (const int categories : {2, 3}) {
    const TavoRowBlock block = MakeBlock(41, categories);
    const PreciseColumn estimates = Estimates(categories);
    const tavo::TavoCompSettings settings;
    tavo::TavoAccumStats ordinary(settings, kParameters, categories, estimates.high);
    ordinary.Reset(tavo::EstimationMethod::kFisherScoring, false);
    ASSERT_EQ(ordinary.UpdateForBlock(block, false), 0);
    OrvPreciseBlock rows;
    Start(block, rows);
    tavo::TavoPreciseSums sums(kParameters, categories, estimates);
    ASSERT_TRUE(sums.Add(rows));
    for (std::size_t k = 0; k < estimates.Size(); ++k)
      EXPECT_NEAR(sums.Scores().Get(k).Value(), ordinary.Scores()[k], 1e-13 * 41) << k;
    MCSymMatrix expected;
    ordinary.GetHessian(expected);
    for (int i = 0; i < expected.GetNRows(); ++i) {
      for (int j = 0; j <= i; ++j)
        EXPECT_NEAR(sums.Information().Get(i, j).Value(), expected.GetElem(i, j), 1e-13 * 41) << i << j;
    }
  }
}

TEST(PreciseSums, OfTwoSlicesAddUp) {
  const TavoRowBlock block = MakeBlock(10, 3);
  const PreciseColumn estimates = Estimates(3);
  OrvPreciseBlock rows;
  Start(block, rows);
  tavo::TavoPreciseSums once(kParameters, 3, estimates);
  tavo::TavoPreciseSums twice(kParameters, 3, estimates);
  ASSERT_TRUE(once.Add(rows) && twice.Add(rows));
  twice.Merge(once);
  for (std::size_t k = 0; k < estimates.Size(); ++k)
    EXPECT_DOUBLE_EQ(twice.Scores().Get(k).Value(), 2 * once.Scores().Get(k).Value());
  EXPECT_DOUBLE_EQ(twice.Information().Get(5, 2).Value(), 2 * once.Information().Get(5, 2).Value());
}

TEST(PreciseSums, RefuseAPredictorThatIsNotFinite) {
  const TavoRowBlock block = MakeBlock(3, 2);
  PreciseColumn estimates = Estimates(2);
  estimates.Set(1, std::numeric_limits<double>::infinity());
  OrvPreciseBlock rows;
  Start(block, rows);
  tavo::TavoPreciseSums sums(kParameters, 2, estimates);
  EXPECT_FALSE(sums.Add(rows));
}

// With a predictor of 40 the reference has the probability e^-40, of which 1 - p keeps nothing.
TEST(BlockProbabilities, OfTheOthersKeepTheirDigitsBesideAProbabilityNearOne) {
  TavoRowBlock block;
  block.AddConstant(0, 1.0);
  block.SetRowCount(2);
  block.Categories()[0] = 0;
  block.Categories()[1] = 1;
  tavo::TavoBlockProbabilities two;
  const double estimate = 40;
  ASSERT_TRUE(two.Evaluate(block, &estimate, 2, 1));
  EXPECT_DOUBLE_EQ(two.OfOthers(0)[1], std::exp(-40.0));
  EXPECT_NEAR(two.LogObserved()[0] / -std::exp(-40.0), 1, 1e-14);
  EXPECT_DOUBLE_EQ(two.LogObserved()[1], -40);

  block.Categories()[1] = 2;
  tavo::TavoBlockProbabilities three;
  const double estimates[] = {40, 1};
  ASSERT_TRUE(three.Evaluate(block, estimates, 3, 1));
  EXPECT_NEAR(three.OfOthers(0)[1] / (std::exp(-39.0) + std::exp(-40.0)), 1, 1e-14);
  EXPECT_NEAR(three.OfOthers(2)[0], 1, 1e-15);
}

}  // namespace
