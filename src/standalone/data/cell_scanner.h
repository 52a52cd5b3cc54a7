// Cutting a line of delimited text into cells, by RFC 4180.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace standalone {

/// One cell: where its text lies, without the quotes around it.
struct Cell {
  const char* begin = nullptr;
  const char* end = nullptr;
  bool hasDoubledQuotes = false;  // each pair in the text stands for one quote
  /// At the delimiter or the line end behind the cell; at the fault after a failure.
  const char* after = nullptr;

  std::string_view Raw() const { return {begin, static_cast<std::size_t>(end - begin)}; }
  /// The text that the cell stands for.
  std::string Text() const;
};

/// The text of a quoted cell with each pair of quotes made one.
std::string Unquoted(std::string_view raw);

/// Finds the cells of one text. Nothing is copied: a cell points into the text.
class CellScanner {
 public:
  /// `end` is where the text ends; a line feed must stand there.
  CellScanner(char delimiter, const char* end);

  char Delimiter() const { return fDelimiter; }
  /// Reads the cell that starts at `place`. Null when it is sound, otherwise what is wrong and what to do;
  /// then `cell.after` is at the fault.
  const char* Scan(const char* place, Cell& cell) const;
  /// True at "\n" and at "\r\n".
  static bool IsLineEnd(const char* place) { return *place == '\n' || (*place == '\r' && place[1] == '\n'); }
  /// The start of the next line, `place` being at a line end.
  static const char* SkipLineEnd(const char* place) { return place + (*place == '\r' ? 2 : 1); }
  /// True when the text ends at the place; the line feed behind the text is no line of its own.
  bool IsAtEnd(const char* place) const { return place >= fpEnd; }

 private:
  const char* ScanQuoted(const char* place, Cell& cell) const;

  char fDelimiter;
  const char* fpEnd;
  std::array<bool, 256> fIsSpecial{};  // bytes that end or spoil an unquoted cell
};

/// The delimiter of a text: the one of comma, semicolon, tab and bar that its first line holds most often
/// outside quotes; in doubt the earlier of these, and a comma when there is none. With `preferTab` a tab wins
/// when there is one.
char FindDelimiter(std::string_view text, bool preferTab);

}  // namespace standalone
