// The tree of strata, clusters and units, of which only one path exists at a time.
#pragma once

#include <memory>
#include <vector>

#include "component/design/design_nodes.h"
#include "component/design/psu_node.h"
#include "component/input/design_stage.h"

namespace tavo {

/// What went wrong at a level of the design.
enum class DesignFault : int {
  kNone = 0,
  /// A value that must be constant within a stratum isn't. The index is that of the constant design variable.
  kUnequalValue = 1,
  /// A stratum without inclusion probability or population size. Index of the constant design variable.
  kMissingValue = 2,
  /// A population below its sample. Index of the node, the root being 0.
  kPopulationTooSmall = 3
};

/// Whether two inclusion probabilities or population sizes of one stratum are different ones, by more than
/// two units of rounding: they may have been computed in two ways. `stored` is not missing.
bool DesignValuesDiffer(double stored, double value);

/// Pushes the score vectors of the units, which arrive sorted by design key, through a chain of nodes from
/// the outer stage to the inner one, so that the design covariance of the totals comes out at the root.
/// Memory is proportional to the depth of the chain: a closed node is merged into its parent and cleared.
///
/// Use: BuildTree, SetMatrixBlocks; then for each group of records with the same key AddUnit (once, or once
/// per record when records are the units), SetStageValues when ReadsStageValues, and CloseLevels. After
/// CloseLevels(-1) the root holds the result. With joint probabilities (NeedsJointProbabilities) each stratum
/// of the first stage starts with SetJointProbabilities, and each of its units with SetUnitIndex, before
/// AddUnit.
class SampleDesign {
 public:
  /// `variables`, not negative, is the length of a unit's vector. A stage with strata opens a strata node,
  /// its clusters a clusters node; when the last stage has no clusters, one more clusters node takes the
  /// records as its units. The units of a first stage with unequal probabilities without replacement get a
  /// PSU node. False, with no nodes, without a stage, and for unequal probabilities without replacement in a
  /// later stage or without cluster variables, which tell the units apart.
  bool BuildTree(const std::vector<DesignStage>& stages, int variables);
  /// Blocks of the covariance; refused (false) without nodes, with unequal lengths, with a block outside the
  /// vector, or when memory doesn't suffice.
  bool SetMatrixBlocks(const std::vector<int>& sizes, const std::vector<int>& offsets);

  /// Starts a first-stage stratum, and a unit in it; see PSUNode. False for what doesn't fit. For designs
  /// that need joint probabilities only.
  bool SetJointProbabilities(int unitCount, std::vector<double> matrix);
  bool SetUnitIndex(int unitNumber);
  /// An ultimate unit with its vector of `variables` values. The tree must have been built.
  void AddUnit(const std::vector<double>& values);
  /// Checks and takes the values of the nodes that read them per unit (`values`: constant design variables,
  /// in order). Nodes that were opened by this unit take them; the others keep theirs, and must find them
  /// equal within rounding. False for a difference, or for a value that comes only now.
  bool SetStageValues(const std::vector<double>& values, DesignFault& fault, int& index);
  /// `level`: leading key variables that the next unit shares, -1 after the last one. Closes all deeper
  /// levels. False on a fault; the tree can't be used any further then. A level beyond the key variables
  /// answers false without one.
  bool CloseLevels(int level, DesignFault& fault, int& index);

  /// After CloseLevels(-1): strata of the first stage with at least one value of the variable, 1 for a stage
  /// without strata; and units of the first stage. Units minus strata are the degrees of freedom of the
  /// design. Both are 0 without any value, and for a variable that isn't there.
  int StrataCount(int variable) const;
  int UnitCount(int variable) const;
  const DesignNode* Root() const { return fNodes.empty() ? nullptr : fNodes.front().get(); }
  int NodeCount() const { return static_cast<int>(fNodes.size()); }
  /// True when there are nodes that read their value per unit.
  bool ReadsStageValues() const { return !fValueNodes.empty(); }
  bool NeedsJointProbabilities() const { return fpPSUNode != nullptr; }

 private:
  /// A node that reads its value per unit, and the constant design variable that gives it.
  struct ValueNode {
    ClustersNode* node;
    int constantVariable;
  };

  void Reset();
  void AppendNode(std::unique_ptr<DesignNode> node, std::size_t keyVariables);
  void AppendUnits(const DesignStage& stage, bool isOnly, int constantVariable);
  void AppendClusters(const DesignStage& stage, std::size_t keyVariables, int constantVariable);
  bool BlocksFit(const std::vector<int>& sizes, const std::vector<int>& offsets) const;
  bool FinishBelow(int node, DesignFault& fault, int& index);
  TotalEstimate RootEstimate(int variable) const;

  int fNVariables = 0;
  std::vector<std::unique_ptr<DesignNode>> fNodes;  // outermost first
  std::vector<int> fVarNodeIndex;                   // by design key variable: the node that it opens
  ClustersNode* fpClusters = nullptr;               // takes the ultimate units; null when fpPSUNode does
  PSUNode* fpPSUNode = nullptr;                     // null without unequal probabilities
  std::vector<ValueNode> fValueNodes;
  std::vector<int> fClusNodeIndex;  // by node: value nodes above and at it
  int fClusDiffIndex = 0;           // value nodes that remain open
};

}  // namespace tavo
