// The sandwich G M G, and what its digits can be trusted for.
//
// G is the generalised inverse of the information, M the covariance of the score totals under the design. G
// is positive semi-definite by its making; M need not be one for every design (pairs of units may have
// negative weights), so variances can come out negative, and rounding can make them look so. The tests below
// hold every variance against what it would be without cancellation.

#include <algorithm>
#include <cmath>
#include <exception>
#include <span>
#include <utility>

#include "component/numerics/bit_set.h"
#include "component/numerics/dense_kernels.h"
#include "component/numerics/rect_matrix.h"
#include "component/numerics/sym_matrix.h"

namespace MCCommonMath {

namespace {

using dense::kPanelRows;
using dense::Panel;
using dense::PanelBuffer;
using dense::RestrictedSymmetric;

constexpr double kSafelyRegular = 1e-6;  // size of pivots of correlations that no rounding can fake

// The rows with any element other than 0. Those of redundant parameters have none in G: leaving them out
// saves work, and keeps them exactly 0 even where M holds an infinity.
std::vector<int> NonZeroRows(const std::vector<double>& packed, int n) {
  MCBitSet used(n);
  const double* element = packed.data();
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j <= i; ++j) {
      if (*element++ != 0.0) {
        used.Set(i, true);
        used.Set(j, true);
      }
    }
  }
  return used.Members();
}

// Calls visit(first, gRows, gmRows) for each panel of rows of G and of G M.
template <typename Visitor>
void ForEachPanelOfGM(const RestrictedSymmetric& g, const RestrictedSymmetric& m, Visitor visit) {
  const int n = g.Size();
  PanelBuffer gBuffer(n);
  PanelBuffer gmBuffer(n);
  PanelBuffer work(n);
  for (int first = 0; first < n; first += kPanelRows) {
    const int rows = std::min(kPanelRows, n - first);
    const Panel gRows = gBuffer.Shape(rows, n);
    const Panel gmRows = gmBuffer.Shape(rows, n);
    g.Load(first, gRows);
    dense::MultiplyBySymmetric(gRows, m, work, gmRows);
    visit(first, gRows, gmRows);
  }
}

// Row i, column j of the panel's matrix stands at (kept[first + i], kept[j]) of the packed triangle.
void StoreRestrictedLower(const Panel& panel, int first, std::span<const int> kept,
                          std::vector<double>& packed) {
  for (int r = 0; r < panel.fNRows; ++r) {
    const int row = first + r;
    double* packedRow = packed.data() + MCSymMatrixData::PackedSize(kept[static_cast<std::size_t>(row)]);
    for (int j = 0; j <= row; ++j) {
      packedRow[kept[static_cast<std::size_t>(j)]] = panel.At(r, j);
    }
  }
}

// The matrix on its kept rows. False when memory ran out.
bool CopyRestricted(const RestrictedSymmetric& s, MCSymMatrix& copy) {
  if (!copy.SetNRows(s.Size())) {
    return false;
  }
  double* element = copy.AsVector().data();
  for (int i = 0; i < s.Size(); ++i) {
    for (int j = 0; j <= i; ++j) {
      *element++ = s.At(i, j);
    }
  }
  return true;
}

// A lower triangle, or its transpose, with zeros elsewhere. False when memory ran out.
bool CopyTriangle(const MCSymMatrix& factor, bool isTransposed, MCRectMatrix& copy) {
  const int n = factor.GetNRows();
  if (!copy.SetNRowsCols(n, n)) {
    return false;
  }
  const double* element = factor.AsVectorConst().data();
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j <= i; ++j, ++element) {
      copy.SetElem(isTransposed ? j : i, isTransposed ? i : j, *element);
    }
  }
  return true;
}

// G M G as C (C' M C) C' with G = C C', C lower triangular. Where columns of the design are nearly collinear,
// G is large and M small in the same directions. G M G multiplied as it stands loses there the square of what
// inverting the information lost; C' M C is of the size of what it stands for, and only loses as much again.
// False, with nothing written, when rounding leaves G without such a factor, or memory ran out.
bool MultiplyByFactors(const RestrictedSymmetric& g, const RestrictedSymmetric& m, MCSymMatrix& product) {
  MCSymMatrix factor;
  MCSymMatrix square;
  MCSymMatrix inner;
  MCRectMatrix rows;
  double measure = 0.0;
  MCBitSet kept(product.GetNRows());
  for (const int row : g.fKept) {
    kept.Set(row, true);
  }
  MCSymMatrix expanded;
  const bool isDone = CopyRestricted(g, factor) && factor.LTChol(0.0, measure, true) == 0 &&
                      CopyRestricted(m, square) && CopyTriangle(factor, true, rows) &&
                      square.ComputeRSRTrans(rows, inner) && CopyTriangle(factor, false, rows) &&
                      inner.ComputeRSRTrans(rows, square) && square.Expand(kept, expanded);
  if (isDone) {
    product = std::move(expanded);
  }
  return isDone;
}

