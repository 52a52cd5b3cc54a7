#include "component/numerics/math_functions.h"

#include <gtest/gtest.h>

#include <cmath>

#include "component/numerics/missing_value.h"

namespace {

using MCCommonMath::IsMissing;
using MCCommonMath::MCMathFun;
using Vector = std::vector<double>;

TEST(DDot, TakesStridedElements) {
  const Vector x{1, 2, 3, 4, 5};
  const Vector y{10, 20, 30};
  EXPECT_EQ(MCMathFun::DDot(3, x, 0, 2, y, 0, 1), 10 + 60 + 150);
  EXPECT_EQ(MCMathFun::DDot(3, x, 4, -1, y, 0, 1), 50 + 80 + 90);
  EXPECT_EQ(MCMathFun::DDot(3, x, 1, 0, y, 0, 1), 120);
  EXPECT_EQ(MCMathFun::DDot(0, x, 99, 1, y, 0, 1), 0);
}

TEST(DDot, OfElementsOutsideAVectorIsMissing) {
  const Vector x{1, 2, 3};
  EXPECT_TRUE(IsMissing(MCMathFun::DDot(3, x, 1, 1, x, 0, 1)));
  EXPECT_TRUE(IsMissing(MCMathFun::DDot(3, x, 0, 1, x, 1, -1)));
  EXPECT_TRUE(IsMissing(MCMathFun::DDot(2000000000, x, 0, 2000000000, x, 0, 1)));
}

TEST(Daxpy, AddsToStridedElements) {
  const Vector x{1, 2, 3, 4};
  Vector y{0, 0, 0, 0};
  EXPECT_TRUE(MCMathFun::Daxpy(2, 2.0, x, 1, 2, y, 3, -3));
  EXPECT_EQ(y, (Vector{8, 0, 0, 4}));
  EXPECT_FALSE(MCMathFun::Daxpy(2, 2.0, x, 0, 1, y, 3, 1));
  EXPECT_EQ(y, (Vector{8, 0, 0, 4}));
}

TEST(VNrm1Diff, IsTheSumOfAbsoluteDifferences) {
  EXPECT_EQ(MCMathFun::VNrm1Diff(Vector{1, -2, 3}, Vector{0, 2, 3.5}), 5.5);
  EXPECT_EQ(MCMathFun::VNrm1Diff(Vector{}, Vector{}), 0.0);
  EXPECT_EQ(MCMathFun::VNrm1Diff(Vector{1}, Vector{1, 2}), INFINITY);
  EXPECT_TRUE(std::isnan(MCMathFun::VNrm1Diff(Vector{1, NAN}, Vector{1, 2})));
}

TEST(VMaxRelDiff, OfEqualVectorsIsZeroAlsoWhenBothHoldZero) {
  EXPECT_EQ(MCMathFun::VMaxRelDiff(Vector{1, 0, -3}, Vector{1, 0, -3}, 1e-6), 0.0);
  EXPECT_EQ(MCMathFun::VMaxRelDiff(Vector{0, 0}, Vector{0, 0}, 1e-6), 0.0);
  EXPECT_EQ(MCMathFun::VMaxRelDiff(Vector{0}, Vector{0}, 0.0), 0.0);
}

TEST(VMaxRelDiff, IsRelativeToThePreviousVectorWithGuardedDenominators) {
  EXPECT_DOUBLE_EQ(MCMathFun::VMaxRelDiff(Vector{1.5, 4}, Vector{1, -2}, 1e-6), 3.0);
  EXPECT_DOUBLE_EQ(MCMathFun::VMaxRelDiff(Vector{1e-6}, Vector{0}, 1e-6), 1.0);
  EXPECT_EQ(MCMathFun::VMaxRelDiff(Vector{1}, Vector{1, 2}, 1e-6), INFINITY);
  EXPECT_TRUE(std::isnan(MCMathFun::VMaxRelDiff(Vector{NAN, 9}, Vector{1, 2}, 1e-6)));
}

// By hand: slopes 6/2 and 10/5, intercept 1 - (3 * 3 + 4 * 2).
TEST(TransformParameters, TakesSlopesAndInterceptBackToTheDataInEachBlock) {
  const Vector centers{0, 3, 4};
  const Vector scales{1, 2, 5};
  Vector params{1, 6, 10, 100, 2, 0};
  ASSERT_TRUE(MCMathFun::TransformParameters(params, centers, scales, 2, 1, false, false));
  EXPECT_EQ(params, (Vector{-16, 3, 2, 97, 1, 0}));
}

TEST(TransformParameters, LeavesTheLinearPredictorAsItWas) {
  const Vector centers{0, 3, 4};
  const Vector scales{1, 2, 5};
  const Vector internal{0.3, -1.7, 0.9};
  Vector params = internal;
  ASSERT_TRUE(MCMathFun::TransformParameters(params, centers, scales, 1, 1));
  const double x1 = 7.25;
  const double x2 = -2.5;
  EXPECT_NEAR(params[0] + params[1] * x1 + params[2] * x2,
              internal[0] + internal[1] * (x1 - 3) / 2 + internal[2] * (x2 - 4) / 5, 1e-14);
}

TEST(TransformParameters, WithoutAnInterceptDoesNotUseTheCentres) {
  Vector params{6, 10};
  ASSERT_TRUE(MCMathFun::TransformParameters(params, {3, 4}, {2, 5}, 1, 0));
  EXPECT_EQ(params, (Vector{3, 2}));
}

TEST(TransformParameters, GivesAColumnOfScaleZeroACoefficientOfZero) {
  Vector params{1, 6, 10};
  ASSERT_TRUE(MCMathFun::TransformParameters(params, {0, 3, 4}, {1, 0, 5}, 1, 1));
  EXPECT_EQ(params, (Vector{1 - 4 * 2, 0, 2}));
}

TEST(TransformParameters, InverseGoesBackAndScaleOnlyLeavesTheIntercept) {
  const Vector centers{0, 3, 4};
  const Vector scales{1, 2, 5};
  Vector params{1, 6, 10};
  ASSERT_TRUE(MCMathFun::TransformParameters(params, centers, scales, 1, 1));
  ASSERT_TRUE(MCMathFun::TransformParameters(params, centers, scales, 1, 1, true));
  EXPECT_EQ(params, (Vector{1, 6, 10}));
  ASSERT_TRUE(MCMathFun::TransformParameters(params, centers, scales, 1, 1, false, true));
  EXPECT_EQ(params, (Vector{1, 3, 2}));
}

TEST(TransformParameters, RefusesLengthsThatDoNotMatch) {
  Vector params{1, 6, 10};
  EXPECT_FALSE(MCMathFun::TransformParameters(params, {0, 3}, {1, 2}, 1, 1));
  EXPECT_FALSE(MCMathFun::TransformParameters(params, {0, 3, 4}, {1, 2}, 1, 1));
  EXPECT_FALSE(MCMathFun::TransformParameters(params, {0, 3, 4}, {1, 2, 5}, 1, 2));
  EXPECT_EQ(params, (Vector{1, 6, 10}));
}

}  // namespace
