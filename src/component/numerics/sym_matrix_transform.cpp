// Covariances and swept cross-products between the scale of the fit and that of the data.
//
// The fit works on columns x' = (x - c)/s, because raw columns (years, incomes) differ in size by powers of
// ten and are nearly proportional to the intercept's. The map back is linear and nearly diagonal: a factor
// for each parameter, and one row, the intercept's, that takes the centres of all. So T V T' costs a square
// of the parameters where general products would cost a cube.

#include <algorithm>
#include <exception>

#include "component/numerics/bit_set.h"
#include "component/numerics/sym_matrix.h"
#include "component/numerics/transform_map.h"

namespace MCCommonMath {

namespace {

// result_j += sum over k of weight_k V(first + k, j) for all j, k running over one block.
void AddWeightedRows(const MCSymMatrix& V, int first, const std::vector<double>& weight,
                     std::vector<double>& result) {
  const int last = first + static_cast<int>(weight.size()) - 1;
  const double* row = V.AsVectorConst().data();
  for (int i = 0; i < V.GetNRows(); row += ++i) {
    const double rowWeight = i >= first && i <= last ? weight[static_cast<std::size_t>(i - first)] : 0.0;
    if (rowWeight != 0.0) {  // row i of the lower triangle is part of row i of V
      for (int j = 0; j < i; ++j) {
        result[static_cast<std::size_t>(j)] += rowWeight * row[j];
      }
    }
    for (int k = first; k <= last && k <= i; ++k) {  // and part of the columns 0 .. i
      const double columnWeight = weight[static_cast<std::size_t>(k - first)];
      if (columnWeight != 0.0) {
        result[static_cast<std::size_t>(i)] += columnWeight * row[k];
      }
    }
  }
}

double DotBlock(const std::vector<double>& weight, const std::vector<double>& v, int first) {
  double sum = 0.0;
  for (std::size_t k = 0; k < weight.size(); ++k) {
    if (weight[k] != 0.0) {
      sum += weight[k] * v[static_cast<std::size_t>(first) + k];
    }
  }
  return sum;
}

// V_ij *= factor_i factor_j; a factor of 0 gives 0 whatever V holds.
void ScaleBothSides(MCSymMatrix& V, const std::vector<double>& factor) {
  double* element = V.AsVector().data();
  for (int i = 0; i < V.GetNRows(); ++i) {
    const double rowFactor = factor[static_cast<std::size_t>(i)];
    for (int j = 0; j <= i; ++j, ++element) {
      const double both = rowFactor * factor[static_cast<std::size_t>(j)];
      *element = both == 0.0 ? 0.0 : *element * rowFactor * factor[static_cast<std::size_t>(j)];
    }
  }
}

void AddElem(MCSymMatrix& V, int i, int j, double value) {
  V.SetElem(i, j, V.GetElem(i, j) + value);
}

// V becomes T V T' for T = diag(factor) + sum over blocks b of e_b shift_b', with e_b the unit vector of the
// block's first row and shift_b the shift at the block's own columns. With r_b = V shift_b this is
//   diag V diag + sum over b of (e_b (diag r_b)' + (diag r_b) e_b') + sum over b, c of e_b e_c' shift_b' r_c.
void ApplyCongruence(MCSymMatrix& V, const std::vector<double>& factor, const std::vector<double>& shift,
                     int nBlocks) {
  const int n = V.GetNRows();
  const int p = static_cast<int>(shift.size());
  std::vector<std::vector<double>> shifted(static_cast<std::size_t>(nBlocks),
                                           std::vector<double>(static_cast<std::size_t>(n), 0.0));
  for (int b = 0; b < nBlocks; ++b) {
    AddWeightedRows(V, b * p, shift, shifted[static_cast<std::size_t>(b)]);
  }
  ScaleBothSides(V, factor);
  for (int b = 0; b < nBlocks; ++b) {
    const std::vector<double>& r = shifted[static_cast<std::size_t>(b)];
    for (int j = 0; j < n; ++j) {
      const double term = factor[static_cast<std::size_t>(j)] * r[static_cast<std::size_t>(j)];
      AddElem(V, b * p, j, j == b * p ? 2.0 * term : term);  // e_b r' and r e_b' meet on the diagonal
    }
    for (int c = 0; c <= b; ++c) {
      AddElem(V, b * p, c * p, DotBlock(shift, shifted[static_cast<std::size_t>(c)], b * p));
    }
  }
}

}  // namespace

bool MCSymMatrix::TransformParameterMatrix(const std::vector<double>& centers,
                                           const std::vector<double>& scales, int nBlocks, int nIntercepts,
                                           bool inverse, bool scaleOnly) {
  const std::size_t p = scales.size();
  if (nBlocks < 0 || nIntercepts < 0 || nIntercepts > 1 || centers.size() != p ||
      static_cast<std::size_t>(GetNRows()) != p * static_cast<std::size_t>(nBlocks)) {
    return false;
  }
  try {
    // Every logit has the same design columns, hence the same map on its block.
    const TransformMap map(centers, scales, nIntercepts, inverse, scaleOnly);
    std::vector<double> factor;
    for (int b = 0; b < nBlocks; ++b) {
      factor.insert(factor.end(), map.fFactor.begin(), map.fFactor.end());
    }
    const bool isShifted =
        std::any_of(map.fShift.begin(), map.fShift.end(), [](double x) { return x != 0.0; });
    if (isShifted) {
      ApplyCongruence(*this, factor, map.fShift, nBlocks);
    } else {
      ScaleBothSides(*this, factor);
    }
    return true;
  } catch (const std::exception&) {
    return false;
  }
}

bool MCSymMatrix::TransformParameterMatrix(const std::vector<double>& centers,
                                           const std::vector<double>& scales, const MCBitSet& bitSet,
                                           int nIntercepts, bool inverse, bool scaleOnly) {
  const int n = GetNRows();
  if (nIntercepts < 0 || nIntercepts > 1 || bitSet.Size() != n ||
      scales.size() != static_cast<std::size_t>(n) || centers.size() != scales.size()) {
    return false;
  }
  try {
    TransformMap map(centers, scales, nIntercepts, inverse, scaleOnly);
    const bool isShifted = nIntercepts == 1 && !scaleOnly && bitSet.IsIn(0);
    std::vector<double> constant(scales.size(), 0.0);  // what a column left out has of the intercept's column
    for (std::size_t k = 0; k < scales.size(); ++k) {
      const bool isIntercept = nIntercepts == 1 && k == 0;
      if (isIntercept || bitSet.IsIn(static_cast<int>(k))) {
        continue;
      }
      // x = s x' + c for the column itself, where its coefficient has 1/s.
      const double scale = scales[k];
      const double center = isShifted ? centers[k] : 0.0;
      map.fShift[k] = 0.0;
      if (!inverse) {
        map.fFactor[k] = scale;
        constant[k] = center;
      } else if (scale != 0.0) {
        map.fFactor[k] = 1.0 / scale;
        constant[k] = -center / scale;
      }
    }
    if (isShifted) {
      ApplyCongruence(*this, map.fFactor, map.fShift, 1);
      for (int k = 1; k < n; ++k) {
        AddElem(*this, 0, k, constant[static_cast<std::size_t>(k)]);
      }
    } else {
      ScaleBothSides(*this, map.fFactor);
    }
    return true;
  } catch (const std::exception&) {
    return false;
  }
}

}  // namespace MCCommonMath
