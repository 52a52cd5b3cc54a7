// One level of the chain of design nodes.
//
// The classes tell how a level treats what arrives from below. The variance of a nested design follows from
// the stage formulas by recursion (Raj 1966): every closed child is one unit, or one stratum, of its parent.
//
// An example: regions (strata), schools in them (clusters), pupils in a school (units). The chain is strata
// node, clusters node of the schools, clusters node of the pupils. When a school ends, the lowest node turns
// its pupils into one total with a variance and merges it as a unit of the school level; when the region
// ends, that level does the same and becomes one stratum of the root.
#pragma once

#include <memory>
#include <vector>

#include "component/design/variances.h"

namespace tavo {

/// Accumulates what arrives from below until it is closed and merged into its parent.
class DesignNode {
 public:
  /// `variables`: length of a unit's vector.
  explicit DesignNode(int variables) : fVariances(variables) {}
  virtual ~DesignNode() = default;
  DesignNode(const DesignNode&) = delete;
  DesignNode& operator=(const DesignNode&) = delete;

  /// Creates the covariance sums; without this call there are variances only. Throws std::bad_alloc when they
  /// are too large for memory. `hasLowerStages`: see OrvCovariances.
  void SetBlocks(const std::vector<int>& sizes, const std::vector<int>& offsets, bool hasLowerStages);
  virtual bool IsStrata() const = 0;
  /// Turns sums into totals and variances, which Variances() and Covariances() then hold. False when the
  /// population is smaller than the sample.
  virtual bool Finish() = 0;
  /// A closed child of this node arrives: finished sums of variances, and of covariances.
  virtual void MergeVariances(const OrvVariances& child) = 0;
  virtual void MergeCovariances(const OrvCovariances& child) = 0;
  /// Everything 0, ready for the next unit above.
  void Clear();

  const OrvVariances& Variances() const { return fVariances; }
  /// Units minus strata; a clusters node is one stratum. After Finish, as all estimates.
  double DegreesOfFreedom(int variable) const { return fVariances.Estimate(variable).DegreesOfFreedom(); }
  /// Null before SetBlocks.
  const OrvCovariances* Covariances() const { return fpCovariances.get(); }

  /// Closes a child: finishes it, merges it into the parent and clears it. False when it couldn't be
  /// finished; the parent is unchanged then.
  static bool FinishUpward(DesignNode& parent, DesignNode& child);

 protected:
  OrvVariances fVariances;
  std::unique_ptr<OrvCovariances> fpCovariances;
};

/// Variances of independent strata add up.
class StrataNode final : public DesignNode {
 public:
  using DesignNode::DesignNode;
  bool IsStrata() const override { return true; }
  bool Finish() override { return true; }
  void MergeVariances(const OrvVariances& child) override { fVariances.MergeAsStratum(child); }
  void MergeCovariances(const OrvCovariances& child) override { fpCovariances->MergeAsStratum(child); }
};

/// Variance between units under sampling with replacement, or without replacement with equal probabilities.
class ClustersNode final : public DesignNode {
 public:
  /// `value`: the sampling fraction (0: with replacement), the population size when `isPopulation`, or
  /// missing while it is yet to be read from the units.
  ClustersNode(int variables, double value, bool isPopulation)
      : DesignNode(variables), fValue(value), fbPopulation(isPopulation) {}
  bool IsStrata() const override { return false; }
  bool Finish() override;
  void MergeVariances(const OrvVariances& child) override { fVariances.MergeAsUnit(child); }
  void MergeCovariances(const OrvCovariances& child) override { fpCovariances->MergeAsUnit(child); }
  /// An ultimate unit arrives, with one value per variable. Missing values are skipped.
  void AddUnit(const std::vector<double>& totals);

  double Value() const { return fValue; }
  void SetValue(double value) { fValue = value; }
  bool IsPopulation() const { return fbPopulation; }

 private:
  double fValue;
  bool fbPopulation;
};

}  // namespace tavo
