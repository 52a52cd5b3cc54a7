// Probabilities, predicted categories, scores of cases, and the covariance under simple random sampling.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "component/numerics/missing_value.h"
#include "fit_bench.h"

namespace {

using namespace tavo;
using MCCommonMath::MCMV;
using tavo_test::FitBench;
namespace Code = tavo::StatusCode;

// Sets estimates on the internal scale, with an inverse that isn't looked at.
void GiveEstimates(FitBench& bench, const std::vector<double>& estimates) {
  ASSERT_FALSE(
      bench.model->SetEstimates(estimates, MCSymMatrix(static_cast<int>(estimates.size()))).IsError());
}

// Intercepts only, K categories with the given weights and numbers of cases.
void AddInterceptsOnly(FitBench& bench, const std::vector<std::pair<double, int>>& weightAndCases) {
  for (std::size_t c = 0; c < weightAndCases.size(); ++c) {
    const auto& [weight, cases] = weightAndCases[c];
    for (int i = 0; i < cases; ++i)
      bench.Case(static_cast<int>(c) + 1, {}, {}, weight / cases);
  }
  ASSERT_TRUE(bench.PrepareModel());
}

int Predicted(FitBench& bench) {
  std::vector<double> probabilities;
  int category = -1;
  EXPECT_TRUE(
      bench.model->PredictCategory(bench.DataRow(bench.records[0]).data(), probabilities, category).IsOK());
  return category;
}

TEST(PredictCategory, GivesTheProbabilitiesOfTheEstimatesReferenceLast) {
  FitBench bench(3, {}, 1, 1);
  tavo_test::AddThreeReference(bench);
  ASSERT_TRUE(bench.Fit());
  const auto& b = tavo_test::kThreeEstimates;
  for (const MCCommon::Record& record : bench.records) {
    const double x = record[1];
    const double e2 = std::exp(b[0] + b[1] * x), e3 = std::exp(b[2] + b[3] * x);
    const double expected[] = {e2 / (1 + e2 + e3), e3 / (1 + e2 + e3), 1 / (1 + e2 + e3)};
    std::vector<double> p;
    int category = 0;
    ASSERT_TRUE(bench.model->PredictCategory(bench.DataRow(record).data(), p, category).IsOK());
    ASSERT_EQ(p.size(), 3u);
    for (std::size_t j = 0; j < 3; ++j)
      EXPECT_NEAR(p[j], expected[j], 1e-10);
    const std::size_t best = static_cast<std::size_t>(std::max_element(expected, expected + 3) - expected);
    EXPECT_EQ(category, bench.model->Categories()[best]);
  }
}

TEST(PredictCategory, AgreesWithTheProbabilitiesOfTheFitToRounding) {
  FitBench bench(3, {3}, 1);
  bench.Effect({0}, {}).Effect({}, {0});
  for (const auto& c : tavo_test::kReferenceCases)
    bench.Case(c.responseOfThree, {c.level}, {c.x}, c.weight);
  bench.settings.SetMaxIterations(3);
  ASSERT_TRUE(bench.Fit());
  TavoAccumStats stats(bench.settings, bench.model->BasicNonRedundantCount(), 3, bench.estimates);
  for (const MCCommon::Record& record : bench.records) {
    std::vector<int> indices;
    std::vector<double> values, fitted, scored;
    bench.model->BuildSparseRow(bench.PatternRow(record).data(), bench.ParametersOf(record), indices, values);
    double logReference = 0;
    ASSERT_TRUE(stats.ComputeProbabilities(OrvSparseVector(indices, values), bench.estimates, 3,
                                           bench.model->BasicNonRedundantCount(), fitted, logReference));
    int category = 0;
    bench.model->PredictCategory(bench.DataRow(record).data(), scored, category);
    for (std::size_t j = 0; j < 3; ++j)
      EXPECT_NEAR(fitted[j], scored[j], 4e-16);
  }
}

TEST(PredictCategory, ARecordWithAnUnseenLevelCombinationHasCategoryZeroAndMissingProbabilities) {
  FitBench bench(2, {3}, 1);
  bench.Effect({0}, {}).Effect({}, {0});
  bench.Case(1, {1}, {1}).Case(2, {2}, {2}).Case(2, {1}, {3}).Case(1, {2}, {5});
  ASSERT_TRUE(bench.Fit());
  std::vector<double> p;
  int category = 7;
  const auto unseen = FitBench::MakeRecord(1, {3}, {1}, 1);
  EXPECT_FALSE(bench.model->PredictCategory(bench.DataRow(unseen).data(), p, category).IsError());
  EXPECT_EQ(category, 0);
  EXPECT_EQ(p, std::vector<double>(2, MCMV::gMissingValue));
  std::vector<double> row;
  EXPECT_FALSE(bench.model->FillDesignRow(row, bench.DataRow(unseen).data(), true));
}

TEST(PredictCategory, ACancelledPredictionIsMissingAndNoError) {
  FitBench bench(2, {3}, 1);
  tavo_test::AddBinaryReference(bench);
  ASSERT_TRUE(bench.Fit());
  bench.cancel.Cancel();
  std::vector<double> p;
  int category = 7;
  EXPECT_FALSE(bench.model->PredictCategory(bench.DataRow(bench.records[0]).data(), p, category).IsError());
  EXPECT_EQ(category, 0);
  EXPECT_EQ(p, std::vector<double>(2, MCMV::gMissingValue));
}

// Predictors of logits 1 and 2 of three categories; the reference has 0.
TEST(PredictCategory, LogitsTiedWithinMachineEpsilonGoToTheTieBreaks) {
  const double e = std::numeric_limits<double>::epsilon();
  const struct {
    std::vector<std::pair<double, int>> counts;  // weighted, cases
    std::vector<double> etas;
    int expected;
    const char* why;
  } cases[] = {{{{5, 2}, {3, 9}, {3, 9}}, {0, 0}, 1, "the largest weighted count"},
               {{{3, 9}, {3, 9}, {5, 2}}, {e / 2, -e / 2}, 3, "within epsilon of the reference"},
               {{{4, 2}, {4, 3}, {4, 1}}, {0, 0}, 2, "weighted counts tie: the largest unweighted count"},
               {{{4, 2}, {4, 2}, {4, 2}}, {0, 0}, 1, "both counts tie: the smallest category"},
               {{{4, 1}, {4, 2}, {4, 2}}, {0, 0}, 2, "the smallest of those left"},
               {{{4, 2}, {9, 2}, {9, 2}}, {2 * e, 0}, 1, "more than epsilon above"},
               {{{9, 2}, {4, 2}, {9, 2}}, {1.5, 1.5 + 2 * e}, 2, "more than epsilon above another logit"},
               {{{9, 2}, {4, 2}, {9, 2}}, {-2 * e, -3 * e}, 3, "below the reference"}};
  for (const auto& c : cases) {
    FitBench bench(3, {}, 0);
    AddInterceptsOnly(bench, c.counts);
    GiveEstimates(bench, c.etas);
    EXPECT_EQ(Predicted(bench), c.expected) << c.why;
  }
}

TEST(PredictCategory, TheSmallestCategoryWinsAlsoWhenItIsTheReference) {
  FitBench bench(3, {}, 0, -1);  // the reference is category 1 and stands last
  AddInterceptsOnly(bench, {{4, 2}, {4, 2}, {4, 2}});
  GiveEstimates(bench, {0, 0});
  EXPECT_EQ(Predicted(bench), 1);
}

TEST(CaseScores, AreResidualTimesDesignTimesWeightLogitByLogit) {
  FitBench bench(3, {}, 1, 1);
  tavo_test::AddThreeReference(bench);
  ASSERT_TRUE(bench.Fit());
  for (const MCCommon::Record& record : bench.records) {
    std::vector<double> p, row, scores;
    int category = 0;
    const std::vector<double> data = bench.DataRow(record);
    bench.model->PredictCategory(data.data(), p, category);
    bench.model->FillDesignRow(row, data.data(), true);
    bench.model->ComputeCaseScores(scores, data.data());
    ASSERT_EQ(scores.size(), 4u);
    for (std::size_t j = 0; j < 2; ++j) {
      const double residual = (record[0] == bench.model->Categories()[j] ? 1 : 0) - p[j];
      for (std::size_t k = 0; k < 2; ++k)
        EXPECT_NEAR(scores[2 * j + k], residual * row[k] * record[2], 1e-15);
    }
  }
}

TEST(CaseScores, SumToZeroAtTheEstimatesAlsoForAliasedColumns) {
  FitBench bench(2, {3}, 1);
  tavo_test::AddBinaryReference(bench);
  bench.settings.SetParamCriterion(1e-10);
  ASSERT_TRUE(bench.Fit());
  std::vector<double> sums(5, 0.0), expected(5, 0.0), scores;
  for (const MCCommon::Record& record : bench.records) {
    const std::vector<double> data = bench.DataRow(record);
    bench.model->AddCaseScores(sums, data.data());
    bench.model->ComputeCaseScores(scores, data.data());
    for (std::size_t k = 0; k < 5; ++k)
      expected[k] += scores[k];
  }
  for (std::size_t k = 0; k < 5; ++k) {
    EXPECT_NEAR(sums[k], 0, 1e-12);
    EXPECT_NEAR(sums[k], expected[k], 1e-14);
  }
}

TEST(CaseScores, ARowWithAnUnknownCombinationContributesNothing) {
  FitBench bench(2, {3}, 1);
  bench.Effect({0}, {}).Effect({}, {0});
  bench.Case(1, {1}, {1}).Case(2, {2}, {2}).Case(2, {1}, {3}).Case(1, {2}, {5});
  ASSERT_TRUE(bench.Fit());
  std::vector<double> scores{9, 9};
  bench.model->ComputeCaseScores(scores, bench.DataRow(FitBench::MakeRecord(1, {3}, {1}, 1)).data());
  EXPECT_EQ(scores, std::vector<double>(4, 0.0));
  for (int i = 0; i < 2; ++i) {
    for (int j = 0; j < 2; ++j)
      EXPECT_EQ(bench.model->ClassificationTable().GetElem(i, j), 0);
  }
}

TEST(CaseScores, FillTheClassificationTableWithWeights) {
  FitBench bench(2, {}, 1);
  bench.Effect({}, {0});
  bench.Case(1, {}, {-1}, 2).Case(1, {}, {1}, 3).Case(2, {}, {-1}, 0.5).Case(2, {}, {1}, 4);
  ASSERT_TRUE(bench.PrepareModel());
  GiveEstimates(bench, {0, -1});  // category 1 below the mean of x, category 2 above
  std::vector<double> sums(2);
  for (const auto& record : bench.records)
    bench.model->AddCaseScores(sums, bench.DataRow(record).data());
  const MCRectMatrix& table = bench.model->ClassificationTable();
  EXPECT_EQ(table.GetElem(0, 0), 2);
  EXPECT_EQ(table.GetElem(0, 1), 3);
  EXPECT_EQ(table.GetElem(1, 0), 0.5);
  EXPECT_EQ(table.GetElem(1, 1), 4);
}

// The SRS centre against sums of the scores themselves, for both ways in which the model sums it: `levels`
// decides how sparse a row is.
void ExpectCentreIsTheSumOfScoreProducts(int categories, int levels) {
  FitBench bench(categories, {levels}, 1);
  bench.Effect({0}, {}).Effect({}, {0});
  for (int i = 0; i < 61; ++i) {
    bench.Case(1 + (i * 7 + i / 5) % categories, {1 + i % levels}, {0.1 * ((i * 37) % 23)},
               1 + 0.25 * (i % 3));
  }
  bench.settings.SetSRSEstimator(SRSEstimator::kWithReplacement);
  bench.settings.SetMaxIterations(2);
  ASSERT_TRUE(bench.Fit());
  const int n = bench.model->ParameterCount();
  MCSymMatrix expected(n);
  double population = 0;
  std::vector<double> scores;
  for (const auto& record : bench.records) {
    bench.model->ComputeCaseScores(scores, bench.DataRow(record).data());
    expected.UpdateXX(scores, 1 / record[3]);
    population += record[3];
  }
  double largest = 0;
  for (const double element : expected.AsVectorConst())
    largest = std::max(largest, std::abs(element));
  const std::vector<double>& centre = bench.model->SRSCentre()->AsVectorConst();
  for (std::size_t e = 0; e < centre.size(); ++e) {
    EXPECT_NEAR(centre[e], expected.AsVectorConst()[e], 1e-13 * largest) << "flushed when read";
  }
  ASSERT_FALSE(bench.model->ScaleSRSCovariance().IsError());
  EXPECT_TRUE(bench.model->IsBuilt());
  for (std::size_t e = 0; e < centre.size(); ++e) {
    EXPECT_NEAR(centre[e], expected.AsVectorConst()[e] * population / 60, 1e-12 * largest);
  }
}

TEST(SRSCentre, IsTheSumOfScoreProductsForDenseRows) {
  ExpectCentreIsTheSumOfScoreProducts(2, 2);
}
TEST(SRSCentre, IsTheSumOfScoreProductsForSparseRows) {
  ExpectCentreIsTheSumOfScoreProducts(2, 9);
}
TEST(SRSCentre, IsTheSumOfScoreProductsForDenseRowsOfSeveralLogits) {
  ExpectCentreIsTheSumOfScoreProducts(4, 2);
}
TEST(SRSCentre, IsTheSumOfScoreProductsForSparseRowsOfSeveralLogits) {
  ExpectCentreIsTheSumOfScoreProducts(4, 9);
}

// Intercepts only, scores added once per record.
struct ScaledCentre {
  OrvStatus status;
  double element = 0;
  double unscaled = 0;
};
ScaledCentre Scale(SRSEstimator estimator, const std::vector<double>& weights, int outside,
                   double outsideWeight, bool withScores = true) {
  FitBench bench(2, {}, 0);
  int response = 1;
  for (const double weight : weights)
    bench.Case(response = 3 - response, {}, {}, weight);
  bench.settings.SetSRSEstimator(estimator);
  EXPECT_TRUE(bench.PrepareModel(outside, outsideWeight));
  GiveEstimates(bench, {0.2});
  std::vector<double> sums(1);
  for (const auto& record : bench.records) {
    if (withScores) bench.model->AddCaseScores(sums, bench.DataRow(record).data());
  }
  ScaledCentre result;
  result.unscaled = bench.model->SRSCentre()->GetElem(0, 0);
  result.status = bench.model->ScaleSRSCovariance();
  result.element = bench.model->SRSCentre()->GetElem(0, 0);
  return result;
}

TEST(SRSCentre, IsScaledByPopulationOverSampleLessOne) {
  const ScaledCentre scaled = Scale(SRSEstimator::kWithReplacement, {2, 3, 5}, 2, 1.5);
  EXPECT_TRUE(scaled.status.IsOK());
  EXPECT_GT(scaled.unscaled, 0);
  EXPECT_DOUBLE_EQ(scaled.element, scaled.unscaled * 13 / 4);
}

TEST(SRSCentre, WithoutReplacementTakesTheFinitePopulationCorrection) {
  const ScaledCentre scaled = Scale(SRSEstimator::kWithoutReplacement, {2, 3, 5}, 2, 1.5);
  EXPECT_DOUBLE_EQ(scaled.element, scaled.unscaled * 13 / 4 * (1 - 5.0 / 13));
}

TEST(SRSCentre, ASampleAboveThePopulationGivesAZeroMatrixWithoutReplacement) {
  EXPECT_EQ(Scale(SRSEstimator::kWithoutReplacement, {0.5, 0.5, 0.5}, 0, 0).element, 0);
  EXPECT_GT(Scale(SRSEstimator::kWithReplacement, {0.5, 0.5, 0.5}, 0, 0).element, 0);
}

TEST(SRSCentre, NoScoredCaseIsAnEmptySubpopulation) {
  const ScaledCentre scaled = Scale(SRSEstimator::kWithReplacement, {2, 3}, 0, 0, false);
  EXPECT_TRUE(scaled.status.IsError());
  EXPECT_EQ(scaled.status.Code(), Code::kEmptySubpopulation);
}

// Tables in which a second category has weight beside the only record.
class TablesOfOneRecord : public OrvFactorTables {
 public:
  using OrvFactorTables::OrvFactorTables;
  void GiveWeightTo(std::size_t category) { fDependentCounts[category].first += 1; }
};

TEST(SRSCentre, ASampleOfOneZeroesIt) {
  FitBench bench(2, {}, 0);
  bench.Case(1, {}, {}, 2);
  auto tables = std::make_unique<TablesOfOneRecord>(std::vector<int>{}, std::vector<int>{}, 1, 0, 2);
  TablesOfOneRecord& one = *tables;
  bench.SetUpTables(std::move(tables));
  one.Update(bench.records[0].GetAll());
  one.GiveWeightTo(1);
  ASSERT_FALSE(bench.SetUpModel().IsError());
  bench.BuildParameters();
  bench.AddAllRecords();
  bench.model->FindRedundancies();
  bench.model->GetInitialEstimates(bench.estimates);
  GiveEstimates(bench, {0.2});
  std::vector<double> sums(1);
  bench.model->AddCaseScores(sums, bench.DataRow(bench.records[0]).data());
  EXPECT_GT(bench.model->SRSCentre()->GetElem(0, 0), 0);
  EXPECT_TRUE(bench.model->ScaleSRSCovariance().IsOK());
  EXPECT_EQ(bench.model->SRSCentre()->GetElem(0, 0), 0);
  EXPECT_TRUE(bench.model->IsBuilt());
}

TEST(Model, ReleasedMatricesAreGone) {
  FitBench bench(2, {3}, 1);
  tavo_test::AddBinaryReference(bench);
  ASSERT_TRUE(bench.Fit());
  bench.model->ReleaseXPrimeX();
  bench.model->ReleaseSRSCentre();
  EXPECT_EQ(bench.model->XPrimeX(), nullptr);
  EXPECT_EQ(bench.model->SRSCentre(), nullptr);
  std::vector<double> sums(5);
  bench.model->AddCaseScores(sums, bench.DataRow(bench.records[0]).data());
  EXPECT_EQ(bench.model->SRSCentre(), nullptr);
}

}  // namespace
