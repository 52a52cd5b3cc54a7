#include "component/estimation/srs_centre.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using MCCommonMath::MCSymMatrix;
using tavo::OrvSRSCentre;
using tavo::SRSEstimator;

// Rows of 2 entries over `parameters` parameters, 11 of them, so that the last block is not full.
void AddRows(OrvSRSCentre& centre, MCSymMatrix& expected, int parameters) {
  for (int i = 0; i < 11; ++i) {
    const std::vector<int> indices = {i % (parameters - 1), parameters - 1};
    const std::vector<double> values = {0.5 * i - 2, 1.0 / (1 + i)};
    const double weight = 1 + 0.25 * (i % 3);
    centre.Add(indices, values, weight);
    expected.UpdateXXSparse(2, indices, values, weight);
  }
}

TEST(ScoreCentre, IsTheSumOfWeightedProductsForFewAndForManyEntries) {
  for (const int parameters : {3, 9}) {  // walked as a triangle, and row by row
    OrvSRSCentre centre(parameters, 2);
    ASSERT_TRUE(centre.IsValid());
    MCSymMatrix expected(parameters);
    AddRows(centre, expected, parameters);
    for (int i = 0; i < parameters; ++i) {
      for (int j = 0; j <= i; ++j)
        EXPECT_NEAR(centre.Matrix().GetElem(i, j), expected.GetElem(i, j), 1e-14) << i << ' ' << j;
    }
  }
}

TEST(ScoreCentre, GoesOnAfterItWasRead) {
  OrvSRSCentre centre(3, 2);
  centre.Add({0, 2}, {1, 2}, 3);
  EXPECT_EQ(centre.Matrix().GetElem(2, 0), 6);
  centre.Add({0, 1}, {1, 2}, 1);
  EXPECT_EQ(centre.Matrix().GetElem(0, 0), 4);
  EXPECT_EQ(centre.Matrix().GetElem(2, 0), 6);
}

double Scaled(double sample, double population, SRSEstimator estimator) {
  OrvSRSCentre centre(2, 2);
  centre.Add({0, 1}, {1, 1}, 2);
  centre.Scale(sample, population, estimator);
  return centre.Matrix().GetElem(1, 0) / 2;
}

TEST(ScoreCentre, IsScaledByPopulationOverSampleLessOne) {
  EXPECT_DOUBLE_EQ(Scaled(5, 13, SRSEstimator::kWithReplacement), 13.0 / 4);
  EXPECT_DOUBLE_EQ(Scaled(5, 13, SRSEstimator::kWithoutReplacement), 13.0 / 4 * (1 - 5.0 / 13));
}

TEST(ScoreCentre, OfASampleOfThePopulationOrMoreIsZeroWithoutReplacement) {
  EXPECT_EQ(Scaled(13, 13, SRSEstimator::kWithoutReplacement), 0);
  EXPECT_EQ(Scaled(14, 13, SRSEstimator::kWithoutReplacement), 0);
  EXPECT_GT(Scaled(14, 13, SRSEstimator::kWithReplacement), 0);
}

TEST(ScoreCentre, OfASampleOfOneIsZero) {
  EXPECT_EQ(Scaled(1, 13, SRSEstimator::kWithReplacement), 0);
}

TEST(ScoreCentre, OfWeightsInAUnitIsDividedByItsSquareAsProductsOfScoresAre) {
  OrvSRSCentre plain(1, 1);
  plain.Add({0}, {3}, 20);
  plain.Scale(5, 130, SRSEstimator::kWithoutReplacement);
  OrvSRSCentre inUnits(1, 1);
  inUnits.Add({0}, {3}, 20 / 16.0);
  inUnits.Scale(5, 130, SRSEstimator::kWithoutReplacement, 16);
  EXPECT_DOUBLE_EQ(inUnits.Matrix().GetElem(0, 0) * 16 * 16, plain.Matrix().GetElem(0, 0));
}

}  // namespace
