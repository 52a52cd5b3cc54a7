// Category look-up: once per case and categorical variable in each pass.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "host/data.h"

namespace {

using host::OBS;
using host::ObsVecMap;

constexpr std::size_t kCases = 1 << 16;

OBS Number(double value) {
  OBS cell{};
  cell.number = value;
  return cell;
}

OBS Text(int value) {
  OBS cell{};
  std::memset(cell.text, ' ', sizeof cell.text);
  const std::string digits = "c" + std::to_string(value);
  std::memcpy(cell.text, digits.data(), std::min(digits.size(), sizeof cell.text));
  return cell;
}

template <class MakeCell>
void LookUp(benchmark::State& state, std::uint16_t width, MakeCell make) {
  const int categories = static_cast<int>(state.range(0));
  std::mt19937 random(7);
  std::uniform_int_distribution<int> draw(0, categories - 1);
  std::vector<OBS> cases;
  for (std::size_t i = 0; i < kCases; ++i)
    cases.push_back(make(draw(random)));
  ObsVecMap map({width}, 1);
  for (const OBS& cell : cases)
    map.Insert(&cell)->number = 1;
  for (auto _ : state) {
    double found = 0;
    for (const OBS& cell : cases)
      found += map.Contains(&cell)->number;
    if (found != static_cast<double>(kCases)) state.SkipWithError("a category was not found");
    benchmark::DoNotOptimize(found);
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kCases));
}

void LookUpSmallWholeNumbers(benchmark::State& state) {
  LookUp(state, 0, [](int v) { return Number(v); });
}
void LookUpFractions(benchmark::State& state) {
  LookUp(state, 0, [](int v) { return Number(v + 0.25); });
}
void LookUpStrings(benchmark::State& state) {
  LookUp(state, 8, [](int v) { return Text(v); });
}

BENCHMARK(LookUpSmallWholeNumbers)->Arg(4)->Arg(1000);
BENCHMARK(LookUpFractions)->Arg(4)->Arg(1000);
BENCHMARK(LookUpStrings)->Arg(4)->Arg(1000);

}  // namespace
