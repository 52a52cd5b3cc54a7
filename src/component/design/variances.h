// The arithmetic of the design nodes: running means and sums of squares of unit totals, and the stage variances that
// they turn into.
//
// For one stratum of n sampled units with totals z_i, sampling fraction f and own (lower-stage) variances V_i, the
// variance of the estimated total is (1 - f) n/(n-1) sum (z_i - mean z)^2 + f sum V_i (Cochran 1977, ch. 11). With
// replacement f is 0, and lower stages need not be known.
#pragma once

#include <vector>

namespace tavo {

/// The diagonal case: four numbers per variable.
///   while units arrive: n, running mean, running sum of squared deviations, sum of lower-stage variances
///   after Finish:       n, total, variance of the total, (unchanged)
///   at a strata node:   non-empty strata, sum of totals, sum of variances, sum of the strata's unit counts
class OrvVariances {
 public:
  explicit OrvVariances(int variables = 0) : fValues(static_cast<std::size_t>(4 * variables), 0.0) {}
  int Variables() const { return static_cast<int>(fValues.size() / 4); }
  /// The four numbers of a variable.
  const double* Values(int variable) const { return fValues.data() + 4 * variable; }

  /// One unit's totals; a missing value is skipped.
  void AddUnit(const std::vector<double>& totals);
  /// A closed child becomes one unit.
  void MergeAsUnit(const OrvVariances& child);
  /// A closed child becomes one stratum.
  void MergeAsStratum(const OrvVariances& child);
  /// Turns sums into total and variance. `value` is the sampling fraction, or the population size. False when the
  /// population is smaller than the sample; the fraction is 1 then.
  bool Finish(double value, bool isPopulation);
  void Clear();

 private:
  std::vector<double> fValues;
};

/// The same for full cross-product matrices of blocks of variables. Each block holds a count, running means or totals,
/// the cross-products and the sums of lower-stage cross-products, both as packed lower triangles by rows.
class OrvCovariances {
 public:
  OrvCovariances() = default;
  /// Block b covers variables offsets[b] … offsets[b] + sizes[b] - 1 of a unit's vector.
  OrvCovariances(const std::vector<int>& sizes, const std::vector<int>& offsets);

  void AddUnit(const std::vector<double>& totals);
  void MergeAsUnit(const OrvCovariances& child);
  void MergeAsStratum(const OrvCovariances& child);
  bool Finish(double value, bool isPopulation);
  void Clear();
  int BlockCount() const { return static_cast<int>(fBlocks.size()); }
  /// The packed cross-products of a block, or null when out of range.
  const std::vector<double>* Block(int block) const;
  /// Units (or strata) of a block.
  double Count(int block) const { return fBlocks[static_cast<std::size_t>(block)].count; }

 private:
  struct BlockSums {
    int size = 0;
    int offset = 0;
    double count = 0;
    std::vector<double> means;
    std::vector<double> cross;
    std::vector<double> lower;
    std::vector<double> deviations;  // work
  };
  static void AddToBlock(BlockSums& block, const double* x);

  std::vector<BlockSums> fBlocks;
};

}  // namespace tavo
