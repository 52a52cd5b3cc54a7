#include "component/input/comp_settings.h"

#include <gtest/gtest.h>

#include <limits>

namespace tavo {
namespace {

constexpr auto kStrata = DesignVariableKind::kStrata;
constexpr auto kCluster = DesignVariableKind::kCluster;

/// One stage with replacement, strata in column 0, clusters in 1, weight in 2, dependent in 3.
TavoCompSettings OneStage() {
  TavoCompSettings settings;
  settings.AddDesignCategorical(0, kStrata, 1);
  settings.AddDesignCategorical(1, kCluster, 1);
  settings.SetStageEstimator(StageEstimator::kWithReplacement, 1);
  settings.SetWeightVar(2);
  settings.SetDependent(3, 2, 0);
  return settings;
}

TEST(TavoCompSettings, SecondDependentIsRefused) {
  TavoCompSettings settings = OneStage();
  EXPECT_FALSE(settings.SetDependent(9, 3, 1));
  EXPECT_EQ(settings.Dependent(), 3);
  EXPECT_EQ(settings.DependentCategories(), 2);
}

TEST(TavoCompSettings, FactorOnAStratumIsRefusedButASubpopulationIsNot) {
  TavoCompSettings settings = OneStage();
  EXPECT_EQ(settings.AddFactor(0, 3), -1);
  EXPECT_TRUE(settings.Factors().empty());
  EXPECT_TRUE(settings.SetSubpop(0, 2));
  EXPECT_EQ(settings.SubpopVar(), 0);
  EXPECT_EQ(settings.VariableTypes()[0], VariableRole::kDesignCategory);
}

TEST(TavoCompSettings, ConfidenceOfOneLeavesThePreviousValue) {
  TavoCompSettings settings;
  settings.SetConfidence(0.9);
  for (const double p : {1.0, -0.1, 1.5, std::numeric_limits<double>::quiet_NaN()}) {
    settings.SetConfidence(p);
    EXPECT_EQ(settings.Confidence(), 0.9) << p;
  }
  settings.SetConfidence(0.0);
  EXPECT_EQ(settings.Confidence(), 0.0);
}

TEST(TavoCompSettings, DegreesOfFreedomAreUnitsMinusStrataUnlessSetAboveZero) {
  TavoCompSettings settings;
  EXPECT_EQ(settings.DegreesOfFreedom(12, 4), 8.0);
  for (const double unset : {-1.0, 0.0}) {
    settings.SetDegreesOfFreedom(unset);
    EXPECT_EQ(settings.DegreesOfFreedom(12, 4), 8.0);
  }
  settings.SetDegreesOfFreedom(3.5);
  EXPECT_EQ(settings.DegreesOfFreedom(12, 4), 3.5);
}

TEST(TavoCompSettings, StagesOneTwoFourAreBroken) {
  TavoCompSettings settings = OneStage();
  settings.AddDesignCategorical(10, kCluster, 4);
  settings.AddDesignCategorical(11, kCluster, 2);
  EXPECT_EQ(settings.Validate().Code(), StatusCode::kStageNumbersBroken);
}

TEST(TavoCompSettings, ValidateFindsTheFirstThingThatIsWrong) {
  TavoCompSettings settings;
  EXPECT_EQ(settings.Validate().Code(), StatusCode::kNoStage);
  settings.AddDesignCategorical(10, kCluster, 2);
  EXPECT_EQ(settings.Validate().Code(), StatusCode::kFirstStageNotOne);
  settings.AddDesignCategorical(0, kStrata, 1);
  EXPECT_EQ(settings.Validate().Code(), StatusCode::kNoWeight);
  settings.SetWeightVar(2);
  OrvStatus status = settings.Validate();
  EXPECT_EQ(status.Code(), StatusCode::kStageWithoutClusters);
  EXPECT_EQ(status.Integer(1), 1);
  settings.AddDesignCategorical(1, kCluster, 1);
  EXPECT_EQ(settings.Validate().Code(), StatusCode::kStageWithoutEstimator);
  settings.SetStageEstimator(StageEstimator::kWithReplacement, 1);
  status = settings.Validate();
  EXPECT_EQ(status.Code(), StatusCode::kStageWithoutEstimator);
  EXPECT_EQ(status.Integer(1), 2);
  settings.SetStageEstimator(StageEstimator::kEqualWor, 2);
  status = settings.Validate();
  EXPECT_EQ(status.Code(), StatusCode::kEqualWorWithoutProb);
  EXPECT_EQ(status.Integer(1), 2);
  settings.SetDesignConstant(0.25, InclProbType::kInclProbValue, 2);
  EXPECT_EQ(settings.Validate().Code(), StatusCode::kNoDependent);
  settings.SetDependent(3, 2, 0);
  EXPECT_TRUE(settings.Validate().IsOK());
  settings.SetIntercept(false);
  EXPECT_EQ(settings.Validate().Code(), StatusCode::kEmptyModel);
  settings.AddEffect(OrvModelEffect());
  EXPECT_TRUE(settings.Validate().IsOK());
}

TEST(TavoCompSettings, AColumnHoldsOneRole) {
  TavoCompSettings settings = OneStage();
  EXPECT_FALSE(settings.SetWeightVar(0));
  EXPECT_FALSE(settings.AddDesignCategorical(2, kStrata, 1));
  EXPECT_FALSE(settings.AddDesignCategorical(0, kCluster, 1));
  EXPECT_FALSE(settings.AddDesignContinuous(3, InclProbType::kPopSizeVariable, 1));
  EXPECT_EQ(settings.AddCovariate(3), -1);
  EXPECT_FALSE(settings.SetSubpop(2, 1));
  EXPECT_EQ(settings.AddFactor(5, 4), 0);
  EXPECT_EQ(settings.AddCovariate(5), -1);
  EXPECT_EQ(settings.AddCovariate(6), 0);
  EXPECT_EQ(settings.AddCovariate(7), 1);
  const std::vector<VariableRole> expected = {VariableRole::kDesignCategory, VariableRole::kDesignCategory,
                                              VariableRole::kWeight,         VariableRole::kDependent,
                                              VariableRole::kNone,           VariableRole::kFactor,
                                              VariableRole::kCovariate,      VariableRole::kCovariate};
  EXPECT_EQ(settings.VariableTypes(), expected);
}

TEST(TavoCompSettings, NegativeColumnsAndImpossibleValuesAreRefused) {
  TavoCompSettings settings;
  EXPECT_FALSE(settings.AddDesignCategorical(-1, kStrata, 1));
  EXPECT_FALSE(settings.AddDesignContinuous(-1, InclProbType::kInclProbVariable, 1));
  EXPECT_FALSE(settings.AddDesignContinuous(1, InclProbType::kInclProbValue, 1));
  EXPECT_FALSE(settings.SetWeightVar(-2));
  EXPECT_FALSE(settings.SetDependent(0, 1, 0));
  EXPECT_FALSE(settings.SetDependent(0, 3, 4));
  EXPECT_FALSE(settings.SetDependent(0, 3, -2));
  EXPECT_FALSE(settings.SetSubpop(0, 0));
  EXPECT_EQ(settings.AddFactor(0, 0), -1);
  for (const double p : {0.0, 1.1, -0.5}) {
    EXPECT_FALSE(settings.SetDesignConstant(p, InclProbType::kInclProbValue, 1)) << p;
  }
  for (const double size : {0.0, 1.5, std::numeric_limits<double>::infinity()}) {
    EXPECT_FALSE(settings.SetDesignConstant(size, InclProbType::kPopSizeValue, 1)) << size;
  }
  EXPECT_FALSE(settings.SetStageEstimator(StageEstimator::kUnequalWor, 2));
  EXPECT_EQ(settings.StageCount(), 0);
  EXPECT_FALSE(settings.SetLogLikCriterion(-1e-9));
  EXPECT_FALSE(settings.SetParamCriterion(std::numeric_limits<double>::quiet_NaN()));
  EXPECT_FALSE(settings.SetMaxIterations(-1));
  EXPECT_FALSE(settings.SetStartingIteration(-1));
  EXPECT_FALSE(settings.SetMaxStepHalving(0));
  EXPECT_FALSE(settings.SetHistoryFrequency(0));
  EXPECT_EQ(settings.MaxIterations(), 100);
  EXPECT_EQ(settings.MaxStepHalving(), 5);
  EXPECT_TRUE(settings.SetMaxIterations(0));
  EXPECT_EQ(settings.MaxIterations(), 0);
}

TEST(TavoCompSettings, StagesStandInOrderOfTheirNumber) {
  TavoCompSettings settings;
  settings.AddDesignCategorical(20, kCluster, 2);
  settings.AddDesignCategorical(11, kCluster, 1);
  settings.AddDesignCategorical(10, kStrata, 1);
  settings.AddDesignCategorical(21, kStrata, 2);
  settings.AddDesignContinuous(30, InclProbType::kPopSizeVariable, 2);
  settings.AddDesignContinuous(31, InclProbType::kInclProbMatrix, 1);
  EXPECT_EQ(settings.CatDesignVars(), (std::vector<int>{10, 11, 21, 20}));
  EXPECT_EQ(settings.ContDesignVars(), (std::vector<int>{31, 30}));
  EXPECT_EQ(settings.InclusionTypeOfStage(1), InclProbType::kInclProbVariable);
  EXPECT_EQ(settings.InclusionTypeOfStage(2), InclProbType::kPopSizeVariable);
  EXPECT_EQ(settings.InclusionTypeOfStage(3), InclProbType::kNone);
  EXPECT_EQ(settings.VariableTypes()[30], VariableRole::kPopulationSize);
  EXPECT_EQ(settings.VariableTypes()[31], VariableRole::kInclusionProbability);
}

TEST(TavoCompSettings, ConstantVariableMapGivesStageAndLeadingKeyVariables) {
  TavoCompSettings settings = OneStage();
  std::vector<int> stages{7};
  std::vector<int> positions{7};
  EXPECT_FALSE(settings.ConstantVariableMap(stages, positions));
  EXPECT_TRUE(stages.empty());
  settings.AddDesignContinuous(30, InclProbType::kPopSizeVariable, 1);
  settings.AddDesignCategorical(21, kStrata, 2);
  settings.AddDesignContinuous(31, InclProbType::kInclProbVariable, 2);
  ASSERT_TRUE(settings.ConstantVariableMap(stages, positions));
  EXPECT_EQ(stages, (std::vector<int>{1, 2}));
  EXPECT_EQ(positions, (std::vector<int>{1, 3}));  // the stratum; stratum, cluster and second stratum
}

TEST(TavoCompSettings, AConstantReplacesAVariableOfTheSameStage) {
  TavoCompSettings settings = OneStage();
  settings.AddDesignContinuous(30, InclProbType::kPopSizeVariable, 1);
  EXPECT_EQ(settings.ContDesignVars().size(), 1u);
  settings.SetDesignConstant(1.0, InclProbType::kInclProbValue, 1);
  EXPECT_TRUE(settings.ContDesignVars().empty());
  EXPECT_EQ(settings.Stages()[0].InclusionProbability(), 1.0);
}

TEST(TavoCompSettings, QuestionsAboutTheDesignAreAnsweredFromItsStages) {
  TavoCompSettings settings;
  EXPECT_FALSE(settings.HasClustersInLastStage());
  EXPECT_FALSE(settings.IsSingleStageOfEqualProbability());
  EXPECT_FALSE(settings.IsFirstStageUnequalProbability());
  settings.SetStageEstimator(StageEstimator::kEqualWor, 1);
  EXPECT_TRUE(settings.IsSingleStageOfEqualProbability());
  settings.AddDesignCategorical(1, kCluster, 1);
  EXPECT_TRUE(settings.HasClustersInLastStage());
  settings.AddDesignCategorical(2, kStrata, 2);
  EXPECT_FALSE(settings.HasClustersInLastStage());
  EXPECT_FALSE(settings.IsSingleStageOfEqualProbability());
  settings.SetStageEstimator(StageEstimator::kUnequalWor, 1);
  EXPECT_TRUE(settings.IsFirstStageUnequalProbability());
}

TEST(TavoCompSettings, ACopyIsIndependent) {
  TavoCompSettings settings = OneStage();
  const TavoCompSettings copy = settings;
  settings.AddDesignCategorical(20, kCluster, 2);
  settings.AddFactor(5, 3);
  EXPECT_EQ(copy.StageCount(), 1);
  EXPECT_TRUE(copy.Factors().empty());
  EXPECT_EQ(copy.CatDesignVars(), (std::vector<int>{0, 1}));
}

TEST(DesignStage, ASetterSetsTheInclusionType) {
  DesignStage stage;
  stage.SetInclusionProbability(0.5);
  EXPECT_EQ(stage.InclusionType(), InclProbType::kInclProbValue);
  stage.SetPopulationSize(12);
  EXPECT_EQ(stage.InclusionType(), InclProbType::kPopSizeValue);
  stage.SetInclusionProbabilityVariable(3);
  EXPECT_EQ(stage.InclusionType(), InclProbType::kInclProbVariable);
  stage.SetPopulationSizeVariable(4);
  EXPECT_EQ(stage.InclusionType(), InclProbType::kPopSizeVariable);
  stage.SetMatrix(InclProbType::kPopSizeMatrix);
  EXPECT_EQ(stage.InclusionType(), InclProbType::kPopSizeMatrix);
  stage.Reset();
  EXPECT_EQ(stage.InclusionType(), InclProbType::kNone);
  EXPECT_EQ(stage.PopulationSize(), -1.0);
  EXPECT_EQ(stage.InclusionProbabilityVariable(), -1);
}

}  // namespace
}  // namespace tavo
