// Every setter guards one rule: a record column has one role. What only shows when all has been said, such as
// a stage that is missing, is found by the checks at the end.
#include "component/input/comp_settings.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace tavo {

namespace {

bool IsProbability(double value) {
  return value > 0 && value <= 1;
}
bool IsPositiveWhole(double value) {
  return value >= 1 && std::isfinite(value) && value == std::trunc(value);
}

bool Assign(bool accepted, auto& field, auto value) {
  if (accepted) field = value;
  return accepted;
}

OrvStatus StageError(std::uint32_t code, const DesignStage& stage) {
  return OrvStatus::Error(code).SetInteger(1, stage.stageNumber);
}

/// What keeps a stage that samples without replacement and with equal probabilities from being used.
OrvStatus CheckInclusion(const DesignStage& stage) {
  switch (stage.InclusionType()) {
    case InclProbType::kNone:
      return StageError(StatusCode::kEqualWorWithoutProb, stage);
    case InclProbType::kInclProbValue:
      return IsProbability(stage.InclusionProbability())
                 ? OrvStatus()
                 : StageError(StatusCode::kInclusionRateOutOfRange, stage);
    case InclProbType::kPopSizeValue:
      return IsPositiveWhole(stage.PopulationSize()) ? OrvStatus()
                                                     : StageError(StatusCode::kPopulationSizeNotWhole, stage);
    default:
      return OrvStatus();
  }
}

/// Clusters are what a next stage is drawn from, so only the last stage may sample records. With replacement
/// nothing else need be known of a stage.
OrvStatus CheckStage(const DesignStage& stage, bool isFirst, bool isLast) {
  if (!isLast && stage.clusters.empty()) return StageError(StatusCode::kStageWithoutClusters, stage);
  switch (stage.estimator) {
    case StageEstimator::kNotDefined:
      return StageError(StatusCode::kStageWithoutEstimator, stage);
    case StageEstimator::kUnequalWor:
      if (!isFirst) return StageError(StatusCode::kUnequalWorNotFirst, stage);
      // Joint probabilities belong to pairs of units, and only cluster variables tell units apart.
      return stage.clusters.empty() ? StageError(StatusCode::kStageWithoutClusters, stage) : OrvStatus();
    case StageEstimator::kEqualWor:
      return CheckInclusion(stage);
    case StageEstimator::kWithReplacement:
      return OrvStatus();
  }
  return StageError(StatusCode::kStageWithoutEstimator, stage);
}

/// The record column that gives a stage's inclusion probabilities or population sizes, or -1.
int ConstantColumn(const DesignStage& stage) {
  switch (stage.InclusionType()) {
    case InclProbType::kInclProbVariable:
      return stage.InclusionProbabilityVariable();
    case InclProbType::kPopSizeVariable:
      return stage.PopulationSizeVariable();
    default:
      return -1;
  }
}

}  // namespace

// ---- the sample design ----

VariableRole OrvPlanCompSettings::RoleOf(int column) const {
  const auto index = static_cast<std::size_t>(column);
  return column >= 0 && index < fVariableType.size() ? fVariableType[index] : VariableRole::kNone;
}

void OrvPlanCompSettings::SetRole(int column, VariableRole role) {
  const auto index = static_cast<std::size_t>(column);
  if (index >= fVariableType.size()) fVariableType.resize(index + 1, VariableRole::kNone);
  fVariableType[index] = role;
}

// Stages may be described in any order and with gaps; CheckPlan finds the gaps when all has been said.
DesignStage& OrvPlanCompSettings::FindOrCreateStage(int stageNumber) {
  const auto notBelow = std::find_if(fStages.begin(), fStages.end(), [stageNumber](const DesignStage& stage) {
    return stage.stageNumber >= stageNumber;
  });
  if (notBelow != fStages.end() && notBelow->stageNumber == stageNumber) return *notBelow;
  DesignStage stage;
  stage.stageNumber = stageNumber;
  return *fStages.insert(notBelow, stage);
}

