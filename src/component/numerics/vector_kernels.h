// Element by element functions and sums over short vectors that lie end to end, several elements at a time in
// vector registers.
#pragma once

#include <cstddef>

namespace MCCommonMath::vectors {

// Elements are finite everywhere below.

/// x = exp(x). Good to two units in the last place; below the smallest normal number the result is about that
/// number or 0.
void Exp(double* x, std::size_t n);

/// x = log(1 + x) for x >= 0. Keeps the digits of a small x (Kahan 1979, in Higham 2002, section 1.14).
void Log1p(double* x, std::size_t n);

/// Sums over n elements, added in as many lanes as a register holds.
[[nodiscard]] double Sum(const double* x, std::size_t n);
[[nodiscard]] double Dot(const double* x, const double* y, std::size_t n);

/// out = x * y, element by element.
void Multiply(const double* x, const double* y, double* out, std::size_t n);

/// y += alpha * x.
void AddScaled(double alpha, const double* x, double* y, std::size_t n);

}  // namespace MCCommonMath::vectors
