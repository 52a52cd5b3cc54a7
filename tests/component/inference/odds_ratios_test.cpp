// Odds ratios of whole runs of the component against cell counts and the parameters that make them up.
#include "component/inference/odds_ratios.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "component/numerics/missing_value.h"
#include "effect_bench.h"

namespace tavo {
namespace {

using effect_bench::Case;
using effect_bench::Effect;
using effect_bench::FittedModel;
using effect_bench::Options;
using effect_bench::Survey;
using MCCommonMath::IsMissing;
using MCCommonMath::MCMV;
using FixedPair = TavoOddsRatioEstimator::FixedPair;

constexpr int kFirstFactor = 4;  // record column of the bench

struct Answer {
  OrvStatus status;
  std::vector<TavoOddsRatioStats> ratios;
  std::vector<FixedPair> held;
  std::vector<OrvStatus> warnings;
};

Answer Ask(const FittedModel& run, const OrvOddsRatioSpec& request) {
  Answer answer;
  answer.status = run.Output().OddsRatios(request, answer.ratios, answer.held, answer.warnings);
  return answer;
}

OrvOddsRatioSpec OfFactor(int column, int reference = OrvOddsRatioSpec::kHighest) {
  OrvOddsRatioSpec request;
  request.AddFactor(column, reference);
  return request;
}

OrvOddsRatioSpec OfCovariate(int column, const std::vector<double>& changes) {
  OrvOddsRatioSpec request;
  request.AddCovariate(column, changes);
  return request;
}

// `counts[level][response]` cases of one factor, spread over two clusters in each of two strata.
std::vector<Case> TableOf(const std::vector<std::vector<int>>& counts) {
  std::vector<Case> cases;
  for (std::size_t level = 0; level < counts.size(); ++level) {
    for (std::size_t response = 0; response < counts[level].size(); ++response) {
      for (int i = 0; i < counts[level][response]; ++i) {
        Case c;
        c.response = static_cast<int>(response) + 1;
        c.factors = {static_cast<int>(level) + 1};
        c.stratum = 1 + static_cast<int>(cases.size() / 2 % 2);
        c.cluster = 1 + static_cast<int>(cases.size() % 2);
        cases.push_back(c);
      }
    }
  }
  return cases;
}

double Estimate(const FittedModel& run, std::size_t parameter) {
  return run.Model().Estimates()[parameter];
}

double Covariance(const FittedModel& run, int i, int j) {
  return run.Inference().PECovar()->GetElem(i, j);
}

// The cross ratio of a 2 x 2 table is the odds ratio of the saturated model: 10/20 against 15/5.
TEST(OddsRatios, AFactorWithTwoCategoriesGivesOneRatioTheCrossRatioOfTheTable) {
  const FittedModel run(TableOf({{10, 20}, {15, 5}}), {{{0}, {}}});
  const Answer answer = Ask(run, OfFactor(kFirstFactor));
  ASSERT_TRUE(answer.status.IsOK());
  EXPECT_TRUE(answer.warnings.empty());
  ASSERT_EQ(answer.ratios.size(), 1U);
  const TavoOddsRatioStats& ratio = answer.ratios.front();
  EXPECT_NEAR(ratio.oddsRatio, (10.0 / 20) / (15.0 / 5), 1e-9);
  EXPECT_EQ(ratio.variable, kFirstFactor);
  EXPECT_EQ(ratio.category, 1);
  EXPECT_EQ(ratio.reference, 2);
  EXPECT_TRUE(IsMissing(ratio.change));
  EXPECT_EQ(ratio.dependentCategory, 1);
  // The logits differ by the one parameter of level 1, so its interval is the ratio's.
  const double margin = run.Inference().TPercentile() * std::sqrt(Covariance(run, 1, 1));
  EXPECT_NEAR(std::log(ratio.confidenceLower), std::log(ratio.oddsRatio) - margin, 1e-12);
  EXPECT_NEAR(std::log(ratio.confidenceUpper), std::log(ratio.oddsRatio) + margin, 1e-12);
}

TEST(OddsRatios, ThreeCategoriesGiveTwoRatiosInEachLogitAgainstTheReference) {
  const std::vector<std::vector<int>> counts = {{4, 8, 6}, {9, 5, 7}, {6, 6, 11}};
  Options options;
  options.categories = 3;
  const FittedModel run(TableOf(counts), {{{0}, {}}}, options);
  const Answer answer = Ask(run, OfFactor(kFirstFactor, 2));
  ASSERT_EQ(answer.ratios.size(), 4U);
  std::size_t next = 0;
  for (std::size_t logit = 0; logit < 2; ++logit) {
    for (const std::size_t level : {0U, 2U}) {
      const TavoOddsRatioStats& ratio = answer.ratios[next++];
      EXPECT_EQ(ratio.dependentCategory, static_cast<int>(logit) + 1);
      EXPECT_EQ(ratio.category, static_cast<int>(level) + 1);
      EXPECT_EQ(ratio.reference, 2);
      const double odds = static_cast<double>(counts[level][logit]) / counts[level][2];
      const double referenceOdds = static_cast<double>(counts[1][logit]) / counts[1][2];
      EXPECT_NEAR(ratio.oddsRatio, odds / referenceOdds, 1e-9);
      EXPECT_LT(ratio.confidenceLower, ratio.oddsRatio);
      EXPECT_GT(ratio.confidenceUpper, ratio.oddsRatio);
    }
  }
}

TEST(OddsRatios, AFactorWithOneCategoryInUseIsAnErrorWhenThereIsNoOther) {
  const FittedModel run(TableOf({{10, 20}}), {{{0}, {}}});
  const Answer answer = Ask(run, OfFactor(kFirstFactor));
  EXPECT_TRUE(answer.status.IsError());
  EXPECT_EQ(answer.status.Code(), StatusCode::kOddsFactorOneLevel);
  EXPECT_TRUE(answer.ratios.empty());
  ASSERT_EQ(answer.warnings.size(), 1U);
  EXPECT_EQ(answer.warnings.front().Code(), StatusCode::kOddsFactorOneLevel);
  EXPECT_TRUE(answer.warnings.front().IsWarning());
  EXPECT_EQ(answer.warnings.front().Integer(0), kFirstFactor);
}

TEST(OddsRatios, AFactorWithOneCategoryInUseLeavesTheOtherFactorsTheirRatios) {
  std::vector<Case> cases = TableOf({{10, 20}, {15, 5}});
  for (Case& c : cases)
    c.factors.insert(c.factors.begin(), 1);
  const FittedModel run(cases, {{{0}, {}}, {{1}, {}}});
  OrvOddsRatioSpec request = OfFactor(kFirstFactor);
  request.AddFactor(kFirstFactor + 1, OrvOddsRatioSpec::kHighest);
  const Answer answer = Ask(run, request);
  EXPECT_TRUE(answer.status.IsOK());
  ASSERT_EQ(answer.ratios.size(), 1U);
  EXPECT_EQ(answer.ratios.front().variable, kFirstFactor + 1);
  EXPECT_NEAR(answer.ratios.front().oddsRatio, (10.0 / 20) / (15.0 / 5), 1e-9);
  ASSERT_EQ(answer.warnings.size(), 1U) << "once, whatever the number of logits";
  EXPECT_EQ(answer.warnings.front().Integer(0), kFirstFactor);
}

TEST(OddsRatios, ARequestedReferenceAboveAllCategoriesFallsBackOnTheHighest) {
  const FittedModel run(TableOf({{4, 8}, {9, 5}, {6, 6}}), {{{0}, {}}});
  const Answer answer = Ask(run, OfFactor(kFirstFactor, 8));
  EXPECT_TRUE(answer.status.IsOK());
  ASSERT_EQ(answer.ratios.size(), 2U);
  for (const TavoOddsRatioStats& ratio : answer.ratios)
    EXPECT_EQ(ratio.reference, 3);
  ASSERT_EQ(answer.warnings.size(), 1U);
  EXPECT_EQ(answer.warnings.front().Code(), StatusCode::kOddsReferenceNotInUse);
  EXPECT_EQ(answer.warnings.front().Integer(0), kFirstFactor);
  EXPECT_EQ(answer.warnings.front().Integer(1), 8);
}

TEST(OddsRatios, AgainstTheLowestAreTheInversesOfThoseAgainstTheHighest) {
  const FittedModel run(TableOf({{4, 8}, {9, 5}}), {{{0}, {}}});
  const TavoOddsRatioStats high = Ask(run, OfFactor(kFirstFactor)).ratios.at(0);
  const TavoOddsRatioStats low = Ask(run, OfFactor(kFirstFactor, OrvOddsRatioSpec::kLowest)).ratios.at(0);
  EXPECT_EQ(low.reference, 1);
  EXPECT_NEAR(low.oddsRatio * high.oddsRatio, 1, 1e-12);
  EXPECT_NEAR(low.confidenceLower * high.confidenceUpper, 1, 1e-12);
}

// Predictors of the model with the interaction: intercept, a=1, a=2, x, a=1*x, a=2*x. Column 5 is x.
class Interaction : public ::testing::Test {
 protected:
  FittedModel fRun{Survey(300, {2}, 1), {{{0}, {}}, {{}, {0}}, {{0}, {0}}}};
  static constexpr int kX = kFirstFactor + 1;
};

TEST_F(Interaction, OfACovariateWithAFactorIsDecidedByTheControlOfTheFactor) {
  for (const int level : {1, 2}) {
    OrvOddsRatioSpec request = OfCovariate(kX, {2});
    request.AddControl(kFirstFactor, level);
    const Answer answer = Ask(fRun, request);
    ASSERT_EQ(answer.ratios.size(), 1U);
    const bool isFirst = level == 1;
    const double slope = Estimate(fRun, 3) + (isFirst ? Estimate(fRun, 4) : 0);
    EXPECT_NEAR(std::log(answer.ratios[0].oddsRatio), 2 * slope, 1e-10);
    const double variance =
        Covariance(fRun, 3, 3) + (isFirst ? Covariance(fRun, 4, 4) + 2 * Covariance(fRun, 3, 4) : 0);
    const double margin = fRun.Inference().TPercentile() * 2 * std::sqrt(variance);
    EXPECT_NEAR(std::log(answer.ratios[0].confidenceUpper), 2 * slope + margin, 1e-9);
    EXPECT_NEAR(std::log(answer.ratios[0].confidenceLower), 2 * slope - margin, 1e-9);
  }
}

TEST_F(Interaction, OfAFactorWithACovariateIsTakenAtTheMeanOrTheControlOfTheCovariate) {
  const double mean = fRun.Output().MeanValues().at(0);
  for (const double control : {MCMV::gMissingValue, 12.5, 0.0, -3.0}) {
    OrvOddsRatioSpec request = OfFactor(kFirstFactor);
    request.AddControl(kX, control);
    const Answer answer = Ask(fRun, request);
    const double at = IsMissing(control) ? mean : control;
    ASSERT_EQ(answer.ratios.size(), 1U);
    EXPECT_NEAR(std::log(answer.ratios[0].oddsRatio), Estimate(fRun, 1) + at * Estimate(fRun, 4), 1e-9);
    ASSERT_EQ(answer.held.size(), 2U);
    EXPECT_EQ(answer.held[0].variable, kFirstFactor);
    EXPECT_EQ(answer.held[0].value, 2) << "the highest without a control";
    EXPECT_EQ(answer.held[1].variable, kX);
    EXPECT_EQ(answer.held[1].value, at);
  }
}

TEST_F(Interaction, ControlsOfAFactorAreRoundedAndNegativeOnesMeanTheLowest) {
  for (const auto& [control, level] :
       {std::pair<double, double>{0, 2}, {-1, 1}, {-7.5, 1}, {1.4, 1}, {1.6, 2}}) {
    OrvOddsRatioSpec request = OfCovariate(kX, {1});
    request.AddControl(kFirstFactor, control);
    EXPECT_EQ(Ask(fRun, request).held.at(0).value, level) << control;
  }
}

TEST_F(Interaction, AControlThatIsNoCategoryInUseWarnsAndHoldsTheHighest) {
  OrvOddsRatioSpec request = OfCovariate(kX, {1});
  request.AddControl(kFirstFactor, 5);
  const Answer answer = Ask(fRun, request);
  EXPECT_TRUE(answer.status.IsOK());
  ASSERT_EQ(answer.warnings.size(), 1U);
  EXPECT_EQ(answer.warnings[0].Code(), StatusCode::kOddsControlNotInUse);
  EXPECT_EQ(answer.warnings[0].Integer(0), kFirstFactor);
  EXPECT_EQ(answer.warnings[0].Integer(1), 5);
  EXPECT_EQ(answer.held.at(0).value, 2);
}

TEST_F(Interaction, EachChangeHasItsRatioAndThatOfMinusOneIsTheInverse) {
  const Answer answer = Ask(fRun, OfCovariate(kX, {1, -1, 0.5}));
  ASSERT_EQ(answer.ratios.size(), 3U);
  EXPECT_EQ(answer.ratios[2].change, 0.5);
  EXPECT_EQ(answer.ratios[0].category, -1);
  EXPECT_EQ(answer.ratios[0].reference, -1);
  EXPECT_NEAR(answer.ratios[0].oddsRatio * answer.ratios[1].oddsRatio, 1, 1e-10);
  EXPECT_NEAR(answer.ratios[2].oddsRatio, std::sqrt(answer.ratios[0].oddsRatio), 1e-10);
}

// A request refuses a change of 0; a change too small to move the covariate is one all the same.
TEST_F(Interaction, AChangeOf0GivesRatio1) {
  OrvOddsRatioSpec request = OfCovariate(kX, {1e-300});
  request.AddControl(kX, 4);
  const TavoOddsRatioStats ratio = Ask(fRun, request).ratios.at(0);
  EXPECT_EQ(ratio.oddsRatio, 1);
  EXPECT_EQ(ratio.confidenceLower, 1);
  EXPECT_EQ(ratio.confidenceUpper, 1);
}

TEST_F(Interaction, AMissingChangeHasARatioWithoutNumbers) {
  const Answer answer = Ask(fRun, OfCovariate(kX, {MCMV::gMissingValue, 1}));
  ASSERT_EQ(answer.ratios.size(), 2U);
  EXPECT_EQ(answer.ratios[0].dependentCategory, 1);
  EXPECT_TRUE(IsMissing(answer.ratios[0].oddsRatio));
  EXPECT_TRUE(IsMissing(answer.ratios[0].confidenceLower));
  EXPECT_TRUE(IsMissing(answer.ratios[0].confidenceUpper));
  EXPECT_FALSE(IsMissing(answer.ratios[1].oddsRatio));
}

// The change is chosen so that the ratio is exp(700); its upper limit is beyond the largest double.
TEST_F(Interaction, AnUpperLimitThatOverflowsIsMissingWhileTheRestStands) {
  const double slope = Estimate(fRun, 3);
  const TavoOddsRatioStats ratio = Ask(fRun, OfCovariate(kX, {700 / slope})).ratios.at(0);
  EXPECT_NEAR(std::log(ratio.oddsRatio), 700, 1e-6);
  EXPECT_FALSE(IsMissing(ratio.confidenceLower));
  EXPECT_TRUE(IsMissing(ratio.confidenceUpper));
  const TavoOddsRatioStats larger = Ask(fRun, OfCovariate(kX, {720 / slope})).ratios.at(0);
  EXPECT_TRUE(IsMissing(larger.oddsRatio));
  EXPECT_FALSE(IsMissing(larger.confidenceLower));
  EXPECT_TRUE(IsMissing(larger.confidenceUpper));
  const TavoOddsRatioStats smaller = Ask(fRun, OfCovariate(kX, {-720 / slope})).ratios.at(0);
  EXPECT_GE(smaller.oddsRatio, 0) << "an underflow is a number";
  EXPECT_LT(smaller.oddsRatio, 1e-300);
  EXPECT_FALSE(IsMissing(smaller.confidenceLower));
  const double margin = (700 - std::log(ratio.confidenceLower)) * 720 / 700;
  EXPECT_EQ(IsMissing(smaller.confidenceUpper), margin - 720 > std::log(std::numeric_limits<double>::max()));
}

// Two clusters in one stratum: one degree of freedom, and the 97.5 percent point of Student's t is
// tan(0.475 pi) = 12.7062.
TEST(OddsRatios, OneDegreeOfFreedomWidensTheIntervalUntilItsUpperLimitOverflows) {
  std::vector<Case> cases = TableOf({{10, 20}, {15, 5}});
  for (Case& c : cases)
    c.stratum = 1;
  for (std::size_t i = 0; i < cases.size(); ++i)
    cases[i].covariates = {static_cast<double>(i * 7 % 11)};
  const FittedModel run(cases, {{{}, {0}}});
  ASSERT_TRUE(run.IsBuilt());
  const double percentile = std::tan(0.475 * std::acos(-1.0));
  EXPECT_NEAR(run.Inference().TPercentile(), percentile, 1e-9);
  const TavoOddsRatioStats ratio = Ask(run, OfCovariate(kFirstFactor + 1, {1})).ratios.at(0);
  const double error = std::sqrt(Covariance(run, 2 - 1, 2 - 1));
  ASSERT_GT(error, 0);
  EXPECT_NEAR(std::log(ratio.confidenceUpper), Estimate(run, 1) + percentile * error, 1e-8);
  const double change = 720 / (percentile * error + std::abs(Estimate(run, 1)));
  const double sign = Estimate(run, 1) < 0 ? -1 : 1;
  const TavoOddsRatioStats wide = Ask(run, OfCovariate(kFirstFactor + 1, {sign * change})).ratios.at(0);
  EXPECT_FALSE(IsMissing(wide.oddsRatio));
  EXPECT_FALSE(IsMissing(wide.confidenceLower));
  EXPECT_TRUE(IsMissing(wide.confidenceUpper));
}

/// The same probabilities of all clusters, and of all pairs, in each stratum.
class EqualPairs final : public MCOrv::JointInclProbs {
 public:
  EqualPairs(double single, double pair) : fSingle(single), fPair(pair) {}
  bool ReadStratum(const std::vector<std::int32_t>&, Units& units, std::vector<double>& matrix) override {
    units = {{{1}, 1}, {{2}, 2}};
    matrix = {fSingle, fPair, fPair, fSingle};
    return true;
  }
  int GetError() const override { return 0; }

