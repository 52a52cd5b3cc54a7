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

void OrvPlanValidSpecs::ClearRecordMaps() {
  fCategoricalMap.clear();
  fContinuousMap.clear();
  fMatrixMap.clear();
  fSizeColumns.clear();
  fRateColumns.clear();
  fRecordVariables.clear();
}

int OrvPlanValidSpecs::RecordIndex(std::map<int, int>& map, int variable) {
  const auto [entry, isNew] = map.emplace(variable, RecordLength());
  if (isNew) fRecordVariables.push_back(variable);
  return entry->second;
}

void OrvPlanValidSpecs::FillPlanSettings(OrvPlanCompSettings& settings) {
  for (std::size_t k = 0; k < fStages.size(); ++k) {
    const DesignStage& stage = fStages[k].stage;
    for (const int variable : stage.strata) {
      settings.AddDesignCategorical(CategoricalColumn(variable), DesignVariableKind::kStrata,
                                    stage.stageNumber);
    }
    for (const int variable : stage.clusters) {
      settings.AddDesignCategorical(CategoricalColumn(variable), DesignVariableKind::kCluster,
                                    stage.stageNumber);
    }
    FillInclusion(settings, fStages[k], static_cast<int>(k));
    settings.SetStageEstimator(stage.estimator, stage.stageNumber);
  }
  if (fWeightVariable >= 0) settings.SetWeightVar(ContinuousColumn(fWeightVariable));
  settings.SetSRSEstimator(fbSRSWithoutReplacement ? SRSEstimator::kWithoutReplacement
                                                   : SRSEstimator::kWithReplacement);
  settings.SetThreads(fNMaximumProcessors, &host::CurrentSession().Threads());
  fpStopProcessor = host::CurrentSession().MakeStopProcessor();
  settings.SetStopProcessor(fpStopProcessor.get());
}

/// A matrix fills a column of its own, which the component takes for one of a size or probability variable.
void OrvPlanValidSpecs::FillInclusion(OrvPlanCompSettings& settings, const PlanStageSpec& spec,
                                      int position) {
  const DesignStage& stage = spec.stage;
  const auto addColumn = [&](int column, InclProbType type) {
    (type == InclProbType::kPopSizeVariable ? fSizeColumns : fRateColumns).push_back(column);
    settings.AddDesignContinuous(column, type, stage.stageNumber);
  };
  const auto matrixColumn = [&] {
    const auto [entry, isNew] = fMatrixMap.emplace(position, RecordLength());
    if (isNew) fRecordVariables.push_back(-1);
    return entry->second;
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
      return addColumn(ContinuousColumn(stage.InclusionProbabilityVariable()),
                       InclProbType::kInclProbVariable);
    case InclProbType::kPopSizeVariable:
      return addColumn(ContinuousColumn(stage.PopulationSizeVariable()), InclProbType::kPopSizeVariable);
    case InclProbType::kInclProbMatrix:
      return addColumn(matrixColumn(), InclProbType::kInclProbVariable);
    case InclProbType::kPopSizeMatrix:
      return addColumn(matrixColumn(), InclProbType::kPopSizeVariable);
  }
}

}  // namespace tavo
