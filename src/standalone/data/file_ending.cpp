#include "standalone/data/file_ending.h"

#include <filesystem>

#include "standalone/text/ascii.h"

namespace standalone {

DataFileForm DataFileFormOf(const std::string& path) {
  const std::string ending = UpperOf(std::filesystem::path(path).extension().string());
  if (ending == ".CSV") return DataFileForm::kCommas;
  if (ending == ".TSV") return DataFileForm::kTabs;
  if (ending == ".VDT") return DataFileForm::kCaseFile;
  return DataFileForm::kUnknown;
}

}  // namespace standalone
