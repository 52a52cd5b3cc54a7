#include "standalone/output/data_description.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "output_query.h"
#include "pivot_samples.h"

namespace {

standalone::Table SampleTable() {
  standalone::Table table;
  table.SetCaseCount(3);
  table.Add(test_support::Stype());
  host::VORN_Variable race("race", 0);
  race.SetFormat({5, 8, 0});
  race.SetMeasurementLevel(host::MeasurementLevel::kNominal);
  race.SetMissingValues({{{host::OBS{9}}}, true, -2, -1});
  table.Add(race);
  return table;
}

std::string TextAt(const standalone::PivotTable* table, const char* row, const char* column) {
  const auto* cell = test_support::FindCell(table, {row}, {column});
  return cell == nullptr ? "no cell" : std::get<std::string>(cell->content);
}

TEST(DataDescription, ShowsEveryPropertyOfAVariable) {
  standalone::CommandOutput output;
  DescribeData("a.csv", SampleTable(), output);
  EXPECT_EQ(test_support::NumberAt(output.FindTable("DataFile"), {"Cases"}, {}), 3);
  const auto* variables = output.FindTable("Variables");
  EXPECT_EQ(TextAt(variables, "stype", "Label"), "School type");
  EXPECT_EQ(TextAt(variables, "stype", "Type"), "string of 1");
  EXPECT_EQ(TextAt(variables, "stype", "Format"), "A1");
  EXPECT_EQ(TextAt(variables, "stype", "Value Labels"), "H = High");
  EXPECT_EQ(TextAt(variables, "race", "Measure"), "nominal");
  EXPECT_EQ(TextAt(variables, "race", "Format"), "F8.0");
  EXPECT_EQ(TextAt(variables, "race", "Missing Values"), "-2 to -1, 9");
}

TEST(DataDescription, JsonHoldsTheDictionary) {
  std::ostringstream out;
  DescribeDataAsJson(out, "1.0", "a.csv", SampleTable());
  const auto json = nlohmann::json::parse(out.str());
  EXPECT_EQ(json.at("cases"), 3);
  EXPECT_EQ(json.at("variables").at(0).at("values").at(0),
            (nlohmann::json{{"value", "H"}, {"label", "High"}}));
  EXPECT_EQ(json.at("variables").at(1).at("missing"),
            (nlohmann::json{{"values", {9}}, {"low", -2}, {"high", -1}}));
  EXPECT_EQ(json.at("variables").at(1).at("type"), "number");
  EXPECT_FALSE(json.at("variables").at(1).contains("label"));
}

}  // namespace
