#include "output/atomic_file.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <system_error>

namespace standalone {

namespace {

namespace fs = std::filesystem;

/// A file of a name that no other has, beside the target; taken away again unless it was kept.
class TemporaryFile {
 public:
  explicit TemporaryFile(const fs::path& target) {
    std::string name = (target.parent_path() / ("." + target.filename().string() + ".XXXXXX")).string();
    const int handle = ::mkostemp(name.data(), O_CLOEXEC);
    if (handle < 0) {
      fError = std::strerror(errno);
      return;
    }
    ::close(handle);
    fPath = name;
  }
  ~TemporaryFile() {
    std::error_code ignored;
    if (!fPath.empty()) fs::remove(fPath, ignored);
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  const fs::path& Path() const { return fPath; }
  const std::string& Error() const { return fError; }
  void Keep() { fPath.clear(); }

 private:
  fs::path fPath;
  std::string fError;
};

std::string WriteStream(const fs::path& path, const std::function<void(std::ostream&)>& write) {
  errno = 0;
  std::ofstream stream(path, std::ios::binary | std::ios::trunc);
  if (stream) write(stream);
  stream.close();
  if (stream) return {};
  return errno != 0 ? std::strerror(errno) : "the text could not be written whole";
}

/// Makes sure that the bytes are on the disk before the name points at them.
std::string Sync(const fs::path& path) {
  const int handle = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (handle < 0) return std::strerror(errno);
  const bool failed = ::fsync(handle) != 0 && errno != EINVAL;
  const std::string error = failed ? std::strerror(errno) : "";
  ::close(handle);
  return error;
}

/// Permissions of the target when it exists; otherwise those that a new file gets.
void SetPermissions(const fs::path& path, const fs::path& target) {
  struct stat status {};
  const mode_t mask = ::umask(0);
  ::umask(mask);
  const mode_t mode = ::stat(target.c_str(), &status) == 0 ? status.st_mode & 07777 : 0666 & ~mask;
  if (::chmod(path.c_str(), mode) != 0) return;  // the file stays private to its owner
}

std::string Replace(const fs::path& target, const std::function<void(std::ostream&)>& write) {
  TemporaryFile temporary(target);
  if (!temporary.Error().empty()) return temporary.Error();
  if (std::string error = WriteStream(temporary.Path(), write); !error.empty()) return error;
  if (std::string error = Sync(temporary.Path()); !error.empty()) return error;
  SetPermissions(temporary.Path(), target);
  std::error_code failure;
  fs::rename(temporary.Path(), target, failure);
  if (failure) return failure.message();
  temporary.Keep();
  return {};
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
