// Custom hypotheses on fitted models: which rows are tested in which logit, and which are refused.

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "component/design/sample_design.h"
#include "effect_bench.h"

namespace tavo {
namespace {

using effect_bench::Case;
using effect_bench::Effect;
using effect_bench::FittedModel;
using effect_bench::Options;
using effect_bench::Survey;
using MCCommonMath::IsMissing;
using MCCommonMath::MCRectMatrix;
using Values = std::vector<double>;

const std::vector<Effect> kFactorAndCovariate = {{{0}, {}}, {{}, {0}}};  // 1, a1 a2 a3, x

FittedModel Fit(int categories, bool hasIntercept = true) {
  Options options;
  options.categories = categories;
  options.hasIntercept = hasIntercept;
  return {Survey(400, {3}, 1, categories), kFactorAndCovariate, options};
}

TavoMatrixRow EffectRow(int effect, Values values) {
  TavoMatrixRow row(MatrixRowType::kEffectList, 2);
  row.AddEffect(effect, std::move(values));
  return row;
}

TavoMatrixRow InterceptRow(double value) {
  TavoMatrixRow row(MatrixRowType::kValueEffectList, 2);
  row.SetFirstValue(value);
  return row;
}

TavoMatrixRow AllRow(Values values) {
  TavoMatrixRow row(MatrixRowType::kAll, 2);
  row.SetAllValues(std::move(values));
  return row;
}

OrvCustomTest Rows(const std::vector<TavoMatrixRow>& rows, const Values& K = {}) {
  OrvCustomTest test;
  for (const TavoMatrixRow& row : rows)
    EXPECT_TRUE(test.AddRow(row));
  if (!K.empty()) {
    EXPECT_TRUE(test.SetK(K));
  }
  return test;
}

struct Answer {
  OrvStatus status;
  MCRectMatrix L;
  std::vector<OrvTestStats> rows;
  OrvTestStats overall;
};

Answer Ask(const FittedModel& model, const OrvCustomTest& test, TestType type = TestType::WaldF,
           PAdjustMethod method = PAdjustMethod::LeastSignificanceDifference) {
  Answer answer;
  answer.status = model.Output().TestCustom(test, type, method, answer.L, answer.rows, answer.overall);
  return answer;
}

Values RowOf(const MCRectMatrix& L, int i) {
  Values row;
  L.GetRow(i, row);
  return row;
}

double EstimateOf(const FittedModel& model, const Values& contrast) {
  double sum = 0;
  for (std::size_t j = 0; j < contrast.size(); ++j)
    sum += contrast[j] * model.Output().Estimates()[j];
  return sum;
}

TEST(CustomHypothesis, OfEveryContrastOfAnEffectIsTheTestOfTheEffect) {
  const FittedModel model = Fit(2);
  const Answer answer = Ask(model, Rows({EffectRow(0, {1, -1, 0}), EffectRow(0, {0, 1, -1})}));
  ASSERT_TRUE(answer.status.IsOK());
  const auto effect = model.Test(0);
  EXPECT_NEAR(answer.overall.wald, effect.overall.wald, 1e-11 * effect.overall.wald);
  EXPECT_EQ(answer.overall.df1, 2);
  EXPECT_EQ(RowOf(answer.L, 0), (Values{0, 1, -1, 0, 0}));
}

TEST(CustomHypothesis, OfACovariateRepeatsTheTestOfItsParameter) {
  const FittedModel model = Fit(2);
  const Answer answer = Ask(model, Rows({EffectRow(1, {1})}));
  const OrvParamStats& parameter = model.Output().ParamStats()[4];
  EXPECT_NEAR(answer.rows[0].contrastEstimate, parameter.estimate, 1e-14);
  EXPECT_NEAR(answer.rows[0].standardError, parameter.standardError, 1e-14);
  EXPECT_NEAR(answer.rows[0].wald, parameter.t * parameter.t, 1e-11 * parameter.t * parameter.t);
  EXPECT_NEAR(answer.rows[0].significance, parameter.significance, 1e-12 * parameter.significance);
  EXPECT_EQ(answer.rows[0].df2, parameter.df);
}

TEST(CustomHypothesis, WithoutRowsTestsOnlyTheInterceptOfEachLogit) {
  const FittedModel model = Fit(3);
  OrvCustomTest test;
  test.SetK({0.25});
  const Answer answer = Ask(model, test);
  ASSERT_TRUE(answer.status.IsOK());
  ASSERT_EQ(answer.rows.size(), 2u) << "three categories, two rows";
  EXPECT_EQ(RowOf(answer.L, 0), (Values{1, 0, 0, 1, 0, 0, 0, 0, 0, 0})) << "the estimable function";
  EXPECT_EQ(RowOf(answer.L, 1), (Values{0, 0, 0, 0, 0, 1, 0, 0, 1, 0}));
  for (int i = 0; i < 2; ++i) {
    const OrvTestStats& row = answer.rows[static_cast<std::size_t>(i)];
    const double estimate = EstimateOf(model, RowOf(answer.L, i));
    EXPECT_NEAR(row.contrastEstimate, estimate, 1e-13);
    const double t = (estimate - 0.25) / row.standardError;
    EXPECT_NEAR(row.wald, t * t, 1e-11 * t * t);
  }
}

TEST(CustomHypothesis, WithoutRowsNeedsExactlyOneKValue) {
  const FittedModel model = Fit(2);
  OrvCustomTest none;
  EXPECT_EQ(Ask(model, none).status.Code(), StatusCode::kMoreThanOneRow);
  OrvCustomTest two;
  two.SetK({1, 2});
  const Answer answer = Ask(model, two);
  EXPECT_EQ(answer.status.Code(), StatusCode::kMoreThanOneRow);
  EXPECT_EQ(answer.L.GetNRows(), 0);
  EXPECT_TRUE(answer.rows.empty());
}

TEST(CustomHypothesis, WhoseFirstRowIsAllAndLaterRowsAreEffectRowsIsRefused) {
  const FittedModel model = Fit(2);
  const Answer answer = Ask(model, Rows({AllRow({0, 1, -1, 0, 0}), EffectRow(0, {1, -1, 0})}));
  EXPECT_EQ(answer.status.Code(), StatusCode::kAllRowsMixed);
  EXPECT_EQ(answer.L.GetNRows(), 0);
  ASSERT_EQ(answer.rows.size(), 2u);
  EXPECT_TRUE(IsMissing(answer.rows[0].contrastEstimate)) << "results stay at their defaults";
}

TEST(CustomHypothesis, WhoseFirstRowIsAnEffectRowAndLaterRowsAreAllIsRefused) {
  const FittedModel model = Fit(2);
  EXPECT_EQ(Ask(model, Rows({EffectRow(0, {1, -1, 0}), AllRow({0, 1, -1, 0, 0})})).status.Code(),
            StatusCode::kAllRowsMixed);
}

TEST(CustomHypothesis, OverAllParametersKeepsTheLengthOfK) {
  const FittedModel model = Fit(3);
  const Values difference{0, 1, -1, 0, 0, 0, -1, 1, 0, 0};  // the same contrast in two logits
  const Answer answer = Ask(model, Rows({AllRow(difference)}, {0.5}));
  ASSERT_TRUE(answer.status.IsOK());
  ASSERT_EQ(answer.rows.size(), 1u);
  EXPECT_EQ(RowOf(answer.L, 0), difference);
  EXPECT_NEAR(answer.rows[0].contrastEstimate, EstimateOf(model, difference), 1e-13);
  EXPECT_EQ(answer.overall.df1, 1);
}

TEST(CustomHypothesis, OverAllParametersThatIsEstimableInTheFirstLogitAndNotInTheSecondFails) {
  const FittedModel model = Fit(3);
  EXPECT_EQ(Ask(model, Rows({AllRow({0, 1, -1, 0, 0, 0, 1, 0, 0, 0})})).status.Code(),
            StatusCode::kNotEstimable);
  EXPECT_EQ(Ask(model, Rows({AllRow({0, 1, 0, 0, 0, 0, 1, -1, 0, 0})})).status.Code(),
            StatusCode::kNotEstimable);
  EXPECT_EQ(Ask(model, Rows({AllRow({0, 1, 0, 0, 0, 0, -1, 0, 0, 0})})).status.Code(),
            StatusCode::kNotEstimable)
      << "not estimable in either, though the sum over logits is 0";
  EXPECT_EQ(Ask(Fit(2), Rows({AllRow({0, 1, 0, 0, 0})})).status.Code(), StatusCode::kNotEstimable);
}

TEST(CustomHypothesis, OfEffectRowsComesOutInLogitMajorOrder) {
  const FittedModel model = Fit(3);
  const Answer answer = Ask(model, Rows({EffectRow(0, {1, -1, 0}), EffectRow(1, {1})}, {0.1, 0.2}));
  ASSERT_TRUE(answer.status.IsOK());
  ASSERT_EQ(answer.rows.size(), 4u);
  const Values expected[] = {{0, 1, -1, 0, 0, 0, 0, 0, 0, 0},
                             {0, 0, 0, 0, 1, 0, 0, 0, 0, 0},
                             {0, 0, 0, 0, 0, 0, 1, -1, 0, 0},
                             {0, 0, 0, 0, 0, 0, 0, 0, 0, 1}};
  const Values K{0.1, 0.2, 0.1, 0.2};
  for (int i = 0; i < 4; ++i) {
    const OrvTestStats& row = answer.rows[static_cast<std::size_t>(i)];
    EXPECT_EQ(RowOf(answer.L, i), expected[i]) << i;
    EXPECT_NEAR(row.contrastEstimate, EstimateOf(model, expected[i]), 1e-13);
    const double t = (row.contrastEstimate - K[static_cast<std::size_t>(i)]) / row.standardError;
    EXPECT_NEAR(row.wald, t * t, 1e-11 * t * t) << i;
    EXPECT_EQ(row.contrastCount, 4);
  }
}

TEST(CustomHypothesis, ThatIsNotEstimableIsRefusedWithoutResults) {
  const FittedModel model = Fit(2);
  for (const auto& rows : {Rows({EffectRow(0, {1, 0, 0})}), Rows({InterceptRow(1)}),
                           Rows({EffectRow(0, {1, -1, 0}), EffectRow(0, {1, 1, 0})})}) {
    const Answer answer = Ask(model, rows);
    EXPECT_EQ(answer.status.Code(), StatusCode::kNotEstimable);
    EXPECT_EQ(answer.L.GetNRows(), 0);
    EXPECT_TRUE(IsMissing(answer.overall.df1));
  }
  EXPECT_TRUE(Ask(model, Rows({EffectRow(0, {1, -1, 0})})).status.IsOK()) << "the next test stands by itself";
}

TEST(CustomHypothesis, OfAMeanTakesFractions) {
  const FittedModel model = Fit(2);
  TavoMatrixRow row = InterceptRow(1);
  row.AddEffect(0, {1.0 / 3, 1.0 / 3, 1.0 / 3});
  row.AddEffect(1, {14});
  EXPECT_TRUE(Ask(model, Rows({row})).status.IsOK());
}

TEST(CustomHypothesis, PassesOnTheErrorsOfItsRows) {
  const FittedModel model = Fit(2);
  const Answer count = Ask(model, Rows({EffectRow(0, {1, -1})}));
  EXPECT_EQ(count.status.Code(), StatusCode::kWrongCoefficientCount);
  EXPECT_EQ(count.status.Integer(2), 3);
  EXPECT_EQ(Ask(model, Rows({AllRow({1, 2})})).status.Code(), StatusCode::kWrongLMatrixWidth);
  EXPECT_EQ(Ask(Fit(2, false), Rows({InterceptRow(1)})).status.Code(), StatusCode::kInterceptRowNotAllowed);
}

TEST(CustomHypothesis, WithoutInterceptAndRowsTestsTheFirstEstimableFunction) {
  const FittedModel model = Fit(2, false);  // a1 a2 a3 x, all kept
  OrvCustomTest test;
  test.SetK({0});
  const Answer answer = Ask(model, test);
  ASSERT_TRUE(answer.status.IsOK());
  EXPECT_EQ(RowOf(answer.L, 0), (Values{1, 0, 0, 0}));
}

TEST(CustomHypothesis, TakesTypeAndMethodOfTheCallAndNotOfTheSettings) {
  const FittedModel model = Fit(2);
  for (const TestType type :
       {TestType::WaldF, TestType::AdjustedWaldF, TestType::WaldChiSquare, TestType::AdjustedWaldChiSquare}) {
    const Answer answer = Ask(model, Rows({EffectRow(0, {1, -1, 0})}), type, PAdjustMethod::Sidak);
    EXPECT_EQ(answer.overall.testType, type);
    EXPECT_EQ(answer.overall.adjustment, PAdjustMethod::Sidak);
    EXPECT_EQ(answer.rows[0].testType, type);
  }
}

TEST(CustomHypothesis, StopsAtAWarningThatAllVariancesAreZero) {
  auto cases = Survey(200, {3}, 1);
  for (Case& c : cases)
    c.stratum = c.cluster = 1;
  const FittedModel model(cases, kFactorAndCovariate);
  const Answer answer = Ask(model, Rows({EffectRow(0, {1, -1, 0})}));
  EXPECT_EQ(answer.status.Code(), StatusCode::kVarianceZero);
  EXPECT_EQ(answer.L.GetNRows(), 0);
  MCRectMatrix L;
  std::vector<int> columns;
  EXPECT_TRUE(model.Output().GeneralEstimableFunction(L, columns).IsOK()) << "it needs no variance";
}

// ---- the order of calls ----

TEST(PrepareTests, WithoutACovarianceOrCrossProductsIsRefused) {
  const FittedModel model = Fit(2);  // its X'WX is released
  const SampleDesign design;
  const OrvCancelInfo cancel;
  TavoInference inference(model.Settings(), model.Model(), design, cancel);
  EXPECT_EQ(model.Model().XPrimeX(), nullptr);
  MCRectMatrix L;
  std::vector<int> columns;
  std::vector<OrvTestStats> rows;
  OrvTestStats overall;
  const OrvCustomTest test = Rows({EffectRow(0, {1, -1, 0})});
  EXPECT_EQ(inference.TestEffect(0, L, columns, overall).Code(), StatusCode::kUserError) << "not prepared";
  EXPECT_EQ(inference.GeneralEstimableFunction(L, columns).Code(), StatusCode::kUserError);
  EXPECT_EQ(inference.TestCustom(test, TestType::WaldF, PAdjustMethod::Sidak, L, rows, overall).Code(),
            StatusCode::kNoColumns);
  EXPECT_EQ(inference.PrepareTests(true).Code(), StatusCode::kUserError);
  EXPECT_EQ(inference.TestEffect(0, L, columns, overall).Code(), StatusCode::kUserError);
  EXPECT_EQ(inference.TestCustom(test, TestType::WaldF, PAdjustMethod::Sidak, L, rows, overall).Code(),
            StatusCode::kUserError);
}

TEST(PrepareTests, AreNotReachedByAModelWithoutParameters) {
  auto cases = Survey(100, {}, 1);
  for (Case& c : cases)
    c.covariates[0] = 0;
  Options options;
  options.hasIntercept = false;
  const FittedModel model(cases, {{{}, {0}}}, options);
  MCRectMatrix L;
  std::vector<int> columns;
  EXPECT_EQ(model.Test(0).status.Code(), StatusCode::kUserError);
  EXPECT_EQ(model.Output().GeneralEstimableFunction(L, columns).Code(), StatusCode::kUserError);
  EXPECT_EQ(Ask(model, Rows({EffectRow(0, {1})})).status.Code(), StatusCode::kNoColumns);
}

class Stop final : public host::MCStopProcessor {
 public:
  bool IsStopRequested() override { return isRequested; }
  bool isRequested = false;
};

TEST(Tests, AfterACancelHaveStatusOneAndNoContrasts) {
  Stop stop;
  Options options;
  options.stop = &stop;
  const FittedModel model(Survey(400, {3}, 1), kFactorAndCovariate, options);
  ASSERT_TRUE(model.Test(0).status.IsOK());
  stop.isRequested = true;
  const auto effect = model.Test(0);
  EXPECT_TRUE(effect.status.IsError());
  EXPECT_EQ(effect.status.Code(), StatusCode::kCancelled);
  EXPECT_EQ(effect.L.GetNRows(), 0);
  EXPECT_EQ(Ask(model, Rows({EffectRow(0, {1, -1, 0})})).status.Code(), StatusCode::kCancelled);
}

}  // namespace
}  // namespace tavo
