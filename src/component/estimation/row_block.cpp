// With the constants k of a block (the same in all rows) and its columns v, the sum over rows of c x x' falls
// into three parts: of two constants, k k' times the sum of c, whatever the number of rows; of a column and a
// constant, k times the sum of c v; of two columns, the sum of c v u. In a pattern most entries are
// constants, those of factors.
#include "component/estimation/row_block.h"

#include <algorithm>
#include <utility>

#include "component/numerics/vector_kernels.h"

namespace tavo {

using MCCommonMath::MCSymMatrix;
namespace vectors = MCCommonMath::vectors;

namespace {

// Constants and columns have indices in any order among each other; the packed triangle holds the lower half.
double& ElementOf(double* packed, int a, int b) {
  return packed[MCSymMatrix::Position(std::max(a, b), std::min(a, b))];
}

}  // namespace

void TavoRowBlock::Clear() {
  fNRows = 0;
  fMaxIndexPlusOne = 0;
  fConstantIndices.clear();
  fConstantValues.clear();
  fColumnIndices.clear();
  fSources.clear();
}

void TavoRowBlock::AddConstant(int index, double value) {
  fConstantIndices.push_back(index);
  fConstantValues.push_back(value);
  fMaxIndexPlusOne = std::max(fMaxIndexPlusOne, index + 1);
}

void TavoRowBlock::AddColumn(int index, std::size_t source) {
  fColumnIndices.push_back(index);
  fSources.push_back(source);
  // Never smaller: one block serves patterns with many columns and with few.
  fColumns.resize(std::max(fColumns.size(), fColumnIndices.size() * kMaxRows));
  fMaxIndexPlusOne = std::max(fMaxIndexPlusOne, index + 1);
}

void TavoRowBlock::LinearPredictors(const double* parameters, double* out) const {
  double shared = 0;
  for (std::size_t e = 0; e < fConstantIndices.size(); ++e)
    shared += fConstantValues[e] * parameters[fConstantIndices[e]];
  std::fill(out, out + fNRows, shared);
  for (std::size_t v = 0; v < fColumnIndices.size(); ++v)
    vectors::AddScaled(parameters[fColumnIndices[v]], Column(v), out, fNRows);
}

void TavoRowBlock::AddScaledTo(double* dense, const double* c) const {
  const double total = vectors::Sum(c, fNRows);
  for (std::size_t e = 0; e < fConstantIndices.size(); ++e)
    dense[fConstantIndices[e]] += total * fConstantValues[e];
  for (std::size_t v = 0; v < fColumnIndices.size(); ++v)
    dense[fColumnIndices[v]] += vectors::Dot(c, Column(v), fNRows);
}

void TavoRowBlock::AddOuterTo(MCSymMatrix& matrix, const double* c) const {
  double* const packed = matrix.AsVector().data();
  const double total = vectors::Sum(c, fNRows);
  for (std::size_t a = 0; a < fConstantIndices.size(); ++a) {
    const double scaled = total * fConstantValues[a];
    for (std::size_t b = 0; b <= a; ++b)
      ElementOf(packed, fConstantIndices[a], fConstantIndices[b]) += scaled * fConstantValues[b];
  }
  for (std::size_t v = 0; v < fColumnIndices.size(); ++v) {
    vectors::Multiply(c, Column(v), fScaled.data(), fNRows);
    const double sum = vectors::Sum(fScaled.data(), fNRows);
    for (std::size_t e = 0; e < fConstantIndices.size(); ++e)
      ElementOf(packed, fColumnIndices[v], fConstantIndices[e]) += sum * fConstantValues[e];
    for (std::size_t u = 0; u <= v; ++u) {
      ElementOf(packed, fColumnIndices[v], fColumnIndices[u]) +=
          vectors::Dot(fScaled.data(), Column(u), fNRows);
    }
  }
}

void TavoRowBlock::ExtractRow(std::size_t row, std::vector<int>& indices, std::vector<double>& values) const {
  // Constants come first in a block; a row is wanted in the order of its indices.
  std::vector<std::pair<int, double>> entries;
  for (std::size_t e = 0; e < fConstantIndices.size(); ++e)
    entries.emplace_back(fConstantIndices[e], fConstantValues[e]);
  for (std::size_t v = 0; v < fColumnIndices.size(); ++v)
    entries.emplace_back(fColumnIndices[v], Column(v)[row]);
  std::sort(entries.begin(), entries.end());
  indices.clear();
  values.clear();
  for (const auto& [index, value] : entries) {
    indices.push_back(index);
    values.push_back(value);
  }
}

}  // namespace tavo
