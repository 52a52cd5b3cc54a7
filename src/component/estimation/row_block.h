// Some rows of one pattern, column by column.
#pragma once

#include <cstddef>
#include <vector>

#include "component/numerics/sym_matrix.h"

namespace tavo {

/// The design columns that a block holds: the non-redundant ones, or all of them.
enum class BlockColumns { kNonRedundant, kAll };

/// Up to kMaxRows design rows with the same entries, as a pattern has them: what one OrvSparseVector is for a
/// row, for many rows at once. Entries are of two kinds. A constant has the same value in all rows; its part
/// of a sum over rows is worked out once per block. A column has one value per row, and these lie end to end,
/// so that a loop over rows runs in vector registers. The indices of all entries are different.
///
/// One object serves block after block: SetPattern, then for each block SetRowCount and the values of the
/// rows. Memory that runs out throws std::bad_alloc.
class TavoRowBlock {
 public:
  static constexpr std::size_t kMaxRows = 256;

  /// Drops all entries and rows.
  void Clear();
  void AddConstant(int index, double value);
  /// `source` is the owner's own number for the column, for example its model effect.
  void AddColumn(int index, std::size_t source);
  /// The values of the rows are then the caller's to write. At most kMaxRows.
  void SetRowCount(std::size_t rows) { fNRows = rows; }

  std::size_t RowCount() const { return fNRows; }
  std::size_t ColumnCount() const { return fColumnIndices.size(); }
  std::size_t Source(std::size_t column) const { return fSources[column]; }
  std::size_t ConstantCount() const { return fConstantIndices.size(); }
  int ConstantIndex(std::size_t constant) const { return fConstantIndices[constant]; }
  double ConstantValue(std::size_t constant) const { return fConstantValues[constant]; }
  int ColumnIndex(std::size_t column) const { return fColumnIndices[column]; }
  double* Column(std::size_t column) { return fColumns.data() + column * kMaxRows; }
  const double* Column(std::size_t column) const { return fColumns.data() + column * kMaxRows; }
  double* Categories() { return fCategories.data(); }
  const double* Categories() const { return fCategories.data(); }
  double* Weights() { return fWeights.data(); }
  const double* Weights() const { return fWeights.data(); }
  int MaxIndexPlusOne() const { return fMaxIndexPlusOne; }

  /// out[r] = sum over the entries of row r of value * parameters[index].
  void LinearPredictors(const double* parameters, double* out) const;
  /// dense[index] += sum over rows of c[r] * value.
  void AddScaledTo(double* dense, const double* c) const;
  /// matrix(a, b) += sum over rows of c[r] * value_a * value_b, for all pairs of entries. The matrix has at
  /// least MaxIndexPlusOne rows.
  void AddOuterTo(MCCommonMath::MCSymMatrix& matrix, const double* c) const;
  /// One row's entries, ascending by index. Outputs are overwritten.
  void ExtractRow(std::size_t row, std::vector<int>& indices, std::vector<double>& values) const;

 private:
  std::size_t fNRows = 0;
  int fMaxIndexPlusOne = 0;
  std::vector<int> fConstantIndices;
  std::vector<double> fConstantValues;
  std::vector<int> fColumnIndices;
  std::vector<std::size_t> fSources;
  std::vector<double> fColumns;                                     // ColumnCount times kMaxRows
  std::vector<double> fCategories = std::vector<double>(kMaxRows);  // local indices, whole numbers
  std::vector<double> fWeights = std::vector<double>(kMaxRows);
  mutable std::vector<double> fScaled = std::vector<double>(kMaxRows);  // work
};

}  // namespace tavo
