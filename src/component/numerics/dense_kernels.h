// Dense kernels behind the packed matrices; internal to the numerics.
//
// They work on panels: a few rows of a matrix, copied out of the packed triangle into row-major storage, so
// that matrix products run at the speed of dense blocks and the work space stays at a few rows instead of a
// second n by n matrix.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "component/numerics/vector_kernels.h"

namespace MCCommonMath::dense {

/// Rows of a panel. 64 rows of doubles keep a square block at 32 KiB, about a first-level cache.
constexpr int kPanelRows = 64;

/// A row-major view of `rows` by `cols` doubles; rows are `stride` elements apart.
template <typename T>
struct View {
  T* fpData;
  int fNRows;
  int fNCols;
  std::ptrdiff_t fStride;

  [[nodiscard]] T* Row(int i) const { return fpData + i * fStride; }
  [[nodiscard]] T& At(int i, int j) const { return fpData[i * fStride + j]; }
  [[nodiscard]] View Columns(int first, int count) const { return {fpData + first, fNRows, count, fStride}; }
  [[nodiscard]] View Rows(int first, int count) const { return {Row(first), count, fNCols, fStride}; }
};

using Panel = View<double>;

/// C += alpha A B, C += alpha A B' and C += alpha A' B. C overlaps neither A nor B.
void AddProduct(double alpha, const Panel& a, const Panel& b, const Panel& c);
void AddProductTransposed(double alpha, const Panel& a, const Panel& b, const Panel& c);
void AddTransposedProduct(double alpha, const Panel& a, const Panel& b, const Panel& c);

/// The sum of x[i] y[i] over i < n.
[[nodiscard]] inline double Dot(const double* x, const double* y, int n) {
  return vectors::Dot(x, y, static_cast<std::size_t>(n));
}

/// Storage of one panel of at most `kPanelRows` rows. The constructor may throw std::bad_alloc.
class PanelBuffer {
 public:
  explicit PanelBuffer(int maxCols)
      : fElements(static_cast<std::size_t>(kPanelRows) * static_cast<std::size_t>(maxCols)),
        fMaxCols(maxCols) {}

  /// A view of the first rows and columns; the content is what was last written.
  [[nodiscard]] Panel Shape(int rows, int cols) { return {fElements.data(), rows, cols, fMaxCols}; }

 private:
  std::vector<double> fElements;
  std::ptrdiff_t fMaxCols;
};

/// Copies rows first .. first+panel.rows-1 of the packed triangle into the panel, columns 0 .. panel.cols-1;
/// elements above the diagonal become 0.
void LoadLower(const std::vector<double>& packed, int first, const Panel& panel);

/// Copies the panel's elements on and below the diagonal back.
void StoreLower(const Panel& panel, int first, std::vector<double>& packed);

/// A symmetric matrix given by a packed triangle, restricted to an ascending list of its rows and columns.
/// Both are not owned.
struct RestrictedSymmetric {
  const std::vector<double>& fPacked;
  std::span<const int> fKept;

  [[nodiscard]] int Size() const { return static_cast<int>(fKept.size()); }
  [[nodiscard]] double At(int i, int j) const;

  /// Rows first .. first+panel.rows-1, columns 0 .. panel.cols-1 of the full symmetric matrix.
  void Load(int first, const Panel& panel) const;
};

/// product = A S, of which the columns 0 .. product.cols-1 are computed. `work` has room for Size() columns.
void MultiplyBySymmetric(const Panel& a, const RestrictedSymmetric& s, PanelBuffer& work,
                         const Panel& product);

}  // namespace MCCommonMath::dense
