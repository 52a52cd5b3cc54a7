// Symmetric matrices of twice the precision, for problems in which more digits cancel than a double has.
#pragma once

#include <vector>

#include "component/numerics/bit_set.h"
#include "component/numerics/precise_vectors.h"
#include "component/numerics/sym_matrix.h"

namespace MCCommonMath {

/// An n by n matrix, its lower triangle packed as in MCSymMatrix. Positive semi-definite for `Factor` and
/// `Sweep`. Memory that runs out throws std::bad_alloc.
class PreciseSymMatrix {
 public:
  /// Of zeros.
  explicit PreciseSymMatrix(int rows = 0);

  [[nodiscard]] int GetNRows() const { return fN; }
  /// i >= j.
  [[nodiscard]] DoubleDouble Get(int i, int j) const { return fElements.Get(MCSymMatrix::Position(i, j)); }
  void Set(int i, int j, const DoubleDouble& value) { fElements.Set(MCSymMatrix::Position(i, j), value); }
  void AddTo(int i, int j, const DoubleDouble& term) { Set(i, j, Get(i, j) + term); }
  /// this += other, of the same size.
  void Add(const PreciseSymMatrix& other);
  /// Every element rounded to a double; `out` is invalid when memory ran out.
  void RoundTo(MCSymMatrix& out) const;

  /// In-place Cholesky factorisation A = L L' without permutation. A pivot is singular when, reduced by the
  /// rows before it, it is not above `tol` times max(1, its diagonal element in A); its row and column become
  /// 0, and the factor is that of the remaining rows. Returns the number of singular pivots.
  int Factor(double tol);
  /// x = inverse(L) x, with the factor in this matrix; the component at a singular pivot becomes 0.
  void ForwardSolve(PreciseColumn& x) const;
  /// x = inverse(L') x.
  void BackSolve(PreciseColumn& x) const;
  /// MCSymMatrix::Sweep for a pivot that has not been swept.
  bool Sweep(int k, double tol, const std::vector<double>& diagonal, MCBitSet& bitSet);
  /// MCSymMatrix::ClearResidual.
  void ClearResidual(int k, const MCBitSet& bitSet);

 private:
  [[nodiscard]] PreciseView Row(int i) const { return {fElements, MCSymMatrix::PackedSize(i)}; }

  int fN;
  PreciseColumn fElements;
};

}  // namespace MCCommonMath
