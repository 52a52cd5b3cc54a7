// Tests of given contrasts on given estimates and covariances, worked by hand where the distribution has a
// closed form: with 2 numerator degrees of freedom the upper tail of F is (1 + 2 f / d2)^(-d2/2), that of
// chi-square exp(-x/2).

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "component/inference/model_tests.h"
#include "component/numerics/distributions.h"
#include "effect_bench.h"

namespace tavo {
namespace {

using MCCommonMath::IsMissing;
using MCCommonMath::MCBitSet;
using MCCommonMath::MCDistFun;
using MCCommonMath::MCRectMatrix;
using MCCommonMath::MCSymMatrix;
using Values = std::vector<double>;

constexpr TestType kTypes[] = {TestType::WaldF, TestType::AdjustedWaldF, TestType::WaldChiSquare,
                               TestType::AdjustedWaldChiSquare};
constexpr PAdjustMethod kMethods[] = {PAdjustMethod::LeastSignificanceDifference, PAdjustMethod::Bonferroni,
                                      PAdjustMethod::SequentialBonferroni, PAdjustMethod::Sidak,
                                      PAdjustMethod::SequentialSidak};

bool IsF(TestType type) {
  return type == TestType::WaldF || type == TestType::AdjustedWaldF;
}

MCRectMatrix Matrix(const std::vector<Values>& rows, int columns) {
  MCRectMatrix matrix(static_cast<int>(rows.size()), columns);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    for (std::size_t j = 0; j < rows[i].size(); ++j)
      matrix.SetElem(static_cast<int>(i), static_cast<int>(j), rows[i][j]);
  }
  return matrix;
}

MCSymMatrix Diagonal(const Values& diagonal) {
  MCSymMatrix matrix(static_cast<int>(diagonal.size()));
  for (int i = 0; i < matrix.GetNRows(); ++i)
    matrix.SetElem(i, i, diagonal[static_cast<std::size_t>(i)]);
  return matrix;
}

/// b = (2, -1, 3) with independent variances, 10 degrees of freedom.
class Bench {
 public:
  explicit Bench(TestType type = TestType::WaldF,
                 PAdjustMethod method = PAdjustMethod::LeastSignificanceDifference)
      : fType(type), fMethod(method) {}

  OrvStatus Effect(const std::vector<Values>& L) {
    return Make().TestHypothesis(Matrix(L, static_cast<int>(b.size())), overall);
  }
  OrvStatus Custom(const std::vector<Values>& L, const Values& K) {
    return Make().TestCustomHypothesis(Matrix(L, static_cast<int>(b.size())), K, rows, overall);
  }
  OrvModelTests Make() const {
    OrvModelTests tests(b, V, hasSRS ? &VSRS : nullptr, d);
    tests.SetTestType(fType);
    tests.SetPAdjustMethod(fMethod);
    return tests;
  }

  Values b{2, -1, 3};
  MCSymMatrix V = Diagonal({4, 1, 9});
  MCSymMatrix VSRS = Diagonal({2, 1, 3});
  bool hasSRS = true;
  double d = 10;
  OrvTestStats overall;
  std::vector<OrvTestStats> rows;

