#include "standalone/files/atomic_file.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <system_error>

#include "host/files.h"

namespace standalone {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kBufferBytes = std::size_t{1} << 18;
constexpr std::size_t kLongestStem = 200;  // bytes of the target's name in that of the temporary file

/// The file that a link points at, or the path itself.
fs::path Resolved(const fs::path& target) {
  std::error_code failure;
  if (!fs::is_symlink(target, failure)) return target;
  const fs::path resolved = fs::weakly_canonical(target, failure);
  return failure ? target : resolved;
}

/// Permissions of the target when it exists; otherwise those that a new file gets.
mode_t PermissionsFor(const fs::path& target) {
  struct stat status {};
  if (::stat(target.c_str(), &status) == 0) return status.st_mode & 07777;
  // The mask can only be asked for by setting it.
  const mode_t mask = ::umask(0);
  ::umask(mask);
  return 0666 & ~mask;
}

/// Keeps the renaming over a crash of the machine. Not all file systems can, and the file is in place
/// already, so there is nothing to tell when it fails.
void SyncFolder(const fs::path& file) {
  const fs::path folder = file.has_parent_path() ? file.parent_path() : fs::path(".");
  const int handle = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (handle < 0) return;
  ::fsync(handle);
  ::close(handle);
}

}  // namespace

PendingFile::PendingFile(const fs::path& target) : fTarget(Resolved(target)) {
  // Beside the target, since a file can be renamed within one file system only; hidden, since for a while
  // it is half a file.
  const std::string stem = fTarget.filename().string().substr(0, kLongestStem);
  std::string name = (fTarget.parent_path() / ("." + stem + ".XXXXXX")).string();
  fHandle = ::mkostemp(name.data(), O_CLOEXEC);
  if (fHandle < 0) {
    Fail(errno);
    return;
  }
  fPath = name;
}

PendingFile::~PendingFile() {
  if (fHandle >= 0) ::close(fHandle);
  std::error_code ignored;
  if (!fPath.empty()) fs::remove(fPath, ignored);
}

bool PendingFile::Append(std::string_view bytes) {
  if (!fError.empty()) return false;
  fBuffer.append(bytes);
  return fBuffer.size() < kBufferBytes || Flush();
}

bool PendingFile::Flush() {
  std::string_view left = fBuffer;
  while (!left.empty()) {
    const ssize_t count = ::write(fHandle, left.data(), left.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return Fail(errno);
    left.remove_prefix(static_cast<std::size_t>(count));
  }
  fBuffer.clear();
  return true;
}

bool PendingFile::Complete() {
  if (!fError.empty() || !Flush()) return false;
  // First the bytes, then the name (in Publish): after a crash the other order can leave a file of the
  // right name without content. EINVAL: a file system that knows no syncing.
  if (::fsync(fHandle) != 0 && errno != EINVAL) return Fail(errno);
  // Where permissions can't be set, the file stays private to its owner, which harms nobody.
  if (::fchmod(fHandle, PermissionsFor(fTarget)) != 0) errno = 0;
  const int handle = fHandle;
  fHandle = -1;
  return ::close(handle) == 0 || Fail(errno);
}

bool PendingFile::Publish() {
  if (!fError.empty()) return false;
  if (std::rename(fPath.c_str(), fTarget.c_str()) != 0) return Fail(errno);
  fPath.clear();
  SyncFolder(fTarget);
  return true;
}

bool PendingFile::Fail(int systemError) {
  if (fError.empty()) fError = std::strerror(systemError);
  return false;
}

namespace {

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
  // Renaming over a device or a pipe would replace it by a file.
  const bool isSpecial = fs::exists(status) && !fs::is_regular_file(status) && !fs::is_directory(status);
  const std::string error = fs::is_directory(status) ? "it is a folder"
                            : isSpecial              ? WriteStream(resolved, write)
                                                     : Replace(resolved, write);
  return error.empty() ? error : fmt::format("{} cannot be written: {}", target.string(), error);
}

}  // namespace standalone

namespace host {

bool WriteTextFile(std::string_view name, const std::function<bool(std::ostream&)>& write,
                   std::string& error) {
  error.clear();
  if (name.empty() || name.find('\0') != std::string_view::npos) {
    error = "the name is not that of a file";
    return false;
  }
  bool gaveUp = false;
  const auto writeAll = [&](std::ostream& out) {
    gaveUp = !write(out);
    // A failed stream keeps the file from being put in place.
    if (gaveUp) out.setstate(std::ios::failbit);
  };
  error = standalone::WriteFileAtomically(BEPesGetInputPath(name), writeAll);
  const bool isWritten = error.empty();
  if (gaveUp) error.clear();
  return isWritten;
}

}  // namespace host
