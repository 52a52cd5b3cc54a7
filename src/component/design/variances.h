// The arithmetic of the design nodes: running means and sums of squares of unit totals, and the stage
// variances that they turn into.
//
// For one stratum of n sampled units with totals z_i, sampling fraction f and own (lower-stage) variances
// V_i, the variance of the estimated total is (1 - f) n/(n-1) sum (z_i - mean z)^2 + f sum V_i (Cochran 1977,
// ch. 11). With replacement f is 0, and lower stages need not be known.
//
// With unequal probabilities the variance is made of pairs of units instead; see joint_units.h.
//
// Means and sums of squares run along with the units (Welford 1962; Chan, Golub and LeVeque 1983): sums of
// raw squares would lose the digits that the variance is made of.
#pragma once

#include <array>
#include <cstddef>
#include <vector>

namespace tavo {

struct JointUnits;

/// The diagonal case: four numbers per variable.
///   while units arrive: n, running mean, running sum of squared deviations, sum of lower-stage variances
///   after Finish:       n, total, variance of the total, (unchanged)
///   at a strata node:   non-empty strata, sum of totals, sum of variances, sum of the strata's unit counts
class OrvVariances {
 public:
  explicit OrvVariances(int variables = 0) : fValues(4 * static_cast<std::size_t>(variables), 0.0) {}
  int Variables() const { return static_cast<int>(fValues.size() / 4); }
  /// The four numbers of a variable.
  const double* Values(int variable) const { return fValues.data() + std::ptrdiff_t{4} * variable; }

  /// One unit's totals; a missing value is skipped.
  void AddUnit(const std::vector<double>& totals);
  /// A closed child becomes one unit.
  void MergeAsUnit(const OrvVariances& child);
  /// A closed child becomes one stratum.
  void MergeAsStratum(const OrvVariances& child);
  /// Turns sums into total and variance. `value` is the sampling fraction, or the population size. False when
  /// the population is smaller than the sample; the fraction is 1 then.
  bool Finish(double value, bool isPopulation);
  /// The pairwise finish, with all units at once: count, total and variance of each variable over the units
  /// that have it. A variable that no unit has stays as it is.
  void FinishJoint(const JointUnits& units);
  void Clear();

 private:
  std::vector<double> fValues;
};

/// The same for full cross-product matrices of blocks of variables. Each block holds a count, running means
/// or totals, the cross-products and the sums of lower-stage cross-products, both as packed lower triangles
/// by rows. A unit whose first value of a block is missing doesn't enter that block.
///
/// A unit costs a number of operations that grows with the square of the block's size, and records can be
/// units. The cross-products of a few units therefore wait and go through the triangle together; the sums are
/// the same to the last bit as one by one.
class OrvCovariances {
 public:
  OrvCovariances() = default;
  /// Block b covers variables offsets[b] … offsets[b] + sizes[b] - 1 of a unit's vector. `hasLowerStages`:
  /// children will arrive by `MergeAsUnit`; without it no room is taken for their own variances.
  OrvCovariances(const std::vector<int>& sizes, const std::vector<int>& offsets, bool hasLowerStages);

  void AddUnit(const std::vector<double>& totals);
  /// The child is finished, or is a strata node's, and has the same blocks.
  void MergeAsUnit(const OrvCovariances& child);
  void MergeAsStratum(const OrvCovariances& child);
  /// A closed child's cross-products, times `factor`, become variance of the stages below; no unit is
  /// counted.
  void MergeAsLowerStage(const OrvCovariances& child, double factor);
  /// As OrvVariances::Finish.
  bool Finish(double value, bool isPopulation);
  /// As OrvVariances::FinishJoint, over the units whose first value of the block isn't missing. Takes
  /// units * size + size^2 operations a unit.
  void FinishJoint(const JointUnits& units);
  void Clear();
  int BlockCount() const { return static_cast<int>(fBlocks.size()); }
  /// The packed cross-products of a block, or null when out of range. Complete after `Finish`, and at a
  /// strata node.
  const std::vector<double>* Block(int block) const;
  /// Units (or strata) of a block.
  double Count(int block) const { return fBlocks[static_cast<std::size_t>(block)].count; }

 private:
  static constexpr std::size_t kWaitingUnits = 4;

  struct BlockSums {
    std::size_t size = 0;
    std::size_t offset = 0;
    double count = 0;
    std::vector<double> means;  // running means; totals after Finish and at a strata node
    std::vector<double> cross;
    std::vector<double> lower;  // empty without lower stages
    // Units whose cross-products are still to be added: deviations from the mean before them, end to end, and
    // the factor n/(n+1) of each.
    std::vector<double> deviations;
    std::array<double, kWaitingUnits> factors{};
    std::size_t waiting = 0;
  };
  static void AddToBlock(BlockSums& block, const double* x);
  static void AddWaiting(BlockSums& block);
  static void AddPairs(BlockSums& block, const JointUnits& units, const std::vector<std::size_t>& present);

  std::vector<BlockSums> fBlocks;
};

}  // namespace tavo
