// Covariances of contrasts, their inverses, and what sweeps leave of estimable functions.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "component/numerics/missing_value.h"
#include "component/numerics/rect_matrix.h"
#include "dense_reference.h"

namespace {

using MCCommonMath::IsMissing;
using MCCommonMath::MCBitSet;
using MCCommonMath::MCRectMatrix;
using MCCommonMath::MCSymMatrix;
using Vector = std::vector<double>;

constexpr double kTol = 1e-12;

MCSymMatrix Sym(int n, const Vector& packed) {
  MCSymMatrix matrix(n);
  matrix.AsVector() = packed;
  return matrix;
}

TEST(GetNCheckDiagonal, ReplacesElementsBelowTheLimit) {
  const MCSymMatrix a = Sym(4, {2, 0, 1e-13, 0, 0, -3, 0, 0, 0, std::nan("")});
  Vector diagonal;
  a.GetNCheckDiagonal(diagonal, 1e-12, 1.0);
  EXPECT_EQ(diagonal, (Vector{2, 1, 1, 1}));
}

// ---- inverses ----

// By hand: the inverse of (4 2; 2 5) is (5 -2; -2 4) / 16.
TEST(CholInverse, OfAMatrixWorkedByHand) {
  MCSymMatrix inverse;
  MCBitSet kept;
  EXPECT_EQ(Sym(2, {4, 2, 5}).CholInverse({4, 5}, kTol, inverse, kept), 2);
  EXPECT_NEAR(inverse.GetElem(0, 0), 5.0 / 16, 1e-15);
  EXPECT_NEAR(inverse.GetElem(1, 0), -2.0 / 16, 1e-15);
  EXPECT_NEAR(inverse.GetElem(1, 1), 4.0 / 16, 1e-15);
  EXPECT_EQ(kept.InSet(), 2);
}

TEST(CholInverse, LeavesOutRowsThatDependOnEarlierOnes) {
  // Row 1 is twice row 0, row 2 is 0, row 3 is new: the inverse is that of rows 0 and 3.
  const MCSymMatrix a = Sym(4, {1, 2, 4, 0, 0, 0, 1, 2, 0, 3});
  MCSymMatrix inverse;
  MCBitSet kept;
  Vector diagonal;
  a.GetNCheckDiagonal(diagonal, kTol, 1.0);
  EXPECT_EQ(a.CholInverse(diagonal, kTol, inverse, kept), 2);
  EXPECT_EQ(kept, Bits(4, {0, 3}));
  EXPECT_NEAR(inverse.GetElem(0, 0), 1.5, 1e-14);
  EXPECT_NEAR(inverse.GetElem(3, 0), -0.5, 1e-14);
  EXPECT_NEAR(inverse.GetElem(3, 3), 0.5, 1e-14);
  for (const int dead : {1, 2}) {
    for (int j = 0; j < 4; ++j)
      EXPECT_EQ(inverse.GetElem(dead, j), 0) << dead << j;
  }
}

TEST(CholInverse, TimesTheMatrixIsOneAcrossPanels) {
  for (const int n : {1, 63, 64, 65, 150}) {
    const Dense a = RandomCovariance(n, 2 * n + 5, static_cast<unsigned>(n));
    const MCSymMatrix packed = Packed(a);
    MCSymMatrix inverse;
    MCBitSet kept;
    Vector diagonal;
    packed.GetDiagonal(diagonal);
    ASSERT_EQ(packed.CholInverse(diagonal, kTol, inverse, kept), n);
    const Dense product = a * Unpacked(inverse);
    Dense one(n, n);
    for (int i = 0; i < n; ++i)
      one(i, i) = 1;
    EXPECT_LT(RelativeDistance(product, one), 1e-9) << n;
  }
}

TEST(CholInverse, RefusesNegativeAndNotFinitePivotsAndShapesThatDoNotMatch) {
  MCSymMatrix inverse;
  MCBitSet kept;
  EXPECT_EQ(Sym(1, {-2}).CholInverse({-2}, kTol, inverse, kept), 0);
  EXPECT_EQ(inverse.GetElem(0, 0), 0);
  EXPECT_EQ(Sym(1, {0}).CholInverse({0}, kTol, inverse, kept), 0);
  EXPECT_EQ(Sym(1, {std::numeric_limits<double>::infinity()}).CholInverse({1}, kTol, inverse, kept), 0);
  EXPECT_EQ(Sym(1, {2}).CholInverse({2, 2}, kTol, inverse, kept), -1);
  EXPECT_EQ(MCSymMatrix(0).CholInverse({}, kTol, inverse, kept), 0) << "no rows, rank 0";
}

// ---- estimable functions ----

// Four cases of a factor with two levels: columns 1, a1, a2. The third is the first less the second.
TEST(ExtractH, GivesTheEstimableFunctionsOfSweptColumns) {
  MCSymMatrix a = Sym(3, {4, 2, 2, 2, 0, 2});
  Vector diagonal;
  a.GetDiagonal(diagonal);
  MCBitSet swept(3);
  for (int k = 0; k < 3; ++k)
    a.Sweep(k, kTol, diagonal, swept, true);
  ASSERT_EQ(swept, Bits(3, {0, 1}));

  MCRectMatrix h(3, 2);
  MCBitSet taken(3);
  int column = 0;
  ASSERT_TRUE(a.ExtractH(0, 2, swept, h, column, taken, -1));
  EXPECT_EQ(column, 2);
  EXPECT_EQ(taken, swept);
  EXPECT_EQ(h.AsVectorConst(), (Vector{1, 0, 0, 1, 1, -1})) << "b0 + b2 and b1 - b2";
}

TEST(ExtractH, FillsFromAGivenColumnAndStopsAtARow) {
  MCSymMatrix a = Sym(3, {4, 2, 2, 2, 0, 2});
  Vector diagonal;
  a.GetDiagonal(diagonal);
  MCBitSet swept(3);
  for (int k = 0; k < 3; ++k)
    a.Sweep(k, kTol, diagonal, swept, true);
  MCRectMatrix h(3, 2);
  MCBitSet taken(3);
  int column = 1;
  ASSERT_TRUE(a.ExtractH(1, 2, swept, h, column, taken, 2));
  EXPECT_EQ(column, 2);
  EXPECT_EQ(taken, Bits(3, {1}));
  EXPECT_EQ(h.AsVectorConst(), (Vector{0, 0, 0, 1, 0, 0})) << "row 2 is beyond the limit";
  EXPECT_FALSE(a.ExtractH(0, 0, swept, h, column, taken, -1)) << "no column left";
  EXPECT_FALSE(a.ExtractH(0, 3, swept, h, column, taken, -1));
  EXPECT_EQ(column, 2);
}

TEST(ClearResidual, TakesRoundingOutOfARefusedColumnAndKeepsItsCoefficients) {
  MCSymMatrix a = Sym(4, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10});
  ASSERT_TRUE(a.ClearResidual(2, Bits(4, {0})));
  EXPECT_EQ(a.AsVectorConst(), (Vector{1, 2, 3, 4, 0, 6, 7, 8, 0, 10}));
  EXPECT_FALSE(a.ClearResidual(4, Bits(4, {0})));
  EXPECT_FALSE(a.ClearResidual(0, Bits(3, {0})));
}

