#include "component/estimation/accum_stats.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "component/numerics/missing_value.h"

namespace {

using MCCommonMath::MCMV;
using MCCommonMath::MCSymMatrix;
using tavo::OrvSparseVector;
using tavo::OrvSymStructure;
using tavo::TavoAccumStats;
using tavo::TavoCompSettings;

constexpr double kLargest = 1.7976931348623157e308;

struct DesignRow {
  std::vector<int> indices;
  std::vector<double> values;
  int category;
  double weight;
};

// Two columns; both, one or none of them in a row.
const std::vector<DesignRow> kRows = {{{0, 1}, {1.0, 0.5}, 0, 1.5}, {{0, 1}, {1.0, -1.2}, 1, 0.7},
                                      {{0, 1}, {1.0, 2.0}, 2, 2.0}, {{0}, {1.0}, 1, 1.0},
                                      {{1}, {-0.8}, 0, 0.4},        {{0, 1}, {1.0, 0.1}, 2, 3.0}};

class ThreeCategories : public testing::Test {
 protected:
  int AddAll(TavoAccumStats& stats, bool likelihoodOnly = false) {
    int refused = 0;
    for (const DesignRow& row : kRows) {
      refused += stats.UpdateForRow(row.indices, row.values, row.category, row.weight, likelihoodOnly);
    }
    return refused;
  }
  double LogLikelihoodAt(const std::vector<double>& b) {
    TavoAccumStats stats(fSettings, 2, 3, b);
    AddAll(stats, true);
    return stats.LogLikelihood();
  }
  std::vector<double> ScoresAt(const std::vector<double>& b) {
    TavoAccumStats stats(fSettings, 2, 3, b);
    AddAll(stats);
    return stats.Scores();
  }

