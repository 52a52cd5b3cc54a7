#include "component/numerics/distributions.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "component/numerics/missing_value.h"

namespace {

using MCCommonMath::IsMissing;
using MCCommonMath::MCDistFun;
using MCCommonMath::MCMV;

constexpr double kInf = HUGE_VAL;

// Reference values: mpmath 1.4.1 at 60 digits, from the regularised incomplete beta and gamma functions
// (betainc(..., regularized=True), gammainc(..., regularized=True)); the quantiles by findroot on that lower
// tail.
void ExpectClose(double value, double expected) {
  EXPECT_NEAR(value, expected, 2e-13 * std::abs(expected)) << "expected " << expected;
}

TEST(CdfT, AgreesWithReferenceValuesFarIntoTheTail) {
  ExpectClose(MCDistFun::CdfT(0.0, 3.0), 0.5);
  ExpectClose(MCDistFun::CdfT(1.5, 1.0), 0.81283295818900118);
  ExpectClose(MCDistFun::CdfT(-2.0, 4.5), 0.054128953590562513);
  ExpectClose(MCDistFun::CdfT(-12.5, 30.0), 9.9924817469832159e-14);
  ExpectClose(MCDistFun::CdfT(-30.0, 30.0), 3.125895815304444e-24);
  ExpectClose(MCDistFun::CdfT(-1e6, 7.0), 1.3205206763259189e-40);
  ExpectClose(MCDistFun::CdfT(2.5, 1000.0), 0.9937107160994546);
  ExpectClose(MCDistFun::CdfT(-40.0, 200.0), 1.1243698267601253e-97);
  ExpectClose(MCDistFun::CdfT(-0.001, 2.0), 0.49964644669779504);
  EXPECT_EQ(MCDistFun::CdfT(-kInf, 2.0), 0.0);
  EXPECT_EQ(MCDistFun::CdfT(kInf, 2.0), 1.0);
}

TEST(IdfT, AgreesWithReferenceValues) {
  ExpectClose(MCDistFun::IdfT(0.975, 1.0), 12.706204736174693);
  ExpectClose(MCDistFun::IdfT(0.975, 10.0), 2.2281388519862742);
  ExpectClose(MCDistFun::IdfT(0.995, 2.5), 7.1637281389487829);
  ExpectClose(MCDistFun::IdfT(0.95, 300.0), 1.6499486739376336);
  ExpectClose(MCDistFun::IdfT(0.75, 0.5), 1.5537739740300373);
  ExpectClose(MCDistFun::IdfT(0.9995, 6.0), 5.9588161788188849);
  EXPECT_EQ(MCDistFun::IdfT(0.5, 7.0), 0.0);
}

TEST(IdfT, InvertsCdfT) {
  for (const double df : {0.7, 1.0, 3.5, 12.0, 80.0, 5000.0}) {
    for (const double p : {1e-12, 0.01, 0.3, 0.8, 0.999}) {
      ExpectClose(MCDistFun::CdfT(MCDistFun::IdfT(p, df), df), p);
    }
  }
}

struct TailCase {
  double fX, fDf1, fDf2, fLower, fUpper;
};

TEST(CdfChi, AndUpperChiAgreeWithReferenceValues) {
  const std::vector<TailCase> cases{
      {0.0, 2.0, 0, 0.0, 1.0},
      {1.0, 1.0, 0, 0.6826894921370859, 0.3173105078629141},
      {3.5, 2.0, 0, 0.82622605654955487, 0.17377394345044513},
      {10.25, 4.75, 0, 0.94082123477527046, 0.059178765224729544},
      {200.0, 3.0, 0, 1.0, 4.2185411071920423e-43},
      {250.0, 20.0, 0, 1.0, 1.1423093523163715e-41},
      {1000.0, 700.0, 0, 0.99999999999942583, 5.7417363078836936e-13},
      {kInf, 3.0, 0, 1.0, 0.0},
  };
  for (const TailCase& c : cases) {
    ExpectClose(MCDistFun::CdfChi(c.fX, c.fDf1), c.fLower);
    ExpectClose(MCDistFun::UpperChi(c.fX, c.fDf1), c.fUpper);
  }
}

TEST(CdfF, AndUpperFAgreeWithReferenceValues) {
  const std::vector<TailCase> cases{
      {0.0, 2, 5, 0.0, 1.0},
      {1.0, 1, 1, 0.5, 0.5},
      {3.5, 2, 10, 0.92957037222762574, 0.07042962777237426},
      {2.25, 3.5, 17.25, 0.88799223889117478, 0.11200776110882522},
      {400.0, 2, 60, 1.0, 2.0397830293297797e-35},
      {1200.0, 3, 100, 1.0, 3.0850210124854974e-78},
      {1e-3, 4, 8, 2.495006555506557e-6, 0.99999750499344449},
      {50.0, 5, 1000, 1.0, 2.6802441826217355e-46},
      {kInf, 3, 4, 1.0, 0.0},
  };
  for (const TailCase& c : cases) {
    ExpectClose(MCDistFun::CdfF(c.fX, c.fDf1, c.fDf2), c.fLower);
    ExpectClose(MCDistFun::UpperF(c.fX, c.fDf1, c.fDf2), c.fUpper);
  }
}

// t squared with d degrees of freedom is F with 1 and d, and with d growing chi-square with 1.
TEST(UpperF, OfASquaredTIsTheTwoSidedTail) {
  for (const double t : {0.1, 1.0, 3.0, 20.0}) {
    ExpectClose(MCDistFun::UpperF(t * t, 1.0, 17.0), 2.0 * MCDistFun::CdfT(-t, 17.0));
    EXPECT_NEAR(MCDistFun::UpperF(t * t, 1.0, 1e13) / MCDistFun::UpperChi(t * t, 1.0), 1.0, 1e-7);
  }
}

TEST(DistributionFunctions, ThatCannotGiveAValueReturnTheMissingValueAndNoException) {
  for (const double df : {0.0, -1.0, MCMV::gMissingValue, std::nan(""), kInf}) {
    EXPECT_TRUE(IsMissing(MCDistFun::CdfT(1.0, df)));
    EXPECT_TRUE(IsMissing(MCDistFun::IdfT(0.9, df)));
    EXPECT_TRUE(IsMissing(MCDistFun::CdfChi(1.0, df)));
    EXPECT_TRUE(IsMissing(MCDistFun::UpperChi(1.0, df)));
    EXPECT_TRUE(IsMissing(MCDistFun::CdfF(1.0, df, 3.0)));
    EXPECT_TRUE(IsMissing(MCDistFun::CdfF(1.0, 3.0, df)));
    EXPECT_TRUE(IsMissing(MCDistFun::UpperF(1.0, df, 3.0)));
    EXPECT_TRUE(IsMissing(MCDistFun::UpperF(1.0, 3.0, df)));
  }
  for (const double x : {MCMV::gMissingValue, std::nan("")}) {
    EXPECT_TRUE(IsMissing(MCDistFun::CdfT(x, 3.0)));
    EXPECT_TRUE(IsMissing(MCDistFun::IdfT(x, 3.0)));
    EXPECT_TRUE(IsMissing(MCDistFun::CdfChi(x, 3.0)));
    EXPECT_TRUE(IsMissing(MCDistFun::UpperChi(x, 3.0)));
    EXPECT_TRUE(IsMissing(MCDistFun::CdfF(x, 3.0, 3.0)));
    EXPECT_TRUE(IsMissing(MCDistFun::UpperF(x, 3.0, 3.0)));
  }
  for (const double p : {0.0, 1.0, -0.5, 1.5}) {
    EXPECT_TRUE(IsMissing(MCDistFun::IdfT(p, 3.0)));
  }
  EXPECT_TRUE(IsMissing(MCDistFun::CdfChi(-1e-9, 3.0)));
  EXPECT_TRUE(IsMissing(MCDistFun::UpperF(-1.0, 3.0, 3.0)));
  EXPECT_TRUE(IsMissing(MCDistFun::UpperF(1e308, 3.0, 3.0)));
  EXPECT_TRUE(IsMissing(MCDistFun::IdfT(1.0 - 1e-16, 1e-6)));  // the quantile is beyond the largest double
}

}  // namespace
