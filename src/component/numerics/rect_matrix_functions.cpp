// Columns of estimable functions: projections and eliminations.
//
// The hypothesis of an effect (type III, Goodnight 1976) is made here of columns H: what belongs to effects
// that contain it is taken out by orthogonal projection, what belongs to unrelated effects by elimination.
// Both have to tell a column that is gone from one that is small, and compare with the column's own length.

#include <Eigen/QR>
#include <algorithm>
#include <cmath>
#include <exception>
#include <numeric>
#include <vector>

#include "component/numerics/bit_set.h"
#include "component/numerics/machine_constants.h"
#include "component/numerics/rect_matrix.h"

namespace MCCommonMath {

namespace {

// What a chain of eliminations over as many rows as there are parameters may leave of rounding, in units of
// the machine precision.
constexpr double kRoundingShare = 64.0;

// Rows in which any column of the basis has an element; a projection changes nothing elsewhere.
std::vector<int> RowsInUse(const MCRectMatrixData& basis) {
  std::vector<int> rows;
  const double* element = basis.AsVectorConst().data();
  for (int i = 0; i < basis.GetNRows(); ++i, element += basis.GetNCols()) {
    if (std::any_of(element, element + basis.GetNCols(), [](double x) { return x != 0.0; })) {
      rows.push_back(i);
    }
  }
  return rows;
}

Eigen::MatrixXd SubMatrix(const MCRectMatrixData& source, const std::vector<int>& rows,
                          const std::vector<int>& cols) {
  Eigen::MatrixXd part(static_cast<Eigen::Index>(rows.size()), static_cast<Eigen::Index>(cols.size()));
  for (Eigen::Index j = 0; j < part.cols(); ++j) {
    for (Eigen::Index i = 0; i < part.rows(); ++i) {
      part(i, j) = source.GetElem(rows[static_cast<std::size_t>(i)], cols[static_cast<std::size_t>(j)]);
    }
  }
  return part;
}

// Takes out of `columns` what the first `rank` columns of an orthogonal factor span.
template <typename Factor>
void RemoveSpan(const Factor& q, Eigen::Index rank, Eigen::MatrixXd& columns) {
  columns.applyOnTheLeft(q.adjoint());
  columns.topRows(rank).setZero();
  columns.applyOnTheLeft(q);
}

// Projects on the columns of the basis, which have length 1 or are 0, by Householder reflections (Golub and
// Van Loan 2013, section 5.2): unlike normal equations they lose no digits of a nearly dependent basis. The
// plain factorisation is the fast one, and right when all columns are independent; with pivoting, dependent
// columns come last and are left out.
void RemoveBasis(const Eigen::MatrixXd& basis, double tol, MCBitSet& basisBits, Eigen::MatrixXd& columns) {
  if (basis.cols() <= basis.rows()) {
    const Eigen::HouseholderQR<Eigen::MatrixXd> plain(basis);
    if (plain.matrixQR().diagonal().cwiseAbs2().minCoeff() > tol) {
      basisBits.SetRange(0, basisBits.Size() - 1, true);
      RemoveSpan(plain.householderQ(), basis.cols(), columns);
      return;
    }
  }
  Eigen::ColPivHouseholderQR<Eigen::MatrixXd> pivoted(basis);
  pivoted.setThreshold(std::sqrt(tol));
  for (Eigen::Index k = 0; k < pivoted.rank(); ++k) {
    basisBits.Set(static_cast<int>(pivoted.colsPermutation().indices()(k)), true);
  }
  RemoveSpan(pivoted.householderQ(), pivoted.rank(), columns);
}

double SquaredLength(const MCRectMatrixData& matrix, int col) {
  double sum = 0.0;
  for (int i = 0; i < matrix.GetNRows(); ++i) {
    sum += matrix.GetElem(i, col) * matrix.GetElem(i, col);
  }
  return sum;
}

}  // namespace

bool MCRectMatrix::ResidOfOrthProjection(const MCRectMatrix& basis, double tol, MCBitSet& basisBits,
                                         MCBitSet& liveBits) {
  if (basis.GetNRows() != GetNRows() || liveBits.Size() != GetNCols()) {
    return false;
  }
  try {
    basisBits.Resize(basis.GetNCols(), false);
    const std::vector<int> rows = RowsInUse(basis);
    const std::vector<int> live = liveBits.Members();
    if (rows.empty() || live.empty()) {
      return true;
    }
    std::vector<int> all(static_cast<std::size_t>(basis.GetNCols()));
    std::iota(all.begin(), all.end(), 0);
    Eigen::MatrixXd span = SubMatrix(basis, rows, all);
    span.colwise().normalize();
    Eigen::MatrixXd columns = SubMatrix(*this, rows, live);
    RemoveBasis(span, tol, basisBits, columns);
    for (std::size_t c = 0; c < live.size(); ++c) {
      const double before = SquaredLength(*this, live[c]);
      for (std::size_t r = 0; r < rows.size(); ++r) {
        SetElem(rows[r], live[c], columns(static_cast<Eigen::Index>(r), static_cast<Eigen::Index>(c)));
      }
      // Squared lengths: a tolerance of 1e-12 lets a column live that keeps a millionth of its length.
      if (SquaredLength(*this, live[c]) <= tol * before) {
        liveBits.Set(live[c], false);
        for (int i = 0; i < GetNRows(); ++i) {
          SetElem(i, live[c], 0.0);
        }
      }
    }
    return true;
  } catch (const std::exception&) {
    return false;
  }
}

bool MCRectMatrix::ZeroOutPivotRow(int row, double tol, const MCBitSet& liveBits, int& pivotColumn) {
  pivotColumn = -1;
  if (row < 0 || row >= GetNRows() || liveBits.Size() != GetNCols()) {
    return false;
  }
  const double* pivotRow = Row(row);
  for (int j = 0; j < GetNCols() && pivotColumn < 0; ++j) {
    if (liveBits.IsIn(j) && std::abs(pivotRow[j]) > tol) {
      pivotColumn = j;
    }
  }
  if (pivotColumn < 0) {
    return true;
  }
  for (int j = 0; j < GetNCols(); ++j) {
    const double factor = GetElem(row, j) / GetElem(row, pivotColumn);
    if (j == pivotColumn || factor == 0.0) {
      continue;
    }
    for (int i = 0; i < GetNRows(); ++i) {  // in the row itself exactly 0, where the difference would round
      SetElem(i, j, i == row ? 0.0 : GetElem(i, j) - factor * GetElem(i, pivotColumn));
    }
  }
  return true;
}

bool MCRectMatrix::ColClean(int col, double scale) {
  if (col < 0 || col >= GetNCols()) {
    return false;
  }
  double largest = 0.0;
  for (int i = 0; i < GetNRows(); ++i) {
    largest = std::max(largest, std::abs(GetElem(i, col)));
  }
  const double limit = kRoundingShare * scale * MCPower::gMachineEpsilon * largest;
  for (int i = 0; i < GetNRows(); ++i) {
    if (std::abs(GetElem(i, col)) <= limit) {
      SetElem(i, col, 0.0);
    }
  }
  return true;
}

}  // namespace MCCommonMath
