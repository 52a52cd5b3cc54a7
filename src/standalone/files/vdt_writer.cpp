#include "standalone/files/vdt_file.h"

#include <fmt/format.h>

#include <cmath>

#include "standalone/data/cells.h"
#include "standalone/data/format_names.h"
#include "standalone/files/atomic_file.h"
#include "standalone/files/database.h"
#include "standalone/files/dictionary_check.h"
#include "standalone/files/vdt_layout.h"
#include "standalone/text/utf8.h"

namespace standalone {

namespace {

using host::VORN_Variable;

/// Fills a new database. Failures stay in the database.
class VdtWriter {
 public:
  VdtWriter(Database& database, const Table& table) : fDatabase(database), fTable(table) {}

  void Write() {
    if (!CheckSize()) return;
    // One transaction: SQLite then writes each page once, not once a row.
    fDatabase.Execute("BEGIN");
    fDatabase.Execute(
        fmt::format("PRAGMA application_id={}; PRAGMA user_version={}", vdt::kApplicationId, vdt::kVersion)
            .c_str());
    WriteVariables();
    WriteValueLabels();
    WriteMissingValues();
    WriteDocuments();
    WriteCases();
    fDatabase.Execute("COMMIT");
  }

 private:
  bool CheckSize() {
    const std::size_t most = fDatabase.MostColumns();
    return fTable.ColumnCount() <= most ||
           fDatabase.Fail(
               fmt::format("a .vdt file holds at most {} variables, the data have {}; write a .csv file",
                           most, fTable.ColumnCount()));
  }
  void Create(const vdt::TableLayout& layout);
  std::string InsertInto(const vdt::TableLayout& layout) const;
  void WriteVariables();
  void WriteValueLabels();
  void WriteMissingValues();
  void WriteDocuments();
  void WriteCases();
  void BindCase(Statement& insert, std::size_t row);

