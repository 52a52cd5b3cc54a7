// The tree of strata, clusters and units, of which only one path exists at a time.
#pragma once

#include <memory>
#include <vector>

#include "design/design_nodes.h"
#include "input/design_stage.h"

namespace tavo {

/// What went wrong at a level of the design.
enum class DesignFault : int {
  kNone = 0,
  kUnequalValue = 1,     // a value that must be constant within a unit isn't; index of the constant variable
  kMissingValue = 2,     // a unit without inclusion probability or population size; index of the constant variable
  kPopulationTooSmall = 3  // index of the node
};

/// Pushes the score vectors of the units, which arrive sorted by design key, through a chain of nodes from the outer
/// stage to the inner one, so that the design covariance of the totals comes out at the root. Memory is proportional to
/// the depth of the chain: a closed node is merged into its parent and cleared.
class SampleDesign {
 public:
  /// `variables` is the length of a unit's vector. False without a stage.
  bool BuildTree(const std::vector<DesignStage>& stages, int variables);
  /// Blocks of the covariance; refused (false) without nodes or with unequal lengths.
  bool SetMatrixBlocks(const std::vector<int>& sizes, const std::vector<int>& offsets);

  void AddUnit(const std::vector<double>& values);
  /// Checks and takes the values of the nodes that read them per unit (constant design variables, in order).
  bool SetStageValues(const std::vector<double>& values, DesignFault& fault, int& index);
  /// `level`: leading key variables that the next unit shares, -1 after the last one. Closes all deeper levels.
  bool CloseLevels(int level, DesignFault& fault, int& index);

  int StrataCount(int variable) const;
  int UnitCount(int variable) const;
  const DesignNode* Root() const { return fNodes.empty() ? nullptr : fNodes.front().get(); }
  int NodeCount() const { return static_cast<int>(fNodes.size()); }
  /// True when there are nodes that read their value per unit.
  bool ReadsStageValues() const { return !fValueNodes.empty(); }

 private:
  void AppendNode(std::unique_ptr<DesignNode> node, std::size_t keyVariables);
  void AppendClusters(const DesignStage& stage, int variables, std::size_t keyVariables);

  std::vector<std::unique_ptr<DesignNode>> fNodes;
  std::vector<int> fVarNodeIndex;           // by design key variable: the node that it opens
  ClustersNode* fpClusters = nullptr;       // takes the ultimate units
  std::vector<ClustersNode*> fValueNodes;   // nodes that read a value per unit
  std::vector<int> fClusNodeIndex;          // by node: value nodes above and at it
  int fClusDiffIndex = 0;                   // value nodes that remain open
};

}  // namespace tavo
