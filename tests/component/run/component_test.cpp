// Results of whole runs against values worked out by hand.
#include "component/run/component.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>

#include "component_run.h"

namespace tavo {
namespace {

using namespace tavo_test;

double Log(double x) {
  return std::log(x);
}

TEST(TavoComponent, AnInterceptOnlyModelEstimatesTheWeightedLogOdds) {
  SurveySettings settings(3);
  settings.Stage({kStratum}, {kCluster});
  const ComponentRun run(settings,
                         {Case{.cluster = 1, .weight = 2, .y = 1}, Case{.cluster = 2, .weight = 3, .y = 2},
                          Case{.cluster = 3, .weight = 5, .y = 3}, Case{.cluster = 4, .weight = 1, .y = 1}});
  ASSERT_TRUE(run.status.IsOK());
  ASSERT_EQ(run.statistics->ParamStats().size(), 2u);
  EXPECT_DOUBLE_EQ(run.Estimate(0), Log(3.0 / 5));
  EXPECT_DOUBLE_EQ(run.Estimate(1), Log(3.0 / 5));
  EXPECT_EQ(run.statistics->TerminationCode(), TerminationState::kNoIterations);
  EXPECT_EQ(run.statistics->DependentCategories(), (std::vector<int>{1, 2, 3}));
  EXPECT_EQ(run.statistics->ReferenceCategory(), 3);
}

// With clusters of one case each, one stratum and equal weights, the linearised variance of log(p/(1-p)) is
// n/(n-1) * sum (y_i - p)^2 / (n p (1-p))^2 = 1 / ((n-1) p (1-p)). Here n = 8, p = 1/4.
TEST(TavoComponent, AnInterceptHasTheLinearisedVarianceOfALogOdds) {
  SurveySettings settings;
  settings.Stage({}, {kCluster});
  std::vector<Case> cases;
  for (int i = 0; i < 8; ++i)
    cases.push_back(Case{.cluster = 1.0 + i, .weight = 10, .y = i < 2 ? 1.0 : 2.0});
  const ComponentRun run(settings, cases);
  ASSERT_TRUE(run.status.IsOK());
  EXPECT_DOUBLE_EQ(run.Estimate(0), Log(1.0 / 3));
  EXPECT_NEAR(run.StandardError(0), std::sqrt(1 / (7 * 0.25 * 0.75)), 1e-12);
  EXPECT_EQ(run.statistics->DegreesOfFreedom(), 7);
  EXPECT_EQ(run.statistics->StrataCount(), 1);
  EXPECT_EQ(run.statistics->UnitCount(), 8);
  EXPECT_EQ(run.statistics->PopulationSize(), 80);
}

/// What a two by two table says without any model: the log odds ratio of response 1 between the two levels,
/// and its variance with clusters in strata, each cluster's total of the linearised variable being a unit
/// (Binder 1983).
struct TwoByTwo {
  explicit TwoByTwo(const std::vector<Case>& cases) {
    double weight[2] = {0, 0};
    double success[2] = {0, 0};
    for (const Case& each : cases) {
      const int group = static_cast<int>(each.a) - 1;
      weight[group] += each.weight;
      if (each.y == 1) success[group] += each.weight;
    }
    const double p[2] = {success[0] / weight[0], success[1] / weight[1]};
    logOddsRatio = Log(p[0] / (1 - p[0])) - Log(p[1] / (1 - p[1]));
    logOddsOfLast = Log(p[1] / (1 - p[1]));
    std::map<double, std::map<double, double>> totals;
    for (const Case& each : cases) {
      const int group = static_cast<int>(each.a) - 1;
      const double residual = (each.y == 1 ? 1.0 : 0.0) - p[group];
      const double term = each.weight * residual / (weight[group] * p[group] * (1 - p[group]));
      totals[each.stratum][each.cluster] += group == 0 ? term : -term;
    }
    for (const auto& [stratum, clusters] : totals) {
      const double n = static_cast<double>(clusters.size());
      double sum = 0;
      for (const auto& [cluster, total] : clusters)
        sum += total;
      for (const auto& [cluster, total] : clusters)
        variance += n / (n - 1) * (total - sum / n) * (total - sum / n);
    }
  }
  double logOddsRatio = 0;
  double logOddsOfLast = 0;
  double variance = 0;
};

TEST(TavoComponent, ATwoByTwoTableEstimatesTheLogOddsRatioAndItsDesignVariance) {
  std::vector<Case> cases = SampleSurvey(200);
  for (Case& each : cases)
    each.a = each.b;
  SurveySettings settings;
  settings.Stage({kStratum}, {kCluster}).Factor(kA, 2).Effect({kA});
  settings.Get().SetParamCriterion(1e-12);
  const ComponentRun run(settings, cases);
  ASSERT_TRUE(run.status.IsOK());
  const TwoByTwo table(cases);
  EXPECT_NEAR(run.Estimate(0), table.logOddsOfLast, 1e-10);
  EXPECT_NEAR(run.Estimate(1), table.logOddsRatio, 1e-10);
  EXPECT_TRUE(run.Parameter(2).redundant);
  EXPECT_NEAR(run.StandardError(1), std::sqrt(table.variance), 1e-10);
  EXPECT_EQ(run.statistics->StrataCount(), 4);
  EXPECT_EQ(run.statistics->UnitCount(), 20);
}

TEST(TavoComponent, SelectionWithoutReplacementShrinksTheVarianceByTheFractionNotTaken) {
  const std::vector<Case> cases = SampleSurvey(200);
  SurveySettings with = FullModel();
  const ComponentRun withReplacement(with, cases);
  SurveySettings without = FullModel();
  without.Get().SetStageEstimator(StageEstimator::kEqualWor, 1);
  without.Get().SetDesignConstant(0.36, InclProbType::kInclProbValue, 1);
  const ComponentRun withoutReplacement(without, cases);
  ASSERT_NE(withoutReplacement.statistics, nullptr);
  for (const std::size_t i : {0u, 1u, 2u, 4u, 6u}) {
    EXPECT_NEAR(withoutReplacement.StandardError(i), 0.8 * withReplacement.StandardError(i), 1e-10);
  }
}

TEST(TavoComponent, AnElementSampleIsItsOwnSimpleRandomSample) {
  SurveySettings settings;
  settings.Stage({}, {}, StageEstimator::kEqualWor);
  settings.Get().SetDesignConstant(0.5, InclProbType::kInclProbValue, 1);
  settings.Factor(kB, 2).Effect({kB});
  std::vector<Case> cases = SampleSurvey(60);
  for (Case& each : cases)
    each.weight = 2;
  const ComponentRun run(settings, cases);
  ASSERT_TRUE(run.status.IsOK());
  EXPECT_EQ(run.statistics->UnitCount(), 60);
  EXPECT_NEAR(run.Parameter(1).designEffect, 1, 1e-9);
}

TEST(TavoComponent, ASubpopulationGivesTheEstimatesOfItsCasesAlone) {
  std::vector<Case> cases = SampleSurvey(300);
  SurveySettings domain = FullModel();
  domain.Get().SetSubpop(kDomain, 2);
  const ComponentRun inDomain(domain, cases);
  std::erase_if(cases, [](const Case& each) { return each.domain != 2; });
  const ComponentRun alone(FullModel(), cases);
  ExpectSameResults(inDomain, alone, 1e-9, false);
  EXPECT_NEAR(inDomain.statistics->SubpopulationSize(), alone.statistics->PopulationSize(), 1e-9);
  EXPECT_GT(inDomain.statistics->PopulationSize(), inDomain.statistics->SubpopulationSize());
}

TEST(TavoComponent, PredictedProbabilitiesFollowTheEstimates) {
  std::vector<Case> cases = SampleSurvey(200);
  for (Case& each : cases)
    each.a = each.b;
  SurveySettings settings;
  settings.Stage({kStratum}, {kCluster}).Factor(kA, 2).Effect({kA});
  ComponentRun run(settings, cases);
  std::vector<int> categories;
  std::vector<double> probabilities;
  int category = -1;
  const auto predict = [&](const Case& each) {
    MCCommon::Record record(12);
    const std::vector<double> row = each.Row();
    for (int i = 0; i < 12; ++i)
      record[i] = row[static_cast<std::size_t>(i)];
    return run.component.Predict(record, categories, probabilities, category);
  };
  ASSERT_TRUE(predict(Case{.y = kMissing, .a = 1}).IsOK());
  EXPECT_EQ(categories, (std::vector<int>{1, 2}));
  EXPECT_NEAR(Log(probabilities[0] / probabilities[1]), run.Estimate(0) + run.Estimate(1), 1e-12);
  EXPECT_EQ(category, probabilities[0] > probabilities[1] ? 1 : 2);
  ASSERT_TRUE(predict(Case{.a = 3}).IsOK());
  EXPECT_EQ(category, 0);
  EXPECT_EQ(probabilities, (std::vector<double>{kMissing, kMissing}));
}

TEST(TavoComponent, ACaseOutsideTheSubpopulationOrWithoutACovariateHasNoPrediction) {
  SurveySettings settings = FullModel();
  settings.Get().SetSubpop(kDomain, 2);
  ComponentRun run(settings, SampleSurvey(300));
  std::vector<int> categories;
  std::vector<double> probabilities;
  int category = -1;
  const auto predict = [&](std::vector<double> row) {
    MCCommon::Record record(static_cast<int>(row.size()));
    for (std::size_t i = 0; i < row.size(); ++i)
      record[static_cast<int>(i)] = row[i];
    category = -1;
    return run.component.Predict(record, categories, probabilities, category);
  };
  const std::vector<double> none = {kMissing, kMissing};
  EXPECT_EQ(predict(Case{.domain = 1}.Row()).Code(), StatusCode::kOutsideSubpopulation);
  EXPECT_EQ(probabilities, none);
  EXPECT_EQ(category, 0);
  EXPECT_EQ(predict(Case{.domain = kMissing}.Row()).Code(), StatusCode::kOutsideSubpopulation);
  EXPECT_TRUE(predict(Case{.x = kMissing, .domain = 2}.Row()).IsOK());
  EXPECT_EQ(probabilities, none);
  EXPECT_EQ(category, 0);
  EXPECT_EQ(predict({1, 2, 3}).Code(), StatusCode::kShortRecord);
  EXPECT_TRUE(predict(Case{.domain = 2}.Row()).IsOK());
  EXPECT_NEAR(probabilities[0] + probabilities[1], 1, 1e-12);
}

TEST(TavoComponent, ARowOfZerosCountsInAModelWithoutIntercept) {
  // One covariate that is 0 or 1: the zeros say nothing about the slope, which is the log odds of the ones, 3
  // to 1.
  SurveySettings settings;
  settings.Stage({}, {kCluster}).Covariate(kX).Effect({}, {kX});
  settings.Get().SetIntercept(false);
  std::vector<Case> cases;
  for (int i = 0; i < 8; ++i) {
    cases.push_back(
        Case{.cluster = 1.0 + i, .weight = 2, .y = i % 4 == 0 ? 2.0 : 1.0, .x = i < 4 ? 1.0 : 0.0});
  }
  const ComponentRun run(settings, cases);
  ASSERT_TRUE(run.status.IsOK());
  EXPECT_NEAR(run.Estimate(0), Log(3.0), 1e-8);
}

}  // namespace
}  // namespace tavo
