// The stages of a model up to taking the estimates; what its parts do is tested with them.
#include <gtest/gtest.h>

#include <cmath>

#include "fit_bench.h"

namespace {

using namespace tavo;
using tavo_test::FitBench;
namespace Code = tavo::StatusCode;

void ExpectError(const OrvStatus& status, std::uint32_t code) {
  EXPECT_TRUE(status.IsError());
  EXPECT_EQ(status.Code(), code);
}

// Categories 1, 3 and 4 of 5 occur.
FitBench& WithThreeOfFive(FitBench& bench) {
  bench.Case(3, {}, {1}, 2).Case(1, {}, {2}, 1).Case(4, {}, {4}, 5).Case(3, {}, {3}, 1.5);
  return bench;
}

TEST(SetupDependent, APositiveReferenceWithoutCasesFallsBackOnTheLastWithAWarning) {
  FitBench bench(5, {}, 1, 5);
  const OrvStatus status = WithThreeOfFive(bench).SetUp();
  EXPECT_TRUE(status.IsWarning());
  EXPECT_EQ(status.Code(), Code::kReferenceNotInUse);
  EXPECT_EQ(bench.model->Categories().back(), 4);
}

TEST(SetupDependent, AResponseWithOneObservedCategoryIsRefusedAndBuildsNoParameters) {
  FitBench bench(3, {}, 1);
  bench.Effect({}, {0}).Case(2, {}, {1}).Case(2, {}, {3});
  ExpectError(bench.SetUp(), Code::kOneDependentValue);
  ExpectError(bench.BuildParameters(), Code::kOneDependentValue);
  EXPECT_EQ(bench.model->ParameterCount(), 0);
  EXPECT_EQ(bench.model->XPrimeX(), nullptr);
}

TEST(BuildParameters, TooManyParametersStopTheRunBeforeAnyMatrixExists) {
  FitBench bench(3, {}, 1);
  bench.Effect({}, {0}).Case(1, {}, {1}).Case(2, {}, {2}).Case(3, {}, {3});
  bench.SetUp();
  const OrvStatus status = bench.model->BuildParameters(23171);  // 2 * 23171 = 46342
  ExpectError(status, Code::kTooManyParameters);
  EXPECT_EQ(status.Integer(0), 46342);
  EXPECT_EQ(status.Integer(1), 46340);
  EXPECT_EQ(bench.model->XPrimeX(), nullptr);
  EXPECT_EQ(bench.model->SRSCentre(), nullptr);
}

TEST(BuildParameters, TheLimitItselfPasses) {
  FitBench bench(3, {}, 1);
  bench.Effect({}, {0}).Case(1, {}, {1}).Case(2, {}, {2}).Case(3, {}, {3});
  bench.SetUp();
  bench.tables->AssignParameters();
  EXPECT_FALSE(bench.model->BuildParameters(23170).IsError());
}

TEST(BuildParameters, AHugeCountIsRefusedWithoutOverflow) {
  FitBench bench(3, {}, 1);
  bench.Effect({}, {0}).Case(1, {}, {1}).Case(2, {}, {2}).Case(3, {}, {3});
  bench.SetUp();
  const OrvStatus status = bench.model->BuildParameters(2000000000);
  ExpectError(status, Code::kTooManyParameters);
  EXPECT_EQ(status.Integer(0), 2147483647);
}

TEST(BuildParameters, TheSRSCentreExistsOnlyWhenAskedFor) {
  for (const bool asked : {true, false}) {
    FitBench bench(2, {3}, 1);
    tavo_test::AddBinaryReference(bench);
    bench.settings.SetNeedSRS(asked);
    bench.SetUp();
    bench.BuildParameters();
    EXPECT_EQ(bench.model->SRSCentre() != nullptr, asked);
  }
}

TEST(BuildParameters, ACancelEndsItWithStatusOne) {
  FitBench bench(2, {3}, 1);
  tavo_test::AddBinaryReference(bench);
  bench.SetUp();
  bench.cancel.Cancel();
  ExpectError(bench.BuildParameters(), Code::kCancelled);
  EXPECT_FALSE(bench.AddAllRecords());
}

TEST(XPrimeX, HoldsTheWeightedCrossProductsOfTheStandardisedColumns) {
  FitBench bench(2, {3}, 1);
  tavo_test::AddBinaryReference(bench);
  bench.SetUp();
  bench.BuildParameters();
  ASSERT_TRUE(bench.AddAllRecords());
  const MCSymMatrix& x = *bench.model->XPrimeX();
  // Weights: 18 in all, 5.25 on level 1; x centred and scaled to unit variance.
  EXPECT_DOUBLE_EQ(x.GetElem(0, 0), 18);
  EXPECT_DOUBLE_EQ(x.GetElem(1, 0), 5.25);
  EXPECT_DOUBLE_EQ(x.GetElem(1, 1), 5.25);
  EXPECT_DOUBLE_EQ(x.GetElem(2, 1), 0);
  EXPECT_NEAR(x.GetElem(4, 0), 0, 1e-13);
  EXPECT_NEAR(x.GetElem(4, 4), 18, 1e-12);
}

TEST(XPrimeX, RefusesARowWithAnUnknownCombination) {
  FitBench bench(2, {3}, 1);
  tavo_test::AddBinaryReference(bench);
  bench.SetUp();
  bench.BuildParameters();
  const std::vector<double> row = bench.PatternRow(bench.records[0]);
  EXPECT_FALSE(bench.model->AddPatternToXPrimeX(row.data(), {0, -1, 4}));
  EXPECT_TRUE(bench.model->AddPatternToXPrimeX(row.data(), {0, 1, 4}));
}

TEST(FindRedundancies, NeedsRecords) {
  FitBench bench(2, {3}, 1);
  tavo_test::AddBinaryReference(bench);
  bench.SetUp();
  bench.BuildParameters();
  ExpectError(bench.model->FindRedundancies(), Code::kDataNotProcessed);
}

TEST(FindRedundancies, EarlierColumnsWinAndAllLogitsShareTheBits) {
  FitBench bench(3, {3}, 1);
  bench.Effect({0}, {}).Effect({}, {0});
  for (const auto& c : tavo_test::kReferenceCases)
    bench.Case(c.responseOfThree, {c.level}, {c.x}, c.weight);
  ASSERT_TRUE(bench.PrepareModel());
  const TavoModel& model = *bench.model;
  EXPECT_EQ(model.BasicNonRedundantCount(), 4);
  EXPECT_EQ(model.AllNonRedundantCount(), 8);
  for (int k = 0; k < 10; ++k)
    EXPECT_EQ(model.AllBits().IsIn(k), k % 5 != 3) << k;
  ASSERT_EQ(model.NonRedundantScales().size(), 4u);
  EXPECT_EQ(model.NonRedundantScales()[3], model.Scales()[4]);
  EXPECT_EQ(model.NonRedundantCentres()[3], model.Centres()[4]);
}

TEST(FindRedundancies, AnEffectWithAllLevelsAliasedIsSkippedBySparseRows) {
  FitBench bench(2, {2}, 1);
  bench.Effect({0}, {}).Effect({}, {0}).Effect({0}, {});  // the factor twice
  bench.Case(1, {1}, {1}).Case(2, {2}, {4}).Case(1, {2}, {2}).Case(2, {1}, {3});
  ASSERT_TRUE(bench.PrepareModel());
  EXPECT_EQ(bench.model->BasicNonRedundantCount(), 3);
  std::vector<int> indices;
  std::vector<double> values;
  bench.model->BuildSparseRow(bench.PatternRow(bench.records[0]).data(), bench.ParametersOf(bench.records[0]),
                              indices, values);
  EXPECT_EQ(indices, (std::vector<int>{0, 1, 2}));
  bench.model->BuildSparseRow(bench.PatternRow(bench.records[1]).data(), bench.ParametersOf(bench.records[1]),
                              indices, values);
  EXPECT_EQ(indices, (std::vector<int>{0, 2})) << "level 2 is aliased in both effects";
}

TEST(FindRedundancies, AConstantCovariateIsRedundantWhateverItsRounding) {
  for (const double constant : {0.0, 3.7, 0.1, 1e-9, 123456.789}) {
    FitBench bench(2, {}, 2);
    bench.Effect({}, {0}).Effect({}, {1});
    for (const auto& c : tavo_test::kReferenceCases)
      bench.Case(c.response, {}, {constant, c.x}, c.weight / 3);
    ASSERT_TRUE(bench.PrepareModel());
    EXPECT_EQ(bench.model->BasicNonRedundantCount(), 2) << constant;
    EXPECT_FALSE(bench.model->BasicBits().IsIn(1));
    EXPECT_EQ(bench.model->Scales()[1], 0);
    std::vector<double> row;
    ASSERT_TRUE(bench.model->FillDesignRow(row, bench.DataRow(bench.records[0]).data(), true));
    EXPECT_EQ(row[1], 0) << "0, not the 0/0 of the standardisation";
  }
}

TEST(GetInitialEstimates, AreTheLogRatiosOfTheCountsAndZeroSlopes) {
  FitBench bench(3, {}, 1, 1);
  tavo_test::AddThreeReference(bench);
  ASSERT_TRUE(bench.PrepareModel());
  const auto& w = bench.model->WeightedCounts();
  ASSERT_EQ(bench.estimates.size(), 4u);
  EXPECT_DOUBLE_EQ(bench.estimates[0], std::log(w[0] / w[2]));
  EXPECT_EQ(bench.estimates[1], 0);
  EXPECT_DOUBLE_EQ(bench.estimates[2], std::log(w[1] / w[2]));
  EXPECT_EQ(bench.estimates[3], 0);
}

TEST(GetInitialEstimates, AnInterceptOnlyModelHasOneParameterAndItsStartAlreadyFits) {
  FitBench bench(2, {}, 1);
  for (const auto& c : tavo_test::kReferenceCases)
    bench.Case(c.response, {}, {c.x}, c.weight);
  ASSERT_TRUE(bench.PrepareModel());
  EXPECT_EQ(bench.model->BasicParameterCount(), 1);
  TavoAccumStats stats(bench.settings, 1, 2, bench.estimates);
  for (const auto& c : tavo_test::kReferenceCases)
    stats.UpdateForRow({0}, {1.0}, c.response - 1, c.weight, false);
  EXPECT_NEAR(stats.Scores()[0], 0, 1e-14);
  EXPECT_NEAR(stats.LogLikelihood(), tavo_test::kBinaryInitialLogLikelihood, 1e-13);
}

TEST(GetInitialEstimates, WithoutInterceptTheStartIsZeroAndCentresAreNotSubtracted) {
  FitBench bench(2, {3}, 1, 1, false);
  tavo_test::AddBinaryReference(bench);
  ASSERT_TRUE(bench.PrepareModel());
  EXPECT_EQ(bench.estimates, std::vector<double>(4, 0.0));
  std::vector<double> row;
  ASSERT_TRUE(bench.model->FillDesignRow(row, bench.DataRow(bench.records[0]).data(), true));
  // Factor columns are 1 over a scale of 1 over the root of the total weight.
  EXPECT_NEAR(row[0], std::sqrt(18.0), 1e-14);
  EXPECT_EQ(row[1], 0);
  double squares = 0;
  for (const auto& c : tavo_test::kReferenceCases)
    squares += c.weight * c.x * c.x;
  EXPECT_NEAR(row[3], 2.5 / std::sqrt(squares / 18), 1e-14);
}

// A model with one aliased column of four, estimates given by hand.
class TakenEstimates : public testing::Test {
 protected:
  TakenEstimates() : fBench(2, {3}, 1) {
    tavo_test::AddBinaryReference(fBench);
    EXPECT_TRUE(fBench.PrepareModel());
    fInverse = MCSymMatrix(4);
    for (int i = 0; i < 4; ++i)
      fInverse.SetElem(i, i, i + 1.0);
    fInverse.SetElem(3, 0, 0.5);
  }
  FitBench fBench;
  MCSymMatrix fInverse;
  const std::vector<double> fNonRedundant{1, 2, 3, 4};
};

TEST_F(TakenEstimates, AreExpandedAroundAliasedColumnsAndBroughtToTheScaleOfTheData) {
  ASSERT_FALSE(fBench.model->SetEstimates(fNonRedundant, fInverse).IsError());
  const TavoModel& model = *fBench.model;
  EXPECT_EQ(model.TransformedEstimates(), (std::vector<double>{1, 2, 3, 0, 4}));
  const double slope = 4 / model.Scales()[4];
  EXPECT_DOUBLE_EQ(model.Estimates()[4], slope);
  EXPECT_DOUBLE_EQ(model.Estimates()[0], 1 - model.Centres()[4] * slope);
  EXPECT_EQ(model.Estimates()[1], 2);
  EXPECT_EQ(model.Estimates()[3], 0);
}

TEST_F(TakenEstimates, TheInverseGetsZeroRowsForAliasedColumns) {
  fBench.model->SetEstimates(fNonRedundant, fInverse);
  const MCSymMatrix& inverse = *fBench.model->HessianGI();
  ASSERT_EQ(inverse.GetNRows(), 5);
  EXPECT_EQ(inverse.GetElem(4, 4), 4);
  EXPECT_EQ(inverse.GetElem(4, 0), 0.5);
  for (int k = 0; k < 5; ++k)
    EXPECT_EQ(inverse.GetElem(3, k), 0);
  fBench.model->ReleaseHessianGI();
  EXPECT_EQ(fBench.model->HessianGI(), nullptr);
}

TEST_F(TakenEstimates, AreRefusedAfterACancel) {
  fBench.cancel.Cancel();
  ExpectError(fBench.model->SetEstimates(fNonRedundant, fInverse), Code::kCancelled);
  EXPECT_TRUE(fBench.model->TransformedEstimates().empty());
}

TEST(Model, RescalingACovariateRescalesItsEstimateAlone) {
  std::vector<double> estimates[2];
  for (const int factor : {1, 1000}) {
    FitBench bench(2, {3}, 1);
    bench.Effect({0}, {}).Effect({}, {0});
    for (const auto& c : tavo_test::kReferenceCases)
      bench.Case(c.response, {c.level}, {c.x * factor}, c.weight);
    ASSERT_TRUE(bench.Fit());
    estimates[factor == 1 ? 0 : 1] = bench.model->Estimates();
  }
  for (std::size_t k = 0; k < 4; ++k)
    EXPECT_NEAR(estimates[1][k], estimates[0][k], 1e-10);
  EXPECT_NEAR(estimates[1][4] * 1000, estimates[0][4], 1e-10);
}

TEST(Model, AConstantCovariateChangesNothingElse) {
  FitBench bench(2, {3}, 2);
  bench.Effect({}, {1}).Effect({0}, {}).Effect({}, {0});
  for (const auto& c : tavo_test::kReferenceCases)
    bench.Case(c.response, {c.level}, {c.x, 0.1}, c.weight);
  ASSERT_TRUE(bench.Fit());
  const std::vector<double>& b = bench.model->Estimates();
  const auto& expected = tavo_test::kBinaryEstimates;
  const std::vector<double> all{expected[0], 0, expected[1], expected[2], 0, expected[3]};
  for (std::size_t k = 0; k < all.size(); ++k)
    EXPECT_NEAR(b[k], all[k], 1e-9);
}

}  // namespace
