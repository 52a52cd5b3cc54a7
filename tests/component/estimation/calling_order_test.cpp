// A call out of order is a programmer's error: it ends a program that was built with assertions.
#ifndef NDEBUG

#include <gtest/gtest.h>

#include "fit_bench.h"

namespace {

using namespace tavo;
using tavo_test::FitBench;

class CallingOrderDeathTest : public testing::Test {
 protected:
  CallingOrderDeathTest() : fBench(2, {3}, 1) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    tavo_test::AddBinaryReference(fBench);
  }
  void Build() {
    ASSERT_TRUE(fBench.Fit());
    std::vector<double> sums(5);
    for (const auto& record : fBench.records)
      fBench.model->AddCaseScores(sums, fBench.DataRow(record).data());
    ASSERT_FALSE(fBench.model->ScaleSRSCovariance().IsError());
  }
  FitBench fBench;
};

TEST_F(CallingOrderDeathTest, RowsComeAfterTheParametersAndBeforeTheRedundancies) {
  fBench.SetUp();
  const std::vector<double> row = fBench.PatternRow(fBench.records[0]);
  EXPECT_DEATH(fBench.model->AddPatternToXPrimeX(row.data(), {0, 1, 4}), "fStage");
  EXPECT_DEATH(fBench.model->AddBlockToXPrimeX(TavoRowBlock()), "fStage");
  EXPECT_DEATH(fBench.model->FindRedundancies(), "fStage");
  fBench.BuildParameters();
  EXPECT_DEATH(fBench.model->AddPatternToXPrimeX(nullptr, {0, 1, 4}), "patternRow");
  EXPECT_DEATH(fBench.model->AddPatternToXPrimeX(row.data(), {0, 1}), "EffectCount");
  EXPECT_DEATH(fBench.model->GetInitialEstimates(fBench.estimates), "fStage");
  fBench.AddAllRecords();
  ASSERT_FALSE(fBench.model->FindRedundancies().IsError());
  EXPECT_DEATH(fBench.AddAllRecords(), "fStage");
}

TEST_F(CallingOrderDeathTest, CasesAreScoredFromTheEstimatesOn) {
  ASSERT_TRUE(fBench.PrepareModel());
  const std::vector<double> row = fBench.DataRow(fBench.records[0]);
  std::vector<double> values(5);
  int category = 0;
  EXPECT_DEATH(fBench.model->PredictCategory(row.data(), values, category), "fpScorer");
  EXPECT_DEATH(fBench.model->AddCaseScores(values, row.data()), "fpScorer");
  EXPECT_DEATH(fBench.model->ScaleSRSCovariance(), "fStage");
}

TEST_F(CallingOrderDeathTest, EstimatesAndInverseFitTheNonRedundantParameters) {
  ASSERT_TRUE(fBench.PrepareModel());
  EXPECT_DEATH(fBench.model->SetEstimates({1, 2, 3}, MCSymMatrix(4)), "AllNonRedundantCount");
  EXPECT_DEATH(fBench.model->SetEstimates({1, 2, 3, 4}, MCSymMatrix(0)), "AllNonRedundantCount");
}

TEST_F(CallingOrderDeathTest, AModelIsBuiltOnce) {
  Build();
  EXPECT_DEATH(fBench.model->SetupDependent(), "fStage");
  EXPECT_DEATH(fBench.BuildParameters(), "fStage");
  EXPECT_DEATH(fBench.AddAllRecords(), "fStage");
  EXPECT_DEATH(fBench.model->FindRedundancies(), "fStage");
  EXPECT_DEATH(fBench.model->GetInitialEstimates(fBench.estimates), "fStage");
  EXPECT_DEATH(fBench.model->ScaleSRSCovariance(), "fStage");
}

}  // namespace

#endif