 private:
  double fSingle;
  double fPair;
};

// Pairs that are drawn together more often than independent draws would be make the estimated variance
// negative: (p p / p_ab - 1) (t_a - t_b)^2 below 0.
TEST(OddsRatios, WithANegativeVarianceTheIntervalCollapsesToTheRatio) {
  TavoCompSettings settings;
  settings.SetDependent(0, 2, 0);
  settings.SetWeightVar(1);
  settings.AddDesignCategorical(2, DesignVariableKind::kStrata, 1);
  settings.AddDesignCategorical(3, DesignVariableKind::kCluster, 1);
  settings.SetStageEstimator(StageEstimator::kUnequalWor, 1);
  settings.AddCovariate(4);
  const std::vector<int> predictors = {4};
  OrvModelEffect effect(0, 1, &predictors);
  effect.AddCovariate(4);
  settings.AddEffect(effect);
  tavo_test::Rows rows;
  for (int i = 0; i < 24; ++i) {
    rows.push_back({1.0 + i * 5 % 7 % 2, 1.0, 1.0 + i / 12, 1.0 + i / 6 % 2, i * 3 % 11 + i / 6 % 2 * 1.0});
  }
  for (const double pair : {0.3, 0.05}) {
    TavoAlgorithm algorithm(settings);
    tavo_test::MemoryRecordIterator iterator(rows);
    EqualPairs joint(0.4, pair);
    ASSERT_FALSE(algorithm.BuildModel(iterator, &joint).IsError());
    ASSERT_EQ(algorithm.Inference()->PECovar()->GetElem(1, 1) > 0, pair < 0.16);
    OrvOddsRatioSpec request = OfCovariate(4, {1});
    TavoOddsRatioEstimator estimator(algorithm.Model(), request, {5.0}, *algorithm.Inference());
    ASSERT_TRUE(estimator.Estimate().IsOK());
    const TavoOddsRatioStats& ratio = estimator.Results().at(0);
    EXPECT_NEAR(std::log(ratio.oddsRatio), algorithm.Model().Estimates()[1], 1e-12);
    EXPECT_EQ(ratio.confidenceLower == ratio.oddsRatio, pair > 0.16);
    EXPECT_EQ(ratio.confidenceUpper == ratio.oddsRatio, pair > 0.16);
  }
}

TEST(OddsRatios, OfNestedFactorsAreThoseOfTheHeldOuterLevel) {
  const FittedModel run(Survey(400, {2, 2}, 0), {{{0}, {}}, {{0, 1}, {}, true}});
  for (const int outer : {1, 2}) {
    OrvOddsRatioSpec request = OfFactor(kFirstFactor + 1);
    request.AddControl(kFirstFactor, outer);
    const TavoOddsRatioStats ratio = Ask(run, request).ratios.at(0);
    // parameters: intercept, a=1, a=2, then b within a; the levels in use decide which index is which
    double expected = 0;
    for (std::size_t i = 3; i < run.Model().BasicParameters().size(); ++i) {
      const std::vector<int>& levels = run.Model().BasicParameters()[i].levels;
      if (levels.at(0) == outer) expected += (levels.at(1) == 1 ? 1 : -1) * Estimate(run, i);
    }
    EXPECT_NEAR(std::log(ratio.oddsRatio), expected, 1e-10) << outer;
  }
}

TEST(OddsRatios, WithoutARunAreRefused) {
  TavoCompSettings settings;
  settings.SetDependent(0, 2, 0);
  settings.SetWeightVar(1);
  const TavoAlgorithm algorithm(settings);
  const TavoOutputStats output(algorithm);
  std::vector<TavoOddsRatioStats> ratios;
  std::vector<FixedPair> held;
  std::vector<OrvStatus> warnings;
  EXPECT_EQ(output.OddsRatios(OfFactor(2), ratios, held, warnings).Code(), StatusCode::kUserError);
  EXPECT_TRUE(ratios.empty());
}

}  // namespace
}  // namespace tavo
