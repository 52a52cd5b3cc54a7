// Sums of outer products, several rows at a time.
#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "component/numerics/sym_matrix.h"

namespace tavo {

/// Collects weighted rows and adds sum of w v v' to a packed symmetric matrix in one walk over its triangle
/// per kBlockRows rows: the triangle is read and written once instead of once per row.
class OrvRankUpdate {
 public:
  static constexpr std::size_t kBlockRows = 8;

  /// Rows of n values; drops what was collected. False when memory ran out.
  bool SetLength(int n);
  /// Room for the next row, all 0, for the caller to fill before the next call. Not when the block is full:
  /// flush it first.
  double* NextRow(double weight);
  bool IsFull() const { return fNRows == kBlockRows; }
  /// Adds the collected rows to a matrix of n rows and forgets them.
  void FlushInto(MCCommonMath::MCSymMatrix& matrix);

 private:
  std::size_t fLength = 0;
  std::size_t fNRows = 0;
  std::array<double, kBlockRows> fWeights{};
  std::vector<double> fRows;
};

}  // namespace tavo
