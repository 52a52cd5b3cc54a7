// Which columns of the design depend on others.
#pragma once

#include <memory>
#include <vector>

#include "component/estimation/precise_block.h"
#include "component/estimation/row_block.h"
#include "component/frame/orv_cancel_info.h"
#include "component/numerics/bit_set.h"
#include "component/numerics/precise_sym_matrix.h"
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
  ///
  /// False when it is not certain: a pivot is as near to its limit as rounding may have brought it there, or
  /// the coefficients of dependent columns have lost half their digits. Then all rows may be added once more
  /// with `AddPrecisely`, and `FindPrecisely` answers again.
  bool Find(double tolerance, const OrvCancelInfo& cancel);
  /// Adds the rows of a block of all columns in twice the precision. Memory that runs out throws
  /// std::bad_alloc.
  void AddPrecisely(OrvPreciseBlock& block);
  /// The same as `Find` from the rows that were added in twice the precision. What was found before is
  /// replaced.
  void FindPrecisely(double tolerance, const OrvCancelInfo& cancel);

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
  bool IsCertain(const std::vector<double>& pivots, double tolerance) const;
  void NumberNonRedundant();

  std::unique_ptr<MCCommonMath::MCSymMatrix> fpXPrimeX;
  std::unique_ptr<MCCommonMath::PreciseSymMatrix> fpPrecise;  // only between the two calls that use it
  std::vector<double> fDiagonal;
  bool fbHasRows = false;
  MCCommonMath::MCBitSet fBits;
  int fNNonRedundant = 0;
  std::vector<int> fCompressedIndices;
  std::vector<int> fOwnIndices;
};

}  // namespace tavo
