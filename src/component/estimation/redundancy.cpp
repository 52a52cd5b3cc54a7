#include "component/estimation/redundancy.h"

#include <cassert>
#include <cstddef>
#include <numeric>

namespace tavo {

using MCCommonMath::MCBitSet;
using MCCommonMath::MCSymMatrix;

OrvRedundancy::OrvRedundancy(int columns)
    : fpXPrimeX(std::make_unique<MCSymMatrix>(columns)), fOwnIndices(static_cast<std::size_t>(columns)) {
  std::iota(fOwnIndices.begin(), fOwnIndices.end(), 0);
}

bool OrvRedundancy::AddRow(const std::vector<int>& columns, const std::vector<double>& values,
                           double weight) {
  assert(fpXPrimeX != nullptr && columns.size() == values.size());
  if (!fpXPrimeX->UpdateXXSparse(static_cast<int>(columns.size()), columns, values, weight)) return false;
  fbHasRows = true;
  return true;
}

bool OrvRedundancy::AddBlock(const TavoRowBlock& block) {
  assert(fpXPrimeX != nullptr);
  if (block.MaxIndexPlusOne() > fpXPrimeX->GetNRows()) return false;
  block.AddOuterTo(*fpXPrimeX, block.Weights());
  fbHasRows = fbHasRows || block.RowCount() > 0;
  return true;
}

void OrvRedundancy::Find(double tolerance, const OrvCancelInfo& cancel) {
  assert(fpXPrimeX != nullptr && fCompressedIndices.empty());
  fpXPrimeX->GetDiagonal(fDiagonal);
  const int columns = fpXPrimeX->GetNRows();
  fBits.Resize(columns, false);
  for (int k = 0; k < columns && !cancel.IsCancelled(); ++k) {
    const bool isNonRedundant = fpXPrimeX->Sweep(k, tolerance, fDiagonal, fBits, true);
    // What the sweep left of a dependent column is rounding, and would look like a small dependence of later
    // ones.
    if (!isNonRedundant) fpXPrimeX->ClearResidual(k, fBits);
  }
  NumberNonRedundant();
}

void OrvRedundancy::NumberNonRedundant() {
  fNNonRedundant = 0;
  fCompressedIndices.assign(fOwnIndices.size(), -1);
  for (const int k : fOwnIndices) {
    if (fBits.IsIn(k)) fCompressedIndices[static_cast<std::size_t>(k)] = fNNonRedundant++;
  }
}

MCBitSet OrvRedundancy::BitsOfAllLogits(int logits) const {
  const int columns = fBits.Size();
  MCBitSet all(logits * columns);
  for (int logit = 0; logit < logits; ++logit) {
    for (int k = 0; k < columns; ++k)
      all.Set(logit * columns + k, fBits.IsIn(k));
  }
  return all;
}

std::vector<double> OrvRedundancy::NonRedundant(const std::vector<double>& values) const {
  assert(values.size() == fOwnIndices.size());
  std::vector<double> part;
  part.reserve(static_cast<std::size_t>(fNNonRedundant));
  for (const int k : fOwnIndices) {
    if (fBits.IsIn(k)) part.push_back(values[static_cast<std::size_t>(k)]);
  }
  return part;
}

}  // namespace tavo
