// Writing JSON as it comes, without holding it in memory.
#pragma once

#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

namespace standalone {

/// Calls follow the shape of the document: Key before each value of an object. Texts are escaped, invalid
/// UTF-8 is replaced. Numbers are written as the shortest text that reads back to the same double; a missing
/// one is null.
class JsonWriter {
 public:
  explicit JsonWriter(std::ostream& out) : fOut(out) {}
  /// `inLines`: each element stands on a line of its own.
  void BeginObject(bool inLines = false) { Begin('{', inLines); }
  void EndObject() { End('}'); }
  void BeginArray(bool inLines = false) { Begin('[', inLines); }
  void EndArray() { End(']'); }
  void Key(std::string_view key);
  void Text(std::string_view text);
  void Number(double value);
  void Null();

  /// A key with its value.
  void TextMember(std::string_view key, std::string_view text);
  void NumberMember(std::string_view key, double value);
  void TextsMember(std::string_view key, const std::vector<std::string>& texts);

 private:
  struct Level {
    bool inLines;
    bool isEmpty = true;
  };
  void Begin(char bracket, bool inLines);
  void End(char bracket);
  void Separate();
  void Quote(std::string_view text);
  void NewLine();

  std::ostream& fOut;
  std::vector<Level> fLevels;
  bool fbAfterKey = false;
};

}  // namespace standalone
