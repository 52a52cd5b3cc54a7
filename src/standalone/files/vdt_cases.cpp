#include "standalone/files/vdt_cases.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "standalone/data/cells.h"
#include "standalone/files/dictionary_check.h"
#include "standalone/text/utf8.h"

namespace standalone {

namespace {

using Kind = Statement::Kind;

// Wide strings take their full width in memory but not in the file, which makes room for abuse. The cells may
// exceed the file's size by this much and this many times, beyond which a file is refused rather than let to
// fill the memory.
constexpr std::size_t kRoom = std::size_t{256} << 20;
constexpr std::size_t kRoomPerByte = 256;

class CasesReader {
 public:
  CasesReader(Database& database, std::size_t bytes, Table& table) : fDatabase(database), fTable(table) {
    std::size_t cells = 0;
    for (std::size_t i = 0; i < table.ColumnCount(); ++i)
      cells += table.At(i).Stride();
    fMostRows = MostVdtRows(bytes);
    fRoomRows = (kRoom + kRoomPerByte * bytes) / (std::max(cells, std::size_t{1}) * sizeof(host::OBS));
  }

  void Read();

 private:
  void Reserve();
  bool ReadRow(const Statement& row);
  bool ReadNumber(const Statement& row, int place, Column& column);
  bool ReadText(const Statement& row, int place, Column& column);

  Database& fDatabase;
  Table& fTable;
  std::size_t fMostRows = 0;  // that the file has bytes for
  std::size_t fRoomRows = 0;  // that may be held in memory
  std::size_t fNRows = 0;
};

void CasesReader::Read() {
  vdt::TableLayout layout = vdt::Cases();
  for (std::size_t i = 0; i < fTable.ColumnCount(); ++i) {
    const host::VORN_Variable& variable = fTable.At(i).variable;
    layout.columns.push_back({variable.GetName(), variable.IsNumeric() ? "REAL" : "TEXT"});
  }
  if (!CheckVdtTable(fDatabase, layout)) return;
  Reserve();
  // Rows come in the order of their numbers in any case; saying so costs nothing. No variable can have the
  // name.
  Statement rows(fDatabase,
                 fmt::format("SELECT {} FROM cases NOT INDEXED ORDER BY _rowid_", vdt::ColumnList(layout)));
  while (rows.NextRow() && ReadRow(rows)) {
  }
  fTable.SetCaseCount(fNRows);
}

/// The last row's number tells the number of rows as a rule; a wrong one costs nothing but time.
void CasesReader::Reserve() {
  const std::int64_t last = fDatabase.Ask("SELECT max(_rowid_) FROM cases");
  const auto rows = static_cast<std::size_t>(std::max<std::int64_t>(last, 0));
  if (rows > std::min(fMostRows, fRoomRows)) return;
  for (std::size_t i = 0; i < fTable.ColumnCount(); ++i)
    fTable.At(i).cells.reserve(rows * fTable.At(i).Stride());
}

bool CasesReader::ReadRow(const Statement& row) {
  if (fNRows >= fMostRows) return fDatabase.Fail(kVdtTooManyRows);
  if (fNRows >= fRoomRows)
    return fDatabase.Fail("its cases would fill the memory, as each takes the full width of its strings");
  for (std::size_t i = 0; i < fTable.ColumnCount(); ++i) {
    Column& column = fTable.At(i);
    const auto place = static_cast<int>(i);
    if (!(column.variable.IsNumeric() ? ReadNumber(row, place, column) : ReadText(row, place, column)))
      return false;
  }
  ++fNRows;
  return true;
}

bool CasesReader::ReadNumber(const Statement& row, int place, Column& column) {
  host::OBS cell;
  cell.number = host::kSystemMissing;
  const Kind kind = row.KindOf(place);
  if (kind == Kind::kNumber) {
    cell.number = row.Number(place);
  } else if (kind != Kind::kNull) {
    return fDatabase.Fail(fmt::format("the value of variable {} in case {} is no number",
                                      column.variable.GetName(), fNRows + 1));
  }
  if (!std::isfinite(cell.number)) return fDatabase.Fail(BadNumberClause(column, fNRows));
  column.cells.push_back(cell);
  return true;
}

bool CasesReader::ReadText(const Statement& row, int place, Column& column) {
  const Kind kind = row.KindOf(place);
  if (kind != Kind::kText && kind != Kind::kNull) {
    return fDatabase.Fail(
        fmt::format("the value of variable {} in case {} is no text", column.variable.GetName(), fNRows + 1));
  }
  const std::string_view text = row.Text(place);
  const int width = column.variable.GetType();
  if (text.size() > static_cast<std::size_t>(width)) {
    return fDatabase.Fail(fmt::format("the text of variable {} in case {} has {} bytes, and the variable {}",
                                      column.variable.GetName(), fNRows + 1, text.size(), width));
  }
  if (FindBadByte(text) != text.size()) return fDatabase.Fail(BadTextClause(column, fNRows));
  const std::size_t first = column.cells.size();
  column.cells.resize(first + column.Stride());
  PadText(text, width, &column.cells[first]);
  return true;
}

bool FailLayout(Database& database, const std::string& table) {
  return database.Fail(fmt::format("its table {} is not laid out as in a case file", table));
}

}  // namespace

bool CheckVdtTable(Database& database, const vdt::TableLayout& layout) {
  {
    // Only a plain table has pages of its own; a view or a table of an extension has none.
    Statement found(database, "SELECT type, rootpage FROM sqlite_schema WHERE name = ? COLLATE NOCASE");
    found.BindText(1, layout.name);
    const bool isPlain = found.NextRow() && found.Text(0) == "table" && found.Whole(1) > 0;
    if (!isPlain) return FailLayout(database, layout.name);
  }
  Statement columns(database, fmt::format("PRAGMA table_xinfo({})", vdt::Quoted(layout.name)));
  std::size_t count = 0;
  while (columns.NextRow()) {  // cid, name, type, notnull, default, pk, hidden
    if (count >= layout.columns.size()) return FailLayout(database, layout.name);
    const vdt::ColumnLayout& wanted = layout.columns[count++];
    const bool isFit = columns.Text(1) == wanted.name && columns.Text(2) == wanted.type &&
                       (columns.Whole(5) == 1) == wanted.isKey && columns.Whole(6) == 0;
    if (!isFit) return FailLayout(database, layout.name);
  }
  if (database.Failed()) return false;
  return count == layout.columns.size() || FailLayout(database, layout.name);
}

void ReadVdtCases(Database& database, std::size_t bytes, Table& table) {
  CasesReader(database, bytes, table).Read();
}

}  // namespace standalone
