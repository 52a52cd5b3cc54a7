// Whole runs of the component against the same analysis with dense matrices, and the statistics of the
// parameters.

#include <gtest/gtest.h>

#include <algorithm>

#include "component/numerics/missing_value.h"
#include "component/run/output_stats.h"
#include "small_survey.h"

namespace inference_test {
namespace {

using MCCommonMath::IsMissing;
using tavo::InclProbType;
using tavo::OrvParamStats;
using tavo::TavoAlgorithm;
using tavo::TavoCompSettings;
using tavo::TavoOutputStats;

void ExpectSameCovariance(const MCCommonMath::MCSymMatrix& matrix, const Dense& expected) {
  for (std::size_t i = 0; i < expected.size(); ++i) {
    for (std::size_t j = 0; j <= i; ++j) {
      const auto value = static_cast<double>(expected[i][j]);
      const auto scale = static_cast<double>(std::sqrt(expected[i][i] * expected[j][j]));
      EXPECT_NEAR(matrix.GetElem(KeptPosition(i), KeptPosition(j)), value, 1e-9 * scale) << i << ", " << j;
    }
  }
}

TEST(ParameterCovariance, OfAStratifiedClusterSampleIsTheSandwichOnTheScaleOfTheData) {
  for (const int categories : {2, 3}) {
    SCOPED_TRACE(categories);
    const TavoCompSettings settings = FullSettings(categories);
    const auto cases = RandomCases(categories, 7);
    const auto run = Analyse(settings, cases);
    ASSERT_TRUE(run->IsModelBuilt());
    const DirectFit direct(cases, categories);
    const auto& inference = *run->Inference();
    ASSERT_NE(inference.PECovar(), nullptr);
    ASSERT_NE(inference.PECovarSRS(), nullptr);
    ExpectSameCovariance(*inference.PECovar(), direct.DesignCovariance());
    ExpectSameCovariance(*inference.PECovarSRS(), direct.SRSCovariance());
    EXPECT_EQ(inference.PECovar()->GetNBlocks(), categories - 1);
    EXPECT_EQ(inference.BadVariances().InSet(), 0);
    EXPECT_EQ(inference.DegreesOfFreedom(), 8.0) << "12 clusters in 4 strata";
    for (std::size_t i = 0; i < direct.Theta().size(); ++i) {
      EXPECT_NEAR(run->Model().Estimates()[static_cast<std::size_t>(KeptPosition(i))],
                  static_cast<double>(direct.Theta()[i]), 1e-9);
    }
  }
}

TEST(ParameterCovariance, InASubpopulationKeepsAllUnitsOfTheDesign) {
  TavoCompSettings settings = FullSettings(2);
  settings.SetSubpop(kDomain, 1);
  const auto cases = RandomCases(2, 11);
  const auto run = Analyse(settings, cases);
  ASSERT_TRUE(run->IsModelBuilt());
  ExpectSameCovariance(*run->Inference()->PECovar(), DirectFit(cases, 2, 1).DesignCovariance());
  EXPECT_EQ(run->Inference()->DegreesOfFreedom(), 8.0);
}

TEST(ParameterCovariance, WithReplacementDoesNotDependOnTheUnitOfTheWeights) {
  const TavoCompSettings settings = FullSettings(2);
  auto cases = RandomCases(2, 3);
  const auto run = Analyse(settings, cases);
  for (Case& c : cases)
    c.weight *= 1024;
  const auto scaled = Analyse(settings, cases);
  ASSERT_TRUE(run->IsModelBuilt() && scaled->IsModelBuilt());
  for (const int i : {0, 1, 3}) {
    const double variance = run->Inference()->PECovar()->GetElem(i, i);
    EXPECT_NEAR(scaled->Inference()->PECovar()->GetElem(i, i), variance, 1e-10 * variance);
  }
}

TEST(ParameterCovariance, WithRecordsAsUnitsTreatsEachCaseAsACluster) {
  TavoCompSettings settings = BareSettings(2);
  settings.AddDesignCategorical(kStratum, tavo::DesignVariableKind::kStrata, 1);
  settings.SetStageEstimator(tavo::StageEstimator::kWithReplacement, 1);
  AddPredictors(settings);
  auto cases = RandomCases(2, 5);
  const auto run = Analyse(settings, cases);
  ASSERT_TRUE(run->IsModelBuilt());
  for (std::size_t i = 0; i < cases.size(); ++i)
    cases[i].cluster = static_cast<int>(i);
  ExpectSameCovariance(*run->Inference()->PECovar(), DirectFit(cases, 2).DesignCovariance());
  EXPECT_EQ(run->Inference()->DegreesOfFreedom(), 68.0) << "72 cases in 4 strata";
}

// The logit b of a proportion p has variance var(total of w (y - p)) / (N p (1 - p))^2.
TEST(ParameterCovariance, OfAnInterceptIsThatOfALogit) {
  TavoCompSettings settings = BareSettings(2);
  AddDesign(settings);
  // Two clusters with 3 of 4 and 1 of 4 responses of 1: p = 1/2, totals of y - p are 1 and -1, variance
  // (1+1)^2 = 4.
  std::vector<Case> cases;
  for (const auto& [cluster, response, count] :
       {std::tuple{1, 1, 3}, std::tuple{1, 2, 1}, std::tuple{2, 1, 1}, std::tuple{2, 2, 3}}) {
    Case c;
    c.cluster = cluster;
    c.response = response;
    cases.insert(cases.end(), static_cast<std::size_t>(count), c);
  }
  const auto run = Analyse(settings, cases);
  ASSERT_TRUE(run->IsModelBuilt());
  EXPECT_DOUBLE_EQ(run->Inference()->PECovar()->GetElem(0, 0), 4.0 / (2.0 * 2.0));
}

// ---- statistics of the parameters ----

TEST(ParameterStatistics, FollowFromEstimateVarianceAndDegreesOfFreedom) {
  const TavoCompSettings settings = FullSettings(2);
  const auto cases = RandomCases(2, 7);
  const auto run = Analyse(settings, cases);
  ASSERT_TRUE(run->IsModelBuilt());
  const TavoOutputStats output(*run);
  ASSERT_EQ(output.ParamStats().size(), 4u);
  const double quantile =
      2.306004135204166;  // Student's t, 0.975, 8 degrees of freedom (published tables: 2.306)
  EXPECT_NEAR(run->Inference()->TPercentile(), quantile, 1e-12);
  for (const std::size_t i : {0u, 1u, 3u}) {
    const OrvParamStats& row = output.ParamStats()[i];
    const int p = static_cast<int>(i);
    const double variance = run->Inference()->PECovar()->GetElem(p, p);
    const double se = std::sqrt(variance);
    EXPECT_EQ(row.parameterIndex, p);
    EXPECT_EQ(row.estimate, output.Estimates()[i]);
    EXPECT_DOUBLE_EQ(row.standardError, se);
    EXPECT_NEAR(row.confidenceLower, row.estimate - quantile * se, 1e-11 * (std::abs(row.estimate) + se));
    EXPECT_NEAR(row.confidenceUpper, row.estimate + quantile * se, 1e-11 * (std::abs(row.estimate) + se));
    EXPECT_DOUBLE_EQ(row.t, row.estimate / se);
    EXPECT_EQ(row.df, 8.0);
    EXPECT_GT(row.significance, 0.0);
    EXPECT_LT(row.significance, 1.0);
    EXPECT_DOUBLE_EQ(row.designEffect, variance / run->Inference()->PECovarSRS()->GetElem(p, p));
    EXPECT_FALSE(row.negativeVariance);
  }
}

// With 1 degree of freedom Student's t is Cauchy's distribution: p = 1 - 2/pi atan|t|.
TEST(ParameterStatistics, WithOneDegreeOfFreedomHaveTheSignificanceOfCauchysDistribution) {
  TavoCompSettings settings = FullSettings(2);
  settings.SetDegreesOfFreedom(1.0);
  const auto cases = RandomCases(2, 7);
  const auto run = Analyse(settings, cases);
  ASSERT_TRUE(run->IsModelBuilt());
  const TavoOutputStats output(*run);
  for (const std::size_t i : {0u, 1u, 3u}) {
    const OrvParamStats& row = output.ParamStats()[i];
    EXPECT_NEAR(row.significance, 1.0 - 2.0 / std::acos(-1.0) * std::atan(std::abs(row.t)), 1e-13);
  }
}

TEST(ParameterStatistics, OfARedundantParameterAreMissingAndItsEstimateIsZero) {
  const TavoCompSettings settings = FullSettings(2);
  const auto cases = RandomCases(2, 7);
  const auto run = Analyse(settings, cases);
  ASSERT_TRUE(run->IsModelBuilt());
  const TavoOutputStats output(*run);
  const OrvParamStats& row = output.ParamStats()[2];
  EXPECT_TRUE(row.redundant);
  EXPECT_EQ(row.estimate, 0.0);
  for (const double value : {row.standardError, row.confidenceLower, row.confidenceUpper, row.t, row.df,
                             row.significance, row.designEffect}) {
    EXPECT_TRUE(IsMissing(value));
  }
  EXPECT_EQ(output.RedundancyBits(), (std::vector<bool>{false, false, true, false}));
}

TEST(ParameterStatistics, DegreesOfFreedomOfTheSettingsWinOverUnitsMinusStrata) {
  TavoCompSettings settings = FullSettings(2);
  settings.SetDegreesOfFreedom(3.5);
  const auto cases = RandomCases(2, 7);
  const auto run = Analyse(settings, cases);
  ASSERT_TRUE(run->IsModelBuilt());
  EXPECT_EQ(run->Inference()->DegreesOfFreedom(), 3.5);
  EXPECT_EQ(TavoOutputStats(*run).DegreesOfFreedom(), 3.5);
  EXPECT_EQ(TavoOutputStats(*run).ParamStats()[0].df, 3.5);
}

TEST(ParameterStatistics, DegreesOfFreedomOfZeroOrBelowKeepUnitsMinusStrata) {
  const auto cases = RandomCases(2, 7);
  for (const double df : {0.0, -1.0, -7.0}) {
    TavoCompSettings settings = FullSettings(2);
    settings.SetDegreesOfFreedom(df);
    const auto run = Analyse(settings, cases);
    ASSERT_TRUE(run->IsModelBuilt());
    EXPECT_EQ(run->Inference()->DegreesOfFreedom(), 8.0);
    EXPECT_EQ(TavoOutputStats(*run).DegreesOfFreedom(), 8.0);
  }
}

TEST(ParameterStatistics, WithoutDegreesOfFreedomHaveNoPercentileAndNoSignificance) {
  const TavoCompSettings settings = FullSettings(2);
  auto cases = RandomCases(2, 7);
  for (Case& c : cases)
    c.cluster = 1;  // one unit in each stratum: no spread to see
  const auto run = Analyse(settings, cases);
  ASSERT_TRUE(run->IsModelBuilt());
  EXPECT_EQ(run->Inference()->DegreesOfFreedom(), 0.0);
  EXPECT_TRUE(IsMissing(run->Inference()->TPercentile()));
  const TavoOutputStats output(*run);
  const OrvParamStats& row = output.ParamStats()[0];
  EXPECT_EQ(row.df, 0.0);
  for (const double value : {row.confidenceLower, row.confidenceUpper, row.t, row.significance}) {
    EXPECT_TRUE(IsMissing(value));
  }
}

TEST(ParameterStatistics, WithAllVariancesZeroComeWithAWarningAndWithoutSignificance) {
  const TavoCompSettings settings = FullSettings(2);
  auto cases = RandomCases(2, 7);
  for (Case& c : cases)
    c.cluster = 1;
  const auto run = Analyse(settings, cases);
  ASSERT_TRUE(run->IsModelBuilt());
  const auto& warnings = run->StatusList();
  EXPECT_EQ(
      std::count(warnings.begin(), warnings.end(), tavo::OrvStatus::Warning(tavo::StatusCode::kVarianceZero)),
      1);
  const TavoOutputStats output(*run);
  for (const OrvParamStats& row : output.ParamStats())
    EXPECT_TRUE(IsMissing(row.significance));
  EXPECT_EQ(output.ParamStats()[0].standardError, 0.0);
}

TEST(ParameterStatistics, OfASimpleRandomSampleWithEveryUnitInItHaveDesignEffectsOfOne) {
  TavoCompSettings settings = BareSettings(2);
  settings.SetStageEstimator(tavo::StageEstimator::kEqualWor, 1);
  settings.SetDesignConstant(0.2, InclProbType::kInclProbValue, 1);
  AddPredictors(settings);
  const auto cases = RandomCases(2, 7);
  const auto run = Analyse(settings, cases);
  ASSERT_TRUE(run->IsModelBuilt());
  ASSERT_NE(run->Inference()->PECovarSRS(), nullptr);
  EXPECT_EQ(run->Inference()->PECovarSRS()->AsVectorConst(), run->Inference()->PECovar()->AsVectorConst());
  const TavoOutputStats output(*run);
  for (const std::size_t i : {0u, 1u, 3u}) {
    EXPECT_EQ(output.ParamStats()[i].designEffect, 1.0);
    EXPECT_EQ(output.ParamStats()[i].SquareRootDesignEffect(), 1.0);
  }
}

TEST(ParameterStatistics, WithoutTheSRSCovarianceHaveNoDesignEffect) {
  TavoCompSettings settings = FullSettings(2);
  settings.SetNeedSRS(false);
  const auto cases = RandomCases(2, 7);
  const auto run = Analyse(settings, cases);
  ASSERT_TRUE(run->IsModelBuilt());
  EXPECT_EQ(run->Inference()->PECovarSRS(), nullptr);
  const TavoOutputStats output(*run);
  EXPECT_TRUE(IsMissing(output.ParamStats()[0].designEffect));
  EXPECT_GT(output.ParamStats()[0].standardError, 0.0);
}

}  // namespace
}  // namespace inference_test
