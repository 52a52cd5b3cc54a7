#include "component/estimation/precise_block.h"

#include <algorithm>

namespace tavo {

using MCCommonMath::DoubleDouble;
using MCCommonMath::PreciseColumn;
using MCCommonMath::PreciseSymMatrix;
namespace precise = MCCommonMath::precise;

void OrvPreciseBlock::Start(const TavoRowBlock& block) {
  fpBlock = &block;
  fColumns.resize(std::max(fColumns.size(), block.ColumnCount()), PreciseColumn(TavoRowBlock::kMaxRows));
  fScaled.resize(std::max(fScaled.size(), block.ColumnCount()), PreciseColumn(TavoRowBlock::kMaxRows));
}

// Constants come first.
int OrvPreciseBlock::IndexOf(std::size_t entry) const {
  const std::size_t constants = fpBlock->ConstantCount();
  return entry < constants ? fpBlock->ConstantIndex(entry) : fpBlock->ColumnIndex(entry - constants);
}

void OrvPreciseBlock::LinearPredictors(const PreciseColumn& parameters, std::size_t first,
                                       PreciseColumn& out) const {
  const auto parameter = [&](std::size_t entry) {
    return parameters.Get(first + static_cast<std::size_t>(IndexOf(entry)));
  };
  DoubleDouble shared;
  const std::size_t constants = fpBlock->ConstantCount();
  for (std::size_t e = 0; e < constants; ++e)
    shared += parameter(e) * fpBlock->ConstantValue(e);
  for (std::size_t r = 0; r < fpBlock->RowCount(); ++r)
    out.Set(r, shared);
  for (std::size_t v = 0; v < fpBlock->ColumnCount(); ++v)
    precise::AddScaled(parameter(constants + v), fColumns[v], fpBlock->RowCount(), out);
}

void OrvPreciseBlock::AddScaledTo(PreciseColumn& dense, std::size_t first, const PreciseColumn& c) const {
  const std::size_t rows = fpBlock->RowCount();
  const std::size_t constants = fpBlock->ConstantCount();
  const DoubleDouble total = precise::Sum(c, rows);
  for (std::size_t e = 0; e < constants; ++e)
    dense.AddTo(first + static_cast<std::size_t>(IndexOf(e)), total * fpBlock->ConstantValue(e));
  for (std::size_t v = 0; v < fpBlock->ColumnCount(); ++v) {
    dense.AddTo(first + static_cast<std::size_t>(IndexOf(constants + v)), precise::Dot(c, fColumns[v], rows));
  }
}

// Of two entries, with the weights that are in the work columns.
DoubleDouble OrvPreciseBlock::SumOfProduct(std::size_t entry, std::size_t other) const {
  const std::size_t constants = fpBlock->ConstantCount();
  const std::size_t columnwise = std::max(entry, other);
  const std::size_t second = std::min(entry, other);
  if (second < constants) return fScaledSums[columnwise] * fpBlock->ConstantValue(second);
  return precise::Dot(fScaled[columnwise - constants], fColumns[second - constants], fpBlock->RowCount());
}

void OrvPreciseBlock::AddOuterTo(PreciseSymMatrix& matrix, int row, int column, const PreciseColumn& c) {
  const std::size_t rows = fpBlock->RowCount();
  const std::size_t constants = fpBlock->ConstantCount();
  fScaledSums.resize(EntryCount());
  const DoubleDouble total = precise::Sum(c, rows);
  for (std::size_t e = 0; e < constants; ++e)
    fScaledSums[e] = total * fpBlock->ConstantValue(e);
  for (std::size_t v = 0; v < fpBlock->ColumnCount(); ++v) {
    precise::Multiply(c, fColumns[v], rows, fScaled[v]);
    fScaledSums[constants + v] = precise::Sum(fScaled[v], rows);
  }
  for (std::size_t a = 0; a < EntryCount(); ++a) {
    for (std::size_t b = 0; b <= a; ++b) {
      const DoubleDouble sum = SumOfProduct(a, b);
      const int i = IndexOf(a);
      const int j = IndexOf(b);
      if (row == column) {
        matrix.AddTo(row + std::max(i, j), column + std::min(i, j), sum);
        continue;
      }
      matrix.AddTo(row + i, column + j, sum);
      if (a != b) matrix.AddTo(row + j, column + i, sum);
    }
  }
}

}  // namespace tavo
