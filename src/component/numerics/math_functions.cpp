// Plain loops over strided vectors, and the two measures of change by which a fit decides that it has
// converged.
#include "component/numerics/math_functions.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

#include "component/numerics/missing_value.h"
#include "component/numerics/transform_map.h"

namespace MCCommonMath {

namespace {

// Whether offset + i * step lies in 0 .. size-1 for all i < n, n >= 1. In 64 bits, since the last position
// may not fit an int.
bool IsStrideInside(std::size_t size, int n, int offset, int step) {
  const long long first = offset;
  const long long last = first + (static_cast<long long>(n) - 1) * step;
  return std::min(first, last) >= 0 && std::max(first, last) < static_cast<long long>(size);
}

}  // namespace

double MCMathFun::DDot(int n, std::span<const double> x, int xOffset, int xStep, std::span<const double> y,
                       int yOffset, int yStep) {
  if (n <= 0) {
    return 0.0;
  }
  if (!IsStrideInside(x.size(), n, xOffset, xStep) || !IsStrideInside(y.size(), n, yOffset, yStep)) {
    return MCMV::gMissingValue;
  }
  const double* px = x.data() + xOffset;
  const double* py = y.data() + yOffset;
  double sum = 0.0;
  for (std::ptrdiff_t i = 0; i < n; ++i) {
    sum += px[i * xStep] * py[i * yStep];
  }
  return sum;
}

bool MCMathFun::Daxpy(int n, double alpha, std::span<const double> x, int xOffset, int xStep,
                      std::span<double> y, int yOffset, int yStep) {
  if (n <= 0) {
    return true;
  }
  if (!IsStrideInside(x.size(), n, xOffset, xStep) || !IsStrideInside(y.size(), n, yOffset, yStep)) {
    return false;
  }
  const double* px = x.data() + xOffset;
  double* py = y.data() + yOffset;
  for (std::ptrdiff_t i = 0; i < n; ++i) {
    py[i * yStep] += alpha * px[i * xStep];
  }
  return true;
}

double MCMathFun::VNrm1Diff(std::span<const double> a, std::span<const double> b) {
  if (a.size() != b.size()) {
    return std::numeric_limits<double>::infinity();
  }
  double sum = 0.0;
  for (std::size_t i = 0; i < a.size(); ++i) {
    sum += std::abs(a[i] - b[i]);
  }
  return sum;
}

double MCMathFun::VMaxRelDiff(std::span<const double> a, std::span<const double> b, double eps) {
  if (a.size() != b.size()) {
    return std::numeric_limits<double>::infinity();
  }
  double largest = 0.0;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (a[i] == b[i]) {  // also guards 0/0 when eps is 0
      continue;
    }
    const double change = std::abs(a[i] - b[i]) / std::max(std::abs(b[i]), eps);
    if (std::isnan(change)) {  // max would drop it, and the fit would take a spoilt step for a small one
      return change;
    }
    largest = std::max(largest, change);
  }
  return largest;
}

bool MCMathFun::TransformParameters(std::vector<double>& params, const std::vector<double>& centers,
                                    const std::vector<double>& scales, int nBlocks, int nIntercepts,
                                    bool inverse, bool scaleOnly) {
  const std::size_t p = scales.size();
  if (nBlocks < 0 || nIntercepts < 0 || nIntercepts > 1 || centers.size() != p ||
      params.size() != p * static_cast<std::size_t>(nBlocks)) {
    return false;
  }
  const TransformMap map(centers, scales, nIntercepts, inverse, scaleOnly);
  for (std::size_t start = 0; start < params.size(); start += p) {
    double* block = params.data() + start;
    double shift = 0.0;  // from the coefficients before they change
    for (std::size_t k = 0; k < p; ++k) {
      shift += map.fShift[k] * block[k];
      block[k] *= map.fFactor[k];
    }
    if (nIntercepts == 1) {
      block[0] += shift;
    }
  }
  return true;
}

}  // namespace MCCommonMath
