#include "standalone/text/numbers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>

#include "host/data.h"

namespace {

using standalone::DoubleFromText;
using standalone::NumberFromText;
using standalone::ShortestText;

TEST(ShortestText, ReadsBackToTheSameDouble) {
  for (const double value : {0.1, 1.0 / 3, 1e300, 5e-324, -123456.789, 1e22}) {
    EXPECT_EQ(std::strtod(ShortestText(value).c_str(), nullptr), value);
  }
  EXPECT_EQ(ShortestText(0.1), "0.1");
}

TEST(ShortestText, IsEmptyForAMissingNumberAndForOneThatIsNotFinite) {
  for (const double value : {host::kSystemMissing, std::nan(""), std::numeric_limits<double>::infinity()})
    EXPECT_EQ(ShortestText(value), "");
}

TEST(NumberFromText, TakesAPlusSignAndNeverTheMissingValue) {
  EXPECT_EQ(NumberFromText("+2.5"), 2.5);
  EXPECT_EQ(NumberFromText("-1e-3"), -0.001);
  char missing[32];
  std::snprintf(missing, sizeof missing, "%.17g", host::kSystemMissing);
  EXPECT_FALSE(NumberFromText(missing).has_value());
  EXPECT_TRUE(DoubleFromText(missing).has_value());
}

TEST(DoubleFromText, TakesTheWholeTextOrNothing) {
  EXPECT_EQ(DoubleFromText("12"), 12);
  EXPECT_EQ(DoubleFromText("-.5"), -0.5);
  for (const char* text : {"", "12 ", " 12", "+12", "0x10", "1e999", "1,5"})
    EXPECT_FALSE(DoubleFromText(text).has_value()) << text;
}

}  // namespace
