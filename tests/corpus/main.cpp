// Runs a fuzz target on every file of a folder: corpus_<target> FOLDER. A file that is wrong ends the
// program; its name is the last that is printed.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <vector>

#include "target.h"

namespace {

namespace fs = std::filesystem;

std::vector<fs::path> FilesOf(const fs::path& folder) {
  std::vector<fs::path> files;
  for (const auto& entry : fs::directory_iterator(folder)) {
    if (entry.is_regular_file()) files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

void Run(const fs::path& path) {
  std::cout << path.filename().string() << std::endl;  // flushed: the next line may not come
  std::ifstream file(path, std::ios::binary);
  const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 2) {
    std::cerr << "usage: " << arguments[0] << " FOLDER\n";
    return 2;
  }
  const std::vector<fs::path> files = FilesOf(arguments[1]);
  for (const fs::path& file : files)
    Run(file);
  std::cout << files.size() << " inputs\n";
  return files.empty() ? 1 : 0;
}
