#include "component/run/output_stats.h"

#include <gtest/gtest.h>

#include "component/numerics/missing_value.h"
#include "small_survey.h"

namespace inference_test {
namespace {

using MCCommonMath::IsMissing;
using tavo::OrvParamStats;
using tavo::TavoAlgorithm;
using tavo::TavoCompSettings;
using tavo::TavoOutputStats;
using tavo::TerminationState;

TEST(OutputStats, OfARunWithoutIterationsHaveRSquaresOfZero) {
  TavoCompSettings settings = BareSettings(2);
  AddDesign(settings);
  const auto cases = RandomCases(2, 1);
  const auto run = Analyse(settings, cases);
  ASSERT_TRUE(run->IsModelBuilt());
  const TavoOutputStats output(*run);
  EXPECT_EQ(output.TerminationCode(), TerminationState::kNoIterations);
  EXPECT_EQ(output.CoxSnell(), 0.0);
  EXPECT_EQ(output.Nagelkerke(), 0.0);
  EXPECT_EQ(output.McFadden(), 0.0);
}

TEST(OutputStats, WithoutAnOptimizerHaveMissingRSquaresAndNoTermination) {
  const TavoCompSettings settings = FullSettings(2);
  const TavoAlgorithm algorithm(settings);
  const TavoOutputStats output(algorithm);
  for (const double value : {output.CoxSnell(), output.Nagelkerke(), output.McFadden()}) {
    EXPECT_TRUE(IsMissing(value));
  }
  EXPECT_EQ(output.TerminationCode(), TerminationState::kNone);
  EXPECT_EQ(output.ConvergenceValues().state, TerminationState::kNone);
  EXPECT_EQ(output.ConvergenceValues().parameterChange, 0.0);
  EXPECT_EQ(output.Covariance(), nullptr);
  EXPECT_TRUE(output.ParamStats().empty());
  EXPECT_EQ(output.ReferenceCategory(), 0);
}

TEST(OutputStats, OfAFitThatGainsNothingHaveRSquaresOfZero) {
  TavoCompSettings settings = BareSettings(2);
  AddDesign(settings);
  AddPredictors(settings);
  // Every combination of response, level and covariate once: the start values are the solution.
  std::vector<Case> cases;
  for (int i = 0; i < 16; ++i) {
    Case c;
    c.response = i % 2 + 1;
    c.factor = i / 2 % 2 + 1;
    c.x = i / 4 % 2;
    c.cluster = i + 1;
    cases.push_back(c);
  }
  const auto run = Analyse(settings, cases);
  ASSERT_TRUE(run->IsModelBuilt());
  ASSERT_GT(run->Optimizer()->GetIterationSummary().iterations, 0);
  const TavoOutputStats output(*run);
  EXPECT_NEAR(output.CoxSnell(), 0.0, 1e-14);
  EXPECT_NEAR(output.Nagelkerke(), 0.0, 1e-14);
  EXPECT_NEAR(output.McFadden(), 0.0, 1e-14);
}

TEST(OutputStats, OfARedundantParameterKeepItsEstimate) {
  const TavoCompSettings settings = FullSettings(3);
  const auto cases = RandomCases(3, 2);
  const auto run = Analyse(settings, cases);
  ASSERT_TRUE(run->IsModelBuilt());
  const TavoOutputStats output(*run);
  ASSERT_EQ(output.ParamStats().size(), 8u);
  for (const std::size_t i : {2u, 6u}) {
    EXPECT_TRUE(output.ParamStats()[i].redundant);
    EXPECT_EQ(output.ParamStats()[i].estimate, output.Estimates()[i]);
  }
}

TEST(OutputStats, WithANegativeDesignEffectHaveNoSquareRootOfIt) {
  OrvParamStats row;
  EXPECT_TRUE(IsMissing(row.SquareRootDesignEffect()));
  row.designEffect = -0.5;
  EXPECT_TRUE(IsMissing(row.SquareRootDesignEffect()));
  EXPECT_EQ(row.designEffect, -0.5);
  row.designEffect = 2.25;
  EXPECT_EQ(row.SquareRootDesignEffect(), 1.5);
}

TEST(OutputStats, StartWithMissingStatistics) {
  const OrvParamStats row;
  for (const double value : {row.estimate, row.standardError, row.confidenceLower, row.confidenceUpper, row.t,
                             row.df, row.significance, row.designEffect}) {
    EXPECT_TRUE(IsMissing(value));
  }
  EXPECT_FALSE(row.redundant);
  EXPECT_FALSE(row.negativeVariance);
}

TEST(OutputStats, HoldTheSizesOfPopulationSubpopulationAndDesign) {
  TavoCompSettings settings = FullSettings(2);
  settings.SetSubpop(kDomain, 2);
  const auto cases = RandomCases(2, 4);
  const auto run = Analyse(settings, cases);
  ASSERT_TRUE(run->IsModelBuilt());
  double population = 0;
  double subpopulation = 0;
  for (const Case& c : cases) {
    population += c.weight;
    if (c.domain == 2) subpopulation += c.weight;
  }
  const TavoOutputStats output(*run);
  EXPECT_NEAR(output.PopulationSize(), population, 1e-9);
  EXPECT_NEAR(output.SubpopulationSize(), subpopulation, 1e-9);
  EXPECT_EQ(output.StrataCount(), 4);
  EXPECT_EQ(output.UnitCount(), 12);
  EXPECT_EQ(output.DegreesOfFreedom(), 8.0);
}

TEST(OutputStats, DescribeTheResponseAndTheParameters) {
  const TavoCompSettings settings = FullSettings(3);
  const auto cases = RandomCases(3, 6);
  const auto run = Analyse(settings, cases);
  ASSERT_TRUE(run->IsModelBuilt());
  const TavoOutputStats output(*run);
  std::vector<double> counts(3, 0.0);
  double weighted = 0;
  double total = 0;
  for (const Case& c : cases) {
    counts[static_cast<std::size_t>(c.response - 1)] += c.weight;
    weighted += c.weight * c.x;
    total += c.weight;
  }
  EXPECT_EQ(output.DependentCategories(), (std::vector<int>{1, 2, 3}));
  EXPECT_EQ(output.ReferenceCategory(), 3);
  EXPECT_EQ(output.DependentWeightedCounts(), counts) << "halves: exact sums";
  EXPECT_NEAR(output.MeanValues().at(0), weighted / total, 1e-12 * weighted);
  EXPECT_EQ(output.FactorCounts().FactorCount(), 1);
  EXPECT_EQ(output.Parameters().size(), 8u);
  EXPECT_EQ(output.Covariance(), run->Inference()->PECovar());

  const auto& table = output.ClassificationMatrix();
  ASSERT_EQ(table.GetNRows(), 3);
  for (int i = 0; i < 3; ++i) {
    double row = 0;
    for (int j = 0; j < 3; ++j)
      row += table.GetElem(i, j);
    EXPECT_NEAR(row, counts[static_cast<std::size_t>(i)], 1e-9) << "observed category " << i + 1;
  }

  const std::vector<int> effects = {-1, 0, 0, 1, -1, 0, 0, 1};
  for (std::size_t i = 0; i < effects.size(); ++i)
    EXPECT_EQ(output.ParamStats()[i].effectIndex, effects[i]);
  EXPECT_EQ(output.ConvergenceValues().state, output.TerminationCode());
  EXPECT_EQ(output.ConvergenceValues().parameterChange,
            run->Optimizer()->GetIterationSummary().parameterChange);
}

}  // namespace
}  // namespace inference_test
