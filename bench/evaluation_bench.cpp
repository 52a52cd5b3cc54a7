// One row of the likelihood: with scores and information, and without; alone, and in a block of its pattern.

#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#include "component/estimation/accum_stats.h"

namespace {

constexpr int kRows = 4096;
constexpr int kNonZeros = 8;
constexpr int kParameters = 15;

struct SparseRows {
  std::vector<std::vector<int>> indices;
  std::vector<std::vector<double>> values;
};

/// Rows like those of three factors, three covariates and an interaction: ascending indices, mostly ones.
SparseRows MakeRows() {
  std::mt19937 random(11);
  std::normal_distribution<double> normal;
  SparseRows rows;
  for (int r = 0; r < kRows; ++r) {
    std::vector<int> indices;
    std::vector<double> values;
    for (int e = 0; e < kNonZeros; ++e) {
      indices.push_back(2 * e - (e > 0 ? static_cast<int>(random() % 2) : 0));
      values.push_back(e < 4 ? 1.0 : normal(random));
    }
    rows.indices.push_back(indices);
    rows.values.push_back(values);
  }
  return rows;
}

void EvaluateRows(benchmark::State& state, bool likelihoodOnly) {
  const int categories = static_cast<int>(state.range(0));
  const SparseRows rows = MakeRows();
  const tavo::TavoCompSettings settings;
  const std::vector<double> estimates(static_cast<std::size_t>((categories - 1) * kParameters), 0.1);
  tavo::TavoAccumStats sums(settings, kParameters, categories, estimates);
  for (auto _ : state) {
    sums.Reset(tavo::EstimationMethod::kFisherScoring, false);
    for (std::size_t r = 0; r < rows.indices.size(); ++r) {
      const int category = static_cast<int>(r) % categories;
      if (sums.UpdateForRow(rows.indices[r], rows.values[r], category, 1.5, likelihoodOnly) != 0) {
        state.SkipWithError("a row was refused");
      }
    }
    benchmark::DoNotOptimize(sums.LogLikelihood());
  }
  state.SetItemsProcessed(state.iterations() * kRows);
}

/// The same row, as one of a pattern's: four constants, four columns.
void EvaluateBlocks(benchmark::State& state, bool likelihoodOnly) {
  const int categories = static_cast<int>(state.range(0));
  const SparseRows rows = MakeRows();
  tavo::TavoRowBlock block;
  for (int e = 0; e < 4; ++e)
    block.AddConstant(2 * e, 1.0);
  for (std::size_t e = 4; e < kNonZeros; ++e)
    block.AddColumn(static_cast<int>(2 * e), e);
  block.SetRowCount(tavo::TavoRowBlock::kMaxRows);
  for (std::size_t r = 0; r < block.RowCount(); ++r) {
    block.Categories()[r] = static_cast<double>(r % static_cast<std::size_t>(categories));
    block.Weights()[r] = 1.5;
    for (std::size_t v = 0; v < block.ColumnCount(); ++v)
      block.Column(v)[r] = rows.values[r][block.Source(v)];
  }
  const tavo::TavoCompSettings settings;
  const std::vector<double> estimates(static_cast<std::size_t>((categories - 1) * kParameters), 0.1);
  tavo::TavoAccumStats sums(settings, kParameters, categories, estimates);
  for (auto _ : state) {
    sums.Reset(tavo::EstimationMethod::kFisherScoring, false);
    for (std::size_t r = 0; r < kRows; r += block.RowCount()) {
      if (sums.UpdateForBlock(block, likelihoodOnly) != 0) state.SkipWithError("a block was refused");
    }
    benchmark::DoNotOptimize(sums.LogLikelihood());
  }
  state.SetItemsProcessed(state.iterations() * kRows);
}

void EvaluateFully(benchmark::State& state) {
  EvaluateRows(state, false);
}
void EvaluateLikelihood(benchmark::State& state) {
  EvaluateRows(state, true);
}

void EvaluateBlocksFully(benchmark::State& state) {
  EvaluateBlocks(state, false);
}
void EvaluateBlocksLikelihood(benchmark::State& state) {
  EvaluateBlocks(state, true);
}

BENCHMARK(EvaluateFully)->Arg(2)->Arg(5);
BENCHMARK(EvaluateBlocksFully)->Arg(2)->Arg(5);
BENCHMARK(EvaluateLikelihood)->Arg(2)->Arg(5);
BENCHMARK(EvaluateBlocksLikelihood)->Arg(2)->Arg(5);

}  // namespace
