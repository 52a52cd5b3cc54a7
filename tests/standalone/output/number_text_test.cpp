#include "standalone/output/number_text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <limits>

namespace {

using host::BpProcedure;
using standalone::NumberLabel;
using standalone::NumberText;

struct NumberCase {
  double value;
  host::BpFormatSpec format;
  const char* text;
};

TEST(NumberText, PrintsEachKindInTheStyleOfTables) {
  const auto coefficient = BpProcedure::Coefficient(), general = BpProcedure::GeneralStat();
  const auto significance = BpProcedure::Significance(), percent = BpProcedure::Percent();
  const host::BpFormatSpec mean{host::BpFormatSpec::Kind::kMean, 4};
  const NumberCase cases[] = {
      {1.23456, coefficient, "1.235"},
      {0.5, coefficient, ".500"},
      {-0.5, coefficient, "-.500"},
      {0, coefficient, ".000"},
      {-0.0, coefficient, ".000"},
      {0.01, coefficient, ".010"},
      {0.00123456, coefficient, ".00123"},
      {-0.000123, coefficient, "-.000123"},
      {1.234e-7, general, "1.23e-07"},
      {-4e-300, general, "-4.00e-300"},
      {123456789.25, general, "123456789.250"},
      {999999999999999.0, general, "999999999999999.000"},
      {1e15, general, "1.000e+15"},
      {0.0004999, significance, "<.001"},
      {0.0005, significance, ".001"},
      {0.04996, significance, ".050"},
      {1, significance, "1.000"},
      {0, significance, "<.001"},
      {3, BpProcedure::Count(), "3"},
      {1234567, BpProcedure::Count(), "1234567"},
      {12.345, percent, "12.3%"},
      {100, percent, "100.0%"},
      {0.25, BpProcedure::Correlation(), ".250"},
      {-1, BpProcedure::Correlation(), "-1.000"},
      {95, BpProcedure::SigDigit(), "95"},
      {99.5, BpProcedure::SigDigit(), "99.5"},
      {0.1, BpProcedure::SigDigit(), ".1"},
      {2.0 / 3, BpProcedure::SigDigit(), ".667"},
      {12.34567, mean, "12.3457"},
      {999999999999999.0, mean, "999999999999999.0000"},
      {-1e308, mean, "-1.000e+308"},
      {1e308, BpProcedure::SigDigit(), "1.000e+308"},
  };
  for (const NumberCase& c : cases)
    EXPECT_EQ(NumberText(c.value, c.format), c.text) << c.value;
}

TEST(NumberText, IsEmptyForAMissingNumberAndForOneThatIsNotFinite) {
  for (const double value : {host::kSystemMissing, std::nan(""), std::numeric_limits<double>::infinity()}) {
    EXPECT_EQ(NumberText(value, BpProcedure::GeneralStat()), "");
  }
}

TEST(NumberText, ANumberThatIsNotZeroNeverPrintsAsZero) {
  for (double value = 1; value > 1e-300; value /= 7.3) {
    for (const auto& format : {BpProcedure::Coefficient(), BpProcedure::GeneralStat()}) {
      const double shown = std::strtod(NumberText(value, format).c_str(), nullptr);
      EXPECT_NEAR(shown, value, value * 0.051) << value;  // at worst .0105 as .011
    }
    EXPECT_GT(std::strtod(NumberText(value, BpProcedure::SigDigit()).c_str(), nullptr), 0);
  }
}

TEST(NumberLabel, ShowsAllDigitsOfANumberThatItsFormatWouldRound) {
  EXPECT_EQ(NumberLabel(10, BpProcedure::GeneralStat()), "10.000");
  EXPECT_EQ(NumberLabel(0.12345, BpProcedure::GeneralStat()), ".12345");
  EXPECT_EQ(NumberLabel(2, BpProcedure::Count()), "2");
}

}  // namespace
