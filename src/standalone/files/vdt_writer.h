// Writing case files (.vdt).
#pragma once

#include <string>

#include "standalone/data/table.h"

namespace standalone {

/// Writes a table as a case file, whole or not at all. The result says what went wrong, as a clause; empty on
/// success. The dictionary must be sound (`DictionaryFault`).
std::string WriteVdt(const std::string& path, const Table& table);

}  // namespace standalone
