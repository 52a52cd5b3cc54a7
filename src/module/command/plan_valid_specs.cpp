#include "module/command/plan_valid_specs.h"

#include <algorithm>

#include "host/session.h"

namespace tavo {

namespace {

bool Contains(const std::vector<int>& columns, int column) {
  return std::find(columns.begin(), columns.end(), column) != columns.end();
}

}  // namespace

bool OrvPlanValidSpecs::IsSizeColumn(int column) const {
  return Contains(fSizeColumns, column);
}

bool OrvPlanValidSpecs::IsRateColumn(int column) const {
  return Contains(fRateColumns, column);
}

// The design comes first, stage by stage, so that its columns are the same whatever is analysed.
void OrvPlanValidSpecs::NumberColumns() {
  for (std::size_t k = 0; k < fStages.size(); ++k) {
    const DesignStage& stage = fStages[k].stage;
    for (const int variable : stage.strata)
      CategoricalColumn(variable);
    for (const int variable : stage.clusters)
      CategoricalColumn(variable);
    NumberInclusion(stage, static_cast<int>(k));
  }
  if (fWeightVariable >= 0) ContinuousColumn(fWeightVariable);
}

int OrvPlanValidSpecs::RecordIndex(std::map<int, int>& map, int variable) {
  const auto [entry, isNew] = map.emplace(variable, RecordLength());
  if (isNew) fRecordVariables.push_back(variable);
  return entry->second;
}

void OrvPlanValidSpecs::NumberInclusion(const DesignStage& stage, int position) {
  const auto matrixColumn = [&] {
    const auto [entry, isNew] = fMatrixMap.emplace(position, RecordLength());
    if (isNew) fRecordVariables.push_back(-1);
    return entry->second;
  };
  switch (stage.InclusionType()) {
    case InclProbType::kNone:
    case InclProbType::kInclProbValue:
    case InclProbType::kPopSizeValue:
      return;  // a constant takes no column
    case InclProbType::kInclProbVariable:
      return fRateColumns.push_back(ContinuousColumn(stage.InclusionProbabilityVariable()));
    case InclProbType::kPopSizeVariable:
      return fSizeColumns.push_back(ContinuousColumn(stage.PopulationSizeVariable()));
    case InclProbType::kInclProbMatrix:
      return fRateColumns.push_back(matrixColumn());
    case InclProbType::kPopSizeMatrix:
      return fSizeColumns.push_back(matrixColumn());
  }
}

void OrvPlanValidSpecs::FillPlanSettings(OrvPlanCompSettings& settings) const {
  for (std::size_t k = 0; k < fStages.size(); ++k) {
    const DesignStage& stage = fStages[k].stage;
    for (const int variable : stage.strata) {
      settings.AddDesignCategorical(fCategoricalMap.at(variable), DesignVariableKind::kStrata,
                                    stage.stageNumber);
    }
    for (const int variable : stage.clusters) {
      settings.AddDesignCategorical(fCategoricalMap.at(variable), DesignVariableKind::kCluster,
                                    stage.stageNumber);
    }
    FillInclusion(settings, stage, static_cast<int>(k));
    settings.SetStageEstimator(stage.estimator, stage.stageNumber);
  }
  if (fWeightVariable >= 0) settings.SetWeightVar(fContinuousMap.at(fWeightVariable));
  settings.SetSRSEstimator(fbSRSWithoutReplacement ? SRSEstimator::kWithoutReplacement
                                                   : SRSEstimator::kWithReplacement);
  settings.SetThreads(fNMaximumProcessors, &host::CurrentSession().Threads());
}

/// The adapter looks a case up in the stage's matrix and fills the column, so that the component takes a
/// matrix for a variable and has one way less to know.
void OrvPlanValidSpecs::FillInclusion(OrvPlanCompSettings& settings, const DesignStage& stage,
                                      int position) const {
  const auto addColumn = [&](int column, InclProbType type) {
    settings.AddDesignContinuous(column, type, stage.stageNumber);
  };
  switch (stage.InclusionType()) {
    case InclProbType::kNone:
      return;
    case InclProbType::kInclProbValue:
      settings.SetDesignConstant(stage.InclusionProbability(), InclProbType::kInclProbValue,
                                 stage.stageNumber);
      return;
    case InclProbType::kPopSizeValue:
      settings.SetDesignConstant(stage.PopulationSize(), InclProbType::kPopSizeValue, stage.stageNumber);
      return;
    case InclProbType::kInclProbVariable:
      return addColumn(fContinuousMap.at(stage.InclusionProbabilityVariable()),
                       InclProbType::kInclProbVariable);
    case InclProbType::kPopSizeVariable:
      return addColumn(fContinuousMap.at(stage.PopulationSizeVariable()), InclProbType::kPopSizeVariable);
    case InclProbType::kInclProbMatrix:
      return addColumn(fMatrixMap.at(position), InclProbType::kInclProbVariable);
    case InclProbType::kPopSizeMatrix:
      return addColumn(fMatrixMap.at(position), InclProbType::kPopSizeVariable);
  }
}

}  // namespace tavo
