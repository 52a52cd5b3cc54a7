// The sandwich product G M G, its clean-up, and the rank of M.

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

struct Check {
  bool fbOk = false;
  bool fbAllZero = false;
  int fRankFlag = -99;
  MCBitSet fBad;
  MCSymMatrix fV;
};

// G M G, back-transformed, and cleaned up.
Check CleanUp(const MCSymMatrix& g, const Vector& m, const MCBitSet& bits, const Vector& centers,
              const Vector& scales, int nBlocks, int nIntercepts) {
  Check check;
  EXPECT_TRUE(g.ComputeGMG(m, check.fV));
  EXPECT_TRUE(check.fV.TransformParameterMatrix(centers, scales, nBlocks, nIntercepts));
  EXPECT_TRUE(check.fV.SetNBlocks(nBlocks));
  check.fbOk = g.CheckGMG(m, bits, check.fV, check.fBad, check.fbAllZero, check.fRankFlag, nIntercepts);
  return check;
}

Check CleanUp(const MCSymMatrix& g, const Vector& m, const MCBitSet& bits) {
  const auto n = static_cast<std::size_t>(g.GetNRows());
  return CleanUp(g, m, bits, Vector(n, 0.0), Vector(n, 1.0), 1, 0);
}

TEST(CheckGMG, LeavesARegularCovarianceAsItIs) {
  const MCSymMatrix g = Packed(RandomCovariance(4, 30, 1));
  const MCSymMatrix m = Packed(RandomCovariance(4, 30, 2));
  MCSymMatrix v;
  g.ComputeGMG(m.AsVectorConst(), v);
  const Check check = CleanUp(g, m.AsVectorConst(), AllBits(4));
  EXPECT_TRUE(check.fbOk);
  EXPECT_FALSE(check.fbAllZero);
  EXPECT_EQ(check.fBad, MCBitSet(4));
  EXPECT_LT(check.fRankFlag, 0);
  EXPECT_EQ(check.fV.AsVectorConst(), v.AsVectorConst());
}

TEST(CheckGMG, MarksNegativeVariancesAndTakesThemOutOfV) {
  MCSymMatrix g(3);
  g.AsVector() = {1, 0, 1, 0, 0, 1};
  const Check check = CleanUp(g, {4, 1, -2, 0.5, 0.25, 9}, AllBits(3));
  EXPECT_EQ(check.fBad, Bits(3, {1}));
  EXPECT_FALSE(check.fbAllZero);
  EXPECT_GT(check.fRankFlag, 0);
  EXPECT_EQ(check.fV.AsVectorConst(), (Vector{4, 0, 0, 0.5, 0, 9}));
}

TEST(CheckGMG, TellsWhenTheVarianceOfEveryParameterIsZero) {
  const MCSymMatrix g = Packed(RandomCovariance(3, 30, 1));
  const Check zero = CleanUp(g, Vector(6, 0.0), AllBits(3));
  EXPECT_TRUE(zero.fbAllZero);
  EXPECT_EQ(zero.fBad.InSet(), 0);
  EXPECT_GT(zero.fRankFlag, 0);

  MCSymMatrix unit(1);
  unit.AsVector() = {1.0};
  const Check negative = CleanUp(unit, {-1.0}, AllBits(1));
  EXPECT_TRUE(negative.fbAllZero);
  EXPECT_EQ(negative.fBad.InSet(), 1);
}

// M = z z' with z orthogonal to the second row of G up to rounding: that variance is noise, of either sign.
TEST(CheckGMG, TakesARoundedCancellationForZero) {
  MCSymMatrix g(3);
  g.AsVector() = {1.0, 0.1, 0.7, 0.2, 0.3, 0.9};
  const Vector z{-(0.7 * 2.0 + 0.3 * 3.0) / 0.1, 2.0, 3.0};
  MCSymMatrix m(3);
  m.UpdateXX(z, 1.0);
  m.SetElem(1, 1, m.GetElem(1, 1) * (1 - 1e-15));
  const Check check = CleanUp(g, m.AsVectorConst(), AllBits(3));
  for (int j = 0; j < 3; ++j) {
    EXPECT_EQ(check.fV.GetElem(1, j), 0.0);
  }
  EXPECT_GT(check.fV.GetElem(0, 0), 0.0);
  EXPECT_EQ(check.fBad.InSet(), 0);
  EXPECT_GT(check.fRankFlag, 0);
}

