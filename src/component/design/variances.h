// The arithmetic of the design nodes: running means and sums of squares of unit totals, and the stage
// variances that they turn into.
//
// Totals are weighted: z_i is what unit i adds to the estimate of the population total, its inclusion
// probability already divided out. For one stratum of n sampled units with sampling fraction f and own
// (lower-stage) variances V_i of the z_i, the variance of the estimated stratum total is
//
//   (1 - f) n/(n-1) sum (z_i - mean z)^2  +  f sum V_i
//
// (Cochran 1977, ch. 11; Särndal, Swensson and Wretman 1992, ch. 4). With replacement f is 0 and the second
// term vanishes: the spread between units already contains the variance within them, so lower stages need not
// be known. Without replacement the first term counts the part 1 - f of it, and the second adds the rest.
//
// An example: two of four clusters (f = 0.5) with totals 3 and 7, each estimated with a variance of 2, give
// 0.5 * 2 * 8 + 0.5 * 4 = 10.
//
// A stratum of one unit tells nothing of the spread and counts as one without any: the total is as sure as
// its lower stages. With unequal probabilities the variance is made of pairs of units; see joint_units.h.
//
// Means and sums of squares run along with the units (Welford 1962; Chan, Golub and LeVeque 1983): sums of
// raw squares would lose the digits that the variance is made of.
#pragma once

#include <array>
#include <cstddef>
#include <vector>

namespace tavo {

struct JointUnits;

/// The units of one stratum while they arrive, for one variable.
struct UnitMoments {
  double count = 0;
  double mean = 0;           // of the units' totals
  double squares = 0;        // sum of squared deviations from the mean
  double lowerVariance = 0;  // sum of the units' own variances, from the stages below
};

/// A total as a closed node has estimated it, for one variable.
struct TotalEstimate {
  double strata = 0;  // that have any unit: 1 of a node of units, 0 when none has arrived
  double units = 0;   // of all strata
  double total = 0;
  double variance = 0;

  bool HasUnits() const { return units > 0.0; }
  /// Units minus strata: what a stratum's own mean costs.
  double DegreesOfFreedom() const { return units - strata; }
};

/// The diagonal case: each variable by itself. Units arrive by AddUnit or MergeAsUnit and become estimates by
/// Finish (or all at once by FinishJoint); strata arrive as estimates by MergeAsStratum and need no finish.
/// Variables count from 0.
class OrvVariances {
 public:
  explicit OrvVariances(int variables = 0)
      : fUnits(static_cast<std::size_t>(variables)), fEstimates(fUnits.size()) {}
  int Variables() const { return static_cast<int>(fUnits.size()); }
  const UnitMoments& Units(int variable) const { return fUnits[static_cast<std::size_t>(variable)]; }
  /// Complete after Finish and FinishJoint, and after the last MergeAsStratum.
  const TotalEstimate& Estimate(int variable) const { return fEstimates[static_cast<std::size_t>(variable)]; }

  /// One unit's totals, one per variable; a missing value is skipped.
  void AddUnit(const std::vector<double>& totals);
  /// A closed child becomes one unit: its total, and its variance as that of the stages below. A child
  /// without units is skipped, here and below.
  void MergeAsUnit(const OrvVariances& child);
  /// A closed child becomes one stratum. Independent strata add up.
  void MergeAsStratum(const OrvVariances& child);
  /// Turns the units into estimates. `value` is the sampling fraction, or the population size. False when the
  /// population is smaller than the sample; the fraction is 1 then, and the estimates are made all the same.
  /// A variable without units keeps an empty estimate and fits any population.
  bool Finish(double value, bool isPopulation);
  /// The pairwise finish, with all units at once: the estimate of each variable over the units that have it.
  void FinishJoint(const JointUnits& units);
  /// No units and no estimates, ready for the next stratum.
  void Clear();

 private:
  std::vector<UnitMoments> fUnits;        // by variable
  std::vector<TotalEstimate> fEstimates;  // by variable
};

/// The same for full cross-product matrices of blocks of variables, as packed lower triangles by rows. A unit
/// whose first value of a block is missing doesn't enter that block.
///
/// The triangle of a block is the large thing here (the square of the parameters), so there is one: it holds
/// the sums of cross-products while units arrive, and becomes the covariance of the totals in place.
///
/// A unit costs a number of operations that grows with the square of the block's size, and records can be
/// units. The cross-products of a few units therefore wait and go through the triangle together; the sums are
/// the same to the last bit as one by one.
class OrvCovariances {
 public:
  OrvCovariances() = default;
  /// Block b covers variables offsets[b] … offsets[b] + sizes[b] - 1 of a unit's vector; one size per offset.
  /// `hasLowerStages`: children will arrive by `MergeAsUnit`; without it no room is taken for their own
  /// variances. Throws std::bad_alloc when the triangles are too large for memory.
  OrvCovariances(const std::vector<int>& sizes, const std::vector<int>& offsets, bool hasLowerStages);

  void AddUnit(const std::vector<double>& totals);
  /// The child is finished, or is a strata node's, and has the same blocks, here and below.
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
  /// The packed covariance of a block's totals, or null when out of range. Complete after `Finish`, and at a
  /// strata node.
  const std::vector<double>* Block(int block) const;
  /// Units of a block, or at a strata node the strata that have any.
  double Count(int block) const { return fBlocks[static_cast<std::size_t>(block)].count; }

 private:
  static constexpr std::size_t kWaitingUnits = 4;

  struct BlockSums {
    std::size_t size = 0;
    std::size_t offset = 0;
    double count = 0;            // units, or strata
    std::vector<double> means;   // of the units, while they arrive
    std::vector<double> totals;  // after a finish, and at a strata node
    std::vector<double> cross;   // cross-products of deviations while units arrive, then the covariance
    std::vector<double> lower;   // sum of the units' own covariances; empty without lower stages
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
