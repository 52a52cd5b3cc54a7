// Sweeps, expansion and the back-transformation of the packed symmetric matrix.

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "component/numerics/math_functions.h"
#include "dense_reference.h"

namespace {

using MCCommonMath::MCBitSet;
using MCCommonMath::MCMathFun;
using MCCommonMath::MCSymMatrix;
using Vector = std::vector<double>;

constexpr double kTol = 1e-12;

// Sweeps all columns in order and returns the bits of those kept.
MCBitSet SweepAll(MCSymMatrix& a) {
  Vector diagonal;
  a.GetDiagonal(diagonal);
  MCBitSet kept(a.GetNRows());
  for (int k = 0; k < a.GetNRows(); ++k) {
    const bool isKept = a.Sweep(k, kTol, diagonal, kept, true);
    EXPECT_EQ(isKept, kept.IsIn(k));
  }
  return kept;
}

// By hand, pivot 4: 5 - 2 * 2 / 4 = 4, 2 / 4, -1 / 4; then pivot 4: -1/4 - 0.5^2 / 4 = -5/16.
TEST(Sweep, OfAMatrixWorkedByHandGivesMinusTheInverse) {
  MCSymMatrix a(2);
  a.AsVector() = {4, 2, 5};
  MCBitSet bits(2);
  ASSERT_TRUE(a.Sweep(0, kTol, {4, 5}, bits, true));
  EXPECT_EQ(a.AsVectorConst(), (Vector{-0.25, 0.5, 4}));
  ASSERT_TRUE(a.Sweep(1, kTol, {4, 5}, bits, true));
  EXPECT_EQ(a.AsVectorConst(), (Vector{-5.0 / 16, 2.0 / 16, -4.0 / 16}));
  EXPECT_EQ(bits, AllBits(2));
}

TEST(Sweep, OnAZeroColumnReturnsFalseAndLeavesTheBitClear) {
  MCSymMatrix a(2);
  a.AsVector() = {0, 0, 5};
  MCBitSet bits(2);
  EXPECT_FALSE(a.Sweep(0, kTol, {0, 5}, bits, true));
  EXPECT_EQ(bits.InSet(), 0);
  EXPECT_EQ(a.AsVectorConst(), (Vector{0, 0, 5}));
}

TEST(Sweep, HoldsThePivotAgainstItsOwnDiagonalWhateverTheScale) {
  for (const double scale : {1e-200, 1e-8, 1.0, 1e150}) {
    MCSymMatrix a(2);
    a.AsVector() = {4 * scale, 4 * scale, 4 * scale * (1 + 1e-9)};
    Vector diagonal;
    a.GetDiagonal(diagonal);
    MCBitSet bits(2);
    ASSERT_TRUE(a.Sweep(0, kTol, diagonal, bits, true));
    EXPECT_FALSE(a.Sweep(1, 1e-8, diagonal, bits, true));
    EXPECT_FALSE(bits.IsIn(1));
    EXPECT_TRUE(a.Sweep(1, 1e-10, diagonal, bits, true));
  }
}

TEST(Sweep, OfASweptPivotIsRefusedUnlessItMaySweepBack) {
  MCSymMatrix a(2);
  a.AsVector() = {4, 2, 5};
  MCBitSet bits(2);
  ASSERT_TRUE(a.Sweep(0, kTol, {4, 5}, bits, false));
  const Vector swept = a.AsVectorConst();
  EXPECT_FALSE(a.Sweep(0, kTol, {4, 5}, bits, false));
  EXPECT_EQ(a.AsVectorConst(), swept);
  EXPECT_TRUE(bits.IsIn(0));
  ASSERT_TRUE(a.Sweep(0, kTol, {4, 5}, bits, true));
  EXPECT_EQ(a.AsVectorConst(), (Vector{4, 2, 5}));
  EXPECT_FALSE(bits.IsIn(0));
}

TEST(Sweep, RefusesWhatDoesNotFit) {
  MCSymMatrix a(2);
  a.AsVector() = {4, 2, 5};
  MCBitSet bits(2);
  MCBitSet shortBits(1);
  EXPECT_FALSE(a.Sweep(2, kTol, {4, 5}, bits, true));
  EXPECT_FALSE(a.Sweep(-1, kTol, {4, 5}, bits, true));
  EXPECT_FALSE(a.Sweep(0, kTol, {4}, bits, true));
  EXPECT_FALSE(a.Sweep(0, kTol, {4, 5}, shortBits, true));
}

// Columns 3 and 7 of X depend on earlier ones: the earlier columns win, the swept block is minus the inverse,
// and the coefficients reproduce the columns left out.
TEST(Sweep, KeepsTheFirstIndependentColumnsAndHoldsTheCoefficientsOfTheOthers) {
  Dense x = Random(40, 9, 3);
  for (int i = 0; i < x.fNRows; ++i) {
    x(i, 3) = 2.0 * x(i, 0) - x(i, 2);
    x(i, 7) = x(i, 1) + 0.5 * x(i, 3);
  }
  const Dense a = Transposed(x) * x;
  MCSymMatrix swept = Packed(a);
  const MCBitSet kept = SweepAll(swept);
  EXPECT_EQ(kept, Bits(9, {0, 1, 2, 4, 5, 6, 8}));
  EXPECT_NEAR(swept.GetElem(0, 3), 2.0, 1e-12);
  EXPECT_NEAR(swept.GetElem(2, 3), -1.0, 1e-12);
  EXPECT_NEAR(swept.GetElem(8, 3), 0.0, 1e-12);
  EXPECT_NEAR(swept.GetElem(7, 0), 1.0, 1e-12);
  EXPECT_NEAR(swept.GetElem(7, 1), 1.0, 1e-12);
  EXPECT_NEAR(swept.GetElem(7, 2), -0.5, 1e-12);
  EXPECT_NEAR(swept.GetElem(7, 3), 0.0, 1e-12);

  MCSymMatrix inverse = Packed(Restricted(a, kept));
  double measure = 0.0;
  inverse.LTChol(1e-10, measure, false);
  inverse.LTInverse();
  Dense minusInverse = Restricted(Unpacked(swept), kept);
  for (double& element : minusInverse.fElements) {
    element = -element;
  }
  EXPECT_LT(RelativeDistance(minusInverse, Unpacked(inverse)), 1e-11);
}

TEST(Sweep, BackInAnyOrderRestoresTheMatrix) {
  Dense x = Random(30, 6, 4);
  for (int i = 0; i < x.fNRows; ++i) {
    x(i, 4) = x(i, 0) + x(i, 1);
  }
  const Dense a = Transposed(x) * x;
  for (const std::vector<int>& order : {std::vector<int>{5, 3, 2, 1, 0}, std::vector<int>{2, 0, 5, 1, 3}}) {
    MCSymMatrix swept = Packed(a);
    MCBitSet kept = SweepAll(swept);
    Vector diagonal;
    swept.GetDiagonal(diagonal);
    for (const int k : order) {
      EXPECT_TRUE(swept.Sweep(k, kTol, diagonal, kept, true));
    }
    EXPECT_EQ(kept.InSet(), 0);
    EXPECT_LT(RelativeDistance(Unpacked(swept), a), 1e-13);
  }
}

TEST(Expand, WithAllBitsSetCopiesTheMatrix) {
  const MCSymMatrix a = Packed(RandomCovariance(4, 6, 8));
  MCSymMatrix out;
  ASSERT_TRUE(a.Expand(AllBits(4), out));
  EXPECT_EQ(out.AsVectorConst(), a.AsVectorConst());
}

TEST(Expand, PutsElementsAtTheSetBitsInOrder) {
  MCSymMatrix a(2);
  a.AsVector() = {1, 2, 3};
  MCSymMatrix out(7);
  ASSERT_TRUE(a.Expand(Bits(4, {1, 3}), out));
  EXPECT_EQ(out.AsVectorConst(), (Vector{0, 0, 1, 0, 0, 0, 0, 2, 0, 3}));
  EXPECT_FALSE(a.Expand(AllBits(3), out));
  EXPECT_EQ(out.GetNRows(), 4);
}

// T built column by column from the back-transformation of unit vectors.
Dense BackTransformation(const Vector& centers, const Vector& scales, int nBlocks, int nIntercepts,
                         bool inverse) {
  const int n = static_cast<int>(scales.size()) * nBlocks;
  Dense t(n, n);
  for (int j = 0; j < n; ++j) {
    Vector unit(static_cast<std::size_t>(n), 0.0);
    unit[static_cast<std::size_t>(j)] = 1.0;
    EXPECT_TRUE(MCMathFun::TransformParameters(unit, centers, scales, nBlocks, nIntercepts, inverse));
    for (int i = 0; i < n; ++i) {
      t(i, j) = unit[static_cast<std::size_t>(i)];
    }
  }
  return t;
}

const Vector kCenters{0, 2.5, -1, 40};
const Vector kScales{1, 0.5, 3, 7};

TEST(TransformParameterMatrix, IsTheCongruenceOfTheBackTransformationInEveryBlockPair) {
  for (const int nIntercepts : {0, 1}) {
    for (const bool inverse : {false, true}) {
      const Dense v = RandomCovariance(12, 20, 6);
      const Dense t = BackTransformation(kCenters, kScales, 3, nIntercepts, inverse);
      MCSymMatrix packed = Packed(v);
      ASSERT_TRUE(packed.TransformParameterMatrix(kCenters, kScales, 3, nIntercepts, inverse, false));
      EXPECT_LT(RelativeDistance(Unpacked(packed), t * v * Transposed(t)), 1e-14);
    }
  }
}

// By hand: T = [[1, -3/2], [0, 1/2]], V = [[1, 1], [1, 4]].
TEST(TransformParameterMatrix, GivesAnExampleWorkedByHand) {
  MCSymMatrix v(2);
  v.AsVector() = {1, 1, 4};
  ASSERT_TRUE(v.TransformParameterMatrix({0, 3}, {1, 2}, 1, 1));
  EXPECT_EQ(v.AsVectorConst(), (Vector{1 - 3 + 9, 0.5 - 3, 1}));
  v.AsVector() = {1, 1, 4};
  ASSERT_TRUE(v.TransformParameterMatrix({0, 3}, {1, 2}, 1, 1, false, true));
  EXPECT_EQ(v.AsVectorConst(), (Vector{1, 0.5, 1}));
}

TEST(TransformParameterMatrix, GivesAColumnOfScaleZeroAZeroRowAndNeverNaN) {
  MCSymMatrix v = Packed(RandomCovariance(3, 5, 2));
  v.SetElem(1, 1, INFINITY);
  v.SetElem(1, 0, NAN);
  const double corner = v.GetElem(0, 0);
  ASSERT_TRUE(v.TransformParameterMatrix({0, 3, 0}, {1, 0, 2}, 1, 1, false, false));
  for (int j = 0; j < 3; ++j) {
    EXPECT_EQ(v.GetElem(1, j), 0.0);
  }
  EXPECT_EQ(v.GetElem(0, 0), corner);
  EXPECT_TRUE(std::isfinite(v.GetElem(2, 0)));
}

TEST(TransformParameterMatrix, RefusesSizesThatDoNotMatch) {
  MCSymMatrix v(4);
  EXPECT_FALSE(v.TransformParameterMatrix({0, 1}, {1, 1}, 3, 1));
  EXPECT_FALSE(v.TransformParameterMatrix({0}, {1, 1}, 2, 1));
  EXPECT_FALSE(v.TransformParameterMatrix({0, 1}, {1, 1}, 2, 2));
  EXPECT_FALSE(v.TransformParameterMatrix({0, 1}, {1, 1}, AllBits(4), 1));
  EXPECT_FALSE(v.TransformParameterMatrix(kCenters, kScales, AllBits(3), 1));
}

// A weighted cross-product of columns on the scale of the data and of the same columns centred and scaled.
// Columns 4 and 5 are left out: column 4 depends on 1 and 2, column 5 is constant (scale 0).
class SweptTransform : public testing::TestWithParam<int> {
 protected:
  SweptTransform() : fData(25, 6), fScaled(25, 6) {
    fData = Random(25, 6, 12);
    const bool hasIntercept = GetParam() == 1;
    fScales[0] = hasIntercept ? 1.0 : 0.4;
    for (int i = 0; i < fData.fNRows; ++i) {
      if (hasIntercept) fData(i, 0) = 1.0;
      fData(i, 4) = 3.0 * fData(i, 1) - fData(i, 2) + (hasIntercept ? 2.0 : 0.0);
      fData(i, 5) = hasIntercept ? fCenters[5] : 0.0;
      for (int j = 0; j < 6; ++j) {
        const auto k = static_cast<std::size_t>(j);
        const double center = hasIntercept ? fCenters[k] : 0.0;
        fScaled(i, j) = fScales[k] == 0.0 ? 0.0 : (fData(i, j) - center) / fScales[k];
      }
    }
  }

