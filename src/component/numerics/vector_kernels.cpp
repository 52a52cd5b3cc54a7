// Eigen's array expressions choose the widest registers that the build may use. Its exponential and logarithm
// are polynomials that run in all lanes at once, where the C library takes the elements one by one.
#include "component/numerics/vector_kernels.h"

#include <Eigen/Core>

namespace MCCommonMath::vectors {

namespace {

using Array = Eigen::Map<Eigen::ArrayXd>;
using ConstArray = Eigen::Map<const Eigen::ArrayXd>;

Array ToArray(double* x, std::size_t n) {
  return Array(x, static_cast<Eigen::Index>(n));
}

ConstArray ToArray(const double* x, std::size_t n) {
  return ConstArray(x, static_cast<Eigen::Index>(n));
}

}  // namespace

void Exp(double* x, std::size_t n) {
  ToArray(x, n) = ToArray(x, n).exp();
}

void Log1p(double* x, std::size_t n) {
  // log(1 + x) loses the digits of a small x in the sum. With u = 1 + x as rounded, log(u) x / (u - 1) has
  // them all: the errors of log(u) and u - 1 are the same and cancel. Chunks, so that the logarithms stay on
  // the stack.
  constexpr std::size_t kChunk = 64;
  double logs[kChunk];
  for (std::size_t first = 0; first < n; first += kChunk) {
    const std::size_t count = n - first < kChunk ? n - first : kChunk;
    double* const values = x + first;
    ToArray(logs, count) = (ToArray(values, count) + 1).log();
    for (std::size_t i = 0; i < count; ++i) {
      const double kept = (1 + values[i]) - 1;  // what of the value survives beside 1; 0: log(1 + x) is x
      values[i] = kept == 0 ? values[i] : logs[i] * (values[i] / kept);
    }
  }
}

double Sum(const double* x, std::size_t n) {
  return ToArray(x, n).sum();
}

double Dot(const double* x, const double* y, std::size_t n) {
  return ToArray(x, n).matrix().dot(ToArray(y, n).matrix());
}

void Multiply(const double* x, const double* y, double* out, std::size_t n) {
  ToArray(out, n) = ToArray(x, n) * ToArray(y, n);
}

void AddScaled(double alpha, const double* x, double* y, std::size_t n) {
  ToArray(y, n) += alpha * ToArray(x, n);
}

}  // namespace MCCommonMath::vectors
