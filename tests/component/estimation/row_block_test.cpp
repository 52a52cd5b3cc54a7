// Blocks of rows against the same rows one by one.
#include "component/estimation/row_block.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "component/estimation/accum_stats.h"
#include "fit_bench.h"

namespace {

using MCCommonMath::MCSymMatrix;
using tavo::OrvSparseVector;
using tavo::TavoAccumStats;
using tavo::TavoCompSettings;
using tavo::TavoRowBlock;
using tavo_test::FitBench;

constexpr int kParameters = 6;

/// Entries 0 and 3 constant, 1 and 5 by row; 2 and 4 are absent. Categories go round.
TavoRowBlock MakeBlock(std::size_t rows, int categories, double spread = 1) {
  TavoRowBlock block;
  block.AddConstant(0, 1.0);
  block.AddConstant(3, -0.7);
  block.AddColumn(1, 0);
  block.AddColumn(5, 1);
  block.SetRowCount(rows);
  std::mt19937 random(5);
  std::normal_distribution<double> normal;
  for (std::size_t r = 0; r < rows; ++r) {
    block.Column(0)[r] = spread * normal(random);
    block.Column(1)[r] = spread * normal(random);
    block.Categories()[r] = static_cast<double>(r % static_cast<std::size_t>(categories));
    block.Weights()[r] = 0.5 + static_cast<double>(random() % 100);
  }
  return block;
}

std::vector<double> MakeEstimates(int categories) {
  std::vector<double> estimates;
  for (int i = 0; i < (categories - 1) * kParameters; ++i)
    estimates.push_back(0.3 * (i % 5) - 0.55);
  return estimates;
}

/// `act` gets each row's entries and number.
template <class Act>
void ForEachRow(const TavoRowBlock& block, Act&& act) {
  std::vector<int> indices;
  std::vector<double> values;
  for (std::size_t r = 0; r < block.RowCount(); ++r) {
    block.ExtractRow(r, indices, values);
    act(indices, values, r);
  }
}

void ExpectClose(double actual, double expected, double scale) {
  EXPECT_NEAR(actual, expected, 1e-13 * std::max(scale, std::abs(expected)));
}

TEST(RowBlock, ExtractsRowsInOrderOfTheirIndices) {
  const TavoRowBlock block = MakeBlock(3, 2);
  EXPECT_EQ(block.MaxIndexPlusOne(), 6);
  ForEachRow(block, [&](const std::vector<int>& indices, const std::vector<double>& values, std::size_t r) {
    EXPECT_EQ(indices, (std::vector<int>{0, 1, 3, 5}));
    EXPECT_EQ(values, (std::vector<double>{1.0, block.Column(0)[r], -0.7, block.Column(1)[r]}));
  });
}

TEST(RowBlock, SumsWhatItsRowsSum) {
  for (const std::size_t rows : {std::size_t{1}, std::size_t{7}, TavoRowBlock::kMaxRows}) {
    const TavoRowBlock block = MakeBlock(rows, 2);
    const std::vector<double> parameters = MakeEstimates(2);
    std::vector<double> predictors(rows);
    std::vector<double> scores(kParameters);
    std::vector<double> expectedScores(kParameters);
    MCSymMatrix outer(kParameters);
    MCSymMatrix expectedOuter(kParameters);
    block.LinearPredictors(parameters.data(), predictors.data());
    block.AddScaledTo(scores.data(), block.Weights());
    block.AddOuterTo(outer, block.Weights());
    ForEachRow(block, [&](const std::vector<int>& indices, const std::vector<double>& values, std::size_t r) {
      const OrvSparseVector row(indices, values);
      ExpectClose(predictors[r], row.LinearPredictor(parameters, 0), 1);
      row.AddScaledTo(expectedScores, 0, block.Weights()[r]);
      row.AddOuterTo(expectedOuter, block.Weights()[r]);
    });
    for (std::size_t k = 0; k < kParameters; ++k)
      ExpectClose(scores[k], expectedScores[k], 1e3);
    for (std::size_t e = 0; e < outer.AsVector().size(); ++e)
      ExpectClose(outer.AsVector()[e], expectedOuter.AsVector()[e], 1e3);
  }
}

TEST(RowBlock, ForgetsThePatternBefore) {
  TavoRowBlock block = MakeBlock(3, 2);
  block.Clear();
  EXPECT_EQ(block.RowCount(), 0u);
  EXPECT_EQ(block.ColumnCount(), 0u);
  EXPECT_EQ(block.MaxIndexPlusOne(), 0);
}

/// A block evaluated as a whole and row by row.
struct TwoWays {
  TwoWays(const TavoRowBlock& block, int categories, const std::vector<double>& estimates,
          bool likelihoodOnly = false)
      : whole(settings, kParameters, categories, estimates),
        rows(settings, kParameters, categories, estimates) {
    whole.Reset(tavo::EstimationMethod::kFisherScoring, true);
    rows.Reset(tavo::EstimationMethod::kFisherScoring, true);
    EXPECT_EQ(whole.UpdateForBlock(block, likelihoodOnly), 0);
    ForEachRow(block, [&](const std::vector<int>& indices, const std::vector<double>& values, std::size_t r) {
      EXPECT_EQ(rows.UpdateForRow(indices, values, static_cast<int>(block.Categories()[r]),
                                  block.Weights()[r], likelihoodOnly),
                0);
    });
  }

