#include "standalone/files/vdt_file.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <unordered_map>

#include "standalone/data/cells.h"
#include "standalone/data/format_names.h"
#include "standalone/files/database.h"
#include "standalone/files/dictionary_check.h"
#include "standalone/files/vdt_cases.h"
#include "standalone/files/vdt_layout.h"
#include "standalone/text/utf8.h"

namespace standalone {

namespace {

namespace fs = std::filesystem;
using host::VORN_Variable;
using Kind = Statement::Kind;

constexpr std::size_t kShownName = 64;                       // characters
constexpr std::int64_t kExactWhole = std::int64_t{1} << 53;  // whole numbers up to here are doubles

/// What the rows of value_labels and missing_values say of one variable.
struct Attributes {
  host::VORN_ValueLabelMap labels;
  host::VORN_MissingValues missing;
};

/// Fills a table from a database. Failures stay in the database.
class VdtReader {
 public:
  VdtReader(Database& database, std::size_t bytes, Table& table)
      : fDatabase(database), fNBytes(bytes), fTable(table) {}

  /// All in one transaction, so that another program's writing can't mix two states.
  void Read() {
    fDatabase.Execute("BEGIN");
    CheckMarks();
    ReadVariables();
    ReadValueLabels();
    ReadMissingValues();
    GiveAttributes();
    ReadDocuments();
    CheckDictionary();
    if (!fDatabase.Failed()) ReadVdtCases(fDatabase, fNBytes, fTable);
    fDatabase.Execute("COMMIT");
  }

 private:
  void CheckMarks();
  void ReadVariables();
  void ReadValueLabels();
  void ReadMissingValues();
  void GiveAttributes();
  void ReadDocuments();
  void CheckDictionary();
  bool AddVariable(const Statement& row);
  VORN_Variable* VariableOf(const Statement& row, const char* table);
  bool ReadValue(const Statement& row, const VORN_Variable& variable, const char* table,
                 std::vector<host::OBS>& value);
  bool ReadMissing(const Statement& row);

