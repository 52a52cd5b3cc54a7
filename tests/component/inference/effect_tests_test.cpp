// The hypotheses of effects against what theory says of them, and tests that must not depend on how a design
// is written down.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "effect_bench.h"

namespace {

using effect_bench::Case;
using effect_bench::Effect;
using effect_bench::EffectTest;
using effect_bench::FittedModel;
using effect_bench::Options;
using effect_bench::Real;
using effect_bench::Rows;
using effect_bench::Survey;
using MCCommonMath::IsMissing;
using MCCommonMath::MCRectMatrix;
using Values = std::vector<double>;
namespace StatusCode = tavo::StatusCode;

constexpr int kWholeModel = tavo::TavoInference::kWholeModel;
constexpr int kIntercept = tavo::TavoInference::kIntercept;

// ---- theory ----

bool Contains(const Effect& outer, const Effect& inner) {
  const auto has = [&outer](int f) {
    return std::find(outer.factors.begin(), outer.factors.end(), f) != outer.factors.end();
  };
  return outer.covariates == inner.covariates && outer.factors.size() > inner.factors.size() &&
         std::all_of(inner.factors.begin(), inner.factors.end(), has);
}

Rows ToRows(const MCRectMatrix& matrix, int columns) {
  Rows rows;
  for (int i = 0; i < matrix.GetNRows(); ++i) {
    std::vector<Real> row;
    for (int j = 0; j < columns; ++j)
      row.push_back(matrix.GetElem(i, j));
    rows.push_back(row);
  }
  return rows;
}

Rows Transposed(const Rows& a) {
  Rows turned(a.front().size(), std::vector<Real>(a.size()));
  for (std::size_t i = 0; i < a.size(); ++i) {
    for (std::size_t j = 0; j < a.front().size(); ++j)
      turned[j][i] = a[i][j];
  }
  return turned;
}

/// Which parameters belong to the effect, to effects that contain it, and to all others.
struct Division {
  std::vector<bool> own, above, others, othersAndOwn;

