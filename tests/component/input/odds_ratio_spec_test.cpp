#include "component/input/odds_ratio_spec.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace tavo {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr int kRefused = OrvOddsRatioSpec::kRefused;

TEST(OddsRatioSpec, CountsItsFactorsAndRefusesImpossibleOnes) {
  OrvOddsRatioSpec spec;
  EXPECT_EQ(spec.AddFactor(4, OrvOddsRatioSpec::kLowest), 1);
  EXPECT_EQ(spec.AddFactor(2, 3), 2);
  EXPECT_EQ(spec.AddFactor(-1, 1), kRefused);
  EXPECT_EQ(spec.AddFactor(5, -2), kRefused);
  EXPECT_EQ(spec.AddFactor(4, 1), kRefused) << "already there";
  ASSERT_EQ(spec.FactorCount(), 2);
  EXPECT_EQ(spec.Factors()[0].variable, 4);
  EXPECT_EQ(spec.Factors()[0].reference, -1);
  EXPECT_EQ(spec.Factors()[1].reference, 3);
}

TEST(OddsRatioSpec, CountsItsCovariatesAndRefusesImpossibleOnes) {
  OrvOddsRatioSpec spec;
  EXPECT_EQ(spec.AddCovariate(3, {1, -2.5}), 1);
  EXPECT_EQ(spec.AddCovariate(3, {1}), kRefused) << "already there";
  EXPECT_EQ(spec.AddCovariate(-1, {1}), kRefused);
  EXPECT_EQ(spec.AddCovariate(5, {1, 0}), kRefused);
  EXPECT_EQ(spec.AddCovariate(5, {-0.0}), kRefused);
  EXPECT_EQ(spec.AddCovariate(6, {1e-300}), 2);
  EXPECT_THAT(spec.Covariates(), ElementsAre(3, 6));
  EXPECT_THAT(spec.Changes(), ElementsAre(ElementsAre(1, -2.5), ElementsAre(1e-300)));
}

TEST(OddsRatioSpec, AcceptsAnUndefinedChangeSinceOnlyAnExactZeroIsRefused) {
  OrvOddsRatioSpec spec;
  EXPECT_EQ(spec.AddCovariate(1, {std::numeric_limits<double>::quiet_NaN()}), 1);
}

TEST(OddsRatioSpec, IsAboutFactorsOrCovariatesButNotBoth) {
  OrvOddsRatioSpec factors;
  factors.AddFactor(1, 1);
  EXPECT_EQ(factors.AddCovariate(2, {1}), kRefused);
  OrvOddsRatioSpec covariates;
  covariates.AddCovariate(2, {1});
  EXPECT_EQ(covariates.AddFactor(1, 1), kRefused);
}

TEST(OddsRatioSpec, ControlsAnyVariableOnceVariedOrNot) {
  OrvOddsRatioSpec spec;
  spec.AddFactor(1, 1);
  EXPECT_EQ(spec.AddControl(1, 2), 1);
  EXPECT_EQ(spec.AddControl(2, -0.5), 2);
  EXPECT_EQ(spec.AddControl(2, 1), kRefused) << "already there";
  EXPECT_EQ(spec.AddControl(-1, 1), kRefused);
  ASSERT_EQ(spec.Controls().size(), 2U);
  EXPECT_EQ(spec.Controls()[1].variable, 2);
  EXPECT_EQ(spec.Controls()[1].value, -0.5);
}

TEST(OddsRatioSpec, ClearEmptiesAllLists) {
  OrvOddsRatioSpec spec;
  spec.AddCovariate(1, {1});
  spec.AddControl(1, 1);
  spec.Clear();
  EXPECT_THAT(spec.Factors(), IsEmpty());
  EXPECT_THAT(spec.Covariates(), IsEmpty());
  EXPECT_THAT(spec.Changes(), IsEmpty());
  EXPECT_THAT(spec.Controls(), IsEmpty());
  EXPECT_EQ(spec.AddFactor(1, 1), 1);
}

}  // namespace
}  // namespace tavo
