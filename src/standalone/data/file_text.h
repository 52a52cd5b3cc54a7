// A data file's text in memory, read in one go.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace standalone {

/// A place in a text where it breaks a rule.
struct TextFault {
  std::size_t offset = 0;
  std::string message;  // what is wrong and what to do; empty for no fault
  explicit operator bool() const { return !message.empty(); }
};

/// The text of a file without its byte-order mark. A line feed stands behind the last byte, so that every
/// line ends and scanning for a line's end needs no second test.
class FileText {
 public:
  FileText() = default;
  /// A text that is given; `name` is what messages call it.
  FileText(std::string name, std::string_view text);
  /// Reads a file of any kind, pipes included. An empty answer is success, another says why not; a file of
  /// more than `limit` bytes is refused.
  static std::string Read(const std::string& path, FileText& text, std::size_t limit = SIZE_MAX);

  const std::string& Name() const { return fName; }
  const char* Begin() const { return fBytes.get() + fStart; }
  const char* End() const { return fBytes.get() + fEnd; }
  std::size_t Size() const { return fEnd - fStart; }
  std::string_view View() const { return {Begin(), Size()}; }

  /// "name:line:column: message", line and column (in characters) from 1.
  std::string Describe(const TextFault& fault) const;

 private:
  void SkipByteOrderMark();

  std::string fName;
  std::unique_ptr<char[]> fBytes = std::make_unique<char[]>(1);
  std::size_t fStart = 0;
  std::size_t fEnd = 0;  // the line feed behind the text stands here
};

}  // namespace standalone