  Database& fDatabase;
  const Table& fTable;
};

void BindValue(Statement& statement, int parameter, const VORN_Variable& variable,
               const std::vector<host::OBS>& value) {
  if (variable.IsNumeric()) {
    statement.BindNumber(parameter, value.front().number);
  } else {
    statement.BindText(parameter, UnpaddedText(value.data(), variable.GetType()));
  }
}

void VdtWriter::Create(const vdt::TableLayout& layout) {
  std::string columns;
  for (const vdt::ColumnLayout& column : layout.columns) {
    columns += fmt::format("{}{} {}{}", columns.empty() ? "" : ", ", vdt::Quoted(column.name), column.type,
                           column.isKey ? " PRIMARY KEY" : "");
  }
  fDatabase.Execute(fmt::format("CREATE TABLE {} ({})", layout.name, columns).c_str());
}

std::string VdtWriter::InsertInto(const vdt::TableLayout& layout) const {
  std::string places = "?";
  for (std::size_t i = 1; i < layout.columns.size(); ++i)
    places += ",?";
  return fmt::format("INSERT INTO {} ({}) VALUES ({})", layout.name, vdt::ColumnList(layout), places);
}

void VdtWriter::WriteVariables() {
  Create(vdt::Variables());
  Statement insert(fDatabase, InsertInto(vdt::Variables()));
  for (std::size_t i = 0; i < fTable.ColumnCount(); ++i) {
    const VORN_Variable& variable = fTable.At(i).variable;
    const std::string format = FormatText(variable.GetFormat());
    insert.BindWhole(1, static_cast<std::int64_t>(i + 1));
    insert.BindText(2, variable.GetName());
    insert.BindWhole(3, variable.GetType());
    insert.BindText(4, variable.GetLabel());
    insert.BindText(5, format);
    insert.BindText(6, vdt::kMeasures[static_cast<std::size_t>(variable.GetMeasurementLevel())]);
    if (!insert.Run()) return;
  }
}

void VdtWriter::WriteValueLabels() {
  Create(vdt::ValueLabels());
  Statement insert(fDatabase, InsertInto(vdt::ValueLabels()));
  for (std::size_t i = 0; i < fTable.ColumnCount(); ++i) {
    const VORN_Variable& variable = fTable.At(i).variable;
    for (const auto& [value, label] : variable.GetValueLabels().Pairs()) {
      insert.BindText(1, variable.GetName());
      BindValue(insert, 2, variable, value);
      insert.BindText(3, label);
      if (!insert.Run()) return;
    }
  }
}

void VdtWriter::WriteMissingValues() {
  Create(vdt::MissingValues());
  Statement insert(fDatabase, InsertInto(vdt::MissingValues()));
  for (std::size_t i = 0; i < fTable.ColumnCount(); ++i) {
    const VORN_Variable& variable = fTable.At(i).variable;
    const host::VORN_MissingValues& missing = variable.GetMissingValues();
    insert.BindText(1, variable.GetName());
    insert.BindNull(3);
    insert.BindNull(4);
    for (const std::vector<host::OBS>& value : missing.values) {
      BindValue(insert, 2, variable, value);
      if (!insert.Run()) return;
    }
    if (!missing.hasRange) continue;
    insert.BindNull(2);
    // A row of nulls alone would declare nothing, so of two open ends the first is written as it is.
    const bool isOpenAbove = missing.rangeHigh == vdt::kOpenEnd;
    const bool isOpenBelow = missing.rangeLow == -vdt::kOpenEnd && !isOpenAbove;
    if (!isOpenBelow) insert.BindNumber(3, missing.rangeLow);
    if (!isOpenAbove) insert.BindNumber(4, missing.rangeHigh);
    if (!insert.Run()) return;
  }
}

void VdtWriter::WriteDocuments() {
  Create(vdt::Documents());
  Statement insert(fDatabase, InsertInto(vdt::Documents()));
  std::int64_t number = 0;
  for (const std::string& line : fTable.Documents()) {
    insert.BindWhole(1, ++number);
    insert.BindText(2, line);
    if (!insert.Run()) return;
  }
}

void VdtWriter::WriteCases() {
  vdt::TableLayout layout = vdt::Cases();
  for (std::size_t i = 0; i < fTable.ColumnCount(); ++i) {
    const VORN_Variable& variable = fTable.At(i).variable;
    layout.columns.push_back({variable.GetName(), variable.IsNumeric() ? "REAL" : "TEXT"});
  }
  Create(layout);
  Statement insert(fDatabase, InsertInto(layout));
  for (std::size_t row = 0; row < fTable.CaseCount() && !fDatabase.Failed(); ++row) {
    BindCase(insert, row);
    insert.Run();
  }
}

void VdtWriter::BindCase(Statement& insert, std::size_t row) {
  for (std::size_t i = 0; i < fTable.ColumnCount(); ++i) {
    const Column& column = fTable.At(i);
    const auto parameter = static_cast<int>(i + 1);
    const host::OBS* cells = &column.cells[row * column.Stride()];
    if (!column.variable.IsNumeric()) {
      const std::string_view text = UnpaddedText(cells, column.variable.GetType());
      if (FindBadByte(text) != text.size()) fDatabase.Fail(BadTextClause(column, row));
      insert.BindText(parameter, text);
    } else if (cells->number == host::kSystemMissing) {
      insert.BindNull(parameter);
    } else {
      if (!std::isfinite(cells->number)) fDatabase.Fail(BadNumberClause(column, row));
      insert.BindNumber(parameter, cells->number);
    }
  }
}

}  // namespace

std::string WriteVdt(const std::string& path, const Table& table) {
  PendingFile file(path);
  if (!file.Error().empty()) return file.Error();
  Database database(file.Path(), Database::Use::kWriting);
  VdtWriter(database, table).Write();
  // Closed before the file is completed: SQLite may hold back pages until then, and a failure to write them
  // shows only now.
  if (database.Failed() || !database.Close()) return database.Error();
  if (file.Complete()) file.Publish();
  return file.Error();
}

}  // namespace standalone