  Division(const FittedModel& run, const std::vector<Effect>& effects, int effect) {
    const Effect intercept;
    const Effect& tested = effect < 0 ? intercept : effects[static_cast<std::size_t>(effect)];
    for (const tavo::OrvRegrParameter& parameter : run.Model().BasicParameters()) {
      const int index = parameter.effectIndex;
      const bool isOwn = index == (effect < 0 ? -1 : effect);
      const bool isAbove = !isOwn && index >= 0 && Contains(effects[static_cast<std::size_t>(index)], tested);
      own.push_back(isOwn);
      above.push_back(isAbove);
      others.push_back(!isOwn && !isAbove);
      othersAndOwn.push_back(!isAbove);
    }
  }
};

/// The four properties that together determine the hypothesis of type III.
void ExpectTypeThree(const FittedModel& run, const std::vector<Case>& cases,
                     const std::vector<Effect>& effects, int effect, const std::string& what) {
  constexpr Real kZero = 1e-9L;
  const std::size_t p = run.Model().BasicParameters().size();
  const Division division(run, effects, effect);
  Rows space = effect_bench::DesignRows(run, cases);
  effect_bench::Reduce(space);  // a basis of the estimable functions
  const EffectTest test = run.Test(effect);
  const Rows L = ToRows(test.L, static_cast<int>(p));

  const std::size_t before = effect_bench::Rank(effect_bench::Columns(space, division.others));
  const std::size_t with = effect_bench::Rank(effect_bench::Columns(space, division.othersAndOwn));
  ASSERT_EQ(L.size(), with - before) << what << ": the rank that the effect adds to those not above it";
  ASSERT_EQ(test.columns.size(), L.size()) << what;
  if (L.empty()) {
    EXPECT_EQ(test.status.Code(), StatusCode::kNothingEstimable) << what;
    return;
  }
  ASSERT_TRUE(test.status.IsOK()) << what;
  EXPECT_EQ(effect_bench::Rank(L), L.size()) << what << ": independent rows";
  const Rows null = effect_bench::NullSpace(space, p);
  // Functions on the effects above alone: combinations of the basis that vanish on all other parameters.
  Rows aboveAlone;
  const Rows combinations =
      effect_bench::NullSpace(Transposed(effect_bench::Columns(space, division.othersAndOwn)), space.size());
  for (const auto& y : combinations) {
    std::vector<Real> function(p, 0);
    for (std::size_t r = 0; r < space.size(); ++r) {
      for (std::size_t j = 0; j < p; ++j)
        function[j] += y[r] * space[r][j];
    }
    aboveAlone.push_back(function);
  }
  for (const auto& row : L) {
    for (const auto& v : null)
      EXPECT_LT(std::abs(effect_bench::Dot(row, v)), kZero) << what << ": estimable";
    for (std::size_t j = 0; j < p; ++j) {
      EXPECT_TRUE(!division.others[j] || row[j] == 0) << what << ": nothing of effects that don't contain it";
    }
    for (const auto& function : aboveAlone)
      EXPECT_LT(std::abs(effect_bench::Dot(row, function)), kZero) << what << ": orthogonal to those above";
  }
  for (const int number : test.columns)
    EXPECT_TRUE(division.own[static_cast<std::size_t>(number - 1)]) << what << ": labels of its own";
}

bool NoHoles(const std::vector<int>&) {
  return true;
}
bool TwoHoles(const std::vector<int>& f) {
  return !(f[0] == 2 && f[1] == 3) && !(f[0] == 3 && f[1] == 1);
}
bool Disconnected(const std::vector<int>& f) {
  return (f[0] == 3) == (f[1] == 3);
}
bool NestedLevels(const std::vector<int>& f) {
  return (f[1] + f[0]) % 3 != 0;
}

struct Design {
  const char* name;
  std::vector<int> levels;
  int covariates;
  std::vector<Effect> effects;
  bool (*isFilled)(const std::vector<int>&) = NoHoles;
  bool hasIntercept = true;
};

const Design kDesigns[] = {
    {"one way", {4}, 0, {{{0}, {}}}},
    {"two way", {3, 2}, 0, {{{0}, {}}, {{1}, {}}, {{0, 1}, {}}}},
    {"two way, crossing first", {3, 2}, 0, {{{0, 1}, {}}, {{1}, {}}, {{0}, {}}}},
    {"three way",
     {2, 3, 2},
     0,
     {{{0}, {}}, {{1}, {}}, {{2}, {}}, {{0, 1}, {}}, {{0, 2}, {}}, {{1, 2}, {}}, {{0, 1, 2}, {}}}},
    {"main effects with empty cells", {3, 3}, 0, {{{0}, {}}, {{1}, {}}}, TwoHoles},
    {"crossing with empty cells", {3, 3}, 1, {{{0}, {}}, {{1}, {}}, {{0, 1}, {}}, {{}, {0}}}, TwoHoles},
    {"crossing with empty cells, crossing first", {3, 3}, 0, {{{0, 1}, {}}, {{0}, {}}, {{1}, {}}}, TwoHoles},
    {"disconnected cells", {3, 3}, 0, {{{0}, {}}, {{1}, {}}}, Disconnected},
    {"disconnected cells with crossing", {3, 3}, 0, {{{0}, {}}, {{1}, {}}, {{0, 1}, {}}}, Disconnected},
    {"nested", {3, 3}, 1, {{{0}, {}}, {{0, 1}, {}, true}, {{}, {0}}}, NestedLevels},
    {"nested without its outer effect", {3, 3}, 0, {{{0, 1}, {}, true}}, NestedLevels},
    {"covariate and slopes", {3, 2}, 2, {{{0}, {}}, {{}, {0}}, {{0}, {0}}, {{}, {1}}, {{1}, {}}}},
    {"slopes alone", {3}, 1, {{{0}, {}}, {{0}, {0}}}},
    {"slopes crossed twice",
     {2, 2},
     1,
     {{{0}, {}}, {{1}, {}}, {{0, 1}, {}}, {{}, {0}}, {{0}, {0}}, {{1}, {0}}, {{0, 1}, {0}}}},
    {"powers and products", {2}, 2, {{{}, {0}}, {{}, {0, 0}}, {{}, {0, 1}}, {{0}, {0, 1}}, {{0}, {}}}},
    {"no intercept", {3, 2}, 1, {{{0}, {}}, {{1}, {}}, {{}, {0}}}, NoHoles, false},
    {"no intercept, crossing", {3, 2}, 1, {{{0}, {}}, {{0, 1}, {}}, {{0}, {0}}, {{}, {0}}}, NoHoles, false},
    {"no intercept, empty cells", {3, 3}, 0, {{{1}, {}}, {{0}, {}}, {{0, 1}, {}}}, TwoHoles, false},
    {"covariates alone", {2}, 2, {{{}, {0}}, {{}, {1}}}},
};

TEST(EffectContrasts, AreTheHypothesesOfTypeThree) {
  for (const Design& design : kDesigns) {
    const auto cases = Survey(400, design.levels, design.covariates, 2, 7, design.isFilled);
    Options options;
    options.hasIntercept = design.hasIntercept;
    const FittedModel run(cases, design.effects, options);
    ASSERT_TRUE(run.IsBuilt()) << design.name;
    for (int effect = design.hasIntercept ? -1 : 0; effect < static_cast<int>(design.effects.size());
         ++effect) {
      ExpectTypeThree(run, cases, design.effects, effect,
                      design.name + std::string(", effect ") + std::to_string(effect));
    }
  }
}

TEST(EffectContrasts, OfTheWholeModelLeaveOutTheInterceptAlone) {
  for (const Design& design : kDesigns) {
    const auto cases = Survey(400, design.levels, design.covariates, 2, 7, design.isFilled);
    Options options;
    options.hasIntercept = design.hasIntercept;
    const FittedModel run(cases, design.effects, options);
    const EffectTest test = run.Test(kWholeModel);
    ASSERT_TRUE(test.status.IsOK()) << design.name;
    const int kept = run.Model().BasicNonRedundantCount() - (design.hasIntercept ? 1 : 0);
    EXPECT_EQ(test.L.GetNRows(), kept) << design.name;
    EXPECT_EQ(test.overall.df1, kept) << design.name;
    std::vector<int> expected;
    for (int k = design.hasIntercept ? 1 : 0; k < run.Model().BasicParameterCount(); ++k) {
      if (run.Model().BasicBits().IsIn(k)) expected.push_back(k + 1);
    }
    EXPECT_EQ(test.columns, expected) << design.name;
    const std::size_t p = run.Model().BasicParameters().size();
    const Rows null = effect_bench::NullSpace(effect_bench::DesignRows(run, cases), p);
    for (const auto& row : ToRows(test.L, static_cast<int>(p))) {
      for (const auto& v : null)
        EXPECT_LT(std::abs(effect_bench::Dot(row, v)), 1e-8) << design.name;
    }
  }
}

// ---- by hand ----

void ExpectRow(const EffectTest& test, int row, const Values& expected) {
  ASSERT_LT(row, test.L.GetNRows());
  for (std::size_t j = 0; j < expected.size(); ++j)
    EXPECT_NEAR(test.L.GetElem(row, static_cast<int>(j)), expected[j], 1e-13)
        << "row " << row << " column " << j;
}

// Parameters: 1, a1 a2 a3, b1 b2, a1b1 a1b2 a2b1 a2b2 a3b1 a3b2.
TEST(EffectContrasts, WithAllCellsFilledAreDifferencesOfUnweightedMarginalMeans) {
  const FittedModel run(Survey(300, {3, 2}, 0), {{{0}, {}}, {{1}, {}}, {{0, 1}, {}}});
  const EffectTest a = run.Test(0);
  ASSERT_EQ(a.L.GetNRows(), 2);
  ExpectRow(a, 0, {0, 1, 0, -1, 0, 0, 0.5, 0.5, 0, 0, -0.5, -0.5});
  ExpectRow(a, 1, {0, 0, 1, -1, 0, 0, 0, 0, 0.5, 0.5, -0.5, -0.5});
  EXPECT_EQ(a.columns, (std::vector<int>{2, 3}));
  const EffectTest b = run.Test(1);
  const double third = 1.0 / 3;
  ExpectRow(b, 0, {0, 0, 0, 0, 1, -1, third, -third, third, -third, third, -third});
  const EffectTest ab = run.Test(2);
  ExpectRow(ab, 0, {0, 0, 0, 0, 0, 0, 1, -1, 0, 0, -1, 1});
  ExpectRow(ab, 1, {0, 0, 0, 0, 0, 0, 0, 0, 1, -1, -1, 1});
  EXPECT_EQ(ab.columns, (std::vector<int>{7, 9}));
  const EffectTest intercept = run.Test(kIntercept);
  const double sixth = 1.0 / 6;
  ExpectRow(intercept, 0, {1, third, third, third, 0.5, 0.5, sixth, sixth, sixth, sixth, sixth, sixth});
  EXPECT_EQ(intercept.columns, (std::vector<int>{1}));
  for (const EffectTest* test : {&a, &ab}) {  // no rounding where there is nothing
    for (const double element : test->L.AsVectorConst())
      EXPECT_TRUE(element == 0 || std::abs(element) > 0.1);
  }
}

// With slopes by level the hypothesis of the covariate is that of the unweighted mean slope.
TEST(EffectContrasts, OfACovariateBesideItsSlopesByLevelAreThoseOfTheMeanSlope) {
  const FittedModel run(Survey(300, {3}, 1), {{{0}, {}}, {{}, {0}}, {{0}, {0}}});
  const double third = 1.0 / 3;
  ExpectRow(run.Test(1), 0, {0, 0, 0, 0, 1, third, third, third});
  ExpectRow(run.Test(2), 0, {0, 0, 0, 0, 0, 1, 0, -1});
  ExpectRow(run.Test(0), 0, {0, 1, 0, -1, 0, 0, 0, 0});
}

TEST(EffectContrasts, OfSeveralLogitsRepeatThemselvesAlongTheDiagonal) {
  Options options;
  options.categories = 4;
  const FittedModel run(Survey(500, {3}, 1, 4), {{{0}, {}}, {{}, {0}}}, options);
  const EffectTest test = run.Test(0);
  ASSERT_TRUE(test.status.IsOK());
  const int p = run.Model().BasicParameterCount();
  ASSERT_EQ(p, 5);
  ASSERT_EQ(test.L.GetNRows(), 6);
  ASSERT_EQ(test.L.GetNCols(), 15);
  EXPECT_EQ(test.columns, (std::vector<int>{2, 3})) << "of one logit";
  const double contrasts[2][5] = {{0, 1, 0, -1, 0}, {0, 0, 1, -1, 0}};
  for (int i = 0; i < 6; ++i) {
    for (int j = 0; j < 15; ++j)
      EXPECT_EQ(test.L.GetElem(i, j), i / 2 == j / 5 ? contrasts[i % 2][j % 5] : 0) << i << " " << j;
  }
  EXPECT_EQ(test.overall.df1, 6);
}

TEST(GeneralEstimableFunction, HasOneRowPerNonRedundantParameterAndTheColumnsOfOneLogit) {
  Options options;
  options.categories = 3;
  const FittedModel run(Survey(400, {3, 2}, 1, 3), {{{0}, {}}, {{1}, {}}, {{}, {0}}}, options);
  MCRectMatrix L;
  std::vector<int> columns;
  ASSERT_TRUE(run.Output().GeneralEstimableFunction(L, columns).IsOK());
  EXPECT_EQ(columns, (std::vector<int>{1, 2, 3, 5, 7}));
  const Values expected[] = {{1, 0, 0, 1, 0, 1, 0},
                             {0, 1, 0, -1, 0, 0, 0},
                             {0, 0, 1, -1, 0, 0, 0},
                             {0, 0, 0, 0, 1, -1, 0},
                             {0, 0, 0, 0, 0, 0, 1}};
  ASSERT_EQ(L.GetNRows(), 5);
  for (int i = 0; i < 5; ++i) {
    Values row;
    L.GetRow(i, row);
    EXPECT_EQ(row, expected[i]) << i;
  }
}

// ---- what can't be told apart ----

TEST(EffectTests, OfTwoCopiesOfAFactorHaveNoTestableRow) {
  auto cases = Survey(300, {3}, 1);
  for (Case& c : cases)
    c.factors.push_back(4 - c.factors[0]);
  const FittedModel run(cases, {{{0}, {}}, {{1}, {}}, {{}, {0}}});
  for (const int effect : {0, 1}) {
    const EffectTest test = run.Test(effect);
    EXPECT_EQ(test.status.Code(), StatusCode::kNothingEstimable);
    EXPECT_EQ(test.L.GetNRows(), 0);
    EXPECT_EQ(test.overall.df1, 0);
    EXPECT_TRUE(IsMissing(test.overall.wald));
  }
  EXPECT_TRUE(run.Test(2).status.IsOK());
}

TEST(EffectTests, OfAnInterceptThatCovariatesHoldHaveNoTestableRow) {
  auto cases = Survey(300, {2}, 1);
  for (Case& c : cases)
    c.covariates.push_back(2 * c.covariates[0] + 3);  // 3 = x2 - 2 x1
  const FittedModel both(cases, {{{0}, {}}, {{}, {0}}, {{}, {1}}});
  EXPECT_EQ(both.Test(kIntercept).status.Code(), StatusCode::kNothingEstimable);
  EXPECT_EQ(both.Test(1).status.Code(), StatusCode::kNothingEstimable);
  EXPECT_TRUE(both.Test(0).status.IsOK());

  for (Case& c : cases)
    c.covariates[1] = 2 * c.covariates[0];  // proportional: the intercept is another matter
  EXPECT_TRUE(FittedModel(cases, {{{0}, {}}, {{}, {0}}, {{}, {1}}}).Test(kIntercept).status.IsOK());
  for (Case& c : cases)
    c.covariates[1] = 0.1;  // a constant is a multiple of the intercept's column
  EXPECT_EQ(FittedModel(cases, {{{0}, {}}, {{}, {1}}}).Test(kIntercept).status.Code(),
            StatusCode::kNothingEstimable);
}

// The product of an indicator and a covariate is the covariate's slope in one level. The model centres the
// product, which has no factor, but not the slopes; on the scale of the data they are one column all the
// same, and hold nothing of the intercept.
TEST(EffectTests, OfAnInterceptStandBesideACentredAndAnUncentredCopyOfAColumn) {
  auto cases = Survey(300, {2}, 1);
  for (Case& c : cases) {
    c.covariates[0] -= 12;
    c.covariates.push_back(c.factors[0] == 1 ? 1 : 0);
  }
  const std::vector<Effect> effects = {{{}, {0, 1}}, {{0}, {0}}};
  const FittedModel run(cases, effects);
  const EffectTest intercept = run.Test(kIntercept);
  ASSERT_TRUE(intercept.status.IsOK());
  ASSERT_EQ(intercept.L.GetNRows(), 1);
  ExpectRow(intercept, 0, {1, 0, 0, 0});
  const tavo::OrvParamStats& row = run.Output().ParamStats()[0];
  EXPECT_NEAR(intercept.overall.wald, row.t * row.t, 1e-10 * row.t * row.t);
  for (const int effect : {kIntercept, 0, 1})
    ExpectTypeThree(run, cases, effects, effect, "effect " + std::to_string(effect));
}

// Beside a factor without an intercept the two covariates hold the constant, so the levels can only be
// compared. The covariates are so nearly proportional that rounding decides what a search by their
// cross-products leaves of the last level.
TEST(EffectTests, OfAFactorHaveNoRowThatNearlyProportionalCovariatesHold) {
  const std::vector<Effect> effects = {{{0}, {}}, {{}, {0}}, {{}, {1}}};
  Options options;
  options.hasIntercept = false;
  for (int levels = 2; levels <= 6; ++levels) {
    for (std::int64_t seed = 1; seed <= 8; ++seed) {
      effect_bench::Dice dice(seed);
      auto cases = Survey(150, {levels}, 1, 2, seed);
      for (Case& c : cases) {
        c.covariates[0] = std::nearbyint(1000 * (80 * dice.Uniform() - 30)) / 1000;
        c.covariates.push_back(2 * c.covariates[0] + 1);
      }
      const std::string what = std::to_string(levels) + " levels, seed " + std::to_string(seed);
      const FittedModel run(cases, effects, options);
      ASSERT_TRUE(run.IsBuilt()) << what;
      const EffectTest factor = run.Test(0);
      ASSERT_EQ(factor.L.GetNRows(), levels - 1) << what;
      for (int i = 0; i < levels - 1; ++i) {
        Values expected(static_cast<std::size_t>(levels) + 2, 0.0);
        expected[static_cast<std::size_t>(i)] = 1;
        expected[static_cast<std::size_t>(levels) - 1] = -1;
        ExpectRow(factor, i, expected);
      }
      for (const int effect : {1, 2})
        EXPECT_EQ(run.Test(effect).status.Code(), StatusCode::kNothingEstimable) << what;
    }
  }
}

// A weight in kilograms, and in pounds with the digits that a file keeps of it: what they differ by is
// nothing that a factor's levels could be mistaken for.
TEST(EffectTests, OfAFactorKeepTheirRowsBesideACovariateInTwoRoundedUnits) {
  auto cases = Survey(300, {3}, 1);
  for (Case& c : cases) {
    c.covariates[0] = std::nearbyint(1e5 * (60 + c.covariates[0])) / 1e5;
    c.covariates.push_back(std::nearbyint(1e5 * 2.20462 * c.covariates[0]) / 1e5);
  }
  const FittedModel run(cases, {{{0}, {}}, {{}, {0}}, {{}, {1}}});
  const EffectTest factor = run.Test(0);
  ASSERT_TRUE(factor.status.IsOK());
  ASSERT_EQ(factor.L.GetNRows(), 2);
  EXPECT_EQ(factor.overall.df1, 2);
  const FittedModel kilograms(cases, {{{0}, {}}, {{}, {0}}});
  EXPECT_NEAR(factor.overall.wald, kilograms.Test(0).overall.wald, 1e-6 * factor.overall.wald);
}

TEST(EffectTests, OfAnInterceptOnlyModelHaveNoRowForTheModelAndOneForTheIntercept) {
  const FittedModel run(Survey(200, {2}, 0), {});
  const EffectTest model = run.Test(kWholeModel);
  EXPECT_EQ(model.status.Code(), StatusCode::kNothingEstimable);
  EXPECT_EQ(model.overall.df1, 0);
  EXPECT_TRUE(IsMissing(model.overall.significance));
  const EffectTest intercept = run.Test(kIntercept);
  ASSERT_TRUE(intercept.status.IsOK());
  const tavo::OrvParamStats& row = run.Output().ParamStats()[0];
  EXPECT_NEAR(intercept.overall.wald, row.t * row.t, 1e-12 * row.t * row.t);
  EXPECT_NEAR(intercept.overall.significance, row.significance, 1e-13);
}

TEST(EffectTests, KnowTheirIndices) {
  const auto cases = Survey(200, {3}, 1);
  const FittedModel with(cases, {{{0}, {}}, {{}, {0}}});
  for (const int bad : {-3, 2, 3, 100})
    EXPECT_EQ(with.Test(bad).status.Code(), StatusCode::kInvalidEffect) << bad;
  Options options;
  options.hasIntercept = false;
  const FittedModel without(cases, {{{0}, {}}, {{}, {0}}}, options);
  for (const int bad : {-3, -1, 2})
    EXPECT_EQ(without.Test(bad).status.Code(), StatusCode::kInvalidEffect) << bad;
  for (const int good : {-2, 0, 1})
    EXPECT_TRUE(without.Test(good).status.IsOK()) << good;
}

TEST(EffectTests, StopAtAWarningThatAllVariancesAreZero) {
  auto cases = Survey(200, {2}, 0);
  for (Case& c : cases)
    c.stratum = c.cluster = 1;  // one unit: no variance between units
  const FittedModel run(cases, {{{0}, {}}});
  ASSERT_TRUE(run.IsBuilt());
  const EffectTest test = run.Test(0);
  EXPECT_EQ(test.status.Code(), StatusCode::kVarianceZero);
  EXPECT_TRUE(test.status.IsWarning());
  EXPECT_EQ(test.L.GetNRows(), 0);
  EXPECT_TRUE(IsMissing(test.overall.df1));
}

TEST(EffectTests, OfTheAdjustedTypesNeedTheSRSCovariance) {
  Options options;
  options.needsSRS = false;
  options.type = tavo::TestType::AdjustedWaldF;
  const EffectTest test = FittedModel(Survey(200, {2}, 0), {{{0}, {}}}, options).Test(0);
  EXPECT_EQ(test.status.Code(), StatusCode::kNoDesignCovariance);
  EXPECT_EQ(test.L.GetNRows(), 0);
}

// ---- the same test however the design is written ----

const std::vector<Effect> kTwoWay = {{{0}, {}}, {{1}, {}}, {{0, 1}, {}}, {{}, {0}}, {{0}, {0}}};

void ExpectSameTests(const FittedModel& a, const FittedModel& b, const std::vector<int>& effectsOfA,
                     const std::vector<int>& effectsOfB, const std::string& what, double tolerance = 1e-8) {
  for (std::size_t k = 0; k < effectsOfA.size(); ++k) {
    const EffectTest first = a.Test(effectsOfA[k]);
    const EffectTest second = b.Test(effectsOfB[k]);
    ASSERT_EQ(first.status.Code(), second.status.Code()) << what << ", effect " << effectsOfA[k];
    if (!first.status.IsOK()) continue;
    EXPECT_NEAR(first.overall.df1, second.overall.df1, 1e-7) << what << ", effect " << effectsOfA[k];
    EXPECT_NEAR(first.overall.wald, second.overall.wald, tolerance * first.overall.wald)
        << what << ", effect " << effectsOfA[k];
    EXPECT_NEAR(first.overall.significance, second.overall.significance,
                tolerance * first.overall.significance)
        << what << ", effect " << effectsOfA[k];
  }
}

const std::vector<int> kAllOfTwoWay = {-2, -1, 0, 1, 2, 3, 4};

class Invariance : public ::testing::TestWithParam<bool (*)(const std::vector<int>&)> {
 protected:
  std::vector<Case> Cases(std::vector<int> levels = {3, 3}) const {
    return Survey(600, levels, 1, 2, 5, GetParam());
  }
};
INSTANTIATE_TEST_SUITE_P(Cells, Invariance, ::testing::Values(NoHoles, TwoHoles));

TEST_P(Invariance, OfTheTestsWhenLevelsAreReorderedSoThatAnotherLevelIsRedundant) {
  const auto cases = Cases();
  for (const tavo::TestType type : {tavo::TestType::WaldF, tavo::TestType::AdjustedWaldF}) {
    Options options;
    options.type = type;
    const FittedModel plain(cases, kTwoWay, options);
    for (const std::vector<int>& order : {std::vector<int>{3, 2, 1}, {2, 3, 1}, {1, 3, 2}}) {
      auto moved = cases;
      for (Case& c : moved) {
        c.factors[0] = order[static_cast<std::size_t>(c.factors[0] - 1)];
        c.factors[1] = 4 - c.factors[1];
      }
      ExpectSameTests(plain, FittedModel(moved, kTwoWay, options), kAllOfTwoWay, kAllOfTwoWay,
                      "reordered levels");
    }
  }
}

TEST_P(Invariance, OfTheTestsWhenLevelsAreRelabelledWithGaps) {
  const auto cases = Cases();
  auto relabelled = cases;
  for (Case& c : relabelled)
    c.factors[0] = 3 * c.factors[0] - 1;  // 2, 5, 8
  ExpectSameTests(FittedModel(cases, kTwoWay), FittedModel(relabelled, kTwoWay), kAllOfTwoWay, kAllOfTwoWay,
                  "gaps");
}

TEST_P(Invariance, OfTheTestsWhenEffectsAreListedInAnotherOrder) {
  const auto cases = Cases();
  const FittedModel plain(cases, kTwoWay);
  const FittedModel reversed(cases, {kTwoWay[4], kTwoWay[3], kTwoWay[2], kTwoWay[1], kTwoWay[0]});
  ExpectSameTests(plain, reversed, kAllOfTwoWay, {-2, -1, 4, 3, 2, 1, 0}, "reversed");
  const FittedModel mixed(cases, {kTwoWay[2], kTwoWay[4], kTwoWay[0], kTwoWay[3], kTwoWay[1]});
  ExpectSameTests(plain, mixed, kAllOfTwoWay, {-2, -1, 2, 4, 0, 3, 1}, "mixed");
}

TEST_P(Invariance, OfTheTestsWhenACovariateHasOtherUnits) {
  const auto cases = Cases();
  const FittedModel plain(cases, kTwoWay);
  for (const double factor : {1e-12, 1e-6, -1.0, 1e9, 1e15}) {
    auto scaled = cases;
    for (Case& c : scaled)
      c.covariates[0] *= factor;
    ExpectSameTests(plain, FittedModel(scaled, kTwoWay), kAllOfTwoWay, kAllOfTwoWay, std::to_string(factor));
  }
}

TEST_P(Invariance, OfTheTestsButThoseAtZeroWhenACovariateIsShifted) {
  const auto cases = Cases();
  auto shifted = cases;
  for (Case& c : shifted)
    c.covariates[0] += 100;
  const std::vector<int> effects = {-2, 3, 4};  // a factor beside slopes is tested where the covariate is 0
  ExpectSameTests(FittedModel(cases, kTwoWay), FittedModel(shifted, kTwoWay), effects, effects, "shifted",
                  1e-6);
}

TEST_P(Invariance, OfTheContrastsWhenCellsHaveOtherSizes) {
  const auto cases = Cases();
  auto heavy = cases;
  for (Case& c : heavy)
    c.weight *= c.factors[0] == 1 && c.factors[1] == 1 ? 50 : 1;
  const FittedModel plain(cases, kTwoWay);
  const FittedModel weighted(heavy, kTwoWay);
  for (const int effect : kAllOfTwoWay) {
    const EffectTest a = plain.Test(effect);
    const EffectTest b = weighted.Test(effect);
    ASSERT_EQ(a.L.GetNRows(), b.L.GetNRows());
    for (int i = 0; i < a.L.GetNRows(); ++i) {
      for (int j = 0; j < a.L.GetNCols(); ++j)
        EXPECT_NEAR(a.L.GetElem(i, j), b.L.GetElem(i, j), 1e-11) << effect << " " << i << " " << j;
    }
  }
}

// Effect coding: +1, -1 for the last level. Its columns of full rank are covariates; each main effect of the
// factors is then the hypothesis that its own columns have no slope.
TEST(EffectTests, AreThoseOfEffectCodingWhenAllCellsAreFilled) {
  const auto cases = Survey(500, {3, 2}, 1);
  auto coded = cases;
  for (Case& c : coded) {
    const double a1 = c.factors[0] == 3 ? -1 : (c.factors[0] == 1 ? 1 : 0);
    const double a2 = c.factors[0] == 3 ? -1 : (c.factors[0] == 2 ? 1 : 0);
    const double b1 = c.factors[1] == 2 ? -1 : 1;
    c.covariates.insert(c.covariates.end(), {a1, a2, b1, a1 * b1, a2 * b1});
  }
  for (const tavo::TestType type : {tavo::TestType::WaldF, tavo::TestType::AdjustedWaldF,
                                    tavo::TestType::WaldChiSquare, tavo::TestType::AdjustedWaldChiSquare}) {
    Options options;
    options.type = type;
    const FittedModel factors(cases, {{{0}, {}}, {{1}, {}}, {{0, 1}, {}}, {{}, {0}}}, options);
    const FittedModel columns(coded, {{{}, {0}}, {{}, {1}}, {{}, {2}}, {{}, {3}}, {{}, {4}}, {{}, {5}}},
                              options);
    const auto slopes = [&](const std::vector<int>& effects) {
      tavo::OrvCustomTest test;
      for (const int effect : effects) {
        tavo::TavoMatrixRow row(tavo::MatrixRowType::kEffectList, 6);
        row.AddEffect(effect, {1});
        test.AddRow(row);
      }
      MCRectMatrix L;
      std::vector<tavo::OrvTestStats> rows;
      tavo::OrvTestStats overall;
      EXPECT_TRUE(
          columns.Output()
              .TestCustom(test, type, tavo::PAdjustMethod::LeastSignificanceDifference, L, rows, overall)
              .IsOK());
      return overall.wald;
    };
    const std::vector<std::vector<int>> columnsOf = {{1, 2}, {3}, {4, 5}, {0}};
    for (int effect = 0; effect < 4; ++effect) {
      const double expected = slopes(columnsOf[static_cast<std::size_t>(effect)]);
      EXPECT_NEAR(factors.Test(effect).overall.wald, expected, 1e-8 * expected) << effect;
    }
    tavo::OrvCustomTest intercept;
    intercept.SetK({0});
    MCRectMatrix L;
    std::vector<tavo::OrvTestStats> rows;
    tavo::OrvTestStats overall;
    ASSERT_TRUE(
        columns.Output().TestCustom(intercept, type, tavo::PAdjustMethod::Sidak, L, rows, overall).IsOK());
    EXPECT_NEAR(factors.Test(kIntercept).overall.wald, overall.wald, 1e-8 * overall.wald);
  }
}

TEST(EffectTests, OfACrossedAndOfANestedFactorWithoutItsOwnEffectAreTheSame) {
  const auto cases = Survey(500, {3, 3}, 0, 2, 5, NestedLevels);
  const FittedModel nested(cases, {{{0}, {}}, {{0, 1}, {}, true}});
  const FittedModel crossed(cases, {{{0}, {}}, {{0, 1}, {}}});
  ExpectSameTests(nested, crossed, {-2, -1, 0, 1}, {-2, -1, 0, 1}, "nested");
}

TEST(EffectTests, OfACovariateFarFromZeroBesideItsSlopesKeepExactContrasts) {
  auto cases = Survey(500, {3, 2}, 1);
  for (Case& c : cases)
    c.covariates[0] += 2000;  // years
  const FittedModel run(cases, {{{0}, {}}, {{1}, {}}, {{}, {0}}, {{0}, {0}}});
  MCRectMatrix L;
  std::vector<int> columns;
  ASSERT_TRUE(run.Output().GeneralEstimableFunction(L, columns).IsOK());
  for (const double element : L.AsVectorConst())
    EXPECT_EQ(element, std::nearbyint(element));
  tavo::OrvCustomTest test;
  tavo::TavoMatrixRow row(tavo::MatrixRowType::kEffectList, 4);
  row.AddEffect(3, {1, -1, 0});
  test.AddRow(row);
  std::vector<tavo::OrvTestStats> rows;
  tavo::OrvTestStats overall;
  EXPECT_TRUE(run.Output()
                  .TestCustom(test, tavo::TestType::WaldF, tavo::PAdjustMethod::Sidak, L, rows, overall)
                  .IsOK());
}

TEST(EffectTests, OfCovariatesFarFromZeroBesideTheirSlopesKeepTheirDigits) {
  // Neither column is centred then, and both are nearly collinear with the intercept: a calendar year in a
  // survey of a few years lies 2000 standard deviations from 0.
  auto cases = Survey(600, {3, 3}, 1, 2, 5, NoHoles);
  for (Case& c : cases)  // so that the shifts below are exact
    c.covariates[0] = std::ldexp(std::nearbyint(std::ldexp(c.covariates[0], 24)), -24);
  const FittedModel plain(cases, kTwoWay);
  const std::vector<int> effects = {-2, 3, 4};
  for (const auto& [distance, tolerance] :
       {std::pair(100, 1e-9), std::pair(2000, 1e-7), std::pair(20000, 1e-4)}) {
    auto shifted = cases;
    for (Case& c : shifted)
      c.covariates[0] += distance;
    ExpectSameTests(plain, FittedModel(shifted, kTwoWay), effects, effects, std::to_string(distance),
                    tolerance);
  }
}

}  // namespace
