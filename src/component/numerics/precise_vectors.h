// Columns of numbers of twice the precision, and their sums.
#pragma once

#include <cstddef>
#include <vector>

#include "component/numerics/double_double.h"

namespace MCCommonMath {

/// Numbers of twice the precision, their halves apart, so that loops over them run in vector registers.
struct PreciseColumn {
  std::vector<double> high;
  std::vector<double> low;

  PreciseColumn() = default;
  /// n zeros.
  explicit PreciseColumn(std::size_t n) : high(n), low(n) {}
  [[nodiscard]] std::size_t Size() const { return high.size(); }
  void Clear() { Assign(Size()); }
  /// n zeros.
  void Assign(std::size_t n) {
    high.assign(n, 0.0);
    low.assign(n, 0.0);
  }
  [[nodiscard]] DoubleDouble Get(std::size_t i) const { return {high[i], low[i]}; }
  void Set(std::size_t i, const DoubleDouble& value) {
    high[i] = value.high;
    low[i] = value.low;
  }
  void AddTo(std::size_t i, const DoubleDouble& term) { Set(i, Get(i) + term); }
};

/// Part of a column; not owned.
struct PreciseView {
  const double* high = nullptr;
  const double* low = nullptr;

  PreciseView(const double* h, const double* l) : high(h), low(l) {}
  PreciseView(const PreciseColumn& column, std::size_t first = 0)  // NOLINT: a column is a view of all of it
      : high(column.high.data() + first), low(column.low.data() + first) {}
  [[nodiscard]] DoubleDouble Get(std::size_t i) const { return {high[i], low[i]}; }
};

/// Over the first n elements. They are finite, and below 2^996 in absolute value.
namespace precise {

/// out = a b, element by element. `out` may be a or b.
void Multiply(const PreciseView& a, const PreciseView& b, std::size_t n, PreciseColumn& out);
/// sums += alpha a, the sums from element `first` on.
void AddScaled(const DoubleDouble& alpha, const PreciseView& a, std::size_t n, PreciseColumn& sums,
               std::size_t first = 0);
[[nodiscard]] DoubleDouble Sum(const PreciseView& a, std::size_t n);
[[nodiscard]] DoubleDouble Dot(const PreciseView& a, const PreciseView& b, std::size_t n);

}  // namespace precise

}  // namespace MCCommonMath