  Database& fDatabase;
  const std::size_t fNBytes;
  Table& fTable;
  std::vector<Attributes> fAttributes;                      // by variable
  std::unordered_map<std::string, std::size_t> fPositions;  // by name in upper case
  std::size_t fAt = 0;                                      // the variable of the row at hand
  std::size_t fDictionaryBytes = 0;                         // that labelled and missing values take
};

/// NOT INDEXED: an index is a second copy of a table's values, and in a damaged or hostile file it may say
/// something else than the table.
std::string Select(const vdt::TableLayout& layout) {
  return fmt::format("SELECT {} FROM {} NOT INDEXED", vdt::ColumnList(layout), layout.name);
}

void VdtReader::CheckMarks() {
  if (fDatabase.Ask("PRAGMA application_id") != vdt::kApplicationId)
    fDatabase.Fail("it is no case file; a database of another program can't be read");
  const std::int64_t version = fDatabase.Ask("PRAGMA user_version");
  if (version != vdt::kVersion)
    fDatabase.Fail(fmt::format("it has version {} of the form, and this program reads version {}", version,
                               vdt::kVersion));
}

bool VdtReader::AddVariable(const Statement& row) {
  const std::size_t position = fTable.ColumnCount() + 1;
  const std::int64_t width = row.Whole(2);
  const auto format = FormatFromText(row.Text(4));
  const auto measure = std::find(vdt::kMeasures.begin(), vdt::kMeasures.end(), row.Text(5));
  const char* fault = nullptr;
  if (row.Whole(0) != static_cast<std::int64_t>(position)) {
    fault = "its position is not the next one";
  } else if (row.KindOf(1) != Kind::kText || !host::ValidateVORNName(row.Text(1))) {
    fault = "its name is not legal";
  } else if (row.KindOf(2) != Kind::kWhole || width < 0 || width > static_cast<std::int64_t>(kWidestText)) {
    fault = "its width is not legal";
  } else if (row.KindOf(3) != Kind::kText) {
    fault = "its label is no text";
  } else if (!format) {
    fault = "its format is not known";
  } else if (measure == vdt::kMeasures.end()) {
    fault = "its measure is not known";
  }
  if (fault != nullptr) return fDatabase.Fail(fmt::format("variable {}: {}", position, fault));
  VORN_Variable variable(std::string(row.Text(1)), static_cast<int>(width));
  variable.SetLabel(std::string(row.Text(3)));
  variable.SetFormat(*format);
  variable.SetMeasurementLevel(static_cast<host::MeasurementLevel>(measure - vdt::kMeasures.begin()));
  fTable.Add(std::move(variable));
  return true;
}

void VdtReader::ReadVariables() {
  CheckVdtTable(fDatabase, vdt::Variables());
  Statement rows(fDatabase, Select(vdt::Variables()));
  while (rows.NextRow() && AddVariable(rows)) {
    if (fTable.ColumnCount() > fDatabase.MostColumns()) fDatabase.Fail("it has too many variables");
  }
  fAttributes.resize(fTable.ColumnCount());
  for (std::size_t i = 0; i < fTable.ColumnCount(); ++i)
    fPositions.emplace(fTable.At(i).variable.GetUpperCaseName(), i);
}

VORN_Variable* VdtReader::VariableOf(const Statement& row, const char* table) {
  const std::string_view name = row.KindOf(0) == Kind::kText ? row.Text(0) : std::string_view();
  const auto known = fPositions.find(host::GetUpperVarName(name));
  if (known == fPositions.end()) {
    fDatabase.Fail(fmt::format("table {} speaks of a variable {}, which there isn't", table,
                               Shortened(ValidUtf8(name), kShownName)));
    return nullptr;
  }
  fAt = known->second;
  return &fTable.At(fAt).variable;
}

bool VdtReader::ReadValue(const Statement& row, const VORN_Variable& variable, const char* table,
                          std::vector<host::OBS>& value) {
  const Kind kind = row.KindOf(1);
  bool isFit = false;
  if (!variable.IsNumeric()) {
    const std::string_view text = kind == Kind::kText ? row.Text(1) : std::string_view();
    isFit = kind == Kind::kText && text.size() <= static_cast<std::size_t>(variable.GetType());
    if (isFit) value = TextValue(text, variable.GetType());
  } else if (kind == Kind::kNumber || kind == Kind::kWhole) {
    isFit = kind == Kind::kNumber || (row.Whole(1) >= -kExactWhole && row.Whole(1) <= kExactWhole);
    value = NumberValue(row.Number(1));
  }
  fDictionaryBytes += value.size() * sizeof(host::OBS);
  if (fDictionaryBytes > kDictionaryRoom)
    return fDatabase.Fail(
        "its value labels would fill the memory, as each takes the full width of its variable");
  return isFit || fDatabase.Fail(fmt::format("table {} has a value that variable {} can't have", table,
                                             variable.GetName()));
}

void VdtReader::ReadValueLabels() {
  const vdt::TableLayout layout = vdt::ValueLabels();
  CheckVdtTable(fDatabase, layout);
  Statement rows(fDatabase, Select(layout));
  for (std::size_t count = 0; rows.NextRow(); ++count) {
    const VORN_Variable* variable = VariableOf(rows, "value_labels");
    std::vector<host::OBS> value;
    if (variable == nullptr || !ReadValue(rows, *variable, "value_labels", value)) return;
    fAttributes[fAt].labels.AddPair(std::move(value), std::string(rows.Text(2)));
    if (count > MostVdtRows(fNBytes)) fDatabase.Fail(kVdtTooManyRows);
  }
}

bool VdtReader::ReadMissing(const Statement& row) {
  const VORN_Variable* variable = VariableOf(row, "missing_values");
  if (variable == nullptr) return false;
  host::VORN_MissingValues& missing = fAttributes[fAt].missing;
  const bool isValue = row.KindOf(1) != Kind::kNull;
  const auto isEnd = [&](int column) { return row.KindOf(column) == Kind::kNumber; };
  const auto isOpen = [&](int column) { return row.KindOf(column) == Kind::kNull; };
  const bool isRange = (isEnd(2) || isOpen(2)) && (isEnd(3) || isOpen(3)) && (isEnd(2) || isEnd(3));
  if (!isValue && (!isRange || missing.hasRange)) {
    return fDatabase.Fail(fmt::format("table missing_values must have a value, or one range, for variable {}",
                                      variable->GetName()));
  }
  if (isValue) {
    std::vector<host::OBS> value;
    if (!ReadValue(row, *variable, "missing_values", value)) return false;
    missing.values.push_back(std::move(value));
    return true;
  }
  missing.hasRange = true;
  missing.rangeLow = isOpen(2) ? -vdt::kOpenEnd : row.Number(2);
  missing.rangeHigh = isOpen(3) ? vdt::kOpenEnd : row.Number(3);
  return true;
}

void VdtReader::ReadMissingValues() {
  const vdt::TableLayout layout = vdt::MissingValues();
  CheckVdtTable(fDatabase, layout);
  Statement rows(fDatabase, Select(layout));
  for (std::size_t count = 0; rows.NextRow() && ReadMissing(rows); ++count) {
    if (count > MostVdtRows(fNBytes)) fDatabase.Fail(kVdtTooManyRows);
  }
}

void VdtReader::GiveAttributes() {
  for (std::size_t i = 0; i < fAttributes.size(); ++i) {
    fTable.At(i).variable.SetValueLabels(std::move(fAttributes[i].labels));
    fTable.At(i).variable.SetMissingValues(std::move(fAttributes[i].missing));
  }
}

void VdtReader::ReadDocuments() {
  const vdt::TableLayout layout = vdt::Documents();
  CheckVdtTable(fDatabase, layout);
  Statement rows(fDatabase, Select(layout));
  std::vector<std::string> lines;
  while (rows.NextRow()) {
    lines.emplace_back(rows.Text(1));
    if (lines.size() > MostVdtRows(fNBytes)) fDatabase.Fail(kVdtTooManyRows);
  }
  fTable.SetDocuments(std::move(lines));
}

void VdtReader::CheckDictionary() {
  if (fDatabase.Failed()) return;
  if (std::string fault = DictionaryFault(fTable); !fault.empty()) fDatabase.Fail(std::move(fault));
}

/// Why a file can't be opened as a database at all; empty when it can. SQLite would wait at a pipe, take an
/// empty file for an empty database, and not tell a missing file from a forbidden one.
std::string OpeningFault(const std::string& path, std::size_t& bytes) {
  std::error_code failure;
  const fs::file_status status = fs::status(path, failure);
  if (fs::exists(status) && !fs::is_regular_file(status)) return "it is no regular file";
  errno = 0;
  const std::ifstream file(path, std::ios::binary);
  if (!file) return errno != 0 ? std::strerror(errno) : "it can't be opened";
  bytes = fs::file_size(path, failure);
  if (failure) return failure.message();
  return bytes == 0 ? "it is empty" : "";
}

}  // namespace

ReadResult ReadVdt(const std::string& path) {
  ReadResult result;
  std::size_t bytes = 0;
  std::string fault = OpeningFault(path, bytes);
  if (fault.empty()) {
    Database database(path, Database::Use::kReading);
    VdtReader(database, bytes, result.table).Read();
    fault = database.Error();
  }
  result.ok = fault.empty();
  if (result.ok) return result;
  result.table = Table();
  result.error = fmt::format("{}: the case file can't be read: {}", path, fault);
  return result;
}

}  // namespace standalone
