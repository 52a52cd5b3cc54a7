// Symmetric matrices over the parameters: cross-products, information, covariances.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace MCCommonMath {

class MCBitSet;
class MCRectMatrix;

/// A symmetric n by n matrix of doubles. One vector holds the lower triangle by rows: element (i, j), i >= j,
/// stands at i(i+1)/2 + j. The layout is part of the interface. Indices count from 0. A failed allocation
/// leaves a matrix of size 0 for which `IsValidMatrix` is false, so that a size too large for memory becomes
/// a status and not an exception.
///
/// With b blocks the matrix consists of b by b blocks of size n/b: one block pair per pair of logits.
class MCSymMatrixData {
 public:
  MCSymMatrixData() = default;
  explicit MCSymMatrixData(int n) { SetNRows(n); }
  MCSymMatrixData(const MCSymMatrixData& other) { Assign(other); }
  MCSymMatrixData(MCSymMatrixData&& other) noexcept;
  MCSymMatrixData& operator=(const MCSymMatrixData& other);  // the result may be invalid when memory ran out
  MCSymMatrixData& operator=(MCSymMatrixData&& other) noexcept;
  ~MCSymMatrixData() = default;

  [[nodiscard]] bool IsValidMatrix() const { return fbValid; }
  [[nodiscard]] int GetNRows() const { return fN; }

  /// New size, all zero, one block. False when n is negative or memory ran out; the matrix is then invalid.
  bool SetNRows(int n);

  /// New size with one block; elements that fit are kept, new ones are 0, and size 0 releases the storage.
  /// Fails as `SetNRows` does.
  bool Resize(int n);

  /// All elements become 0, size unchanged.
  void Clear();

  /// Any order of i and j. False outside the matrix.
  bool SetElem(int i, int j, double value);

  /// Any order of i and j. The missing value outside the matrix.
  [[nodiscard]] double GetElem(int i, int j) const;

  /// Element (i, j) of block (blockRow, blockCol). The missing value outside the block or the matrix.
  [[nodiscard]] double GetElem(int blockRow, int blockCol, int i, int j) const;

  /// Records the block count. False, with the count unchanged, unless b >= 1 divides n.
  bool SetNBlocks(int b);
  [[nodiscard]] int GetNBlocks() const { return fNBlocks; }

  /// `out` gets the n diagonal elements.
  void GetDiagonal(std::vector<double>& out) const;

  /// The same with elements that are not at least eps replaced by `value`: then the pivot test of a row that
  /// is dead compares with `value`.
  void GetNCheckDiagonal(std::vector<double>& out, double eps, double value) const;

  /// The packed lower triangle. Callers may change elements but not the length.
  [[nodiscard]] std::vector<double>& AsVector() { return fElements; }
  [[nodiscard]] const std::vector<double>& AsVectorConst() const { return fElements; }

  /// The length of the packed triangle of an n by n matrix, and the position of (i, j) in it for i >= j.
  [[nodiscard]] static std::size_t PackedSize(int n) {
    return static_cast<std::size_t>(n) * (static_cast<std::size_t>(n) + 1) / 2;
  }
  [[nodiscard]] static std::size_t Position(int i, int j) {
    return PackedSize(i) + static_cast<std::size_t>(j);
  }

 protected:
  [[nodiscard]] double* Row(int i) { return fElements.data() + PackedSize(i); }
  [[nodiscard]] const double* Row(int i) const { return fElements.data() + PackedSize(i); }

  /// Drops all elements and marks the matrix invalid; always false, so that a failing operation can return
  /// it.
  bool Invalidate();

 private:
  void Assign(const MCSymMatrixData& other);
  [[nodiscard]] bool IsInside(int i, int j) const { return i >= 0 && i < fN && j >= 0 && j < fN; }

  int fN = 0;
  int fNBlocks = 1;
  bool fbValid = true;
  std::vector<double> fElements;
};

/// The symmetric matrix with its operations. None throws. An operation that returns bool returns false when
/// shapes do not match or memory ran out.
class MCSymMatrix : public MCSymMatrixData {
 public:
  using MCSymMatrixData::MCSymMatrixData;
  MCSymMatrix() = default;
  explicit MCSymMatrix(const MCSymMatrixData& data) : MCSymMatrixData(data) {}

