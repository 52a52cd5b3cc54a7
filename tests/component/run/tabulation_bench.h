// The parts of a run up to the tabulators, for tests of these.
#pragma once

#include <memory>
#include <vector>

#include "component/estimation/accum_stats.h"
#include "component/estimation/model.h"
#include "component/frame/orv_cancel_info.h"
#include "component/input/record_extractor.h"
#include "component/run/pattern_tabulator.h"
#include "component/tabulation/factor_tables.h"
#include "survey.h"
#include "test_threads.h"

namespace tavo_test {

/// Runs the first pass and builds the model's structure; `CreatePatterns` is left to the test.
class TabulationBench {
 public:
  TabulationBench(const SurveySettings& settings, const Rows& rows)
      : iterator(rows),
        fSettings(settings.Get()),
        cancel(fSettings.StopProcessor()),
        tables(fSettings.Factors(), fSettings.FactorSizes(), kWeight, kY, fSettings.DependentCategories()),
        model(fSettings, tables, rowExtractor, dataExtractor, cancel) {
    rowExtractor.Set(kY, {}, fSettings.Covariates(), kWeight);
    dataExtractor.Set(kY, fSettings.Factors(), fSettings.Covariates(), kWeight);
    SetUpEffects();
    tabulator = std::make_unique<tavo::TavoPatternTabulator>(fSettings, rowExtractor, dataExtractor, cancel);
  }

  tavo::OrvStatus FillTables() { return tabulator->FillFactorTables(iterator, tables); }
  void SetUpModel() {
    model.SetupDependent();
    model.BuildParameters(tables.AssignParameters());
  }
  tavo::OrvStatus CreatePatterns() {
    iterator.Reset();
    return tabulator->CreatePatterns(iterator, tables, model);
  }
  /// Everything up to the evaluations.
  void Prepare() {
    FillTables();
    SetUpModel();
    CreatePatterns();
    tabulator->ReplayPatterns(model);
    model.FindRedundancies();
    model.GetInitialEstimates(estimates);
  }
  std::unique_ptr<tavo::TavoAccumStats> MakeAccumulator() const {
    return std::make_unique<tavo::TavoAccumStats>(fSettings, model.BasicNonRedundantCount(),
                                                  model.CategoryCount(), estimates);
  }

  MemoryRecordIterator iterator;

 private:
  void SetUpEffects() {
    const std::size_t first = fSettings.HasIntercept() ? 1 : 0;
    std::vector<std::vector<int>> factors(first);
    std::vector<std::vector<int>> covariates(first);
    std::vector<std::vector<int>> powers(first);
    std::vector<int> levels;
    for (const tavo::OrvModelEffect& effect : fSettings.Effects()) {
      effect.Factors(factors.emplace_back(), levels);
      effect.Covariates(covariates.emplace_back(), powers.emplace_back());
    }
    tables.SetEffects(factors, dataExtractor.FactorOffsets());
    tables.SetEffectCovariates(covariates, powers);
    tables.SetCovariates(fSettings.Covariates());
  }

  const tavo::TavoCompSettings& fSettings;

 public:
  tavo::OrvCancelInfo cancel;
  tavo::OrvRecordExtractor rowExtractor;
  tavo::OrvRecordExtractor dataExtractor;
  tavo::OrvFactorTables tables;
  tavo::TavoModel model;
  std::vector<double> estimates;
  std::unique_ptr<tavo::TavoPatternTabulator> tabulator;
};

}  // namespace tavo_test
