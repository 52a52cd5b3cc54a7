#include "standalone/files/atomic_file.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <system_error>

#include "standalone/files/pending_file.h"

namespace standalone {

namespace {

namespace fs = std::filesystem;

std::string WriteStream(const fs::path& path, const std::function<void(std::ostream&)>& write) {
  errno = 0;
  std::ofstream stream(path, std::ios::binary | std::ios::trunc);
  if (stream) write(stream);
  stream.close();
  if (stream) return {};
  return errno != 0 ? std::strerror(errno) : "the text could not be written whole";
}

std::string Replace(const fs::path& target, const std::function<void(std::ostream&)>& write) {
  PendingFile file(target);
  if (!file.Error().empty()) return file.Error();
  if (std::string error = WriteStream(file.Path(), write); !error.empty()) return error;
  if (file.Complete()) file.Publish();
  return file.Error();
}

}  // namespace

std::string WriteFileAtomically(const fs::path& target, const std::function<void(std::ostream&)>& write) {
  std::error_code ignored;
  const fs::path resolved = fs::is_symlink(target, ignored) ? fs::weakly_canonical(target, ignored) : target;
  const fs::file_status status = fs::status(resolved, ignored);
  const bool isSpecial = fs::exists(status) && !fs::is_regular_file(status) && !fs::is_directory(status);
  const std::string error = fs::is_directory(status) ? "it is a folder"
                            : isSpecial              ? WriteStream(resolved, write)
                                                     : Replace(resolved, write);
  return error.empty() ? error : fmt::format("{} cannot be written: {}", target.string(), error);
}

}  // namespace standalone
