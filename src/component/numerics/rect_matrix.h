// Rectangular matrices: rows of contrasts and columns of estimable functions.
#pragma once

#include <cstddef>
#include <vector>

namespace MCCommonMath {

class MCBitSet;

/// A dense matrix of doubles, stored by rows: element (i, j) stands at i * columns + j. Indices count from 0.
/// A failed allocation leaves a matrix without elements for which `IsValidMatrix` is false.
class MCRectMatrixData {
 public:
  MCRectMatrixData() = default;
  MCRectMatrixData(int rows, int cols) { SetNRowsCols(rows, cols); }
  MCRectMatrixData(const MCRectMatrixData& other) { Assign(other); }
  MCRectMatrixData(MCRectMatrixData&& other) noexcept;
  MCRectMatrixData& operator=(const MCRectMatrixData& other);
  MCRectMatrixData& operator=(MCRectMatrixData&& other) noexcept;
  ~MCRectMatrixData() = default;

  [[nodiscard]] bool IsValidMatrix() const { return fbValid; }
  [[nodiscard]] int GetNRows() const { return fNRows; }
  [[nodiscard]] int GetNCols() const { return fNCols; }

  /// New size, all zero. False when a size is negative or memory ran out; the matrix is then invalid.
  bool SetNRowsCols(int rows, int cols);

  /// The missing value outside the matrix.
  [[nodiscard]] double GetElem(int i, int j) const;

  /// False outside the matrix.
  bool SetElem(int i, int j, double value);

  /// The elements by rows. Callers may change elements but not the length.
  [[nodiscard]] std::vector<double>& AsVector() { return fElements; }
  [[nodiscard]] const std::vector<double>& AsVectorConst() const { return fElements; }

 protected:
  [[nodiscard]] bool IsInside(int i, int j) const { return i >= 0 && i < fNRows && j >= 0 && j < fNCols; }
  [[nodiscard]] std::size_t Position(int i, int j) const {
    return static_cast<std::size_t>(i) * static_cast<std::size_t>(fNCols) + static_cast<std::size_t>(j);
  }
  [[nodiscard]] const double* Row(int i) const { return fElements.data() + Position(i, 0); }

  /// Drops all elements and marks the matrix invalid; always false, so that a failing operation can return
  /// it.
  bool Invalidate();

 private:
  void Assign(const MCRectMatrixData& other);

  int fNRows = 0;
  int fNCols = 0;
  bool fbValid = true;
  std::vector<double> fElements;
};

/// The rectangular matrix with its operations: rows of contrasts, mostly. None throws.
class MCRectMatrix : public MCRectMatrixData {
 public:
  using MCRectMatrixData::MCRectMatrixData;

  /// Copies row i; `out` gets the length of a row. False, with `out` empty, when there is no such row.
  bool GetRow(int i, std::vector<double>& out) const;

  /// Transposes in place. False when memory for the turned copy ran out; the matrix then stands as it was.
  bool Transpose();

  /// result = R v. False, with `result` empty, when v has not one element per column.
  bool ComputeRV(const std::vector<double>& v, std::vector<double>& result) const;

  /// The dot product of row `row` of this matrix and column `col` of `other`; the missing value when the
  /// shapes do not fit.
  [[nodiscard]] double DotProductRowCol(int row, const MCRectMatrixData& other, int col) const;

  /// All elements of row i are exactly 0. False when there is no such row.
  [[nodiscard]] bool IsRowZero(int i) const;

  // ---- contrasts ----
  //
  // Estimable functions stand in the columns of a matrix H with one row per parameter; contrasts in the rows
  // of L. Operations that change this matrix return false, with nothing changed, when shapes do not match or
  // memory ran out.

  /// Row `row` of this matrix becomes column `col` of `source`, which has one row per column of this matrix.
  bool CopyColToRow(const MCRectMatrixData& source, int col, int row);

  /// This matrix becomes the columns first .. first+count-1 of `source`, a matrix other than this.
  bool CopyColumns(const MCRectMatrixData& source, int first, int count);

  /// `matrix`, which is not this, becomes block diagonal with n copies of this matrix.
  bool CreateBlockDiagonal(int n, MCRectMatrixData& matrix) const;

  /// Whether the row (row i, value1) is a multiple of (row j, value2), by a `factor` other than 0, which is 0
  /// when it is not. Element by element, to a relative 1e-12, since elements may have different units. Rows
  /// that are all 0 (whatever the value) are no multiples.
  bool IsERowMultipleOfAnother(int i, int j, double value1, double value2, double& factor) const;

  /// Whether each row l of this matrix is an estimable function: l = (l G) with G = H on the rows `bitSet`. H
  /// has one row per column of this matrix, and one column per set bit, in order, with a 1 at that parameter
  /// and 0 at the other set bits. A row passes when for each parameter u left out, l_u and the sum over set
  /// bits k of l_k H_uk differ by no more than `tol` times the sum of the absolute terms: all of them have
  /// the units of parameter u, so the units do not matter. False also when shapes do not match.
  [[nodiscard]] bool IsEstimable(const MCRectMatrix& H, const MCBitSet& bitSet, double tol) const;

  /// Replaces each column whose bit is set in `liveBits` by its residual after orthogonal projection on the
  /// columns of `basis`. The bit is cleared, and the column becomes 0, when the squared length of the
  /// residual is at most `tol` times that of the column. Columns of `basis` that depend on others by the same
  /// rule do no harm; `basisBits` gets one bit per column of `basis`, set for those that span the projection.
  bool ResidOfOrthProjection(const MCRectMatrix& basis, double tol, MCBitSet& basisBits, MCBitSet& liveBits);

  /// Makes the first column in `liveBits` with an element of absolute value above `tol` in row `row` the
  /// pivot and subtracts multiples of it from all other columns, so that they become 0 in that row.
  /// `pivotColumn` is the pivot, -1 when there is none.
  bool ZeroOutPivotRow(int row, double tol, const MCBitSet& liveBits, int& pivotColumn);

  /// Sets to 0 what is rounding in a column of `scale` rows that have the same units: elements below 64 times
  /// `scale` times the machine precision, relative to the largest.
  bool ColClean(int col, double scale);
};

}  // namespace MCCommonMath
