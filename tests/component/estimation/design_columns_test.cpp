#include "component/estimation/design_columns.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "model_parts.h"

namespace {

using tavo::RowKind;
using tavo::TavoRowBlock;
using tavo_test::DesignBench;
using tavo_test::ModelParts;

// Intercept, a factor of 2 levels, x z z, x within the factor.
void AddPowersAndSlopes(DesignBench& bench) {
  bench.Effect({0}, {}).Effect({}, {0, 1, 1}).Effect({0}, {0});
  bench.Case(1, {1}, {3, -2}, 1.5).Case(2, {2}, {1, 1}, 2).Case(1, {2}, {0, 4}).Case(2, {1}, {-1, 2});
}

TEST(DesignColumns, AParametersValueIsTheProductOfItsCovariatesRaisedToTheirPowers) {
  DesignBench bench(2, {2}, 2);
  AddPowersAndSlopes(bench);
  const ModelParts parts(bench);
  const std::vector<double> pattern = bench.PatternRow(bench.records[0]);
  const std::vector<double> data = bench.DataRow(bench.records[0]);
  const auto& basic = parts.parameters.Basic();
  for (const auto& [k, expected] : {std::pair<std::size_t, double>{0, 1}, {1, 1}, {3, 12}, {4, 3}}) {
    EXPECT_EQ(parts.columns.ParameterValue(pattern.data(), basic[k], RowKind::kPattern), expected) << k;
    EXPECT_EQ(parts.columns.ParameterValue(data.data(), basic[k], RowKind::kData), expected) << k;
  }
}

TEST(DesignColumns, AnEffectsValueIsCentredAndScaledTheSameFromBothKindsOfRows) {
  DesignBench bench(2, {2}, 2);
  bench.Effect({0}, {}).Effect({}, {0}).Effect({}, {1, 1});
  bench.Case(1, {1}, {3, -2}, 1.5).Case(2, {2}, {1, 1}, 2).Case(1, {2}, {0, 4}).Case(2, {1}, {-1, 2});
  const ModelParts parts(bench);
  const auto& centres = parts.parameters.EffectCentres();
  const auto& scales = parts.parameters.EffectScales();
  for (const MCCommon::Record& record : bench.records) {
    const double expected[] = {1, 1, (record[2] - centres[2]) / scales[2],
                               (record[3] * record[3] - centres[3]) / scales[3]};
    for (std::size_t e = 0; e < 4; ++e) {
      EXPECT_EQ(parts.columns.Value(bench.PatternRow(record).data(), e, RowKind::kPattern), expected[e]) << e;
      EXPECT_EQ(parts.columns.Value(bench.DataRow(record).data(), e, RowKind::kData), expected[e]) << e;
    }
  }
}

TEST(DesignColumns, WithoutInterceptNothingIsCentredAndIndicatorsAreScaledToo) {
  DesignBench bench(2, {2}, 1, 0, false);
  bench.Effect({0}, {}).Effect({}, {0});
  bench.Case(1, {1}, {3}, 4).Case(2, {2}, {1}, 5).Case(1, {2}, {-2}, 7);
  const ModelParts parts(bench);
  const std::vector<double> row = bench.PatternRow(bench.records[0]);
  EXPECT_NEAR(parts.columns.Value(row.data(), 0, RowKind::kPattern), 2, 1e-14)
      << "the root of the weight, 16, over its unit, 4";
  EXPECT_NEAR(parts.columns.Value(row.data(), 1, RowKind::kPattern),
              3 / std::sqrt((4 * 9 + 5 * 1 + 7 * 4) / 16.0), 1e-14);
}

TEST(DesignColumns, AColumnWithoutSpreadHoldsZeroInRowsAndBlocks) {
  DesignBench bench(2, {}, 1);
  bench.Effect({}, {0}).Case(1, {}, {0.1}, 0.3).Case(2, {}, {0.1}, 0.7);
  ModelParts parts(bench);
  const std::vector<double> row = bench.PatternRow(bench.records[0]);
  EXPECT_EQ(parts.columns.Value(row.data(), 1, RowKind::kPattern), 0) << "not the 0/0 of the formula";
  parts.FindRedundancies();
  EXPECT_EQ(parts.redundancy.CompressedIndices(), (std::vector<int>{0, -1}));
  TavoRowBlock block;
  parts.columns.StartBlock({0, 1}, parts.redundancy.OwnIndices(), block);
  parts.columns.FillBlock(row.data(), row.size(), 1, block);
  EXPECT_EQ(block.Column(0)[0], 0);
}

TEST(DesignColumns, SparseRowsLeaveOutZerosAndRedundantColumnsAndAscend) {
  DesignBench bench(2, {2}, 2);
  AddPowersAndSlopes(bench);
  bench.Case(1, {1}, {2, 5}).Case(2, {2}, {4, -1}).Case(1, {2}, {3, 2});
  ModelParts parts(bench);
  parts.FindRedundancies();
  ASSERT_EQ(parts.redundancy.CompressedIndices(), (std::vector<int>{0, 1, -1, 2, 3, 4}));
  std::vector<int> indices{9, 9};
  std::vector<double> values{9};
  const auto build = [&](std::size_t record) {
    parts.columns.BuildSparseRow(bench.PatternRow(bench.records[record]).data(),
                                 bench.ParametersOf(bench.records[record]), parts.redundancy, indices,
                                 values);
    EXPECT_EQ(values.size(), indices.size());
    return indices;
  };
  EXPECT_EQ(build(0), (std::vector<int>{0, 1, 2, 3}));
  EXPECT_EQ(build(1), (std::vector<int>{0, 2, 4})) << "level 2 is redundant";
  EXPECT_EQ(build(2), (std::vector<int>{0, 2})) << "the slope within level 2 is 0 at x = 0";
}

TEST(DesignColumns, ASparseRowOfZerosKeepsOneExplicitZero) {
  // Without an intercept a case with x = 0 has an empty design; it must still count in the likelihood.
  DesignBench bench(2, {}, 1, 0, false);
  bench.Effect({}, {0}).Case(1, {}, {0}).Case(2, {}, {1}).Case(1, {}, {2});
  ModelParts parts(bench);
  parts.FindRedundancies();
  std::vector<int> indices;
  std::vector<double> values;
  parts.columns.BuildSparseRow(bench.PatternRow(bench.records[0]).data(), {0}, parts.redundancy, indices,
                               values);
  EXPECT_EQ(indices, std::vector<int>{0});
  EXPECT_EQ(values, std::vector<double>{0.0});
}

TEST(DesignColumns, ABlockHoldsTheValuesOfItsRows) {
  DesignBench bench(2, {2}, 2);
  AddPowersAndSlopes(bench);
  ModelParts parts(bench);
  parts.FindRedundancies();
  // The rows of level 1, under the indices of all columns.
  std::vector<double> rows = bench.PatternRow(bench.records[0]);
  const std::size_t length = rows.size();
  const std::vector<double> last = bench.PatternRow(bench.records[3]);
  rows.insert(rows.end(), last.begin(), last.end());
  const std::vector<int> parameters = bench.ParametersOf(bench.records[0]);
  TavoRowBlock block;
  parts.columns.StartBlock(parameters, parts.redundancy.OwnIndices(), block);
  parts.columns.FillBlock(rows.data(), length, 2, block);
  ASSERT_EQ(block.RowCount(), 2u);
  EXPECT_EQ(block.ColumnCount(), 2u);
  EXPECT_EQ(block.Weights()[0], 1.5);
  EXPECT_EQ(block.Categories()[1], 2);
  for (std::size_t r = 0; r < 2; ++r) {
    std::vector<int> indices;
    std::vector<double> values;
    block.ExtractRow(r, indices, values);
    EXPECT_EQ(indices, parameters);
    for (std::size_t e = 0; e < 4; ++e)
      EXPECT_EQ(values[e], parts.columns.Value(rows.data() + r * length, e, RowKind::kPattern)) << e;
  }
}

}  // namespace
