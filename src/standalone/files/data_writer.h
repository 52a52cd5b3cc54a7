// Writing a table to a data file.
#pragma once

#include <string>

#include "standalone/data/table.h"

namespace standalone {

/// Why no table can be written under a name, before there is one: its ending (.csv, .tsv and .vdt name a
/// form), what there is at the path already, or a schema made by hand that its own would replace.
/// Empty when nothing is known against it.
std::string OutputNameFault(const std::string& path);

/// Writes the whole table, with dictionary and documents, in the form that the file's ending names. The file,
/// and for text its schema beside it, is written whole or not at all, and a failure leaves what was there
/// before. Empty for success, otherwise what to tell the user.
std::string WriteDataFile(const std::string& path, const Table& table);

}  // namespace standalone
