#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "command_run.h"

namespace command_parser_test {

namespace {

using tavo::OrvModelEffect;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kDuplicate = "Duplicate effect in ^1 ...";
constexpr const char* kUnused = "Model does not use [%1:, ^1:]1";
constexpr const char* kOpening = "Model effect is opening with ^1, subcommand ^2 ...";

/// The effects that MODEL makes over factors a b c and covariates x z: per effect the levels of the factors
/// and the powers of the covariates.
std::vector<std::vector<int>> Effects(CommandRun& run, const std::string& model) {
  EXPECT_TRUE(run.Parse("TAVOREG y BY a b c WITH x z /MODEL " + model)) << model;
  std::vector<std::vector<int>> result;
  for (const OrvModelEffect& effect : run.Specs().Effects())
    result.push_back(effect.MainVector());
  return result;
}

struct EffectCase {
  const char* text;
  std::vector<int> main;  // -1 for a factor and 0 for a covariate that isn't in the effect
  bool factorAfterCovariates = false;
};

class Effect : public testing::TestWithParam<EffectCase> {};

TEST_P(Effect, IsReadByItsForm) {
  CommandRun run;
  EXPECT_THAT(Effects(run, GetParam().text), ElementsAre(GetParam().main));
  EXPECT_EQ(run.Specs().Effects().front().IsFactorAfterCovariates(), GetParam().factorAfterCovariates);
}

INSTANTIATE_TEST_SUITE_P(
    Forms, Effect,
    testing::Values(EffectCase{"a", {0, -1, -1, 0, 0}}, EffectCase{"a*b", {0, 0, -1, 0, 0}},
                    EffectCase{"a BY b", {0, 0, -1, 0, 0}}, EffectCase{"b*a", {0, 0, -1, 0, 0}},
                    EffectCase{"a(b)", {1, 0, -1, 0, 0}}, EffectCase{"a(b(c))", {2, 1, 0, 0, 0}},
                    EffectCase{"a(b*c)", {1, 0, 0, 0, 0}}, EffectCase{"x", {-1, -1, -1, 1, 0}},
                    EffectCase{"x*z*x", {-1, -1, -1, 2, 1}}, EffectCase{"a*x*x", {0, -1, -1, 2, 0}},
                    EffectCase{"a*x(b)", {1, 0, -1, 1, 0}}, EffectCase{"x(a)", {0, -1, -1, 1, 0}, true},
                    EffectCase{"x(a(b))", {1, 0, -1, 1, 0}, true}));

TEST(Model, ThatNamesNoTermLeavesTheEffectsEmptyAndWarnsOfEveryPredictor) {
  CommandRun run;
  ASSERT_TRUE(run.Parse("TAVOREG y BY a WITH x /MODEL"));
  EXPECT_THAT(run.Specs().Effects(), IsEmpty());
  EXPECT_THAT(run.Specs().Factors(), ElementsAre(run.IndexOf("a")));
  EXPECT_THAT(run.Specs().UsedFactors(), IsEmpty());
  EXPECT_THAT(run.Specs().UsedCovariates(), IsEmpty());
  ASSERT_THAT(run.Keys(), ElementsAre(kUnused));
  EXPECT_THAT(run.Messages()[0].text, testing::HasSubstr("a, x"));
}

TEST(Model, ABAKeepsTwoEffectsAndGivesOneWarning) {
  CommandRun run;
  ASSERT_TRUE(run.Parse("TAVOREG y BY a b /MODEL a b a"));
  EXPECT_EQ(run.Specs().Effects().size(), 2U);
  EXPECT_THAT(run.Keys(), ElementsAre(kDuplicate));
}

TEST(Model, CrossingsAreEqualInAnyOrderAndNestingsAreNot) {
  CommandRun run;
  EXPECT_EQ(Effects(run, "a*b b*a a(b) b(a) c x z").size(), 6U);
  EXPECT_THAT(run.Keys(), ElementsAre(kDuplicate));
}

TEST(Model, XOfAIsLegalAndAOfXIsANestedCovariate) {
  CommandRun legal;
  EXPECT_TRUE(legal.Parse("TAVOREG y BY a WITH x /MODEL x(a)"));
  CommandRun nested;
  EXPECT_FALSE(nested.Parse("TAVOREG y BY a WITH x /MODEL a(x)"));
  EXPECT_THAT(nested.Keys(), ElementsAre("Covariate ^1 nested in effect, subcommand ^2 ..."));
}

TEST(Model, ATimesAIsARepeatedFactorAndXTimesXAPowerOfTwo) {
  CommandRun repeated;
  EXPECT_FALSE(repeated.Parse("TAVOREG y BY a WITH x /MODEL a*A"));
  EXPECT_THAT(repeated.Keys(), ElementsAre("Repeated factor in effect ^1, subcommand ^2 ..."));
  CommandRun power;
  ASSERT_TRUE(power.Parse("TAVOREG y WITH x /MODEL x*x"));
  EXPECT_EQ(power.Specs().Effects().front().CovariatePower(power.IndexOf("x")), 2);
}

TEST(Model, AOfBWithoutClosingParenthesisIsUnbalanced) {
  CommandRun run;
  EXPECT_FALSE(run.Parse("TAVOREG y BY a b /MODEL a(b"));
  EXPECT_THAT(run.Keys(), ElementsAre("Unbalanced parentheses in effect, subcommand ^1 ..."));
}

TEST(Model, AnEffectIsCompleteAfterItsClosingParentheses) {
  CommandRun run;
  EXPECT_FALSE(run.Parse("TAVOREG y BY a b c /MODEL a(b)*c"));
  EXPECT_THAT(run.Keys(), ElementsAre(kOpening));
}

TEST(Model, WithoutModelCovariatesComeAheadOfFactors) {
  CommandRun run;
  ASSERT_TRUE(run.Parse("TAVOREG y BY a WITH x"));
  ASSERT_EQ(run.Specs().Effects().size(), 2U);
  EXPECT_EQ(run.Specs().Effects()[0].CovariatePower(run.IndexOf("x")), 1);
  EXPECT_EQ(run.Specs().Effects()[1].FactorLevel(run.IndexOf("a")), 0);
  EXPECT_THAT(run.Specs().UsedFactors(), ElementsAre(run.IndexOf("a")));
  EXPECT_THAT(run.Specs().UsedCovariates(), ElementsAre(run.IndexOf("x")));
  EXPECT_THAT(run.Keys(), IsEmpty());
}

TEST(Model, InterceptOnlyWithPredictorsWarnsAndKeepsThemWithoutEffects) {
  CommandRun run;
  ASSERT_TRUE(run.Parse("TAVOREG y BY a WITH x /INTERCEPT INCLUDE=ONLY"));
  EXPECT_THAT(run.Keys(), ElementsAre(kUnused));
  EXPECT_THAT(run.Specs().Factors(), ElementsAre(run.IndexOf("a")));
  EXPECT_THAT(run.Specs().Covariates(), ElementsAre(run.IndexOf("x")));
  EXPECT_THAT(run.Specs().UsedFactors(), IsEmpty());
  EXPECT_THAT(run.Specs().Effects(), IsEmpty());
  EXPECT_TRUE(run.Specs().UsesIntercept());
}

TEST(Model, InterceptOnlyWithoutPredictorsIsSilent) {
  CommandRun run;
  EXPECT_TRUE(run.Parse("TAVOREG y /INTERCEPT INCLUDE=ONLY"));
  EXPECT_THAT(run.Keys(), IsEmpty());
}

TEST(Model, InterceptIsReadAlthoughModelComesFirst) {
  CommandRun run;
  ASSERT_TRUE(run.Parse("TAVOREG y BY a /INTERCEPT INCLUDE=NO SHOW=YES /MODEL a"));
  EXPECT_FALSE(run.Specs().UsesIntercept());
  EXPECT_TRUE(run.Specs().ShowsIntercept());
}

TEST(Model, PositionsOfEffectsCountUnusedPredictorsToo) {
  CommandRun run;
  ASSERT_TRUE(run.Parse("TAVOREG y BY a b c WITH x z /MODEL c z"));
  EXPECT_THAT(run.Specs().Effects()[0].MainVector(), ElementsAre(-1, -1, 0, 0, 0));
  EXPECT_THAT(run.Specs().Effects()[1].MainVector(), ElementsAre(-1, -1, -1, 0, 1));
  EXPECT_THAT(run.Specs().UsedFactors(), ElementsAre(run.IndexOf("c")));
  EXPECT_THAT(run.Specs().UsedCovariates(), ElementsAre(run.IndexOf("z")));
}

TEST(Model, AnUnknownTermIsShownWithItsPlaceAndTheNearestPredictor) {
  CommandRun run;
  EXPECT_FALSE(run.Parse("TAVOREG y BY wide a /MODEL a*wise"));
  ASSERT_EQ(run.Messages().size(), 1U);
  EXPECT_THAT(run.Messages()[0].text, testing::HasSubstr("Did you mean wide?"));
  EXPECT_EQ(run.Messages()[0].location, "test.tvs:1:30");
}

}  // namespace

}  // namespace command_parser_test
