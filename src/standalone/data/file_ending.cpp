#include "standalone/data/file_ending.h"

#include <algorithm>
#include <filesystem>

namespace standalone {

DataFileForm DataFileFormOf(const std::string& path) {
  std::string ending = std::filesystem::path(path).extension().string();
  std::transform(ending.begin(), ending.end(), ending.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  if (ending == ".csv") return DataFileForm::kCommas;
  if (ending == ".tsv") return DataFileForm::kTabs;
  if (ending == ".vdt") return DataFileForm::kCaseFile;
  return DataFileForm::kUnknown;
}

}  // namespace standalone
