// The twin on cases small enough to be done by hand.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "reference_contrasts.h"
#include "reference_odds_ratios.h"
#include "reference_tests.h"

namespace {

using namespace reference;
using testing::ElementsAre;

/// A survey of 2 by 2 cells: response (2 categories), factor a, counts as weights, one stage without strata
/// whose units are the cases.
Problem TwoByTwo(std::vector<double> weights) {
  Problem problem;
  problem.cases = 4;
  problem.dependent = {"y", false, {"1", "2"}, {0, 1, 0, 1}};
  problem.factors = {{"a", false, {"1", "2"}, {0, 0, 1, 1}}};
  problem.weight = {"w", std::move(weights)};
  problem.stages.resize(1);
  problem.effects = {{{0}, false, {}}};
  problem.criteria.parameterChange = 1e-12;
  return problem;
}

struct Fitted {
  explicit Fitted(const Problem& problem)
      : cases(SelectCases(problem)),
        columns(BuildColumns(problem, cases)),
        independence(FindRedundant(columns)),
        fit(FitModel(problem, cases, columns, independence)),
        estimates(Estimate(problem, cases, columns, fit)) {}
  AnalysedCases cases;
  Columns columns;
  Independence independence;
  Fit fit;
  Estimates estimates;
};

double At(const Matrix& m, std::size_t i, std::size_t j) {
  return static_cast<double>(m(i, j));
}

TEST(TwinFit, OfATwoByTwoTableIsItsLogOdds) {
  const Fitted fitted(TwoByTwo({10, 30, 24, 6}));
  ASSERT_TRUE(fitted.fit.isWellPosed);
  EXPECT_THAT(fitted.independence.isKept, ElementsAre(true, true, false));
  EXPECT_NEAR(static_cast<double>(fitted.fit.estimates[0]), std::log(24.0 / 6), 1e-15);
  EXPECT_NEAR(static_cast<double>(fitted.fit.estimates[1]), std::log(10.0 / 30) - std::log(24.0 / 6), 1e-15);
  EXPECT_EQ(fitted.fit.estimates[2], 0);
}

TEST(TwinFit, StartsWhereTheInterceptsAlonePredictBest) {
  const Fitted fitted(TwoByTwo({10, 30, 24, 6}));
  const double n = 70, first = 34, second = 36;
  const double logLikelihood = first * std::log(first / n) + second * std::log(second / n);
  EXPECT_NEAR(static_cast<double>(fitted.fit.initialLogLikelihood), logLikelihood, 1e-12);
}

TEST(TwinColumns, ListCombinationsThatOccurInTheOrderOfTheirLevels) {
  Problem problem = TwoByTwo({1, 1, 1, 1});
  problem.factors.push_back({"b", false, {"1", "2"}, {1, 0, 1, 1}});
  problem.effects = {{{1, 0}, false, {}}};  // written b*a
  const Columns columns = BuildColumns(problem, SelectCases(problem));
  std::vector<std::string> labels;
  for (const Parameter& parameter : columns.parameters)
    labels.push_back(parameter.label);
  EXPECT_THAT(labels, ElementsAre("(Intercept)", "[a=1] * [b=1]", "[a=1] * [b=2]", "[a=2] * [b=2]"));
}

TEST(TwinContrasts, OfAMainEffectAreDifferencesOfUnweightedMeans) {
  Problem problem = TwoByTwo({1, 2, 3, 4});
  problem.factors.push_back({"b", false, {"1", "2"}, {0, 1, 0, 1}});
  problem.effects = {{{0}, false, {}}, {{1}, false, {}}, {{0, 1}, false, {}}};
  const Columns columns = BuildColumns(problem, SelectCases(problem));
  const Contrasts contrasts = EffectContrasts(columns, 1);  // of a
  EXPECT_THAT(contrasts.numbers, ElementsAre(2));
  // (Intercept), a=1, a=2, b=1, b=2, then the cells
  const std::vector<double> expected = {0, 1, -1, 0, 0, 0.5, 0.5, -0.5, -0.5};
  for (std::size_t k = 0; k < expected.size(); ++k)
    EXPECT_NEAR(At(contrasts.l, 0, k), expected[k], 1e-15) << k;
}

/// Values of one variable in the cases.
Matrix OneVariable(const Vector& values) {
  Matrix matrix;
  for (const Real value : values)
    matrix.Append({value});
  return matrix;
}

TEST(TwinVariance, OfTwoUnitsIsTheirSquaredDifference) {
  Problem problem = TwoByTwo({1, 1, 1, 1});
  problem.stages[0].clusters = {{"u", false, {"1", "2"}, {0, 0, 1, 1}}};
  const DesignVariance variance = EstimateVariance(problem, SelectCases(problem), OneVariable({1, 2, 5, 7}));
  EXPECT_NEAR(At(variance.covariance, 0, 0), (12.0 - 3.0) * (12.0 - 3.0), 1e-15);
  EXPECT_EQ(variance.strata, 1);
  EXPECT_EQ(variance.units, 2);
}

TEST(TwinVariance, AddsLowerStagesTimesTheFractionOfTheUpperOne) {
  Problem problem = TwoByTwo({1, 1, 1, 1});
  problem.stages.resize(2);
  problem.stages[0].clusters = {{"u", false, {"1", "2"}, {0, 0, 1, 1}}};
  problem.stages[0].estimator = Estimator::kEqualWithoutReplacement;
  problem.stages[0].sizeKind = SizeKind::kCountValue;
  problem.stages[0].sizeValue = 8;  // 2 of 8 units
  problem.stages[1].estimator = Estimator::kEqualWithoutReplacement;
  problem.stages[1].sizeKind = SizeKind::kRateValue;
  problem.stages[1].sizeValue = 0.5;
  const DesignVariance variance = EstimateVariance(problem, SelectCases(problem), OneVariable({1, 2, 5, 7}));
  const double between = (1 - 0.25) * (12.0 - 3.0) * (12.0 - 3.0);
  const double within = 0.5 * (1 + 4);  // (1 - f) (difference)^2 in each unit
  EXPECT_NEAR(At(variance.covariance, 0, 0), between + 0.25 * within, 1e-15);
}

TEST(TwinVariance, OfOneUnitOrOfAWholePopulationIsNothing) {
  Problem problem = TwoByTwo({1, 1, 1, 1});
  problem.stages[0].clusters = {{"u", false, {"1"}, {0, 0, 0, 0}}};
  const Matrix values = OneVariable({1, 2, 5, 7});
  EXPECT_EQ(At(EstimateVariance(problem, SelectCases(problem), values).covariance, 0, 0), 0);
  problem.stages[0].clusters.clear();
  problem.stages[0].estimator = Estimator::kEqualWithoutReplacement;
  problem.stages[0].sizeKind = SizeKind::kCountValue;
  problem.stages[0].sizeValue = 4;
  EXPECT_EQ(At(EstimateVariance(problem, SelectCases(problem), values).covariance, 0, 0), 0);
}

TEST(TwinVariance, OfUnequalProbabilitiesIsThatOfYatesAndGrundy) {
  Problem problem = TwoByTwo({1, 1, 1, 1});
  problem.stages[0].clusters = {{"u", false, {"1", "2"}, {0, 0, 1, 1}}};
  problem.stages[0].estimator = Estimator::kUnequalWithoutReplacement;
  problem.joint = {{{}, {{0}, {1}}, {{0.5, 0.2}, {0.2, 0.6}}}};
  const Matrix values = OneVariable({1, 2, 5, 7});
  const DesignVariance variance = EstimateVariance(problem, SelectCases(problem), values);
  EXPECT_NEAR(At(variance.covariance, 0, 0), (0.5 * 0.6 / 0.2 - 1) * 81, 1e-14);
}

TEST(TwinVariance, OfADomainCountsUnitsOutsideItAsZero) {
  Problem problem = TwoByTwo({1, 1, 1, 1});
  problem.domain = {{"d", false, {"1", "2"}, {0, 1, 1, 1}}};
  const DesignVariance variance = EstimateVariance(problem, SelectCases(problem), OneVariable({3}));
  // totals 3, 0, 0, 0: n / (n - 1) times the squares about 3/4
  EXPECT_NEAR(At(variance.covariance, 0, 0), 4.0 / 3 * (9 - 4 * 9.0 / 16), 1e-15);
}

TEST(TwinVariance, OfASimpleRandomSampleHasItsFiniteCorrection) {
  Problem problem = TwoByTwo({2, 2, 2, 2});
  const AnalysedCases cases = SelectCases(problem);
  const Vector weights(4, 2.0L);
  const Matrix values = OneVariable({2, -2, 4, -4});
  const double squares = (4 + 4 + 16 + 16) / 2.0;
  EXPECT_NEAR(At(SimpleRandomVariance(problem, cases, weights, values), 0, 0),
              squares * 8 / 3 * (1 - 4.0 / 8), 1e-14);
  problem.isSrsWithReplacement = true;
  EXPECT_NEAR(At(SimpleRandomVariance(problem, cases, weights, values), 0, 0), squares * 8 / 3, 1e-14);
}

/// Three independent estimates with standard error 1.
Estimates ThreeEstimates(const Vector& b, Real degreesOfFreedom) {
  Estimates estimates;
  estimates.parameters = 3;
  estimates.isKept.assign(3, true);
  estimates.b = b;
  estimates.covariance = estimates.srsCovariance = estimates.modelCovariance = Matrix(3, 3);
  for (std::size_t i = 0; i < 3; ++i)
    estimates.covariance(i, i) = estimates.srsCovariance(i, i) = estimates.modelCovariance(i, i) = 1;
  estimates.influences = Matrix(0, 3);
  estimates.degreesOfFreedom = degreesOfFreedom;
  return estimates;
}

Matrix Identity() {
  Matrix l(3, 3);
  for (std::size_t i = 0; i < 3; ++i)
    l(i, i) = 1;
  return l;
}

TEST(TwinTests, WaldIsTheSumOfSquaresOfIndependentEstimates) {
  const Estimates estimates = ThreeEstimates({1, 2, 3}, 10);
  const auto test = [&](TestType type) {
    return TestLinearHypothesis(estimates, Identity(), {0, 0, 1}, type, Adjustment::kNone).overall;
  };
  EXPECT_NEAR(static_cast<double>(test(TestType::kChiSquare).wald.number), 1 + 4 + 4, 1e-14);
  EXPECT_NEAR(static_cast<double>(test(TestType::kF).wald.number), (10.0 - 3 + 1) / (3 * 10) * 9, 1e-14);
  // Without a design effect the corrections change nothing but the degrees of freedom of F.
  EXPECT_NEAR(static_cast<double>(test(TestType::kAdjustedChiSquare).wald.number), 9, 1e-14);
  EXPECT_NEAR(static_cast<double>(test(TestType::kAdjustedF).df2.number), 30, 1e-13);
}

TEST(TwinTests, ADependentRowIsLeftOut) {
  Matrix l = Identity();
  l(2, 0) = l(2, 1) = 1;
  l(2, 2) = 0;
  const auto result = TestLinearHypothesis(ThreeEstimates({1, 2, 3}, 10), l, {0, 0, 0}, TestType::kChiSquare,
                                           Adjustment::kNone);
  EXPECT_EQ(result.overall.df1.number, 2);
  EXPECT_NEAR(static_cast<double>(result.overall.wald.number), 1 + 4, 1e-14);
}

TEST(TwinTests, SequentialBonferroniStepsDownAndNeverFalls) {
  const auto result = TestLinearHypothesis(ThreeEstimates({2, 3, 2.1L}, 10), Identity(), {0, 0, 0},
                                           TestType::kChiSquare, Adjustment::kSequentialBonferroni);
  const auto p = [](double z) { return std::erfc(z / std::sqrt(2.0)); };
  EXPECT_NEAR(static_cast<double>(result.rows[1].adjusted.number), 3 * p(3), 1e-14);
  EXPECT_NEAR(static_cast<double>(result.rows[2].adjusted.number), 2 * p(2.1), 1e-14);
  EXPECT_NEAR(static_cast<double>(result.rows[0].adjusted.number), 2 * p(2.1), 1e-14);  // p(2) is below it
  EXPECT_NEAR(static_cast<double>(result.overall.adjusted.number), 3 * p(3), 1e-14);
}

TEST(TwinTests, AMultipleOfARowHasItsAdjustedSignificanceAndDoesNotCount) {
  Matrix l = Identity();
  l(2, 2) = 0;
  l(2, 0) = -2;
  const auto result = TestLinearHypothesis(ThreeEstimates({2, 3, 1}, 10), l, {0, 0, 0}, TestType::kF,
                                           Adjustment::kSequentialSidak);
  EXPECT_EQ(result.rows[2].adjusted.number, result.rows[0].adjusted.number);
  const double p = static_cast<double>(result.rows[1].significance.number);
  EXPECT_NEAR(static_cast<double>(result.rows[1].adjusted.number), 1 - (1 - p) * (1 - p), 1e-15);
}

TEST(TwinOddsRatios, OfATwoByTwoTableIsItsCrossProduct) {
  const Problem problem = TwoByTwo({10, 30, 24, 6});
  const Fitted fitted(problem);
  OddsRatioRequest request;
  request.factors = {{0, {}}};
  const auto ratios =
      EstimateOddsRatios(problem, fitted.cases, fitted.columns, fitted.fit, fitted.estimates, request);
  ASSERT_EQ(ratios.size(), 1U);
  EXPECT_EQ(ratios[0].comparison, "1 vs. 2");
  EXPECT_NEAR(static_cast<double>(ratios[0].ratio.number), 10.0 * 6 / (30 * 24), 1e-15);
}

TEST(TwinPercentile, OfStudentsTIsInTheTables) {
  EXPECT_NEAR(static_cast<double>(TPercentile(0.95L, 10).number), 2.228138852, 1e-9);
  EXPECT_TRUE(TPercentile(0.95L, 0).isMissing);
}

}  // namespace
