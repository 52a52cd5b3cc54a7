#include "component/numerics/precise_sym_matrix.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "dense_reference.h"

namespace {

using MCCommonMath::DoubleDouble;
using MCCommonMath::MCBitSet;
using MCCommonMath::MCSymMatrix;
using MCCommonMath::PreciseColumn;
using MCCommonMath::PreciseSymMatrix;

PreciseSymMatrix Precise(const MCSymMatrix& matrix) {
  PreciseSymMatrix precise(matrix.GetNRows());
  for (int i = 0; i < matrix.GetNRows(); ++i) {
    for (int j = 0; j <= i; ++j)
      precise.Set(i, j, matrix.GetElem(i, j));
  }
  return precise;
}

/// 1/(i + j + 1), each to 106 bits: the condition of 8 rows is 1.5e10, of 12 rows 1.7e16.
PreciseSymMatrix Hilbert(int n) {
  PreciseSymMatrix matrix(n);
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j <= i; ++j)
      matrix.Set(i, j, DoubleDouble(1.0) / DoubleDouble(i + j + 1.0));
  }
  return matrix;
}

TEST(PreciseVectors, SumAndDotKeepWhatCancels) {
  PreciseColumn a(21);
  PreciseColumn ones(21);
  for (std::size_t i = 0; i < 21; ++i)
    ones.Set(i, 1.0);
  a.Set(0, 1e25);
  a.Set(9, {1.0, 1e-20});
  a.Set(20, -1e25);
  EXPECT_NEAR(MCCommonMath::precise::Sum(a, 21).Value(), 1.0, 1e-6);
  EXPECT_NEAR(MCCommonMath::precise::Dot(a, ones, 21).Value(), 1.0, 1e-6);
  EXPECT_EQ(MCCommonMath::precise::Sum(a, 20).Value(), 1e25);
}

TEST(PreciseVectors, ScaledColumnsAreAddedFromAPlaceOn) {
  PreciseColumn a(3);
  for (std::size_t i = 0; i < 3; ++i)
    a.Set(i, static_cast<double>(i + 1));
  PreciseColumn sums(4);
  MCCommonMath::precise::AddScaled({2.0, 1e-20}, a, 3, sums, 1);
  EXPECT_EQ(sums.high, (std::vector<double>{0, 2, 4, 6}));
  EXPECT_EQ(sums.low[0], 0.0);
  EXPECT_DOUBLE_EQ(sums.low[1], 1e-20);
  EXPECT_DOUBLE_EQ(sums.low[3], 3e-20);
  MCCommonMath::precise::Multiply(a, a, 3, a);
  EXPECT_EQ(a.high, (std::vector<double>{1, 4, 9}));
}

// The inverse of Hilbert's matrix has whole numbers (Savage and Lukacs 1954); its corner element is n^2.
TEST(PreciseSymMatrix, SolvesWhatDoublesCannot) {
  const int n = 12;
  PreciseSymMatrix factor = Hilbert(n);
  ASSERT_EQ(factor.Factor(1e-25), 0);
  PreciseColumn x(static_cast<std::size_t>(n));
  x.Set(0, 1.0);
  factor.ForwardSolve(x);
  factor.BackSolve(x);
  EXPECT_NEAR(x.Get(0).Value() / (n * n), 1, 1e-12);
  EXPECT_NEAR(x.Get(1).Value() / (-n * n * (n * n - 1) / 2.0), 1, 1e-12);
}

TEST(PreciseSymMatrix, LeavesASingularPivotOut) {
  PreciseSymMatrix matrix(3);  // the second row is twice the first
  const double elements[] = {1, 2, 4, 3, 6, 10};
  for (int i = 0, e = 0; i < 3; ++i) {
    for (int j = 0; j <= i; ++j, ++e)
      matrix.Set(i, j, elements[e]);
  }
  EXPECT_EQ(matrix.Factor(1e-12), 1);
  EXPECT_EQ(matrix.Get(1, 1).Value(), 0.0);
  EXPECT_EQ(matrix.Get(2, 1).Value(), 0.0);
  EXPECT_EQ(matrix.Get(2, 2).Value(), 1.0);
  PreciseColumn x(3);
  for (std::size_t i = 0; i < 3; ++i)
    x.Set(i, 4.0);
  matrix.ForwardSolve(x);
  EXPECT_EQ(x.high, (std::vector<double>{4, 0, -8}));
}

TEST(PreciseSymMatrix, SweepsAsTheOrdinaryMatrixDoes) {
  const MCSymMatrix start = Packed(RandomCovariance(7, 30, 3));
  MCSymMatrix swept = start;
  PreciseSymMatrix precise = Precise(start);
  std::vector<double> diagonal;
  start.GetDiagonal(diagonal);
  MCBitSet bits(7);
  MCBitSet preciseBits(7);
  for (const int k : {0, 3, 4, 6}) {
    ASSERT_TRUE(swept.Sweep(k, 1e-12, diagonal, bits, true));
    ASSERT_TRUE(precise.Sweep(k, 1e-12, diagonal, preciseBits));
  }
  swept.ClearResidual(2, bits);
  precise.ClearResidual(2, preciseBits);
  EXPECT_EQ(bits, preciseBits);
  MCSymMatrix rounded;
  precise.RoundTo(rounded);
  EXPECT_LT(RelativeDistance(Unpacked(rounded), Unpacked(swept)), 1e-12);
}

TEST(PreciseSymMatrix, RefusesAPivotBelowItsTolerance) {
  PreciseSymMatrix matrix(2);
  matrix.Set(0, 0, 1.0);
  matrix.Set(1, 0, 1.0);
  matrix.Set(1, 1, {1.0, 1e-20});
  MCBitSet bits(2);
  ASSERT_TRUE(matrix.Sweep(0, 1e-12, {1, 1}, bits));
  EXPECT_FALSE(matrix.Sweep(1, 1e-12, {1, 1}, bits));
  EXPECT_TRUE(matrix.Sweep(1, 1e-21, {1, 1}, bits)) << "what a double would have lost";
}

}  // namespace