 private:
  TestType fType;
  PAdjustMethod fMethod;
};

// ---- the record ----

TEST(TestStats, StartMissingAndResetToThat) {
  OrvTestStats stats;
  EXPECT_TRUE(stats.usedInOverall);
  EXPECT_EQ(stats.contrastCount, 0);
  for (const bool all : {false, true}) {
    stats.testType = TestType::WaldChiSquare;
    stats.adjustment = PAdjustMethod::Sidak;
    stats.df1 = stats.df2 = stats.wald = stats.significance = stats.adjustedSignificance = 1;
    stats.contrastEstimate = stats.standardError = 1;
    stats.usedInOverall = false;
    stats.contrastCount = 3;
    stats.Reset(all);
    EXPECT_EQ(stats.testType, all ? TestType::WaldF : TestType::WaldChiSquare);
    EXPECT_EQ(stats.adjustment, all ? PAdjustMethod::LeastSignificanceDifference : PAdjustMethod::Sidak);
    for (const double value : {stats.df1, stats.df2, stats.wald, stats.significance,
                               stats.adjustedSignificance, stats.contrastEstimate, stats.standardError})
      EXPECT_TRUE(IsMissing(value));
    EXPECT_TRUE(stats.usedInOverall);
    EXPECT_EQ(stats.contrastCount, 0);
  }
}

// ---- overall statistics ----

// X = 2^2/4 + 1^2/1 = 2 with rank 2; F = (10 - 2 + 1) / (2 * 10) * 2 = 0.9 on 2 and 9.
TEST(OverallTest, OfAWaldFIsTheScaledChiSquare) {
  Bench bench;
  ASSERT_TRUE(bench.Effect({{1, 0, 0}, {0, 1, 0}}).IsOK());
  EXPECT_EQ(bench.overall.df1, 2);
  EXPECT_EQ(bench.overall.df2, 9);
  EXPECT_NEAR(bench.overall.wald, 0.9, 1e-15);
  EXPECT_NEAR(bench.overall.significance, std::pow(1.2, -4.5), 1e-15);
  EXPECT_TRUE(bench.overall.usedInOverall);
  EXPECT_EQ(bench.overall.contrastCount, 2);
  EXPECT_TRUE(IsMissing(bench.overall.contrastEstimate)) << "estimates belong to rows";
}

TEST(OverallTest, OfAWaldChiSquareHasNoSecondDegreesOfFreedom) {
  Bench bench(TestType::WaldChiSquare);
  ASSERT_TRUE(bench.Effect({{1, 0, 0}, {0, 1, 0}}).IsOK());
  EXPECT_EQ(bench.overall.df1, 2);
  EXPECT_TRUE(IsMissing(bench.overall.df2));
  EXPECT_NEAR(bench.overall.wald, 2, 1e-15);
  EXPECT_NEAR(bench.overall.significance, std::exp(-1.0), 1e-15);
}

// Design effects 2 and 1: nu = 3^2 / 5 = 1.8; X under SRS 2^2/2 + 1 = 3, over 3 / 1.8 gives 1.8.
TEST(OverallTest, OfTheAdjustedTypesHasTheDegreesOfFreedomOfTheDesignEffects) {
  Bench chi(TestType::AdjustedWaldChiSquare);
  ASSERT_TRUE(chi.Effect({{1, 0, 0}, {0, 1, 0}}).IsOK());
  EXPECT_NEAR(chi.overall.df1, 1.8, 1e-14);
  EXPECT_TRUE(IsMissing(chi.overall.df2));
  EXPECT_NEAR(chi.overall.wald, 1.8, 1e-14);
  EXPECT_NEAR(chi.overall.significance, MCDistFun::UpperChi(1.8, 1.8), 1e-14);
  Bench f(TestType::AdjustedWaldF);
  ASSERT_TRUE(f.Effect({{1, 0, 0}, {0, 1, 0}}).IsOK());
  EXPECT_NEAR(f.overall.df2, 18, 1e-13);
  EXPECT_NEAR(f.overall.wald, 1, 1e-14);
  EXPECT_NEAR(f.overall.significance, MCDistFun::UpperF(1, 1.8, 18), 1e-14);
}

TEST(OverallTest, SubtractsTheHypothesisedValues) {
  Bench bench(TestType::WaldChiSquare);
  ASSERT_TRUE(bench.Custom({{1, 0, 0}, {0, 1, 0}}, {4, 1}).IsOK());
  EXPECT_NEAR(bench.overall.wald, 4.0 / 4 + 4.0 / 1, 1e-14);
  EXPECT_EQ(bench.rows[0].contrastEstimate, 2) << "of L b alone";
  EXPECT_NEAR(bench.rows[0].wald, 1, 1e-15);
}

TEST(OverallTest, WithARankDeficientLUsesTheRankInsteadOfTheRowCount) {
  Bench bench;
  ASSERT_TRUE(bench.Custom({{1, 0, 0}, {0, 1, 0}, {1, 1, 0}}, {0, 0, 0}).IsOK());
  EXPECT_EQ(bench.overall.df1, 2);
  EXPECT_EQ(bench.overall.df2, 9);
  EXPECT_NEAR(bench.overall.wald, 0.9, 1e-14);
  EXPECT_FALSE(bench.overall.usedInOverall);
  EXPECT_TRUE(bench.rows[0].usedInOverall);
  EXPECT_TRUE(bench.rows[1].usedInOverall);
  EXPECT_FALSE(bench.rows[2].usedInOverall);
  EXPECT_EQ(bench.overall.contrastCount, 3) << "no row is a multiple of another";
}

TEST(OverallTest, WithDSmallerThanRLeavesDf2StatisticAndSigMissingAndPrintsDf1) {
  Bench bench;
  bench.d = 1;
  ASSERT_TRUE(bench.Effect({{1, 0, 0}, {0, 1, 0}}).IsOK());
  EXPECT_EQ(bench.overall.df1, 2);
  EXPECT_TRUE(IsMissing(bench.overall.df2));
  EXPECT_TRUE(IsMissing(bench.overall.wald));
  EXPECT_TRUE(IsMissing(bench.overall.significance));
  bench.d = 2;
  ASSERT_TRUE(bench.Effect({{1, 0, 0}, {0, 1, 0}}).IsOK());
  EXPECT_EQ(bench.overall.df2, 1) << "d equal to r is enough";
  EXPECT_NEAR(bench.overall.wald, 0.5, 1e-15);
}

TEST(OverallTest, AdjustedWithS2ZeroLeavesDfAndResultMissingAndUsedInOverallFromTheBits) {
  for (const TestType type : {TestType::AdjustedWaldF, TestType::AdjustedWaldChiSquare}) {
    Bench bench(type);
    bench.V = Diagonal({0, 0, 0});
    ASSERT_TRUE(bench.Custom({{1, 0, 0}, {2, 0, 0}}, {0, 0}).IsOK());
    EXPECT_TRUE(IsMissing(bench.overall.df1));
    EXPECT_TRUE(IsMissing(bench.overall.df2));
    EXPECT_TRUE(IsMissing(bench.overall.wald));
    EXPECT_TRUE(IsMissing(bench.overall.significance));
    EXPECT_TRUE(bench.rows[0].usedInOverall);
    EXPECT_FALSE(bench.rows[1].usedInOverall);
    EXPECT_FALSE(bench.overall.usedInOverall);
  }
}

TEST(OverallTest, OfNoRowsHasRankZeroAndNoStatistic) {
  for (const TestType type : kTypes) {
    Bench bench(type);
    ASSERT_TRUE(bench.Effect({}).IsOK());
    const bool isPlain = type == TestType::WaldF || type == TestType::WaldChiSquare;
    EXPECT_EQ(bench.overall.df1 == 0, isPlain);
    EXPECT_EQ(bench.overall.df2 == 11, type == TestType::WaldF);
    EXPECT_TRUE(IsMissing(bench.overall.wald));
    EXPECT_TRUE(IsMissing(bench.overall.significance));
    EXPECT_TRUE(IsMissing(bench.overall.adjustedSignificance));
    EXPECT_TRUE(bench.overall.usedInOverall);
  }
}

TEST(OverallTest, DoesNotDependOnTheScaleOfRowsAndParameters) {
  for (const TestType type : kTypes) {
    Bench plain(type);
    ASSERT_TRUE(plain.Custom({{1, -1, 0}, {0, 1, 1}}, {0.5, 1}).IsOK());
    Bench scaled(type);
    ASSERT_TRUE(scaled.Custom({{1e-9, -1e-9, 0}, {0, 1e12, 1e12}}, {0.5e-9, 1e12}).IsOK());
    Bench units(type);  // the first estimate in units of 1e-15, the third of 1e9
    units.b = {2e-15, -1, 3e9};
    units.V = Diagonal({4e-30, 1, 9e18});
    units.VSRS = Diagonal({2e-30, 1, 3e18});
    ASSERT_TRUE(units.Custom({{1e15, -1, 0}, {0, 1, 1e-9}}, {0.5, 1}).IsOK());
    for (const Bench* other : {&scaled, &units}) {
      EXPECT_NEAR(other->overall.wald, plain.overall.wald, 1e-13 * plain.overall.wald);
      EXPECT_NEAR(other->overall.df1, plain.overall.df1, 1e-13);
      for (const std::size_t i : {0u, 1u})
        EXPECT_NEAR(other->rows[i].significance, plain.rows[i].significance, 1e-13);
    }
    EXPECT_NEAR(scaled.rows[1].standardError, 1e12 * plain.rows[1].standardError, 1)
        << "as the row was given";
  }
}

TEST(OverallTest, OfAnEstimateInHugeUnitsKeepsItsDegreeOfFreedom) {
  Bench bench(TestType::WaldChiSquare);
  bench.b = {2e-20, 1, 0};
  bench.V = Diagonal({1e-40, 1, 1});
  ASSERT_TRUE(bench.Effect({{1, 0, 0}, {0, 1, 0}}).IsOK());
  EXPECT_EQ(bench.overall.df1, 2);
  EXPECT_NEAR(bench.overall.wald, 5, 1e-14);
}

TEST(OverallTest, NamesWhatIsMissing) {
  Bench bench(TestType::AdjustedWaldF);
  bench.hasSRS = false;
  OrvStatus status = bench.Effect({{1, 0, 0}});
  EXPECT_EQ(status.Code(), StatusCode::kNoDesignCovariance);
  EXPECT_EQ(status.Integer(0), 1);
  EXPECT_TRUE(bench.Custom({{1, 0, 0}}, {0}).IsError());
  Bench plain;
  plain.hasSRS = false;
  EXPECT_TRUE(plain.Effect({{1, 0, 0}}).IsOK());
  plain.b.push_back(1);
  status = plain.Make().TestHypothesis(Matrix({{1, 0, 0}}, 3), plain.overall);
  EXPECT_EQ(status.Code(), StatusCode::kWrongLMatrixWidth);
  EXPECT_EQ(status.Integer(0), 3);
  EXPECT_EQ(status.Integer(1), 4);
}

TEST(OverallTest, KeepsTheDigitsOfAnUpperTailFarBelowMachinePrecision) {
  Bench bench(TestType::WaldChiSquare);
  bench.b = {20, 0, 0};
  bench.V = Diagonal({1, 1, 1});
  ASSERT_TRUE(bench.Custom({{1, 0, 0}, {0, 1, 0}}, {0, 0}).IsOK());
  EXPECT_NEAR(bench.overall.significance, std::exp(-200.0), 1e-12 * std::exp(-200.0));
  // The upper tail of the normal at 20: Abramowitz and Stegun 26.2.12 to five terms.
  const double tail = std::exp(-200.0) / 20 / std::sqrt(2 * M_PI) *
                      (1 - 1 / 400.0 + 3 / 160000.0 - 15 / 6.4e7 + 105 / 2.56e10);
  EXPECT_NEAR(bench.rows[0].significance, 2 * tail, 1e-9 * tail);
}

// ---- rows ----

TEST(FindDistinctRows, MarksZerosAndMultiples) {
  const MCRectMatrix L = Matrix({{1, -1, 0}, {0, 0, 0}, {2, -2, 0}, {1, 0, 0}, {-3, 3, 0}, {0, 0, 0}}, 3);
  std::vector<int> marks;
  EXPECT_EQ(OrvModelTests::FindDistinctRows(L, nullptr, marks), 2);
  EXPECT_EQ(marks, (std::vector<int>{-1, -2, 0, -1, 0, -2}));
  const Values K{1, 5, 2, 0, 1, 0};
  EXPECT_EQ(OrvModelTests::FindDistinctRows(L, &K, marks), 3);
  EXPECT_EQ(marks, (std::vector<int>{-1, -2, 0, -1, -1, -2})) << "-3 times K[0] is not K[4]";
}

TEST(TestRow, IsTheSquaredTOnOneDegreeOfFreedom) {
  for (const TestType type : kTypes) {
    Bench bench(type);
    ASSERT_TRUE(bench.Custom({{1, 1, 1}}, {0.5}).IsOK());
    const OrvTestStats& row = bench.rows[0];
    EXPECT_EQ(row.testType, type);
    EXPECT_NEAR(row.contrastEstimate, 4, 1e-15);
    EXPECT_NEAR(row.standardError, std::sqrt(14.0), 1e-15);
    EXPECT_NEAR(row.wald, 3.5 * 3.5 / 14, 1e-15);
    EXPECT_EQ(row.df1, 1);
    if (IsF(type)) {
      EXPECT_EQ(row.df2, 10);
      EXPECT_NEAR(row.significance, 2 * MCDistFun::CdfT(-std::sqrt(row.wald), 10), 1e-14);
    } else {
      EXPECT_TRUE(IsMissing(row.df2));
      EXPECT_NEAR(row.significance, std::erfc(std::sqrt(row.wald / 2)), 1e-14);
    }
  }
}

TEST(TestRow, OfAZeroRowHasEstimateZeroStandardErrorZeroDf1ZeroAndDoesNotCount) {
  Bench bench;
  ASSERT_TRUE(bench.Custom({{0, 0, 0}, {1, 0, 0}}, {0, 0}).IsOK());
  const OrvTestStats& row = bench.rows[0];
  EXPECT_EQ(row.contrastEstimate, 0);
  EXPECT_EQ(row.standardError, 0);
  EXPECT_EQ(row.df1, 0);
  EXPECT_EQ(row.df2, 11);
  EXPECT_TRUE(IsMissing(row.wald));
  EXPECT_TRUE(IsMissing(row.significance));
  EXPECT_TRUE(IsMissing(row.adjustedSignificance));
  EXPECT_FALSE(row.usedInOverall);
  EXPECT_EQ(row.contrastCount, 1);
  EXPECT_EQ(bench.rows[1].contrastCount, 1);
}

TEST(TestRow, WithSeExactlyZeroLeavesAllDfOfTheAdjustedTypesMissing) {
  for (const TestType type : kTypes) {
    Bench bench(type);
    bench.V = Diagonal({0, 1, 1});
    ASSERT_TRUE(bench.Custom({{1, 0, 0}}, {0}).IsOK());
    const OrvTestStats& row = bench.rows[0];
    EXPECT_EQ(row.contrastEstimate, 2);
    EXPECT_EQ(row.standardError, 0);
    const bool isPlain = type == TestType::WaldF || type == TestType::WaldChiSquare;
    EXPECT_EQ(row.df1 == 0, isPlain);
    EXPECT_EQ(row.df2 == 11, type == TestType::WaldF);
    if (!isPlain) {
      EXPECT_TRUE(IsMissing(row.df1));
      EXPECT_TRUE(IsMissing(row.df2));
    }
    EXPECT_TRUE(IsMissing(row.significance));
  }
}

// ---- adjustments ----

/// Rows with given two-sided significances under the normal distribution.
Values SignificancesOf(Bench& bench, const Values& z) {
  bench.b = z;
  bench.V = Diagonal(Values(z.size(), 1.0));
  bench.VSRS = bench.V;
  std::vector<Values> L(z.size(), Values(z.size(), 0.0));
  for (std::size_t i = 0; i < z.size(); ++i)
    L[i][i] = 1;
  EXPECT_TRUE(bench.Custom(L, Values(z.size(), 0.0)).IsOK());
  Values p;
  for (const OrvTestStats& row : bench.rows)
    p.push_back(row.significance);
  return p;
}

TEST(Adjustment, OfSingleStepMethodsFollowsTheFormulas) {
  const Values z{0.1, 1, 2, 3};
  for (const PAdjustMethod method : kMethods) {
    Bench bench(TestType::WaldChiSquare, method);
    const Values p = SignificancesOf(bench, z);
    for (std::size_t i = 0; i < z.size(); ++i) {
      double expected = 0;
      if (method == PAdjustMethod::LeastSignificanceDifference)
        expected = p[i];
      else if (method == PAdjustMethod::Bonferroni)
        expected = std::min(1.0, 4 * p[i]);
      else if (method == PAdjustMethod::Sidak)
        expected = 1 - std::pow(1 - p[i], 4);
      else
        continue;
      EXPECT_NEAR(bench.rows[i].adjustedSignificance, expected, 1e-15);
    }
    Values adjusted;
    for (const OrvTestStats& row : bench.rows)
      adjusted.push_back(row.adjustedSignificance);
    EXPECT_EQ(bench.overall.adjustedSignificance, *std::min_element(adjusted.begin(), adjusted.end()));
  }
}

// By hand with p1 < p2 < p3 < p4: Holm's steps are 4 p1, max of that and 3 p2, and so on.
TEST(Adjustment, InSequenceStepsDownAndNeverFalls) {
  const Values z{2, 0.2, 2.05, 3};  // p = .0455, .84, .0404, .0027
  Bench bonferroni(TestType::WaldChiSquare, PAdjustMethod::SequentialBonferroni);
  const Values p = SignificancesOf(bonferroni, z);
  EXPECT_NEAR(bonferroni.rows[3].adjustedSignificance, 4 * p[3], 1e-15);
  EXPECT_NEAR(bonferroni.rows[2].adjustedSignificance, 3 * p[2], 1e-15);
  EXPECT_NEAR(bonferroni.rows[0].adjustedSignificance, 3 * p[2], 1e-15) << "2 p would fall below";
  EXPECT_EQ(bonferroni.rows[1].adjustedSignificance, p[1]);
  EXPECT_NEAR(bonferroni.overall.adjustedSignificance, 4 * p[3], 1e-15);
  Bench sidak(TestType::WaldChiSquare, PAdjustMethod::SequentialSidak);
  SignificancesOf(sidak, z);
  EXPECT_NEAR(sidak.rows[3].adjustedSignificance, 1 - std::pow(1 - p[3], 4), 1e-15);
  EXPECT_NEAR(sidak.rows[2].adjustedSignificance, 1 - std::pow(1 - p[2], 3), 1e-15);
  EXPECT_NEAR(sidak.rows[0].adjustedSignificance, 1 - std::pow(1 - p[2], 3), 1e-15);
}

TEST(Adjustment, InSequenceARowWithASmallerPNeverEndsAboveRowsWithLargerP) {
  effect_bench::Dice dice(11);
  for (const PAdjustMethod method : {PAdjustMethod::SequentialBonferroni, PAdjustMethod::SequentialSidak}) {
    for (int trial = 0; trial < 50; ++trial) {
      Bench bench(TestType::WaldChiSquare, method);
      Values z;
      for (int i = 0; i < 8; ++i)
        z.push_back(4 * dice.Uniform());
      const Values p = SignificancesOf(bench, z);
      for (std::size_t i = 0; i < 8; ++i) {
        EXPECT_GE(bench.rows[i].adjustedSignificance, p[i]);
        EXPECT_LE(bench.rows[i].adjustedSignificance, 1);
        for (std::size_t j = 0; j < 8; ++j) {
          const bool isInOrder = bench.rows[i].adjustedSignificance <= bench.rows[j].adjustedSignificance;
          EXPECT_TRUE(p[i] > p[j] || isInOrder);
        }
      }
    }
  }
}

TEST(Adjustment, ProportionalRowsCountOnceAndTheLaterOneInheritsInSequence) {
  for (const PAdjustMethod method : {PAdjustMethod::SequentialBonferroni, PAdjustMethod::SequentialSidak}) {
    Bench bench(TestType::WaldChiSquare, method);
    bench.b = {2, 3, 1};
    bench.V = Diagonal({1, 1, 1});
    ASSERT_TRUE(bench.Custom({{1, 0, 0}, {-2, 0, 0}, {0, 1, 0}, {0, 0, 1}}, {0.5, -1, 0, 0}).IsOK());
    EXPECT_EQ(bench.overall.contrastCount, 3);
    Bench once(TestType::WaldChiSquare, method);
    once.b = bench.b;
    once.V = bench.V;
    ASSERT_TRUE(once.Custom({{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}, {0.5, 0, 0}).IsOK());
    EXPECT_EQ(bench.rows[0].adjustedSignificance, once.rows[0].adjustedSignificance);
    EXPECT_EQ(bench.rows[1].adjustedSignificance, once.rows[0].adjustedSignificance) << "no step of its own";
    EXPECT_EQ(bench.rows[2].adjustedSignificance, once.rows[1].adjustedSignificance);
    EXPECT_EQ(bench.rows[3].adjustedSignificance, once.rows[2].adjustedSignificance);
  }
}

TEST(Adjustment, OfTwoRowsBySidakEqualsPowToMachinePrecision) {
  for (double p = 0; p <= 1; p += 1.0 / 64) {
    // The row's own significance is turned back into z by bisection on the distribution.
    double low = 0;
    double high = 40;
    for (int i = 0; i < 200; ++i) {
      const double mid = (low + high) / 2;
      (std::erfc(mid / std::sqrt(2.0)) > p ? low : high) = mid;
    }
    Bench bench(TestType::WaldChiSquare, PAdjustMethod::Sidak);
    const Values reached = SignificancesOf(bench, {low, 0});
    EXPECT_NEAR(bench.rows[0].adjustedSignificance, 1 - std::pow(1 - reached[0], 2), 3e-16);
  }
}

TEST(Adjustment, BySidakKeepsTheDigitsOfTinySignificances) {
  for (const std::size_t m : {2u, 3u, 7u}) {
    Bench bench(TestType::WaldChiSquare, PAdjustMethod::Sidak);
    Values z(m, 0.0);
    z[0] = 20;
    const Values p = SignificancesOf(bench, z);
    ASSERT_LT(p[0], 1e-80);
    EXPECT_NEAR(bench.rows[0].adjustedSignificance, static_cast<double>(m) * p[0], 1e-12 * p[0]);
  }
}

TEST(Adjustment, BySidakOfZeroIsZeroAndNearOneIsAtMostOne) {
  for (const PAdjustMethod method : {PAdjustMethod::Sidak, PAdjustMethod::SequentialSidak}) {
    for (const std::size_t m : {1u, 2u, 3u}) {
      Bench bench(TestType::WaldChiSquare, method);
      Values z(m, 0.0);
      z[0] = 1e6;
      const Values p = SignificancesOf(bench, z);
      EXPECT_EQ(p[0], 0);
      EXPECT_EQ(bench.rows[0].adjustedSignificance, 0);
      for (std::size_t i = 1; i < m; ++i) {
        EXPECT_EQ(p[i], 1);
        EXPECT_EQ(bench.rows[i].adjustedSignificance, 1);
      }
    }
  }
}

TEST(Adjustment, OfAnEffectInSequenceIsMTimesTheSmallestWhateverTheOtherRows) {
  for (const double other : {0.0, 0.5, 2.9}) {
    Bench bench(TestType::WaldChiSquare, PAdjustMethod::SequentialBonferroni);
    bench.b = {3, other, other};
    bench.V = Diagonal({1, 1, 1});
    ASSERT_TRUE(bench.Effect({{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {2, 0, 0}, {0, 0, 0}}).IsOK());
    const double p = std::erfc(3 / std::sqrt(2.0));
    EXPECT_NEAR(bench.overall.adjustedSignificance, 3 * p, 1e-15);
    EXPECT_EQ(bench.overall.contrastCount, 3) << "multiples and zeros don't count";
  }
  Bench half(TestType::WaldChiSquare, PAdjustMethod::SequentialBonferroni);
  half.b = {0.1, 0.1, 0.1};
  ASSERT_TRUE(half.Effect({{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}).IsOK());
  EXPECT_EQ(half.overall.adjustedSignificance, 1);
}

TEST(Adjustment, OfAnEffectInOneStepIsTheSmallestOfItsRows) {
  for (const PAdjustMethod method : kMethods) {
    Bench effect(TestType::WaldF, method);
    Bench custom(TestType::WaldF, method);
    ASSERT_TRUE(effect.Effect({{1, 0, 0}, {0, 1, 1}}).IsOK());
    ASSERT_TRUE(custom.Custom({{1, 0, 0}, {0, 1, 1}}, {0, 0}).IsOK());
    EXPECT_EQ(effect.overall.adjustedSignificance, custom.overall.adjustedSignificance);
  }
}

TEST(Adjustment, WithoutAnyTestableRowIsMissing) {
  for (const PAdjustMethod method : kMethods) {
    Bench bench(TestType::WaldF, method);
    bench.V = Diagonal({0, 0, 0});
    ASSERT_TRUE(bench.Custom({{1, 0, 0}, {0, 0, 0}}, {0, 0}).IsOK());
    EXPECT_TRUE(IsMissing(bench.overall.adjustedSignificance));
    ASSERT_TRUE(bench.Effect({{1, 0, 0}}).IsOK());
    EXPECT_TRUE(IsMissing(bench.overall.adjustedSignificance));
  }
}

}  // namespace
}  // namespace tavo
