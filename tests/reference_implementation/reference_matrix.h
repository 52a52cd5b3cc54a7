// Small dense matrices in extended precision, written to be read: no packing, no blocking, no reuse.
#pragma once

#include <cstddef>
#include <vector>

namespace reference {

using Real = long double;
using Vector = std::vector<Real>;

/// A dense matrix by rows; indices from 0.
class Matrix {
 public:
  Matrix() = default;
  Matrix(std::size_t rows, std::size_t columns)
      : fRows(rows), fColumns(columns), fValues(rows * columns, 0.0L) {}

  std::size_t Rows() const { return fRows; }
  std::size_t Columns() const { return fColumns; }
  Real& operator()(std::size_t i, std::size_t j) { return fValues[i * fColumns + j]; }
  Real operator()(std::size_t i, std::size_t j) const { return fValues[i * fColumns + j]; }
  Vector Row(std::size_t i) const;
  Vector Column(std::size_t j) const;
  /// Adds a row below the others; the first one sets the number of columns.
  void Append(const Vector& row);

 private:
  std::size_t fRows = 0, fColumns = 0;
  Vector fValues;
};

Real Dot(const Vector& a, const Vector& b);
Matrix Product(const Matrix& a, const Matrix& b);
Matrix Transposed(const Matrix& a);
/// L V L'.
Matrix Congruence(const Matrix& l, const Matrix& v);
Real QuadraticForm(const Vector& x, const Matrix& a);

/// The inverse of a positive definite matrix by Cholesky factorisation. A smallest pivot, relative to its
/// diagonal element, that is not above 0 stands for a matrix that is none; the inverse is empty then.
struct PositiveInverse {
  Matrix inverse;
  Real smallestPivot = 0;
};
PositiveInverse InverseOf(const Matrix& a);

/// The inverse of a covariance over its first independent rows: rows are taken in order, and one whose part
/// that the rows before it leave unexplained is not above 1e-12 of its variance is left out. Left-out rows
/// and columns are 0.
struct IndependentInverse {
  Matrix inverse;
  std::vector<bool> used;
  int rank = 0;
  Real smallestPivot = 1;     // of the rows used, relative to their variances
  Real largestLeftPivot = 0;  // of the rows left out that have a variance
};
IndependentInverse InverseOverIndependentRows(const Matrix& a);

}  // namespace reference