// ---- products ----

TEST(ComputeVSV, IsTheQuadraticFormAndItsRootIsNeverNaN) {
  const MCSymMatrix s = Sym(3, {2, 1, 3, 0, -1, 4});
  EXPECT_EQ(s.ComputeVSV(Vector{1, 2, 0}), 2 + 2 * 2 + 12);
  EXPECT_EQ(s.ComputeVSV(Vector{0, 1, -1}), 3 + 2 + 4);
  EXPECT_EQ(s.ComputeVSV(Vector{0, 0, 0}), 0);
  EXPECT_EQ(s.SquareRootVSV(Vector{0, 1, -1}), 3);
  EXPECT_EQ(Sym(1, {-1e-20}).SquareRootVSV(Vector{1}), 0) << "rounding below 0";
  EXPECT_TRUE(IsMissing(s.ComputeVSV(Vector{1, 2})));
  EXPECT_TRUE(IsMissing(s.SquareRootVSV(Vector{1, 2})));
}

TEST(ComputeBlockVSV, TakesOneBlock) {
  MCSymMatrix s = Sym(4, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10});
  ASSERT_TRUE(s.SetNBlocks(2));
  EXPECT_EQ(s.ComputeBlockVSV(0, 0, Vector{1, -1}), 1 - 2 - 2 + 3);
  EXPECT_EQ(s.ComputeBlockVSV(1, 0, Vector{1, -1}), 4 - 5 - 7 + 8);
  EXPECT_EQ(s.ComputeBlockVSV(1, 1, Vector{0, 2}), 40);
  EXPECT_TRUE(IsMissing(s.ComputeBlockVSV(2, 0, Vector{1, 1})));
  EXPECT_TRUE(IsMissing(s.ComputeBlockVSV(0, 0, Vector{1, 1, 1})));
}

