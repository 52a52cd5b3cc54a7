// What must hold for any data.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "component_run.h"
#include "test_threads.h"

namespace tavo {
namespace {

using namespace tavo_test;

class ComponentProperties : public ::testing::TestWithParam<int> {
 protected:
  int Categories() const { return GetParam(); }
  std::vector<Case> Cases() const { return SampleSurvey(400, Categories()); }
};

INSTANTIATE_TEST_SUITE_P(BinaryAndMultinomial, ComponentProperties, ::testing::Values(2, 4));

TEST_P(ComponentProperties, OrderOfRecordsDoesNotMatter) {
  std::vector<Case> cases = Cases();
  const ComponentRun before(FullModel(Categories()), cases);
  ASSERT_FALSE(before.status.IsError());
  std::reverse(cases.begin(), cases.end());
  ExpectSameResults(ComponentRun(FullModel(Categories()), cases), before, 1e-10);
  std::rotate(cases.begin(), cases.begin() + 137, cases.end());
  ExpectSameResults(ComponentRun(FullModel(Categories()), cases), before, 1e-10);
}

TEST_P(ComponentProperties, ConstantFactorOfWeightsDoesNotMatterWithReplacement) {
  std::vector<Case> cases = Cases();
  const ComponentRun before(FullModel(Categories()), cases);
  for (Case& each : cases)
    each.weight *= 1000;
  const ComponentRun after(FullModel(Categories()), cases);
  ExpectSameResults(after, before, 1e-9);
  EXPECT_NEAR(after.statistics->PopulationSize(), 1000 * before.statistics->PopulationSize(), 1e-6);
}

// Sums of weights may not overflow; products of them do.
TEST_P(ComponentProperties, TheUnitOfTheWeightsNeverMatters) {
  const std::vector<Case> cases = Cases();
  const ComponentRun before(FullModel(Categories()), cases);
  for (const int exponent : {-1000, -40, 40, 1000}) {
    std::vector<Case> scaled = cases;
    for (Case& each : scaled)
      each.weight = std::ldexp(each.weight, exponent);
    const ComponentRun after(FullModel(Categories()), scaled);
    ASSERT_FALSE(after.status.IsError()) << exponent;
    ExpectSameResults(after, before, 1e-12);
    EXPECT_DOUBLE_EQ(after.statistics->PopulationSize(),
                     std::ldexp(before.statistics->PopulationSize(), exponent));
    EXPECT_DOUBLE_EQ(after.statistics->ClassificationMatrix().GetElem(1, 0),
                     std::ldexp(before.statistics->ClassificationMatrix().GetElem(1, 0), exponent));
    EXPECT_NEAR(after.statistics->McFadden(), before.statistics->McFadden(), 1e-12);
  }
}

TEST_P(ComponentProperties, TheUnitOfACovariateNeverMatters) {
  const std::vector<Case> cases = Cases();
  const ComponentRun before(FullModel(Categories()), cases);
  const std::size_t slope = 6;
  for (const int exponent : {-1000, -600, 600, 1000}) {
    std::vector<Case> scaled = cases;
    for (Case& each : scaled)
      each.x = std::ldexp(each.x, exponent);
    const ComponentRun after(FullModel(Categories()), scaled);
    ASSERT_FALSE(after.status.IsError()) << exponent;
    EXPECT_NEAR(std::ldexp(after.Estimate(slope), exponent) / before.Estimate(slope), 1, 1e-12);
    EXPECT_NEAR(std::ldexp(after.StandardError(slope), exponent) / before.StandardError(slope), 1, 1e-12);
    EXPECT_NEAR(after.StandardError(0) / before.StandardError(0), 1, 1e-12);
  }
}

TEST_P(ComponentProperties, CodesOfStrataAndClustersDoNotMatter) {
  std::vector<Case> cases = Cases();
  const ComponentRun before(FullModel(Categories()), cases);
  for (Case& each : cases) {
    each.stratum = 10 - each.stratum;
    each.cluster = 1000000 + 77 * each.cluster;
  }
  ExpectSameResults(ComponentRun(FullModel(Categories()), cases), before, 1e-10);
}

TEST_P(ComponentProperties, SplittingARecordInTwoHalvesInItsClusterDoesNotMatter) {
  std::vector<Case> cases = Cases();
  const ComponentRun before(FullModel(Categories()), cases);
  for (std::size_t i = 0; i < 400; i += 7) {
    cases[i].weight /= 2;
    cases.push_back(cases[i]);
  }
  ExpectSameResults(ComponentRun(FullModel(Categories()), cases), before, 1e-10);
}

TEST_P(ComponentProperties, SeveralThreadsGiveTheResultsOfOne) {
  const ComponentRun before(FullModel(Categories()), Cases());
  for (const int threads : {2, 5}) {
    ThreadService service;
    SurveySettings settings = FullModel(Categories());
    settings.Get().SetThreads(threads, &service);
    const ComponentRun first(settings, Cases());
    EXPECT_EQ(service.PoolSize(), threads);
    ExpectSameResults(first, before, 1e-10);
    ExpectSameResults(ComponentRun(settings, Cases()), first, 0.0);  // to the last bit
  }
}

TEST_P(ComponentProperties, RescalingACovariateRescalesItsSlope) {
  std::vector<Case> cases = Cases();
  const ComponentRun before(FullModel(Categories()), cases);
  for (Case& each : cases)
    each.x *= 1e6;
  const ComponentRun after(FullModel(Categories()), cases);
  ASSERT_NE(after.statistics, nullptr);
  const std::size_t slope = 6;  // intercept, three levels of A, two of B
  for (std::size_t i = 0; i < 9; ++i) {
    const double factor = i == slope ? 1e-6 : 1.0;
    EXPECT_NEAR(after.Estimate(i), factor * before.Estimate(i), 1e-8 * factor);
    if (before.Parameter(i).redundant) continue;
    EXPECT_NEAR(after.StandardError(i), factor * before.StandardError(i), 1e-8 * factor);
  }
}

TEST_P(ComponentProperties, ShiftingACovariateMovesTheInterceptAlone) {
  std::vector<Case> cases = Cases();
  const ComponentRun before(FullModel(Categories()), cases);
  for (Case& each : cases)
    each.x += 1000;
  const ComponentRun after(FullModel(Categories()), cases);
  ASSERT_NE(after.statistics, nullptr);
  EXPECT_NEAR(after.Estimate(0), before.Estimate(0) - 1000 * before.Estimate(6), 1e-6);
  for (std::size_t i = 1; i < 9; ++i)
    EXPECT_NEAR(after.Estimate(i), before.Estimate(i), 1e-8) << i;
}

TEST_P(ComponentProperties, RelabellingAFactorExchangesItsParameters) {
  std::vector<Case> cases = Cases();
  const ComponentRun before(FullModel(Categories()), cases);
  // The last level, whose parameter is redundant, keeps its code; codes 1 and 2 change places.
  for (Case& each : cases)
    each.a = each.a == 3 ? 3 : 3 - each.a;
  const ComponentRun after(FullModel(Categories()), cases);
  ASSERT_NE(after.statistics, nullptr);
  const std::vector<std::size_t> from = {0, 2, 1, 3, 4, 5, 6, 7, 8};
  for (std::size_t i = 0; i < from.size(); ++i) {
    EXPECT_NEAR(after.Estimate(i), before.Estimate(from[i]), 1e-9);
    if (!before.Parameter(from[i]).redundant) {
      EXPECT_NEAR(after.StandardError(i), before.StandardError(from[i]), 1e-9);
    }
  }
}

TEST_P(ComponentProperties, AFactorEqualsItsDummies) {
  std::vector<Case> cases = Cases();
  SurveySettings factor(Categories());
  factor.Stage({kStratum}, {kCluster}).Factor(kA, 3).Effect({kA});
  SurveySettings dummies(Categories());
  dummies.Stage({kStratum}, {kCluster}).Covariate(kX).Covariate(kZ).Effect({}, {kX}).Effect({}, {kZ});
  for (SurveySettings* settings : {&factor, &dummies})
    settings->Get().SetParamCriterion(1e-12);
  for (Case& each : cases) {
    each.x = each.a == 1 ? 1 : 0;
    each.z = each.a == 2 ? 1 : 0;
  }
  const ComponentRun byFactor(factor, cases);
  const ComponentRun byDummies(dummies, cases);
  ASSERT_NE(byFactor.statistics, nullptr);
  ASSERT_NE(byDummies.statistics, nullptr);
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_NEAR(byFactor.Estimate(i), byDummies.Estimate(i), 1e-9);
    EXPECT_NEAR(byFactor.StandardError(i), byDummies.StandardError(i), 1e-9);
  }
}

TEST_P(ComponentProperties, TheClassificationTableHoldsAllWeight) {
  const std::vector<Case> cases = Cases();
  const ComponentRun run(FullModel(Categories()), cases);
  ASSERT_NE(run.statistics, nullptr);
  const MCCommonMath::MCRectMatrix& table = run.statistics->ClassificationMatrix();
  double weight = 0;
  double inTable = 0;
  for (const Case& each : cases)
    weight += each.weight;
  for (int i = 0; i < Categories(); ++i) {
    for (int j = 0; j < Categories(); ++j)
      inTable += table.GetElem(i, j);
  }
  EXPECT_NEAR(inTable, weight, 1e-9 * weight);
  EXPECT_NEAR(run.statistics->PopulationSize(), weight, 1e-9 * weight);
}

}  // namespace
}  // namespace tavo