// G M G panel by panel, for a G of any kind.
void MultiplyDirectly(const RestrictedSymmetric& g, const RestrictedSymmetric& m, MCSymMatrix& product) {
  PanelBuffer work(g.Size());
  PanelBuffer gmgBuffer(g.Size());
  ForEachPanelOfGM(g, m, [&](int first, const Panel&, const Panel& gmRows) {
    const Panel gmgRows = gmgBuffer.Shape(gmRows.fNRows, first + gmRows.fNRows);
    dense::MultiplyBySymmetric(gmRows, g, work, gmgRows);
    StoreRestrictedLower(gmgRows, first, g.fKept, product.AsVector());
  });
}

// The matrix on the given rows, scaled to unit diagonal; rows without a positive diagonal become 0. False
// when memory ran out.
bool FillCorrelations(const RestrictedSymmetric& s, MCSymMatrix& correlations) {
  const int n = s.Size();
  if (!correlations.SetNRows(n)) {
    return false;
  }
  std::vector<double> factor(static_cast<std::size_t>(n), 0.0);
  for (int i = 0; i < n; ++i) {
    const double diagonal = s.At(i, i);
    if (std::isfinite(diagonal) && diagonal > 0.0) {
      factor[static_cast<std::size_t>(i)] = 1.0 / std::sqrt(diagonal);
    }
  }
  double* element = correlations.AsVector().data();
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j <= i; ++j, ++element) {
      const double a = factor[static_cast<std::size_t>(i)];
      const double b = factor[static_cast<std::size_t>(j)];
      *element = a == 0.0 || b == 0.0 ? 0.0 : s.At(i, j) * a * b;
    }
  }
  return true;
}

// The rank of a matrix of correlations: Cholesky with diagonal pivoting (Higham 1990), column by column of
// the factor, until no pivot is above eps. Taking the largest pivot first is what makes the last one tell of
// the rank; in list order a small early pivot would blow up what follows. The rows of the factor stand in
// their own places, so nothing is permuted.
int RankOfCorrelations(const MCSymMatrix& correlations, double eps) {
  const int n = correlations.GetNRows();
  std::vector<double> pivots;
  correlations.GetDiagonal(pivots);
  std::vector<double> factor(static_cast<std::size_t>(n) * static_cast<std::size_t>(n), 0.0);
  const auto row = [&](int i) { return factor.data() + static_cast<std::ptrdiff_t>(i) * n; };
  std::vector<bool> isDone(static_cast<std::size_t>(n), false);

  int rank = 0;
  for (; rank < n; ++rank) {
    int best = -1;
    for (int i = 0; i < n; ++i) {
      if (!isDone[static_cast<std::size_t>(i)] && pivots[static_cast<std::size_t>(i)] > eps &&
          (best < 0 || pivots[static_cast<std::size_t>(i)] > pivots[static_cast<std::size_t>(best)])) {
        best = i;
      }
    }
    if (best < 0) {
      break;
    }
    isDone[static_cast<std::size_t>(best)] = true;
    const double root = std::sqrt(pivots[static_cast<std::size_t>(best)]);
    for (int i = 0; i < n; ++i) {
      if (!isDone[static_cast<std::size_t>(i)]) {
        const double rest = correlations.GetElem(i, best) - dense::Dot(row(i), row(best), rank);
        row(i)[rank] = rest / root;
        pivots[static_cast<std::size_t>(i)] -= row(i)[rank] * row(i)[rank];
      }
    }
  }
  return rank;
}

}  // namespace

bool MCSymMatrix::ComputeGMG(const std::vector<double>& central, MCSymMatrix& result) const {
  const int n = GetNRows();
  if (central.size() != PackedSize(n)) {
    return false;
  }
  try {
    MCSymMatrix product;
    if (!product.SetNRows(n)) {
      return false;
    }
    const std::vector<int> kept = NonZeroRows(AsVectorConst(), n);
    const RestrictedSymmetric g{AsVectorConst(), kept};
    if (!MultiplyByFactors(g, {central, kept}, product)) {
      MultiplyDirectly(g, {central, kept}, product);
    }
    result = std::move(product);
    return true;
  } catch (const std::exception&) {
    return false;
  }
}

bool MCSymMatrix::IsSafelyRegular(const MCBitSet& bitSet) const {
  if (bitSet.Size() != GetNRows()) {
    return false;
  }
  try {
    const std::vector<int> kept = bitSet.Members();
    MCSymMatrix correlations;
    double measure = 0.0;
    return FillCorrelations({AsVectorConst(), kept}, correlations) &&
           correlations.LTChol(kSafelyRegular, measure, true) == 0;
  } catch (const std::exception&) {
    return false;
  }
}

int MCSymMatrix::CheckMDependent(int size, const std::vector<double>& central, const MCBitSet& bitSet,
                                 double eps) {
  if (size < 0 || central.size() != PackedSize(size) || bitSet.Size() != size) {
    return -1;
  }
  try {
    const std::vector<int> kept = bitSet.Members();
    if (!FillCorrelations({central, kept}, *this)) {
      return -1;
    }
    return GetNRows() - RankOfCorrelations(*this, eps);
  } catch (const std::exception&) {
    return -1;
  }
}

}  // namespace MCCommonMath
