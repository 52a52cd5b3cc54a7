// A pattern is a vector of small numbers; packed into a few ints it is compared and hashed in a few
// operations.
#include "component/tabulation/packed_int.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace tavo {

bool OrvPackedInt::SetBounds(int size, int lowerBound, const std::vector<int>& counts) {
  *this = OrvPackedInt();
  const auto length = static_cast<std::size_t>(std::max(size, 0));
  if (length == 0 || counts.size() < length) return false;
  const auto end = counts.begin() + size;
  if (std::any_of(counts.begin(), end, [](int count) { return count < 1; })) return false;

  fSize = size;
  fLowerBound = lowerBound;
  fCounts.assign(counts.begin(), end);
  // Logarithms, because the product itself may overflow.
  const double limit = std::log(static_cast<double>(UnitLimit()));
  double logProduct = 0;
  int product = 1;
  int unit = 0;
  for (const int count : fCounts) {
    const double logCount = std::log(static_cast<double>(count));
    logProduct += logCount;
    if (logProduct > limit) {
      product = count;
      logProduct = logCount;
      ++unit;
    } else {
      product *= count;
    }
    fProducts.push_back(product);
    fUnitIndices.push_back(unit);
  }
  fNUnits = unit + 1;
  return true;
}

bool OrvPackedInt::Pack(const std::vector<int>& values, std::vector<int>& units, bool check) const {
  const auto size = static_cast<std::size_t>(fSize);
  if (check) {
    if (values.size() < size) return false;
    for (std::size_t i = 0; i < size; ++i) {
      if (values[i] < fLowerBound || values[i] - fLowerBound >= fCounts[i]) return false;
    }
  }
  units.resize(static_cast<std::size_t>(fNUnits));
  // Within a unit the multiplier is the product of the counts before, so it starts at 1 in each unit.
  int packed = 0;
  int multiplier = 1;
  std::size_t unit = 0;
  for (std::size_t i = 0; i < size; ++i) {
    packed += (values[i] - fLowerBound) * multiplier;
    if (i + 1 == size || fUnitIndices[i + 1] != fUnitIndices[i]) {
      units[unit++] = packed;
      packed = 0;
      multiplier = 1;
    } else {
      multiplier = fProducts[i];
    }
  }
  return true;
}

bool OrvPackedInt::Unpack(std::vector<int>& values, const std::vector<int>& units) const {
  if (units.size() < static_cast<std::size_t>(fNUnits)) return false;
  if (values.size() < static_cast<std::size_t>(fSize)) values.resize(static_cast<std::size_t>(fSize));
  // From the most significant digit down: each division leaves the digits below as its rest.
  std::size_t i = static_cast<std::size_t>(fSize);
  for (std::size_t unit = static_cast<std::size_t>(fNUnits); unit-- > 0;) {
    int rest = units[unit];
    while (i > 0 && fUnitIndices[i - 1] == static_cast<int>(unit)) {
      --i;
      const bool isFirstOfUnit = i == 0 || fUnitIndices[i - 1] != fUnitIndices[i];
      const int divisor = isFirstOfUnit ? 1 : fProducts[i - 1];
      const int digit = rest / divisor;
      values[i] = fLowerBound + digit;
      rest -= digit * divisor;
    }
  }
  return true;
}

int OrvPackedInt::CountOf(int i) const {
  return i >= 0 && i < fSize ? fCounts[static_cast<std::size_t>(i)] : -1;
}

}  // namespace tavo
