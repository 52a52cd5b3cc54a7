#include "reference_matrix.h"

#include <algorithm>
#include <cmath>

namespace reference {

Vector Matrix::Row(std::size_t i) const {
  Vector row(fColumns);
  for (std::size_t j = 0; j < fColumns; ++j)
    row[j] = (*this)(i, j);
  return row;
}

Vector Matrix::Column(std::size_t j) const {
  Vector column(fRows);
  for (std::size_t i = 0; i < fRows; ++i)
    column[i] = (*this)(i, j);
  return column;
}

void Matrix::Append(const Vector& row) {
  fColumns = row.size();
  fValues.insert(fValues.end(), row.begin(), row.end());
  ++fRows;
}

Real Dot(const Vector& a, const Vector& b) {
  Real sum = 0;
  for (std::size_t i = 0; i < a.size(); ++i)
    sum += a[i] * b[i];
  return sum;
}

Matrix Product(const Matrix& a, const Matrix& b) {
  Matrix c(a.Rows(), b.Columns());
  for (std::size_t i = 0; i < a.Rows(); ++i) {
    for (std::size_t k = 0; k < a.Columns(); ++k) {
      if (a(i, k) == 0) continue;
      for (std::size_t j = 0; j < b.Columns(); ++j)
        c(i, j) += a(i, k) * b(k, j);
    }
  }
  return c;
}

Matrix Transposed(const Matrix& a) {
  Matrix t(a.Columns(), a.Rows());
  for (std::size_t i = 0; i < a.Rows(); ++i) {
    for (std::size_t j = 0; j < a.Columns(); ++j)
      t(j, i) = a(i, j);
  }
  return t;
}

Matrix Congruence(const Matrix& l, const Matrix& v) {
  return Product(Product(l, v), Transposed(l));
}

Real QuadraticForm(const Vector& x, const Matrix& a) {
  Real sum = 0;
  for (std::size_t i = 0; i < x.size(); ++i) {
    for (std::size_t j = 0; j < x.size(); ++j)
      sum += x[i] * a(i, j) * x[j];
  }
  return sum;
}

namespace {

/// The inverse of a lower triangular matrix.
Matrix TriangularInverse(const Matrix& lower) {
  const std::size_t n = lower.Rows();
  Matrix inverse(n, n);
  for (std::size_t j = 0; j < n; ++j) {
    for (std::size_t i = j; i < n; ++i) {
      Real sum = i == j ? 1 : 0;
      for (std::size_t k = j; k < i; ++k)
        sum -= lower(i, k) * inverse(k, j);
      inverse(i, j) = sum / lower(i, i);
    }
  }
  return inverse;
}

/// What row i of a has left when the rows of the factor before it are taken out, with the row's factor
/// written into `lower`.
Real ReducedPivot(const Matrix& a, std::size_t i, Matrix& lower, const std::vector<bool>& used) {
  Real pivot = a(i, i);
  for (std::size_t j = 0; j < i; ++j) {
    if (!used[j]) continue;
    Real sum = a(i, j);
    for (std::size_t k = 0; k < j; ++k)
      sum -= lower(i, k) * lower(j, k);
    lower(i, j) = sum / lower(j, j);
    pivot -= lower(i, j) * lower(i, j);
  }
  return pivot;
}

}  // namespace

PositiveInverse InverseOf(const Matrix& a) {
  const std::size_t n = a.Rows();
  PositiveInverse result;
  result.smallestPivot = 1;
  Matrix lower(n, n);
  const std::vector<bool> all(n, true);
  for (std::size_t i = 0; i < n; ++i) {
    const Real pivot = ReducedPivot(a, i, lower, all);
    result.smallestPivot = std::min(result.smallestPivot, a(i, i) > 0 ? pivot / a(i, i) : 0);
    if (!(result.smallestPivot > 0)) return result;
    lower(i, i) = std::sqrt(pivot);
  }
  const Matrix inverse = TriangularInverse(lower);
  result.inverse = Product(Transposed(inverse), inverse);
  return result;
}

IndependentInverse InverseOverIndependentRows(const Matrix& a) {
  const std::size_t n = a.Rows();
  IndependentInverse result;
  result.inverse = Matrix(n, n);
  result.used.assign(n, false);
  Matrix lower(n, n);
  std::vector<std::size_t> rows;
  for (std::size_t i = 0; i < n; ++i) {
    const Real pivot = ReducedPivot(a, i, lower, result.used);
    if (!(a(i, i) > 0)) continue;
    const Real share = pivot / a(i, i);
    if (share > 1e-12L) {
      result.used[i] = true;
      result.smallestPivot = std::min(result.smallestPivot, share);
      lower(i, i) = std::sqrt(pivot);
      rows.push_back(i);
    } else {
      result.largestLeftPivot = std::max(result.largestLeftPivot, std::abs(share));
    }
  }
  result.rank = static_cast<int>(rows.size());
  Matrix part(rows.size(), rows.size());
  for (std::size_t i = 0; i < rows.size(); ++i) {
    for (std::size_t j = 0; j <= i; ++j)
      part(i, j) = lower(rows[i], rows[j]);
  }
  const Matrix inverse = TriangularInverse(part);
  const Matrix square = Product(Transposed(inverse), inverse);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    for (std::size_t j = 0; j < rows.size(); ++j)
      result.inverse(rows[i], rows[j]) = square(i, j);
  }
  return result;
}

}  // namespace reference
