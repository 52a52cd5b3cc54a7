// The storage of rectangular matrices and their plain products. As with the symmetric ones, a size that no
// memory has leaves an invalid matrix.
#include "component/numerics/rect_matrix.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "component/numerics/missing_value.h"

namespace MCCommonMath {

MCRectMatrixData::MCRectMatrixData(MCRectMatrixData&& other) noexcept
    : fNRows(std::exchange(other.fNRows, 0)),
      fNCols(std::exchange(other.fNCols, 0)),
      fbValid(other.fbValid),
      fElements(std::move(other.fElements)) {
  other.fElements.clear();
}

MCRectMatrixData& MCRectMatrixData::operator=(const MCRectMatrixData& other) {
  if (this != &other) {
    Assign(other);
  }
  return *this;
}

MCRectMatrixData& MCRectMatrixData::operator=(MCRectMatrixData&& other) noexcept {
  if (this != &other) {
    fNRows = std::exchange(other.fNRows, 0);
    fNCols = std::exchange(other.fNCols, 0);
    fbValid = other.fbValid;
    fElements = std::move(other.fElements);
    other.fElements.clear();
  }
  return *this;
}

bool MCRectMatrixData::SetNRowsCols(int rows, int cols) {
  if (rows < 0 || cols < 0) {
    return Invalidate();
  }
  try {
    fElements.assign(static_cast<std::size_t>(rows) * static_cast<std::size_t>(cols), 0.0);
  } catch (const std::exception&) {
    return Invalidate();
  }
  fNRows = rows;
  fNCols = cols;
  fbValid = true;
  return true;
}

double MCRectMatrixData::GetElem(int i, int j) const {
  return IsInside(i, j) ? fElements[Position(i, j)] : MCMV::gMissingValue;
}

bool MCRectMatrixData::SetElem(int i, int j, double value) {
  if (!IsInside(i, j)) {
    return false;
  }
  fElements[Position(i, j)] = value;
  return true;
}

bool MCRectMatrixData::Invalidate() {
  std::vector<double>().swap(fElements);
  fNRows = 0;
  fNCols = 0;
  fbValid = false;
  return false;
}

void MCRectMatrixData::Assign(const MCRectMatrixData& other) {
  try {
    fElements = other.fElements;
    fNRows = other.fNRows;
    fNCols = other.fNCols;
    fbValid = other.fbValid;
  } catch (const std::exception&) {
    Invalidate();
  }
}

bool MCRectMatrix::GetRow(int i, std::vector<double>& out) const {
  out.clear();
  if (i < 0 || i >= GetNRows()) {
    return false;
  }
  out.assign(Row(i), Row(i) + GetNCols());
  return true;
}

bool MCRectMatrix::Transpose() {
  MCRectMatrix turned;
  if (!turned.SetNRowsCols(GetNCols(), GetNRows())) {
    return false;
  }
  for (int i = 0; i < GetNRows(); ++i) {
    for (int j = 0; j < GetNCols(); ++j) {
      turned.AsVector()[turned.Position(j, i)] = AsVectorConst()[Position(i, j)];
    }
  }
  *this = std::move(turned);
  return true;
}

bool MCRectMatrix::ComputeRV(const std::vector<double>& v, std::vector<double>& result) const {
  if (v.size() != static_cast<std::size_t>(GetNCols())) {
    result.clear();
    return false;
  }
  std::vector<double> product(static_cast<std::size_t>(GetNRows()), 0.0);  // v and result may be one vector
  for (int i = 0; i < GetNRows(); ++i) {
    const double* row = Row(i);
    double sum = 0.0;
    for (std::size_t j = 0; j < v.size(); ++j) {
      sum += row[j] * v[j];
    }
    product[static_cast<std::size_t>(i)] = sum;
  }
  result = std::move(product);
  return true;
}

double MCRectMatrix::DotProductRowCol(int row, const MCRectMatrixData& other, int col) const {
  if (row < 0 || row >= GetNRows() || col < 0 || col >= other.GetNCols() || GetNCols() != other.GetNRows()) {
    return MCMV::gMissingValue;
  }
  double sum = 0.0;
  for (int k = 0; k < GetNCols(); ++k) {
    sum += AsVectorConst()[Position(row, k)] * other.GetElem(k, col);
  }
  return sum;
}

bool MCRectMatrix::IsRowZero(int i) const {
  // Exactly, not within a tolerance: rows that are rounding were cleaned where they were made, and what a
  // user wrote is meant as written.
  return i >= 0 && i < GetNRows() &&
         std::all_of(Row(i), Row(i) + GetNCols(), [](double x) { return x == 0.0; });
}

}  // namespace MCCommonMath
