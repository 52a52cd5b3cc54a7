// A model over a few records, from settings to fit, without a component around it.
#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "component/estimation/accum_stats.h"
#include "component/estimation/fit_progress.h"
#include "component/estimation/model.h"
#include "component/estimation/optimizer.h"
#include "component/frame/orv_cancel_info.h"
#include "component/input/comp_settings.h"
#include "component/input/model_effect.h"
#include "component/input/record_extractor.h"
#include "component/run/pattern_evaluator.h"
#include "component/run/pattern_tabulator.h"
#include "component/tabulation/factor_tables.h"
#include "memory_record_iterator.h"
#include "reference_fits.h"

namespace tavo_test {

/// Columns of a record: response, factors, covariates, weight.
class FitBench {
 public:
  FitBench(int categories, std::vector<int> factorSizes, int covariates, int reference = 0,
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
  FitBench(const FitBench&) = delete;
  FitBench& operator=(const FitBench&) = delete;

  /// `factors` and `covariates` are positions from 0; a covariate named twice is squared.
  FitBench& Effect(const std::vector<int>& factors, const std::vector<int>& covariates) {
    const int nFactors = static_cast<int>(fFactorSizes.size());
    tavo::OrvModelEffect effect(nFactors, fNCovariates, &fPredictors);
    for (const int f : factors)
      effect.AddFactor(1 + f, false);
    for (const int c : covariates)
      effect.AddCovariate(1 + nFactors + c);
    settings.AddEffect(effect);
    return *this;
  }
  FitBench& Case(int response, const std::vector<int>& levels, const std::vector<double>& x,
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

  /// Extractors, factor tables and the model's response categories. `outside` records lie outside the
  /// subpopulation.
  tavo::OrvStatus SetUp(int outside = 0, double outsideWeight = 0) {
    SetUpTables(std::make_unique<tavo::OrvFactorTables>(
        settings.Factors(), settings.FactorSizes(), settings.WeightVar(), settings.Dependent(), fCategories));
    for (const MCCommon::Record& record : records)
      tables->Update(record.GetAll());
    for (int i = 0; i < outside; ++i)
      tables->AddComplement(outsideWeight);
    return SetUpModel();
  }
  void SetUpTables(std::unique_ptr<tavo::OrvFactorTables> emptyTables) {
    patternExtractor.Set(settings.Dependent(), {}, settings.Covariates(), settings.WeightVar());
    dataExtractor.Set(settings.Dependent(), settings.Factors(), settings.Covariates(), settings.WeightVar());
    tables = std::move(emptyTables);
    GiveEffectsToTables();
  }
  tavo::OrvStatus SetUpModel() {
    model = std::make_unique<tavo::TavoModel>(settings, cancel);
    model->SetRecordLayout(patternExtractor, dataExtractor);
    return model->SetupDependent(*tables);
  }
  tavo::OrvStatus BuildParameters() { return model->BuildParameters(tables->AssignParameters()); }
  /// Adds each record to X'WX.
  bool AddAllRecords() {
    bool areAdded = true;
    for (const MCCommon::Record& record : records) {
      const std::vector<double> row = PatternRow(record);
      areAdded = model->AddPatternToXPrimeX(row.data(), ParametersOf(record)) && areAdded;
    }
    return areAdded;
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
  /// Everything up to the start values. False when a step failed.
  bool PrepareModel(int outside = 0, double outsideWeight = 0) {
    return !SetUp(outside, outsideWeight).IsError() && !BuildParameters().IsError() && AddAllRecords() &&
           !model->FindRedundancies().IsError() && !model->GetInitialEstimates(estimates).IsError();
  }

  /// Second pass and optimizer, after PrepareModel.
  template <class Stats = tavo::TavoAccumStats>
  void PrepareFit(tavo::EstimationMethod method = tavo::EstimationMethod::kFisherScoring,
                  int fisherIterations = 0) {
    evaluator.reset();  // it lets go of what is replaced here
    tabulator =
        std::make_unique<tavo::TavoPatternTabulator>(settings, patternExtractor, dataExtractor, cancel);
    Rows rows;
    for (const MCCommon::Record& record : records)
      rows.emplace_back(record.GetAll(), record.GetAll() + record.Size());
    MemoryRecordIterator stream(rows);
    tabulator->CreatePatterns(stream, *tables, *model);
    accumulator =
        std::make_unique<Stats>(settings, model->BasicNonRedundantCount(), model->CategoryCount(), estimates);
    evaluator = std::make_unique<tavo::TavoPatternEvaluator>(*tabulator, *accumulator, *model);
    optimizer = std::make_unique<tavo::TavoOptimizer>(settings, model->FitLayout(), *evaluator, estimates,
                                                      cancel, &history, settings.HistoryFrequency(), method,
                                                      fisherIterations);
    model->SetCaseCounts(tables->SampleSize(), tables->PopulationEstimate());
  }
  tavo::OrvStatus RunFit() { return optimizer->Estimate(); }
  /// Everything, and the estimates back in the model.
  bool Fit() {
    if (!PrepareModel()) return false;
    PrepareFit();
    return !RunFit().IsError() && !model->SetEstimates(estimates, optimizer->Hessian()).IsError();
  }
  /// The variances of the kept parameters on the scale of the data, from the inverse information.
  std::vector<double> VariancesOnDataScale() const {
    tavo::MCSymMatrix covariance(optimizer->Hessian());
    covariance.TransformParameterMatrix(model->NonRedundantCentres(), model->NonRedundantScales(),
                                        model->EquationCount(), model->InterceptCount());
    std::vector<double> variances;
    covariance.GetDiagonal(variances);
    return variances;
  }

  tavo::TavoCompSettings settings;
  tavo::OrvCancelInfo cancel;
  std::vector<MCCommon::Record> records;
  tavo::OrvRecordExtractor patternExtractor;
  tavo::OrvRecordExtractor dataExtractor;
  std::unique_ptr<tavo::OrvFactorTables> tables;
  std::unique_ptr<tavo::TavoModel> model;
  std::vector<double> estimates;
  std::unique_ptr<tavo::TavoPatternTabulator> tabulator;
  std::unique_ptr<tavo::TavoAccumStats> accumulator;
  std::unique_ptr<tavo::TavoPatternEvaluator> evaluator;
  std::unique_ptr<tavo::TavoOptimizer> optimizer;
  tavo::OrvIterationData history;

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
inline void AddBinaryReference(FitBench& bench) {
  bench.Effect({0}, {}).Effect({}, {0});
  for (const ReferenceCase& c : kReferenceCases)
    bench.Case(c.response, {c.level}, {c.x}, c.weight);
}
/// Three categories and the covariate alone.
inline void AddThreeReference(FitBench& bench) {
  bench.Effect({}, {0});
  for (const ReferenceCase& c : kReferenceCases)
    bench.Case(c.responseOfThree, {}, {c.x}, c.weight);
}

}  // namespace tavo_test
