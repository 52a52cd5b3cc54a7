// Rows of contrasts: copies, and the tests that a contrast has to pass.

#include <algorithm>
#include <cmath>
#include <limits>

#include "component/numerics/bit_set.h"
#include "component/numerics/rect_matrix.h"

namespace MCCommonMath {

namespace {

constexpr double kMultipleTolerance = 1e-12;

// Each element by its own size: columns belong to parameters of different units, so a common limit would let
// a small element differ unseen beside a large one.
bool IsScaled(double a, double b, double factor) {
  const double scaled = factor * b;
  return a == scaled || std::abs(a - scaled) <= kMultipleTolerance * std::max(std::abs(a), std::abs(scaled));
}

}  // namespace

bool MCRectMatrix::CopyColToRow(const MCRectMatrixData& source, int col, int row) {
  if (row < 0 || row >= GetNRows() || col < 0 || col >= source.GetNCols() ||
      source.GetNRows() != GetNCols()) {
    return false;
  }
  for (int k = 0; k < GetNCols(); ++k) {
    SetElem(row, k, source.GetElem(k, col));
  }
  return true;
}

bool MCRectMatrix::CopyColumns(const MCRectMatrixData& source, int first, int count) {
  if (first < 0 || count < 0 || count > source.GetNCols() - first || this == &source) {
    return false;
  }
  if (!SetNRowsCols(source.GetNRows(), count)) {
    return false;
  }
  for (int i = 0; i < GetNRows(); ++i) {
    for (int j = 0; j < count; ++j) {
      SetElem(i, j, source.GetElem(i, first + j));
    }
  }
  return true;
}

bool MCRectMatrix::CreateBlockDiagonal(int n, MCRectMatrixData& matrix) const {
  // Sizes are ints; many logits of a wide L can pass them before memory runs out.
  constexpr long long largest = std::numeric_limits<int>::max();
  if (n < 0 || &matrix == this || static_cast<long long>(n) * std::max(GetNRows(), GetNCols()) > largest ||
      !matrix.SetNRowsCols(n * GetNRows(), n * GetNCols())) {
    return false;
  }
  for (int block = 0; block < n; ++block) {
    for (int i = 0; i < GetNRows(); ++i) {
      for (int j = 0; j < GetNCols(); ++j) {
        matrix.SetElem(block * GetNRows() + i, block * GetNCols() + j, AsVectorConst()[Position(i, j)]);
      }
    }
  }
  return true;
}

bool MCRectMatrix::IsERowMultipleOfAnother(int i, int j, double value1, double value2, double& factor) const {
  factor = 0.0;
  if (i < 0 || i >= GetNRows() || j < 0 || j >= GetNRows()) {
    return false;
  }
  const double* a = Row(i);
  const double* b = Row(j);
  double ratio = 0.0;
  for (int k = 0; k < GetNCols(); ++k) {
    if (a[k] == 0.0 && b[k] == 0.0) {
      continue;
    }
    if (a[k] == 0.0 || b[k] == 0.0) {
      return false;
    }
    if (ratio == 0.0) {
      ratio = a[k] / b[k];
    } else if (!IsScaled(a[k], b[k], ratio)) {
      return false;
    }
  }
  if (ratio == 0.0 || !std::isfinite(ratio) || !IsScaled(value1, value2, ratio)) {
    return false;
  }
  factor = ratio;
  return true;
}

bool MCRectMatrix::IsEstimable(const MCRectMatrix& H, const MCBitSet& bitSet, double tol) const {
  const int p = GetNCols();
  if (bitSet.Size() != p || H.GetNRows() != p || H.GetNCols() != bitSet.InSet()) {
    return false;
  }
  for (int i = 0; i < GetNRows(); ++i) {
    const double* l = Row(i);
    for (int u = 0; u < p; ++u) {
      if (bitSet.IsIn(u)) {
        continue;
      }
      // l is estimable when l = l (S^- S) (Searle 1971, section 5.4): on a redundant parameter u its
      // coefficient must be what the non-redundant ones imply. The difference is judged by the terms that
      // cancel in it.
      double rest = l[u];
      double size = std::abs(l[u]);
      const double* coefficients = H.Row(u);
      for (int k = 0; k < p; ++k) {
        if (bitSet.IsIn(k)) {
          const double term = l[k] * *coefficients++;
          rest -= term;
          size += std::abs(term);
        }
      }
      if (!(std::abs(rest) <= tol * size)) {
        return false;
      }
    }
  }
  return true;
}

}  // namespace MCCommonMath
