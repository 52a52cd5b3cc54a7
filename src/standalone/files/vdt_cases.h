// The cases of a case file (.vdt), and the checks that all its tables share.
#pragma once

#include <cstddef>

#include "standalone/data/table.h"
#include "standalone/files/database.h"
#include "standalone/files/vdt_layout.h"

namespace standalone {

constexpr const char* kVdtTooManyRows =
    "the file is damaged: a table has more rows than the file has room for";

/// A row takes at least this many bytes of a file, so a file of `bytes` has no more rows than that.
constexpr std::size_t MostVdtRows(std::size_t bytes) {
  return bytes / 4;
}

/// Checks that a table is a plain one, with exactly these columns and none that is computed. A failure stays
/// in the database.
bool CheckVdtTable(Database& database, const vdt::TableLayout& layout);

/// Reads the cases into the table's columns, which are the file's variables and empty. `bytes` is the file's
/// size. A failure stays in the database.
void ReadVdtCases(Database& database, std::size_t bytes, Table& table);

}  // namespace standalone
