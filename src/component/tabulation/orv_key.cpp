// Codes are small and near one another, so each position of a key gets a prime of its own: (1, 2) and (2, 1)
// hash apart. The hash is part of no result, as tables are sorted before they are read.
#include "component/tabulation/orv_key.h"

#include <algorithm>
#include <array>

namespace tavo {

namespace {

constexpr std::array<std::uint32_t, 49> kOddPrimes{
    3,   5,   7,   11,  13,  17,  19,  23,  29,  31,  37,  41,  43,  47,  53,  59,  61,
    67,  71,  73,  79,  83,  89,  97,  101, 103, 107, 109, 113, 127, 131, 137, 139, 149,
    151, 157, 163, 167, 173, 179, 181, 191, 193, 197, 199, 211, 223, 227, 229};

}  // namespace

void OrvKey::ComputeHash() {
  fHash = 0;
  for (std::size_t i = 0; i < fValues.size(); ++i) {
    fHash ^= static_cast<std::uint32_t>(fValues[i]) * kOddPrimes[i % kOddPrimes.size()];
  }
}

bool operator<(const OrvKey& a, const OrvKey& b) {
  if (a.fValues.size() != b.fValues.size())
    return a.fValues.size() < b.fValues.size();  // a vector would put (1, 2) before (2)
  return a.fValues < b.fValues;
}

int SharedPrefix(const OrvKey& a, const OrvKey& b) {
  const auto [inA, inB] =
      std::mismatch(a.Values().begin(), a.Values().end(), b.Values().begin(), b.Values().end());
  return static_cast<int>(inA - a.Values().begin());
}

}  // namespace tavo
