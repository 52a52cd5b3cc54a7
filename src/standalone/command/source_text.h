// The text of a command file, kept for messages that point into it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/command.h"

namespace standalone {

/// A text with its name and its lines, which end with LF, CR or both. A byte-order mark is no part of it.
class SourceText {
 public:
  SourceText() = default;
  /// `name` is what messages call the file, such as "analysis.tvs" or "<standard input>".
  SourceText(std::string name, std::string text);

  const std::string& Name() const { return fName; }
  const std::string& Text() const { return fText; }
  /// Line counted from 1, without its line end; empty when out of range.
  std::string_view Line(int line) const;
  int LineCount() const { return static_cast<int>(fLineStarts.size()); }
  /// Line and column (from 1, in characters) of a byte offset.
  host::SourcePosition PositionOf(std::size_t offset, std::size_t length) const;
  /// "name:line:column"; empty for line 0.
  std::string Location(const host::SourcePosition& position) const;
  /// The line, and under it a caret with ~ over the token's length. Long lines are cut to a window around the
  /// place; tabs become blanks. Empty for line 0.
  std::string Excerpt(const host::SourcePosition& position) const;

 private:
  std::string fName;
  std::string fText;
  std::vector<std::size_t> fLineStarts;
};

}  // namespace standalone
