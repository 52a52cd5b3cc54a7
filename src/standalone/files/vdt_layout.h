// How a case file (.vdt) is laid out: an SQLite database that any client can read.
//
//   variables       one row a variable, in file order from position 1; width is 0 for a number, otherwise the
//                   bytes of a string; format such as F8.2 or A12; measure is nominal, ordinal, scale or
//                   unknown
//   value_labels    one row a label; variable is a name, value a number or a text
//   missing_values  one row a declaration; variable is a name; either a value, or the ends of a closed range,
//   of
//                   which one is null when the range is open there
//   documents       lines that say how the file came about
//   cases           one row a case, one column a variable with the variable's name: REAL with null for
//                   system-missing, or TEXT without the blanks behind it
#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace standalone::vdt {

constexpr std::int64_t kApplicationId = 0x56445446;  // "VDTF"
constexpr std::int64_t kVersion = 1;

/// A column as the file's schema declares it.
struct ColumnLayout {
  std::string name;
  std::string type;  // as declared; empty for a column that takes numbers and texts as they are
  bool isKey = false;

  friend bool operator==(const ColumnLayout&, const ColumnLayout&) = default;
};

/// A table of the file with its columns in their order.
struct TableLayout {
  std::string name;
  std::vector<ColumnLayout> columns;
};

inline TableLayout Variables() {
  return {"variables",
          {{"position", "INTEGER", true},
           {"name", "TEXT"},
           {"width", "INTEGER"},
           {"label", "TEXT"},
           {"format", "TEXT"},
           {"measure", "TEXT"}}};
}
inline TableLayout ValueLabels() {
  return {"value_labels", {{"variable", "TEXT"}, {"value", ""}, {"label", "TEXT"}}};
}
inline TableLayout MissingValues() {
  return {"missing_values", {{"variable", "TEXT"}, {"value", ""}, {"low", "REAL"}, {"high", "REAL"}}};
}
inline TableLayout Documents() {
  return {"documents", {{"line", "INTEGER", true}, {"text", "TEXT"}}};
}
inline TableLayout Cases() {
  return {"cases", {}};  // the columns are the variables
}

/// What stands for the open end of a range in memory.
constexpr double kOpenEnd = std::numeric_limits<double>::max();

/// The names of the measurement levels, by host::MeasurementLevel.
constexpr std::array<std::string_view, 4> kMeasures = {"unknown", "nominal", "ordinal", "scale"};

/// A name as SQL takes it.
inline std::string Quoted(std::string_view name) {
  std::string text = "\"";
  for (const char c : name)
    text += c == '"' ? "\"\"" : std::string(1, c);
  return text + '"';
}

/// The names of a table's columns, as a list in SQL.
inline std::string ColumnList(const TableLayout& table) {
  std::string list;
  for (const ColumnLayout& column : table.columns)
    list += (list.empty() ? "" : ", ") + Quoted(column.name);
  return list;
}

}  // namespace standalone::vdt
