#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>

#include "output_query.h"
#include "pivot_samples.h"
#include "standalone/output/content_text.h"
#include "standalone/output/pivot_builder.h"

namespace {

using host::BpNumber;
using host::BpProcedure;
using host::Key;
using host::Plain;
using standalone::CommandOutput;
using test_support::NumberAt;

BpNumber Count(double value) {
  return {value, BpProcedure::Count()};
}

TEST(PivotModel, ACellStandsWhereTheCurrentCategoriesOfAllDimensionsCross) {
  CommandOutput output;
  const host::VORN_Variable dependent = test_support::Stype();
  test_support::FillEstimates(output, dependent);
  const standalone::PivotTable* table = output.FindTable("ParameterEstimates");
  ASSERT_NE(table, nullptr);
  EXPECT_EQ(table->CellCount(), 12u);
  EXPECT_EQ(NumberAt(table, {"E", "meals"}, {"B"}), -0.0314);
  EXPECT_EQ(NumberAt(table, {"High", "(Intercept)"}, {"95% Confidence Interval", "Upper"}), 13.5);
  EXPECT_EQ(test_support::FindCell(table, {"High", "meals"}, {"B"})->notes.size(), 1u);
  EXPECT_EQ(table->caption,
            "Dependent Variable: School type (reference category = M)\nModel: (Intercept), meals");
}

TEST(PivotModel, DimensionsOfAPlaceComeOutermostFirst) {
  CommandOutput output;
  const host::VORN_Variable dependent = test_support::Stype();
  test_support::FillEstimates(output, dependent);
  const auto rows = output.tables[0]->DimensionsOf(host::BpPlace::kRow);
  ASSERT_EQ(rows.size(), 2u);
  EXPECT_EQ(output.tables[0]->dimensions[rows[0]].Label(), "School type");
  EXPECT_EQ(output.tables[0]->dimensions[rows[1]].Label(), "Parameter");
}

TEST(PivotModel, CategoriesAreFoundByTheirTextAndDataValuesByTheirCells) {
  CommandOutput output;
  const auto procedure = standalone::MakeProcedure(output);
  const auto table = procedure->Heading().PivotTable(Plain("t"), "t");
  auto& rows = table->Dimension(Plain("rows"));
  rows.Category(Plain("B"));
  rows.Category(Key("B"));  // shows the same text
  rows.Group(Plain("B")).Category(Plain("B"));
  host::VORN_Variable number("x", 0);
  for (const double value : {1.001, 1.002, 1.001}) {  // print alike with two decimals
    const host::OBS cell{value};
    rows.Category(host::BpDataValue(&number, &cell));
  }
  rows.Category(BpNumber{1.0001, BpProcedure::GeneralStat()});
  rows.Category(BpNumber{1, BpProcedure::GeneralStat()});
  EXPECT_EQ(output.tables[0]->dimensions[0].Categories().size(), 6u);
}

TEST(PivotModel, ALabelledValueOfTheReferenceShowsItsLabelAndOthersTheirPrintFormat) {
  const host::VORN_Variable stype = test_support::Stype();
  const host::OBS high = test_support::TextCell("H       "), middle = test_support::TextCell("M       ");
  EXPECT_EQ(standalone::TextOf(host::BpDataValue(&stype, &high)), "High");
  EXPECT_EQ(standalone::TextOf(host::BpDataValue(&stype, &high, host::BpShow::kValue)), "H");
  EXPECT_EQ(standalone::TextOf(host::BpDataValue(&stype, &middle)), "M");
  EXPECT_EQ(standalone::TextOf(host::BpVariable{&stype}), "School type");
  EXPECT_EQ(standalone::TextOf(host::BpVariable{&stype, host::BpShow::kValue}), "stype");
}

TEST(PivotModel, DataValuesKeepACopyOfTheirCells) {
  host::VORN_Variable x("x", 0);
  x.SetFormat({5, 8, 0});
  host::OBS cell{3.0};
  const host::BpDataValue value(&x, &cell);
  cell.number = 4;
  EXPECT_EQ(standalone::TextOf(value), "3");
}

TEST(PivotModel, TablesStandInTheOrderOfTheirMakingAndOneWithoutDimensionIsTakenOut) {
  CommandOutput output;
  const auto procedure = standalone::MakeProcedure(output);
  auto first = procedure->Heading().PivotTable(Plain("first"), "first");
  procedure->Heading().PivotTable(Plain("empty"), "empty").reset();
  auto second =
      procedure->Heading().Heading(Key("Custom Hypothesis Tests"))->PivotTable(Plain("second"), "second");
  second->Dimension(Plain("d"));
  first->Dimension(Plain("d"));
  second.reset();
  first.reset();
  ASSERT_EQ(output.tables.size(), 2u);
  EXPECT_EQ(output.tables[0]->id, "first");
  EXPECT_EQ(output.tables[1]->heading, std::vector<std::string>{"Custom Hypothesis Tests"});
}

TEST(PivotModel, ACellBeforeEveryDimensionHasACategoryIsAMistakeOfTheCaller) {
  CommandOutput output;
  const auto procedure = standalone::MakeProcedure(output);
  const auto table = procedure->Heading().PivotTable(Plain("t"), "t");
  auto& rows = table->Dimension(Plain("rows"));
  auto& columns = table->Dimension(Plain("columns"));
  EXPECT_THROW(rows.Category(Plain("a")).Cell(Count(1)), std::logic_error);
  columns.Category(Plain("b")).Cell(Count(1));
  EXPECT_THROW(table->Dimension(Plain("late")), std::logic_error);
}

TEST(PivotModel, AHandleThatWasKeptPutsItsCellIntoItsOwnCategory) {
  CommandOutput output;
  const auto procedure = standalone::MakeProcedure(output);
  const auto table = procedure->Heading().PivotTable(Plain("t"), "t");
  auto& columns = table->Dimension(Plain("columns"));
  columns.Position(host::BpPlace::kColumn, 1, true, false);
  auto& a = columns.Category(Plain("a"));
  columns.Category(Plain("b")).Cell(Count(2));
  a.Cell(Count(1));
  EXPECT_EQ(NumberAt(output.tables[0].get(), {}, {"a"}), 1);
  EXPECT_EQ(NumberAt(output.tables[0].get(), {}, {"b"}), 2);
}

TEST(PivotModel, GroupsWithoutATextAreLeftOutOfPaths) {
  CommandOutput output;
  const auto procedure = standalone::MakeProcedure(output);
  const auto table = procedure->Heading().PivotTable(Plain("t"), "t");
  auto& rows = table->Dimension(Key("Observed"));
  rows.Group(Key("Values")).Category(Plain("No")).Cell(Count(5));
  const auto& dimension = output.tables[0]->dimensions[0];
  EXPECT_EQ(dimension.Path(dimension.Categories()[0]), std::vector<std::string>{"No"});
}

TEST(PivotModel, ManyCategoriesAreFoundQuicklyAndNothingIsLost) {
  CommandOutput output;
  const auto procedure = standalone::MakeProcedure(output);
  const auto table = procedure->Heading().PivotTable(Plain("t"), "t");
  auto& rows = table->Dimension(Plain("rows"));
  auto& columns = table->Dimension(Plain("columns"));
  columns.Position(host::BpPlace::kColumn, 1, true, false);
  constexpr int kSize = 200;
  for (int i = 0; i < kSize; ++i) {
    rows.Category(Count(i));
    for (int j = 0; j < kSize; ++j)
      columns.Category(Count(j)).Cell(Count(i * kSize + j));
  }
  EXPECT_EQ(output.tables[0]->CellCount(), static_cast<std::size_t>(kSize * kSize));
  EXPECT_EQ(output.tables[0]->dimensions[1].Categories().size(), static_cast<std::size_t>(kSize));
}

}  // namespace
