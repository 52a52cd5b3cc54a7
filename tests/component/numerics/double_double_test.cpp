// Arithmetic in twice the precision against whole numbers of 128 bits, and against itself.
#include "component/numerics/double_double.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <random>

namespace {

using MCCommonMath::DoubleDouble;
using MCCommonMath::ExactProduct;
using MCCommonMath::ExactSum;
__extension__ using Whole = __int128;

/// Exact when the value is a whole number below 2^106.
Whole WholeOf(const DoubleDouble& value) {
  return static_cast<Whole>(value.high) + static_cast<Whole>(value.low);
}

double RelativeDistance(const DoubleDouble& a, const DoubleDouble& b) {
  return std::abs((a - b).Value() / b.Value());
}

/// A number with 106 bits of its own.
DoubleDouble RandomValue(std::mt19937_64& random) {
  std::uniform_real_distribution<double> uniform(-1, 1);
  const double high = 1.5 + uniform(random) / 2;
  return ExactSum(high, uniform(random) * 0x1p-54);
}

TEST(DoubleDouble, SumsAndProductsOfDoublesAreExact) {
  std::mt19937_64 random(1);
  for (int i = 0; i < 1000; ++i) {
    const auto a = static_cast<std::int64_t>(random() >> 11) - (std::int64_t{1} << 52);
    const auto b = static_cast<std::int64_t>(random() >> (11 + i % 40));
    const auto x = static_cast<double>(a);
    const auto y = static_cast<double>(b);
    ASSERT_TRUE(WholeOf(ExactProduct(x, y)) == static_cast<Whole>(a) * b);
    ASSERT_TRUE(WholeOf(ExactSum(x, y)) == static_cast<Whole>(a) + b);
  }
  const DoubleDouble tiny = ExactSum(1.0, 0x1p-80);
  EXPECT_EQ(tiny.high, 1.0);
  EXPECT_EQ(tiny.low, 0x1p-80);
}

TEST(DoubleDouble, KeepsWhatADoubleLosesWhenTermsCancel) {
  const DoubleDouble third = DoubleDouble(1.0) / DoubleDouble(3.0);
  const DoubleDouble rest = third * DoubleDouble(3.0) - DoubleDouble(1.0);
  EXPECT_LT(std::abs(rest.Value()), 0x1p-100);
  DoubleDouble sum = 1e20;
  sum += 0.1;
  sum -= 1e20;
  EXPECT_NEAR(sum.Value(), 0.1, 1e-12);
}

TEST(DoubleDouble, UndoesItsOwnOperationsToAHundredBits) {
  std::mt19937_64 random(2);
  for (int i = 0; i < 1000; ++i) {
    const DoubleDouble a = RandomValue(random);
    const DoubleDouble b = RandomValue(random);
    ASSERT_LT(RelativeDistance(a * b / b, a), 0x1p-99);
    ASSERT_LT(RelativeDistance(a + b - b, a), 0x1p-99);
    const DoubleDouble root = MCCommonMath::SquareRoot(a);
    ASSERT_LT(RelativeDistance(root * root, a), 0x1p-99);
    ASSERT_LE(std::abs(root.low), std::abs(root.high) * 0x1p-53);
  }
}

TEST(DoubleDouble, QuotientsOfNumbersOfAnySizeNeitherOverflowNorUnderflow) {
  const DoubleDouble third = DoubleDouble(1.0) / DoubleDouble(3.0);
  for (const int exponent : {-1000, 0, 1000}) {
    const double three = std::ldexp(3.0, exponent);
    EXPECT_EQ(MCCommonMath::Quotient(std::ldexp(1.0, exponent), three).high, third.high);
    EXPECT_EQ(MCCommonMath::Quotient(std::ldexp(1.0, exponent), three).low, third.low);
    EXPECT_EQ(MCCommonMath::Quotient(1.0, three).high, std::ldexp(third.high, -exponent));
  }
  EXPECT_EQ(MCCommonMath::Quotient(0.0, 3.0).high, 0.0);
}

TEST(DoubleDouble, HasNoRootOfWhatIsNotPositive) {
  EXPECT_EQ(MCCommonMath::SquareRoot(-1.0).Value(), 0.0);
  EXPECT_EQ(MCCommonMath::SquareRoot(0.0).Value(), 0.0);
  EXPECT_EQ(MCCommonMath::SquareRoot(NAN).Value(), 0.0);
}

}  // namespace
