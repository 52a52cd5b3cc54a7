// The level combinations of one effect that occur in the data.
#pragma once

#include <cstdint>
#include <vector>

#include "component/tabulation/orv_key.h"

namespace tavo {

/// Collects the combinations of an effect's factors that the data has, then numbers them from 0 in sorted
/// order (the first factor varies slowest). An empty cell of the grid gets no number.
///
/// A small grid, and that of a single factor, is a direct table; a larger one, of which the data fills a
/// small part, is a hash table.
class OrvEffectCombinations {
 public:
  /// `factors`: the effect's factors, as indices into `categoryCounts` and into the level arrays below.
  OrvEffectCombinations(std::vector<int> factors, const std::vector<int>& categoryCounts);

  /// `levels`: the 0-based level of each factor of the model, all in range.
  void Enter(const std::vector<int>& levels);
  /// Ends the collecting and numbers the combinations. Returns their count.
  int AssignNumbers();

  int Count() const { return fNCombinations; }
  /// The number of a combination, -1 for one that never occurred or a negative level. Uses a working key: not
  /// for two threads at once.
  int NumberOf(const std::vector<int>& levels);
  /// The 1-based levels behind a number from 0 to Count() - 1, in the effect's factor order.
  void LevelsOf(int number, std::vector<int>& levels) const;

 private:
  using Table = OrvKeyTable<int>;

  bool IsDirect() const { return !fNumbers.empty(); }
  void FillKey(const std::vector<int>& levels);

  std::vector<std::size_t> fFactors;
  std::vector<std::int64_t> fStrides;      // of the direct table
  std::vector<int> fNumbers;               // direct table: by cell; -1 never occurred
  std::vector<std::int64_t> fCells;        // direct table: cell of each number
  Table fTable;                            // hash table: numbers by level key
  std::vector<const Table::Node*> fNodes;  // hash table: node of each number
  OrvKey fKey;                             // working key
  int fNCombinations = 0;
};

}  // namespace tavo
