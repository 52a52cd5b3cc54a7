// The key of a unit lists the codes of all strata and cluster variables, stage by stage; fVarNodeIndex tells
// which node each of them opens. For regions, schools in them and classes in a school it is 0, 1, 2: a strata
// node, the clusters node of the schools, that of the classes. When the next unit shares the first value
// alone, the school has changed: node 2 is closed into node 1, which stays open for the region's next school.
//
// Nodes whose fraction or population is a variable of the data learn it from the first unit below them; of
// these "value nodes" the first fClusDiffIndex are open, their values set and to be compared, the others are
// to be set.
#include "component/design/sample_design.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <exception>
#include <utility>

#include "component/numerics/machine_constants.h"
#include "component/numerics/missing_value.h"

namespace tavo {

using MCCommonMath::IsMissing;
using MCCommonMath::MCMV;
using MCCommonMath::MCPower;

namespace {

bool HasConstantVariable(InclProbType type) {
  return type == InclProbType::kInclProbVariable || type == InclProbType::kInclProbMatrix ||
         type == InclProbType::kPopSizeVariable || type == InclProbType::kPopSizeMatrix;
}

/// The clusters node of a stage. Whatever isn't sampling without replacement with a known fraction counts as
/// sampling with replacement.
std::unique_ptr<ClustersNode> MakeClusters(const DesignStage& stage, int variables) {
  const auto make = [variables](double value, bool isPopulation) {
    return std::make_unique<ClustersNode>(variables, value, isPopulation);
  };
  if (stage.estimator != StageEstimator::kEqualWor) return make(0.0, false);
  switch (stage.InclusionType()) {
    case InclProbType::kInclProbValue:
      return make(stage.InclusionProbability(), false);
    case InclProbType::kPopSizeValue:
      return make(stage.PopulationSize(), true);
    case InclProbType::kInclProbVariable:
    case InclProbType::kInclProbMatrix:
      return make(MCMV::gMissingValue, false);
    case InclProbType::kPopSizeVariable:
    case InclProbType::kPopSizeMatrix:
      return make(MCMV::gMissingValue, true);
    case InclProbType::kNone:
      break;
  }
  return make(0.0, false);
}

bool HasUnequalProbabilities(const DesignStage& stage) {
  return stage.estimator == StageEstimator::kUnequalWor;
}

/// Joint probabilities are known of first-stage units alone, and without cluster variables these are records,
/// which no file of pairs could name.
bool UnequalProbabilitiesFit(const std::vector<DesignStage>& stages) {
  const DesignStage& first = stages.front();
  if (HasUnequalProbabilities(first) && first.clusters.empty()) return false;
  return std::none_of(stages.begin() + 1, stages.end(), HasUnequalProbabilities);
}

bool Report(DesignFault kind, int where, DesignFault& fault, int& index) {
  fault = kind;
  index = where;
  return false;
}

}  // namespace

bool DesignValuesDiffer(double stored, double value) {
  return std::abs(stored - value) > 2.0 * stored * MCPower::gMachineEpsilon;
}

// ---- building ----

void SampleDesign::Reset() {
  fNodes.clear();
  fVarNodeIndex.clear();
  fpClusters = nullptr;
  fpPSUNode = nullptr;
  fValueNodes.clear();
  fClusNodeIndex.clear();
  fClusDiffIndex = 0;
}

bool SampleDesign::BuildTree(const std::vector<DesignStage>& stages, int variables) {
  Reset();
  assert(variables >= 0);
  if (stages.empty() || !UnequalProbabilitiesFit(stages)) return false;

  fNVariables = variables;
  int constantVariables = 0;
  for (const DesignStage& stage : stages) {
    const bool isLast = &stage == &stages.back();
    if (!stage.strata.empty()) AppendNode(std::make_unique<StrataNode>(variables), stage.strata.size());
    if (!stage.clusters.empty()) {
      AppendUnits(stage, stages.size() == 1, constantVariables);
    } else if (isLast) {
      AppendClusters(stage, 1, constantVariables);  // the records are the units
    }
    if (HasConstantVariable(stage.InclusionType())) ++constantVariables;
  }
  return true;
}

void SampleDesign::AppendNode(std::unique_ptr<DesignNode> node, std::size_t keyVariables) {
  fVarNodeIndex.insert(fVarNodeIndex.end(), keyVariables, NodeCount());
  fNodes.push_back(std::move(node));
  fClusNodeIndex.push_back(static_cast<int>(fValueNodes.size()));
}

void SampleDesign::AppendUnits(const DesignStage& stage, bool isOnly, int constantVariable) {
  if (!HasUnequalProbabilities(stage)) {
    AppendClusters(stage, stage.clusters.size(), constantVariable);
    return;
  }
  auto node = std::make_unique<PSUNode>(fNVariables, isOnly);
  fpPSUNode = node.get();
  AppendNode(std::move(node), stage.clusters.size());
}

void SampleDesign::AppendClusters(const DesignStage& stage, std::size_t keyVariables, int constantVariable) {
  // The innermost clusters node takes the ultimate units, and it is the last one appended.
  auto node = MakeClusters(stage, fNVariables);
  fpClusters = node.get();
  if (IsMissing(node->Value())) fValueNodes.push_back({fpClusters, constantVariable});
  AppendNode(std::move(node), keyVariables);
}

bool SampleDesign::BlocksFit(const std::vector<int>& sizes, const std::vector<int>& offsets) const {
  if (sizes.size() != offsets.size()) return false;
  for (std::size_t b = 0; b < sizes.size(); ++b) {
    if (sizes[b] < 0 || offsets[b] < 0 || offsets[b] > fNVariables - sizes[b]) return false;
  }
  return true;
}

bool SampleDesign::SetMatrixBlocks(const std::vector<int>& sizes, const std::vector<int>& offsets) {
  if (fNodes.empty() || !BlocksFit(sizes, offsets)) return false;
  try {
    // A node of units gets its children as units unless it is the last one, which gets ultimate units.
    for (const auto& node : fNodes) {
      const bool hasLowerStages = !node->IsStrata() && node != fNodes.back();
      node->SetBlocks(sizes, offsets, hasLowerStages);
    }
    return true;
  } catch (const std::exception&) {
    return false;
  }
}

// ---- feeding ----

void SampleDesign::AddUnit(const std::vector<double>& values) {
  assert(fpClusters != nullptr || fpPSUNode != nullptr);
  if (fpClusters != nullptr) {
    fpClusters->AddUnit(values);
  } else {
    fpPSUNode->AddUnit(values);
  }
}

bool SampleDesign::SetJointProbabilities(int unitCount, std::vector<double> matrix) {
  assert(NeedsJointProbabilities());
  return fpPSUNode->SetJointProbabilities(unitCount, std::move(matrix));
}

bool SampleDesign::SetUnitIndex(int unitNumber) {
  assert(NeedsJointProbabilities());
  return fpPSUNode->SetUnitIndex(unitNumber);
}

bool SampleDesign::SetStageValues(const std::vector<double>& values, DesignFault& fault, int& index) {
  fault = DesignFault::kNone;
  index = -1;
  const auto reportFirst = [&](int constantVariable) {  // the outermost stage that differs
    if (fault == DesignFault::kNone) Report(DesignFault::kUnequalValue, constantVariable, fault, index);
  };

  const int count = static_cast<int>(fValueNodes.size());
  for (int i = 0; i < count; ++i) {
    const auto [node, constantVariable] = fValueNodes[static_cast<std::size_t>(i)];
    const auto position = static_cast<std::size_t>(constantVariable);
    const double value = position < values.size() ? values[position] : MCMV::gMissingValue;
    // A value that comes late belongs to units that were fed without one; it is reported as a difference.
    if (i >= fClusDiffIndex) {
      node->SetValue(value);
    } else if (IsMissing(node->Value())) {
      node->SetValue(value);
      reportFirst(constantVariable);
    } else if (DesignValuesDiffer(node->Value(), value)) {
      reportFirst(constantVariable);
    }
  }
  fClusDiffIndex = count;
  return fault == DesignFault::kNone;
}

bool SampleDesign::CloseLevels(int level, DesignFault& fault, int& index) {
  fault = DesignFault::kNone;
  index = -1;
  if (level >= static_cast<int>(fVarNodeIndex.size()) || fNodes.empty()) return false;

  // The first key variable that changes opens the node that stays open for the next unit: its parent's path
  // is shared, and it takes what the levels below it have to give.
  const bool isEnd = level < 0;
  const int stays = isEnd ? 0 : fVarNodeIndex[static_cast<std::size_t>(level)];
  fClusDiffIndex = isEnd ? 0 : fClusNodeIndex[static_cast<std::size_t>(stays)];
  for (int i = static_cast<int>(fValueNodes.size()) - 1; i >= fClusDiffIndex; --i) {
    const auto [node, constantVariable] = fValueNodes[static_cast<std::size_t>(i)];
    if (IsMissing(node->Value())) return Report(DesignFault::kMissingValue, constantVariable, fault, index);
  }
  if (!FinishBelow(stays, fault, index)) return false;
  if (isEnd && !fNodes.front()->Finish()) return Report(DesignFault::kPopulationTooSmall, 0, fault, index);
  return true;
}

bool SampleDesign::FinishBelow(int node, DesignFault& fault, int& index) {
  for (int i = NodeCount() - 1; i > node; --i) {
    const auto child = static_cast<std::size_t>(i);
    if (!DesignNode::FinishUpward(*fNodes[child - 1], *fNodes[child])) {
      return Report(DesignFault::kPopulationTooSmall, i, fault, index);
    }
  }
  return true;
}

// ---- reading ----

TotalEstimate SampleDesign::RootEstimate(int variable) const {
  if (fNodes.empty() || variable < 0 || variable >= fNVariables) return {};
  return fNodes.front()->Variances().Estimate(variable);
}

int SampleDesign::StrataCount(int variable) const {
  return static_cast<int>(std::lround(RootEstimate(variable).strata));
}

int SampleDesign::UnitCount(int variable) const {
  return static_cast<int>(std::lround(RootEstimate(variable).units));
}

}  // namespace tavo
