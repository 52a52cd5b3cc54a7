// A message as a value, and as lines of text.
#pragma once

#include <iosfwd>
#include <string>

namespace standalone {

/// A message as it stands in the output document.
struct Message {
  bool isError = false;
  std::string key;       // the dictionary key
  std::string text;      // the sentence, filled
  std::string location;  // "file:line:column", or empty
  std::string excerpt;   // the source line and a line with a caret under the place, or empty
};

/// Writes "error: …" or "warning: …", then the place, then the excerpt with its caret, and flushes. Control
/// characters are made harmless.
void WriteMessage(std::ostream& stream, const Message& message);

}  // namespace standalone
