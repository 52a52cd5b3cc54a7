// The products are Eigen's, on maps of the panels; the rest copies between panels and the packed triangle.
// `noalias` spares a temporary matrix for each product and is why results may not overlap their operands.
#include "component/numerics/dense_kernels.h"

#include <Eigen/Core>
#include <algorithm>

#include "component/numerics/sym_matrix.h"

namespace MCCommonMath::dense {

namespace {

using RowMajor = Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;
using Map = Eigen::Map<RowMajor, Eigen::Unaligned, Eigen::OuterStride<>>;

Map ToMap(const Panel& view) {
  return Map(view.fpData, view.fNRows, view.fNCols, Eigen::OuterStride<>(view.fStride));
}

// Maps of no rows or columns may point anywhere, so they don't reach Eigen.
bool IsEmptyProduct(const Panel& c, int inner) {
  return c.fNRows == 0 || c.fNCols == 0 || inner == 0;
}

}  // namespace

void AddProduct(double alpha, const Panel& a, const Panel& b, const Panel& c) {
  if (!IsEmptyProduct(c, a.fNCols)) {
    ToMap(c).noalias() += alpha * (ToMap(a) * ToMap(b));
  }
}

void AddProductTransposed(double alpha, const Panel& a, const Panel& b, const Panel& c) {
  if (!IsEmptyProduct(c, a.fNCols)) {
    ToMap(c).noalias() += alpha * (ToMap(a) * ToMap(b).transpose());
  }
}

void AddTransposedProduct(double alpha, const Panel& a, const Panel& b, const Panel& c) {
  if (!IsEmptyProduct(c, a.fNRows)) {
    ToMap(c).noalias() += alpha * (ToMap(a).transpose() * ToMap(b));
  }
}

void LoadLower(const std::vector<double>& packed, int first, const Panel& panel) {
  for (int r = 0; r < panel.fNRows; ++r) {
    const int count = std::min(first + r + 1, panel.fNCols);
    const double* row = packed.data() + MCSymMatrixData::PackedSize(first + r);
    std::fill(std::copy(row, row + count, panel.Row(r)), panel.Row(r) + panel.fNCols, 0.0);
  }
}

void StoreLower(const Panel& panel, int first, std::vector<double>& packed) {
  for (int r = 0; r < panel.fNRows; ++r) {
    const int count = std::min(first + r + 1, panel.fNCols);
    std::copy(panel.Row(r), panel.Row(r) + count, packed.data() + MCSymMatrixData::PackedSize(first + r));
  }
}

double RestrictedSymmetric::At(int i, int j) const {
  const int row = fKept[static_cast<std::size_t>(std::max(i, j))];
  const int col = fKept[static_cast<std::size_t>(std::min(i, j))];
  return fPacked[MCSymMatrixData::Position(row, col)];
}

void RestrictedSymmetric::Load(int first, const Panel& panel) const {
  for (int r = 0; r < panel.fNRows; ++r) {
    const int row = first + r;
    const double* packedRow =
        fPacked.data() + MCSymMatrixData::PackedSize(fKept[static_cast<std::size_t>(row)]);
    const int lower = std::min(row + 1, panel.fNCols);
    for (int j = 0; j < lower; ++j) {
      panel.At(r, j) = packedRow[fKept[static_cast<std::size_t>(j)]];
    }
  }
  // Above the diagonal: column by column, one packed row each.
  for (int j = first + 1; j < panel.fNCols; ++j) {
    const double* packedRow =
        fPacked.data() + MCSymMatrixData::PackedSize(fKept[static_cast<std::size_t>(j)]);
    const int upper = std::min(panel.fNRows, j - first);
    for (int r = 0; r < upper; ++r) {
      const int row = first + r;
      panel.At(r, j) = packedRow[fKept[static_cast<std::size_t>(row)]];
    }
  }
}

void MultiplyBySymmetric(const Panel& a, const RestrictedSymmetric& s, PanelBuffer& work,
                         const Panel& product) {
  for (int r = 0; r < product.fNRows; ++r) {
    std::fill(product.Row(r), product.Row(r) + product.fNCols, 0.0);
  }
  for (int first = 0; first < s.Size(); first += kPanelRows) {
    // Rows first .. of S up to the diagonal block serve twice: as they are, and transposed as columns.
    const int rows = std::min(kPanelRows, s.Size() - first);
    const int cols = std::min(first + rows, product.fNCols);
    const Panel lower = work.Shape(rows, cols);
    s.Load(first, lower);
    AddProduct(1.0, a.Columns(first, rows), lower, product.Columns(0, cols));
    if (first < product.fNCols) {
      const Panel left = work.Shape(std::min(rows, product.fNCols - first), first);
      AddProductTransposed(1.0, a.Columns(0, first), left, product.Columns(first, left.fNRows));
    }
  }
}

}  // namespace MCCommonMath::dense