  void ExpectSameSums() const {
    ExpectClose(whole.LogLikelihood(), rows.LogLikelihood(), 0);
    for (std::size_t k = 0; k < rows.Scores().size(); ++k)
      ExpectClose(whole.Scores()[k], rows.Scores()[k], 1e3);
    MCSymMatrix a;
    MCSymMatrix b;
    whole.GetHessian(a);
    rows.GetHessian(b);
    for (std::size_t e = 0; e < b.AsVectorConst().size(); ++e)
      ExpectClose(a.AsVectorConst()[e], b.AsVectorConst()[e], 1e3);
  }
  void ExpectSameCounts() const {
    int valid[2];
    int invalid[2];
    double weight[2];
    whole.GetCounts(valid[0], invalid[0], weight[0]);
    rows.GetCounts(valid[1], invalid[1], weight[1]);
    EXPECT_EQ(valid[0], valid[1]);
    EXPECT_EQ(invalid[0], invalid[1]);
    ExpectClose(weight[0], weight[1], 0);
  }
  void ExpectSameExtremes() const {
    double least[2];
    double most[2];
    double computed[2];
    whole.GetObservedProbabilities(least[0], most[0], computed[0]);
    rows.GetObservedProbabilities(least[1], most[1], computed[1]);
    ExpectClose(least[0], least[1], 0);
    ExpectClose(most[0], most[1], 0);
    ExpectClose(computed[0], computed[1], 0);
  }
  void ExpectAllSame() const {
    ExpectSameSums();
    ExpectSameCounts();
    ExpectSameExtremes();
  }

