#include "component/design/psu_node.h"

#include <gtest/gtest.h>

#include "component/numerics/missing_value.h"
#include "design_feed.h"

namespace design_test {
namespace {

using tavo::ClustersNode;
using tavo::DesignNode;
using tavo::PSUNode;
using tavo::StrataNode;
using tavo::TotalEstimate;

constexpr double kMissing = MCCommonMath::MCMV::gMissingValue;

/// Feeds ultimate units in the order of the matrix.
void AddUnits(PSUNode& node, const std::vector<std::vector<double>>& units) {
  for (std::size_t u = 0; u < units.size(); ++u) {
    ASSERT_TRUE(node.SetUnitIndex(static_cast<int>(u) + 1));
    node.AddUnit(units[u]);
  }
}

const TotalEstimate& Estimate(const DesignNode& node) {
  return node.Variances().Estimate(0);
}

TEST(JointUnits, HavePairWeightsBelowTheDiagonalOnly) {
  std::vector<double> matrix = {0.5, 0.2, 0.9, 0.4, 0.8, 0.7, 0.1, 0.0, 0.25};
  tavo::TransformJointProbabilities(matrix, 3);
  EXPECT_EQ(matrix, (std::vector<double>{0.5, 0.2, 0.9, 0.5 * 0.8 / 0.4 - 1.0, 0.8, 0.7,
                                         0.5 * 0.25 / 0.1 - 1.0, 0.0, 0.25}));
}

TEST(PSUNode, WithIndependentUnitsHasNoVariance) {
  PSUNode node(1, true);
  ASSERT_TRUE(node.SetJointProbabilities(2, {0.5, 0.25, 0.25, 0.5}));
  AddUnits(node, {{3.0}, {11.0}});
  EXPECT_TRUE(node.Finish());
  EXPECT_EQ(Estimate(node).units, 2.0);
  EXPECT_EQ(Estimate(node).total, 14.0);
  EXPECT_EQ(Estimate(node).variance, 0.0);
  EXPECT_EQ(node.DegreesOfFreedom(0), 1.0);
}

TEST(PSUNode, OfOneUnitHasNoVariance) {
  PSUNode node(1, true);
  node.SetBlocks({1}, {0}, false);
  ASSERT_TRUE(node.SetJointProbabilities(1, {0.3}));
  AddUnits(node, {{5.0}});
  EXPECT_TRUE(node.Finish());
  EXPECT_EQ(Estimate(node).units, 1.0);
  EXPECT_EQ(Estimate(node).total, 5.0);
  EXPECT_EQ(Estimate(node).variance, 0.0);
  EXPECT_EQ(*node.Covariances()->Block(0), std::vector<double>{0.0});
  EXPECT_EQ(node.DegreesOfFreedom(0), 0.0);
}

// Weights of the pairs: (2, 1) 0.5 * 0.4 / 0.1 - 1 = 1, (3, 1) 0.5 * 0.6 / 0.2 - 1 = 0.5,
// (3, 2) 0.4 * 0.6 / 0.32 - 1 = -0.25. Totals 1, 3, 7: 1 * 4 + 0.5 * 36 - 0.25 * 16 = 18.
const std::vector<double> kThree = {0.5, 0.1, 0.2, 0.1, 0.4, 0.32, 0.2, 0.32, 0.6};

TEST(PSUNode, HasThePairwiseVarianceAndCovarianceOfItsUnits) {
  PSUNode node(2, true);
  node.SetBlocks({2}, {0}, false);
  ASSERT_TRUE(node.SetJointProbabilities(3, kThree));
  AddUnits(node, {{1.0, 2.0}, {3.0, 2.0}, {7.0, 0.0}});
  EXPECT_TRUE(node.Finish());
  EXPECT_NEAR(Estimate(node).variance, 18.0, 1e-13);
  // Second variable: 0.5 * 4 - 0.25 * 4 = 1. Products: 0.5 * 6 * -2 - 0.25 * 4 * -2 = -4.
  EXPECT_NEAR(node.Variances().Estimate(1).variance, 1.0, 1e-14);
  const std::vector<double>& packed = *node.Covariances()->Block(0);
  EXPECT_NEAR(packed[0], 18.0, 1e-13);
  EXPECT_NEAR(packed[1], -4.0, 1e-13);
  EXPECT_NEAR(packed[2], 1.0, 1e-13);
  EXPECT_EQ(node.Covariances()->Count(0), 3.0);
}

TEST(PSUNode, UsesTheLowerTriangleForBothUnitsOfAPair) {
  std::vector<double> asymmetric = kThree;
  asymmetric[1] = 0.3;
  asymmetric[2] = 0.05;
  asymmetric[5] = 0.0;
  PSUNode node(1, true);
  node.SetBlocks({1}, {0}, false);
  ASSERT_TRUE(node.SetJointProbabilities(3, asymmetric));
  AddUnits(node, {{1.0}, {3.0}, {7.0}});
  EXPECT_TRUE(node.Finish());
  EXPECT_NEAR(Estimate(node).variance, 18.0, 1e-13);
  EXPECT_NEAR((*node.Covariances()->Block(0))[0], 18.0, 1e-13);
}

TEST(PSUNode, CanHaveANegativeVariance) {
  PSUNode node(1, true);
  ASSERT_TRUE(node.SetJointProbabilities(2, {0.5, 0.4, 0.4, 0.5}));
  AddUnits(node, {{0.0}, {4.0}});
  EXPECT_TRUE(node.Finish());
  EXPECT_DOUBLE_EQ(Estimate(node).variance, (0.25 / 0.4 - 1.0) * 16.0);
}

TEST(PSUNode, LeavesOutAUnitOfTheMatrixThatGetsNoTotal) {
  PSUNode node(1, true);
  node.SetBlocks({1}, {0}, false);
  ASSERT_TRUE(node.SetJointProbabilities(3, kThree));
  ASSERT_TRUE(node.SetUnitIndex(3));
  node.AddUnit({7.0});
  ASSERT_TRUE(node.SetUnitIndex(1));
  node.AddUnit({1.0});
  EXPECT_TRUE(node.Finish());
  EXPECT_EQ(Estimate(node).units, 2.0);
  EXPECT_EQ(Estimate(node).total, 8.0);
  EXPECT_NEAR(Estimate(node).variance, 18.0, 1e-13);  // 0.5 * 36
  EXPECT_EQ(node.Covariances()->Count(0), 2.0);
  EXPECT_NEAR((*node.Covariances()->Block(0))[0], 18.0, 1e-13);
}

TEST(PSUNode, OfMoreStagesHoldsATotalAndAVariancePerVariable) {
  PSUNode node(2, false);
  node.SetBlocks({2}, {0}, true);
  ASSERT_TRUE(node.SetJointProbabilities(2, {0.5, 0.2, 0.2, 0.8}));
  // Within unit 1, f = 0.5 and records (0, 1), (4, 3): variances 0.5 * 2 * 8 = 8 and 2, product 4, totals 4
  // and
  // 4. Unit 2 is one record: no variance.
  ClustersNode first(2, 0.5, false);
  ClustersNode second(2, 0.5, false);
  for (ClustersNode* cluster : {&first, &second})
    cluster->SetBlocks({2}, {0}, false);
  first.AddUnit({0.0, 1.0});
  first.AddUnit({4.0, 3.0});
  second.AddUnit({6.0, 5.0});
  ASSERT_TRUE(node.SetUnitIndex(1));
  ASSERT_TRUE(DesignNode::FinishUpward(node, first));
  ASSERT_TRUE(node.SetUnitIndex(2));
  ASSERT_TRUE(DesignNode::FinishUpward(node, second));
  EXPECT_TRUE(node.Finish());
  // Weight 0.4 / 0.2 - 1 = 1, differences 2 and 1; below 0.5 times the variances.
  EXPECT_NEAR(Estimate(node).variance, 4.0 + 0.5 * 8.0, 1e-13);
  EXPECT_NEAR(node.Variances().Estimate(1).variance, 1.0 + 0.5 * 2.0, 1e-13);
  const std::vector<double>& packed = *node.Covariances()->Block(0);
  EXPECT_NEAR(packed[0], 8.0, 1e-13);
  EXPECT_NEAR(packed[1], 2.0 + 0.5 * 4.0, 1e-13);
  EXPECT_NEAR(packed[2], 2.0, 1e-13);
}

TEST(PSUNode, WithoutUnitsDoesNotCountInItsParent) {
  StrataNode strata(1);
  PSUNode node(1, true);
  strata.SetBlocks({1}, {0}, true);
  node.SetBlocks({1}, {0}, false);
  ASSERT_TRUE(node.SetJointProbabilities(2, {0.5, 0.2, 0.2, 0.5}));
  AddUnits(node, {{kMissing}, {kMissing}});
  ASSERT_TRUE(DesignNode::FinishUpward(strata, node));
  EXPECT_EQ(Estimate(strata).strata, 0.0);
  EXPECT_EQ(strata.Covariances()->Count(0), 0.0);
  EXPECT_EQ(node.DegreesOfFreedom(0), 0.0);
}

TEST(PSUNode, StartsEachStratumAfresh) {
  StrataNode strata(1);
  PSUNode node(1, true);
  strata.SetBlocks({1}, {0}, true);
  node.SetBlocks({1}, {0}, false);
  ASSERT_TRUE(node.SetJointProbabilities(3, kThree));
  AddUnits(node, {{1.0}, {3.0}, {7.0}});
  ASSERT_TRUE(DesignNode::FinishUpward(strata, node));
  ASSERT_TRUE(node.SetJointProbabilities(2, {0.5, 0.2, 0.2, 0.8}));
  AddUnits(node, {{2.0}, {5.0}});
  ASSERT_TRUE(DesignNode::FinishUpward(strata, node));
  EXPECT_NEAR(Estimate(strata).variance, 18.0 + 9.0, 1e-13);
  EXPECT_NEAR((*strata.Covariances()->Block(0))[0], 27.0, 1e-13);
  EXPECT_EQ(Estimate(strata).units, 5.0);
  EXPECT_EQ(strata.DegreesOfFreedom(0), 3.0);
}

TEST(PSUNode, RefusesAMatrixOfAnotherSizeAndUnitsOutsideIt) {
  PSUNode node(1, true);
  EXPECT_FALSE(node.SetUnitIndex(1));
  EXPECT_FALSE(node.SetJointProbabilities(2, {0.5, 0.2, 0.2}));
  EXPECT_FALSE(node.SetJointProbabilities(-1, {}));
  EXPECT_FALSE(node.SetUnitIndex(1));
  ASSERT_TRUE(node.SetJointProbabilities(1, {0.5}));
  EXPECT_FALSE(node.SetUnitIndex(0));
  EXPECT_FALSE(node.SetUnitIndex(2));
  node.AddUnit({3.0});
  EXPECT_TRUE(node.Finish());
  EXPECT_EQ(Estimate(node).units, 0.0) << "a value without a unit is left out";
}

}  // namespace
}  // namespace design_test
