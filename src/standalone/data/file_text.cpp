#include "standalone/data/file_text.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "standalone/text/utf8.h"

namespace standalone {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::size_t kFirstRoom = std::size_t{1} << 16;

/// An open file, closed at the end of its life.
class OpenFile {
 public:
  explicit OpenFile(const std::string& path) : fDescriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC)) {}
  ~OpenFile() {
    if (fDescriptor >= 0) ::close(fDescriptor);
  }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;
  int Get() const { return fDescriptor; }

 private:
  int fDescriptor;
};

/// Bytes that the file will probably give; 0 when it can't tell, as for a pipe.
std::size_t ExpectedSize(int descriptor) {
  struct stat status {};
  if (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode) || status.st_size < 0) return 0;
  return static_cast<std::size_t>(status.st_size);
}

std::string LastError() {
  return std::strerror(errno);
}

}  // namespace

FileText::FileText(std::string name, std::string_view text)
    : fName(std::move(name)),
      fBytes(std::make_unique_for_overwrite<char[]>(text.size() + 1)),
      fEnd(text.size()) {
  std::copy(text.begin(), text.end(), fBytes.get());
  fBytes[fEnd] = '\n';
  SkipByteOrderMark();
}

std::string FileText::Read(const std::string& path, FileText& text, std::size_t limit) {
  const OpenFile file(path);
  if (file.Get() < 0) return LastError();

  std::size_t room =
      std::max(ExpectedSize(file.Get()) + 1, kFirstRoom);  // one more shows the end without growing
  auto bytes = std::make_unique_for_overwrite<char[]>(room + 1);
  std::size_t size = 0;
  for (;;) {
    const ssize_t count = ::read(file.Get(), bytes.get() + size, room - size);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return LastError();
    if (count == 0) break;
    size += static_cast<std::size_t>(count);
    if (size > limit) return "it is larger than " + std::to_string(limit >> 20) + " MiB";
    if (size < room) continue;
    room *= 2;
    auto larger = std::make_unique_for_overwrite<char[]>(room + 1);
    std::memcpy(larger.get(), bytes.get(), size);
    bytes = std::move(larger);
  }
  text.fName = path;
  text.fBytes = std::move(bytes);
  text.fBytes[size] = '\n';
  text.fStart = 0;
  text.fEnd = size;
  text.SkipByteOrderMark();
  return {};
}

void FileText::SkipByteOrderMark() {
  if (View().starts_with(kByteOrderMark)) fStart = kByteOrderMark.size();
}

std::string FileText::Describe(const TextFault& fault) const {
  const std::string_view before = View().substr(0, fault.offset);
  const auto line = 1 + std::count(before.begin(), before.end(), '\n');
  const std::size_t lineStart = before.rfind('\n') + 1;  // 0 on the first line, where rfind finds nothing
  const std::size_t column = 1 + CountCharacters(before.substr(lineStart));
  return fName + ":" + std::to_string(line) + ":" + std::to_string(column) + ": " + fault.message;
}

}  // namespace standalone
