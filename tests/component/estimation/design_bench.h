// A few records and what the first pass learns of them, for the parts of a model and for models.
#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "component/frame/orv_cancel_info.h"
#include "component/input/comp_settings.h"
#include "component/input/model_effect.h"
#include "component/input/record_extractor.h"
#include "component/numerics/record.h"
#include "component/tabulation/factor_tables.h"
#include "reference_fits.h"

namespace tavo_test {

/// Columns of a record: response, factors, covariates, weight.
class DesignBench {
 public:
  DesignBench(int categories, std::vector<int> factorSizes, int covariates, int reference = 0,
              bool intercept = true)
      : fCategories(categories), fFactorSizes(std::move(factorSizes)), fNCovariates(covariates) {
    const int factors = static_cast<int>(fFactorSizes.size());
    settings.SetDependent(0, categories, reference);
    for (int f = 0; f < factors; ++f)
      settings.AddFactor(1 + f, fFactorSizes[static_cast<std::size_t>(f)]);
    for (int c = 0; c < covariates; ++c)
      settings.AddCovariate(1 + factors + c);
    settings.SetWeightVar(1 + factors + covariates);
    settings.SetIntercept(intercept);
    for (int column = 1; column <= factors + covariates; ++column)
      fPredictors.push_back(column);
  }
  DesignBench(const DesignBench&) = delete;
  DesignBench& operator=(const DesignBench&) = delete;

  /// `factors` and `covariates` are positions from 0; a covariate named twice is squared.
  DesignBench& Effect(const std::vector<int>& factors, const std::vector<int>& covariates) {
    const int nFactors = static_cast<int>(fFactorSizes.size());
    tavo::OrvModelEffect effect(nFactors, fNCovariates, &fPredictors);
    for (const int f : factors)
      effect.AddFactor(1 + f, false);
    for (const int c : covariates)
      effect.AddCovariate(1 + nFactors + c);
    settings.AddEffect(effect);
    return *this;
  }
  DesignBench& Case(int response, const std::vector<int>& levels, const std::vector<double>& x,
                    double weight = 1) {
    records.push_back(MakeRecord(response, levels, x, weight));
    return *this;
  }
  static MCCommon::Record MakeRecord(int response, const std::vector<int>& levels,
                                     const std::vector<double>& x, double weight) {
    MCCommon::Record record(static_cast<int>(levels.size() + x.size()) + 2);
    int column = 0;
    record[column++] = response;
    for (const int level : levels)
      record[column++] = level;
    for (const double value : x)
      record[column++] = value;
    record[column] = weight;
    return record;
  }

  /// The extracted row that the model scores.
  std::vector<double> DataRow(const MCCommon::Record& record) const {
    std::vector<double> row(static_cast<std::size_t>(dataExtractor.Size()));
    dataExtractor.Extract(record.GetAll(), row.data());
    return row;
  }

  /// Extractors, and factor tables filled with the records.
  void FillTables() {
    SetUpTables(std::make_unique<tavo::OrvFactorTables>(
        settings.Factors(), settings.FactorSizes(), settings.WeightVar(), settings.Dependent(), fCategories));
    for (const MCCommon::Record& record : records)
      tables->Update(record.GetAll());
  }
  /// The same with tables of a test's own, which are given their effects and no record.
  void SetUpTables(std::unique_ptr<tavo::OrvFactorTables> emptyTables) {
    patternExtractor.Set(settings.Dependent(), {}, settings.Covariates(), settings.WeightVar());
    dataExtractor.Set(settings.Dependent(), settings.Factors(), settings.Covariates(), settings.WeightVar());
    tables = std::move(emptyTables);
    GiveEffectsToTables();
  }
  std::vector<double> PatternRow(const MCCommon::Record& record) const {
    std::vector<double> row(static_cast<std::size_t>(patternExtractor.Size()));
    patternExtractor.Extract(record.GetAll(), row.data());
    return row;
  }
  std::vector<int> ParametersOf(const MCCommon::Record& record) const {
    std::vector<int> parameters(static_cast<std::size_t>(tables->EffectCount()), -1);
    tables->ParameterIndices(DataRow(record).data(), parameters);
    return parameters;
  }

  tavo::TavoCompSettings settings;
  tavo::OrvCancelInfo cancel;
  std::vector<MCCommon::Record> records;
  tavo::OrvRecordExtractor patternExtractor;
  tavo::OrvRecordExtractor dataExtractor;
  std::unique_ptr<tavo::OrvFactorTables> tables;

 private:
  void GiveEffectsToTables() {
    std::vector<std::vector<int>> factors, covariates, powers;
    if (settings.HasIntercept()) {
      factors.emplace_back();
      covariates.emplace_back();
      powers.emplace_back();
    }
    for (const tavo::OrvModelEffect& effect : settings.Effects()) {
      std::vector<int> levels;
      effect.Factors(factors.emplace_back(), levels);
      effect.Covariates(covariates.emplace_back(), powers.emplace_back());
    }
    tables->SetEffects(factors, dataExtractor.FactorOffsets());
    tables->SetEffectCovariates(covariates, powers);
    tables->SetCovariates(settings.Covariates());
  }

  int fCategories;
  std::vector<int> fFactorSizes;
  int fNCovariates;
  std::vector<int> fPredictors;
};

/// The reference cases: intercept, one factor of 3 levels, one covariate.
inline void AddBinaryReference(DesignBench& bench) {
  bench.Effect({0}, {}).Effect({}, {0});
  for (const ReferenceCase& c : kReferenceCases)
    bench.Case(c.response, {c.level}, {c.x}, c.weight);
}
/// Three categories and the covariate alone.
inline void AddThreeReference(DesignBench& bench) {
  bench.Effect({}, {0});
  for (const ReferenceCase& c : kReferenceCases)
    bench.Case(c.responseOfThree, {}, {c.x}, c.weight);
}

}  // namespace tavo_test
