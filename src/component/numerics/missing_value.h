#pragma once

namespace MCCommonMath {

/// The system missing value: the most negative finite double. No valid datum takes it, and it is always
/// compared by equality, never by order.
struct MCMV {
  static constexpr double gMissingValue = -1.7976931348623157e308;
};

[[nodiscard]] inline bool IsMissing(double value) {
  return value == MCMV::gMissingValue;
}

}  // namespace MCCommonMath
