// One row of the likelihood: with scores and information, and without.

#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#include "estimation/accum_stats.h"

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
    sums.Reset(0, false);
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

void EvaluateFully(benchmark::State& state) {
  EvaluateRows(state, false);
}
void EvaluateLikelihood(benchmark::State& state) {
  EvaluateRows(state, true);
}

BENCHMARK(EvaluateFully)->Arg(2)->Arg(5);
BENCHMARK(EvaluateLikelihood)->Arg(2)->Arg(5);

}  // namespace
