// A set of small integers: parameters, rows or columns by their index.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace MCCommonMath {

/// A set of the integers 0 .. n-1. In the model a set bit marks a parameter that is not redundant.
class MCBitSet {
 public:
  MCBitSet() = default;

  /// All bits clear. A negative size counts as 0.
  explicit MCBitSet(int size) { Resize(size, false); }

  [[nodiscard]] int Size() const { return fSize; }

  /// Membership; false outside 0 .. n-1.
  [[nodiscard]] bool IsIn(int index) const {
    return index >= 0 && index < fSize && ((fWords[Word(index)] >> (index % kWordBits)) & 1U) != 0;
  }

  /// The number of set bits.
  [[nodiscard]] int InSet() const;

  /// The number of set bits in first .. last inclusive; the range is cut to 0 .. n-1.
  [[nodiscard]] int InRange(int first, int last) const;

  /// The set bits, ascending: positions from 0 of the rows or columns that the set names.
  [[nodiscard]] std::vector<int> Members() const;

  /// False, with nothing changed, when the index is outside 0 .. n-1.
  bool Set(int index, bool value);

  /// Changes first .. last inclusive. False, with nothing changed, when the range is not within 0 .. n-1; an
  /// empty range (last < first) is fine and changes nothing.
  bool SetRange(int first, int last, bool value);

  /// New size, all bits equal to `value`. A negative size counts as 0.
  void Resize(int size, bool value);

  /// All bits clear, size unchanged.
  void Clear();

  [[nodiscard]] bool operator==(const MCBitSet& other) const = default;

 private:
  static constexpr int kWordBits = 64;

  [[nodiscard]] static std::size_t Word(int index) { return static_cast<std::size_t>(index / kWordBits); }
  [[nodiscard]] static std::uint64_t Mask(int index) { return std::uint64_t{1} << (index % kWordBits); }

  int fSize = 0;
  std::vector<std::uint64_t> fWords;  // bits beyond the size stay clear
};

}  // namespace MCCommonMath
