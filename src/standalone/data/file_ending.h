// The form of a data file, which its ending tells.
#pragma once

#include <string>

namespace standalone {

enum class DataFileForm { kUnknown, kCommas, kTabs, kCaseFile };

/// The form by the ending, in any case: .csv, .tsv, .vdt.
DataFileForm DataFileFormOf(const std::string& path);

}  // namespace standalone
