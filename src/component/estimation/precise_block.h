// Some rows of one pattern in twice the precision.
#pragma once

#include <cstddef>
#include <vector>

#include "component/estimation/row_block.h"
#include "component/numerics/precise_sym_matrix.h"
#include "component/numerics/precise_vectors.h"

namespace tavo {

/// A TavoRowBlock with its columns in twice the precision, and the same sums over them. One object serves
/// block after block.
class OrvPreciseBlock {
 public:
  /// Takes entries, rows, categories and weights from `block`, which is not owned and is read until the next
  /// call. The values of the columns are then the caller's to write.
  void Start(const TavoRowBlock& block);
  const TavoRowBlock& Block() const { return *fpBlock; }
  MCCommonMath::PreciseColumn& Column(std::size_t column) { return fColumns[column]; }

  /// out[r] = sum over the entries of row r of value * parameters[first + index].
  void LinearPredictors(const MCCommonMath::PreciseColumn& parameters, std::size_t first,
                        MCCommonMath::PreciseColumn& out) const;
  /// dense[first + index] += sum over rows of c[r] * value.
  void AddScaledTo(MCCommonMath::PreciseColumn& dense, std::size_t first,
                   const MCCommonMath::PreciseColumn& c) const;
  /// matrix(row + a, column + b) += sum over rows of c[r] * value_a * value_b, over all pairs of entries, or,
  /// with row = column, over those with b <= a.
  void AddOuterTo(MCCommonMath::PreciseSymMatrix& matrix, int row, int column,
                  const MCCommonMath::PreciseColumn& c);

 private:
  std::size_t EntryCount() const { return fpBlock->ConstantCount() + fpBlock->ColumnCount(); }
  int IndexOf(std::size_t entry) const;
  MCCommonMath::DoubleDouble SumOfProduct(std::size_t entry, std::size_t other) const;

  const TavoRowBlock* fpBlock = nullptr;
  std::vector<MCCommonMath::PreciseColumn> fColumns;
  // Work: the weights of a sum times each entry, and their sums.
  std::vector<MCCommonMath::PreciseColumn> fScaled;
  std::vector<MCCommonMath::DoubleDouble> fScaledSums;
};

}  // namespace tavo
