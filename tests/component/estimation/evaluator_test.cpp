// The iteration over a likelihood that is written by hand: no rows, no tabulator, no model.
#include "component/estimation/evaluator.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <utility>
#include <vector>

#include "component/estimation/fit_progress.h"
#include "component/estimation/optimizer.h"

namespace {

using namespace tavo;
using MCCommonMath::DoubleDouble;
using MCCommonMath::ExactProduct;
using MCCommonMath::MCSymMatrix;
using MCCommonMath::PreciseColumn;
using MCCommonMath::PreciseSymMatrix;

/// Successes among trials, at a value of the one covariate.
struct Group {
  double x;
  double trials;
  double successes;
};

/// The binomial likelihood of some groups, with the logit b[0] + b[1] x or, without an intercept, b[0] x.
class BinomialGroups final : public TavoEvaluator {
 public:
  BinomialGroups(std::vector<Group> groups, bool hasIntercept, const std::vector<double>& estimates)
      : fGroups(std::move(groups)), fbIntercept(hasIntercept), fEstimates(estimates) {}

  OrvStatus EvaluateLikelihood(double& logLikelihood) override {
    if (++likelihoodQuestions == failAt) return OrvStatus::Error(StatusCode::kUserError);
    logLikelihood = LogLikelihood();
    return {};
  }
  OrvStatus EvaluateAll(EstimationMethod, bool, TavoEvaluation& sums, MCSymMatrix& information) override {
    ++fullQuestions;
    sums.logLikelihood = LogLikelihood();
    sums.scores.assign(fEstimates.size(), 0.0);
    sums.weight = 0;
    information.SetNRows(static_cast<int>(fEstimates.size()));
    for (const Group& group : fGroups) {
      const double p = ProbabilityAt(group.x);
      const std::vector<double> row = Row(group.x);
      sums.weight += group.trials;
      information.UpdateXX(row, group.trials * p * (1 - p));
      for (std::size_t k = 0; k < row.size(); ++k)
        sums.scores[k] += (group.successes - group.trials * p) * row[k];
    }
    return {};
  }

  OrvStatus EvaluatePrecisely(const PreciseColumn& at, PreciseColumn& scores,
                              PreciseSymMatrix& information) override {
    if (++preciseQuestions == failPreciselyAt) return OrvStatus::Error(StatusCode::kUserError);
    const std::size_t n = at.Size();
    scores.Assign(n);
    information = PreciseSymMatrix(static_cast<int>(n));
    for (const Group& group : fGroups) {
      const std::vector<double> row = Row(group.x);
      DoubleDouble eta;
      for (std::size_t k = 0; k < n; ++k)
        eta += at.Get(k) * DoubleDouble(row[k]);
      const double p = 1 / (1 + std::exp(-eta.Value()));
      for (std::size_t k = 0; k < n; ++k) {
        scores.AddTo(k, ExactProduct(group.successes - group.trials * p, row[k]));
        for (std::size_t l = 0; l <= k; ++l) {
          information.AddTo(static_cast<int>(k), static_cast<int>(l),
                            ExactProduct(row[k], row[l]) * DoubleDouble(group.trials * p * (1 - p)));
        }
      }
    }
    return {};
  }

  TavoFitLayout Layout() const {
    const std::size_t columns = fbIntercept ? 2 : 1;
    return {1, fbIntercept, std::vector<double>(columns, 0.0), std::vector<double>(columns, 1.0),
            std::vector<bool>(columns, false)};
  }

  int likelihoodQuestions = 0;
  int fullQuestions = 0;
  int preciseQuestions = 0;
  int failAt = -1;
  int failPreciselyAt = -1;

