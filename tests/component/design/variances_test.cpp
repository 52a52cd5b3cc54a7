#include "component/design/variances.h"

#include <gtest/gtest.h>

#include "component/numerics/missing_value.h"

namespace tavo {
namespace {

constexpr double kMissing = MCCommonMath::MCMV::gMissingValue;

OrvVariances VariancesOf(const std::vector<double>& units) {
  OrvVariances variances(1);
  for (const double x : units)
    variances.AddUnit({x});
  return variances;
}

void ExpectNoUnits(const OrvVariances& variances, int variable) {
  const UnitMoments& units = variances.Units(variable);
  EXPECT_EQ(units.count, 0.0);
  EXPECT_EQ(units.mean, 0.0);
  EXPECT_EQ(units.squares, 0.0);
  EXPECT_EQ(units.lowerVariance, 0.0);
  const TotalEstimate& estimate = variances.Estimate(variable);
  EXPECT_EQ(estimate.strata, 0.0);
  EXPECT_EQ(estimate.units, 0.0);
  EXPECT_EQ(estimate.total, 0.0);
  EXPECT_EQ(estimate.variance, 0.0);
}

OrvCovariances CovariancesOf(const std::vector<std::vector<double>>& units, bool hasLowerStages = false) {
  OrvCovariances covariances({static_cast<int>(units.front().size())}, {0}, hasLowerStages);
  for (const auto& x : units)
    covariances.AddUnit(x);
  return covariances;
}

TEST(OrvVariances, OfTwoUnitsHoldHalfTheSquaredDifferenceAndFinishToAllOfIt) {
  OrvVariances variances = VariancesOf({3.0, 7.0});
  EXPECT_EQ(variances.Units(0).count, 2.0);
  EXPECT_EQ(variances.Units(0).mean, 5.0);
  EXPECT_EQ(variances.Units(0).squares, 8.0);
  EXPECT_TRUE(variances.Finish(0.0, false));
  EXPECT_EQ(variances.Estimate(0).strata, 1.0);
  EXPECT_EQ(variances.Estimate(0).units, 2.0);
  EXPECT_EQ(variances.Estimate(0).total, 10.0);
  EXPECT_EQ(variances.Estimate(0).variance, 16.0);
}

TEST(OrvVariances, OfOneUnitAreZeroWithTheFractionOfTheLowerStageStillAdded) {
  OrvVariances child = VariancesOf({3.0, 7.0});
  ASSERT_TRUE(child.Finish(0.0, false));
  OrvVariances parent(1);
  parent.MergeAsUnit(child);
  EXPECT_EQ(parent.Units(0).mean, 10.0);
  EXPECT_EQ(parent.Units(0).lowerVariance, 16.0);
  EXPECT_TRUE(parent.Finish(0.25, false));
  EXPECT_EQ(parent.Estimate(0).variance, 4.0);
}

// The example at the head of variances.h: totals 3 and 7 of two of four clusters, each with a variance of 2.
TEST(OrvVariances, OfHalfTheClustersAreHalfTheSpreadAndHalfTheLowerStage) {
  OrvVariances parent(1);
  for (const auto& units : {std::vector<double>{0.5, 2.5}, std::vector<double>{2.5, 4.5}}) {
    OrvVariances child = VariancesOf(units);
    ASSERT_TRUE(child.Finish(0.5, false));
    EXPECT_EQ(child.Estimate(0).variance, 2.0);
    parent.MergeAsUnit(child);
  }
  EXPECT_TRUE(parent.Finish(4.0, true));
  EXPECT_EQ(parent.Estimate(0).total, 10.0);
  EXPECT_EQ(parent.Estimate(0).variance, 0.5 * 2.0 * 8.0 + 0.5 * 4.0);
}

TEST(OrvVariances, WithAPopulationOfTheSampleSizeOnlyLowerStagesCount) {
  OrvVariances parent(1);
  for (const auto& units : {std::vector<double>{3.0, 7.0}, std::vector<double>{1.0, 2.0}}) {
    OrvVariances child = VariancesOf(units);
    ASSERT_TRUE(child.Finish(0.0, false));
    parent.MergeAsUnit(child);
  }
  EXPECT_TRUE(parent.Finish(2.0, true));
  EXPECT_EQ(parent.Estimate(0).variance, 16.0 + 1.0);
}

TEST(OrvVariances, WithAPopulationBelowTheSampleTakeTheFractionAsOneAndReturnFalse) {
  OrvVariances variances = VariancesOf({3.0, 7.0});
  EXPECT_FALSE(variances.Finish(1.0, true));
  EXPECT_EQ(variances.Estimate(0).total, 10.0) << "the work is done all the same";
  EXPECT_EQ(variances.Estimate(0).variance, 0.0);
}

TEST(OrvVariances, SkipMissingValues) {
  OrvVariances variances(2);
  variances.AddUnit({1.0, kMissing});
  variances.AddUnit({3.0, kMissing});
  EXPECT_EQ(variances.Units(0).count, 2.0);
  ExpectNoUnits(variances, 1);
}

TEST(OrvVariances, WithoutUnitsFinishUnchangedAndFitAnyPopulation) {
  OrvVariances variances(1);
  EXPECT_TRUE(variances.Finish(0.0, true));
  ExpectNoUnits(variances, 0);
}

TEST(OrvVariances, KeepTheirDigitsFarFromZero) {
  // Whole numbers around 1e9: the sum of squares would need 60 bits more than a double has for a small
  // spread.
  OrvVariances variances(1);
  for (int i = 0; i < 1000; ++i)
    variances.AddUnit({1e9 + i % 10});
  ASSERT_TRUE(variances.Finish(0.0, false));
  EXPECT_NEAR(variances.Estimate(0).variance, 8250.0 * 1000.0 / 999.0, 1e-4);
}

TEST(OrvVariances, ClearToZero) {
  OrvVariances variances = VariancesOf({3.0, 7.0});
  ASSERT_TRUE(variances.Finish(0.0, false));
  variances.Clear();
  ExpectNoUnits(variances, 0);
}

TEST(OrvVariances, AtAStrataNodeCountStrataAndUnitsAndSumTotalsAndVariances) {
  OrvVariances strata(1);
  for (const auto& units : {std::vector<double>{3.0, 7.0}, std::vector<double>{4.0}}) {
    OrvVariances child = VariancesOf(units);
    ASSERT_TRUE(child.Finish(0.0, false));
    strata.MergeAsStratum(child);
  }
  EXPECT_EQ(strata.Estimate(0).strata, 2.0);
  EXPECT_EQ(strata.Estimate(0).units, 3.0);
  EXPECT_EQ(strata.Estimate(0).total, 14.0);
  EXPECT_EQ(strata.Estimate(0).variance, 16.0);
}

TEST(OrvCovariances, OfTwoUnitsAreTheProductsOfTheirDifferences) {
  // Differences 4, -2 and 1 of three variables.
  OrvCovariances covariances = CovariancesOf({{3.0, 5.0, 1.0}, {7.0, 3.0, 2.0}});
  EXPECT_TRUE(covariances.Finish(0.0, false));
  EXPECT_EQ(*covariances.Block(0), (std::vector<double>{16.0, -8.0, 4.0, 4.0, -2.0, 1.0}));
  EXPECT_EQ(covariances.Count(0), 2.0);
}

TEST(OrvCovariances, OfOneUnitAreZeroWithTheFractionOfTheLowerStageStillAdded) {
  OrvCovariances child = CovariancesOf({{3.0, 5.0}, {7.0, 3.0}});
  ASSERT_TRUE(child.Finish(0.0, false));
  OrvCovariances parent({2}, {0}, true);
  parent.MergeAsUnit(child);
  EXPECT_TRUE(parent.Finish(0.5, false));
  EXPECT_EQ(*parent.Block(0), (std::vector<double>{8.0, -4.0, 2.0}));
}

TEST(OrvCovariances, WithAPopulationOfTheSampleSizeOnlyLowerStagesCount) {
  OrvCovariances child = CovariancesOf({{3.0, 5.0}, {7.0, 3.0}});
  ASSERT_TRUE(child.Finish(0.0, false));
  OrvCovariances parent({2}, {0}, true);
  parent.MergeAsUnit(child);
  parent.AddUnit({100.0, -100.0});
  EXPECT_TRUE(parent.Finish(2.0, true));
  EXPECT_EQ(*parent.Block(0), (std::vector<double>{16.0, -8.0, 4.0}));
}

TEST(OrvCovariances, WithAPopulationBelowTheSampleTakeTheFractionAsOneAndReturnFalse) {
  OrvCovariances covariances = CovariancesOf({{3.0, 5.0}, {7.0, 3.0}});
  EXPECT_FALSE(covariances.Finish(1.0, true));
  EXPECT_EQ(*covariances.Block(0), (std::vector<double>{0.0, 0.0, 0.0}));
}

TEST(OrvCovariances, SkipAUnitWhoseFirstValueOfTheBlockIsMissing) {
  OrvCovariances covariances({1, 2}, {0, 1}, false);
  covariances.AddUnit({1.0, kMissing, 5.0});
  covariances.AddUnit({3.0, 2.0, 5.0});
  EXPECT_EQ(covariances.Count(0), 2.0);
  EXPECT_EQ(covariances.Count(1), 1.0);
}

TEST(OrvCovariances, HaveNoBlockOutOfRange) {
  const OrvCovariances covariances({1}, {0}, false);
  EXPECT_EQ(covariances.BlockCount(), 1);
  EXPECT_NE(covariances.Block(0), nullptr);
  EXPECT_EQ(covariances.Block(1), nullptr);
  EXPECT_EQ(covariances.Block(-1), nullptr);
}

TEST(OrvCovariances, ForgetUnitsThatWaitWhenCleared) {
  OrvCovariances covariances = CovariancesOf({{3.0}, {7.0}, {9.0}});
  covariances.Clear();
  covariances.AddUnit({1.0});
  covariances.AddUnit({2.0});
  ASSERT_TRUE(covariances.Finish(0.0, false));
  EXPECT_EQ(*covariances.Block(0), std::vector<double>{1.0});
}

// The packed triangle against the diagonal case, for every count of units around the number that wait
// together.
TEST(OrvCovariances, HaveTheVariancesOnTheirDiagonal) {
  for (int units = 1; units <= 11; ++units) {
    OrvVariances variances(3);
    OrvCovariances covariances({3}, {0}, false);
    for (int u = 0; u < units; ++u) {
      const std::vector<double> x = {1.0 / (u + 3), 5.0 - u * u, u % 2 == 0 ? 0.0 : 7.5};
      variances.AddUnit(x);
      covariances.AddUnit(x);
    }
    ASSERT_TRUE(variances.Finish(0.3, false));
    ASSERT_TRUE(covariances.Finish(0.3, false));
    const std::vector<double>& packed = *covariances.Block(0);
    for (int i = 0; i < 3; ++i) {
      const double expected = variances.Estimate(i).variance;
      EXPECT_NEAR(packed[static_cast<std::size_t>(i * (i + 3) / 2)], expected, 1e-14 * expected) << units;
    }
  }
}

}  // namespace
}  // namespace tavo
