#include "component/estimation/hypothesis_rows.h"

#include <gtest/gtest.h>

#include <vector>

#include "model_parts.h"

namespace {

using MCCommonMath::MCRectMatrix;
using tavo::MatrixRowType;
using tavo::OrvStatus;
using tavo::TavoMatrixRow;
using tavo_test::DesignBench;
using Values = std::vector<double>;
namespace StatusCode = tavo::StatusCode;

TavoMatrixRow EffectRow(int effect, const Values& values) {
  TavoMatrixRow row(MatrixRowType::kEffectList, 9);
  row.AddEffect(effect, values);
  return row;
}

TavoMatrixRow InterceptRow(double value) {
  TavoMatrixRow row(MatrixRowType::kValueEffectList, 9);
  row.SetFirstValue(value);
  return row;
}

TavoMatrixRow AllRow(const Values& values) {
  TavoMatrixRow row(MatrixRowType::kAll, 9);
  row.SetAllValues(values);
  return row;
}

/// Basic columns: intercept 0, factor 1 to 3, covariate 4; two logits with three categories.
class ThreeLevels : public DesignBench {
 public:
  explicit ThreeLevels(bool intercept = true) : DesignBench(3, {3}, 1, 0, intercept) {
    Effect({0}, {}).Effect({}, {0});
    for (int i = 0; i < 18; ++i)
      Case(1 + i % 3, {1 + i / 6}, {0.5 * i}, 1.0);
    parameters = tavo_test::ModelParts(*this).parameters;
  }

  OrvStatus Build(const std::vector<TavoMatrixRow>& rows) {
    return tavo::BuildHypothesisRows(rows, parameters, cancel, L, isFull);
  }
  Values Row(int i) const {
    Values row;
    L.GetRow(i, row);
    return row;
  }

  tavo::OrvParameterList parameters;
  MCRectMatrix L;
  bool isFull = true;
};

void ExpectError(const OrvStatus& status, std::uint32_t code, std::vector<int> integers = {}) {
  EXPECT_TRUE(status.IsError());
  EXPECT_EQ(status.Code(), code);
  for (std::size_t i = 0; i < integers.size(); ++i)
    EXPECT_EQ(status.Integer(static_cast<int>(i)), integers[i]);
}

TEST(HypothesisRows, PutsValuesAtTheParametersOfTheirEffects) {
  ThreeLevels bench;
  TavoMatrixRow both = InterceptRow(1);
  both.AddEffect(1, {7});
  both.AddEffect(0, {0.5, 0.25, 0.25});
  ASSERT_TRUE(bench.Build({EffectRow(0, {1, -1, 0}), both, InterceptRow(2)}).IsOK());
  EXPECT_FALSE(bench.isFull);
  EXPECT_EQ(bench.L.GetNRows(), 3);
  EXPECT_EQ(bench.Row(0), (Values{0, 1, -1, 0, 0}));
  EXPECT_EQ(bench.Row(1), (Values{1, 0.5, 0.25, 0.25, 7}));
  EXPECT_EQ(bench.Row(2), (Values{2, 0, 0, 0, 0}));
}

TEST(HypothesisRows, OfAllRowsSpansAllLogits) {
  ThreeLevels bench;
  const Values values{1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
  ASSERT_TRUE(bench.Build({AllRow(values)}).IsOK());
  EXPECT_TRUE(bench.isFull);
  EXPECT_EQ(bench.Row(0), values);
  ExpectError(bench.Build({AllRow(values), AllRow({1, 2, 3, 4, 5})}), StatusCode::kWrongLMatrixWidth, {1});
}

TEST(HypothesisRows, RefusesATestWhoseFirstRowIsAllAndLaterRowsAreEffectRows) {
  ThreeLevels bench;
  ExpectError(bench.Build({AllRow(Values(10, 1.0)), EffectRow(0, {1, -1, 0})}), StatusCode::kAllRowsMixed);
  ExpectError(bench.Build({AllRow(Values(10, 1.0)), InterceptRow(1)}), StatusCode::kAllRowsMixed);
}

TEST(HypothesisRows, RefusesATestWhoseFirstRowIsAnEffectRowAndALaterOneIsAll) {
  ThreeLevels bench;
  ExpectError(bench.Build({EffectRow(0, {1, -1, 0}), AllRow(Values(10, 1.0))}), StatusCode::kAllRowsMixed);
}

TEST(HypothesisRows, NamesTheRowTheEffectAndTheCountInItsErrors) {
  ThreeLevels bench;
  const TavoMatrixRow good = EffectRow(0, {1, -1, 0});
  ExpectError(bench.Build({good, EffectRow(0, {1, -1})}), StatusCode::kWrongCoefficientCount, {1, 0, 3});
  ExpectError(bench.Build({EffectRow(1, {1, 1})}), StatusCode::kWrongCoefficientCount, {0, 1, 1});
  ExpectError(bench.Build({good, good, EffectRow(2, {1})}), StatusCode::kUnknownEffect, {2, 2});
  ExpectError(bench.Build({good, TavoMatrixRow()}), StatusCode::kRowWithoutCoefficients, {1});
  ExpectError(bench.Build({TavoMatrixRow()}), StatusCode::kRowWithoutCoefficients, {0});
  EXPECT_TRUE(bench.Build({good}).IsOK());
}

TEST(HypothesisRows, KnowsNoEffectWithANegativeIndex) {
  ThreeLevels bench;
  TavoMatrixRow row(MatrixRowType::kValueEffectList, 2);
  ASSERT_TRUE(row.AddEffect(TavoMatrixRow::kNoFirstValue, {1}));
  ExpectError(bench.Build({row}), StatusCode::kUnknownEffect, {0, -10});
}

TEST(HypothesisRows, WithoutInterceptRefusesItsValue) {
  ThreeLevels bench(false);
  ExpectError(bench.Build({EffectRow(0, {1, -1, 0}), InterceptRow(1)}), StatusCode::kInterceptRowNotAllowed,
              {1});
  ASSERT_TRUE(bench.Build({EffectRow(0, {1, -1, 0})}).IsOK());
  EXPECT_EQ(bench.Row(0), (Values{1, -1, 0, 0}));
}

TEST(HypothesisRows, OfNoRowsIsEmptyWithTheColumnsOfOneLogit) {
  ThreeLevels bench;
  ASSERT_TRUE(bench.Build({}).IsOK());
  EXPECT_FALSE(bench.isFull);
  EXPECT_EQ(bench.L.GetNRows(), 0);
  EXPECT_EQ(bench.L.GetNCols(), 5);
}

TEST(HypothesisRows, ACancelBeforeTheFirstRowLeavesTheMatrixZero) {
  ThreeLevels bench;
  bench.cancel.Cancel();
  ExpectError(bench.Build({EffectRow(0, {1, -1, 0})}), StatusCode::kCancelled);
  EXPECT_EQ(bench.Row(0), Values(5, 0.0));
}

}  // namespace
