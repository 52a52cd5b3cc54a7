// Accumulation, Cholesky factorisation, substitution and inverse of the packed symmetric matrix.

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "dense_reference.h"

namespace {

using MCCommonMath::MCBitSet;
using MCCommonMath::MCSymMatrix;
using Vector = std::vector<double>;

constexpr double kTol = 1e-12;

TEST(UpdateXX, AddsTheWeightedOuterProduct) {
  MCSymMatrix a(3);
  ASSERT_TRUE(a.UpdateXX(Vector{1, 0, -2}, 0.5));
  ASSERT_TRUE(a.UpdateXX(Vector{1, 3, 0}, 2.0));
  EXPECT_EQ(a.AsVectorConst(), (Vector{2.5, 6, 18, -1, 0, 2}));
  EXPECT_FALSE(a.UpdateXX(Vector{1, 2}, 1.0));
  EXPECT_FALSE(a.UpdateXX(Vector{1, 2, 3, 4}, 1.0));
}

TEST(UpdateXXSparse, EqualsTheDenseUpdateAndTakesIndicesInAnyOrder) {
  MCSymMatrix sparse(5);
  MCSymMatrix dense(5);
  const std::vector<int> indices{4, 1, 2, 0};
  const Vector values{0.5, -1.5, 2.0, 77.0};
  ASSERT_TRUE(sparse.UpdateXXSparse(3, indices, values, 3.0));
  ASSERT_TRUE(dense.UpdateXX(Vector{0, -1.5, 2.0, 0, 0.5}, 3.0));
  EXPECT_EQ(sparse.AsVectorConst(), dense.AsVectorConst());
}

TEST(UpdateXXSparse, AddsUpTheEntriesOfAnIndexThatOccursTwice) {
  MCSymMatrix sparse(2);
  MCSymMatrix dense(2);
  ASSERT_TRUE(sparse.UpdateXXSparse(3, std::vector<int>{1, 0, 1}, Vector{2, 3, 5}, 1.0));
  ASSERT_TRUE(dense.UpdateXX(Vector{3, 7}, 1.0));
  EXPECT_EQ(sparse.AsVectorConst(), dense.AsVectorConst());
}

TEST(UpdateXXSparse, RefusesAnIndexOutsideAndChangesNothing) {
  MCSymMatrix a(2);
  EXPECT_FALSE(a.UpdateXXSparse(2, std::vector<int>{0, 2}, Vector{1, 1}, 1.0));
  EXPECT_FALSE(a.UpdateXXSparse(2, std::vector<int>{0, -1}, Vector{1, 1}, 1.0));
  EXPECT_FALSE(a.UpdateXXSparse(2, std::vector<int>{0}, Vector{1, 1}, 1.0));
  EXPECT_FALSE(a.UpdateXXSparse(-1, std::vector<int>{0}, Vector{1}, 1.0));
  EXPECT_EQ(a.AsVectorConst(), Vector(3, 0.0));
  EXPECT_TRUE(a.UpdateXXSparse(0, {}, {}, 1.0));
}

// By hand: [[4, 2], [2, 5]] = L L' with L = [[2, 0], [1, 2]]; the pivots are 4 and 4, the largest diagonal 5.
TEST(LTChol, FactorsAMatrixWorkedByHand) {
  MCSymMatrix a(2);
  a.AsVector() = {4, 2, 5};
  double measure = -1.0;
  EXPECT_EQ(a.LTChol(kTol, measure, false), 0);
  EXPECT_EQ(a.AsVectorConst(), (Vector{2, 1, 2}));
  EXPECT_DOUBLE_EQ(measure, std::sqrt(4.0 / 5.0));
  Vector x;
  EXPECT_EQ(a.LTSubstitute({10, 13}, x), 0);  // 4 * 1.5 + 2 * 2 = 10, 2 * 1.5 + 5 * 2 = 13
  EXPECT_DOUBLE_EQ(x[0], 1.5);
  EXPECT_DOUBLE_EQ(x[1], 2.0);
  ASSERT_TRUE(a.LTInverse());  // determinant 16
  EXPECT_DOUBLE_EQ(a.GetElem(0, 0), 5.0 / 16);
  EXPECT_DOUBLE_EQ(a.GetElem(1, 0), -2.0 / 16);
  EXPECT_DOUBLE_EQ(a.GetElem(1, 1), 4.0 / 16);
}

// The third row is the sum of the first two.
TEST(LTChol, OfRankNMinus1ReturnsOneAndSubstitutionStaysFinite) {
  MCSymMatrix a(3);
  a.AsVector() = {4, 2, 5, 6, 7, 13};
  double measure = -1.0;
  EXPECT_EQ(a.LTChol(kTol, measure, false), 1);
  EXPECT_EQ(measure, 0.0);
  Vector x;
  EXPECT_EQ(a.LTSubstitute({10, 13, 23}, x), 1);
  EXPECT_DOUBLE_EQ(x[0], 1.5);
  EXPECT_DOUBLE_EQ(x[1], 2.0);
  EXPECT_EQ(x[2], 0.0);
  ASSERT_TRUE(a.LTInverse());
  EXPECT_DOUBLE_EQ(a.GetElem(1, 0), -2.0 / 16);
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(a.GetElem(2, i), 0.0);
  }
}

TEST(LTChol, OfAnEmptyMatrixHasFullRankAndMeasureOne) {
  MCSymMatrix a;
  double measure = -1.0;
  EXPECT_EQ(a.LTChol(kTol, measure, false), 0);
  EXPECT_EQ(measure, 1.0);
  Vector x{1.0};
  EXPECT_EQ(a.LTSubstitute({}, x), 0);
  EXPECT_TRUE(x.empty());
  EXPECT_TRUE(a.LTInverse());
}

