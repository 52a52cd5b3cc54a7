#include "component/estimation/redundancy.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstddef>
#include <limits>
#include <numeric>

namespace tavo {

using MCCommonMath::MCBitSet;
using MCCommonMath::MCSymMatrix;
using MCCommonMath::PreciseColumn;
using MCCommonMath::PreciseSymMatrix;

namespace {

// Roundings of a pivot: those of its sum over the rows, which grow slowly, and those of the sweeps.
constexpr double kRoundings = 16;
// Beyond it the swept matrix has 12 digits at most, and is better summed again.
constexpr double kLargestInflation = 1e4;
// Columns for which arithmetic in twice the precision, some 20 times as slow, still takes no more than
// seconds.
constexpr int kMostPrecise = 1000;

}  // namespace

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

bool OrvRedundancy::Find(double tolerance, const OrvCancelInfo& cancel) {
  assert(fpXPrimeX != nullptr && fCompressedIndices.empty());
  fpXPrimeX->GetDiagonal(fDiagonal);
  const int columns = fpXPrimeX->GetNRows();
  fBits.Resize(columns, false);
  std::vector<double> pivots;
  for (int k = 0; k < columns && !cancel.IsCancelled(); ++k) {
    pivots.push_back(fpXPrimeX->GetElem(k, k));
    const bool isNonRedundant = fpXPrimeX->Sweep(k, tolerance, fDiagonal, fBits, true);
    // What the sweep left of a dependent column is rounding, and would look like a small dependence of later
    // ones.
    if (!isNonRedundant) fpXPrimeX->ClearResidual(k, fBits);
  }
  NumberNonRedundant();
  return cancel.IsCancelled() || columns > kMostPrecise || IsCertain(pivots, tolerance);
}

// What is left of a column when others are taken out of it is off by a rounding of the column itself for each
// unit of the largest variance inflation (Marquardt 1970) of those others: columns that nearly cancel each
// other, as an intercept and the indicators of all levels but a rare one do, magnify it.
bool OrvRedundancy::IsCertain(const std::vector<double>& pivots, double tolerance) const {
  double inflation = 1.0;
  for (const int k : fOwnIndices) {
    if (!fBits.IsIn(k)) continue;
    inflation = std::max(inflation, -fpXPrimeX->GetElem(k, k) * fDiagonal[static_cast<std::size_t>(k)]);
  }
  if (inflation > kLargestInflation) return false;
  const double rounding = kRoundings * std::numeric_limits<double>::epsilon() * inflation;
  for (std::size_t k = 0; k < pivots.size(); ++k) {
    if (fDiagonal[k] > 0 && std::abs(pivots[k] / fDiagonal[k] - tolerance) <= rounding) return false;
  }
  return true;
}

void OrvRedundancy::AddPrecisely(OrvPreciseBlock& block) {
  const int columns = static_cast<int>(fOwnIndices.size());
  if (fpPrecise == nullptr) fpPrecise = std::make_unique<PreciseSymMatrix>(columns);
  PreciseColumn weights(block.Block().RowCount());
  std::copy_n(block.Block().Weights(), weights.Size(), weights.high.begin());
  block.AddOuterTo(*fpPrecise, 0, 0, weights);
}

void OrvRedundancy::FindPrecisely(double tolerance, const OrvCancelInfo& cancel) {
  assert(fpPrecise != nullptr && fpXPrimeX != nullptr);
  const int columns = fpPrecise->GetNRows();
  fBits.Resize(columns, false);
  for (int k = 0; k < columns; ++k)
    fDiagonal[static_cast<std::size_t>(k)] = fpPrecise->Get(k, k).Value();
  for (int k = 0; k < columns && !cancel.IsCancelled(); ++k) {
    if (!fpPrecise->Sweep(k, tolerance, fDiagonal, fBits)) fpPrecise->ClearResidual(k, fBits);
  }
  fpPrecise->RoundTo(*fpXPrimeX);
  fpPrecise.reset();
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
