// The Cholesky factorisation of the packed triangle, with substitution and inverse. All run over panels of
// rows in place: the panel at work is copied out, updated by products with the panels before (or after) it,
// and copied back. This is the left-looking block form (Golub and Van Loan 2013, section 4.2), in which
// nearly all operations are products of dense blocks; the order of the pivots, and so which rows are left
// out, is that of the plain algorithm.

#include <algorithm>
#include <cmath>
#include <exception>

#include "component/numerics/dense_kernels.h"
#include "component/numerics/sym_matrix.h"

namespace MCCommonMath {

namespace {

using dense::kPanelRows;
using dense::Panel;
using dense::PanelBuffer;

// Divides by the diagonal of a factor. A singular pivot stands as 0 in it, and gives 0: so its row drops out
// of products, solutions and inverses without a test of its own anywhere else.
double Quotient(double value, double pivot) {
  return pivot == 0.0 ? 0.0 : value / pivot;
}

// Solves X L' = B in place of B, row by row, for a lower triangular block L.
void SolveAgainstFactor(const Panel& factor, const Panel& b) {
  for (int r = 0; r < b.fNRows; ++r) {
    double* row = b.Row(r);
    for (int c = 0; c < b.fNCols; ++c) {
      row[c] = Quotient(row[c] - dense::Dot(row, factor.Row(c), c), factor.At(c, c));
    }
  }
}

// Solves L Z = B in place of B for a lower triangular block L.
void SolveFactor(const Panel& factor, const Panel& b) {
  for (int r = 0; r < b.fNRows; ++r) {
    double* row = b.Row(r);
    for (int k = 0; k < r; ++k) {
      const double element = factor.At(r, k);
      const double* solved = b.Row(k);
      for (int j = 0; element != 0.0 && j < b.fNCols; ++j) {
        row[j] -= element * solved[j];
      }
    }
    for (int j = 0; j < b.fNCols; ++j) {
      row[j] = Quotient(row[j], factor.At(r, r));
    }
  }
}

// The factorisation of one matrix: the pivot rule, and what the measure needs.
class Factorisation {
 public:
  Factorisation(std::vector<double>& packed, int n, double tol, bool absoluteTest)
      : fPacked(packed), fN(n), fTol(tol), fbAbsolute(absoluteTest), fPanel(n), fDone(n) {}

  void Run() {
    for (int first = 0; first < fN; first += kPanelRows) {
      FactorPanel(first, std::min(kPanelRows, fN - first));
    }
  }

  [[nodiscard]] int Singular() const { return fNSingular; }
  // On the scale of a standard error: the root of the smallest pivot over the largest diagonal element.
  // Pivots over their own diagonal would miss a level whose information dies away as a whole, which is how
  // separation by a factor shows.
  [[nodiscard]] double Measure() const {
    if (fN == 0) {
      return 1.0;
    }
    return fNSingular > 0 ? 0.0 : std::sqrt(fSmallestPivot / fLargestDiagonal);
  }

 private:
  void FactorPanel(int first, int rows) {
    const Panel panel = fPanel.Shape(rows, first + rows);
    dense::LoadLower(fPacked, first, panel);
    for (int done = 0; done < first; done += kPanelRows) {
      const int doneRows = kPanelRows;  // only the last panel can be shorter, and it is not done
      const Panel factor = fDone.Shape(doneRows, done + doneRows);
      dense::LoadLower(fPacked, done, factor);
      const Panel target = panel.Columns(done, doneRows);
      dense::AddProductTransposed(-1.0, panel.Columns(0, done), factor.Columns(0, done), target);
      SolveAgainstFactor(factor.Columns(done, doneRows), target);
    }
    FactorDiagonalBlock(panel, first);
    dense::StoreLower(panel, first, fPacked);
  }

  void FactorDiagonalBlock(const Panel& panel, int first) {
    for (int r = 0; r < panel.fNRows; ++r) {
      double* row = panel.Row(r);
      for (int c = 0; c < r; ++c) {
        const double rest = row[first + c] - dense::Dot(row, panel.Row(c), first + c);
        row[first + c] = Quotient(rest, panel.At(c, first + c));
      }
      const int i = first + r;
      row[i] = AcceptPivot(row[i], row[i] - dense::Dot(row, row, i));
      if (row[i] == 0.0) {
        std::fill(row, row + i, 0.0);
      }
    }
  }

