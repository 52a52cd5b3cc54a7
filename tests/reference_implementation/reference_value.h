// A number that the twin stands for, and how far another correct computation in double precision may be from
// it.
#pragma once

#include <cmath>
#include <limits>

#include "reference_matrix.h"

namespace reference {

/// A statistic: missing, or a value with a tolerance. An infinite tolerance stands for a statistic that
/// rounding decides, such as a rank that hangs on the last digit: it must be there, nothing is said of its
/// value.
struct Value {
  bool isMissing = true;
  Real number = 0;
  Real tolerance = 0;

  static Value Missing() { return {}; }
  static Value Undecided() { return {false, 0, std::numeric_limits<Real>::infinity()}; }
  static Value Of(Real number, Real tolerance) { return {false, number, tolerance}; }
  static Value Exactly(Real number) { return {false, number, 0}; }
  bool IsUndecided() const { return !isMissing && std::isinf(tolerance); }
};

}  // namespace reference
