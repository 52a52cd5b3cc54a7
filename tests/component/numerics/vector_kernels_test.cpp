#include "component/numerics/vector_kernels.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace {

namespace vectors = MCCommonMath::vectors;

constexpr double kUnit = 0x1p-52;

/// Numbers of either sign over many magnitudes, in every place of a vector register.
std::vector<double> Spread(double largest) {
  std::vector<double> values{0.0};
  for (double x = 1e-20; x < largest; x *= 1.37) {
    values.push_back(x);
    values.push_back(-x);
  }
  return values;
}

TEST(VectorExp, AgreesWithTheLibraryToTwoUnits) {
  const std::vector<double> arguments = Spread(700);
  std::vector<double> results = arguments;
  vectors::Exp(results.data(), results.size());
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const double expected = std::exp(arguments[i]);
    EXPECT_NEAR(results[i], expected, 2 * kUnit * expected) << "exp " << arguments[i];
  }
}

TEST(VectorExp, OfZeroIsOneAndOfANegativeNumberIsNotAbove) {
  std::vector<double> values{0.0, -0.0, -1e-300, -1e-17, -1e-16, -1e-15};
  vectors::Exp(values.data(), values.size());
  EXPECT_EQ(values[0], 1.0);
  EXPECT_EQ(values[1], 1.0);
  for (const double value : values)
    EXPECT_LE(value, 1.0);
}

TEST(VectorExp, FarBelowTheRangeIsNextToNothing) {
  std::vector<double> values{-709.0, -800.0, -1e5, -1e300};
  vectors::Exp(values.data(), values.size());
  EXPECT_NEAR(values[0] / std::exp(-709.0), 1.0, 4 * kUnit);
  for (std::size_t i = 1; i < values.size(); ++i) {
    EXPECT_GE(values[i], 0.0);
    EXPECT_LE(values[i], 1.1 * std::numeric_limits<double>::min());
  }
}

TEST(VectorLog1p, AgreesWithTheLibraryForSmallAndLargeArguments) {
  std::vector<double> arguments{0.0, 1e-320};
  for (double x = 1e-300; x < 1e300; x *= 3.1)
    arguments.push_back(x);
  std::vector<double> results = arguments;
  vectors::Log1p(results.data(), results.size());
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const double expected = std::log1p(arguments[i]);
    EXPECT_NEAR(results[i], expected, 3 * kUnit * expected) << "log1p " << arguments[i];
  }
}

TEST(VectorSums, TakeEveryElementWhateverTheLength) {
  std::vector<double> x;
  std::vector<double> y;
  double sum = 0;
  double dot = 0;
  for (int i = 0; i < 40; ++i) {
    EXPECT_EQ(vectors::Sum(x.data(), x.size()), sum);
    EXPECT_EQ(vectors::Dot(x.data(), y.data(), x.size()), dot);
    x.push_back(i + 1);
    y.push_back(2 * i - 7);
    sum += x.back();
    dot += x.back() * y.back();
  }
  std::vector<double> product(x.size());
  vectors::Multiply(x.data(), y.data(), product.data(), x.size());
  vectors::AddScaled(0.5, x.data(), y.data(), x.size());
  for (int i = 0; i < 40; ++i) {
    EXPECT_EQ(product[static_cast<std::size_t>(i)], (i + 1) * (2 * i - 7));
    EXPECT_EQ(y[static_cast<std::size_t>(i)], 2 * i - 7 + 0.5 * (i + 1));
  }
}

}  // namespace
