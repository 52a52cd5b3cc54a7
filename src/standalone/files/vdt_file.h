// Case files (.vdt): reading and writing them whole.
#pragma once

#include <string>

#include "standalone/files/data_reader.h"

namespace standalone {

/// Reads a case file. The file is treated as hostile: what isn't laid out as a case file, is damaged, or asks
/// for much more memory than its size justifies is refused with a reason. Throws std::bad_alloc when memory
/// runs out.
ReadResult ReadVdt(const std::string& path);

/// Writes a table as a case file, whole or not at all. The result says what went wrong, as a clause; empty on
/// success. The dictionary must be sound (`DictionaryFault`).
std::string WriteVdt(const std::string& path, const Table& table);

}  // namespace standalone
