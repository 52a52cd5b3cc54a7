#include "standalone/output/data_description.h"

#include <fmt/format.h>

#include <ostream>

#include "standalone/data/format_names.h"
#include "standalone/output/content_text.h"
#include "standalone/output/json_writer.h"
#include "standalone/output/pivot_builder.h"
#include "standalone/text/numbers.h"

namespace standalone {

namespace {

using host::MeasurementLevel;
using host::VORN_Variable;

std::string MeasureName(MeasurementLevel level) {
  switch (level) {
    case MeasurementLevel::kNominal:
      return "nominal";
    case MeasurementLevel::kOrdinal:
      return "ordinal";
    case MeasurementLevel::kScale:
      return "scale";
    case MeasurementLevel::kUnknown:
      break;
  }
  return {};
}

std::string TypeName(const VORN_Variable& variable) {
  return variable.IsNumeric() ? "number" : fmt::format("string of {}", variable.GetType());
}

// Numbers keep all their digits here, whatever their print format says: a description is read to find out
// what is in a file.
std::string ShownValue(const VORN_Variable& variable, const std::vector<host::OBS>& value) {
  return variable.IsNumeric() ? ShortestText(value.front().number) : ValueText(variable, value.data());
}

std::string ValueList(const VORN_Variable& variable) {
  std::string list;
  for (const auto& [value, label] : variable.GetValueLabels().Pairs()) {
    if (!list.empty()) list += '\n';
    list += ShownValue(variable, value) + " = " + label;
  }
  return list;
}

std::string MissingList(const VORN_Variable& variable) {
  const host::VORN_MissingValues& missing = variable.GetMissingValues();
  std::string list;
  if (missing.hasRange) list = ShortestText(missing.rangeLow) + " to " + ShortestText(missing.rangeHigh);
  for (const auto& value : missing.values) {
    if (!list.empty()) list += ", ";
    const std::string text = ShownValue(variable, value);
    list += text.empty() ? "(blank)" : text;  // an empty place between two commas would read like a mistake
  }
  return list;
}

void DescribeFile(const std::string& path, const Table& table, host::BpHeading& heading) {
  const auto file = heading.PivotTable(host::Plain("Data File"), "DataFile");
  file->Caption(host::Plain(path));
  host::BpDimension& rows = file->Dimension(host::Plain("Content"));
  rows.Position(host::BpPlace::kRow, 1, true, false);
  const auto add = [&rows](const char* label, std::size_t count) {
    rows.Category(host::Plain(label))
        .Cell(host::BpNumber{static_cast<double>(count), host::BpProcedure::Count()});
  };
  add("Cases", table.CaseCount());
  add("Variables", table.ColumnCount());
}

void DescribeVariables(const Table& table, host::BpHeading& heading) {
  const auto variables = heading.PivotTable(host::Plain("Variables"), "Variables");
  host::BpDimension& rows = variables->Dimension(host::Plain("Name"));
  host::BpDimension& columns = variables->Dimension(host::Plain("Properties"));
  rows.Position(host::BpPlace::kRow, 1, false, false);
  columns.Position(host::BpPlace::kColumn, 1, true, false);
  for (std::size_t i = 0; i < table.ColumnCount(); ++i) {
    const VORN_Variable& variable = table.At(i).variable;
    rows.Category(host::Plain(variable.GetName()));
    const auto put = [&columns](const char* label, std::string text) {
      columns.Category(host::Plain(label)).Cell(host::Plain(std::move(text)));
    };
    put("Label", variable.GetLabel());
    put("Type", TypeName(variable));
    put("Format", FormatText(variable.GetFormat()));
    put("Measure", MeasureName(variable.GetMeasurementLevel()));
    put("Value Labels", ValueList(variable));
    put("Missing Values", MissingList(variable));
  }
}

void DescribeDocuments(const Table& table, host::BpHeading& heading) {
  if (table.Documents().empty()) return;
  const auto documents = heading.PivotTable(host::Plain("Documents"), "Documents");
  host::BpDimension& rows = documents->Dimension(host::Plain("Line"));
  rows.Position(host::BpPlace::kRow, 1, true, false);
  std::size_t number = 0;
  for (const std::string& line : table.Documents())
    rows.Category(host::Plain(std::to_string(++number))).Cell(host::Plain(line));
}

/// A member that is left out when it holds nothing.
void WriteText(JsonWriter& json, std::string_view key, const std::string& text) {
  if (text.empty()) return;
  json.TextMember(key, text);
}

void WriteValue(JsonWriter& json, const VORN_Variable& variable, const std::vector<host::OBS>& value) {
  if (variable.IsNumeric()) {
    json.Number(value.front().number);
  } else {
    json.Text(ValueText(variable, value.data()));
  }
}

void WriteMissing(JsonWriter& json, const VORN_Variable& variable) {
  const host::VORN_MissingValues& missing = variable.GetMissingValues();
  if (missing.Empty()) return;
  json.Key("missing");
  json.BeginObject();
  json.Key("values");
  json.BeginArray();
  for (const auto& value : missing.values)
    WriteValue(json, variable, value);
  json.EndArray();
  if (missing.hasRange) {
    json.NumberMember("low", missing.rangeLow);
    json.NumberMember("high", missing.rangeHigh);
  }
  json.EndObject();
}

void WriteVariable(JsonWriter& json, const VORN_Variable& variable) {
  json.BeginObject();
  WriteText(json, "name", variable.GetName());
  WriteText(json, "label", variable.GetLabel());
  WriteText(json, "type", variable.IsNumeric() ? "number" : "string");
  if (!variable.IsNumeric()) json.NumberMember("width", variable.GetType());
  WriteText(json, "format", FormatText(variable.GetFormat()));
  WriteText(json, "measure", MeasureName(variable.GetMeasurementLevel()));
  if (const auto& pairs = variable.GetValueLabels().Pairs(); !pairs.empty()) {
    json.Key("values");
    json.BeginArray();
    for (const auto& [value, label] : pairs) {
      json.BeginObject();
      json.Key("value");
      WriteValue(json, variable, value);
      json.Key("label");
      json.Text(label);
      json.EndObject();
    }
    json.EndArray();
  }
  WriteMissing(json, variable);
  json.EndObject();
}

}  // namespace

void DescribeData(const std::string& path, const Table& table, CommandOutput& output) {
  const auto procedure = MakeProcedure(output);
  DescribeFile(path, table, procedure->Heading());
  DescribeVariables(table, procedure->Heading());
  DescribeDocuments(table, procedure->Heading());
}

void DescribeDataAsJson(std::ostream& out, const std::string& version, const std::string& path,
                        const Table& table) {
  JsonWriter json(out);
  json.BeginObject(true);
  WriteText(json, "tavoreg", version);
  WriteText(json, "file", path);
  json.NumberMember("cases", static_cast<double>(table.CaseCount()));
  json.Key("variables");
  json.BeginArray(true);
  for (std::size_t i = 0; i < table.ColumnCount(); ++i)
    WriteVariable(json, table.At(i).variable);
  json.EndArray();
  if (!table.Documents().empty()) {
    json.Key("documents");
    json.BeginArray(true);
    for (const std::string& line : table.Documents())
      json.Text(line);
    json.EndArray();
  }
  json.EndObject();
  out << '\n';
}

}  // namespace standalone
