#include "sample_tables.h"

#include <algorithm>
#include <cstdio>
#include <limits>

#include "standalone/data/cells.h"

namespace sample {

namespace {

using host::MeasurementLevel;
using host::VORN_Variable;
using standalone::Column;
using standalone::NumberValue;
using standalone::Table;
using standalone::TextValue;

constexpr double kLargest = std::numeric_limits<double>::max();

std::size_t Below(std::mt19937_64& random, std::size_t bound) {
  return std::uniform_int_distribution<std::size_t>(0, bound - 1)(random);
}

template <class T>
const T& OneOf(std::mt19937_64& random, const std::vector<T>& values) {
  return values[Below(random, values.size())];
}

/// A finite double of any size, a short decimal, or a missing one.
double RandomNumber(std::mt19937_64& random) {
  switch (Below(random, 5)) {
    case 0:
      return host::kSystemMissing;
    case 1:
      return static_cast<double>(Below(random, 2001)) - 1000;
    case 2:
      return static_cast<double>(Below(random, 100000)) / 1000;
    default: {
      const double mantissa = std::uniform_real_distribution<double>(-1, 1)(random);
      return std::ldexp(mantissa, static_cast<int>(Below(random, 2000)) - 1000);
    }
  }
}

/// A text of at most `bytes` bytes that doesn't end in a blank.
std::string RandomText(std::mt19937_64& random, std::size_t bytes) {
  static const std::vector<std::string> kParts = {"a",  "B",  "7",    ",", ";", "\t",          "\"",
                                                  "\n", "\r", "\r\n", " ", "ä", "\\",          "日",
                                                  "😀",  "'",  "NA",   ".", "|", "\xEF\xBB\xBF"};
  std::string text;
  const std::size_t count = Below(random, 20);
  for (std::size_t i = 0; i < count; ++i) {
    const std::string& part = OneOf(random, kParts);
    if (text.size() + part.size() <= bytes) text += part;
  }
  while (text.ends_with(' '))
    text.pop_back();
  return text;
}

std::vector<host::OBS> RandomValue(std::mt19937_64& random, int type) {
  if (type != 0) return TextValue(RandomText(random, static_cast<std::size_t>(type)), type);
  double number = RandomNumber(random);
  while (number == host::kSystemMissing)
    number = RandomNumber(random);
  return NumberValue(number);
}

VORN_Variable RandomVariable(std::mt19937_64& random, std::size_t place) {
  static const std::vector<int> kTypes = {0, 0, 0, 1, 7, 8, 9, 16, 17, 64, 255};
  static const std::vector<std::string> kStems = {"x",    "Größe", "変数",  "@id", "$y",
                                                  "#tmp", "a.b_c", "rowid", "oid"};
  const int type = OneOf(random, kTypes);
  VORN_Variable variable(OneOf(random, kStems) + std::to_string(place), type);
  if (type != 0 && Below(random, 3) == 0) variable.SetFormat({2, 2 * type, 0});
  if (type == 0)
    variable.SetFormat({5, static_cast<int>(20 + Below(random, 21)), static_cast<int>(Below(random, 17))});
  variable.SetLabel(Below(random, 2) == 0 ? "" : RandomText(random, 200));
  variable.SetMeasurementLevel(static_cast<MeasurementLevel>(Below(random, 4)));
  host::VORN_ValueLabelMap labels;
  for (std::size_t i = Below(random, 4); i > 0; --i)
    labels.AddPair(RandomValue(random, type), "label " + RandomText(random, 100));
  variable.SetValueLabels(std::move(labels));
  host::VORN_MissingValues missing;
  if (type != 0 && Below(random, 2) == 0) missing.values.push_back(TextValue("", type));
  for (std::size_t i = Below(random, 3); i > 0; --i)
    missing.values.push_back(RandomValue(random, type));
  if (type == 0 && Below(random, 2) == 0) {
    missing.hasRange = true;
    missing.rangeLow = Below(random, 3) == 0 ? -kLargest : -std::abs(RandomValue(random, 0).front().number);
    missing.rangeHigh = Below(random, 3) == 0 ? kLargest : std::abs(RandomValue(random, 0).front().number);
  }
  variable.SetMissingValues(std::move(missing));
  return variable;
}

/// Exact, and the same for both zeros.
std::string Exact(double number) {
  char text[40];
  std::snprintf(text, sizeof text, "%a", number == 0 ? 0.0 : number);
  return text;
}

std::string Shown(const std::vector<host::OBS>& value, int type) {
  if (type == 0) return Exact(value.front().number);
  return "[" + std::string(standalone::UnpaddedText(value.data(), type)) + "]";
}

std::string ShownMissing(const VORN_Variable& variable) {
  const host::VORN_MissingValues& missing = variable.GetMissingValues();
  std::vector<std::string> values;
  for (const auto& value : missing.values)
    values.push_back(Shown(value, variable.GetType()));
  std::stable_partition(values.begin(), values.end(), [](const std::string& text) { return text == "[]"; });
  values.erase(std::unique(values.begin(), values.end(),
                           [](const std::string& a, const std::string& b) { return a == "[]" && b == "[]"; }),
               values.end());
  std::string text = " missing";
  for (const std::string& value : values)
    text += " " + value;
  if (missing.hasRange) text += " " + Exact(missing.rangeLow) + " to " + Exact(missing.rangeHigh);
  return text;
}

std::string ShownVariable(const VORN_Variable& variable) {
  const host::VORN_Format& format = variable.GetFormat();
  std::string text = variable.GetName() + " type " + std::to_string(variable.GetType()) + " label <" +
                     variable.GetLabel() + "> format " + std::to_string(format.type) + " " +
                     std::to_string(format.width) + "." + std::to_string(format.decimals) + " measure " +
                     std::to_string(static_cast<int>(variable.GetMeasurementLevel()));
  for (const auto& [value, label] : variable.GetValueLabels().Pairs())
    text += " " + Shown(value, variable.GetType()) + "=<" + label + ">";
  return text + ShownMissing(variable);
}

}  // namespace

Column& AddNumbers(Table& table, const std::string& name, std::vector<double> values) {
  table.SetCaseCount(values.size());
  Column& column = table.Add(VORN_Variable(name, 0));
  for (std::size_t i = 0; i < values.size(); ++i)
    column.cells[i].number = values[i];
  return column;
}

Column& AddTexts(Table& table, const std::string& name, int width, const std::vector<std::string>& values) {
  table.SetCaseCount(values.size());
  Column& column = table.Add(VORN_Variable(name, width));
  for (std::size_t i = 0; i < values.size(); ++i)
    standalone::PadText(values[i], width, &column.cells[i * column.Stride()]);
  return column;
}

Table EveryAttribute() {
  Table table;
  VORN_Variable& plain =
      AddNumbers(table, "x",
                 {0.1, host::kSystemMissing, -kLargest / 2, kLargest,
                  std::numeric_limits<double>::denorm_min(), 1e22, 123456789012345680.0, 3})
          .variable;
  plain.SetLabel("a label, with \"quotes\"\nand lines");
  plain.SetFormat({5, 40, 16});
  plain.SetMeasurementLevel(MeasurementLevel::kScale);
  host::VORN_MissingValues missing;
  missing.values = {NumberValue(-9), NumberValue(0.1)};
  missing.hasRange = true;
  missing.rangeLow = -kLargest;
  missing.rangeHigh = -99.5;
  plain.SetMissingValues(missing);
  host::VORN_ValueLabelMap labels;
  labels.AddPair(NumberValue(3), "three");
  labels.AddPair(NumberValue(-9), "refused");
  plain.SetValueLabels(labels);

  const std::vector<std::string> hard = {"plain",    "",           "say \"no\"", "a,b;c\td|e",
                                         " leading", "two\nlines", "a\r\nb",     "ä日😀"};
  const std::string longName = "n" + std::string(63, 'x');
  VORN_Variable& text = AddTexts(table, longName, 32767, hard).variable;
  text.SetMeasurementLevel(MeasurementLevel::kOrdinal);
  host::VORN_ValueLabelMap textLabels;
  textLabels.AddPair(TextValue("plain", 32767), "Plain text");
  text.SetValueLabels(textLabels);
  AddTexts(table, "w8", 8, {"12345678", "1", "", " ", "a", "b", "NA", "."}).variable.SetFormat({2, 16, 0});
  VORN_Variable& nine =
      AddTexts(table, "w9", 9, {"123456789", "ä", "日日日", "x", "1", "2", "3", "4"}).variable;
  host::VORN_MissingValues textMissing;
  textMissing.values = {TextValue("", 9), TextValue("x", 9), TextValue(" y", 9)};
  nine.SetMissingValues(textMissing);
  nine.SetMeasurementLevel(MeasurementLevel::kNominal);
  AddTexts(table, "日本語のなまえ", 1, {"a", "b", "c", "d", "e", "f", "g", ""});
  table.At(0).cells.back().number = 3;
  std::string wide(32767, 'z');
  wide[100] = '\n';
  standalone::PadText(wide, 32767, table.At(1).cells.data());
  table.SetDocuments({"document made by hand", "", "  second \"line\" ä"});
  return table;
}

Table RandomTable(std::mt19937_64& random) {
  Table table;
  table.SetCaseCount(Below(random, 40));
  const std::size_t columns = 1 + Below(random, 6);
  for (std::size_t i = 0; i < columns; ++i) {
    Column& column = table.Add(RandomVariable(random, i));
    const int type = column.variable.GetType();
    for (std::size_t row = 0; row < table.CaseCount(); ++row) {
      if (type == 0) {
        column.cells[row].number = RandomNumber(random);
      } else {
        standalone::PadText(RandomText(random, static_cast<std::size_t>(type)), type,
                            &column.cells[row * column.Stride()]);
      }
    }
  }
  std::vector<std::string> documents;
  for (std::size_t i = Below(random, 3); i > 0; --i)
    documents.push_back(RandomText(random, 80));
  table.SetDocuments(documents);
  return table;
}

std::string Dump(const Table& table) {
  std::string text = std::to_string(table.CaseCount()) + " cases\n";
  for (const std::string& line : table.Documents())
    text += "document " + line + "\n";
  for (std::size_t i = 0; i < table.ColumnCount(); ++i) {
    const Column& column = table.At(i);
    text += ShownVariable(column.variable) + "\n";
    for (std::size_t row = 0; row < table.CaseCount(); ++row) {
      const auto* cells = &column.cells[row * column.Stride()];
      text += "  " + Shown({cells, cells + column.Stride()}, column.variable.GetType()) + "\n";
    }
    if (column.cells.size() != table.CaseCount() * column.Stride()) text += "cells are missing\n";
  }
  return text;
}

}  // namespace sample
