// A view of one sparse design row.
#pragma once

#include <vector>

#include "component/numerics/sym_matrix.h"

namespace tavo {

/// Two parallel vectors, not owned: strictly ascending indices from 0 on, and values. Valid when there is at
/// least one element, the lengths agree and the indices ascend. The operations of a view that isn't valid
/// change nothing and answer as for a vector too short.
class OrvSparseVector {
 public:
  OrvSparseVector(const std::vector<int>& indices, const std::vector<double>& values);
  bool IsValid() const { return fbValid; }
  int MaxIndexPlusOne() const;
  /// Sum of values[e] * parameters[indices[e] + offset]; missing for a negative offset or a vector too short.
  double LinearPredictor(const std::vector<double>& parameters, int offset) const;
  /// dense[indices[e] + offset] += c * values[e]. False for a negative offset or a vector too short.
  bool AddScaledTo(std::vector<double>& dense, int offset, double c) const;
  /// block(indices[a], indices[b]) += c * values[a] * values[b] for b <= a; a block that is too small is
  /// enlarged. False when memory for that ran out.
  bool AddOuterTo(MCCommonMath::MCSymMatrix& block, double c) const;
  /// Missing places become 0; `dense` is at least MaxIndexPlusOne long.
  void ExpandToDense(std::vector<double>& dense) const;

 private:
  bool FitsInto(const std::vector<double>& dense, int offset) const;
  bool IsDense() const;  // the indices have no gap

  const std::vector<int>& fIndices;
  const std::vector<double>& fValues;
  bool fbValid;
};

}  // namespace tavo
