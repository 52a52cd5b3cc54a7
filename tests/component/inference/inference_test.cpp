// The inference alone, on a model that is led by hand to a chosen information matrix, and on chosen unit
// totals.

#include "component/inference/inference.h"

#include <gtest/gtest.h>

#include <cmath>

#include "component/design/sample_design.h"
#include "component/estimation/model.h"
#include "component/numerics/missing_value.h"
#include "component/tabulation/factor_tables.h"
#include "small_survey.h"

namespace inference_test {
namespace {

using MCCommonMath::IsMissing;
using MCCommonMath::MCSymMatrix;
using tavo::DesignFault;
using tavo::DesignStage;
using tavo::OrvCancelInfo;
using tavo::OrvParamStats;
using tavo::OrvStatus;
using tavo::SampleDesign;
using tavo::TavoCompSettings;
using tavo::TavoInference;
using tavo::TavoModel;
namespace StatusCode = tavo::StatusCode;

/// Two logits can be had with 3 categories, but one shows everything here: 4 parameters, the third one
/// redundant.
constexpr int kParameters = kBasicParameters;

/// A built model with the unit matrix as the inverse information of the 3 non-redundant parameters.
class HandLedModel {
 public:
  explicit HandLedModel(std::vector<Case> cases = RandomCases(2, 7)) : fSettings(FullSettings(2)) {
    fTables.SetEffects({{}, {kFactor}, {}}, {1});
    fTables.SetEffectCovariates({{}, {}, {kCovariate}}, {{}, {}, {1}});
    fTables.SetCovariates({kCovariate});
    CaseStream stream(cases);
    for (std::size_t i = 0; i < cases.size(); ++i)
      fTables.Update(stream.Next()->GetAll());
    const int parameters = fTables.AssignParameters();

    fPatternRow.Set(kResponse, {}, {kCovariate}, kWeight);
    fDataRow.Set(kResponse, {kFactor}, {kCovariate}, kWeight);
    fModel.SetupDependent();
    fModel.BuildParameters(parameters);
    std::vector<int> indices(3);
    for (const Case& c : cases) {
      const std::vector<double> pattern = {static_cast<double>(c.response), c.x, c.weight};
      fTables.ParameterIndices(Row(c).data(), indices);
      fModel.AddPatternToXPrimeX(pattern.data(), indices);
    }
    fModel.FindRedundancies();
    MCSymMatrix inverse(3);
    for (int i = 0; i < 3; ++i)
      inverse.SetElem(i, i, 1.0);
    fModel.SetEstimates({0.25, -0.5, 1.5}, inverse);
    std::vector<double> scores(kParameters);
    for (const Case& c : cases)
      fModel.ComputeCaseScores(scores, Row(c).data());
    fModel.ScaleSRSCovariance();
  }

  TavoModel& Model() { return fModel; }
  TavoCompSettings& Settings() { return fSettings; }
  OrvCancelInfo& Cancel() { return fCancel; }
  TavoInference Inference(const SampleDesign& design) const { return {fSettings, fModel, design, fCancel}; }

 private:
  static std::vector<double> Row(const Case& c) {
    return {static_cast<double>(c.response), static_cast<double>(c.factor), c.x, c.weight};
  }

