#include "component/tabulation/factor_tables.h"

#include <gtest/gtest.h>

#include <cmath>
#include <utility>

#include "component/numerics/missing_value.h"

namespace tavo {
namespace {

using MCCommonMath::MCMV;

// Record: weight, dependent (3 categories), factor A (3 levels), factor B (4 levels), covariates X and Z.
enum Column : int { kW, kY, kA, kB, kX, kZ };

OrvFactorTables Tables() {
  return OrvFactorTables({kA, kB}, {3, 4}, kW, kY, 3);
}

/// Extracted rows hold y, A, B; only A and B are read.
const std::vector<int> kPositions = {1, 2};

bool Add(OrvFactorTables& tables, const std::vector<double>& record) {
  return tables.Update(record.data());
}

std::vector<int> IndicesOf(OrvFactorTables& tables, double a, double b, bool expectedKnown = true) {
  std::vector<int> indices(static_cast<std::size_t>(tables.EffectCount()));
  const std::vector<double> row = {1, a, b};
  EXPECT_EQ(tables.ParameterIndices(row.data(), indices), expectedKnown);
  return indices;
}

TEST(OrvFactorTables, AnInteractionGetsOneParameterPerCombinationPresentInSortedOrder) {
  OrvFactorTables tables = Tables();
  ASSERT_TRUE(tables.SetEffects({{}, {kA, kB}}, kPositions));
  const std::vector<std::vector<int>> present = {{3, 1}, {1, 4}, {2, 2}, {1, 2}, {3, 3}, {2, 2}};
  for (const auto& levels : present) {
    ASSERT_TRUE(Add(tables, {1, 1, static_cast<double>(levels[0]), static_cast<double>(levels[1]), 0, 0}));
  }
  EXPECT_EQ(tables.AssignParameters(), 6);  // the intercept and five combinations
  EXPECT_EQ(tables.ParameterCount(1), 5);
  const std::vector<std::vector<int>> sorted = {{1, 2}, {1, 4}, {2, 2}, {3, 1}, {3, 3}};
  std::vector<int> levels;
  for (int parameter = 0; parameter < 5; ++parameter) {
    ASSERT_TRUE(tables.EffectLevels(levels, 1, parameter));
    EXPECT_EQ(levels, sorted[static_cast<std::size_t>(parameter)]);
    EXPECT_EQ(IndicesOf(tables, levels[0], levels[1]), (std::vector<int>{0, 1 + parameter}));
  }
}

TEST(OrvFactorTables, AnUnknownLevelAtScoringGivesMinusOneAndFalse) {
  OrvFactorTables tables = Tables();
  ASSERT_TRUE(tables.SetEffects({{}, {kA}, {kA, kB}}, kPositions));
  Add(tables, {1, 1, 1, 1, 0, 0});
  Add(tables, {1, 1, 3, 2, 0, 0});
  tables.AssignParameters();
  EXPECT_EQ(IndicesOf(tables, 3, 2), (std::vector<int>{0, 2, 4}));
  EXPECT_EQ(IndicesOf(tables, 2, 1, false), (std::vector<int>{0, -1, -1}));
  EXPECT_EQ(IndicesOf(tables, 1, 2, false), (std::vector<int>{0, 1, -1}));
  for (const double outside : {0.0, 4.0, 1e300, MCMV::gMissingValue, std::nan("")}) {
    EXPECT_EQ(IndicesOf(tables, outside, 1, false), (std::vector<int>{0, -1, -1})) << outside;
  }
}

TEST(OrvFactorTables, TotalWeightZeroGivesMissingMeansCentresZeroScalesOne) {
  OrvFactorTables tables = Tables();
  tables.SetEffects({{}, {}}, kPositions);
  tables.SetEffectCovariates({{}, {kX}}, {{}, {1}});
  tables.SetCovariates({kX, kZ});
  tables.AddComplement(3);
  EXPECT_EQ(tables.CovariateMeans(), (std::vector<double>{MCMV::gMissingValue, MCMV::gMissingValue}));
  EXPECT_EQ(tables.Centres(true), (std::vector<double>{0, 0}));
  EXPECT_EQ(tables.Scales(true), (std::vector<double>{1, 1}));
}

/// Three records with weights 1, 2, 3 and X 1, 2, 4: mean 17/6, mean square 57/6, variance 57/6 - (17/6)^2 =
/// 53/36.
void AddThree(OrvFactorTables& tables) {
  Add(tables, {1, 1, 1, 1, 1, 0.5});
  Add(tables, {2, 2, 2, 1, 2, 0.5});
  Add(tables, {3, 3, 2, 1, 4, 0.5});
}

TEST(OrvFactorTables, ALoneCovariateIsCentredAndScaledByItsDeviation) {
  OrvFactorTables tables = Tables();
  tables.SetEffects({{}, {}, {kA}}, kPositions);
  tables.SetEffectCovariates({{}, {kX}, {}}, {{}, {1}, {}});
  tables.SetCovariates({kX});
  AddThree(tables);
  EXPECT_DOUBLE_EQ(tables.CovariateMeans()[0], 17.0 / 6);
  EXPECT_EQ(tables.Centres(true)[0], 0);
  EXPECT_DOUBLE_EQ(tables.Centres(true)[1], 17.0 / 6);
  EXPECT_DOUBLE_EQ(tables.Scales(true)[1], std::sqrt(53.0) / 6);
  EXPECT_EQ(tables.Scales(true)[0], 1);
  EXPECT_EQ(tables.Scales(true)[2], 1);
}

TEST(OrvFactorTables, ACovariateThatOccursAloneAndWithAFactorIsNotCentred) {
  OrvFactorTables tables = Tables();
  tables.SetEffects({{}, {}, {kA}}, kPositions);
  tables.SetEffectCovariates({{}, {kX}, {kX}}, {{}, {1}, {1}});
  AddThree(tables);
  EXPECT_EQ(tables.Centres(true), (std::vector<double>{0, 0, 0}));
  EXPECT_DOUBLE_EQ(tables.Scales(true)[1], std::sqrt(57.0 / 6));
  EXPECT_DOUBLE_EQ(tables.Scales(true)[2], std::sqrt(57.0 / 6));
}

TEST(OrvFactorTables, ACovariateAndItsSquareAreTwoLoneEffects) {
  OrvFactorTables tables = Tables();
  tables.SetEffects({{}, {}, {}}, kPositions);
  tables.SetEffectCovariates({{}, {kX}, {kX}}, {{}, {1}, {2}});
  AddThree(tables);
  EXPECT_DOUBLE_EQ(tables.Centres(true)[2], 57.0 / 6);
  // Fourth powers 1, 16, 256 with weights 1, 2, 3: mean 801/6.
  EXPECT_DOUBLE_EQ(tables.Scales(true)[2], std::sqrt(801.0 / 6 - 57.0 / 6 * 57.0 / 6));
}

TEST(OrvFactorTables, AConstantCovariateHasScaleZero) {
  OrvFactorTables tables = Tables();
  tables.SetEffects({{}, {}}, kPositions);
  tables.SetEffectCovariates({{}, {kZ}}, {{}, {1}});
  AddThree(tables);
  EXPECT_DOUBLE_EQ(tables.Centres(true)[1], 0.5);
  EXPECT_EQ(tables.Scales(true)[1], 0);
}

/// Scale of a lone covariate that is 1, 2, 4 with weights 1, 2, 3, in other units.
double ScaleInUnits(double covariate, double weight, bool intercept = true) {
  OrvFactorTables tables = Tables();
  tables.SetEffects({{}, {}}, kPositions);
  tables.SetEffectCovariates({{}, {kX}}, {{}, {1}});
  for (const auto& [x, w] : {std::pair{1.0, 1.0}, {2.0, 2.0}, {4.0, 3.0}})
    Add(tables, {w * weight, 1, 1, 1, x * covariate, 0});
  return tables.Scales(intercept)[1] / covariate;
}

TEST(OrvFactorTables, SpreadsNeitherOverflowNorUnderflow) {
  for (const bool intercept : {true, false}) {
    const double scale = ScaleInUnits(1, 1, intercept);
    for (const int exponent : {-1000, -600, 600, 1000}) {
      EXPECT_EQ(ScaleInUnits(std::ldexp(1.0, exponent), 1, intercept), scale) << exponent;
      EXPECT_EQ(ScaleInUnits(1, std::ldexp(1.0, exponent), intercept), scale) << exponent;
      EXPECT_EQ(ScaleInUnits(std::ldexp(1.0, exponent), std::ldexp(1.0, -exponent), intercept), scale);
    }
  }
}

// Its deviation is that of one case in eight, (1/8)(7/8) of its square.
TEST(OrvFactorTables, OneHugeValueAmongOthersMakesTheSpread) {
  for (const std::size_t place : {0U, 3U, 7U}) {
    OrvFactorTables tables = Tables();
    tables.SetEffects({{}, {}}, kPositions);
    tables.SetEffectCovariates({{}, {kX}}, {{}, {1}});
    for (std::size_t i = 0; i < 8; ++i)
      Add(tables, {1, 1, 1, 1, i == place ? 1e200 : 0.5 * static_cast<double>(i), 0});
    EXPECT_NEAR(tables.Scales(true)[1] / 1e200, std::sqrt(7.0) / 8, 1e-15) << place;
  }
}

TEST(OrvFactorTables, TheUnitOfWeightsIsAPowerOfFourNearTheirMean) {
  const auto unit = [](double weight) {
    OrvFactorTables tables = Tables();
    Add(tables, {weight / 2, 1, 1, 1, 0, 0});
    Add(tables, {weight * 3 / 2, 1, 1, 1, 0, 0});
    tables.AddComplement(1e9);
    return tables.WeightUnit();
  };
  EXPECT_EQ(unit(1), 1);
  EXPECT_EQ(unit(3.9), 1);
  EXPECT_EQ(unit(4), 4);
  EXPECT_EQ(unit(100), 64);
  EXPECT_EQ(unit(0.6), 1);
  EXPECT_EQ(unit(0.3), 0.25);
  EXPECT_EQ(unit(0.01), 0x1p-6);
  EXPECT_EQ(unit(0x1p-1010), 0x1p-1010);
  EXPECT_EQ(unit(0x1p+1010), 0x1p+1010);
  EXPECT_EQ(Tables().WeightUnit(), 1) << "without weights";
}

TEST(OrvFactorTables, WithoutInterceptNothingIsCentred) {
  OrvFactorTables tables = Tables();
  tables.SetEffects({{}, {kA}}, kPositions);
  tables.SetEffectCovariates({{kX}, {}}, {{1}, {}});
  AddThree(tables);
  EXPECT_EQ(tables.Centres(false), (std::vector<double>{0, 0}));
  EXPECT_DOUBLE_EQ(tables.Scales(false)[0], std::sqrt(57.0 / 6));
  EXPECT_DOUBLE_EQ(tables.Scales(false)[1], 1 / std::sqrt(6.0));
}

TEST(OrvFactorTables, AMeanThatCancelsBecomesExactlyZero) {
  OrvFactorTables tables = Tables();
  tables.SetCovariates({kX});
  for (const double x : {0.1, 0.2, 0.3, -0.1, -0.2, -0.3})
    Add(tables, {1, 1, 1, 1, x, 0});
  EXPECT_EQ(tables.CovariateMeans()[0], 0.0);
}

TEST(OrvFactorTables, CountsAreWeightedSumsOfTheSubpopulation) {
  OrvFactorTables tables = Tables();
  AddThree(tables);
  tables.AddComplement(10);
  EXPECT_EQ(tables.FactorCounts(0), (std::vector<double>{1, 5, 0}));
  EXPECT_EQ(tables.CategoriesInUse(0), 2);
  EXPECT_EQ(tables.CategoriesInUse(1), 1);
  EXPECT_EQ(tables.CategoriesInUse(2), -1);
  ASSERT_NE(tables.DependentCounts(), nullptr);
  EXPECT_EQ((*tables.DependentCounts())[2], (OrvFactorCounts::CountPair{3, 1}));
  EXPECT_EQ(tables.TotalWeight(), 6);
  EXPECT_EQ(tables.ComplementWeight(), 10);
  EXPECT_EQ(tables.PopulationEstimate(), 16);
  EXPECT_EQ(tables.SampleSize(), 4);
}

TEST(OrvFactorTables, ACategoryOutOfRangeAddsNothingToTheTotals) {
  OrvFactorTables tables = Tables();
  EXPECT_FALSE(Add(tables, {1, 1, 4, 1, 0, 0}));
  EXPECT_FALSE(Add(tables, {1, 4, 1, 1, 0, 0}));
  EXPECT_EQ(tables.TotalWeight(), 0);
  EXPECT_EQ(tables.SampleSize(), 0);
}

TEST(OrvFactorTables, SumsOfManyWeightsKeepTheirDigits) {
  OrvFactorTables tables = Tables();
  for (int i = 0; i < 1000000; ++i)
    Add(tables, {0.1, 1, 1, 1, 0, 0});
  // A plain sum of a million tenths ends at 100000.00000133288.
  EXPECT_DOUBLE_EQ(tables.TotalWeight(), 100000.0);
  EXPECT_DOUBLE_EQ(tables.FactorCounts(0)[0], 100000.0);
  EXPECT_DOUBLE_EQ((*tables.DependentCounts())[0].first, 100000.0);
}

TEST(OrvFactorTables, LocalIndicesArePositionsWithinTheEffect) {
  OrvFactorTables tables = Tables();
  tables.SetEffects({{}, {kB}, {}, {kA}}, kPositions);
  Add(tables, {1, 1, 1, 4, 0, 0});
  Add(tables, {1, 1, 3, 2, 0, 0});
  EXPECT_EQ(tables.AssignParameters(), 6);
  EXPECT_EQ(tables.FactorEffects(), (std::vector<int>{1, 3}));
  EXPECT_EQ(tables.ParameterOffsets(), (std::vector<int>{0, 1, 3, 4}));
  std::vector<int> positions(2);
  const std::vector<double> row = {1, 3, 2};
  EXPECT_TRUE(tables.LocalParameterIndices(row.data(), positions));
  EXPECT_EQ(positions, (std::vector<int>{0, 1}));
}

TEST(OrvFactorTables, EffectsOutOfRangeHaveNoParameters) {
  OrvFactorTables tables = Tables();
  tables.SetEffects({{}, {kA}}, kPositions);
  Add(tables, {1, 1, 2, 1, 0, 0});
  tables.AssignParameters();
  EXPECT_EQ(tables.ParameterCount(-1), 0);
  EXPECT_EQ(tables.ParameterCount(2), 0);
  std::vector<int> levels{9};
  EXPECT_FALSE(tables.EffectLevels(levels, 1, 1));
  EXPECT_FALSE(tables.EffectLevels(levels, 2, 0));
  EXPECT_TRUE(tables.EffectLevels(levels, 0, 0));
  EXPECT_TRUE(levels.empty());
}

TEST(OrvFactorTables, AnEffectOverAnUnknownFactorIsRefused) {
  OrvFactorTables tables = Tables();
  EXPECT_FALSE(tables.SetEffects({{}, {kX}}, kPositions));
  EXPECT_FALSE(tables.SetEffects({{}, {kA}}, {1}));
  EXPECT_EQ(tables.EffectCount(), 0);
}

TEST(OrvEffectCombinations, ALargeGridIsNumberedAsASmallOne) {
  // 300 by 300 cells are hashed, 100 by 100 are a direct table. The same combinations get the same numbers.
  OrvEffectCombinations hashed({0, 1}, {300, 300});
  OrvEffectCombinations direct({0, 1}, {100, 100});
  for (int i = 0; i < 500; ++i) {
    const std::vector<int> levels = {i * 37 % 100, i * i % 100};
    hashed.Enter(levels);
    direct.Enter(levels);
  }
  ASSERT_EQ(hashed.AssignNumbers(), direct.AssignNumbers());
  std::vector<int> levels;
  std::vector<int> expected;
  for (int number = 0; number < direct.Count(); ++number) {
    direct.LevelsOf(number, expected);
    hashed.LevelsOf(number, levels);
    EXPECT_EQ(levels, expected);
    const std::vector<int> zeroBased = {levels[0] - 1, levels[1] - 1};
    EXPECT_EQ(hashed.NumberOf(zeroBased), number);
    EXPECT_EQ(direct.NumberOf(zeroBased), number);
  }
  EXPECT_EQ(hashed.NumberOf({299, 299}), -1);
  EXPECT_EQ(hashed.NumberOf({-1, 0}), -1);
  EXPECT_EQ(direct.NumberOf({-1, 99}), -1);
}

}  // namespace
}  // namespace tavo
