// One level of the chain of design nodes.
#pragma once

#include <memory>
#include <vector>

#include "design/variances.h"

namespace tavo {

/// Accumulates what arrives from below until it is closed and merged into its parent.
class DesignNode {
 public:
  explicit DesignNode(int variables) : fVariances(variables) {}
  virtual ~DesignNode() = default;

  /// Creates the covariance sums.
  void SetBlocks(const std::vector<int>& sizes, const std::vector<int>& offsets);
  /// Units minus strata for a strata node, units minus 1 for a clusters node.
  virtual double DegreesOfFreedom(int variable) const = 0;
  /// Turns sums into totals and variances. False when the population is smaller than the sample.
  virtual bool Finish() = 0;
  virtual void MergeVariances(const OrvVariances& child) = 0;
  virtual void MergeCovariances(const OrvCovariances& child) = 0;
  void Clear();

  const OrvVariances& Variances() const { return fVariances; }
  const OrvCovariances* Covariances() const { return fpCovariances.get(); }
  virtual bool IsStrata() const { return false; }

  /// Closes a child: finishes it, merges it into the parent and clears it.
  static bool FinishUpward(DesignNode& parent, DesignNode& child);

 protected:
  OrvVariances fVariances;
  std::unique_ptr<OrvCovariances> fpCovariances;
};

/// Variances of independent strata add up.
class StrataNode final : public DesignNode {
 public:
  using DesignNode::DesignNode;
  double DegreesOfFreedom(int variable) const override;
  bool Finish() override { return true; }
  void MergeVariances(const OrvVariances& child) override { fVariances.MergeAsStratum(child); }
  void MergeCovariances(const OrvCovariances& child) override { fpCovariances->MergeAsStratum(child); }
  bool IsStrata() const override { return true; }
};

/// Variance between units under sampling with replacement, or without replacement with equal probabilities.
class ClustersNode final : public DesignNode {
 public:
  /// `value`: the sampling fraction (0: with replacement), the population size when `isPopulation`, or missing while
  /// it is yet to be read from the units.
  ClustersNode(int variables, double value, bool isPopulation)
      : DesignNode(variables), fValue(value), fbPopulation(isPopulation) {}
  double DegreesOfFreedom(int variable) const override;
  bool Finish() override;
  void MergeVariances(const OrvVariances& child) override { fVariances.MergeAsUnit(child); }
  void MergeCovariances(const OrvCovariances& child) override { fpCovariances->MergeAsUnit(child); }
  void AddUnit(const std::vector<double>& totals);

  double Value() const { return fValue; }
  void SetValue(double value) { fValue = value; }
  bool IsPopulation() const { return fbPopulation; }

 private:
  double fValue;
  bool fbPopulation;
};

}  // namespace tavo
