// The tests of all effects of large models, beside the run that they belong to, and a custom test of many
// rows.

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "component/input/record_iterator.h"
#include "component/run/algorithm.h"
#include "component/run/output_stats.h"

namespace {

/// Columns: response, weight, stratum, cluster, factors. Numbers that only look random (Park and Miller
/// 1988).
class GeneratedCases final : public MCCommon::MultiPassRecordIter {
 public:
  GeneratedCases(int cases, std::vector<int> levels)
      : fNCases(cases), fLevels(std::move(levels)), fRecord(4 + static_cast<int>(fLevels.size())) {}

  bool HasNext() const override { return fNext < fNCases; }
  const MCCommon::Record* Next() override {
    double lean = 0;
    for (std::size_t f = 0; f < fLevels.size(); ++f) {
      const int level = Throw(fLevels[f]);
      fRecord[4 + static_cast<int>(f)] = level;
      lean += 0.2 * (level % 3 - 1);
    }
    fRecord[0] = Uniform() + 0.1 * lean > 0.5 ? 2 : 1;
    fRecord[1] = 1 + Throw(4);
    fRecord[2] = Throw(40);
    fRecord[3] = Throw(50);
    ++fNext;
    return &fRecord;
  }
  int IteratorStatus() const override { return HasNext() ? MCCommon::kAvailable : MCCommon::kExhausted; }
  int Reset() override {
    fNext = 0;
    fState = 20;
    return IteratorStatus();
  }

 private:
  double Uniform() {
    fState = fState * 48271 % 2147483647;
    return static_cast<double>(fState) / 2147483647.0;
  }
  int Throw(int sides) { return 1 + static_cast<int>(Uniform() * sides); }

  int fNCases;
  std::vector<int> fLevels;
  MCCommon::Record fRecord;
  int fNext = 0;
  std::int64_t fState = 20;
};

/// Main effects of all factors and the given crossings. Runs are kept, since each serves several
/// measurements.
struct Run {
  Run(int cases, const std::vector<int>& levels, const std::vector<std::pair<int, int>>& crossings) {
    const int count = static_cast<int>(levels.size());
    settings.SetDependent(0, 2, 0);
    settings.SetWeightVar(1);
    settings.AddDesignCategorical(2, tavo::DesignVariableKind::kStrata, 1);
    settings.AddDesignCategorical(3, tavo::DesignVariableKind::kCluster, 1);
    settings.SetStageEstimator(tavo::StageEstimator::kWithReplacement, 1);
    for (int f = 0; f < count; ++f) {
      predictors.push_back(4 + f);
      settings.AddFactor(4 + f, levels[static_cast<std::size_t>(f)]);
    }
    for (int f = 0; f < count; ++f)
      AddEffect({f});
    for (const auto& [a, b] : crossings)
      AddEffect({a, b});
    algorithm = std::make_unique<tavo::TavoAlgorithm>(settings);
    GeneratedCases iterator(cases, levels);
    const auto start = std::chrono::steady_clock::now();
    algorithm->BuildModel(iterator);
    seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    output = std::make_unique<tavo::TavoOutputStats>(*algorithm);
  }

  void AddEffect(const std::vector<int>& factors) {
    tavo::OrvModelEffect effect(static_cast<int>(predictors.size()), 0, &predictors);
    for (const int f : factors)
      effect.AddFactor(4 + f, false);
    settings.AddEffect(effect);
  }

  std::vector<int> predictors;
  tavo::TavoCompSettings settings;
  std::unique_ptr<tavo::TavoAlgorithm> algorithm;
  std::unique_ptr<tavo::TavoOutputStats> output;
  double seconds = 0;
};

/// 300 parameters on 100,000 cases; 1,000 parameters; 600 parameters with a crossing.
const Run& RunOf(std::int64_t design) {
  constexpr int kCases = 100000;
  using Levels = std::vector<int>;
  using Crossings = std::vector<std::pair<int, int>>;
  static std::map<std::int64_t, std::unique_ptr<Run>> runs;
  std::unique_ptr<Run>& run = runs[design];
  if (run != nullptr) return *run;
  if (design == 300) run = std::make_unique<Run>(kCases, Levels(6, 50), Crossings());
  if (design == 600) run = std::make_unique<Run>(kCases, Levels{25, 20, 50}, Crossings{{0, 1}});
  if (design == 1000) run = std::make_unique<Run>(kCases, Levels(10, 100), Crossings());
  return *run;
}

void TestAllEffects(benchmark::State& state) {
  const Run& run = RunOf(state.range(0));
  MCCommonMath::MCRectMatrix L;
  std::vector<int> columns;
  tavo::OrvTestStats overall;
  for (auto _ : state) {
    for (int effect = -2; effect < static_cast<int>(run.settings.Effects().size()); ++effect) {
      if (!run.output->TestEffect(effect, L, columns, overall).IsOK()) state.SkipWithError("a test failed");
    }
  }
  state.counters["parameters"] = run.algorithm->Model().BasicParameterCount();
  state.counters["run_seconds"] = run.seconds;
}

void TestCustomRows(benchmark::State& state) {
  const Run& run = RunOf(1000);
  tavo::OrvCustomTest test;
  for (int i = 0; i < static_cast<int>(state.range(0)); ++i) {
    tavo::TavoMatrixRow row(tavo::MatrixRowType::kEffectList, 10);
    std::vector<double> values(100, 0.0);
    values[static_cast<std::size_t>(i % 90)] = 1;
    values[static_cast<std::size_t>(i % 90 + 5)] = -1;
    row.AddEffect(i / 90, values);
    test.AddRow(row);
  }
  MCCommonMath::MCRectMatrix L;
  std::vector<tavo::OrvTestStats> rows;
  tavo::OrvTestStats overall;
  for (auto _ : state) {
    const tavo::OrvStatus status = run.output->TestCustom(
        test, tavo::TestType::AdjustedWaldF, tavo::PAdjustMethod::SequentialSidak, L, rows, overall);
    if (!status.IsOK()) state.SkipWithError("the test failed");
  }
}

BENCHMARK(TestAllEffects)->Arg(300)->Arg(600)->Arg(1000)->Unit(benchmark::kMillisecond);
BENCHMARK(TestCustomRows)->Arg(500)->Unit(benchmark::kMillisecond);

}  // namespace
