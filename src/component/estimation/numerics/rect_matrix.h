#ifndef TAVO_ESTIMATION_NUMERICS_RECT_MATRIX_H
#define TAVO_ESTIMATION_NUMERICS_RECT_MATRIX_H

#include <cstddef>
#include <vector>

namespace MCCommonMath {

// A dense matrix of doubles, stored by rows: element (i, j) stands at i * columns + j. Indices count from 0.
// A failed allocation leaves a matrix without elements for which `IsValidMatrix` is false.
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

  // New size, all zero. False when a size is negative or memory ran out; the matrix is then invalid.
  bool SetNRowsCols(int rows, int cols);

  // The missing value outside the matrix.
  [[nodiscard]] double GetElem(int i, int j) const;

  // False outside the matrix.
  bool SetElem(int i, int j, double value);

  // The elements by rows. Callers may change elements but not the length.
  [[nodiscard]] std::vector<double>& AsVector() { return fElements; }
  [[nodiscard]] const std::vector<double>& AsVectorConst() const { return fElements; }

 protected:
  [[nodiscard]] bool IsInside(int i, int j) const { return i >= 0 && i < fNRows && j >= 0 && j < fNCols; }
  [[nodiscard]] std::size_t Position(int i, int j) const {
    return static_cast<std::size_t>(i) * static_cast<std::size_t>(fNCols) + static_cast<std::size_t>(j);
  }
  [[nodiscard]] const double* Row(int i) const { return fElements.data() + Position(i, 0); }

  // Drops all elements and marks the matrix invalid; always false, so that a failing operation can return it.
  bool Invalidate();

 private:
  void Assign(const MCRectMatrixData& other);

  int fNRows = 0;
  int fNCols = 0;
  bool fbValid = true;
  std::vector<double> fElements;
};

// The rectangular matrix with its operations: rows of contrasts, mostly. None throws.
class MCRectMatrix : public MCRectMatrixData {
 public:
  using MCRectMatrixData::MCRectMatrixData;

  // Copies row i; `out` gets the length of a row. False, with `out` empty, when there is no such row.
  bool GetRow(int i, std::vector<double>& out) const;

  // Transposes in place. False when memory for the turned copy ran out; the matrix then stands as it was.
  bool Transpose();

  // result = R v. False, with `result` empty, when v has not one element per column.
  bool ComputeRV(const std::vector<double>& v, std::vector<double>& result) const;

  // The dot product of row `row` of this matrix and column `col` of `other`; the missing value when the
  // shapes do not fit.
  [[nodiscard]] double DotProductRowCol(int row, const MCRectMatrixData& other, int col) const;

  // All elements of row i are exactly 0. False when there is no such row.
  [[nodiscard]] bool IsRowZero(int i) const;
};

}  // namespace MCCommonMath

#endif
