// Probabilities, predicted categories and scores of cases, at estimates given by hand.
#include "component/estimation/case_scorer.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <vector>

#include "model_parts.h"

namespace {

using MCCommonMath::MCRectMatrix;
using tavo::OrvCaseScorer;
using tavo::OrvSRSCentre;
using tavo_test::DesignBench;
using tavo_test::ModelParts;

// Three categories, the first of which is the reference; an intercept, a factor of two levels and a
// covariate.
class ScoredCases : public testing::Test {
 protected:
  ScoredCases() : fBench(3, {3}, 1, 1) {
    fBench.Effect({0}, {}).Effect({}, {0});
    fBench.Case(1, {1}, {2}, 1.5).Case(2, {2}, {-1}, 2).Case(3, {1}, {0.5}).Case(2, {1}, {4}, 0.5);
    fpParts = std::make_unique<ModelParts>(fBench);
    fpScorer = std::make_unique<OrvCaseScorer>(fpParts->response, fpParts->parameters, fpParts->columns,
                                               *fBench.tables, fEstimates);
  }
  std::vector<double> Design(const MCCommon::Record& record) const {
    const double x = (record[2] - fpParts->parameters.Centres()[3]) / fpParts->parameters.Scales()[3];
    return {1.0, record[1] == 1 ? 1.0 : 0.0, record[1] == 2 ? 1.0 : 0.0, x};
  }
  // By local index: categories 2 and 3, then the reference.
  std::vector<double> Expected(const MCCommon::Record& record) const {
    const std::vector<double> row = Design(record);
    std::vector<double> p(3, 0.0);
    for (std::size_t k = 0; k < 8; ++k)
      p[k / 4] += row[k % 4] * fEstimates[k];
    const double sum = std::exp(p[0]) + std::exp(p[1]) + 1;
    return {std::exp(p[0]) / sum, std::exp(p[1]) / sum, 1 / sum};
  }

  DesignBench fBench;
  const std::vector<double> fEstimates{0.3, -0.5, 0, 1.2, -0.2, 0.4, 0, -0.7};  // level 2 is redundant
  std::unique_ptr<ModelParts> fpParts;
  std::unique_ptr<OrvCaseScorer> fpScorer;
};

TEST_F(ScoredCases, HaveTheProbabilitiesOfTheEstimatesReferenceLast) {
  for (const MCCommon::Record& record : fBench.records) {
    const std::vector<double> expected = Expected(record);
    std::vector<double> p;
    int predicted = -1;
    ASSERT_TRUE(fpScorer->Predict(fBench.DataRow(record).data(), p, predicted));
    ASSERT_EQ(p.size(), 3u);
    for (std::size_t j = 0; j < 3; ++j)
      EXPECT_NEAR(p[j], expected[j], 1e-15);
    for (std::size_t j = 0; j < 3; ++j)
      EXPECT_LE(expected[j], expected[static_cast<std::size_t>(predicted)]);
  }
}

TEST_F(ScoredCases, ScoreResidualTimesDesignTimesWeightLogitByLogit) {
  MCRectMatrix classification;
  classification.SetNRowsCols(3, 3);
  const int local[] = {2, 0, 1, 0};
  for (std::size_t i = 0; i < 4; ++i) {
    const MCCommon::Record& record = fBench.records[i];
    const std::vector<double> p = Expected(record);
    const std::vector<double> row = Design(record);
    std::vector<double> scores(8, 0.0);
    fpScorer->AddScores(fBench.DataRow(record).data(), scores, classification, nullptr);
    for (std::size_t k = 0; k < 8; ++k) {
      const double residual = (static_cast<int>(k / 4) == local[i] ? 1 : 0) - p[k / 4];
      EXPECT_NEAR(scores[k], residual * row[k % 4] * record[3], 1e-15) << i << ' ' << k;
    }
  }
  EXPECT_EQ(fpScorer->WeightedCaseCount(), 4);
  double total = 0;
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j)
      total += classification.GetElem(i, j);
  }
  EXPECT_EQ(total, 5);
}