  // ---- accumulation ----

  /// this += w v v'. Rows with v_i equal to 0 are skipped. Allocates nothing.
  bool UpdateXX(std::span<const double> v, double w);

  /// this += w v v' for the sparse vector v with v[indices[a]] = values[a], a < count. Touches only the pairs
  /// of the given indices, in any order; entries of an index that occurs twice add up, as in the dense
  /// vector. False, with nothing changed, when an index is outside the matrix. Allocates nothing.
  bool UpdateXXSparse(int count, std::span<const int> indices, std::span<const double> values, double w);

  // ---- factorisation and sweep ----

  /// In-place Cholesky factorisation A = L L' of a positive semi-definite matrix, without permutation. A
  /// pivot is singular when, reduced by the rows before it, it is not finite, not positive, or below tol *
  /// max(1, its diagonal element in A); with `absoluteTest` it is compared with `tol` alone. The row and the
  /// column of a singular pivot are left out: they become zero, and the factor is that of the remaining rows.
  ///
  /// Returns the number of singular pivots. `measure` is the square root of (smallest reduced pivot / largest
  /// diagonal element of A): near 0 when a direction collapses or when one level's information dies away. It
  /// is 0 with a singular pivot and 1 for an empty matrix. When no work space can be had the matrix becomes
  /// invalid and the result is its former size.
  int LTChol(double tol, double& measure, bool absoluteTest);

  /// Solves L L' x = b with the factor in this matrix; the component of x at a singular pivot is 0 and that
  /// of b is not looked at. Returns the number of singular pivots, or -1, with x empty, when b does not
  /// match. b and x may be the same vector.
  int LTSubstitute(const std::vector<double>& b, std::vector<double>& x) const;

  /// Turns the factor into the inverse of the factored matrix, in place, with zero rows and columns at
  /// singular pivots: a symmetric generalized inverse G with G A G = G. False when no work space can be had;
  /// the matrix is then invalid.
  bool LTInverse();

  /// One sweep on pivot k (Beaton 1964; Goodnight 1979), in the symmetric form. With pivot d = a_kk:
  ///   a_ij -= a_ik a_jk / d,   a_ik = a_ik / d,   a_kk = -1 / d     (i, j other than k).
  /// `bitSet` holds the pivots that are swept at present. After the pivots S have been swept the matrix holds
  /// - at S by S: -inverse(A_SS);
  /// - at S by U, the other columns: their coefficients inverse(A_SS) A_SU on S, with their own sign;
  /// - at U by U: A_UU - A_US inverse(A_SS) A_SU.
  ///
  /// `diagonal` is the diagonal taken before the first sweep. The sweep is done, bit k set, and the result
  /// true when diagonal[k] > 0 and a_kk > tol * diagonal[k]. Otherwise the column depends on those already
  /// swept: bit k stays clear, the matrix stands as it was, and the result is false.
  ///
  /// A pivot whose bit is already set is swept back when `sweepBack` (the normal use) is given: this undoes
  /// its sweep exactly up to rounding, in any order of pivots, clears the bit and returns true. Without
  /// `sweepBack` it is refused with false.
  bool Sweep(int k, double tol, const std::vector<double>& diagonal, MCBitSet& bitSet, bool sweepBack);

  /// For a column k that `Sweep` refused: it depends on the pivots in `bitSet`, so what it shares with the
  /// other columns left out is rounding, and becomes 0, the diagonal aside. Later sweeps then leave its
  /// coefficients alone, as they must, however close to dependent their pivots are.
  bool ClearResidual(int k, const MCBitSet& bitSet);

  /// `out` gets the size of `bitSet`; the elements of this matrix go to the positions of the set bits in
  /// order, all others are 0. False when this matrix has not one row per set bit, or `out` is invalid for
  /// lack of memory.
  bool Expand(const MCBitSet& bitSet, MCSymMatrix& out) const;

  /// Inverse of this positive semi-definite matrix on the first independent rows: rows are taken in order,
  /// without permutation, and one is left out when its pivot, reduced by the rows kept before it, is not
  /// above eps * diagonal[i] or not above 0. `inverse` has zero rows and columns there, `bitSet` the bits of
  /// the rows kept. Returns their number, or -1 when `diagonal` does not match or memory ran out.
  int CholInverse(const std::vector<double>& diagonal, double eps, MCSymMatrix& inverse,
                  MCBitSet& bitSet) const;

