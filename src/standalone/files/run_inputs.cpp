#include "standalone/files/run_inputs.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "standalone/files/csv_writer.h"
#include "standalone/files/data_reader.h"

namespace standalone {

bool IsSameFile(const std::string& a, const std::string& b) {
  namespace fs = std::filesystem;
  std::error_code failure;
  return fs::is_regular_file(a, failure) && fs::equivalent(a, b, failure) && !failure;
}

void RunInputs::Add(std::string path, std::string use) {
  if (!path.empty()) fInputs.push_back({std::move(path), std::move(use)});
}

std::string RunInputs::UseOf(const std::string& path) const {
  // The last first: a command knows better what it reads a file for than who looked for its name beforehand.
  const auto input = std::find_if(fInputs.rbegin(), fInputs.rend(),
                                  [&](const Input& each) { return IsSameFile(path, each.path); });
  return input == fInputs.rend() ? std::string() : input->use;
}

std::string RunInputs::ReplacedBy(const std::string& path) const {
  std::string use = UseOf(path);
  const DataFileForm form = DataFileFormOf(path);
  const bool hasSchema = form == DataFileForm::kCommas || form == DataFileForm::kTabs;
  return use.empty() && hasSchema ? UseOf(SchemaPathFor(path)) : use;
}

}  // namespace standalone
