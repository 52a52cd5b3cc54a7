#include "component/numerics/precise_sym_matrix.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstddef>

namespace MCCommonMath {

namespace {

std::size_t Index(int i) {
  return static_cast<std::size_t>(i);
}

}  // namespace

PreciseSymMatrix::PreciseSymMatrix(int rows) : fN(rows), fElements(MCSymMatrix::PackedSize(rows)) {}

void PreciseSymMatrix::Add(const PreciseSymMatrix& other) {
  assert(other.fN == fN);
  precise::AddScaled(1.0, other.fElements, fElements.Size(), fElements);
}

void PreciseSymMatrix::RoundTo(MCSymMatrix& out) const {
  if (out.SetNRows(fN)) std::copy(fElements.high.begin(), fElements.high.end(), out.AsVector().begin());
}

int PreciseSymMatrix::Factor(double tol) {
  int singular = 0;
  for (int i = 0; i < fN; ++i) {
    for (int c = 0; c < i; ++c) {
      const DoubleDouble diagonal = Get(c, c);
      const DoubleDouble rest = Get(i, c) - precise::Dot(Row(i), Row(c), Index(c));
      Set(i, c, diagonal.high == 0.0 ? DoubleDouble() : rest / diagonal);
    }
    const DoubleDouble pivot = Get(i, i) - precise::Dot(Row(i), Row(i), Index(i));
    const bool isRegular = std::isfinite(pivot.high) && pivot.high > tol * std::max(1.0, Get(i, i).high);
    Set(i, i, isRegular ? SquareRoot(pivot) : DoubleDouble());
    if (isRegular) continue;
    ++singular;
    for (int c = 0; c < i; ++c)
      Set(i, c, {});
  }
  return singular;
}

void PreciseSymMatrix::ForwardSolve(PreciseColumn& x) const {
  assert(x.Size() == Index(fN));
  for (int i = 0; i < fN; ++i) {
    const DoubleDouble diagonal = Get(i, i);
    const DoubleDouble rest = x.Get(Index(i)) - precise::Dot(Row(i), x, Index(i));
    x.Set(Index(i), diagonal.high == 0.0 ? DoubleDouble() : rest / diagonal);
  }
}

void PreciseSymMatrix::BackSolve(PreciseColumn& x) const {
  assert(x.Size() == Index(fN));
  for (int i = fN - 1; i >= 0; --i) {
    const DoubleDouble diagonal = Get(i, i);
    const DoubleDouble solved = diagonal.high == 0.0 ? DoubleDouble() : x.Get(Index(i)) / diagonal;
    x.Set(Index(i), solved);
    precise::AddScaled(-solved, Row(i), Index(i), x);
  }
}

bool PreciseSymMatrix::Sweep(int k, double tol, const std::vector<double>& diagonal, MCBitSet& bitSet) {
  assert(k >= 0 && k < fN && diagonal.size() == Index(fN) && bitSet.Size() == fN && !bitSet.IsIn(k));
  const DoubleDouble pivot = Get(k, k);
  const double reference = diagonal[Index(k)];
  if (!(reference > 0.0 && pivot.high > tol * reference)) return false;
  PreciseColumn column(Index(fN));  // 0 at k: row and column k are set below
  for (int i = 0; i < fN; ++i) {
    if (i != k) column.Set(Index(i), Get(std::max(i, k), std::min(i, k)));
  }
  for (int i = 0; i < fN; ++i) {
    const DoubleDouble element = column.Get(Index(i));
    if (element.high != 0.0) {
      precise::AddScaled(-(element / pivot), column, Index(i) + 1, fElements, MCSymMatrix::PackedSize(i));
    }
  }
  for (int j = 0; j < fN; ++j)
    Set(std::max(j, k), std::min(j, k), column.Get(Index(j)) / pivot);
  Set(k, k, DoubleDouble(-1.0) / pivot);
  bitSet.Set(k, true);
  return true;
}

void PreciseSymMatrix::ClearResidual(int k, const MCBitSet& bitSet) {
  assert(k >= 0 && k < fN && bitSet.Size() == fN);
  for (int other = 0; other < fN; ++other) {
    if (other != k && !bitSet.IsIn(other)) Set(std::max(k, other), std::min(k, other), {});
  }
}

}  // namespace MCCommonMath
