#include "component/input/model_effect.h"

#include <gtest/gtest.h>

namespace tavo {
namespace {

// Factors 10, 11, 12; covariates 20, 21.
const std::vector<int> kPredictors = {10, 11, 12, 20, 21};

OrvModelEffect Empty() {
  return OrvModelEffect(3, 2, &kPredictors);
}

OrvModelEffect Crossing(const std::vector<int>& factors, const std::vector<int>& covariates = {}) {
  OrvModelEffect effect = Empty();
  for (const int factor : factors)
    effect.AddFactor(factor, false);
  for (const int covariate : covariates)
    effect.AddCovariate(covariate);
  return effect;
}

TEST(OrvModelEffect, AFreshEffectIsEmptyAndStandsForTheIntercept) {
  const OrvModelEffect effect = Empty();
  EXPECT_TRUE(effect.IsEmpty());
  EXPECT_EQ(effect.MainVector(), (std::vector<int>{-1, -1, -1, 0, 0}));
  EXPECT_TRUE(OrvModelEffect().IsEmpty());
}

TEST(OrvModelEffect, NestingMovesEarlierFactorsOneLevelOut) {
  OrvModelEffect effect = Empty();  // A(B(C))
  EXPECT_TRUE(effect.AddFactor(10, false));
  EXPECT_EQ(effect.NestingLevels(), 1);
  EXPECT_TRUE(effect.AddFactor(11, true));
  EXPECT_TRUE(effect.AddFactor(12, true));
  EXPECT_EQ(effect.FactorLevel(10), 2);
  EXPECT_EQ(effect.FactorLevel(11), 1);
  EXPECT_EQ(effect.FactorLevel(12), 0);
  EXPECT_EQ(effect.NestingLevels(), 3);
  EXPECT_EQ(effect.FactorsInEffect(), 3);
}

TEST(OrvModelEffect, ARepeatedOrUnknownFactorIsRefused) {
  OrvModelEffect effect = Empty();
  EXPECT_TRUE(effect.AddFactor(11, false));
  EXPECT_FALSE(effect.AddFactor(11, true));
  EXPECT_FALSE(effect.AddFactor(20, false));
  EXPECT_EQ(effect.MainVector(), (std::vector<int>{-1, 0, -1, 0, 0}));
}

TEST(OrvModelEffect, ACovariateAddedAgainRaisesItsPower) {
  OrvModelEffect effect = Empty();
  EXPECT_EQ(effect.AddCovariate(21), 4);
  EXPECT_EQ(effect.AddCovariate(21), 4);
  EXPECT_EQ(effect.AddCovariate(20), 3);
  EXPECT_EQ(effect.AddCovariate(10), -1);
  EXPECT_EQ(effect.CovariatesInEffect(), 2);
  EXPECT_EQ(effect.CovariatePower(21), 2);
  EXPECT_EQ(effect.CovariatePower(10), -1);
  EXPECT_EQ(effect.TotalPower(), 3);
}

TEST(OrvModelEffect, ListsStandInPositionOrder) {
  const OrvModelEffect effect = Crossing({12, 10}, {21, 20, 21});
  std::vector<int> variables;
  std::vector<int> values;
  effect.Factors(variables, values);
  EXPECT_EQ(variables, (std::vector<int>{10, 12}));
  EXPECT_EQ(values, (std::vector<int>{0, 0}));
  effect.Covariates(variables, values);
  EXPECT_EQ(variables, (std::vector<int>{20, 21}));
  EXPECT_EQ(values, (std::vector<int>{1, 2}));
}

TEST(OrvModelEffect, EqualityDependsOnNestingAndFormButNotOnOrder) {
  EXPECT_TRUE(Crossing({10, 11}).Equals(Crossing({11, 10})));
  OrvModelEffect nested = Crossing({10});
  nested.AddFactor(11, true);
  EXPECT_FALSE(nested.Equals(Crossing({10, 11})));
  OrvModelEffect factorsLast = Crossing({10}, {20});
  factorsLast.MarkFactorAfterCovariates();
  EXPECT_FALSE(factorsLast.Equals(Crossing({10}, {20})));
  const std::vector<int> otherList = kPredictors;
  OrvModelEffect overOtherList = Crossing({10});
  overOtherList.SetPredictors(&otherList);
  EXPECT_FALSE(overOtherList.Equals(Crossing({10})));
}

TEST(OrvModelEffect, ContainmentNeedsMoreFactorsAndTheSameCovariates) {
  EXPECT_TRUE(Crossing({10}).ContainedIn(Crossing({10, 11})));
  EXPECT_TRUE(Crossing({10}, {20}).ContainedIn(Crossing({10, 12}, {20})));
  EXPECT_TRUE(Empty().ContainedIn(Crossing({11})));
  EXPECT_FALSE(Crossing({10}).ContainedIn(Crossing({10})));
  EXPECT_FALSE(Crossing({10}).ContainedIn(Crossing({11, 12})));
  EXPECT_FALSE(Crossing({10}).ContainedIn(Crossing({10, 11}, {20})));
  EXPECT_FALSE(Crossing({10}, {20}).ContainedIn(Crossing({10, 11}, {20, 20})));
  EXPECT_FALSE(Crossing({10}, {20}).ContainedIn(Crossing({10, 11}, {21})));
}

TEST(OrvModelEffect, UsedPositionsAreThoseOfAnyEffect) {
  const MCCommonMath::MCBitSet used = OrvModelEffect::UsedPositions({Crossing({12}), Crossing({}, {20})});
  const std::vector<bool> expected = {false, false, true, true, false};
  ASSERT_EQ(used.Size(), 5);
  for (int i = 0; i < 5; ++i)
    EXPECT_EQ(used.IsIn(i), expected[static_cast<std::size_t>(i)]) << i;
}

TEST(OrvModelEffect, KeepOnlyDropsUnusedPositions) {
  OrvModelEffect effect = Crossing({12}, {20});
  MCCommonMath::MCBitSet used = OrvModelEffect::UsedPositions({effect});
  EXPECT_TRUE(effect.KeepOnly(used));
  EXPECT_EQ(effect.MainVector(), (std::vector<int>{0, 1}));
  EXPECT_EQ(effect.FactorsInModel(), 1);
  EXPECT_EQ(effect.CovariatesInModel(), 1);
  const std::vector<int> shorter = {12, 20};
  effect.SetPredictors(&shorter);
  EXPECT_EQ(effect.FactorLevel(12), 0);
  EXPECT_EQ(effect.CovariatePower(20), 1);
}

TEST(OrvModelEffect, KeepOnlyTellsWhenADroppedPositionWasInUse) {
  OrvModelEffect effect = Crossing({10, 12}, {20});
  MCCommonMath::MCBitSet used(5);
  used.Set(0, true);
  used.Set(3, true);
  EXPECT_FALSE(effect.KeepOnly(used));
  EXPECT_EQ(effect.MainVector(), (std::vector<int>{0, 1}));
  EXPECT_EQ(effect.FactorsInEffect(), 1);
}

TEST(OrvModelEffect, ResetKeepsTheModelAndEmptiesTheEffect) {
  OrvModelEffect effect = Crossing({10}, {21});
  effect.MarkFactorAfterCovariates();
  effect.Reset();
  EXPECT_TRUE(effect.Equals(Empty()));
}

}  // namespace
}  // namespace tavo
