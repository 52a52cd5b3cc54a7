// The storage of symmetric matrices. Assigning and resizing a vector throw for want of memory and for lengths
// that no memory has; both leave an invalid matrix.

#include <algorithm>
#include <exception>
#include <utility>

#include "component/numerics/missing_value.h"
#include "component/numerics/sym_matrix.h"

namespace MCCommonMath {

MCSymMatrixData::MCSymMatrixData(MCSymMatrixData&& other) noexcept
    : fN(std::exchange(other.fN, 0)),
      fNBlocks(std::exchange(other.fNBlocks, 1)),
      fbValid(other.fbValid),
      fElements(std::move(other.fElements)) {
  other.fElements.clear();  // a moved-from vector may still hold elements, a matrix of size 0 may not
}

MCSymMatrixData& MCSymMatrixData::operator=(const MCSymMatrixData& other) {
  if (this != &other) {
    Assign(other);
  }
  return *this;
}

MCSymMatrixData& MCSymMatrixData::operator=(MCSymMatrixData&& other) noexcept {
  if (this != &other) {
    fN = std::exchange(other.fN, 0);
    fNBlocks = std::exchange(other.fNBlocks, 1);
    fbValid = other.fbValid;
    fElements = std::move(other.fElements);
    other.fElements.clear();
  }
  return *this;
}

bool MCSymMatrixData::SetNRows(int n) {
  if (n < 0) {
    return Invalidate();
  }
  try {
    fElements.assign(PackedSize(n), 0.0);
  } catch (const std::exception&) {
    return Invalidate();
  }
  fN = n;
  fNBlocks = 1;
  fbValid = true;
  return true;
}

bool MCSymMatrixData::Resize(int n) {
  if (n < 0) {
    return Invalidate();
  }
  try {
    // By rows, the leading elements of the packed triangle are the leading rows and columns.
    fElements.resize(PackedSize(n), 0.0);
  } catch (const std::exception&) {
    return Invalidate();
  }
  if (n == 0) {  // resizing keeps the memory, and releasing it is what size 0 is asked for
    std::vector<double>().swap(fElements);
  }
  fN = n;
  fNBlocks = 1;
  fbValid = true;
  return true;
}

void MCSymMatrixData::Clear() {
  std::fill(fElements.begin(), fElements.end(), 0.0);
}

bool MCSymMatrixData::SetElem(int i, int j, double value) {
  if (!IsInside(i, j)) {
    return false;
  }
  fElements[Position(std::max(i, j), std::min(i, j))] = value;
  return true;
}

double MCSymMatrixData::GetElem(int i, int j) const {
  return IsInside(i, j) ? fElements[Position(std::max(i, j), std::min(i, j))] : MCMV::gMissingValue;
}

double MCSymMatrixData::GetElem(int blockRow, int blockCol, int i, int j) const {
  const int size = fN / fNBlocks;
  if (blockRow < 0 || blockRow >= fNBlocks || blockCol < 0 || blockCol >= fNBlocks || i < 0 || i >= size ||
      j < 0 || j >= size) {
    return MCMV::gMissingValue;
  }
  return GetElem(blockRow * size + i, blockCol * size + j);
}

bool MCSymMatrixData::SetNBlocks(int b) {
  if (b < 1 || fN % b != 0) {
    return false;
  }
  fNBlocks = b;
  return true;
}

void MCSymMatrixData::GetDiagonal(std::vector<double>& out) const {
  out.resize(static_cast<std::size_t>(fN));
  for (int i = 0; i < fN; ++i) {
    out[static_cast<std::size_t>(i)] = fElements[Position(i, i)];
  }
}

bool MCSymMatrixData::Invalidate() {
  std::vector<double>().swap(fElements);
  fN = 0;
  fNBlocks = 1;
  fbValid = false;
  return false;
}

void MCSymMatrixData::Assign(const MCSymMatrixData& other) {
  try {
    fElements = other.fElements;
    fN = other.fN;
    fNBlocks = other.fNBlocks;
    fbValid = other.fbValid;
  } catch (const std::exception&) {
    Invalidate();
  }
}

}  // namespace MCCommonMath