TEST(LTChol, TakesAPivotForSingularRelativeToALargeDiagonalAndAbsolutelyBelowOne) {
  double measure = 0.0;
  MCSymMatrix large(2);
  large.AsVector() = {1e16, 1e16, 1e16 + 2000.0};  // reduced pivot 2000, below 1e-12 * 1e16
  EXPECT_EQ(large.LTChol(kTol, measure, false), 1);
  large.AsVector() = {1e16, 1e16, 1e16 + 2000.0};
  EXPECT_EQ(large.LTChol(kTol, measure, true), 0);
  MCSymMatrix small(1);
  small.AsVector() = {1e-13};
  EXPECT_EQ(small.LTChol(kTol, measure, false), 1);
  EXPECT_EQ(small.AsVectorConst(), Vector{0.0});
}

TEST(LTChol, LeavesOutZeroNegativeAndNotFinitePivotsWithoutSpoilingTheOthers) {
  MCSymMatrix a(5);
  a.SetElem(0, 0, 0.0);
  a.SetElem(1, 1, -4.0);
  a.SetElem(2, 2, 9.0);
  a.SetElem(3, 0, NAN);
  a.SetElem(3, 3, 2.0);
  a.SetElem(4, 1, 5.0);
  a.SetElem(4, 2, 3.0);
  a.SetElem(4, 3, NAN);
  a.SetElem(4, 4, INFINITY);
  a.SetElem(3, 2, NAN);
  double measure = -1.0;
  EXPECT_EQ(a.LTChol(0.0, measure, false), 4);
  Vector x;
  EXPECT_EQ(a.LTSubstitute({1, NAN, 18, NAN, 1}, x), 4);
  EXPECT_EQ(x, (Vector{0, 0, 2, 0, 0}));
  ASSERT_TRUE(a.LTInverse());
  for (int i = 0; i < 5; ++i) {
    for (int j = 0; j < 5; ++j) {
      EXPECT_DOUBLE_EQ(a.GetElem(i, j), i == 2 && j == 2 ? 1.0 / 9 : 0.0);
    }
  }
}

TEST(LTSubstitute, RefusesAVectorOfAnotherLength) {
  const MCSymMatrix a(2);
  Vector x{1.0};
  EXPECT_EQ(a.LTSubstitute({1, 2, 3}, x), -1);
  EXPECT_TRUE(x.empty());
}

TEST(LTSubstitute, SolvesInPlace) {
  MCSymMatrix a(2);
  a.AsVector() = {2, 1, 2};
  Vector x{10, 13};
  EXPECT_EQ(a.LTSubstitute(x, x), 0);
  EXPECT_DOUBLE_EQ(x[0], 1.5);
}

// Sizes around the panel height of the implementation, and some columns that repeat others: the factor times
// its transpose is A on the rows kept, the inverse inverts there, and both are 0 elsewhere.
class Factorisation : public testing::TestWithParam<int> {
 protected:
  // The columns 3, 3 + 17, ... are sums of the two before them.
  [[nodiscard]] static bool IsDependent(int i) { return i > 2 && i % 17 == 3; }

  Factorisation() : fA(Matrix(GetParam())), fKept(GetParam()) {
    for (int i = 0; i < GetParam(); ++i) {
      fKept.Set(i, !IsDependent(i));
    }
  }

  static Dense Matrix(int n) {
    Dense x = Random(2 * n + 3, n, static_cast<unsigned>(n));
    for (int j = 0; j < n; ++j) {
      for (int i = 0; IsDependent(j) && i < x.fNRows; ++i) {
        x(i, j) = x(i, j - 1) + x(i, j - 2);
      }
    }
    return Transposed(x) * x;
  }

  Dense fA;
  MCBitSet fKept;
};

TEST_P(Factorisation, OfRepeatedColumnsCountsThemAndFactorsTheRest) {
  const int n = GetParam();
  MCSymMatrix a = Packed(fA);
  double measure = -1.0;
  const int singular = a.LTChol(1e-10, measure, false);
  EXPECT_EQ(singular, n - fKept.InSet());
  EXPECT_EQ(measure > 0.0, singular == 0);
  const Dense factor = UnpackedFactor(a);
  EXPECT_LT(RelativeDistance(factor * Transposed(factor), Restricted(fA, fKept)), 1e-13);
}

TEST_P(Factorisation, SubstitutionAndInverseAgreeAndInvertOnTheRowsKept) {
  const int n = GetParam();
  MCSymMatrix a = Packed(fA);
  double measure = 0.0;
  a.LTChol(1e-10, measure, false);
  Dense b = Random(n, 1, 5);
  Vector x;
  a.LTSubstitute(b.fElements, x);
  ASSERT_TRUE(a.LTInverse());
  const Dense inverse = Unpacked(a);
  EXPECT_LT(RelativeDistance(inverse * fA * inverse, inverse), 1e-9);
  const Dense product = Restricted(inverse * fA, fKept);
  Dense projection(n, n);
  Dense solved(n, 1);
  for (int i = 0; i < n; ++i) {
    projection(i, i) = fKept.IsIn(i) ? 1.0 : 0.0;
    solved(i, 0) = x[static_cast<std::size_t>(i)];
    EXPECT_EQ(a.GetElem(i, i) == 0.0, !fKept.IsIn(i));
  }
  EXPECT_LT(RelativeDistance(product, projection), 1e-10);
  EXPECT_LT(RelativeDistance(solved, inverse * b), 1e-10);
}

INSTANTIATE_TEST_SUITE_P(Sizes, Factorisation, testing::Values(1, 2, 5, 63, 64, 65, 128, 150));

}  // namespace
