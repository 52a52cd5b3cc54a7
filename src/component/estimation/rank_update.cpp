#include "component/estimation/rank_update.h"

#include <algorithm>
#include <cassert>
#include <new>

namespace tavo {

bool OrvRankUpdate::SetLength(int n) {
  fLength = static_cast<std::size_t>(std::max(n, 0));
  fNRows = 0;
  try {
    fRows.assign(kBlockRows * fLength, 0.0);
  } catch (const std::bad_alloc&) {
    fLength = 0;
    return false;
  }
  return true;
}

double* OrvRankUpdate::NextRow(double weight) {
  assert(!IsFull());
  double* row = fRows.data() + fNRows * fLength;
  std::fill(row, row + fLength, 0.0);
  fWeights[fNRows++] = weight;
  return row;
}

void OrvRankUpdate::FlushInto(MCCommonMath::MCSymMatrix& matrix) {
  if (fNRows == 0) return;
  assert(static_cast<std::size_t>(matrix.GetNRows()) == fLength);
  // A block that isn't full is filled up with rows that add nothing.
  while (!IsFull())
    NextRow(0.0);
  fNRows = 0;

  // The sum is in pairs, so that it does not wait for itself, and so that its order is the same on every
  // machine.
  static_assert(kBlockRows == 8, "the sum below is written out for 8 rows");
  const std::size_t n = fLength;
  const double* __restrict r0 = fRows.data();
  const double* __restrict r1 = r0 + n;
  const double* __restrict r2 = r1 + n;
  const double* __restrict r3 = r2 + n;
  const double* __restrict r4 = r3 + n;
  const double* __restrict r5 = r4 + n;
  const double* __restrict r6 = r5 + n;
  const double* __restrict r7 = r6 + n;
  double* __restrict target = matrix.AsVector().data();
  const auto& w = fWeights;
  for (std::size_t i = 0; i < n; ++i) {
    const double c0 = w[0] * r0[i], c1 = w[1] * r1[i], c2 = w[2] * r2[i], c3 = w[3] * r3[i];
    const double c4 = w[4] * r4[i], c5 = w[5] * r5[i], c6 = w[6] * r6[i], c7 = w[7] * r7[i];
    for (std::size_t j = 0; j <= i; ++j) {
      target[j] += ((c0 * r0[j] + c1 * r1[j]) + (c2 * r2[j] + c3 * r3[j])) +
                   ((c4 * r4[j] + c5 * r5[j]) + (c6 * r6[j] + c7 * r7[j]));
    }
    target += i + 1;
  }
}

}  // namespace tavo
