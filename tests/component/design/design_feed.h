// Short ways to write stages, and the walk over sorted keys that feeds a design tree.
#pragma once

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "component/design/sample_design.h"
#include "component/tabulation/orv_key.h"

namespace design_test {

using tavo::DesignFault;
using tavo::DesignStage;
using tavo::InclProbType;
using tavo::SampleDesign;
using tavo::StageEstimator;

/// A stage with so many strata and cluster variables, sampled with replacement. Variable numbers don't matter
/// here.
inline DesignStage WithReplacement(int strata, int clusters) {
  DesignStage stage;
  stage.strata.assign(static_cast<std::size_t>(strata), 0);
  stage.clusters.assign(static_cast<std::size_t>(clusters), 0);
  stage.estimator = StageEstimator::kWithReplacement;
  return stage;
}

/// Equal probabilities without replacement. `value` is a fraction or a population for the two value types,
/// and isn't used by the others.
inline DesignStage WithoutReplacement(int strata, int clusters, InclProbType type, double value = 0) {
  DesignStage stage = WithReplacement(strata, clusters);
  stage.estimator = StageEstimator::kEqualWor;
  if (type == InclProbType::kInclProbValue) stage.SetInclusionProbability(value);
  if (type == InclProbType::kPopSizeValue) stage.SetPopulationSize(value);
  if (type == InclProbType::kInclProbVariable) stage.SetInclusionProbabilityVariable(0);
  if (type == InclProbType::kPopSizeVariable) stage.SetPopulationSizeVariable(0);
  if (type == InclProbType::kInclProbMatrix || type == InclProbType::kPopSizeMatrix) stage.SetMatrix(type);
  return stage;
}

/// What shares a design key: one unit when the last stage has clusters, otherwise one or more.
struct Group {
  std::vector<int> key;
  std::vector<std::vector<double>> units;
  std::vector<double> constants;
};

struct Outcome {
  DesignFault fault = DesignFault::kNone;  // of the first level that couldn't be closed
  int index = -1;
  std::vector<int> unequal;  // constant variables, at each report
  std::size_t groups = 0;    // closed without a fault
};

/// A tree with one block over all variables.
inline SampleDesign Build(const std::vector<DesignStage>& stages, int variables) {
  SampleDesign design;
  design.BuildTree(stages, variables);
  design.SetMatrixBlocks({variables}, {0});
  return design;
}

inline Outcome Feed(SampleDesign& design, std::vector<Group> groups) {
  std::stable_sort(groups.begin(), groups.end(),
                   [](const Group& a, const Group& b) { return a.key < b.key; });
  Outcome outcome;
  for (std::size_t g = 0; g < groups.size(); ++g) {
    for (const auto& unit : groups[g].units)
      design.AddUnit(unit);
    DesignFault fault = DesignFault::kNone;
    int index = -1;
    if (design.ReadsStageValues() && !design.SetStageValues(groups[g].constants, fault, index)) {
      outcome.unequal.push_back(index);
    }
    int level = -1;
    if (g + 1 < groups.size())
      level = tavo::SharedPrefix(tavo::OrvKey(groups[g].key), tavo::OrvKey(groups[g + 1].key));
    if (!design.CloseLevels(level, outcome.fault, outcome.index)) return outcome;
    ++outcome.groups;
  }
  return outcome;
}

/// The packed covariance at the root.
inline const std::vector<double>& RootCovariance(const SampleDesign& design) {
  return *design.Root()->Covariances()->Block(0);
}

/// Total and variance of a variable at the root.
inline double RootTotal(const SampleDesign& design, int variable) {
  return design.Root()->Variances().Estimate(variable).total;
}
inline double RootVariance(const SampleDesign& design, int variable) {
  return design.Root()->Variances().Estimate(variable).variance;
}

}  // namespace design_test