// From the stages anew each time: a value that replaces a variable of its stage takes that column out.
void OrvPlanCompSettings::RebuildDesignVars() {
  fCatDesignVars.clear();
  fContDesignVars.clear();
  for (const DesignStage& stage : fStages) {
    fCatDesignVars.insert(fCatDesignVars.end(), stage.strata.begin(), stage.strata.end());
    fCatDesignVars.insert(fCatDesignVars.end(), stage.clusters.begin(), stage.clusters.end());
    if (const int column = ConstantColumn(stage); column >= 0) fContDesignVars.push_back(column);
  }
}

// The subpopulation may be a stratum, so its column may already have the role of a design category.
bool OrvPlanCompSettings::AddDesignCategorical(int column, DesignVariableKind kind, int stageNumber) {
  if (column < 0 || RoleOf(column) > VariableRole::kDesignCategory) return false;
  if (std::find(fCatDesignVars.begin(), fCatDesignVars.end(), column) != fCatDesignVars.end()) return false;
  DesignStage& stage = FindOrCreateStage(stageNumber);
  (kind == DesignVariableKind::kStrata ? stage.strata : stage.clusters).push_back(column);
  SetRole(column, VariableRole::kDesignCategory);
  RebuildDesignVars();
  return true;
}

bool OrvPlanCompSettings::AddDesignContinuous(int column, InclProbType type, int stageNumber) {
  if (!IsFree(column)) return false;
  if (type == InclProbType::kInclProbVariable || type == InclProbType::kInclProbMatrix) {
    FindOrCreateStage(stageNumber).SetInclusionProbabilityVariable(column);
    SetRole(column, VariableRole::kInclusionProbability);
  } else if (type == InclProbType::kPopSizeVariable || type == InclProbType::kPopSizeMatrix) {
    FindOrCreateStage(stageNumber).SetPopulationSizeVariable(column);
    SetRole(column, VariableRole::kPopulationSize);
  } else {
    return false;
  }
  RebuildDesignVars();
  return true;
}

bool OrvPlanCompSettings::SetDesignConstant(double value, InclProbType type, int stageNumber) {
  if (type == InclProbType::kInclProbValue && IsProbability(value)) {
    FindOrCreateStage(stageNumber).SetInclusionProbability(value);
  } else if (type == InclProbType::kPopSizeValue && IsPositiveWhole(value)) {
    FindOrCreateStage(stageNumber).SetPopulationSize(value);
  } else {
    return false;
  }
  RebuildDesignVars();
  return true;
}

bool OrvPlanCompSettings::SetStageEstimator(StageEstimator estimator, int stageNumber) {
  if (estimator == StageEstimator::kUnequalWor && stageNumber != 1) return false;
  FindOrCreateStage(stageNumber).estimator = estimator;
  return true;
}

bool OrvPlanCompSettings::SetWeightVar(int column) {
  if (!IsFree(column)) return false;
  fWeightVar = column;
  SetRole(column, VariableRole::kWeight);
  return true;
}

void OrvPlanCompSettings::SetThreads(int count, host::TaskThreadService* service) {
  fNThreads = count;
  fpThreadService = service;
}

bool OrvPlanCompSettings::HasClustersInLastStage() const {
  return !fStages.empty() && !fStages.back().clusters.empty();
}

bool OrvPlanCompSettings::IsSingleStageOfEqualProbability() const {
  return fStages.size() == 1 && fStages.front().estimator == StageEstimator::kEqualWor;
}

bool OrvPlanCompSettings::IsFirstStageUnequalProbability() const {
  return !fStages.empty() && fStages.front().estimator == StageEstimator::kUnequalWor;
}

InclProbType OrvPlanCompSettings::InclusionTypeOfStage(int stageNumber) const {
  for (const DesignStage& stage : fStages) {
    if (stage.stageNumber == stageNumber) return stage.InclusionType();
  }
  return InclProbType::kNone;
}

