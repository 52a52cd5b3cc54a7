// Covariances of contrasts, their inverses, and the columns of a swept matrix that make up estimable
// functions.

#include <algorithm>
#include <cmath>
#include <exception>
#include <numeric>
#include <utility>

#include "component/numerics/bit_set.h"
#include "component/numerics/dense_kernels.h"
#include "component/numerics/missing_value.h"
#include "component/numerics/rect_matrix.h"
#include "component/numerics/sym_matrix.h"

namespace MCCommonMath {

namespace {

using dense::kPanelRows;
using dense::Panel;
using dense::PanelBuffer;
using dense::RestrictedSymmetric;

// Contrasts are scaled to unit variance before they come here, so that a fixed limit compares like with like.
constexpr double kZeroVariance = 1e-12;

// A contrast of one effect has a few columns of many: only they take part in its covariance.
std::vector<int> NonZeroColumns(const MCRectMatrixData& matrix) {
  MCBitSet used(matrix.GetNCols());
  const double* element = matrix.AsVectorConst().data();
  for (int i = 0; i < matrix.GetNRows(); ++i) {
    for (int j = 0; j < matrix.GetNCols(); ++j) {
      if (*element++ != 0.0) {
        used.Set(j, true);
      }
    }
  }
  return used.Members();
}

// Rows first .. of the matrix, its columns `kept`.
void LoadColumns(const MCRectMatrixData& matrix, const std::vector<int>& kept, int first,
                 const Panel& panel) {
  for (int r = 0; r < panel.fNRows; ++r) {
    for (int j = 0; j < panel.fNCols; ++j) {
      panel.At(r, j) = matrix.GetElem(first + r, kept[static_cast<std::size_t>(j)]);
    }
  }
}

std::vector<int> AllRows(int n) {
  std::vector<int> rows(static_cast<std::size_t>(n));
  std::iota(rows.begin(), rows.end(), 0);
  return rows;
}

}  // namespace

void MCSymMatrixData::GetNCheckDiagonal(std::vector<double>& out, double eps, double value) const {
  GetDiagonal(out);
  for (double& element : out) {
    if (!(element >= eps)) {  // a NaN too
      element = value;
    }
  }
}

int MCSymMatrix::CholInverse(const std::vector<double>& diagonal, double eps, MCSymMatrix& inverse,
                             MCBitSet& bitSet) const {
  const int n = GetNRows();
  if (diagonal.size() != static_cast<std::size_t>(n)) {
    return -1;
  }
  try {
    // Row by row and not in panels: contrasts have few rows, and a row that is refused must be known before
    // the next one is reduced. In list order, because the report names the rows that were kept, and the first
    // independent ones are those that a reader expects.
    MCSymMatrix factor(*this);
    if (!factor.IsValidMatrix()) {
      return -1;
    }
    bitSet.Resize(n, false);
    for (int i = 0; i < n; ++i) {
      double* row = factor.Row(i);
      for (int c = 0; c < i; ++c) {
        const double* above = factor.Row(c);
        row[c] = bitSet.IsIn(c) ? (row[c] - dense::Dot(row, above, c)) / above[c] : 0.0;
      }
      const double pivot = row[i] - dense::Dot(row, row, i);
      const bool isKept =
          std::isfinite(pivot) && pivot > 0.0 && pivot > eps * diagonal[static_cast<std::size_t>(i)];
      bitSet.Set(i, isKept);
      if (isKept) {
        row[i] = std::sqrt(pivot);
      } else {
        std::fill(row, row + i + 1, 0.0);
      }
    }
    if (!factor.LTInverse()) {
      return -1;
    }
    inverse = std::move(factor);
    return bitSet.InSet();
  } catch (const std::exception&) {
    return -1;
  }
}

bool MCSymMatrix::ClearResidual(int k, const MCBitSet& bitSet) {
  if (k < 0 || k >= GetNRows() || bitSet.Size() != GetNRows()) {
    return false;
  }
  for (int other = 0; other < GetNRows(); ++other) {
    if (other != k && !bitSet.IsIn(other)) {
      SetElem(k, other, 0.0);
    }
  }
  return true;
}

bool MCSymMatrix::ExtractH(int firstCol, int lastCol, const MCBitSet& bitSet, MCRectMatrix& H, int& column,
                           MCBitSet& keep, int limit) const {
  const int n = GetNRows();
  const int rows = limit < 0 ? n : std::min(limit, n);
  if (firstCol < 0 || lastCol >= n || bitSet.Size() != n || keep.Size() != n || H.GetNRows() < rows ||
      column < 0 || bitSet.InRange(firstCol, lastCol) > H.GetNCols() - column) {
    return false;
  }
  for (int j = firstCol; j <= lastCol; ++j) {
    if (!bitSet.IsIn(j)) {
      continue;
    }
    // Column j of inverse(A) A: the identity on the pivots, by definition rather than by the rounded product,
    // and the swept coefficients on the columns that depend on them.
    for (int i = 0; i < rows; ++i) {
      const double pivotElement = i == j ? 1.0 : 0.0;
      H.SetElem(i, column, bitSet.IsIn(i) ? pivotElement : GetElem(i, j));
    }
    keep.Set(j, true);
    ++column;
  }
  return true;
}

double MCSymMatrix::ComputeVSV(std::span<const double> v) const {
  const int n = GetNRows();
  if (v.size() != static_cast<std::size_t>(n)) {
    return MCMV::gMissingValue;
  }
  // Contrasts are mostly 0: the row of each element that isn't, from the first such element on.
  const auto first = std::find_if(v.begin(), v.end(), [](double x) { return x != 0.0; }) - v.begin();
  double sum = 0.0;
  for (std::ptrdiff_t i = first; i < n; ++i) {
    const double value = v[static_cast<std::size_t>(i)];
    if (value != 0.0) {
      const double* row = Row(static_cast<int>(i));
      const double below = dense::Dot(row + first, v.data() + first, static_cast<int>(i - first));
      sum += value * (2.0 * below + row[i] * value);
    }
  }
  return sum;
}

double MCSymMatrix::SquareRootVSV(std::span<const double> v) const {
  // Rounding can make the form of a contrast without variance slightly negative, and its root a NaN.
  const double square = ComputeVSV(v);
  if (IsMissing(square)) {
    return square;
  }
  return square > 0.0 ? std::sqrt(square) : 0.0;
}

double MCSymMatrix::ComputeBlockVSV(int a, int b, std::span<const double> v) const {
  const int size = GetNRows() / GetNBlocks();
  if (a < 0 || a >= GetNBlocks() || b < 0 || b >= GetNBlocks() ||
      v.size() != static_cast<std::size_t>(size)) {
    return MCMV::gMissingValue;
  }
  double sum = 0.0;
  for (int i = 0; i < size; ++i) {
    const double value = v[static_cast<std::size_t>(i)];
    for (int j = 0; j < size && value != 0.0; ++j) {
      sum += value * GetElem(a, b, i, j) * v[static_cast<std::size_t>(j)];
    }
  }
  return sum;
}

bool MCSymMatrix::ComputeRSRTrans(const MCRectMatrix& R, MCSymMatrix& result) const {
  if (R.GetNCols() != GetNRows()) {
    return false;
  }
  try {
    const int n = R.GetNRows();
    MCSymMatrix product;
    if (!product.SetNRows(n)) {
      return false;
    }
    const std::vector<int> kept = NonZeroColumns(R);
    const RestrictedSymmetric s{AsVectorConst(), kept};
    const int k = s.Size();
    PanelBuffer left(k);
    PanelBuffer leftS(k);
    PanelBuffer right(k);
    PanelBuffer work(std::max(k, n));
    // R S panel by panel, each against the panels of R up to its own: the lower triangle of R S R' alone.
    for (int first = 0; first < n; first += kPanelRows) {
      const int rows = std::min(kPanelRows, n - first);
      const Panel r = left.Shape(rows, k);
      const Panel rs = leftS.Shape(rows, k);
      LoadColumns(R, kept, first, r);
      dense::MultiplyBySymmetric(r, s, work, rs);
      const Panel out = work.Shape(rows, first + rows);
      std::fill_n(out.fpData, static_cast<std::size_t>(rows) * static_cast<std::size_t>(out.fStride), 0.0);
      for (int other = 0; other <= first; other += kPanelRows) {
        const Panel t = right.Shape(std::min(kPanelRows, n - other), k);
        LoadColumns(R, kept, other, t);
        dense::AddProductTransposed(1.0, rs, t, out.Columns(other, t.fNRows));
      }
      dense::StoreLower(out, first, product.AsVector());
    }
    result = std::move(product);
    return true;
  } catch (const std::exception&) {
    return false;
  }
}

bool MCSymMatrix::ComputeSS(const MCSymMatrix& other, MCRectMatrix& product) const {
  const int n = GetNRows();
  if (other.GetNRows() != n || !product.SetNRowsCols(n, n)) {
    return false;
  }
  try {
    const std::vector<int> all = AllRows(n);
    const RestrictedSymmetric s{AsVectorConst(), all};
    const RestrictedSymmetric t{other.AsVectorConst(), all};
    PanelBuffer rowsOfS(n);
    PanelBuffer work(n);
    for (int first = 0; first < n; first += kPanelRows) {
      const Panel rows = rowsOfS.Shape(std::min(kPanelRows, n - first), n);
      s.Load(first, rows);
      double* target = product.AsVector().data() + static_cast<std::ptrdiff_t>(first) * n;
      dense::MultiplyBySymmetric(rows, t, work, {target, rows.fNRows, n, n});
    }
    return true;
  } catch (const std::exception&) {
    return false;
  }
}

bool MCSymMatrix::SetCovarZeros(const MCSymMatrix& other) {
  const int n = GetNRows();
  if (other.GetNRows() != n) {
    return false;
  }
  // A contrast without variance under simple random sampling drops out of that inverse, so under the design
  // it may not add to the traces either.
  for (int i = 0; i < n; ++i) {
    if (other.GetElem(i, i) > kZeroVariance) {
      continue;
    }
    for (int j = 0; j < n; ++j) {
      SetElem(i, j, 0.0);
    }
  }
  return true;
}

}  // namespace MCCommonMath