  // The diagonal element of the factor, 0 for a singular pivot. The limit follows the diagonal only upwards:
  // large weights must not make rounding look like information, while an information that shrinks towards 0
  // as the fit runs away has to be found singular by the absolute rule.
  double AcceptPivot(double diagonal, double pivot) {
    const double limit = fbAbsolute ? fTol : fTol * std::max(1.0, diagonal);
    fLargestDiagonal = std::max(fLargestDiagonal, diagonal);
    if (!std::isfinite(pivot) || !(pivot > 0.0) || pivot < limit) {
      ++fNSingular;
      return 0.0;
    }
    fSmallestPivot = fNPivots++ == 0 ? pivot : std::min(fSmallestPivot, pivot);
    return std::sqrt(pivot);
  }

  std::vector<double>& fPacked;
  int fN;
  double fTol;
  bool fbAbsolute;
  PanelBuffer fPanel;
  PanelBuffer fDone;
  int fNSingular = 0;
  int fNPivots = 0;
  double fSmallestPivot = 0.0;
  double fLargestDiagonal = 0.0;
};

// Replaces the packed factor L by its inverse, panel by panel from the top: with the panels above already
// inverted, X_above, the rows at work are inverse(L_ii) (I - L_i,above X_above).
void InvertFactor(std::vector<double>& packed, int n, PanelBuffer& current, PanelBuffer& other,
                  PanelBuffer& result) {
  for (int first = 0; first < n; first += kPanelRows) {
    const int rows = std::min(kPanelRows, n - first);
    const Panel factor = current.Shape(rows, first + rows);
    dense::LoadLower(packed, first, factor);
    const Panel inverse = result.Shape(rows, first + rows);
    for (int r = 0; r < rows; ++r) {
      std::fill(inverse.Row(r), inverse.Row(r) + inverse.fNCols, 0.0);
      inverse.At(r, first + r) = 1.0;
    }
    for (int done = 0; done < first; done += kPanelRows) {
      const Panel above = other.Shape(kPanelRows, done + kPanelRows);
      dense::LoadLower(packed, done, above);
      dense::AddProduct(-1.0, factor.Columns(done, kPanelRows), above, inverse.Columns(0, done + kPanelRows));
    }
    SolveFactor(factor.Columns(first, rows), inverse);
    dense::StoreLower(inverse, first, packed);
  }
}

// Replaces the packed lower triangular X by X' X, panel by panel from the top: rows above are no longer
// needed.
void SquareInverse(std::vector<double>& packed, int n, PanelBuffer& other, PanelBuffer& result) {
  for (int first = 0; first < n; first += kPanelRows) {
    const int rows = std::min(kPanelRows, n - first);
    const Panel square = result.Shape(rows, first + rows);
    for (int r = 0; r < rows; ++r) {
      std::fill(square.Row(r), square.Row(r) + square.fNCols, 0.0);
    }
    for (int below = first; below < n; below += kPanelRows) {
      const Panel x = other.Shape(std::min(kPanelRows, n - below), first + rows);
      dense::LoadLower(packed, below, x);
      dense::AddTransposedProduct(1.0, x.Columns(first, rows), x, square);
    }
    dense::StoreLower(square, first, packed);
  }
}

}  // namespace

int MCSymMatrix::LTChol(double tol, double& measure, bool absoluteTest) {
  const int n = GetNRows();
  measure = 0.0;
  try {
    Factorisation factorisation(AsVector(), n, tol, absoluteTest);
    factorisation.Run();
    measure = factorisation.Measure();
    return factorisation.Singular();
  } catch (const std::exception&) {
    Invalidate();
    return n;
  }
}

int MCSymMatrix::LTSubstitute(const std::vector<double>& b, std::vector<double>& x) const {
  const int n = GetNRows();
  if (b.size() != static_cast<std::size_t>(n)) {
    x.clear();
    return -1;
  }
  x = b;
  int singular = 0;
  for (int i = 0; i < n; ++i) {  // L y = b
    const double* row = Row(i);
    singular += row[i] == 0.0 ? 1 : 0;
    double& element = x[static_cast<std::size_t>(i)];
    element = Quotient(element - dense::Dot(row, x.data(), i), row[i]);
  }
  for (int i = n - 1; i >= 0; --i) {  // L' x = y, taking the finished element out of those above
    const double* row = Row(i);
    double& element = x[static_cast<std::size_t>(i)];
    element = Quotient(element, row[i]);
    for (int j = 0; j < i; ++j) {
      x[static_cast<std::size_t>(j)] -= row[j] * element;
    }
  }
  return singular;
}

bool MCSymMatrix::LTInverse() {
  const int n = GetNRows();
  try {
    PanelBuffer current(n);
    PanelBuffer other(n);
    PanelBuffer result(n);
    InvertFactor(AsVector(), n, current, other, result);
    SquareInverse(AsVector(), n, other, result);
    return true;
  } catch (const std::exception&) {
    return Invalidate();
  }
}

}  // namespace MCCommonMath
