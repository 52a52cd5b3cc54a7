// Reading case files (.vdt).
#pragma once

#include <string>

#include "standalone/files/data_reader.h"

namespace standalone {

/// Reads a case file. The file is treated as hostile: what isn't laid out as a case file, is damaged, or asks
/// for much more memory than its size justifies is refused with a reason. Throws std::bad_alloc when memory
/// runs out.
ReadResult ReadVdt(const std::string& path);

}  // namespace standalone