// A covariate in units a million times larger has a variance 1e-12 times as large: no noise. Blocks of two.
TEST(CheckGMG, DoesNotDependOnTheUnitsOfTheCovariates) {
  const MCSymMatrix g = Packed(RandomCovariance(4, 30, 1));
  const MCSymMatrix m = Packed(RandomCovariance(4, 30, 2));
  for (const int nIntercepts : {0, 1}) {
    for (const double scale : {1e-9, 1.0, 1e9}) {
      const Vector scales{nIntercepts == 1 ? 1.0 : scale, scale};
      const Check check =
          CleanUp(g, m.AsVectorConst(), AllBits(4), {0.0, 0.5 * scale}, scales, 2, nIntercepts);
      EXPECT_FALSE(check.fbAllZero);
      EXPECT_EQ(check.fBad.InSet(), 0);
      EXPECT_LT(check.fRankFlag, 0) << scale;
      for (int i = 0; i < 4; ++i) {
        EXPECT_GT(check.fV.GetElem(i, i), 0.0);
      }
    }
  }
}

// On the scale of the fit only the slope varies, V = diag(0, 1). Its centre carries that into the intercept
// of the data, b_0 = b'_0 - 3 b'_1, which then has variance 9 and no noise.
TEST(CheckGMG, JudgesAnInterceptOnTheScaleOfTheData) {
  MCSymMatrix g(2);
  g.AsVector() = {1, 0, 1};
  const Check check = CleanUp(g, {0, 0, 1}, AllBits(2), {0, 3}, {1, 1}, 1, 1);
  EXPECT_EQ(check.fBad.InSet(), 0);
  EXPECT_EQ(check.fV.GetElem(1, 1), 1.0);
  EXPECT_EQ(check.fV.GetElem(0, 0), 9.0);
}

TEST(CheckGMG, LooksAtNonRedundantParametersOnly) {
  const MCBitSet bits = Bits(3, {0, 2});
  const MCSymMatrix g = Packed(Restricted(RandomCovariance(3, 30, 1), bits));
  const MCSymMatrix m = Packed(RandomCovariance(3, 30, 2));
  const Check check = CleanUp(g, m.AsVectorConst(), bits);
  EXPECT_EQ(check.fBad.Size(), 3);
  EXPECT_FALSE(check.fbAllZero);
  EXPECT_LT(check.fRankFlag, 0);
  EXPECT_GT(check.fV.GetElem(2, 0) * check.fV.GetElem(2, 0), 0.0);
}

TEST(CheckGMG, LeavesALowRankWithoutZeroVariancesToTheRankOfM) {
  const MCSymMatrix g = Packed(RandomCovariance(4, 30, 1));
  const MCSymMatrix m = Packed(RandomCovariance(4, 2, 2));  // two clusters
  const Check check = CleanUp(g, m.AsVectorConst(), AllBits(4));
  EXPECT_EQ(check.fRankFlag, 0);
  MCSymMatrix work;
  EXPECT_EQ(work.CheckMDependent(4, m.AsVectorConst(), AllBits(4), 1e-12), 2);
}

TEST(CheckGMG, RefusesSizesThatDoNotMatch) {
  const MCSymMatrix g(2);
  MCSymMatrix v(2);
  MCSymMatrix wrong(3);
  MCBitSet bad;
  bool allZero = false;
  int rankFlag = 0;
  EXPECT_FALSE(g.CheckGMG({1}, AllBits(2), v, bad, allZero, rankFlag));
  EXPECT_FALSE(g.CheckGMG({1, 0, 1}, AllBits(3), v, bad, allZero, rankFlag));
  EXPECT_FALSE(g.CheckGMG({1, 0, 1}, AllBits(2), wrong, bad, allZero, rankFlag));
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
