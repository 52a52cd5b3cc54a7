// Tests of effects and custom hypotheses against an independent package: R 4.2.2, survey 4.1-1. The cases and
// the script are those of tests/reference/02_clus_wr_factor (make.R): clusters with replacement, three school
// types, one covariate, 14 degrees of freedom.

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "effect_bench.h"
#include "source_folder.h"

namespace {

using effect_bench::Case;
using effect_bench::EffectTest;
using effect_bench::FittedModel;
using MCCommonMath::MCRectMatrix;
using Values = std::vector<double>;

/// dnum, pw, stype, swide, meals; categories in the order of their texts.
std::vector<Case> Schools() {
  std::ifstream file(std::string(TAVO_SOURCE_DIR) + "/tests/reference/02_clus_wr_factor/data.csv");
  std::map<std::string, int> types = {{"E", 1}, {"H", 2}, {"M", 3}};
  std::vector<Case> cases;
  std::string line;
  std::getline(file, line);
  while (std::getline(file, line)) {
    std::stringstream cells(line);
    std::string cluster, weight, type, wide, meals;
    std::getline(cells, cluster, ',');
    std::getline(cells, weight, ',');
    std::getline(cells, type, ',');
    std::getline(cells, wide, ',');
    std::getline(cells, meals, ',');
    Case c;
    c.cluster = std::stoi(cluster);
    c.weight = std::stod(weight);
    c.factors = {types.at(type)};
    c.response = wide == "No" ? 1 : 2;
    c.covariates = {std::stod(meals)};
    cases.push_back(c);
  }
  return cases;
}

constexpr double kRelative = 1e-8;  // of the reference, which has 15 digits

TEST(ReferenceTests, OfEffectsAgreeWithAnIndependentPackage) {
  const FittedModel model(Schools(), {{{0}, {}}, {{}, {0}}});
  ASSERT_TRUE(model.IsBuilt());
  struct {
    int effect;
    double df1, df2, wald, significance;
  } const expected[] = {{-2, 3, 12, 3.36787449662444, 0.0548019985818816},
                        {-1, 1, 14, 10.8182536857224, 0.00537753733420857},
                        {0, 2, 13, 3.83046156655833, 0.049221925330627},
                        {1, 1, 14, 1.28837248056652, 0.275408151349727}};
  for (const auto& row : expected) {
    const EffectTest test = model.Test(row.effect);
    EXPECT_EQ(test.overall.df1, row.df1);
    EXPECT_EQ(test.overall.df2, row.df2);
    EXPECT_NEAR(test.overall.wald, row.wald, kRelative * row.wald);
    EXPECT_NEAR(test.overall.significance, row.significance, kRelative * row.significance);
  }
}

TEST(ReferenceTests, OfEffectsHaveTheRecordedContrasts) {
  const FittedModel model(Schools(), {{{0}, {}}, {{}, {0}}});
  const EffectTest type = model.Test(0);
  EXPECT_EQ(type.columns, (std::vector<int>{2, 3}));
  EXPECT_EQ(type.L.AsVectorConst(), (Values{0, 1, 0, -1, 0, 0, 0, 1, -1, 0}));
  const EffectTest meals = model.Test(1);
  EXPECT_EQ(meals.columns, (std::vector<int>{5}));
  EXPECT_EQ(meals.L.AsVectorConst(), (Values{0, 0, 0, 0, 1}));
}

}  // namespace