  /// After sweeps on the pivots in `bitSet`: for each j of firstCol .. lastCol whose bit is set, column j of
  /// inverse(A) A on the swept pivots, that is 1 at j, 0 at the other pivots, and the coefficient of column j
  /// in each column left out. They go to the columns of H from `column` on, which moves on, and their bits
  /// are set in `keep`. Only the first `limit` rows are filled, all with -1. False, with nothing changed,
  /// when the columns have no room in H or the shapes do not match.
  bool ExtractH(int firstCol, int lastCol, const MCBitSet& bitSet, MCRectMatrix& H, int& column,
                MCBitSet& keep, int limit) const;

  // ---- products ----

  /// v' S v for this matrix S, over the elements of v that are not 0. The missing value when v does not
  /// match.
  [[nodiscard]] double ComputeVSV(std::span<const double> v) const;

  /// The square root of v' S v; 0 when that is not above 0.
  [[nodiscard]] double SquareRootVSV(std::span<const double> v) const;

  /// v' S_ab v on block (a, b) of `GetNBlocks()`.
  [[nodiscard]] double ComputeBlockVSV(int a, int b, std::span<const double> v) const;

  /// result = R S R'. Columns of R that are 0 cost nothing.
  bool ComputeRSRTrans(const MCRectMatrix& R, MCSymMatrix& result) const;

  /// product = S T for this matrix S and `other`, T, of the same size.
  bool ComputeSS(const MCSymMatrix& other, MCRectMatrix& product) const;

  /// Row and column i become 0 for each i at which the diagonal of `other` is not above 1e-12.
  bool SetCovarZeros(const MCSymMatrix& other);

  /// With G this matrix and M the symmetric matrix whose packed triangle is `central`: result = G M G. Rows
  /// of G that are zero stay exactly zero, whatever M holds there.
  bool ComputeGMG(const std::vector<double>& central, MCSymMatrix& result) const;

  /// Whether this positive semi-definite matrix is regular beyond doubt on the rows in `bitSet`: every pivot
  /// of its correlations there is above 1e-6. Otherwise, and when memory ran out, `CheckMDependent` must
  /// decide.
  [[nodiscard]] bool IsSafelyRegular(const MCBitSet& bitSet) const;

  /// Returns how many columns of M, restricted to the set bits, depend on the others: the size less the rank.
  /// M is the symmetric matrix of `size` rows with packed triangle `central`. It is scaled to unit diagonal
  /// first, so that the units of the parameters do not matter, and factored with diagonal pivoting; the rank
  /// is reached when no remaining pivot is above eps. This matrix is the work space and its content is lost.
  /// Returns -1 when the sizes do not match or memory ran out.
  int CheckMDependent(int size, const std::vector<double>& central, const MCBitSet& bitSet, double eps);

  // ---- back-transformation ----

  /// T V T' with T the linear map of `MCMathFun::TransformParameters` (which tells the arguments), applied to
  /// each pair of the `nBlocks` blocks of parameters. A column of scale 0 gets a zero row and column, never
  /// NaN.
  bool TransformParameterMatrix(const std::vector<double>& centers, const std::vector<double>& scales,
                                int nBlocks, int nIntercepts, bool inverse = false, bool scaleOnly = false);

  /// The same for one block that has been swept on the pivots in `bitSet` (`Sweep` tells what it then holds),
  /// from the cross-products of the columns x' = (x - c)/s to those of the columns x. The result is what
  /// sweeping the cross-products of x on the same pivots gives, so sweeping back yields the cross-products of
  /// x:
  /// - at S by S: T V T', with T restricted to the set bits;
  /// - at S by a column u left out: s_u T C + c_u e_0, since x_u = s_u x'_u + c_u, e_0 being the intercept;
  /// - at columns u, v left out: the residual times s_u s_v.
  bool TransformParameterMatrix(const std::vector<double>& centers, const std::vector<double>& scales,
                                const MCBitSet& bitSet, int nIntercepts, bool inverse = false,
                                bool scaleOnly = false);
};

}  // namespace MCCommonMath
