#include "component/estimation/redundancy.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace {

using tavo::OrvCancelInfo;
using tavo::OrvRedundancy;

constexpr double kTolerance = 1e-12;

// An intercept, two indicators that add up to it, and a column of its own.
OrvRedundancy InterceptTwoLevelsAndX() {
  OrvRedundancy redundancy(4);
  const double xs[] = {-1, 0.5, 2, -0.25, 1};
  for (int i = 0; i < 5; ++i) {
    const int level = 1 + i % 2;
    EXPECT_TRUE(redundancy.AddRow({0, level, 3}, {1, 1, xs[i]}, 1 + i));
  }
  return redundancy;
}

TEST(Redundancy, SumsWeightedProductsOfTheRows) {
  OrvRedundancy redundancy(3);
  EXPECT_FALSE(redundancy.HasRows());
  EXPECT_TRUE(redundancy.AddRow({0, 2}, {1, 3}, 2));
  EXPECT_TRUE(redundancy.AddRow({2, 1}, {-1, 4}, 0.5));
  EXPECT_TRUE(redundancy.HasRows());
  const MCCommonMath::MCSymMatrix& sums = *redundancy.XPrimeX();
  EXPECT_EQ(sums.GetElem(0, 0), 2);
  EXPECT_EQ(sums.GetElem(2, 0), 6);
  EXPECT_EQ(sums.GetElem(1, 0), 0);
  EXPECT_EQ(sums.GetElem(1, 1), 8);
  EXPECT_EQ(sums.GetElem(2, 1), -2);
  EXPECT_EQ(sums.GetElem(2, 2), 18.5);
}

TEST(Redundancy, RefusesARowOrBlockWithAColumnThatIsNotThere) {
  OrvRedundancy redundancy(2);
  EXPECT_FALSE(redundancy.AddRow({0, 2}, {1, 1}, 1));
  EXPECT_FALSE(redundancy.AddRow({0, -1}, {1, 1}, 1));
  tavo::TavoRowBlock block;
  block.Clear();
  block.AddConstant(2, 1.0);
  block.SetRowCount(1);
  EXPECT_FALSE(redundancy.AddBlock(block));
  EXPECT_FALSE(redundancy.HasRows());
}

TEST(Redundancy, OfDependentColumnsTheEarlierStay) {
  OrvRedundancy redundancy = InterceptTwoLevelsAndX();
  redundancy.Find(kTolerance, OrvCancelInfo());
  EXPECT_EQ(redundancy.NonRedundantCount(), 3);
  EXPECT_EQ(redundancy.CompressedIndices(), (std::vector<int>{0, 1, -1, 2}));
  EXPECT_EQ(redundancy.OwnIndices(), (std::vector<int>{0, 1, 2, 3}));
  for (int k = 0; k < 4; ++k)
    EXPECT_EQ(redundancy.Bits().IsIn(k), k != 2) << k;
  EXPECT_EQ(redundancy.NonRedundant({5, 6, 7, 8}), (std::vector<double>{5, 6, 8}));
}

TEST(Redundancy, TheDiagonalIsThatBeforeTheSweep) {
  OrvRedundancy redundancy = InterceptTwoLevelsAndX();
  std::vector<double> diagonal;
  redundancy.XPrimeX()->GetDiagonal(diagonal);
  redundancy.Find(kTolerance, OrvCancelInfo());
  EXPECT_EQ(redundancy.XPrimeXDiagonal(), diagonal);
  EXPECT_NE(redundancy.XPrimeX()->GetElem(0, 0), diagonal[0]);
  redundancy.ReleaseXPrimeX();
  EXPECT_EQ(redundancy.XPrimeX(), nullptr);
  EXPECT_EQ(redundancy.NonRedundantCount(), 3) << "what was found stays";
}

TEST(Redundancy, AllLogitsShareTheBits) {
  OrvRedundancy redundancy = InterceptTwoLevelsAndX();
  redundancy.Find(kTolerance, OrvCancelInfo());
  const MCCommonMath::MCBitSet all = redundancy.BitsOfAllLogits(3);
  ASSERT_EQ(all.Size(), 12);
  for (int k = 0; k < 12; ++k)
    EXPECT_EQ(all.IsIn(k), k % 4 != 2) << k;
}

TEST(Redundancy, AColumnOfZerosIsRedundant) {
  OrvRedundancy redundancy(2);
  redundancy.AddRow({0, 1}, {0, 2}, 1);
  redundancy.Find(kTolerance, OrvCancelInfo());
  EXPECT_EQ(redundancy.CompressedIndices(), (std::vector<int>{-1, 0}));
}

TEST(Redundancy, AfterACancelNothingIsFound) {
  OrvRedundancy redundancy = InterceptTwoLevelsAndX();
  OrvCancelInfo cancel;
  cancel.Cancel();
  redundancy.Find(kTolerance, cancel);
  EXPECT_EQ(redundancy.NonRedundantCount(), 0);
}

OrvRedundancy InterceptAndTwoColumnsApartBy(double difference, bool& isCertain) {
  OrvRedundancy redundancy(3);
  const double xs[] = {-1, 1, -1, 1};
  const double zs[] = {-1, -1, 1, 1};
  for (int i = 0; i < 4; ++i)
    redundancy.AddRow({0, 1, 2}, {1, xs[i], xs[i] + difference * zs[i]}, 1);
  isCertain = redundancy.Find(kTolerance, OrvCancelInfo());
  return redundancy;
}

// What is left of the third column is the square of the difference.
TEST(Redundancy, IsUncertainWhereRoundingMayDecide) {
  bool isCertain = false;
  EXPECT_EQ(InterceptAndTwoColumnsApartBy(0.1, isCertain).NonRedundantCount(), 3);
  EXPECT_TRUE(isCertain);
  EXPECT_EQ(InterceptAndTwoColumnsApartBy(0, isCertain).NonRedundantCount(), 2);
  EXPECT_TRUE(isCertain);
  InterceptAndTwoColumnsApartBy(1.00001e-6, isCertain);
  EXPECT_FALSE(isCertain);
}

TEST(Redundancy, InTwiceThePrecisionSmallDifferencesCount) {
  for (const double difference : {1e-5, 2e-6, 0.5e-6}) {
    bool isCertain = true;
    OrvRedundancy redundancy = InterceptAndTwoColumnsApartBy(difference, isCertain);
    tavo::TavoRowBlock block;
    for (const int k : {0, 1, 2})
      block.AddColumn(k, static_cast<std::size_t>(k));
    block.SetRowCount(4);
    std::fill(block.Weights(), block.Weights() + 4, 1.0);
    tavo::OrvPreciseBlock precise;
    precise.Start(block);
    for (std::size_t r = 0; r < 4; ++r) {
      const double x = r % 2 == 0 ? -1 : 1;
      precise.Column(0).Set(r, 1.0);
      precise.Column(1).Set(r, x);
      precise.Column(2).Set(r, MCCommonMath::ExactSum(x, r < 2 ? -difference : difference));
    }
    redundancy.AddPrecisely(precise);
    redundancy.FindPrecisely(kTolerance, OrvCancelInfo());
    EXPECT_EQ(redundancy.NonRedundantCount(), difference > 1e-6 ? 3 : 2) << difference;
  }
}

}  // namespace