  TavoCompSettings settings;
  TavoAccumStats whole;
  TavoAccumStats rows;
};

TEST(UpdateForBlock, AddsWhatItsRowsAdd) {
  for (const int categories : {2, 3, 5}) {
    const std::vector<double> estimates = MakeEstimates(categories);
    for (const std::size_t rows : {1, 2, 7, 8, 9, 255, 256}) {
      TwoWays(MakeBlock(rows, categories), categories, estimates).ExpectAllSame();
    }
  }
}

TEST(UpdateForBlock, WithTheLikelihoodOnlyLeavesTheOtherSumsAtZero) {
  const std::vector<double> estimates = MakeEstimates(3);
  const TwoWays sums(MakeBlock(100, 3), 3, estimates, true);
  sums.ExpectAllSame();
  EXPECT_EQ(sums.whole.Scores(), std::vector<double>(2 * kParameters));
}

TEST(UpdateForBlock, KeepsItsDigitsFarOutWhereOneCategoryIsCertain) {
  // Predictors up to thousands: exponentials overflow and vanish, probabilities reach 0 and 1.
  for (const int categories : {2, 4}) {
    const std::vector<double> estimates = MakeEstimates(categories);
    for (const double spread : {30.0, 300.0, 3000.0}) {
      TwoWays(MakeBlock(200, categories, spread), categories, estimates).ExpectAllSame();
    }
  }
}

TEST(UpdateForBlock, AtZeroAllCategoriesAreEquallyProbable) {
  const std::vector<double> estimates(2 * kParameters, 0.0);
  const TwoWays sums(MakeBlock(64, 3), 3, estimates);
  sums.ExpectAllSame();
  int valid = 0;
  int invalid = 0;
  double weight = 0;
  sums.whole.GetCounts(valid, invalid, weight);
  ExpectClose(sums.whole.LogLikelihood(), -weight * std::log(3.0), 0);
}

TEST(UpdateForBlock, ARowWithoutFinitePredictorCountsAsItDoesAlone) {
  const std::vector<double> estimates = MakeEstimates(3);
  for (const double wild : {std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
                            std::numeric_limits<double>::quiet_NaN()}) {
    TavoRowBlock block = MakeBlock(20, 3);
    block.Column(0)[11] = wild;
    const TwoWays sums(block, 3, estimates, true);
    sums.ExpectSameCounts();
    const double whole = sums.whole.LogLikelihood();
    const double rows = sums.rows.LogLikelihood();
    EXPECT_TRUE(whole == rows || (std::isnan(whole) && std::isnan(rows))) << whole << " " << rows;
  }
}

TEST(UpdateForBlock, RefusesABlockWithARowThatWouldBeRefused) {
  const std::vector<double> estimates = MakeEstimates(3);
  const TavoCompSettings settings;
  const auto answer = [&](const TavoRowBlock& block, int parameters) {
    TavoAccumStats sums(settings, parameters, 3, estimates);
    const int refused = sums.UpdateForBlock(block, false);
    EXPECT_TRUE(refused == 0 || sums.LogLikelihood() == 0);
    return refused;
  };
  EXPECT_EQ(answer(MakeBlock(9, 3), kParameters), 0);
  EXPECT_EQ(answer(MakeBlock(9, 3), kParameters - 1), -1) << "an index outside";
  EXPECT_EQ(answer(MakeBlock(9, 4), kParameters), -1) << "a category outside";
  for (const double weight : {0.0, -1.0, std::numeric_limits<double>::quiet_NaN()}) {
    TavoRowBlock block = MakeBlock(9, 3);
    block.Weights()[4] = weight;
    EXPECT_EQ(answer(block, kParameters), -1) << "weight " << weight;
  }
}

TEST(UpdateForBlock, WithoutParametersAllCategoriesAreEquallyProbable) {
  TavoRowBlock block;
  block.SetRowCount(5);
  std::fill(block.Weights(), block.Weights() + 5, 2.0);
  std::fill(block.Categories(), block.Categories() + 5, 1.0);
  const TavoCompSettings settings;
  const std::vector<double> none;
  TavoAccumStats sums(settings, 0, 4, none);
  EXPECT_EQ(sums.UpdateForBlock(block, false), 0);
  ExpectClose(sums.LogLikelihood(), -10 * std::log(4.0), 0);
}

/// Pattern rows of `count` records from `first` on, end to end.
std::vector<double> PatternRows(const FitBench& bench, std::size_t first, std::size_t count) {
  std::vector<double> rows;
  for (std::size_t r = first; r < first + count; ++r) {
    const std::vector<double> row = bench.PatternRow(bench.records[r]);
    rows.insert(rows.end(), row.begin(), row.end());
  }
  return rows;
}

/// The model's block of one pattern against its rows.
void ExpectBlockOfRows(FitBench& bench, std::size_t first, std::size_t count) {
  ASSERT_TRUE(bench.PrepareModel());
  const std::vector<double> patternRows = PatternRows(bench, first, count);
  TavoRowBlock block;
  bench.model->StartBlock(bench.ParametersOf(bench.records[first]), tavo::BlockColumns::kNonRedundant, block);
  bench.model->FillBlock(patternRows.data(), patternRows.size() / count, count, block);
  ASSERT_EQ(block.RowCount(), count);
  ForEachRow(block, [&](std::vector<int> indices, std::vector<double> values, std::size_t r) {
    for (std::size_t e = values.size(); e-- > 0;) {
      if (values[e] != 0 || values.size() == 1) continue;
      values.erase(values.begin() + static_cast<std::ptrdiff_t>(e));
      indices.erase(indices.begin() + static_cast<std::ptrdiff_t>(e));
    }
    const MCCommon::Record& record = bench.records[first + r];
    std::vector<int> expectedIndices;
    std::vector<double> expectedValues;
    bench.model->BuildSparseRow(bench.PatternRow(record).data(), bench.ParametersOf(record), expectedIndices,
                                expectedValues);
    EXPECT_EQ(indices, expectedIndices);
    EXPECT_EQ(values, expectedValues) << "to the last bit";
    EXPECT_EQ(block.Categories()[r], bench.PatternRow(record)[0]);
    EXPECT_EQ(block.Weights()[r], bench.PatternRow(record).back());
  });
}

TEST(FillBlock, HoldsTheDesignRowsOfItsPattern) {
  FitBench bench(2, {3}, 2);
  bench.Effect({0}, {}).Effect({}, {0}).Effect({}, {0, 0, 1}).Effect({0}, {1});
  for (int i = 0; i < 12; ++i)
    bench.Case(1 + i % 2, {1 + i / 4}, {i * i * 0.3 - 2, 1.0 / (i + 1)}, 1 + i);
  ExpectBlockOfRows(bench, 4, 4);
}

TEST(FillBlock, LeavesColumnsUncentredWithoutAnIntercept) {
  FitBench bench(2, {}, 1, 0, false);
  bench.Effect({}, {0}).Case(1, {}, {0}).Case(2, {}, {1}).Case(1, {}, {2}).Case(2, {}, {7});
  ExpectBlockOfRows(bench, 0, 4);
}

TEST(FillBlock, OfAConstantCovariateBesideAnInterceptHasNoColumnForIt) {
  FitBench bench(2, {}, 2);
  bench.Effect({}, {0}).Effect({}, {1});
  bench.Case(1, {}, {3, 0}).Case(2, {}, {3, 1}).Case(1, {}, {3, 2}).Case(2, {}, {3, 7});
  ExpectBlockOfRows(bench, 0, 4);
}

/// A factor of three levels, with four cases in each, and slopes.
void AddThreePatterns(FitBench& bench) {
  bench.Effect({0}, {}).Effect({}, {0}).Effect({0}, {1});
  for (int i = 0; i < 12; ++i)
    bench.Case(1 + i % 2, {1 + i / 4}, {i * i * 0.3 - 2, 1.0 / (i + 1)}, 1 + i);
  bench.SetUp();
  bench.BuildParameters();
}

TEST(AddBlockToXPrimeX, AddsWhatTheRowsAddAloneRedundantColumnsIncluded) {
  FitBench byRow(2, {3}, 2);
  FitBench byBlock(2, {3}, 2);
  AddThreePatterns(byRow);
  AddThreePatterns(byBlock);
  ASSERT_TRUE(byRow.AddAllRecords());
  TavoRowBlock block;
  for (std::size_t first = 0; first < 12; first += 4) {
    const std::vector<double> rows = PatternRows(byBlock, first, 4);
    byBlock.model->StartBlock(byBlock.ParametersOf(byBlock.records[first]), tavo::BlockColumns::kAll, block);
    byBlock.model->FillBlock(rows.data(), rows.size() / 4, 4, block);
    EXPECT_TRUE(byBlock.model->AddBlockToXPrimeX(block));
  }
  const std::vector<double>& expected = byRow.model->XPrimeX()->AsVectorConst();
  const std::vector<double>& actual = byBlock.model->XPrimeX()->AsVectorConst();
  ASSERT_EQ(actual.size(), expected.size());
  for (std::size_t e = 0; e < expected.size(); ++e)
    ExpectClose(actual[e], expected[e], 1e2);
  EXPECT_FALSE(byBlock.model->FindRedundancies().IsError());
}

TEST(AddBlockToXPrimeX, RefusesColumnsThatTheModelDoesNotHave) {
  FitBench built(2, {3}, 2);
  AddThreePatterns(built);
  TavoRowBlock block = MakeBlock(3, 2);
  block.AddConstant(50, 1.0);
  EXPECT_FALSE(built.model->AddBlockToXPrimeX(block));
}

}  // namespace