bool OrvPlanCompSettings::ConstantVariableMap(std::vector<int>& stages, std::vector<int>& positions) const {
  stages.clear();
  positions.clear();
  // A sampling fraction belongs to the stratum from which the units of its stage were drawn, so its key ends
  // with the strata of the stage.
  std::size_t keyVariables = 0;
  for (const DesignStage& stage : fStages) {
    keyVariables += stage.strata.size();
    if (ConstantColumn(stage) >= 0) {
      stages.push_back(stage.stageNumber);
      positions.push_back(static_cast<int>(keyVariables));
    }
    keyVariables += stage.clusters.size();
  }
  return !fContDesignVars.empty();
}

OrvStatus OrvPlanCompSettings::CheckPlan() const {
  if (fStages.empty()) return OrvStatus::Error(StatusCode::kNoStage);
  if (fStages.front().stageNumber != 1) return OrvStatus::Error(StatusCode::kFirstStageNotOne);
  if (fStages.back().stageNumber != StageCount()) return OrvStatus::Error(StatusCode::kStageNumbersBroken);
  if (fWeightVar < 0) return OrvStatus::Error(StatusCode::kNoWeight);
  for (const DesignStage& stage : fStages) {
    const OrvStatus status = CheckStage(stage, &stage == &fStages.front(), &stage == &fStages.back());
    if (status.IsError()) return status;
  }
  return OrvStatus();
}

// ---- the model ----

OrvStatus TavoCompSettings::Validate() const {
  const OrvStatus plan = CheckPlan();
  if (plan.IsError()) return plan;
  if (fDependent < 0) return OrvStatus::Error(StatusCode::kNoDependent);
  if (!fbIntercept && fEffects.empty()) return OrvStatus::Error(StatusCode::kEmptyModel);
  return OrvStatus();
}

bool TavoCompSettings::SetDependent(int column, int categories, int reference) {
  if (fDependent >= 0 || !IsFree(column) || categories < 2) return false;
  if (reference < -1 || reference > categories) return false;
  fDependent = column;
  fDependentCategories = categories;
  fDependentReference = reference;
  SetRole(column, VariableRole::kDependent);
  return true;
}

// Takes a column that is a stratum or a cluster as well, but not one of the model: the model would be
// constant in it.
bool TavoCompSettings::SetSubpop(int column, int code) {
  if (column < 0 || RoleOf(column) > VariableRole::kDesignCategory || code < 1) return false;
  fSubpopVar = column;
  fSubpopValue = code;
  SetRole(column, VariableRole::kDesignCategory);
  return true;
}

int TavoCompSettings::AddFactor(int column, int categories) {
  if (!IsFree(column) || categories < 1) return -1;
  fFactors.push_back(column);
  fFactorSizes.push_back(categories);
  SetRole(column, VariableRole::kFactor);
  return static_cast<int>(fFactors.size()) - 1;
}

int TavoCompSettings::AddCovariate(int column) {
  if (!IsFree(column)) return -1;
  fCovariates.push_back(column);
  SetRole(column, VariableRole::kCovariate);
  return static_cast<int>(fCovariates.size()) - 1;
}

bool TavoCompSettings::AddEffect(const OrvModelEffect& effect) {
  fEffects.push_back(effect);
  return true;
}

double TavoCompSettings::DegreesOfFreedom(int units, int strata) const {
  return fDegreesOfFreedom > 0.0 ? fDegreesOfFreedom : units - strata;
}

void TavoCompSettings::SetConfidence(double p) {
  Assign(p >= 0 && p < 1, fConfidence, p);
}
bool TavoCompSettings::SetLogLikCriterion(double value) {
  return Assign(value >= 0, fLogLikCriterion, value);
}
bool TavoCompSettings::SetParamCriterion(double value) {
  return Assign(value >= 0, fParamCriterion, value);
}
bool TavoCompSettings::SetMaxIterations(int value) {
  return Assign(value >= 0, fMaxIterations, value);
}
bool TavoCompSettings::SetStartingIteration(int value) {
  return Assign(value >= 0, fStartingIteration, value);
}
bool TavoCompSettings::SetMaxStepHalving(int value) {
  return Assign(value >= 1, fMaxStepHalving, value);
}
bool TavoCompSettings::SetHistoryFrequency(int value) {
  return Assign(value >= 1, fHistoryFrequency, value);
}

}  // namespace tavo
