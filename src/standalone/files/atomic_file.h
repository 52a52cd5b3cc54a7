// Writing files so that they are either whole or not there.
#pragma once

#include <filesystem>
#include <functional>
#include <iosfwd>
#include <string>
#include <string_view>

namespace standalone {

/// A file that is being written beside its target, under a name that no other has, and that takes the
/// target's place in one step. Unless it is published, nothing of it is left and the target is as it was. A
/// target that is a symbolic link stands for the file that it points at.
///
/// The first failure is kept (`Error`) and makes all later steps do nothing, so a caller may ask once, at the
/// end.
class PendingFile {
 public:
  /// Makes the empty temporary file.
  explicit PendingFile(const std::filesystem::path& target);
  ~PendingFile();
  PendingFile(const PendingFile&) = delete;
  PendingFile& operator=(const PendingFile&) = delete;

  /// Where to write, for code that opens the file itself.
  const std::filesystem::path& Path() const { return fPath; }
  /// What went wrong, in the system's words; empty when all is well.
  const std::string& Error() const { return fError; }

  /// Appends bytes through a buffer.
  bool Append(std::string_view bytes);
  /// Brings all bytes onto the disk and gives the file the permissions of its target, or those of a new file.
  bool Complete();
  /// Lets the file take the target's place, for good: the folder is brought onto the disk as well.
  bool Publish();

 private:
  bool Flush();
  bool Fail(int systemError);

  std::filesystem::path fTarget;
  std::filesystem::path fPath;  // empty once there is no temporary file
  std::string fBuffer;
  std::string fError;
  int fHandle = -1;
};

/// Calls `write` on a temporary file beside the target, then renames it over the target. On failure nothing
/// of the new text is left, a target that was there before is untouched, and the text says what went wrong;
/// empty on success. The target keeps its permissions when it was there. A target that is no regular file (a
/// device or a pipe) is written directly. A symbolic link is followed.
std::string WriteFileAtomically(const std::filesystem::path& target,
                                const std::function<void(std::ostream&)>& write);

}  // namespace standalone