  TavoCompSettings fSettings;
  std::vector<double> fB{0.3, -0.5, 0.1, 0.8};
};

std::vector<double> Probabilities(const std::vector<double>& etas, double& logReference) {
  TavoCompSettings settings;
  const std::vector<int> indices{0};
  const std::vector<double> values{1.0};
  TavoAccumStats stats(settings, 1, static_cast<int>(etas.size()) + 1, etas);
  std::vector<double> probabilities;
  EXPECT_TRUE(stats.ComputeProbabilities(OrvSparseVector(indices, values), etas,
                                         static_cast<int>(etas.size()) + 1, 1, probabilities, logReference));
  return probabilities;
}

TEST(SymStructure, MirroredBlocksAreOneObject) {
  OrvSymStructure structure(3, 2);
  ASSERT_TRUE(structure.IsValid());
  structure.Block(0, 2).SetElem(1, 0, 4.0);
  EXPECT_EQ(structure.Block(2, 0).GetElem(1, 0), 4.0);
  EXPECT_EQ(&structure.Block(1, 2), &structure.Block(2, 1));
  structure.Clear();
  EXPECT_EQ(structure.Block(2, 0).GetElem(1, 0), 0.0);
}

TEST(SymStructure, ASizeThatCannotBeIsInvalidAndEmpty) {
  const OrvSymStructure structure(2, -1);
  EXPECT_FALSE(structure.IsValid());
  EXPECT_EQ(structure.Blocks(), -1);
  EXPECT_EQ(structure.RowsPerBlock(), -1);
}

TEST(AccumStats, IsValidForFittingSizesOnly) {
  const TavoCompSettings settings;
  const std::vector<double> four(4);
  EXPECT_TRUE(TavoAccumStats(settings, 2, 3, four).IsValid());
  EXPECT_TRUE(TavoAccumStats(settings, 0, 2, four).IsValid());
  EXPECT_FALSE(TavoAccumStats(settings, 3, 3, four).IsValid());
  EXPECT_FALSE(TavoAccumStats(settings, -1, 3, four).IsValid());
  EXPECT_FALSE(TavoAccumStats(settings, 2, 1, four).IsValid());
}

TEST(Probabilities, AllEtaZeroGivesExactlyOneOverK) {
  for (const std::size_t logits : {1u, 2u, 4u, 6u}) {
    double logReference = 0;
    const double categories = static_cast<double>(logits) + 1;
    for (const double p : Probabilities(std::vector<double>(logits, 0.0), logReference))
      EXPECT_EQ(p, 1 / categories);
    EXPECT_EQ(logReference, -std::log(categories));
  }
}

TEST(Probabilities, AVeryLargeEtaGivesOneWithoutOverflowAndAFiniteLogReference) {
  for (const double eta : {800.0, 1e4, 1e300}) {
    double logReference = 0;
    const std::vector<double> p = Probabilities({eta, 1.0}, logReference);
    EXPECT_EQ(p, (std::vector<double>{1, 0, 0}));
    EXPECT_EQ(logReference, -eta);
  }
}

TEST(Probabilities, VerySmallEtasLeaveTheReferenceCertain) {
  double logReference = 1;
  EXPECT_EQ(Probabilities({-1e4, -800}, logReference), (std::vector<double>{0, 0, 1}));
  EXPECT_EQ(logReference, 0);
}

TEST(Probabilities, MixedHugeEtasKeepTheirDifferences) {
  // exp(1) / (1 + exp(1)) and its complement, in the presence of categories 1e4 and more below.
  double logReference = 0;
  const std::vector<double> p = Probabilities({10001, 10000, -1e4}, logReference);
  EXPECT_NEAR(p[0], 0.7310585786300049, 1e-15);
  EXPECT_NEAR(p[1], 0.2689414213699951, 1e-15);
  EXPECT_EQ(p[2], 0);
  EXPECT_EQ(p[3], 0);
}

TEST(Probabilities, ATinyProbabilityKeepsItsDigits) {
  // log(1 + exp(-40)) = 4.248354255291589e-18, exp(-40) / (1 + exp(-40)) the same to this many digits
  // (mpmath).
  double logReference = 0;
  const std::vector<double> p = Probabilities({-40}, logReference);
  EXPECT_NEAR(logReference / -4.248354255291589e-18, 1, 1e-14);
  EXPECT_NEAR(p[0] / 4.248354255291589e-18, 1, 1e-14);
}

TEST(Probabilities, ANaNPredictorLeavesTheOthersUsable) {
  double logReference = 0;
  const std::vector<double> p =
      Probabilities({std::numeric_limits<double>::quiet_NaN(), std::log(3.0)}, logReference);
  EXPECT_EQ(p[0], 0);
  EXPECT_NEAR(p[1], 0.75, 1e-15);
  EXPECT_NEAR(p[2], 0.25, 1e-15);
}

TEST(Probabilities, SumToOneAndAreConsistentWithTheLogReference) {
  for (const double scale : {1e-8, 0.3, 5.0, 100.0, 700.0}) {
    double logReference = 0;
    const std::vector<double> p = Probabilities({0.7 * scale, -1.3 * scale, scale}, logReference);
    EXPECT_NEAR(p[0] + p[1] + p[2] + p[3], 1, 1e-14);
    EXPECT_NEAR(p[3], std::exp(logReference), 1e-13 * p[3]);
    EXPECT_NEAR(p[2], std::exp(logReference + scale), 1e-12);
  }
}

TEST_F(ThreeCategories, UnusableArgumentsGiveNoProbabilities) {
  TavoAccumStats stats(fSettings, 2, 3, fB);
  const std::vector<int> indices{0, 2};
  const std::vector<double> values{1, 1};
  const OrvSparseVector row(indices, values);
  std::vector<double> p;
  double logReference = 0;
  EXPECT_FALSE(stats.ComputeProbabilities(row, fB, 0, 3, p, logReference));
  EXPECT_FALSE(stats.ComputeProbabilities(row, fB, 2, 0, p, logReference));
  EXPECT_FALSE(stats.ComputeProbabilities(row, fB, 3, 3, p, logReference))
      << "4 parameters are fewer than 2 * 3";
  EXPECT_FALSE(stats.ComputeProbabilities(row, fB, 2, 2, p, logReference)) << "index 2 is outside 2 columns";
  EXPECT_TRUE(stats.ComputeProbabilities(row, fB, 2, 3, p, logReference));
  EXPECT_TRUE(stats.ComputeProbabilities(row, fB, 1, 3, p, logReference));
  EXPECT_EQ(p, std::vector<double>{1.0});
  EXPECT_EQ(logReference, 0);
}

TEST_F(ThreeCategories, WeightZeroOrNegativeIsRefused) {
  TavoAccumStats stats(fSettings, 2, 3, fB);
  for (const double weight : {0.0, -1.0, std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_EQ(stats.UpdateForRow({0}, {1.0}, 0, weight, false), -1);
  }
  EXPECT_EQ(stats.LogLikelihood(), 0);
}

TEST_F(ThreeCategories, ARowWithRepeatedOrDescendingIndicesIsRefused) {
  TavoAccumStats stats(fSettings, 2, 3, fB);
  EXPECT_EQ(stats.UpdateForRow({0, 0}, {1, 1}, 0, 1, false), -1);
  EXPECT_EQ(stats.UpdateForRow({1, 0}, {1, 1}, 0, 1, false), -1);
  EXPECT_EQ(stats.UpdateForRow({}, {}, 0, 1, false), -1);
  for (const double score : stats.Scores())
    EXPECT_EQ(score, 0);
}

TEST_F(ThreeCategories, ACategoryOutOfRangeIsRefusedAndNotCounted) {
  TavoAccumStats stats(fSettings, 2, 3, fB);
  EXPECT_EQ(stats.UpdateForRow({0}, {1.0}, -1, 1, false), -1);
  EXPECT_EQ(stats.UpdateForRow({0}, {1.0}, 3, 1, false), -1);
  int valid = 9, invalid = 9;
  double weight = 9;
  stats.GetCounts(valid, invalid, weight);
  EXPECT_EQ(valid, 0);
  EXPECT_EQ(invalid, 0);
  EXPECT_EQ(weight, 0);
}

TEST_F(ThreeCategories, ARowWiderThanTheModelIsCountedAsInvalid) {
  TavoAccumStats stats(fSettings, 2, 3, fB);
  EXPECT_EQ(stats.UpdateForRow({2}, {1.0}, 0, 1, false), -1);
  int valid = 0, invalid = 0;
  double weight = 0;
  stats.GetCounts(valid, invalid, weight);
  EXPECT_EQ(valid, 0);
  EXPECT_EQ(invalid, 1);
}

TEST_F(ThreeCategories, TheLogLikelihoodIsTheWeightedLogOfTheObservedProbability) {
  double expected = 0, weights = 0;
  for (const DesignRow& row : kRows) {
    double eta[3] = {0, 0, 0};
    for (std::size_t e = 0; e < row.indices.size(); ++e) {
      eta[0] += row.values[e] * fB[static_cast<std::size_t>(row.indices[e])];
      eta[1] += row.values[e] * fB[static_cast<std::size_t>(row.indices[e]) + 2];
    }
    const double sum = std::exp(eta[0]) + std::exp(eta[1]) + 1;
    expected += row.weight * std::log(std::exp(eta[row.category]) / sum);
    weights += row.weight;
  }
  TavoAccumStats stats(fSettings, 2, 3, fB);
  EXPECT_EQ(AddAll(stats), 0);
  EXPECT_NEAR(stats.LogLikelihood(), expected, 1e-13);
  int valid = 0, invalid = 0;
  double weight = 0;
  stats.GetCounts(valid, invalid, weight);
  EXPECT_EQ(valid, 6);
  EXPECT_DOUBLE_EQ(weight, weights);
}

TEST_F(ThreeCategories, ScoresAreTheDerivativeOfTheLogLikelihood) {
  const std::vector<double> scores = ScoresAt(fB);
  for (std::size_t k = 0; k < fB.size(); ++k) {
    const double h = 1e-5;
    std::vector<double> up = fB, down = fB;
    up[k] += h;
    down[k] -= h;
    EXPECT_NEAR(scores[k], (LogLikelihoodAt(up) - LogLikelihoodAt(down)) / (2 * h), 1e-8);
  }
}

TEST_F(ThreeCategories, TheInformationIsTheNegativeDerivativeOfTheScores) {
  TavoAccumStats stats(fSettings, 2, 3, fB);
  AddAll(stats);
  MCSymMatrix information;
  ASSERT_EQ(stats.GetHessian(information), 4);
  for (std::size_t k = 0; k < fB.size(); ++k) {
    const double h = 1e-5;
    std::vector<double> up = fB, down = fB;
    up[k] += h;
    down[k] -= h;
    const std::vector<double> above = ScoresAt(up), below = ScoresAt(down);
    for (std::size_t l = 0; l < fB.size(); ++l) {
      EXPECT_NEAR(information.GetElem(static_cast<int>(k), static_cast<int>(l)),
                  -(above[l] - below[l]) / (2 * h), 1e-8);
    }
  }
}

TEST_F(ThreeCategories, LikelihoodOnlyAddsNoScoresAndNoInformation) {
  TavoAccumStats full(fSettings, 2, 3, fB), brief(fSettings, 2, 3, fB);
  AddAll(full);
  AddAll(brief, true);
  EXPECT_EQ(brief.LogLikelihood(), full.LogLikelihood());
  EXPECT_EQ(brief.Scores(), std::vector<double>(4, 0.0));
  MCSymMatrix information;
  ASSERT_EQ(brief.GetHessian(information), 4);
  for (const double element : information.AsVectorConst())
    EXPECT_EQ(element, 0);
}

TEST_F(ThreeCategories, TheLikelihoodStaysFiniteForHugeParameters) {
  const std::vector<double> huge{1e4, -1e4, 2e4, 3e4};
  TavoAccumStats stats(fSettings, 2, 3, huge);
  EXPECT_EQ(AddAll(stats), 0);
  EXPECT_TRUE(std::isfinite(stats.LogLikelihood()));
  EXPECT_LT(stats.LogLikelihood(), 0);
  for (const double score : stats.Scores())
    EXPECT_TRUE(std::isfinite(score));
}

TEST(AccumStats, WithoutParametersTheLogLikelihoodIsTheWeightTimesLogOneOverKAndThereAreNoScores) {
  const TavoCompSettings settings;
  const std::vector<double> none;
  TavoAccumStats stats(settings, 0, 4, none);
  EXPECT_EQ(stats.UpdateForRow({}, {}, 3, 2.5, false), 0);
  EXPECT_EQ(stats.UpdateForRow({}, {}, 0, 1.5, false), 0);
  EXPECT_NEAR(stats.LogLikelihood(), -4.0 * std::log(4.0), 1e-14);
  EXPECT_TRUE(stats.Scores().empty());
  MCSymMatrix information;
  EXPECT_EQ(stats.GetHessian(information), 0);
}

TEST_F(ThreeCategories, TheSeparationCheckFollowsTheExtremes) {
  TavoAccumStats stats(fSettings, 2, 3, fB);
  double minObserved = 0, maxObserved = 0, minComputed = 0;
  AddAll(stats);
  stats.GetObservedProbabilities(minObserved, maxObserved, minComputed);
  EXPECT_EQ(minObserved, kLargest) << "not followed without the check";
  EXPECT_EQ(maxObserved, -kLargest);
  EXPECT_EQ(minComputed, kLargest);

  stats.Reset(tavo::EstimationMethod::kFisherScoring, true);
  // Predictors 0.3 and 0.1: probabilities by hand.
  stats.UpdateForRow({0}, {1.0}, 1, 1, true);
  const double sum = std::exp(0.3) + std::exp(0.1) + 1;
  stats.GetObservedProbabilities(minObserved, maxObserved, minComputed);
  EXPECT_NEAR(minObserved, std::exp(0.1) / sum, 1e-15);
  EXPECT_NEAR(maxObserved, std::exp(0.1) / sum, 1e-15);
  EXPECT_NEAR(minComputed, 1 / sum, 1e-15);
}

TEST_F(ThreeCategories, ResetEmptiesAllSumsAndKeepsTheMethod) {
  TavoAccumStats stats(fSettings, 2, 3, fB);
  AddAll(stats);
  stats.Reset(tavo::EstimationMethod::kNewtonRaphson, false);
  EXPECT_EQ(stats.Method(), tavo::EstimationMethod::kNewtonRaphson);
  EXPECT_EQ(stats.LogLikelihood(), 0);
  EXPECT_EQ(stats.Scores(), std::vector<double>(4, 0.0));
  MCSymMatrix information;
  stats.GetHessian(information);
  for (const double element : information.AsVectorConst())
    EXPECT_EQ(element, 0);
}

TEST_F(ThreeCategories, MergedClonesGiveTheSumsOfOneObject) {
  TavoAccumStats whole(fSettings, 2, 3, fB);
  whole.Reset(tavo::EstimationMethod::kFisherScoring, true);
  AddAll(whole);
  TavoAccumStats parts(fSettings, 2, 3, fB);
  parts.Reset(tavo::EstimationMethod::kFisherScoring, true);
  for (std::size_t part = 0; part < 2; ++part) {
    const auto clone = parts.CloneEmpty();
    clone->Reset(tavo::EstimationMethod::kFisherScoring, true);
    for (std::size_t i = 3 * part; i < 3 * part + 3; ++i) {
      clone->UpdateForRow(kRows[i].indices, kRows[i].values, kRows[i].category, kRows[i].weight, false);
    }
    parts.Merge(*clone);
  }
  EXPECT_NEAR(parts.LogLikelihood(), whole.LogLikelihood(), 1e-14);
  for (std::size_t k = 0; k < 4; ++k)
    EXPECT_NEAR(parts.Scores()[k], whole.Scores()[k], 1e-14);
  MCSymMatrix a, b;
  parts.GetHessian(a);
  whole.GetHessian(b);
  for (std::size_t e = 0; e < a.AsVectorConst().size(); ++e) {
    EXPECT_NEAR(a.AsVectorConst()[e], b.AsVectorConst()[e], 1e-14);
  }
  double x[3], y[3];
  parts.GetObservedProbabilities(x[0], x[1], x[2]);
  whole.GetObservedProbabilities(y[0], y[1], y[2]);
  for (int i = 0; i < 3; ++i)
    EXPECT_EQ(x[i], y[i]);
  int valid = 0, invalid = 0;
  double weight = 0;
  parts.GetCounts(valid, invalid, weight);
  EXPECT_EQ(valid, 6);
  EXPECT_DOUBLE_EQ(weight, 8.6);
}

// Sums that are missing where a test wants them so.
class StatsWithMissingSums : public TavoAccumStats {
 public:
  using TavoAccumStats::TavoAccumStats;
  void LoseLogLikelihood() { fLogLikelihood = MCMV::gMissingValue; }
  void LoseScore() { fScores[1] = MCMV::gMissingValue; }
};

TEST_F(ThreeCategories, AMergeWithAMissingLogLikelihoodLeavesTheSumMissing) {
  TavoAccumStats sums(fSettings, 2, 3, fB);
  AddAll(sums);
  StatsWithMissingSums lost(fSettings, 2, 3, fB);
  lost.LoseLogLikelihood();
  lost.LoseScore();
  sums.Merge(lost);
  EXPECT_EQ(sums.LogLikelihood(), MCMV::gMissingValue);
  EXPECT_EQ(sums.Scores()[1], MCMV::gMissingValue);
  EXPECT_NE(sums.Scores()[0], MCMV::gMissingValue);
  TavoAccumStats more(fSettings, 2, 3, fB);
  AddAll(more);
  sums.Merge(more);
  EXPECT_EQ(sums.LogLikelihood(), MCMV::gMissingValue);
}

TEST(AccumStats, AHundredThousandEqualRowsSumWithoutLosingDigits) {
  // A plain sum of this many terms loses about five digits; the compensated one is within one rounding of the
  // product.
  const TavoCompSettings settings;
  const std::vector<double> b{0.1};
  TavoAccumStats stats(settings, 1, 2, b), one(settings, 1, 2, b);
  one.UpdateForRow({0}, {1.0}, 0, 1.0, true);
  for (int i = 0; i < 100000; ++i)
    stats.UpdateForRow({0}, {1.0}, 0, 1.0, true);
  EXPECT_NEAR(stats.LogLikelihood(), 1e5 * one.LogLikelihood(), 1.5e-11);
  EXPECT_DOUBLE_EQ(stats.LogLikelihood(), 1e5 * one.LogLikelihood());
}

}  // namespace