TEST_F(ScoredCases, GiveTheCentreTheirScoreProductsOverTheWeight) {
  MCRectMatrix classification;
  classification.SetNRowsCols(3, 3);
  OrvSRSCentre centre(8, 3);
  const std::vector<double> row = fBench.DataRow(fBench.records[1]);
  std::vector<double> scores(8, 0.0);
  fpScorer->AddScores(row.data(), scores, classification, &centre);
  for (int i = 0; i < 8; ++i) {
    for (int j = 0; j <= i; ++j) {
      EXPECT_NEAR(centre.Matrix().GetElem(i, j),
                  scores[static_cast<std::size_t>(i)] * scores[static_cast<std::size_t>(j)] / 2, 1e-15);
    }
  }
}

TEST_F(ScoredCases, OfWeightZeroCountInNothingButTheSums) {
  MCRectMatrix classification;
  classification.SetNRowsCols(3, 3);
  OrvSRSCentre centre(8, 3);
  std::vector<double> scores(8, 0.0);
  const auto weightless = DesignBench::MakeRecord(2, {1}, {1}, 0);
  fpScorer->AddScores(fBench.DataRow(weightless).data(), scores, classification, &centre);
  EXPECT_EQ(fpScorer->WeightedCaseCount(), 0);
  EXPECT_EQ(centre.Matrix().GetElem(0, 0), 0);
  EXPECT_EQ(scores, std::vector<double>(8, 0.0));
}

TEST_F(ScoredCases, WithAnUnknownLevelOrResponseAddNothing) {
  MCRectMatrix classification;
  classification.SetNRowsCols(3, 3);
  for (const auto& unknown :
       {DesignBench::MakeRecord(1, {3}, {1}, 1), DesignBench::MakeRecord(4, {1}, {1}, 1)}) {
    std::vector<double> scores(8, 0.25);
    fpScorer->AddScores(fBench.DataRow(unknown).data(), scores, classification, nullptr);
    EXPECT_EQ(scores, std::vector<double>(8, 0.25));
  }
  EXPECT_EQ(fpScorer->WeightedCaseCount(), 0);
  std::vector<double> p{7};
  int predicted = 7;
  const auto unseen = DesignBench::MakeRecord(1, {3}, {1}, 1);
  EXPECT_FALSE(fpScorer->Predict(fBench.DataRow(unseen).data(), p, predicted));
  EXPECT_EQ(p, std::vector<double>{7});
}

TEST(CaseScorer, HugePredictorsStayFinite) {
  DesignBench bench(3, {}, 0);
  bench.Case(1, {}, {}).Case(2, {}, {}).Case(3, {}, {});
  ModelParts parts(bench);
  const std::vector<double> estimates{1e4, -1e4};
  OrvCaseScorer scorer(parts.response, parts.parameters, parts.columns, *bench.tables, estimates);
  std::vector<double> p;
  int predicted = -1;
  ASSERT_TRUE(scorer.Predict(bench.DataRow(bench.records[0]).data(), p, predicted));
  EXPECT_EQ(p, (std::vector<double>{1, 0, 0}));
  EXPECT_EQ(predicted, 0);
}

TEST(CaseScorer, PredictorsWithinMachineEpsilonAreTied) {
  const double e = std::numeric_limits<double>::epsilon();
  const struct {
    std::vector<double> etas;
    int expected;
  } cases[] = {{{e / 2, -e / 2}, 2}, {{2 * e, 0}, 0}, {{1.5, 1.5 + 2 * e}, 1}, {{-2 * e, -3 * e}, 2}};
  DesignBench bench(3, {}, 0);
  bench.Case(1, {}, {}, 3).Case(2, {}, {}, 3).Case(3, {}, {}, 5);  // a tie goes to the reference
  ModelParts parts(bench);
  for (const auto& c : cases) {
    OrvCaseScorer scorer(parts.response, parts.parameters, parts.columns, *bench.tables, c.etas);
    std::vector<double> p;
    int predicted = -1;
    ASSERT_TRUE(scorer.Predict(bench.DataRow(bench.records[0]).data(), p, predicted));
    EXPECT_EQ(predicted, c.expected) << c.etas[0];
  }
}

}  // namespace