TEST(ComputeRSRTrans, AgreesWithTheDenseProductAcrossPanels) {
  for (const int rows : {1, 3, 64, 130}) {
    const int n = 70;
    const Dense s = RandomCovariance(n, n + 9, 4);
    Dense r = Random(rows, n, static_cast<unsigned>(rows));
    for (int i = 0; i < rows; ++i)
      r(i, 5) = 0;  // a column that no row uses
    MCRectMatrix contrasts(rows, n);
    for (int i = 0; i < rows; ++i) {
      for (int j = 0; j < n; ++j)
        contrasts.SetElem(i, j, r(i, j));
    }
    MCSymMatrix result;
    ASSERT_TRUE(Packed(s).ComputeRSRTrans(contrasts, result));
    EXPECT_LT(RelativeDistance(Unpacked(result), r * s * Transposed(r)), 1e-13) << rows;
  }
}

TEST(ComputeRSRTrans, OfNoRowsIsEmptyAndOfZerosZero) {
  MCSymMatrix result(3);
  ASSERT_TRUE(Sym(2, {1, 0, 1}).ComputeRSRTrans(MCRectMatrix(0, 2), result));
  EXPECT_EQ(result.GetNRows(), 0);
  ASSERT_TRUE(Sym(2, {1, 0, 1}).ComputeRSRTrans(MCRectMatrix(2, 2), result));
  EXPECT_EQ(result.AsVectorConst(), (Vector{0, 0, 0}));
  EXPECT_FALSE(Sym(2, {1, 0, 1}).ComputeRSRTrans(MCRectMatrix(1, 3), result));
}

TEST(ComputeSS, IsTheProductOfTwoSymmetricMatrices) {
  MCRectMatrix product;
  ASSERT_TRUE(Sym(2, {1, 2, 3}).ComputeSS(Sym(2, {4, 5, 6}), product));
  EXPECT_EQ(product.AsVectorConst(), (Vector{14, 17, 23, 28})) << "not symmetric";
  const Dense a = RandomCovariance(100, 120, 1);
  const Dense b = RandomCovariance(100, 120, 2);
  ASSERT_TRUE(Packed(a).ComputeSS(Packed(b), product));
  const Dense expected = a * b;
  double worst = 0;
  for (int i = 0; i < 100; ++i) {
    for (int j = 0; j < 100; ++j)
      worst = std::max(worst, std::abs(product.GetElem(i, j) - expected(i, j)));
  }
  EXPECT_LT(worst, 1e-9);
  EXPECT_FALSE(Packed(a).ComputeSS(Sym(1, {1}), product));
}

TEST(SetCovarZeros, MakesTheZeroPatternThatOfTheOther) {
  MCSymMatrix design = Sym(3, {1, 2, 3, 4, 5, 6});
  ASSERT_TRUE(design.SetCovarZeros(Sym(3, {1, 0, 1e-13, 0, 0, 1})));
  EXPECT_EQ(design.AsVectorConst(), (Vector{1, 0, 0, 4, 0, 6}));
  EXPECT_FALSE(design.SetCovarZeros(Sym(1, {1})));
}

}  // namespace
