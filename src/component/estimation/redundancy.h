// Which columns of the design depend on others.
#pragma once

#include <memory>
#include <vector>

#include "component/estimation/row_block.h"
#include "component/frame/orv_cancel_info.h"
#include "component/numerics/bit_set.h"
#include "component/numerics/sym_matrix.h"

namespace tavo {

/// Sums X'WX over the rows of the p basic design columns, which all logits share, and sweeps it (Goodnight
/// 1979): a column that is a linear combination of earlier ones is redundant, so that of dependent columns
/// the earliest stay. Non-redundant columns are numbered anew, from 0; that is their compressed index.
class OrvRedundancy {
 public:
  /// Of no columns.
  OrvRedundancy() = default;
  /// Not valid when memory ran out.
  explicit OrvRedundancy(int columns);
  bool IsValid() const { return fpXPrimeX != nullptr && fpXPrimeX->IsValidMatrix(); }

  /// Adds w x x' of a row with the given columns (all different, in any order) and values. False, with
  /// nothing added, when a column is out of range.
  bool AddRow(const std::vector<int>& columns, const std::vector<double>& values, double weight);
  /// The same for the rows of a block that was started with all columns.
  bool AddBlock(const TavoRowBlock& block);
  bool HasRows() const { return fbHasRows; }

  /// Sweeps the matrix; a column stays when its pivot exceeds `tolerance` times its diagonal element. A
  /// cancel ends it early; what was found is incomplete then. Once, after the last row.
  void Find(double tolerance, const OrvCancelInfo& cancel);

  /// A set bit marks a non-redundant column.
  const MCCommonMath::MCBitSet& Bits() const { return fBits; }
  /// The same for all parameters of so many logits.
  MCCommonMath::MCBitSet BitsOfAllLogits(int logits) const;
  int NonRedundantCount() const { return fNNonRedundant; }
  /// By column: its compressed index, -1 when it is redundant.
  const std::vector<int>& CompressedIndices() const { return fCompressedIndices; }
  /// By column: its own number.
  const std::vector<int>& OwnIndices() const { return fOwnIndices; }
  /// Those elements of a vector over the columns that belong to non-redundant ones.
  std::vector<double> NonRedundant(const std::vector<double>& values) const;

  /// Swept on Bits() by `Find`; null after `ReleaseXPrimeX`.
  const MCCommonMath::MCSymMatrix* XPrimeX() const { return fpXPrimeX.get(); }
  /// Its diagonal before the sweep.
  const std::vector<double>& XPrimeXDiagonal() const { return fDiagonal; }
  void ReleaseXPrimeX() { fpXPrimeX.reset(); }

 private:
  void NumberNonRedundant();

  std::unique_ptr<MCCommonMath::MCSymMatrix> fpXPrimeX;
  std::vector<double> fDiagonal;
  bool fbHasRows = false;
  MCCommonMath::MCBitSet fBits;
  int fNNonRedundant = 0;
  std::vector<int> fCompressedIndices;
  std::vector<int> fOwnIndices;
};

}  // namespace tavo
