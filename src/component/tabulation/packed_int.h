// Folding a vector of small bounded integers into a short key.
#pragma once

#include <cstdint>
#include <vector>

namespace tavo {

/// Mixed-radix packing: the first value of a storage unit is its least significant digit. One unit holds at
/// most a product of UnitLimit() counts, unless a single count is larger and takes a unit of its own.
class OrvPackedInt {
 public:
  static constexpr int UnitLimit() { return 9377657; }

  /// Value i lies in lowerBound … lowerBound + counts[i] - 1. False, and an empty layout, for a size of 0 or
  /// less, too few counts or a count below 1.
  bool SetBounds(int size, int lowerBound, const std::vector<int>& counts);
  /// With `check` false a value out of range gives a wrong key silently: the caller guarantees the range.
  bool Pack(const std::vector<int>& values, std::vector<int>& units, bool check) const;
  bool Unpack(std::vector<int>& values, const std::vector<int>& units) const;

  int Size() const { return fSize; }
  int UnitCount() const { return fNUnits; }
  int LowerBound() const { return fLowerBound; }
  int CountOf(int i) const;  // -1 when out of range

 private:
  int fSize = 0;
  int fLowerBound = 0;
  std::vector<int> fCounts;
  int fNUnits = 0;
  std::vector<int> fUnitIndices;
  std::vector<int> fProducts;  // running product of the unit's counts up to and including value i
};

}  // namespace tavo
