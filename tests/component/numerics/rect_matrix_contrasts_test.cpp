// Rows of contrasts and columns of estimable functions.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "component/numerics/bit_set.h"
#include "component/numerics/missing_value.h"
#include "component/numerics/rect_matrix.h"

namespace {

using MCCommonMath::IsMissing;
using MCCommonMath::MCBitSet;
using MCCommonMath::MCRectMatrix;
using Vector = std::vector<double>;

constexpr double kTol = 1e-12;

MCRectMatrix Matrix(const std::vector<Vector>& rows) {
  MCRectMatrix matrix(static_cast<int>(rows.size()), static_cast<int>(rows.front().size()));
  matrix.AsVector().clear();
  for (const Vector& row : rows)
    matrix.AsVector().insert(matrix.AsVector().end(), row.begin(), row.end());
  return matrix;
}

MCBitSet Bits(int size, const std::vector<int>& members) {
  MCBitSet bits(size);
  for (const int member : members)
    bits.Set(member, true);
  return bits;
}

Vector Column(const MCRectMatrix& matrix, int col) {
  Vector column;
  for (int i = 0; i < matrix.GetNRows(); ++i)
    column.push_back(matrix.GetElem(i, col));
  return column;
}

TEST(RectMatrixCopies, TakeAColumnAsARowAndAFewColumnsAsAMatrix) {
  const MCRectMatrix source = Matrix({{1, 2, 3}, {4, 5, 6}});
  MCRectMatrix rows(2, 2);
  ASSERT_TRUE(rows.CopyColToRow(source, 2, 1));
  EXPECT_EQ(rows.AsVectorConst(), (Vector{0, 0, 3, 6}));
  MCRectMatrix columns;
  ASSERT_TRUE(columns.CopyColumns(source, 1, 2));
  EXPECT_EQ(columns.AsVectorConst(), (Vector{2, 3, 5, 6}));
  EXPECT_EQ(columns.GetNCols(), 2);
  ASSERT_TRUE(columns.CopyColumns(source, 3, 0));
  EXPECT_EQ(columns.GetNRows(), 2);
  EXPECT_EQ(columns.GetNCols(), 0);
}

TEST(RectMatrixCopies, AreRefusedWhereNothingFits) {
  const MCRectMatrix source = Matrix({{1, 2, 3}, {4, 5, 6}});
  MCRectMatrix rows(2, 2);
  MCRectMatrix wide(2, 3);
  EXPECT_FALSE(rows.CopyColToRow(source, 3, 0));
  EXPECT_FALSE(rows.CopyColToRow(source, 0, 2));
  EXPECT_FALSE(wide.CopyColToRow(source, 0, 0)) << "3 columns, but 2 elements in a column of the source";
  EXPECT_FALSE(rows.CopyColumns(source, 2, 2));
  EXPECT_FALSE(rows.CopyColumns(source, -1, 1));
  EXPECT_FALSE(rows.CopyColumns(rows, 0, 1));
  EXPECT_EQ(rows.AsVectorConst(), (Vector{0, 0, 0, 0}));
}

TEST(CreateBlockDiagonal, RepeatsTheMatrixAlongTheDiagonal) {
  const MCRectMatrix l = Matrix({{1, -1, 2}});
  MCRectMatrix blocks;
  ASSERT_TRUE(l.CreateBlockDiagonal(2, blocks));
  EXPECT_EQ(blocks.GetNRows(), 2);
  EXPECT_EQ(blocks.AsVectorConst(), (Vector{1, -1, 2, 0, 0, 0, 0, 0, 0, 1, -1, 2}));
  MCRectMatrix empty(0, 3);
  ASSERT_TRUE(empty.CreateBlockDiagonal(3, blocks)) << "no rows, but the columns of all blocks";
  EXPECT_EQ(blocks.GetNRows(), 0);
  EXPECT_EQ(blocks.GetNCols(), 9);
  EXPECT_FALSE(l.CreateBlockDiagonal(-1, blocks));
  EXPECT_FALSE(l.CreateBlockDiagonal(std::numeric_limits<int>::max(), blocks));
  MCRectMatrix self = l;
  EXPECT_FALSE(self.CreateBlockDiagonal(2, self));
}

TEST(IsRowZero, HoldsForExactZerosOnly) {
  const MCRectMatrix l = Matrix({{0, -0.0}, {0, 1e-300}});
  EXPECT_TRUE(l.IsRowZero(0));
  EXPECT_FALSE(l.IsRowZero(1));
  EXPECT_FALSE(l.IsRowZero(2)) << "no such row";
}

TEST(DotProductRowCol, AddsTheProductsOfOneRowAndOneColumn) {
  const MCRectMatrix a = Matrix({{1, 2}, {3, 4}});
  const MCRectMatrix b = Matrix({{5, 6}, {7, 8}});
  EXPECT_EQ(a.DotProductRowCol(1, b, 0), 3 * 5 + 4 * 7);
  EXPECT_TRUE(IsMissing(a.DotProductRowCol(2, b, 0)));
  EXPECT_TRUE(IsMissing(a.DotProductRowCol(0, Matrix({{1, 2}}), 0)));
}

// ---- multiples ----

TEST(IsERowMultipleOfAnother, ComparesTheRowsAndTheirValues) {
  const MCRectMatrix l = Matrix({{1, -1, 0}, {2, -2, 0}, {-1, 1, 0}, {1, -1, 1}, {0, 0, 0}});
  double factor = -9;
  EXPECT_TRUE(l.IsERowMultipleOfAnother(0, 1, 0, 0, factor));
  EXPECT_EQ(factor, 0.5) << "row 0 is half of row 1";
  EXPECT_TRUE(l.IsERowMultipleOfAnother(0, 1, 3, 6, factor));
  EXPECT_FALSE(l.IsERowMultipleOfAnother(0, 1, 3, 3, factor)) << "the same contrast against another value";
  EXPECT_EQ(factor, 0);
  EXPECT_FALSE(l.IsERowMultipleOfAnother(0, 1, 3, 0, factor));
  EXPECT_TRUE(l.IsERowMultipleOfAnother(0, 2, 4, -4, factor));
  EXPECT_EQ(factor, -1);
  EXPECT_FALSE(l.IsERowMultipleOfAnother(0, 3, 0, 0, factor));
  EXPECT_FALSE(l.IsERowMultipleOfAnother(4, 4, 0, 0, factor)) << "a row of zeros is a multiple of none";
  EXPECT_FALSE(l.IsERowMultipleOfAnother(0, 4, 0, 0, factor));
  EXPECT_FALSE(l.IsERowMultipleOfAnother(0, 5, 0, 0, factor));
}

TEST(IsERowMultipleOfAnother, SeesADifferenceInASmallElementBesideALargeOne) {
  const MCRectMatrix l = Matrix({{1e15, 1}, {1e15, 2}, {1e15 / 3, 1.0 / 3}});
  double factor = 0;
  EXPECT_FALSE(l.IsERowMultipleOfAnother(0, 1, 0, 0, factor));
  EXPECT_TRUE(l.IsERowMultipleOfAnother(0, 2, 0, 0, factor)) << "thirds are rounded";
  EXPECT_NEAR(factor, 3, 1e-12);
}

// ---- estimability ----

// One factor with three levels after an intercept: parameters 0 1 2 kept, 3 left out; its column is 0 - 1
// - 2.
const MCRectMatrix kOneWay = Matrix({{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, -1, -1}});

TEST(IsEstimable, AcceptsDifferencesAndMeansAndRefusesSingleLevels) {
  const MCBitSet kept = Bits(4, {0, 1, 2});
  const auto isEstimable = [&](const Vector& row) { return Matrix({row}).IsEstimable(kOneWay, kept, kTol); };
  EXPECT_TRUE(isEstimable({0, 1, -1, 0}));
  EXPECT_TRUE(isEstimable({0, 0.1, 0.2, -0.3})) << "0.1 + 0.2 is not 0.3 in binary";
  EXPECT_TRUE(isEstimable({1, 1, 0, 0})) << "the mean of level 1";
  EXPECT_TRUE(isEstimable({1, 1.0 / 3, 1.0 / 3, 1.0 / 3}));
  EXPECT_TRUE(isEstimable({0, 0, 0, 0}));
  EXPECT_FALSE(isEstimable({0, 1, 0, 0}));
  EXPECT_FALSE(isEstimable({1, 0, 0, 0}));
  EXPECT_FALSE(isEstimable({1, 0.333, 0.333, 0.333}));
  EXPECT_FALSE(isEstimable({0, std::nan(""), 0, 0}));
  EXPECT_FALSE(Matrix({{0, 1, -1, 0}, {0, 1, 0, 0}}).IsEstimable(kOneWay, kept, kTol)) << "every row counts";
}

TEST(IsEstimable, DoesNotDependOnTheUnitsOfAParameter) {
  // x2 = 1e9 x1: the estimable function of both slopes is b1 + 1e9 b2.
  const MCRectMatrix h = Matrix({{1}, {1e9}});
  const MCBitSet kept = Bits(2, {0});
  EXPECT_TRUE(Matrix({{1e-9, 1}}).IsEstimable(h, kept, kTol));
  EXPECT_FALSE(Matrix({{1e-9, 1.001}}).IsEstimable(h, kept, kTol));
  EXPECT_FALSE(Matrix({{0, 1e-9}}).IsEstimable(h, kept, kTol));
}

TEST(IsEstimable, RefusesShapesThatDoNotMatch) {
  EXPECT_FALSE(Matrix({{0, 1, -1}}).IsEstimable(kOneWay, Bits(4, {0, 1, 2}), kTol));
  EXPECT_FALSE(Matrix({{0, 1, -1, 0}}).IsEstimable(kOneWay, Bits(4, {0, 1}), kTol));
}

// ---- projections ----

// By hand: (3, 1, 5) less its part along (1, 1, 0), which is (2, 2, 0).
TEST(ResidOfOrthProjection, LeavesWhatTheBasisDoesNotSpan) {
  MCRectMatrix h = Matrix({{3}, {1}, {5}});
  MCBitSet live = Bits(1, {0});
  MCBitSet spanning;
  ASSERT_TRUE(h.ResidOfOrthProjection(Matrix({{7}, {7}, {0}}), kTol, spanning, live));
  EXPECT_NEAR(h.GetElem(0, 0), 1, 1e-15);
  EXPECT_NEAR(h.GetElem(1, 0), -1, 1e-15);
  EXPECT_EQ(h.GetElem(2, 0), 5) << "rows in which the basis is 0 stay as they are";
  EXPECT_TRUE(live.IsIn(0));
  EXPECT_TRUE(spanning.IsIn(0));
}

TEST(ResidOfOrthProjection, TakesOutColumnsWithinTheSpanWhateverTheirLength) {
  for (const double unit : {1.0, 1e-200, 1e100}) {
    MCRectMatrix h = Matrix({{unit, 1}, {2 * unit, 0}, {3 * unit, 0}});
    MCBitSet live = Bits(2, {0, 1});
    MCBitSet spanning;
    ASSERT_TRUE(h.ResidOfOrthProjection(Matrix({{1, 0}, {0, 2}, {1, 2}}), kTol, spanning, live));
    EXPECT_FALSE(live.IsIn(0)) << unit;
    EXPECT_EQ(Column(h, 0), (Vector{0, 0, 0}));
    EXPECT_TRUE(live.IsIn(1));
    EXPECT_NEAR(h.GetElem(0, 1), 1.0 / 3, 1e-15) << "the part of (1, 0, 0) along (1, 1, -1)";
    EXPECT_NEAR(h.GetElem(2, 1), -1.0 / 3, 1e-15);
  }
}

TEST(ResidOfOrthProjection, LeavesDeadColumnsAloneAndStandsADependentBasis) {
  MCRectMatrix h = Matrix({{1, 1}, {2, 2}, {3, 3}});
  MCBitSet live = Bits(2, {1});
  MCBitSet spanning;
  // The third column of the basis is the sum of the others, the fourth is 0.
  ASSERT_TRUE(
      h.ResidOfOrthProjection(Matrix({{1, 0, 1, 0}, {0, 1, 1, 0}, {0, 0, 0, 0}}), kTol, spanning, live));
  EXPECT_EQ(Column(h, 0), (Vector{1, 2, 3}));
  EXPECT_NEAR(h.GetElem(0, 1), 0, 1e-15);
  EXPECT_NEAR(h.GetElem(1, 1), 0, 1e-15);
  EXPECT_EQ(h.GetElem(2, 1), 3);
  EXPECT_EQ(spanning.InSet(), 2);
  EXPECT_FALSE(spanning.IsIn(3));
}

TEST(ResidOfOrthProjection, RefusesShapesThatDoNotMatch) {
  MCRectMatrix h = Matrix({{1}, {2}});
  MCBitSet live = Bits(1, {0});
  MCBitSet wrong(2);
  MCBitSet spanning;
  EXPECT_FALSE(h.ResidOfOrthProjection(Matrix({{1}}), kTol, spanning, live));
  EXPECT_FALSE(h.ResidOfOrthProjection(Matrix({{1}, {1}}), kTol, spanning, wrong));
  EXPECT_EQ(Column(h, 0), (Vector{1, 2}));
}

// ---- eliminations ----

TEST(ZeroOutPivotRow, EliminatesTheRowFromAllOtherColumns) {
  MCRectMatrix h = Matrix({{0, 2, 4, 1}, {1, 1, 5, 0}});
  int pivot = -9;
  ASSERT_TRUE(h.ZeroOutPivotRow(0, kTol, Bits(4, {0, 1, 2}), pivot));
  EXPECT_EQ(pivot, 1) << "the first live column with an element";
  EXPECT_EQ(h.AsVectorConst(), (Vector{0, 2, 0, 0, 1, 1, 3, -0.5}));
}

TEST(ZeroOutPivotRow, WithoutAnElementAboveTheToleranceChangesNothing) {
  MCRectMatrix h = Matrix({{1e-13, 7}, {1, 1}});
  int pivot = 0;
  ASSERT_TRUE(h.ZeroOutPivotRow(0, kTol, Bits(2, {0}), pivot));
  EXPECT_EQ(pivot, -1) << "the dead column is no pivot";
  EXPECT_EQ(h.AsVectorConst(), (Vector{1e-13, 7, 1, 1}));
  EXPECT_FALSE(h.ZeroOutPivotRow(2, kTol, Bits(2, {0}), pivot));
  EXPECT_FALSE(h.ZeroOutPivotRow(0, kTol, Bits(1, {0}), pivot));
}

TEST(ColClean, SetsRoundingToZeroRelativeToTheLargestElement) {
  MCRectMatrix h = Matrix({{1e9, 1e-20}, {-1e-7, 1e-34}, {1, 0}, {-0.0, 1e-30}});
  ASSERT_TRUE(h.ColClean(0, 4));
  EXPECT_EQ(Column(h, 0), (Vector{1e9, 0, 1, 0}));
  EXPECT_FALSE(std::signbit(h.GetElem(3, 0))) << "no minus before a zero";
  EXPECT_EQ(h.GetElem(1, 1), 1e-34) << "the other column stays";
  ASSERT_TRUE(h.ColClean(1, 4));
  EXPECT_EQ(Column(h, 1), (Vector{1e-20, 0, 0, 1e-30}));
  EXPECT_FALSE(h.ColClean(2, 4));
}

}  // namespace
