// Numbers of twice the precision of a double.
#pragma once

#include <cmath>

namespace MCCommonMath {

/// The unevaluated sum of two doubles, `high` being the sum rounded to a double: 106 bits, with the range of
/// a double. For sums and products in which more digits cancel than a double has. Sums are good to 2^-104 of
/// the larger term, products and quotients to 2^-102 of themselves, as long as nothing overflows and no error
/// term falls below the smallest normal number; a product needs factors below 2^996 in absolute value.
///
/// The arithmetic is that of Dekker 1971, with the exact sum of Knuth 1969 (volume 2, section 4.2.2); bounds
/// are from Joldes, Muller and Popescu 2017. It relies on rounding to nearest, and on a compiler that doesn't
/// contract or reorder.
struct DoubleDouble {
  double high = 0.0;
  double low = 0.0;

  constexpr DoubleDouble() = default;
  constexpr DoubleDouble(double value)
      : high(value) {}  // NOLINT: a double is a number of twice the precision
  constexpr DoubleDouble(double h, double l) : high(h), low(l) {}

  /// Rounded to a double.
  [[nodiscard]] constexpr double Value() const { return high; }
};

/// a + b, exactly.
constexpr DoubleDouble ExactSum(double a, double b) {
  const double sum = a + b;
  const double fromB = sum - a;
  return {sum, (a - (sum - fromB)) + (b - fromB)};
}

/// a + b, exactly, for |a| >= |b| or a = 0.
constexpr DoubleDouble ExactSumOrdered(double a, double b) {
  const double sum = a + b;
  return {sum, b - (sum - a)};
}

/// a b, exactly.
constexpr DoubleDouble ExactProduct(double a, double b) {
  constexpr double kSplit = 134217729.0;  // 2^27 + 1: two halves of 26 bits (Veltkamp 1968)
  const double product = a * b;
  const double aScaled = kSplit * a;
  const double bScaled = kSplit * b;
  const double aHigh = aScaled - (aScaled - a);
  const double bHigh = bScaled - (bScaled - b);
  const double aLow = a - aHigh;
  const double bLow = b - bHigh;
  return {product, ((aHigh * bHigh - product) + aHigh * bLow + aLow * bHigh) + aLow * bLow};
}

constexpr DoubleDouble operator-(const DoubleDouble& a) {
  return {-a.high, -a.low};
}

constexpr DoubleDouble operator+(const DoubleDouble& a, const DoubleDouble& b) {
  const DoubleDouble high = ExactSum(a.high, b.high);
  const DoubleDouble low = ExactSum(a.low, b.low);
  const DoubleDouble sum = ExactSumOrdered(high.high, high.low + low.high);
  return ExactSumOrdered(sum.high, sum.low + low.low);
}

constexpr DoubleDouble operator-(const DoubleDouble& a, const DoubleDouble& b) {
  return a + -b;
}

constexpr DoubleDouble operator*(const DoubleDouble& a, const DoubleDouble& b) {
  const DoubleDouble product = ExactProduct(a.high, b.high);
  return ExactSumOrdered(product.high, product.low + (a.high * b.low + a.low * b.high));
}

constexpr DoubleDouble operator/(const DoubleDouble& a, const DoubleDouble& b) {
  const double first = a.high / b.high;
  const DoubleDouble rest = a - b * DoubleDouble(first);
  const double second = rest.high / b.high;
  const double third = (rest - b * DoubleDouble(second)).high / b.high;
  return ExactSumOrdered(first, second) + DoubleDouble(third);
}

constexpr DoubleDouble& operator+=(DoubleDouble& a, const DoubleDouble& b) {
  return a = a + b;
}
constexpr DoubleDouble& operator-=(DoubleDouble& a, const DoubleDouble& b) {
  return a = a - b;
}

/// a 2^exponent, exactly unless it over- or underflows.
inline DoubleDouble TimesPowerOfTwo(const DoubleDouble& a, int exponent) {
  return {std::ldexp(a.high, exponent), std::ldexp(a.low, exponent)};
}

/// a / b for finite a and b of any size; b isn't 0.
inline DoubleDouble Quotient(const DoubleDouble& a, double b) {
  if (a.high == 0.0) return {};
  const int ofA = std::ilogb(a.high);
  const int ofB = std::ilogb(b);
  const DoubleDouble quotient = TimesPowerOfTwo(a, -ofA) / DoubleDouble(std::ldexp(b, -ofB));
  return TimesPowerOfTwo(quotient, ofA - ofB);
}

/// 0 for a value that isn't above 0.
inline DoubleDouble SquareRoot(const DoubleDouble& a) {
  if (!(a.high > 0.0)) return {};
  const double root = std::sqrt(a.high);
  const DoubleDouble rest = a - ExactProduct(root, root);
  return ExactSumOrdered(root, rest.high / (2.0 * root));
}

}  // namespace MCCommonMath
