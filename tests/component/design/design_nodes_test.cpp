#include "component/design/design_nodes.h"

#include <gtest/gtest.h>

#include "component/numerics/missing_value.h"

namespace tavo {
namespace {

constexpr double kMissing = MCCommonMath::MCMV::gMissingValue;

/// Closes a stratum of the given units under `strata`.
void CloseStratum(StrataNode& strata, const std::vector<double>& units) {
  ClustersNode clusters(1, 0.0, false);
  for (const double x : units)
    clusters.AddUnit({x});
  ASSERT_TRUE(DesignNode::FinishUpward(strata, clusters));
}

TEST(StrataNode, WithAStratumOfOneUnitGetsNoVarianceAndNoDegreesOfFreedomFromIt) {
  StrataNode strata(1);
  CloseStratum(strata, {5.0});
  const TotalEstimate& estimate = strata.Variances().Estimate(0);
  EXPECT_EQ(estimate.strata, 1.0);
  EXPECT_EQ(estimate.units, 1.0);
  EXPECT_EQ(estimate.variance, 0.0);
  EXPECT_EQ(strata.DegreesOfFreedom(0), 0.0);
}

TEST(StrataNode, DoesNotCountAStratumWithoutUnits) {
  StrataNode strata(1);
  CloseStratum(strata, {kMissing, kMissing});
  CloseStratum(strata, {1.0, 2.0});
  EXPECT_EQ(strata.Variances().Estimate(0).strata, 1.0);
  EXPECT_EQ(strata.DegreesOfFreedom(0), 1.0);
}

TEST(StrataNode, HasTheSumOfTheVariancesOfItsStrata) {
  StrataNode strata(1);
  CloseStratum(strata, {1.0, 4.0});   // 9
  CloseStratum(strata, {2.0, 12.0});  // 100
  CloseStratum(strata, {7.0});        // 0
  EXPECT_TRUE(strata.Finish());
  EXPECT_EQ(strata.Variances().Estimate(0).variance, 109.0);
  EXPECT_EQ(strata.DegreesOfFreedom(0), 2.0);
}

TEST(ClustersNode, HasUnitsMinusOneDegreesOfFreedom) {
  ClustersNode clusters(2, 0.0, false);
  clusters.AddUnit({1.0, kMissing});
  clusters.AddUnit({1.0, kMissing});
  ASSERT_TRUE(clusters.Finish());
  EXPECT_EQ(clusters.DegreesOfFreedom(0), 1.0);
  EXPECT_EQ(clusters.DegreesOfFreedom(1), 0.0);
}

TEST(ClustersNode, WithTooSmallAPopulationFailsAndLeavesTheParentUnchanged) {
  StrataNode strata(1);
  ClustersNode clusters(1, 1.0, true);
  clusters.AddUnit({1.0});
  clusters.AddUnit({2.0});
  EXPECT_FALSE(DesignNode::FinishUpward(strata, clusters));
  EXPECT_EQ(strata.Variances().Estimate(0).strata, 0.0);
}

TEST(DesignNode, IsClearedWhenItHasBeenMergedIntoItsParent) {
  StrataNode strata(1);
  ClustersNode clusters(1, 0.0, false);
  strata.SetBlocks({1}, {0}, false);
  clusters.SetBlocks({1}, {0}, false);
  for (const double x : {1.0, 4.0})
    clusters.AddUnit({x});
  ASSERT_TRUE(DesignNode::FinishUpward(strata, clusters));
  EXPECT_EQ(clusters.Variances().Units(0).count, 0.0);
  EXPECT_EQ(clusters.Variances().Estimate(0).units, 0.0);
  EXPECT_EQ(clusters.Covariances()->Count(0), 0.0);
  EXPECT_EQ(*clusters.Covariances()->Block(0), std::vector<double>{0.0});
  EXPECT_EQ(*strata.Covariances()->Block(0), std::vector<double>{9.0});
}

}  // namespace
}  // namespace tavo
