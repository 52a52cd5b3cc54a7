// A place in a text that moves forward only and knows its line and column.
#pragma once

#include <cstddef>
#include <string_view>

#include "host/command.h"
#include "standalone/text/utf8.h"

namespace standalone {

/// Walks over a text, character by character. Lines end with LF, CR or both, as in SourceText.
class CharacterCursor {
 public:
  explicit CharacterCursor(std::string_view text) : fText(text) {}

  bool AtEnd() const { return fOffset >= fText.size(); }
  std::size_t Offset() const { return fOffset; }
  /// The byte at the place, or at some bytes behind it; NUL past the end of the text.
  char Byte(std::size_t ahead = 0) const {
    return ahead < fText.size() - fOffset ? fText[fOffset + ahead] : '\0';
  }
  bool AtLineEnd() const { return !AtEnd() && (Byte() == '\n' || Byte() == '\r'); }
  bool StartsWith(std::string_view sequence) const { return fText.substr(fOffset).starts_with(sequence); }
  Utf8Character Character() const { return DecodeUtf8(fText, fOffset); }

  /// Steps over one character or one line end. Requires: not at the end.
  void Advance() {
    if (AtLineEnd()) {
      fOffset += StartsWith("\r\n") ? 2 : 1;
      ++fLine;
      fColumn = 1;
    } else {
      fOffset += Character().length;
      ++fColumn;
    }
  }

  /// The place, with a length in characters.
  host::SourcePosition Position(int length = 1) const { return {fLine, fColumn, length}; }
  /// From a place on the same line up to here.
  host::SourcePosition Since(const host::SourcePosition& start) const {
    return {start.line, start.column, fColumn - start.column};
  }
  std::string_view TextSince(std::size_t offset) const { return fText.substr(offset, fOffset - offset); }

 private:
  std::string_view fText;
  std::size_t fOffset = 0;
  int fLine = 1;
  int fColumn = 1;
};

}  // namespace standalone
