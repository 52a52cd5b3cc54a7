#include "component/design/sample_design.h"

#include <gtest/gtest.h>

#include "component/numerics/missing_value.h"
#include "design_feed.h"

namespace design_test {
namespace {

constexpr double kMissing = MCCommonMath::MCMV::gMissingValue;

/// Groups of one unit and one variable each.
std::vector<Group> OneUnitGroups(const std::vector<std::pair<std::vector<int>, double>>& units) {
  std::vector<Group> groups;
  for (const auto& [key, x] : units)
    groups.push_back({key, {{x}}, {}});
  return groups;
}

// ---- the chain of nodes ----

TEST(SampleDesign, OfOneStageWithoutStrataHasOneClustersNodeAndOneStratum) {
  SampleDesign design = Build({WithReplacement(0, 1)}, 1);
  EXPECT_EQ(design.NodeCount(), 1);
  EXPECT_FALSE(design.Root()->IsStrata());
  EXPECT_EQ(Feed(design, OneUnitGroups({{{1}, 2.0}, {{2}, 5.0}, {{3}, 8.0}})).fault, DesignFault::kNone);
  EXPECT_EQ(design.StrataCount(0), 1);
  EXPECT_EQ(design.UnitCount(0), 3);
  EXPECT_DOUBLE_EQ(RootVariance(design, 0), 27.0);  // 3/2 (9 + 0 + 9)
}

TEST(SampleDesign, WithStrataButNoClustersAtTheEndGetsAnExtraNodeSoThatRecordsAreUnits) {
  SampleDesign design = Build({WithReplacement(1, 0)}, 1);
  EXPECT_EQ(design.NodeCount(), 2);
  EXPECT_TRUE(design.Root()->IsStrata());
  const Outcome outcome = Feed(design, {{{1}, {{1.0}, {3.0}}, {}}, {{2}, {{4.0}, {5.0}, {6.0}}, {}}});
  EXPECT_EQ(outcome.fault, DesignFault::kNone);
  EXPECT_EQ(design.StrataCount(0), 2);
  EXPECT_EQ(design.UnitCount(0), 5);
  EXPECT_DOUBLE_EQ(RootVariance(design, 0), 4.0 + 3.0);  // 2/1 * 2 + 3/2 * 2
}

TEST(SampleDesign, HasANodeForEachStrataListAndEachClusterListAndOneForRecordsAtTheEnd) {
  const struct {
    std::vector<DesignStage> stages;
    int nodes;
  } kCases[] = {
      {{WithReplacement(0, 0)}, 1},
      {{WithReplacement(2, 3)}, 2},
      {{WithReplacement(1, 0), WithReplacement(1, 1)}, 3},  // strata only, in a stage that isn't the last
      {{WithReplacement(1, 1), WithReplacement(0, 0)}, 3},
      {{WithReplacement(1, 1), WithReplacement(1, 0)}, 4},
      {{WithReplacement(0, 1), WithReplacement(0, 1), WithReplacement(0, 1)}, 3},
      {{WithReplacement(1, 1), WithReplacement(1, 1), WithReplacement(1, 1)}, 6},
      {{WithReplacement(1, 1), WithReplacement(1, 1), WithReplacement(1, 0)}, 6},
  };
  for (const auto& c : kCases) {
    SampleDesign design;
    EXPECT_TRUE(design.BuildTree(c.stages, 1));
    EXPECT_EQ(design.NodeCount(), c.nodes);
  }
}

TEST(SampleDesign, IsRefusedWithoutAStage) {
  SampleDesign design;
  EXPECT_FALSE(design.BuildTree({}, 1));
  EXPECT_EQ(design.NodeCount(), 0);
  EXPECT_EQ(design.Root(), nullptr);
  EXPECT_EQ(design.StrataCount(0), 0);
  EXPECT_EQ(design.UnitCount(0), 0);
}

TEST(SampleDesign, BuiltAgainForgetsEarlierNodes) {
  SampleDesign design =
      Build({WithoutReplacement(1, 1, InclProbType::kInclProbVariable), WithReplacement(1, 1)}, 1);
  ASSERT_TRUE(design.BuildTree({WithReplacement(0, 1)}, 1));
  EXPECT_EQ(design.NodeCount(), 1);
  EXPECT_FALSE(design.ReadsStageValues());
}

TEST(SampleDesign, ReadsValuesPerUnitForVariablesAndMatricesUnderEqualProbabilitiesOnly) {
  using enum InclProbType;
  for (const InclProbType type : {kInclProbVariable, kInclProbMatrix, kPopSizeVariable, kPopSizeMatrix}) {
    EXPECT_TRUE(Build({WithoutReplacement(1, 1, type)}, 1).ReadsStageValues());
  }
  for (const InclProbType type : {kNone, kInclProbValue, kPopSizeValue}) {
    EXPECT_FALSE(Build({WithoutReplacement(1, 1, type, 1.0)}, 1).ReadsStageValues());
  }
  DesignStage withReplacement = WithReplacement(1, 1);
  withReplacement.SetInclusionProbabilityVariable(0);
  EXPECT_FALSE(Build({withReplacement}, 1).ReadsStageValues());
}

TEST(SampleDesign, RefusesBlocksWithoutNodesWithUnequalLengthsOrOutsideTheVector) {
  SampleDesign design;
  EXPECT_FALSE(design.SetMatrixBlocks({1}, {0}));
  ASSERT_TRUE(design.BuildTree({WithReplacement(1, 1)}, 3));
  EXPECT_FALSE(design.SetMatrixBlocks({1, 2}, {0}));
  EXPECT_FALSE(design.SetMatrixBlocks({3}, {1}));
  EXPECT_FALSE(design.SetMatrixBlocks({-1}, {0}));
  EXPECT_FALSE(design.SetMatrixBlocks({1}, {-1}));
  EXPECT_EQ(design.Root()->Covariances(), nullptr);
  EXPECT_TRUE(design.SetMatrixBlocks({1, 2}, {0, 1}));
  EXPECT_EQ(design.Root()->Covariances()->BlockCount(), 2);
}

// ---- closing levels ----

TEST(SampleDesign, WithAPopulationBelowTheSampleOfAStratumFailsAtTheCloseOfThatStratum) {
  SampleDesign design = Build({WithoutReplacement(1, 1, InclProbType::kPopSizeValue, 2.0)}, 1);
  const Outcome outcome =
      Feed(design,
           OneUnitGroups(
               {{{1, 1}, 0}, {{1, 2}, 0}, {{2, 1}, 0}, {{2, 2}, 0}, {{2, 3}, 0}, {{3, 1}, 0}, {{3, 2}, 0}}));
  EXPECT_EQ(outcome.fault, DesignFault::kPopulationTooSmall);
  EXPECT_EQ(outcome.index, 1) << "the clusters node below the strata node";
  EXPECT_EQ(outcome.groups, 4u) << "the fifth group is the last one of the second stratum";
}

TEST(SampleDesign, WithAPopulationBelowTheSampleFailsAtTheRootToo) {
  SampleDesign design = Build({WithoutReplacement(0, 1, InclProbType::kPopSizeValue, 1.0)}, 1);
  const Outcome outcome = Feed(design, OneUnitGroups({{{1}, 0}, {{2}, 0}}));
  EXPECT_EQ(outcome.fault, DesignFault::kPopulationTooSmall);
  EXPECT_EQ(outcome.index, 0);
}

TEST(SampleDesign, DoesNothingForALevelBeyondTheKeyVariables) {
  SampleDesign design = Build({WithReplacement(1, 1)}, 1);
  design.AddUnit({1.0});
  DesignFault fault = DesignFault::kMissingValue;
  int index = 5;
  EXPECT_FALSE(design.CloseLevels(2, fault, index));
  EXPECT_EQ(fault, DesignFault::kNone);
  EXPECT_EQ(design.UnitCount(0), 0) << "nothing has reached the root";
}

TEST(SampleDesign, WithoutKeyVariablesTakesAllRecordsInOneGroup) {
  SampleDesign design = Build({WithReplacement(0, 0)}, 1);
  EXPECT_EQ(Feed(design, {{{}, {{1.0}, {2.0}, {6.0}}, {}}}).fault, DesignFault::kNone);
  EXPECT_EQ(design.StrataCount(0), 1);
  EXPECT_EQ(design.UnitCount(0), 3);
  EXPECT_DOUBLE_EQ(RootTotal(design, 0), 9.0);
  EXPECT_DOUBLE_EQ(RootVariance(design, 0), 21.0);  // 3/2 (4 + 1 + 9)
}

TEST(SampleDesign, WithoutAnyValueHasNoStrataAndNoUnits) {
  for (const int strata : {0, 1}) {
    SampleDesign design = Build({WithReplacement(strata, 0)}, 1);
    EXPECT_EQ(Feed(design, {{std::vector<int>(static_cast<std::size_t>(strata), 1), {{kMissing}}, {}}}).fault,
              DesignFault::kNone);
    EXPECT_EQ(design.StrataCount(0), 0);
    EXPECT_EQ(design.UnitCount(0), 0);
  }
}

TEST(SampleDesign, ClosesAUnitWhenAnyOfSeveralClusterVariablesChanges) {
  SampleDesign design = Build({WithReplacement(2, 2), WithReplacement(0, 0)}, 1);
  // One stratum; units (1,1), (1,2) and (2,1) with totals 3, 3 and 9.
  const std::vector<Group> groups = {
      {{1, 1, 1, 1}, {{1.0}, {2.0}}, {}}, {{1, 1, 1, 2}, {{3.0}}, {}}, {{1, 1, 2, 1}, {{4.0}, {5.0}}, {}}};
  EXPECT_EQ(Feed(design, groups).fault, DesignFault::kNone);
  EXPECT_EQ(design.UnitCount(0), 3);
  EXPECT_DOUBLE_EQ(RootVariance(design, 0), 36.0);  // 3/2 (4 + 4 + 16)
}

TEST(SampleDesign, ClosesAStratumWhenAnyOfSeveralStrataVariablesChanges) {
  SampleDesign design = Build({WithReplacement(2, 0)}, 1);
  const std::vector<Group> groups = {
      {{1, 1}, {{1.0}, {2.0}}, {}}, {{1, 2}, {{1.0}, {4.0}}, {}}, {{2, 2}, {{0.0}, {5.0}}, {}}};
  EXPECT_EQ(Feed(design, groups).fault, DesignFault::kNone);
  EXPECT_EQ(design.StrataCount(0), 3);
  EXPECT_DOUBLE_EQ(RootVariance(design, 0), 1.0 + 9.0 + 25.0);
}

TEST(SampleDesign, WithReplacementIgnoresLowerStages) {
  const DesignStage lower = WithoutReplacement(0, 1, InclProbType::kInclProbValue, 0.5);
  const auto units = OneUnitGroups({{{1, 1, 1}, 1.0}, {{1, 1, 2}, 9.0}, {{1, 2, 1}, 3.0}, {{1, 2, 2}, 3.0}});
  SampleDesign with = Build({WithReplacement(1, 1), lower}, 1);
  SampleDesign without = Build({WithoutReplacement(1, 1, InclProbType::kInclProbValue, 0.1), lower}, 1);
  ASSERT_EQ(Feed(with, units).fault, DesignFault::kNone);
  ASSERT_EQ(Feed(without, units).fault, DesignFault::kNone);
  EXPECT_DOUBLE_EQ(RootVariance(with, 0), 16.0);
  // 0.9 * 16 + 0.1 * (0.5 * 64)
  EXPECT_DOUBLE_EQ(RootVariance(without, 0), 17.6);
}

// ---- values that are read per unit ----

/// A tree whose only stage reads a fraction per unit.
SampleDesign ReadingFraction() {
  return Build({WithoutReplacement(1, 1, InclProbType::kInclProbVariable)}, 1);
}

Group UnitWith(std::vector<int> key, double x, std::vector<double> constants) {
  return {std::move(key), {{x}}, std::move(constants)};
}

TEST(SampleDesignValues, AreTakenAnewInEachStratum) {
  SampleDesign design = ReadingFraction();
  const Outcome outcome = Feed(design, {UnitWith({1, 1}, 0, {0.5}), UnitWith({1, 2}, 2, {0.5}),
                                        UnitWith({2, 1}, 0, {0.25}), UnitWith({2, 2}, 4, {0.25})});
  EXPECT_EQ(outcome.fault, DesignFault::kNone);
  EXPECT_TRUE(outcome.unequal.empty());
  EXPECT_DOUBLE_EQ(RootVariance(design, 0), 0.5 * 4 + 0.75 * 16);
}

TEST(SampleDesignValues, ThatDifferWithinAStratumAreReportedAndTheFirstStays) {
  SampleDesign design = ReadingFraction();
  const Outcome outcome = Feed(design, {UnitWith({1, 1}, 0, {0.5}), UnitWith({1, 2}, 2, {0.25})});
  EXPECT_EQ(outcome.fault, DesignFault::kNone);
  EXPECT_EQ(outcome.unequal, std::vector<int>{0});
  EXPECT_DOUBLE_EQ(RootVariance(design, 0), 0.5 * 4);
}

TEST(SampleDesignValues, MayDifferInTheirLastDigits) {
  SampleDesign design = ReadingFraction();
  const double third = 1.0 / 3.0;
  const double near = third * (1.0 + 2e-16);
  const double apart = third * (1.0 + 1e-15);
  ASSERT_NE(third, near);
  const Outcome outcome =
      Feed(design, {UnitWith({1, 1}, 0, {third}), UnitWith({1, 2}, 0, {near}), UnitWith({1, 3}, 0, {apart})});
  EXPECT_EQ(outcome.unequal, std::vector<int>{0}) << "the third unit alone";
}

TEST(SampleDesignValues, ThatComeLateAreTakenAndReported) {
  SampleDesign design = ReadingFraction();
  const Outcome outcome = Feed(design, {UnitWith({1, 1}, 0, {kMissing}), UnitWith({1, 2}, 2, {0.25})});
  EXPECT_EQ(outcome.fault, DesignFault::kNone);
  EXPECT_EQ(outcome.unequal, std::vector<int>{0});
  EXPECT_DOUBLE_EQ(RootVariance(design, 0), 0.75 * 4);
}

TEST(SampleDesignValues, ThatNeverComeFailAtTheCloseOfTheirStratum) {
  SampleDesign design = ReadingFraction();
  const Outcome outcome = Feed(design, {UnitWith({1, 1}, 0, {0.5}), UnitWith({2, 1}, 0, {kMissing}),
                                        UnitWith({2, 2}, 0, {kMissing}), UnitWith({3, 1}, 0, {0.5})});
  EXPECT_EQ(outcome.fault, DesignFault::kMissingValue);
  EXPECT_EQ(outcome.index, 0);
  EXPECT_EQ(outcome.groups, 2u);
}

TEST(SampleDesignValues, ThatNeverComeAreFoundAtTheEndOfAStratumOfOneUnit) {
  SampleDesign design = ReadingFraction();
  EXPECT_EQ(Feed(design, {UnitWith({1, 1}, 0, {})}).fault, DesignFault::kMissingValue);
}

TEST(SampleDesignValues, OfALowerStageAreTakenAnewInEachUnitAboveWhileTheUpperOnesAreCompared) {
  SampleDesign design = Build({WithoutReplacement(0, 1, InclProbType::kPopSizeVariable),
                               WithoutReplacement(0, 1, InclProbType::kInclProbVariable)},
                              1);
  const Outcome outcome = Feed(design, {UnitWith({1, 1}, 0, {4, 0.5}), UnitWith({1, 2}, 2, {4, 0.5}),
                                        UnitWith({2, 1}, 1, {4, 0.25}), UnitWith({2, 2}, 5, {4, 0.25})});
  EXPECT_EQ(outcome.fault, DesignFault::kNone);
  EXPECT_TRUE(outcome.unequal.empty());
  // f = 2/4; totals 2 and 6 give 0.5 * 16; within: 0.5 * (0.5 * 4 + 0.75 * 16)
  EXPECT_DOUBLE_EQ(RootVariance(design, 0), 15.0);
}

TEST(SampleDesignValues, ThatDifferInTwoStagesAreReportedForTheOuterOne) {
  SampleDesign design = Build({WithoutReplacement(0, 1, InclProbType::kPopSizeVariable),
                               WithoutReplacement(0, 1, InclProbType::kInclProbVariable)},
                              1);
  const Outcome outcome = Feed(design, {UnitWith({1, 1}, 0, {4, 0.5}), UnitWith({1, 2}, 2, {5, 0.25})});
  EXPECT_EQ(outcome.unequal, std::vector<int>{0});
}

// A stage with replacement may carry an inclusion probability variable that its estimator doesn't use.
TEST(SampleDesignValues, OfAStageThatDoesNotUseThemArePassedOver) {
  DesignStage first = WithReplacement(0, 1);
  first.SetInclusionProbabilityVariable(0);
  SampleDesign design = Build({first, WithoutReplacement(0, 1, InclProbType::kPopSizeVariable)}, 1);
  const Outcome unequal = Feed(design, {UnitWith({1, 1}, 0, {0.1, 9}), UnitWith({1, 2}, 0, {0.2, 8})});
  EXPECT_EQ(unequal.unequal, std::vector<int>{1});

  SampleDesign again = Build({first, WithoutReplacement(0, 1, InclProbType::kPopSizeVariable)}, 1);
  const Outcome missing = Feed(again, {UnitWith({1, 1}, 0, {0.1, kMissing}), UnitWith({2, 1}, 0, {0.1, 8})});
  EXPECT_EQ(missing.fault, DesignFault::kMissingValue);
  EXPECT_EQ(missing.index, 1);
}

TEST(SampleDesignValues, OfPopulationsBelowTheSampleFailInTheirNode) {
  SampleDesign design =
      Build({WithReplacement(1, 1), WithoutReplacement(1, 0, InclProbType::kPopSizeVariable)}, 1);
  const Outcome outcome = Feed(design, {{{1, 1, 1}, {{1.0}, {2.0}}, {2}}, {{1, 1, 2}, {{1.0}, {2.0}}, {1}}});
  EXPECT_EQ(outcome.fault, DesignFault::kPopulationTooSmall);
  EXPECT_EQ(outcome.index, 3);
  EXPECT_EQ(outcome.groups, 1u);
}

}  // namespace
}  // namespace design_test
