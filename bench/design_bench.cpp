// One unit of the design pass: a rank-one update of running cross-products.

#include <benchmark/benchmark.h>

#include <cmath>
#include <random>
#include <vector>

#include "component/design/variances.h"

namespace {

void AddUnits(benchmark::State& state) {
  const int variables = static_cast<int>(state.range(0));
  constexpr int kUnits = 1024;
  std::mt19937 random(3);
  std::normal_distribution<double> normal;
  std::vector<std::vector<double>> units(kUnits, std::vector<double>(static_cast<std::size_t>(variables)));
  for (auto& unit : units) {
    for (double& value : unit)
      value = normal(random);
  }
  for (auto _ : state) {
    tavo::OrvCovariances sums({variables}, {0}, false);
    for (const auto& unit : units)
      sums.AddUnit(unit);
    if (sums.Count(0) != kUnits) state.SkipWithError("a unit was lost");
    benchmark::DoNotOptimize(sums.Block(0)->data());
  }
  state.SetItemsProcessed(state.iterations() * kUnits);
}

BENCHMARK(AddUnits)->Arg(5)->Arg(20)->Arg(100);

}  // namespace