  Vector fCenters{0, 0.5, -0.25, 2, 0.75, 1.5};
  Vector fScales{1, 0.5, 3, 7, 0.2, 0};
  Dense fData;
  Dense fScaled;
};

TEST_P(SweptTransform, EqualsSweepingTheCrossProductsOfTheData) {
  const Dense onData = Transposed(fData) * fData;
  MCSymMatrix sweptData = Packed(onData);
  MCSymMatrix swept = Packed(Transposed(fScaled) * fScaled);
  MCBitSet kept = SweepAll(swept);
  ASSERT_EQ(kept, SweepAll(sweptData));
  ASSERT_EQ(kept, Bits(6, {0, 1, 2, 3}));
  const Dense internal = Unpacked(swept);

  ASSERT_TRUE(swept.TransformParameterMatrix(fCenters, fScales, kept, GetParam(), false, false));
  EXPECT_LT(RelativeDistance(Unpacked(swept), Unpacked(sweptData)), 1e-11);
  EXPECT_NEAR(swept.GetElem(4, 1), 3.0, 1e-11);
  EXPECT_NEAR(swept.GetElem(4, 0), GetParam() == 1 ? 2.0 : 0.0, 1e-11);

  MCSymMatrix back = swept;
  ASSERT_TRUE(back.TransformParameterMatrix(fCenters, fScales, kept, GetParam(), true, false));
  EXPECT_LT(RelativeDistance(Unpacked(back), internal), 1e-11);

  Vector diagonal;
  swept.GetDiagonal(diagonal);
  for (int k = 3; k >= 0; --k) {
    EXPECT_TRUE(swept.Sweep(k, kTol, diagonal, kept, true));
  }
  EXPECT_LT(RelativeDistance(Unpacked(swept), onData), 1e-11);
}

INSTANTIATE_TEST_SUITE_P(WithAndWithoutIntercept, SweptTransform, testing::Values(0, 1));

}  // namespace
