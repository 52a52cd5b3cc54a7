#include "component/run/pattern_tabulator.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tabulation_bench.h"

namespace tavo {
namespace {

using namespace tavo_test;

SurveySettings TwoFactors() {
  SurveySettings settings;
  settings.Stage({kStratum}, {kCluster}).Factor(kA, 3).Factor(kB, 2).Covariate(kX).Effect({kA}).Effect({kB});
  settings.Effect({}, {kX});
  return settings;
}

Rows ABRows(const std::vector<std::vector<double>>& levelsAndResponse) {
  Rows rows;
  for (const auto& each : levelsAndResponse) {
    rows.push_back(Case{.weight = 2, .y = each[2], .a = each[0], .b = each[1], .x = each[0] + 0.5}.Row());
  }
  return rows;
}

TEST(TavoPatternTabulator, WithoutFactorsASinglePatternHoldsAllRows) {
  SurveySettings settings;
  settings.Stage({kStratum}, {kCluster}).Covariate(kX).Effect({}, {kX});
  TabulationBench bench(settings, ABRows({{1, 1, 1}, {2, 1, 2}, {3, 2, 1}}));
  bench.Prepare();
  EXPECT_EQ(bench.tabulator->PatternCount(), 1);
  EXPECT_EQ(bench.tabulator->RowCount(), 3);
  const TavoRowPatterns* const rows = bench.tabulator->RowsOfPattern({});
  ASSERT_NE(rows, nullptr);
  // Dependent (reference 2 is last, so code 1 is index 0), covariate, weight.
  EXPECT_EQ(rows->RecordData(), (std::vector<double>{0, 1.5, 2, 1, 2.5, 2, 0, 3.5, 2}));
}

TEST(TavoPatternTabulator, APatternIsACombinationOfParameterPositions) {
  const SurveySettings settings = TwoFactors();
  TabulationBench bench(settings, ABRows({{1, 1, 1}, {3, 2, 2}, {1, 1, 2}, {3, 1, 1}}));
  bench.Prepare();
  EXPECT_EQ(bench.tabulator->PatternCount(), 3);
  ASSERT_NE(bench.tabulator->RowsOfPattern({0, 0}), nullptr);
  EXPECT_EQ(bench.tabulator->RowsOfPattern({0, 0})->RecordData().size(), 6u);
  // Level 3 of the first factor is its second parameter, since level 2 doesn't occur.
  ASSERT_NE(bench.tabulator->RowsOfPattern({1, 1}), nullptr);
  EXPECT_EQ(bench.tabulator->RowsOfPattern({1, 1})->RecordData(), (std::vector<double>{1, 3.5, 2}));
  EXPECT_EQ(bench.tabulator->RowsOfPattern({0, 1}), nullptr);
  EXPECT_EQ(bench.tabulator->RowsOfPattern({2, 0}), nullptr);
  EXPECT_EQ(bench.tabulator->RowsOfPattern({0}), nullptr);
}

TEST(TavoPatternTabulator, APatternMadeOnlyOutsideTheSubpopulationStaysWithoutRows) {
  SurveySettings settings = TwoFactors();
  settings.Get().SetSubpop(kDomain, 1);
  Rows rows = ABRows({{1, 1, 1}, {2, 2, 2}, {1, 2, 1}, {3, 1, 1}});
  rows[2][kDomain] = 2;  // both levels occur in the subpopulation, not together
  rows[3][kDomain] = 2;  // level 3 occurs outside only
  TabulationBench bench(settings, rows);
  bench.Prepare();
  EXPECT_EQ(bench.tabulator->PatternCount(), 3);
  EXPECT_EQ(bench.tabulator->RowCount(), 2);
  ASSERT_NE(bench.tabulator->RowsOfPattern({0, 1}), nullptr);
  EXPECT_TRUE(bench.tabulator->RowsOfPattern({0, 1})->RecordData().empty());
  EXPECT_EQ(bench.tables.ComplementWeight(), 4);
  EXPECT_EQ(bench.tables.SampleSize(), 4);
  const auto accumulator = bench.MakeAccumulator();
  bench.tabulator->AttachAccumulator(*accumulator, bench.model);
  EXPECT_TRUE(bench.tabulator->EvaluateRows(true).IsOK());
  EXPECT_EQ(accumulator->LogLikelihood(), 4 * std::log(0.5));
}

TEST(TavoPatternTabulator, ManyPatternsAreHashedAndAllFound) {
  // Three factors of 60 levels: 216000 packed keys, too many for a direct table.
  SurveySettings settings;
  settings.Stage({kStratum}, {kCluster}).Factor(kA, 60).Factor(kB, 60).Factor(kDomain, 60);
  settings.Effect({kA}).Effect({kB}).Effect({kDomain});
  Rows rows;
  for (int i = 0; i < 600; ++i) {
    rows.push_back(
        Case{.y = 1.0 + i % 2, .a = 1.0 + i % 60, .b = 1.0 + i * 7 % 60, .domain = 1.0 + i / 10}.Row());
    rows.push_back(rows.back());
  }
  TabulationBench bench(settings, rows);
  bench.Prepare();
  EXPECT_EQ(bench.tabulator->PatternCount(), 600);
  for (int i = 0; i < 600; ++i) {
    const TavoRowPatterns* const pattern = bench.tabulator->RowsOfPattern({i % 60, i * 7 % 60, i / 10});
    ASSERT_NE(pattern, nullptr);
    EXPECT_EQ(pattern->RecordData().size(), 4u);
  }
}

TEST(TavoPatternTabulator, RowsThatCannotEnterAreLeftOutOfBothPasses) {
  const SurveySettings settings = TwoFactors();
  Rows rows = ABRows({{1, 1, 1}, {2, 2, 2}, {1, 2, 1}, {3, 1, 2}});
  rows[1][kWeight] = 0;
  rows[2][kX] = kMissing;
  TabulationBench bench(settings, rows);
  bench.Prepare();
  EXPECT_EQ(bench.tabulator->RowCount(), 2);
  EXPECT_EQ(bench.tables.TotalWeight(), 4);
  EXPECT_EQ(bench.tables.ParameterCount(1), 2);
}

TEST(TavoPatternTabulator, PassesRefuseWhatTheyCannotRead) {
  const SurveySettings settings = TwoFactors();
  const Rows rows = ABRows({{1, 1, 1}, {2, 2, 2}});
  const auto codeOf = [&](const Rows& input, auto&& prepare) {
    TabulationBench bench(settings, input);
    prepare(bench.iterator);
    const OrvStatus status = bench.FillTables();
    EXPECT_TRUE(status.IsError());
    return status.Code();
  };
  const auto asIs = [](MemoryRecordIterator&) {};
  EXPECT_EQ(codeOf({}, asIs), StatusCode::kNoRecords);
  EXPECT_EQ(codeOf({Case{.weight = 0}.Row()}, asIs), StatusCode::kNoRecords);
  EXPECT_EQ(codeOf({rows[0], {1, 2}}, asIs), StatusCode::kShortRecord);
  EXPECT_EQ(codeOf({Case{.a = 1.5}.Row()}, asIs), StatusCode::kInvalidValue);
  EXPECT_EQ(codeOf(rows, [](auto& iterator) { iterator.ReturnNullAt(1); }), StatusCode::kNullRecord);
  EXPECT_EQ(codeOf(rows, [](auto& iterator) { iterator.FailAt(1); }), StatusCode::kUserError);
}

TEST(TavoPatternTabulator, ARecordWithoutDataIsRefused) {
  const TavoCompSettings settings;
  const OrvRecordExtractor extractor;
  const OrvCancelInfo cancel;
  TavoPatternTabulator tabulator(settings, extractor, extractor, cancel);
  MemoryRecordIterator iterator(Rows{{}});
  OrvFactorTables tables;
  EXPECT_EQ(tabulator.FillFactorTables(iterator, tables).Code(), StatusCode::kNullRecordData);
}

TEST(TavoPatternTabulator, AnEmptySubpopulationIsAnError) {
  SurveySettings settings = TwoFactors();
  settings.Get().SetSubpop(kDomain, 2);
  TabulationBench bench(settings, ABRows({{1, 1, 1}, {2, 2, 2}}));
  EXPECT_EQ(bench.FillTables().Code(), StatusCode::kEmptySubpopulation);
}

TEST(TavoPatternTabulator, ACancelEndsAPassWithStatusOne) {
  SurveySettings settings = TwoFactors();
  StopButton button;
  settings.Get().SetStopProcessor(&button);
  TabulationBench bench(settings, ABRows({{1, 1, 1}, {2, 2, 2}, {1, 1, 2}}));
  int read = 0;
  bench.iterator.OnNext([&](std::size_t record) {
    ++read;
    if (record == 1) button.Press();
  });
  EXPECT_EQ(bench.FillTables().Code(), StatusCode::kCancelled);
  EXPECT_EQ(read, 2);
}

#ifndef NDEBUG
TEST(TavoPatternTabulatorDeathTest, PatternsAreCreatedOnceAndBeforeTheyAreWalked) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const SurveySettings settings = TwoFactors();
  TabulationBench bench(settings, ABRows({{1, 1, 1}, {2, 2, 2}}));
  EXPECT_DEATH(bench.tabulator->ReplayPatterns(bench.model), "fbPatternsCreated");
  EXPECT_DEATH(bench.tabulator->EvaluateRows(true), "fbPatternsCreated");
  bench.Prepare();
  EXPECT_DEATH(bench.CreatePatterns(), "fbPatternsCreated");
}
#endif

TEST(TavoPatternTabulator, ARowWhoseColumnsAreAllZeroCountsInAModelWithoutIntercept) {
  SurveySettings settings;
  settings.Stage({kStratum}, {kCluster}).Covariate(kX).Effect({}, {kX});
  settings.Get().SetIntercept(false);
  TabulationBench bench(settings, {Case{.weight = 3, .y = 1, .x = 0}.Row(), Case{.y = 2, .x = 2}.Row()});
  bench.Prepare();
  const auto accumulator = bench.MakeAccumulator();
  bench.tabulator->AttachAccumulator(*accumulator, bench.model);
  EXPECT_TRUE(bench.tabulator->EvaluateRows(false).IsOK());
  EXPECT_DOUBLE_EQ(accumulator->LogLikelihood(), 4 * std::log(0.5));
}

}  // namespace
}  // namespace tavo
