// An adapter over scripted cases.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "component/numerics/missing_value.h"
#include "module/input/proc_ds_multi_iter.h"
#include "module/input/reg_input_adapter.h"
#include "scripted_source.h"
#include "standalone/session/embedded_session.h"

namespace tavo {

/// A specification whose record holds the plan's columns and whatever a test adds.
class RecordSpecs final : public OrvPlanValidSpecs {
 public:
  int AddCategorical(int variable) { return CategoricalColumn(variable); }
  int AddContinuous(int variable) { return ContinuousColumn(variable); }
};

class AdapterTest : public ::testing::Test {
 protected:
  AdapterTest() : fScope(fSession) { fSession.BeginCommand(fCommand, fText); }
  ~AdapterTest() override { fSession.EndCommand(); }

  /// Adds a variable and answers its dictionary index.
  int Add(const std::string& name, int type = 0) {
    fSource.AddVariable(name, type);
    return static_cast<int>(fSource.ColumnCount()) - 1;
  }
  void DeclareMissing(int variable, const Cells& value) {
    host::VORN_MissingValues missing;
    missing.values.push_back(value);
    fSource.GetVariable(static_cast<unsigned>(variable))->SetMissingValues(missing);
  }
  /// One stage with a size or probability variable.
  void AddStage(bool isSize, int variable) {
    PlanStageSpec spec;
    spec.stage.stageNumber = static_cast<int>(fSpecs.Stages().size()) + 1;
    spec.stage.estimator = StageEstimator::kEqualWor;
    if (isSize) {
      spec.stage.SetPopulationSizeVariable(variable);
    } else {
      spec.stage.SetInclusionProbabilityVariable(variable);
    }
    fSpecs.AddStage(std::move(spec));
  }
  /// One stage with a matrix from the values of key variables to a size or probability.
  void AddMatrixStage(bool isSize, const std::vector<int>& variables,
                      const std::vector<std::pair<Cells, double>>& rows) {
    PlanStageSpec spec;
    spec.stage.stageNumber = static_cast<int>(fSpecs.Stages().size()) + 1;
    spec.stage.estimator = StageEstimator::kEqualWor;
    spec.stage.SetMatrix(isSize ? InclProbType::kPopSizeMatrix : InclProbType::kInclProbMatrix);
    spec.matrix = std::make_unique<StageMatrix>();
    spec.matrix->variables = variables;
    spec.matrix->values =
        std::make_unique<host::ObsVecMap>(host::ObsVecMap::MakeKeySpec(fSource, variables), 1);
    for (const auto& [key, value] : rows)
      spec.matrix->values->Insert(key.data())->number = value;
    fSpecs.AddStage(std::move(spec));
  }

  /// Makes the adapter and the iterator; fetches the first accepted case.
  void Start(bool includeUserMissing = false) {
    fReporter.emplace(fSource);
    auto cases = fSource.NewPass();
    fAdapter.emplace(fSpecs, fSource, *cases, *fReporter, includeUserMissing);
    fIterator.emplace(fSource, std::move(cases), *fAdapter);
  }
  /// All records that are left, as vectors.
  std::vector<std::vector<double>> ReadAll() {
    std::vector<std::vector<double>> all;
    while (fIterator->HasNext()) {
      const MCCommon::Record* record = fIterator->Next();
      all.emplace_back(record->GetAll(), record->GetAll() + fSpecs.RecordLength());
    }
    return all;
  }
  /// One column of all records that are left.
  std::vector<double> ReadColumn(int column) {
    std::vector<double> values;
    for (const std::vector<double>& record : ReadAll())
      values.push_back(record[static_cast<std::size_t>(column)]);
    return values;
  }
  const std::vector<standalone::Message>& Messages() { return fSession.CurrentOutput()->messages; }

  static constexpr double kMarker = MCCommonMath::MCMV::gMissingValue;

  standalone::CommandTokens fCommand;
  standalone::SourceText fText;
  standalone::Session fSession;
  standalone::SessionScope fScope;
  ScriptedSource fSource;
  RecordSpecs fSpecs;
  std::optional<OrvVariableReporter> fReporter;
  std::optional<OrvRegInputAdapter> fAdapter;
  std::optional<OrvProcDSMultiIter> fIterator;
};

}  // namespace tavo
