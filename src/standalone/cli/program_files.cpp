#include "standalone/cli/program_files.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

namespace standalone {

namespace {

namespace fs = std::filesystem;

// More than a file of commands may hold: reading stops here, and the tokeniser refuses what is too large.
constexpr std::size_t kMaxBytes = std::size_t{16} << 20;

}  // namespace

std::string ReadWholeStream(std::istream& in, std::string& text) {
  std::string block(std::size_t{1} << 16, '\0');
  while (in && text.size() < kMaxBytes) {
    in.read(block.data(), static_cast<std::streamsize>(block.size()));
    text.append(block, 0, static_cast<std::size_t>(in.gcount()));
  }
  return in.bad() ? "reading failed" : std::string();
}

std::string ReadWholeFile(const std::string& path, std::string& text) {
  std::error_code ignored;
  if (fs::is_directory(path, ignored)) return "it is a folder";
  errno = 0;
  std::ifstream in(path, std::ios::binary);
  if (!in) return errno != 0 ? std::strerror(errno) : "it can't be opened";
  return ReadWholeStream(in, text);
}

}  // namespace standalone