  TavoCompSettings fSettings;
  OrvCancelInfo fCancel;
  tavo::OrvFactorTables fTables{{kFactor}, {2}, kWeight, kResponse, 2};
  tavo::OrvRecordExtractor fPatternRow;
  tavo::OrvRecordExtractor fDataRow;
  TavoModel fModel{fSettings, fTables, fPatternRow, fDataRow, fCancel};
};

/// One stratum of units with the given totals; `fraction` 0 is with replacement.
SampleDesign DesignOf(const std::vector<std::vector<double>>& units, double fraction = 0) {
  DesignStage stage;
  stage.clusters = {0};
  stage.estimator = tavo::StageEstimator::kEqualWor;
  stage.SetInclusionProbability(fraction);
  SampleDesign design;
  const int variables = static_cast<int>(units.front().size());
  design.BuildTree({stage}, variables);
  design.SetMatrixBlocks({variables}, {0});
  DesignFault fault = DesignFault::kNone;
  int index = 0;
  for (std::size_t u = 0; u < units.size(); ++u) {
    design.AddUnit(units[u]);
    design.CloseLevels(u + 1 < units.size() ? 0 : -1, fault, index);
  }
  return design;
}

/// Totals in general position: the non-redundant parameters have a covariance of full rank.
SampleDesign RegularDesign() {
  return DesignOf({{1, 0, 7, 0}, {0, 2, 7, 0}, {0, 0, 7, 3}, {-1, 1, 7, 1}, {4, 1, 7, 0}});
}

TEST(Inference, BeforeTheModelIsBuiltAnswersSo) {
  const TavoCompSettings settings = FullSettings(2);
  const OrvCancelInfo cancel;
  tavo::OrvFactorTables tables;
  const tavo::OrvRecordExtractor extractor;
  const TavoModel model(settings, tables, extractor, extractor, cancel);
  const SampleDesign design = RegularDesign();
  TavoInference inference(settings, model, design, cancel);
  EXPECT_EQ(inference.ComputePECovar(design), OrvStatus::Error(StatusCode::kModelNotBuilt));
  EXPECT_EQ(inference.ComputePECovarSRS(false), OrvStatus::Error(StatusCode::kModelNotBuilt));
  std::vector<OrvParamStats> rows;
  EXPECT_EQ(inference.ComputeParamStats(rows), OrvStatus::Error(StatusCode::kUserError));
  EXPECT_EQ(inference.PECovar(), nullptr);
}

TEST(Inference, TakesDegreesOfFreedomFromTheSettingsFirst) {
  HandLedModel hand;
  const SampleDesign design = RegularDesign();
  EXPECT_EQ(hand.Inference(design).DegreesOfFreedom(), 4.0) << "5 units, 1 stratum";
  hand.Settings().SetDegreesOfFreedom(17.0);
  EXPECT_EQ(hand.Inference(design).DegreesOfFreedom(), 17.0);
}

TEST(Inference, HasThePercentileOfTheConfidenceLevel) {
  HandLedModel hand;
  hand.Settings().SetDegreesOfFreedom(1.0);
  hand.Settings().SetConfidence(0.5);
  EXPECT_NEAR(hand.Inference(RegularDesign()).TPercentile(), 1.0, 1e-12)
      << "upper quartile of Cauchy's distribution";
  hand.Settings().SetConfidence(0.0);
  EXPECT_NEAR(hand.Inference(RegularDesign()).TPercentile(), 0.0, 1e-12);
}

TEST(Inference, WithOneUnitHasNoDegreesOfFreedomAndNoPercentile) {
  HandLedModel hand;
  const TavoInference inference = hand.Inference(DesignOf({{1, 2, 3, 4}}));
  EXPECT_EQ(inference.DegreesOfFreedom(), 0.0);
  EXPECT_TRUE(IsMissing(inference.TPercentile()));
}

TEST(Inference, WithoutADesignCovarianceHasNothingToComputeFrom) {
  HandLedModel hand;
  SampleDesign design;
  TavoInference inference = hand.Inference(design);
  EXPECT_EQ(inference.ComputePECovar(design), OrvStatus::Error(StatusCode::kUserError));
}

// With G the unit matrix on the non-redundant parameters, V is T M T': slope k divided by its scale, and the
// intercept less the sum of centre/scale times slope.
TEST(Inference, BringsTheSandwichToTheScaleOfTheData) {
  HandLedModel hand;
  const SampleDesign design = RegularDesign();
  TavoInference inference = hand.Inference(design);
  EXPECT_TRUE(inference.ComputePECovar(design).IsOK());

  const std::vector<double>& c = hand.Model().Centres();
  const std::vector<double>& s = hand.Model().Scales();
  MCSymMatrix central(kParameters);
  central.AsVector() = *design.Root()->Covariances()->Block(0);
  std::vector<std::vector<double>> map(kParameters, std::vector<double>(kParameters, 0.0));
  map[0][0] = 1.0;
  for (const std::size_t k : {1u, 3u}) {
    map[k][k] = 1.0 / s[k];
    map[0][k] = -c[k] / s[k];
  }
  for (int i = 0; i < kParameters; ++i) {
    for (int j = 0; j <= i; ++j) {
      double expected = 0.0;
      for (int a = 0; a < kParameters; ++a) {
        for (int b = 0; b < kParameters; ++b) {
          expected += map[static_cast<std::size_t>(i)][static_cast<std::size_t>(a)] * central.GetElem(a, b) *
                      map[static_cast<std::size_t>(j)][static_cast<std::size_t>(b)];
        }
      }
      EXPECT_NEAR(inference.PECovar()->GetElem(i, j), expected, 1e-12 * (1.0 + std::abs(expected)))
          << i << ", " << j;
    }
  }
}

TEST(Inference, WarnsOfVariancesThatAreAllZero) {
  HandLedModel hand;
  const SampleDesign design = DesignOf({{0, 0, 0, 0}, {0, 0, 0, 0}});
  TavoInference inference = hand.Inference(design);
  EXPECT_EQ(inference.ComputePECovar(design), OrvStatus::Warning(StatusCode::kVarianceZero));
  ASSERT_NE(inference.PECovar(), nullptr);
  std::vector<OrvParamStats> rows(kParameters);
  ASSERT_TRUE(inference.ComputeParamStats(rows).IsOK());
  for (const OrvParamStats& row : rows) {
    EXPECT_EQ(row.standardError, 0.0);
    EXPECT_TRUE(IsMissing(row.t));
    EXPECT_TRUE(IsMissing(row.significance));
  }
}

// A fraction above 1 can't come from a checked plan; it makes negative variances for a test.
TEST(Inference, WarnsOfVariancesThatAreAllNegativeWithTheirCount) {
  HandLedModel hand;
  const SampleDesign design = DesignOf({{1, 0, 0, 0}, {0, 2, 0, 1}, {0, 0, 0, 3}, {2, 1, 0, -1}}, 2.0);
  TavoInference inference = hand.Inference(design);
  const OrvStatus status = inference.ComputePECovar(design);
  EXPECT_EQ(status, OrvStatus::Warning(StatusCode::kVarianceZeroSomeNegative).SetInteger(0, 3));
  EXPECT_EQ(inference.BadVariances().InSet(), 3);
  EXPECT_FALSE(inference.BadVariances().IsIn(2)) << "the redundant one";
}

/// Two strata, read fractions 2 and 0: the first stratum makes the last parameter's variance negative.
SampleDesign PartlyNegativeDesign() {
  DesignStage stage;
  stage.strata = {0};
  stage.clusters = {0};
  stage.estimator = tavo::StageEstimator::kEqualWor;
  stage.SetInclusionProbabilityVariable(0);
  SampleDesign design;
  design.BuildTree({stage}, kParameters);
  design.SetMatrixBlocks({kParameters}, {0});
  DesignFault fault = DesignFault::kNone;
  int index = 0;
  design.AddUnit({0, 0, 0, 1});
  design.SetStageValues({2.0}, fault, index);
  design.CloseLevels(1, fault, index);
  design.AddUnit({0, 0, 0, 2});
  design.SetStageValues({2.0}, fault, index);
  design.CloseLevels(0, fault, index);
  for (const int unit : {0, 1, 2}) {
    design.AddUnit({unit == 0 ? 500.0 : 0.0, unit == 1 ? 1.0 : 0.0, 0, 0});
    design.SetStageValues({0.0}, fault, index);
    design.CloseLevels(unit < 2 ? 1 : -1, fault, index);
  }
  return design;
}

TEST(Inference, WarnsOfSomeNegativeVariancesAndMarksTheirParameters) {
  HandLedModel hand;
  const SampleDesign design = PartlyNegativeDesign();
  TavoInference inference = hand.Inference(design);
  EXPECT_EQ(inference.ComputePECovar(design),
            OrvStatus::Warning(StatusCode::kNegativeVariance).SetInteger(0, 1));
  std::vector<OrvParamStats> rows(kParameters);
  rows[2].redundant = true;
  ASSERT_TRUE(inference.ComputeParamStats(rows).IsOK());
  EXPECT_TRUE(rows[3].negativeVariance);
  EXPECT_EQ(rows[3].standardError, 0.0);
  EXPECT_FALSE(rows[0].negativeVariance);
  EXPECT_GT(rows[0].standardError, 0.0);
}

TEST(Inference, WarnsOfASingularCovariance) {
  HandLedModel hand;
  // Fewer units than parameters, and every parameter varies.
  const SampleDesign design = DesignOf({{1, 2, 0, 3}, {2, -1, 0, 5}, {0, 1, 0, 4}});
  TavoInference inference = hand.Inference(design);
  EXPECT_EQ(inference.ComputePECovar(design), OrvStatus::Warning(StatusCode::kDesignCovarianceSingular));
  EXPECT_GT(inference.PECovar()->GetElem(3, 3), 0.0);
}

TEST(Inference, CancelledSaysSoUnlessItHasAWarning) {
  HandLedModel hand;
  hand.Cancel().Cancel();
  // The model refused to work once cancelled isn't at stake here: it was built before.
  const SampleDesign regular = RegularDesign();
  TavoInference inference = hand.Inference(regular);
  EXPECT_EQ(inference.ComputePECovar(regular), OrvStatus::Error(StatusCode::kCancelled));
  const SampleDesign zero = DesignOf({{0, 0, 0, 0}, {0, 0, 0, 0}});
  EXPECT_EQ(inference.ComputePECovar(zero), OrvStatus::Warning(StatusCode::kVarianceZero));
}

TEST(Inference, CopiesTheDesignCovarianceWhenTheDesignIsASimpleRandomSample) {
  HandLedModel hand;
  const SampleDesign design = RegularDesign();
  TavoInference inference = hand.Inference(design);
  ASSERT_TRUE(inference.ComputePECovar(design).IsOK());
  EXPECT_TRUE(inference.ComputePECovarSRS(true).IsOK());
  EXPECT_EQ(inference.PECovarSRS()->AsVectorConst(), inference.PECovar()->AsVectorConst());
  std::vector<OrvParamStats> rows(kParameters);
  rows[2].redundant = true;
  ASSERT_TRUE(inference.ComputeParamStats(rows).IsOK());
  for (const std::size_t i : {0u, 1u, 3u})
    EXPECT_EQ(rows[i].designEffect, 1.0);
}

TEST(Inference, WarnsOfAnSRSCovarianceOfZeroAndGivesNoDesignEffects) {
  std::vector<Case> cases = RandomCases(2, 7);
  for (Case& c : cases)
    c.weight = 0.5;  // more cases than the population holds: nothing is uncertain
  HandLedModel hand(cases);
  const SampleDesign design = RegularDesign();
  TavoInference inference = hand.Inference(design);
  ASSERT_TRUE(inference.ComputePECovar(design).IsOK());
  EXPECT_EQ(inference.ComputePECovarSRS(false), OrvStatus::Warning(StatusCode::kSRSVarianceZero));
  std::vector<OrvParamStats> rows(kParameters);
  ASSERT_TRUE(inference.ComputeParamStats(rows).IsOK());
  for (const OrvParamStats& row : rows)
    EXPECT_TRUE(IsMissing(row.designEffect));
}

TEST(Inference, WithoutAnSRSCentreComputesNoSRSCovariance) {
  HandLedModel hand;
  hand.Model().ReleaseSRSCentre();
  TavoInference inference = hand.Inference(RegularDesign());
  EXPECT_TRUE(inference.ComputePECovarSRS(false).IsOK());
  EXPECT_EQ(inference.PECovarSRS(), nullptr);
}

TEST(Inference, RefusesRowsThatAreNotOnePerParameter) {
  HandLedModel hand;
  const SampleDesign design = RegularDesign();
  TavoInference inference = hand.Inference(design);
  ASSERT_TRUE(inference.ComputePECovar(design).IsOK());
  std::vector<OrvParamStats> rows(kParameters - 1);
  EXPECT_EQ(inference.ComputeParamStats(rows), OrvStatus::Error(StatusCode::kUserError));
}

TEST(Inference, ChangesNothingElseInTheRowOfARedundantParameter) {
  HandLedModel hand;
  const SampleDesign design = RegularDesign();
  TavoInference inference = hand.Inference(design);
  ASSERT_TRUE(inference.ComputePECovar(design).IsOK());
  std::vector<OrvParamStats> rows(kParameters);
  rows[2].redundant = true;
  rows[2].estimate = 12.0;
  rows[2].standardError = rows[2].t = rows[2].df = 3.0;
  rows[2].negativeVariance = true;
  ASSERT_TRUE(inference.ComputeParamStats(rows).IsOK());
  EXPECT_EQ(rows[2].estimate, 12.0);
  EXPECT_TRUE(rows[2].negativeVariance);
  for (const double value : {rows[2].standardError, rows[2].confidenceLower, rows[2].confidenceUpper,
                             rows[2].t, rows[2].df, rows[2].significance, rows[2].designEffect}) {
    EXPECT_TRUE(IsMissing(value));
  }
}

// Two parameters that vary against each other: their sum has a variance 3e-13 times as large as without
// cancellation, with three digits left.
TEST(Inference, KeepsAVarianceThatIsSmallBesideTheTermsThatCancelInIt) {
  HandLedModel hand;
  const double ratio = hand.Model().Centres()[3] / hand.Model().Scales()[3];
  ASSERT_NE(ratio, 0.0);
  const double rest = 3e-6;
  // The intercept on the scale of the data is that of the fit less `ratio` times the slope.
  std::vector<std::vector<double>> units;
  for (const double slope : {1.0, -2.0, 4.0, -3.0})
    units.push_back({slope + (slope > 0 ? rest : -rest), slope * slope, 0, slope / ratio});
  const SampleDesign design = DesignOf(units);
  TavoInference inference = hand.Inference(design);
  EXPECT_FALSE(inference.ComputePECovar(design).IsError());
  std::vector<OrvParamStats> rows(kParameters);
  ASSERT_TRUE(inference.ComputeParamStats(rows).IsOK());
  // Four units with replacement: 4/3 times the squares about the mean, 0.
  EXPECT_NEAR(rows[0].standardError / (rest * std::sqrt(16.0 / 3)), 1, 1e-3);
}

TEST(Inference, TakesAVarianceThatRoundingMayHaveMadeForZero) {
  HandLedModel hand;
  const double ratio = hand.Model().Centres()[3] / hand.Model().Scales()[3];
  std::vector<std::vector<double>> units;
  for (const double slope : {1.1, -2.3, 4.7, -3.9})
    units.push_back({ratio * slope, slope * slope, 0, slope});
  const SampleDesign design = DesignOf(units);
  TavoInference inference = hand.Inference(design);
  EXPECT_EQ(inference.ComputePECovar(design), OrvStatus::Warning(StatusCode::kDesignCovarianceSingular));
  EXPECT_EQ(inference.BadVariances().InSet(), 0);
  std::vector<OrvParamStats> rows(kParameters);
  ASSERT_TRUE(inference.ComputeParamStats(rows).IsOK());
  EXPECT_EQ(rows[0].standardError, 0.0);
  EXPECT_EQ(inference.PECovar()->GetElem(3, 0), 0.0);
  EXPECT_GT(rows[3].standardError, 0.0);
}

}  // namespace
}  // namespace inference_test
