// Written as it comes: a document can hold millions of cells, and a tree of them in memory would take many
// times their room.
#include "standalone/output/json_writer.h"

#include <cassert>
#include <ostream>
#include <string>

#include "standalone/text/numbers.h"
#include "standalone/text/utf8.h"

namespace standalone {

void JsonWriter::NewLine() {
  fOut << '\n';
  for (const Level& level : fLevels) {
    if (level.inLines) fOut << "  ";
  }
}

void JsonWriter::Separate() {
  if (fbAfterKey) {
    fbAfterKey = false;
    return;
  }
  if (fLevels.empty()) return;
  Level& level = fLevels.back();
  if (!level.isEmpty) fOut << (level.inLines ? "," : ", ");
  level.isEmpty = false;
  if (level.inLines) NewLine();
}

void JsonWriter::Begin(char bracket, bool inLines) {
  Separate();
  fOut << bracket;
  fLevels.push_back({inLines});
}

void JsonWriter::End(char bracket) {
  assert(!fLevels.empty() && !fbAfterKey);
  const Level level = fLevels.back();
  fLevels.pop_back();
  if (level.inLines && !level.isEmpty) NewLine();
  fOut << bracket;
}

void JsonWriter::Key(std::string_view key) {
  assert(!fLevels.empty() && !fbAfterKey);
  Separate();
  Quote(key);
  fOut << ": ";
  fbAfterKey = true;
}

void JsonWriter::Text(std::string_view text) {
  Separate();
  Quote(text);
}

void JsonWriter::Number(double value) {
  Separate();
  fOut << (IsMissingNumber(value) ? "null" : ShortestText(value));
}

void JsonWriter::Null() {
  Separate();
  fOut << "null";
}

void JsonWriter::TextMember(std::string_view key, std::string_view text) {
  Key(key);
  Text(text);
}

void JsonWriter::NumberMember(std::string_view key, double value) {
  Key(key);
  Number(value);
}

void JsonWriter::TextsMember(std::string_view key, const std::vector<std::string>& texts) {
  Key(key);
  BeginArray();
  for (const std::string& text : texts)
    Text(text);
  EndArray();
}

void JsonWriter::Quote(std::string_view text) {
  static constexpr char kHex[] = "0123456789abcdef";
  std::string quoted = "\"";
  for (const char c : ValidUtf8(text)) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      quoted += '\\';
      quoted += c;
    } else if (c == '\n') {
      quoted += "\\n";
    } else if (c == '\t') {
      quoted += "\\t";
      // JSON allows a DEL, but a terminal that shows the document acts on it.
    } else if (byte < 0x20 || byte == 0x7F) {
      quoted += "\\u00";
      quoted += kHex[byte >> 4];
      quoted += kHex[byte & 15];
    } else {
      quoted += c;
    }
  }
  fOut << quoted << '"';
}

}  // namespace standalone
