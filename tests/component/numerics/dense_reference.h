#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <random>
#include <vector>

#include "component/numerics/bit_set.h"
#include "component/numerics/sym_matrix.h"

// Plain dense matrices with triple loops: the independent method that the packed operations are held against.
struct Dense {
  int fNRows = 0;
  int fNCols = 0;
  std::vector<double> fElements;

  Dense(int rows, int cols)
      : fNRows(rows),
        fNCols(cols),
        fElements(static_cast<std::size_t>(rows) * static_cast<std::size_t>(cols), 0.0) {}

  [[nodiscard]] std::size_t Position(int i, int j) const {
    return static_cast<std::size_t>(i) * static_cast<std::size_t>(fNCols) + static_cast<std::size_t>(j);
  }
  double& operator()(int i, int j) { return fElements[Position(i, j)]; }
  double operator()(int i, int j) const { return fElements[Position(i, j)]; }
};

inline Dense operator*(const Dense& a, const Dense& b) {
  Dense product(a.fNRows, b.fNCols);
  for (int i = 0; i < a.fNRows; ++i) {
    for (int k = 0; k < a.fNCols; ++k) {
      for (int j = 0; j < b.fNCols; ++j) {
        product(i, j) += a(i, k) * b(k, j);
      }
    }
  }
  return product;
}

inline Dense Transposed(const Dense& a) {
  Dense turned(a.fNCols, a.fNRows);
  for (int i = 0; i < a.fNRows; ++i) {
    for (int j = 0; j < a.fNCols; ++j) {
      turned(j, i) = a(i, j);
    }
  }
  return turned;
}

inline Dense Random(int rows, int cols, unsigned seed) {
  std::mt19937_64 engine(seed);
  std::uniform_real_distribution<double> uniform(-1.0, 1.0);
  Dense out(rows, cols);
  for (double& element : out.fElements) {
    element = uniform(engine);
  }
  return out;
}

// X' X of a random X with `rows` rows: positive definite for rows >= n, of rank `rows` below.
inline Dense RandomCovariance(int n, int rows, unsigned seed) {
  const Dense x = Random(rows, n, seed);
  return Transposed(x) * x;
}

inline MCCommonMath::MCSymMatrix Packed(const Dense& a) {
  MCCommonMath::MCSymMatrix out(a.fNRows);
  for (int i = 0; i < a.fNRows; ++i) {
    for (int j = 0; j <= i; ++j) {
      out.SetElem(i, j, a(i, j));
    }
  }
  return out;
}

inline Dense Unpacked(const MCCommonMath::MCSymMatrixData& a) {
  Dense out(a.GetNRows(), a.GetNRows());
  for (int i = 0; i < out.fNRows; ++i) {
    for (int j = 0; j < out.fNCols; ++j) {
      out(i, j) = a.GetElem(i, j);
    }
  }
  return out;
}

// The lower triangle only: what a factor in packed storage means.
inline Dense UnpackedFactor(const MCCommonMath::MCSymMatrixData& a) {
  Dense out(a.GetNRows(), a.GetNRows());
  for (int i = 0; i < out.fNRows; ++i) {
    for (int j = 0; j <= i; ++j) {
      out(i, j) = a.GetElem(i, j);
    }
  }
  return out;
}

inline double LargestAbs(const Dense& a) {
  double largest = 0.0;
  for (const double element : a.fElements) {
    largest = std::isnan(element) ? element : std::max(largest, std::abs(element));
    if (std::isnan(largest)) {
      break;
    }
  }
  return largest;
}

// The largest absolute difference relative to the largest element; NaN when either holds one.
inline double RelativeDistance(const Dense& a, const Dense& b) {
  Dense difference = a;
  for (std::size_t i = 0; i < difference.fElements.size(); ++i) {
    difference.fElements[i] -= b.fElements[i];
  }
  const double scale = LargestAbs(b);
  return LargestAbs(difference) / (scale > 0.0 ? scale : 1.0);
}

// The matrix with the rows and columns of clear bits set to 0.
inline Dense Restricted(Dense a, const MCCommonMath::MCBitSet& bits) {
  for (int i = 0; i < a.fNRows; ++i) {
    for (int j = 0; j < a.fNCols; ++j) {
      if (!bits.IsIn(i) || !bits.IsIn(j)) {
        a(i, j) = 0.0;
      }
    }
  }
  return a;
}

inline MCCommonMath::MCBitSet Bits(int size, const std::vector<int>& members) {
  MCCommonMath::MCBitSet out(size);
  for (const int i : members) {
    out.Set(i, true);
  }
  return out;
}

inline MCCommonMath::MCBitSet AllBits(int size) {
  MCCommonMath::MCBitSet out;
  out.Resize(size, true);
  return out;
}
