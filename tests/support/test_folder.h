// A folder of its own for a test's files, removed at its end.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>

class TestFolder {
 public:
  TestFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "tavo-test-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder");
    fPath = pattern;
  }
  ~TestFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(fPath, ignored);
  }
  TestFolder(const TestFolder&) = delete;
  TestFolder& operator=(const TestFolder&) = delete;

  std::string Path(const std::string& name = "") const { return (fPath / name).string(); }

  /// Writes a file and returns its path.
  std::string Write(const std::string& name, std::string_view bytes) const {
    std::ofstream(Path(name), std::ios::binary) << bytes;
    return Path(name);
  }

 private:
  std::filesystem::path fPath;
};
