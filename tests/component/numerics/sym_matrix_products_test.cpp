// The sandwich product G M G, and the rank of a covariance.

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "dense_reference.h"

namespace {

using MCCommonMath::MCBitSet;
using MCCommonMath::MCSymMatrix;
using Vector = std::vector<double>;

TEST(ComputeGMG, GivesAnExampleWorkedByHand) {
  MCSymMatrix g(2);
  g.AsVector() = {1, 2, 3};  // G M = [[1, 2], [2, 3]] [[1, 0], [0, 2]] = [[1, 4], [2, 6]]
  MCSymMatrix v;
  ASSERT_TRUE(g.ComputeGMG({1, 0, 2}, v));
  EXPECT_EQ(v.AsVectorConst(), (Vector{9, 14, 22}));
}

TEST(ComputeGMG, AgreesWithTripleLoopsAcrossPanels) {
  for (const int n : {1, 7, 64, 65, 130, 200}) {
    const Dense g = RandomCovariance(n, n + 5, 1);
    const Dense m = RandomCovariance(n, n / 2 + 1, 2);
    MCSymMatrix v;
    ASSERT_TRUE(Packed(g).ComputeGMG(Packed(m).AsVectorConst(), v));
    EXPECT_LT(RelativeDistance(Unpacked(v), g * m * g), 1e-13) << n;
  }
}

TEST(ComputeGMG, KeepsAZeroRowZeroWhateverMHoldsThere) {
  const Dense g = Restricted(RandomCovariance(70, 80, 1), Bits(70, {0, 2, 3, 68, 69}));
  const Dense m = RandomCovariance(70, 90, 2);
  MCSymMatrix spoiled = Packed(m);
  for (int j = 0; j < 70; ++j) {
    spoiled.SetElem(1, j, NAN);
    spoiled.SetElem(67, j, INFINITY);
  }
  MCSymMatrix v(3);
  ASSERT_TRUE(Packed(g).ComputeGMG(spoiled.AsVectorConst(), v));
  EXPECT_LT(RelativeDistance(Unpacked(v), g * m * g), 1e-13);
  EXPECT_EQ(v.GetElem(1, 0), 0.0);
}

TEST(ComputeGMG, OfNearlyCollinearColumnsKeepsItsDigits) {
  // G = C C' and M = inverse(C') A inverse(C) with C = [[k, 0], [-k, 1]], so that G M G = C A C'. It is
  // large, k squared times 2, but for the sum of both parameters, whose variance is 1.7. Multiplied as it
  // stands, rounding in G M G is of the size of k to the fourth times a machine epsilon.
  const double k = 49153;
  MCSymMatrix g(2);
  g.AsVector() = {k * k, -k * k, k * k + 1};
  const Vector m{(2 / k + 0.3) / k + 0.3 / k + 1.7, 0.3 / k + 1.7, 1.7};
  MCSymMatrix v;
  ASSERT_TRUE(g.ComputeGMG(m, v));
  EXPECT_NEAR(v.GetElem(0, 0) + 2 * v.GetElem(1, 0) + v.GetElem(1, 1), 1.7, 1e-4);
  EXPECT_NEAR(v.GetElem(0, 0) / (k * k), 2.0, 1e-6);
}

TEST(ComputeGMG, RefusesSizesThatDoNotMatchAndTakesAnEmptyMatrix) {
  MCSymMatrix v(2);
  EXPECT_FALSE(MCSymMatrix(2).ComputeGMG({1, 0}, v));
  EXPECT_EQ(v.GetNRows(), 2);
  EXPECT_TRUE(MCSymMatrix().ComputeGMG({}, v));
  EXPECT_EQ(v.GetNRows(), 0);
}

TEST(IsSafelyRegular, SaysYesWhateverTheUnitsOfTheRows) {
  Dense v = RandomCovariance(6, 30, 4);
  for (int i = 0; i < 6; ++i) {
    for (int j = 0; j < 6; ++j)
      v(i, j) *= std::pow(10.0, 7.0 * (i + j - 5));
  }
  EXPECT_TRUE(Packed(v).IsSafelyRegular(AllBits(6)));
}

// Two columns whose correlation is 1 - 5e-8: a pivot of 1e-7.
TEST(IsSafelyRegular, LeavesANearlySingularMatrixToTheRank) {
  MCSymMatrix v(2);
  v.AsVector() = {4, 2 * (1 - 5e-8), 1};
  EXPECT_FALSE(v.IsSafelyRegular(AllBits(2)));
  v.SetElem(1, 0, 2 * (1 - 5e-6));
  EXPECT_TRUE(v.IsSafelyRegular(AllBits(2)));
}

TEST(IsSafelyRegular, SaysNoOfAZeroVarianceAndOfALowRank) {
  EXPECT_FALSE(Packed(RandomCovariance(4, 2, 2)).IsSafelyRegular(AllBits(4)));
  MCSymMatrix v(2);
  v.AsVector() = {1, 0, 0};
  EXPECT_FALSE(v.IsSafelyRegular(AllBits(2)));
}

TEST(IsSafelyRegular, LooksAtTheSetBitsOnly) {
  const MCBitSet bits = Bits(3, {0, 2});
  EXPECT_TRUE(Packed(Restricted(RandomCovariance(3, 30, 1), bits)).IsSafelyRegular(bits));
  EXPECT_FALSE(MCSymMatrix(2).IsSafelyRegular(AllBits(3)));
}

TEST(CheckMDependent, CountsTheColumnsThatDependOnOthers) {
  for (const int rank : {0, 1, 5, 39, 40}) {
    const MCSymMatrix m = Packed(RandomCovariance(40, rank, 9));
    MCSymMatrix work;
    EXPECT_EQ(work.CheckMDependent(40, m.AsVectorConst(), AllBits(40), 1e-12), 40 - rank);
  }
}

TEST(CheckMDependent, LooksAtTheSetBitsOnly) {
  Dense m = RandomCovariance(5, 30, 1);
  for (int j = 0; j < 5; ++j) {
    m(3, j) = 0.0;
    m(j, 3) = 0.0;
  }
  const Vector central = Packed(m).AsVectorConst();
  MCSymMatrix work;
  EXPECT_EQ(work.CheckMDependent(5, central, AllBits(5), 1e-12), 1);
  EXPECT_EQ(work.CheckMDependent(5, central, Bits(5, {0, 1, 2, 4}), 1e-12), 0);
  EXPECT_EQ(work.CheckMDependent(5, central, MCBitSet(5), 1e-12), 0);
}

// Few clusters give a low rank, whatever the units of the parameters.
TEST(CheckMDependent, DoesNotDependOnTheScaleOfTheParameters) {
  for (const int rank : {6, 3}) {
    Dense m = RandomCovariance(6, rank, 4);
    for (int i = 0; i < 6; ++i) {
      for (int j = 0; j < 6; ++j) {
        m(i, j) *= std::pow(10.0, 7.0 * (i + j - 5));
      }
    }
    MCSymMatrix work;
    EXPECT_EQ(work.CheckMDependent(6, Packed(m).AsVectorConst(), AllBits(6), 1e-12), 6 - rank);
  }
}

TEST(CheckMDependent, CountsColumnsWithoutAPositiveVarianceAsDependent) {
  MCSymMatrix work;
  EXPECT_EQ(work.CheckMDependent(3, {1, 0, -2, 0, 0, NAN}, AllBits(3), 1e-12), 2);
}

TEST(CheckMDependent, RefusesSizesThatDoNotMatch) {
  MCSymMatrix work;
  EXPECT_EQ(work.CheckMDependent(2, {1, 0}, AllBits(2), 1e-12), -1);
  EXPECT_EQ(work.CheckMDependent(2, {1, 0, 1}, AllBits(3), 1e-12), -1);
  EXPECT_EQ(work.CheckMDependent(-1, {}, MCBitSet(), 1e-12), -1);
}

}  // namespace
