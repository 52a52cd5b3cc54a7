// The one value that stands for "not there".
#pragma once

namespace MCCommonMath {

/// The system missing value: the most negative finite double. No valid datum takes it, and it is always
/// compared by equality, never by order.
struct MCMV {
  static constexpr double gMissingValue = -1.7976931348623157e308;
};

/// The one place of the comparison. A NaN is no missing value: it is the sign of a fault.
[[nodiscard]] inline bool IsMissing(double value) {
  return value == MCMV::gMissingValue;
}

}  // namespace MCCommonMath
