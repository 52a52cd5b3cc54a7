#include "component/estimation/parameter_list.h"

#include <gtest/gtest.h>

#include <cmath>
#include <utility>

#include "model_parts.h"

namespace {

using tavo::OrvParameterList;
using tavo_test::DesignBench;
using tavo_test::ModelParts;

// Levels 1 and 3 of a factor, two covariates, three responses: the factor, the second covariate, and the
// square of the first within the factor.
void AddThreeEffects(DesignBench& bench) {
  bench.Effect({0}, {}).Effect({}, {1}).Effect({0}, {0, 0});
  bench.Case(1, {1}, {1, 2}).Case(2, {3}, {2, 1}).Case(3, {1}, {5, 7}).Case(2, {3}, {1, 4});
}

TEST(ParameterList, RepeatsTheBasicListForEachLogitWithItsCategory) {
  DesignBench bench(3, {3}, 2);
  AddThreeEffects(bench);
  const ModelParts parts(bench);
  const OrvParameterList& list = parts.parameters;
  ASSERT_EQ(list.BasicCount(), 6) << "intercept, levels 1 and 3, one covariate, two slopes";
  ASSERT_EQ(list.AllCount(), 12);
  EXPECT_EQ(list.LogitCount(), 2);
  for (std::size_t k = 0; k < 6; ++k) {
    EXPECT_EQ(list.All()[k].targetCategory, 1);
    EXPECT_EQ(list.All()[k + 6].targetCategory, 2);
    EXPECT_EQ(list.All()[k + 6].effectIndex, list.Basic()[k].effectIndex);
    EXPECT_EQ(list.All()[k + 6].levels, list.Basic()[k].levels);
  }
  EXPECT_TRUE(list.All()[0].IsIntercept());
  EXPECT_TRUE(list.All()[6].IsIntercept());
}

TEST(ParameterList, NamesLevelsCovariatesAndPowers) {
  DesignBench bench(3, {3}, 2);
  AddThreeEffects(bench);
  const ModelParts parts(bench);
  const auto& basic = parts.parameters.Basic();
  ASSERT_EQ(basic.size(), 6u);
  EXPECT_EQ(basic[1].levels, std::vector<int>{1});
  EXPECT_EQ(basic[2].levels, std::vector<int>{3}) << "level 2 never occurs";
  EXPECT_EQ(basic[3].covariates, std::vector<int>{3});
  EXPECT_EQ(basic[5].covariates, std::vector<int>{2});
  EXPECT_EQ(basic[5].multiplicities, std::vector<int>{2});
  EXPECT_EQ(basic[5].effectIndex, 2);
}

TEST(ParameterList, EffectRangesFollowOneAnotherFromTheIntercept) {
  DesignBench bench(3, {3}, 2);
  AddThreeEffects(bench);
  const ModelParts parts(bench);
  EXPECT_EQ(parts.parameters.EffectCount(), 4);
  const std::vector<std::pair<int, int>> expected = {{0, 1}, {1, 2}, {3, 1}, {4, 2}};
  int first = -1, count = -1;
  for (int effect = 0; effect < 4; ++effect) {
    ASSERT_TRUE(parts.parameters.EffectRange(effect, first, count));
    EXPECT_EQ(std::make_pair(first, count), expected[static_cast<std::size_t>(effect)]);
  }
  EXPECT_FALSE(parts.parameters.EffectRange(4, first, count));
  EXPECT_FALSE(parts.parameters.EffectRange(-1, first, count));
}

TEST(ParameterList, WithoutInterceptEffectsCountFromTheList) {
  DesignBench bench(2, {2}, 1, 0, false);
  bench.Effect({0}, {}).Effect({}, {0}).Case(1, {1}, {1}).Case(2, {2}, {2});
  const ModelParts parts(bench);
  int first = -1, count = -1;
  ASSERT_TRUE(parts.parameters.EffectRange(1, first, count));
  EXPECT_EQ(first, 2);
  EXPECT_EQ(count, 1);
  EXPECT_FALSE(parts.parameters.EffectRange(2, first, count));
}

TEST(ParameterList, CentresAreMeansAndScalesStandardDeviationsOfTheEffectsColumns) {
  DesignBench bench(2, {}, 1);
  bench.Effect({}, {0}).Case(1, {}, {1}).Case(2, {}, {3}).Case(1, {}, {5}, 2);
  const ModelParts parts(bench);
  EXPECT_EQ(parts.parameters.Centres()[0], 0);
  EXPECT_EQ(parts.parameters.Scales()[0], 1);
  EXPECT_DOUBLE_EQ(parts.parameters.Centres()[1], 3.5);
  EXPECT_DOUBLE_EQ(parts.parameters.Scales()[1], std::sqrt((2.5 * 2.5 + 0.5 * 0.5 + 2 * 1.5 * 1.5) / 4));
  EXPECT_EQ(parts.parameters.EffectScales()[1], parts.parameters.Scales()[1]);
}

TEST(ParameterList, AConstantCovariateHasScaleZeroAndItsConstantAsCentre) {
  for (const double constant : {0.0, 3.7, 0.1, 1e-9, 123456.789}) {
    DesignBench bench(2, {}, 1);
    bench.Effect({}, {0});
    for (const auto& c : tavo_test::kReferenceCases)
      bench.Case(c.response, {}, {constant}, c.weight / 3);
    const ModelParts parts(bench);
    EXPECT_EQ(parts.parameters.Scales()[1], 0) << constant;
    EXPECT_NEAR(parts.parameters.Centres()[1], constant, 1e-14 * constant);
  }
}

TEST(ParameterList, ACancelLeavesItIncomplete) {
  DesignBench bench(3, {3}, 2);
  AddThreeEffects(bench);
  bench.cancel.Cancel();
  EXPECT_LT(ModelParts(bench).parameters.BasicCount(), 6);
}

}  // namespace
