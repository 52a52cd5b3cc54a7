// Accumulation into the packed triangle, the sweep, and spreading a matrix over a larger set of parameters.
#include "component/numerics/sym_matrix.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "component/numerics/bit_set.h"

namespace MCCommonMath {

namespace {

// row[j] += factor * v[j] for j < count.
inline void AddScaled(double* __restrict row, const double* __restrict v, double factor, int count) {
  for (int j = 0; j < count; ++j) {
    row[j] += factor * v[j];
  }
}

}  // namespace

bool MCSymMatrix::UpdateXX(std::span<const double> v, double w) {
  const int n = GetNRows();
  if (v.size() != static_cast<std::size_t>(n)) {
    return false;
  }
  double* row = AsVector().data();
  for (int i = 0; i < n; ++i) {
    const double value = v[static_cast<std::size_t>(i)];
    if (value != 0.0) {  // columns of factors are mostly 0
      AddScaled(row, v.data(), w * value, i + 1);
    }
    row += i + 1;
  }
  return true;
}

bool MCSymMatrix::UpdateXXSparse(int count, std::span<const int> indices, std::span<const double> values,
                                 double w) {
  const auto length = static_cast<std::size_t>(std::max(count, 0));
  if (count < 0 || indices.size() < length || values.size() < length) {
    return false;
  }
  // All indices are checked before the first element changes: a refused vector leaves no half of itself
  // behind.
  const int n = GetNRows();
  if (!std::all_of(indices.begin(), indices.begin() + count, [n](int i) { return i >= 0 && i < n; })) {
    return false;
  }
  for (std::size_t a = 0; a < length; ++a) {
    const int i = indices[a];
    const double factor = w * values[a];
    *(Row(i) + i) += factor * values[a];
    for (std::size_t b = 0; b < a; ++b) {
      const int j = indices[b];
      const double product = factor * values[b];
      // An index that occurs twice has both (a, b) and (b, a) on the diagonal.
      *(Row(std::max(i, j)) + std::min(i, j)) += i == j ? 2.0 * product : product;
    }
  }
  return true;
}

bool MCSymMatrix::Sweep(int k, double tol, const std::vector<double>& diagonal, MCBitSet& bitSet,
                        bool sweepBack) {
  const int n = GetNRows();
  if (k < 0 || k >= n || diagonal.size() != static_cast<std::size_t>(n) || bitSet.Size() != n) {
    return false;
  }
  // The pivot is what the columns swept before leave of column k, so pivot over diagonal is 1 - R^2 of its
  // regression on them: the test knows no units. A swept pivot has passed it, and goes back without one.
  const bool isSwept = bitSet.IsIn(k);
  const double pivot = Row(k)[k];
  const double reference = diagonal[static_cast<std::size_t>(k)];
  const bool isUsable = isSwept ? sweepBack && pivot != 0.0 : reference > 0.0 && pivot > tol * reference;
  if (!isUsable) {
    return false;
  }
  // Column k is read by every row while the rows change, so it is copied first.
  std::vector<double> column;
  try {
    column.resize(static_cast<std::size_t>(n));
  } catch (const std::exception&) {
    return Invalidate();
  }
  std::copy(Row(k), Row(k) + k, column.begin());
  for (int i = k + 1; i < n; ++i) {
    column[static_cast<std::size_t>(i)] = Row(i)[k];
  }
  column[static_cast<std::size_t>(k)] = 0.0;  // row and column k are set below

  for (int i = 0; i < n; ++i) {
    const double element = column[static_cast<std::size_t>(i)];
    if (element != 0.0) {
      AddScaled(Row(i), column.data(), -element / pivot, i + 1);
    }
  }
  // Forward the coefficients are a_ik / d. Backward the pivot is -1/d and they are to become a_ik again,
  // hence the sign; the update above and the new pivot -1/pivot are the same in both directions.
  const double divisor = isSwept ? -pivot : pivot;
  for (int j = 0; j < n; ++j) {
    *(Row(std::max(j, k)) + std::min(j, k)) = column[static_cast<std::size_t>(j)] / divisor;
  }
  Row(k)[k] = -1.0 / pivot;
  bitSet.Set(k, !isSwept);
  return true;
}

bool MCSymMatrix::Expand(const MCBitSet& bitSet, MCSymMatrix& out) const {
  if (bitSet.InSet() != GetNRows()) {
    return false;
  }
  MCSymMatrix expanded;
  if (!expanded.SetNRows(bitSet.Size())) {
    out = std::move(expanded);
    return false;
  }
  // Rows go to their places in ascending order; within a row the elements up to the diagonal are consecutive
  // in both triangles, as the order of the set bits is that of the rows.
  int source = 0;
  for (int i = 0; i < bitSet.Size(); ++i) {
    if (!bitSet.IsIn(i)) {
      continue;
    }
    const double* from = Row(source++);
    double* to = expanded.Row(i);
    for (int j = 0; j <= i; ++j) {
      if (bitSet.IsIn(j)) {
        to[j] = *from++;
      }
    }
  }
  out = std::move(expanded);
  return true;
}

}  // namespace MCCommonMath
