#include "component/estimation/sparse_vector.h"

#include <algorithm>
#include <cstddef>

#include "component/numerics/missing_value.h"

namespace tavo {

using MCCommonMath::MCMV;
using MCCommonMath::MCSymMatrix;

namespace {

// Ascending indices are different ones, so that no element is added to twice, and the last one is the
// largest.
bool AscendsFromZeroOn(const std::vector<int>& indices) {
  int previous = -1;
  for (const int index : indices) {
    if (index <= previous) return false;
    previous = index;
  }
  return true;
}

}  // namespace

OrvSparseVector::OrvSparseVector(const std::vector<int>& indices, const std::vector<double>& values)
    : fIndices(indices),
      fValues(values),
      fbValid(!indices.empty() && indices.size() == values.size() && AscendsFromZeroOn(indices)) {}

int OrvSparseVector::MaxIndexPlusOne() const {
  return fbValid ? fIndices.back() + 1 : 0;
}

bool OrvSparseVector::FitsInto(const std::vector<double>& dense, int offset) const {
  return fbValid && offset >= 0 &&
         static_cast<std::size_t>(offset) + static_cast<std::size_t>(MaxIndexPlusOne()) <= dense.size();
}

bool OrvSparseVector::IsDense() const {
  return static_cast<std::size_t>(MaxIndexPlusOne()) == fIndices.size();
}

// The loops below run once a row and logit: pointers and counts are taken out of them.
double OrvSparseVector::LinearPredictor(const std::vector<double>& parameters, int offset) const {
  if (!FitsInto(parameters, offset)) return MCMV::gMissingValue;
  const double* block = parameters.data() + offset;
  const int* index = fIndices.data();
  const double* value = fValues.data();
  const std::size_t n = fIndices.size();
  double sum = 0;
  for (std::size_t e = 0; e < n; ++e)
    sum += value[e] * block[index[e]];
  return sum;
}

bool OrvSparseVector::AddScaledTo(std::vector<double>& dense, int offset, double c) const {
  if (!FitsInto(dense, offset)) return false;
  double* block = dense.data() + offset;
  const int* index = fIndices.data();
  const double* value = fValues.data();
  const std::size_t n = fIndices.size();
  for (std::size_t e = 0; e < n; ++e)
    block[index[e]] += c * value[e];
  return true;
}

bool OrvSparseVector::AddOuterTo(MCSymMatrix& block, double c) const {
  if (!fbValid) return false;
  if (block.GetNRows() < MaxIndexPlusOne() && !block.Resize(MaxIndexPlusOne())) return false;
  double* packed = block.AsVector().data();
  const int* index = fIndices.data();
  const double* value = fValues.data();
  const std::size_t n = fIndices.size();
  if (IsDense()) {
    // Columns 0 .. n-1 without a gap: the rows of the triangle lie end to end, and so do the values.
    for (std::size_t a = 0; a < n; ++a) {
      const double ca = c * value[a];
      for (std::size_t b = 0; b <= a; ++b)
        packed[b] += ca * value[b];
      packed += a + 1;
    }
    return true;
  }
  // Ascending indices: column index[b] of row index[a] is in the lower triangle for each b up to a.
  for (std::size_t a = 0; a < n; ++a) {
    double* row = packed + MCSymMatrix::PackedSize(index[a]);
    const double ca = c * value[a];
    for (std::size_t b = 0; b <= a; ++b)
      row[index[b]] += ca * value[b];
  }
  return true;
}

void OrvSparseVector::ExpandToDense(std::vector<double>& dense) const {
  const std::size_t length = static_cast<std::size_t>(MaxIndexPlusOne());
  dense.resize(std::max(dense.size(), length));
  std::fill(dense.begin(), dense.end(), 0.0);
  if (!fbValid) return;
  for (std::size_t e = 0; e < fIndices.size(); ++e)
    dense[static_cast<std::size_t>(fIndices[e])] = fValues[e];
}

}  // namespace tavo
