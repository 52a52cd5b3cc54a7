// What every survey procedure keeps of a checked command: the plan's stages, and which record column holds
// which variable.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "component/input/comp_settings.h"
#include "component/input/design_stage.h"
#include "host/data.h"

namespace tavo {

/// The values of a stage's matrix: key variables (dictionary indices) and the table from their values to a
/// size or probability (one value cell).
struct StageMatrix {
  std::vector<int> variables;
  std::unique_ptr<host::ObsVecMap> values;
};

/// A stage of the plan, resolved against the dictionary: indices in `stage` are dictionary indices.
struct PlanStageSpec {
  DesignStage stage;
  std::string label;
  std::unique_ptr<StageMatrix> matrix;  // null unless the stage takes its values from a matrix
};

/// Filled while a command is parsed, final once its record columns are numbered.
class OrvPlanValidSpecs {
 public:
  OrvPlanValidSpecs() = default;
  virtual ~OrvPlanValidSpecs() = default;
  OrvPlanValidSpecs(const OrvPlanValidSpecs&) = delete;
  OrvPlanValidSpecs& operator=(const OrvPlanValidSpecs&) = delete;

  void SetWeightVariable(int index) {
    if (index >= 0) fWeightVariable = index;
  }
  int WeightVariable() const { return fWeightVariable; }  // dictionary index, -1 when the plan names none
  void AddStage(PlanStageSpec stage) { fStages.push_back(std::move(stage)); }
  const std::vector<PlanStageSpec>& Stages() const { return fStages; }
  void SetPlanFileName(std::string name) { fPlanFileName = std::move(name); }
  const std::string& PlanFileName() const { return fPlanFileName; }
  void SetSRSWithoutReplacement(bool without) { fbSRSWithoutReplacement = without; }
  bool IsSRSWithoutReplacement() const { return fbSRSWithoutReplacement; }
  void SetMaximumProcessors(int count) { fNMaximumProcessors = count; }
  int MaximumProcessors() const { return fNMaximumProcessors; }

  /// Numbers the columns of the records; the last step of parsing. The base numbers those of the plan.
  virtual void NumberColumns();
  /// Dictionary index to record column; of matrices: stage position to record column.
  const std::map<int, int>& CategoricalRecordMap() const { return fCategoricalMap; }
  const std::map<int, int>& ContinuousRecordMap() const { return fContinuousMap; }
  const std::map<int, int>& MatrixRecordMap() const { return fMatrixMap; }
  /// Record columns that hold population sizes, and inclusion probabilities.
  bool IsSizeColumn(int column) const;
  bool IsRateColumn(int column) const;
  /// Dictionary index of each record column, -1 for a column that a matrix fills.
  const std::vector<int>& RecordVariables() const { return fRecordVariables; }
  int RecordLength() const { return static_cast<int>(fRecordVariables.size()); }

 protected:
  /// The record column of a variable; a new one is appended when it has none yet.
  int CategoricalColumn(int variable) { return RecordIndex(fCategoricalMap, variable); }
  int ContinuousColumn(int variable) { return RecordIndex(fContinuousMap, variable); }
  /// Gives the stages, weight, SRS estimator and threads to the settings. Call NumberColumns before.
  void FillPlanSettings(OrvPlanCompSettings& settings) const;

 private:
  int RecordIndex(std::map<int, int>& map, int variable);
  void NumberInclusion(const DesignStage& stage, int position);
  void FillInclusion(OrvPlanCompSettings& settings, const DesignStage& stage, int position) const;

  int fWeightVariable = -1;
  std::vector<PlanStageSpec> fStages;
  std::string fPlanFileName;
  bool fbSRSWithoutReplacement = true;
  int fNMaximumProcessors = 1;
  std::map<int, int> fCategoricalMap;
  std::map<int, int> fContinuousMap;
  std::map<int, int> fMatrixMap;
  std::vector<int> fSizeColumns;
  std::vector<int> fRateColumns;
  std::vector<int> fRecordVariables;
};

}  // namespace tavo
