// A model over a few records, from settings to fit, without a component around it.
#pragma once

#include <memory>
#include <vector>

#include "component/estimation/accum_stats.h"
#include "component/estimation/fit_progress.h"
#include "component/estimation/model.h"
#include "component/estimation/optimizer.h"
#include "component/run/pattern_evaluator.h"
#include "component/run/pattern_tabulator.h"
#include "design_bench.h"
#include "memory_record_iterator.h"

namespace tavo_test {

/// The steps of a fit, one call each; the parts are public, so that a test can look and interfere between
/// them.
class FitBench : public DesignBench {
 public:
  using DesignBench::DesignBench;
  FitBench& Effect(const std::vector<int>& factors, const std::vector<int>& covariates) {
    DesignBench::Effect(factors, covariates);
    return *this;
  }
  FitBench& Case(int response, const std::vector<int>& levels, const std::vector<double>& x,
                 double weight = 1) {
    DesignBench::Case(response, levels, x, weight);
    return *this;
  }

  /// Extractors, factor tables and the model's response categories. `outside` records lie outside the
  /// subpopulation.
  tavo::OrvStatus SetUp(int outside = 0, double outsideWeight = 0) {
    FillTables();
    for (int i = 0; i < outside; ++i)
      tables->AddComplement(outsideWeight);
    return SetUpModel();
  }
  tavo::OrvStatus SetUpModel() {
    model = std::make_unique<tavo::TavoModel>(settings, *tables, patternExtractor, dataExtractor, cancel);
    return model->SetupDependent();
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

  std::unique_ptr<tavo::TavoModel> model;
  std::vector<double> estimates;
  std::unique_ptr<tavo::TavoPatternTabulator> tabulator;
  std::unique_ptr<tavo::TavoAccumStats> accumulator;
  std::unique_ptr<tavo::TavoPatternEvaluator> evaluator;
  std::unique_ptr<tavo::TavoOptimizer> optimizer;
  tavo::OrvIterationData history;
};

}  // namespace tavo_test
