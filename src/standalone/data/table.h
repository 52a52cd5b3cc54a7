// The active data in memory: one array of cells per variable, and the data source over them.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/data.h"

namespace standalone {

/// One variable with its values. A numeric column holds one cell per case; a string column of width w holds
/// host::CellCount(w) cells per case, padded with blanks.
struct Column {
  host::VORN_Variable variable;
  std::vector<host::OBS> cells;

  explicit Column(host::VORN_Variable v) : variable(std::move(v)) {}
  std::size_t Stride() const { return static_cast<std::size_t>(host::CellCount(variable.GetType())); }
};

/// A data file in memory. Columns are heap objects so that their addresses stay when variables are added.
class Table {
 public:
  std::size_t CaseCount() const { return fCaseCount; }
  void SetCaseCount(std::size_t count) { fCaseCount = count; }
  std::size_t ColumnCount() const { return fColumns.size(); }
  Column& At(std::size_t index) { return *fColumns[index]; }
  const Column& At(std::size_t index) const { return *fColumns[index]; }
  /// Index of a name, compared without case, or -1.
  int Find(std::string_view name) const;
  /// Appends a column; its cells are sized to the case count when empty (numbers system-missing, strings
  /// blank).
  Column& Add(host::VORN_Variable variable);
  /// Lines that say how the data came about; they go with the data from file to file.
  const std::vector<std::string>& Documents() const { return fDocuments; }
  void SetDocuments(std::vector<std::string> lines) { fDocuments = std::move(lines); }

 private:
  std::vector<std::unique_ptr<Column>> fColumns;
  std::vector<std::string> fDocuments;
  std::size_t fCaseCount = 0;
};

/// The data source of one command over a table, as the module sees it. The table is not owned and must
/// outlive the source.
std::unique_ptr<host::ProcedureDataSource> MakeProcedureDataSource(Table& table);

}  // namespace standalone