 private:
  double LogLikelihood() const {
    double sum = 0;
    for (const Group& group : fGroups) {
      const double p = ProbabilityAt(group.x);
      sum += group.successes * std::log(p) + (group.trials - group.successes) * std::log1p(-p);
    }
    return sum;
  }
  std::vector<double> Row(double x) const {
    return fbIntercept ? std::vector<double>{1, x} : std::vector<double>{x};
  }
  double ProbabilityAt(double x) const {
    const std::vector<double> row = Row(x);
    double eta = 0;
    for (std::size_t k = 0; k < row.size(); ++k)
      eta += row[k] * fEstimates[k];
    return 1 / (1 + std::exp(-eta));
  }

  std::vector<Group> fGroups;
  bool fbIntercept;
  const std::vector<double>& fEstimates;
};

class HandWrittenEvaluator : public testing::Test {
 protected:
  HandWrittenEvaluator() {
    settings.SetParamCriterion(1e-12);
    settings.SetMaxIterations(50);
    settings.SetMaxStepHalving(10);
  }
  TavoOptimizer Optimizer(BinomialGroups& groups) {
    return TavoOptimizer(settings, groups.Layout(), groups, estimates, cancel, &history, 1);
  }

  TavoCompSettings settings;
  OrvCancelInfo cancel;
  OrvIterationData history;
  std::vector<double> estimates;
};

// Two groups and two parameters: the proportions are met exactly, and all is known in closed form. 12 of 20
// at x = 0, 27 of 30 at x = 1.
TEST_F(HandWrittenEvaluator, IsLedToTheClosedFormOfTwoProportions) {
  estimates = {0, 0};
  BinomialGroups groups({{0, 20, 12}, {1, 30, 27}}, true, estimates);
  TavoOptimizer fit = Optimizer(groups);
  ASSERT_TRUE(fit.Estimate().IsOK());
  EXPECT_EQ(fit.GetTerminationState(), TerminationState::kParametersConverged);
  EXPECT_NEAR(estimates[0], std::log(12.0 / 8), 1e-12);
  EXPECT_NEAR(estimates[1], std::log(27.0 / 3) - std::log(12.0 / 8), 1e-12);
  const TavoOptimizer::Summary summary = fit.GetIterationSummary();
  EXPECT_NEAR(summary.initialLogLikelihood, -50 * std::log(2.0), 1e-12);
  EXPECT_NEAR(summary.finalLogLikelihood,
              12 * std::log(0.6) + 8 * std::log(0.4) + 27 * std::log(0.9) + 3 * std::log(0.1), 1e-12);
  EXPECT_EQ(fit.AccumulatedWeight(), 50);
  // The variance of a log-odds is the sum of the reciprocal counts.
  const double first = 1.0 / 12 + 1.0 / 8;
  EXPECT_NEAR(fit.Hessian().GetElem(0, 0), first, 1e-10);
  EXPECT_NEAR(fit.Hessian().GetElem(1, 0), -first, 1e-10);
  EXPECT_NEAR(fit.Hessian().GetElem(1, 1), first + 1.0 / 27 + 1.0 / 3, 1e-10);
}

TEST_F(HandWrittenEvaluator, IsAskedForTheLikelihoodOnceATrialAndForAllOnceAnIteration) {
  estimates = {0, 0};
  BinomialGroups groups({{0, 20, 12}, {1, 30, 27}}, true, estimates);
  TavoOptimizer fit = Optimizer(groups);
  ASSERT_TRUE(fit.Estimate().IsOK());
  int halvings = 0;
  for (const OrvIterationData::Row& row : history.Rows())
    halvings += row.stepHalvings;
  const int iterations = fit.GetIterationSummary().iterations;
  EXPECT_EQ(groups.fullQuestions, iterations + 1);
  EXPECT_EQ(groups.likelihoodQuestions, iterations + halvings);
}

// From b = 4 the first step, to about -23, makes the likelihood worse, and so does half of it.
TEST_F(HandWrittenEvaluator, AStepThatOvershootsIsHalvedUntilTheLikelihoodIsNotWorse) {
  estimates = {4};
  BinomialGroups groups({{1, 40, 20}}, false, estimates);
  TavoOptimizer fit = Optimizer(groups);
  ASSERT_TRUE(fit.Estimate().IsOK());
  ASSERT_GT(history.Rows().size(), 2u);
  EXPECT_EQ(history.Rows()[1].stepHalvings, 2);
  for (std::size_t i = 1; i < history.Rows().size(); ++i)
    EXPECT_LE(history.Rows()[i].minusTwoLogLikelihood, history.Rows()[i - 1].minusTwoLogLikelihood + 1e-12);
  EXPECT_NEAR(estimates[0], 0, 1e-12);
}

TEST_F(HandWrittenEvaluator, AnErrorOfATrialEndsTheFitWithItsStatusAndNoInverse) {
  estimates = {0, 0};
  BinomialGroups groups({{0, 20, 12}, {1, 30, 27}}, true, estimates);
  groups.failAt = 2;
  TavoOptimizer fit = Optimizer(groups);
  EXPECT_EQ(fit.Estimate(), OrvStatus::Error(StatusCode::kUserError));
  EXPECT_EQ(fit.Hessian().GetNRows(), 0);
}

// The variance of an intercept under a column with mean m and a spread of 1 is inflated by 1 + m^2.
TEST_F(HandWrittenEvaluator, IsNotAskedForMoreDigitsWhenFewCancel) {
  estimates = {0, 0};
  BinomialGroups groups({{49, 20, 12}, {51, 30, 27}}, true, estimates);
  TavoOptimizer fit = Optimizer(groups);
  ASSERT_TRUE(fit.Estimate().IsOK());
  EXPECT_EQ(groups.preciseQuestions, 0);
  EXPECT_EQ(fit.TakePreciseFit(), nullptr);
}

// The slope is the difference of two log-odds over 2; the intercept's standard error 1e5 times as large.
TEST_F(HandWrittenEvaluator, NearlyDependentColumnsEndInTwiceThePrecision) {
  const double far = 1e5;
  estimates = {0, 0};
  settings.SetParamCriterion(1e-6);
  BinomialGroups groups({{far - 1, 20, 12}, {far + 1, 30, 27}}, true, estimates);
  TavoOptimizer fit = Optimizer(groups);
  ASSERT_TRUE(fit.Estimate().IsOK());
  const std::unique_ptr<TavoPreciseFit> precise = fit.TakePreciseFit();
  ASSERT_NE(precise, nullptr);
  EXPECT_GE(groups.preciseQuestions, 2) << "at least one step";
  const double slope = (std::log(27.0 / 3) - std::log(12.0 / 8)) / 2;
  EXPECT_NEAR(precise->estimates.Get(1).Value(), slope, 1e-15 * slope);
  EXPECT_EQ(estimates[1], precise->estimates.Get(1).Value());
  const double intercept = std::log(12.0 / 8) - (far - 1) * slope;
  EXPECT_NEAR(estimates[0] / intercept, 1, 1e-14);
  // With the information L L' the variance of the slope is the square of the last element of inverse(L).
  const double variance = (1.0 / 12 + 1.0 / 8 + 1.0 / 27 + 1.0 / 3) / 4;
  EXPECT_NEAR(std::pow(precise->factor.Get(1, 1).Value(), -2) / variance, 1, 1e-13);
}

TEST_F(HandWrittenEvaluator, AFitThatCannotBeRefinedStaysAsItWas) {
  estimates = {0, 0};
  BinomialGroups groups({{1e5 - 1, 20, 12}, {1e5 + 1, 30, 27}}, true, estimates);
  groups.failPreciselyAt = 1;
  TavoOptimizer fit = Optimizer(groups);
  EXPECT_TRUE(fit.Estimate().IsOK());
  EXPECT_EQ(groups.preciseQuestions, 1);
  EXPECT_EQ(fit.TakePreciseFit(), nullptr);
  EXPECT_EQ(fit.Hessian().GetNRows(), 2);
  EXPECT_NEAR(estimates[1], (std::log(27.0 / 3) - std::log(12.0 / 8)) / 2, 1e-6);
}

}  // namespace
