// RFC 4180, with lines that may also end with LF alone and delimiters other than the comma. Where programs
// differ in what they make of a text (a quote inside an unquoted cell, text behind a closing quote, a lone
// carriage return) the cell is refused: a wrong guess would move all that follows into other columns
// without a sign.
#include "standalone/data/cell_scanner.h"

#include <cstring>

namespace standalone {

namespace {

constexpr std::string_view kDelimiters = ",;\t|";

constexpr const char* kLoneReturn =
    "a carriage return without a line feed; save the file with lines that end in LF or CRLF";
constexpr const char* kQuoteInside =
    "a quote inside a cell that doesn't begin with one; put the whole cell in quotes and double the quotes "
    "inside";
constexpr const char* kUnclosed =
    "this quote is never closed; add the closing quote, or double a quote that is text";
constexpr const char* kAfterQuote =
    "text behind a closing quote; double the quotes inside a quoted cell, or remove what follows the closing "
    "one";

}  // namespace

std::string Unquoted(std::string_view raw) {
  std::string text;
  text.reserve(raw.size());
  for (std::size_t i = 0; i < raw.size(); ++i) {
    text += raw[i];
    if (raw[i] == '"') ++i;
  }
  return text;
}

std::string Cell::Text() const {
  return hasDoubledQuotes ? Unquoted(Raw()) : std::string(Raw());
}

CellScanner::CellScanner(char delimiter, const char* end) : fDelimiter(delimiter), fpEnd(end) {
  for (const char c : {delimiter, '\n', '\r', '"'})
    fIsSpecial[static_cast<unsigned char>(c)] = true;
}

const char* CellScanner::Scan(const char* place, Cell& cell) const {
  if (*place == '"') return ScanQuoted(place, cell);
  cell.begin = place;
  cell.hasDoubledQuotes = false;
  while (!fIsSpecial[static_cast<unsigned char>(*place)])
    ++place;
  cell.end = place;
  cell.after = place;
  if (*place == fDelimiter || *place == '\n') return nullptr;
  if (*place == '"') return kQuoteInside;
  return IsLineEnd(place) ? nullptr : kLoneReturn;
}

const char* CellScanner::ScanQuoted(const char* place, Cell& cell) const {
  cell.begin = place + 1;
  cell.hasDoubledQuotes = false;
  const char* from = cell.begin;
  for (;;) {
    const auto left = static_cast<std::size_t>(fpEnd - from);
    const auto* quote = left == 0 ? nullptr : static_cast<const char*>(std::memchr(from, '"', left));
    if (quote == nullptr) {
      cell.after = place;
      return kUnclosed;
    }
    // There is a byte to look at: a line feed stands behind the text.
    if (quote[1] != '"') {
      cell.end = quote;
      break;
    }
    cell.hasDoubledQuotes = true;
    from = quote + 2;
  }
  cell.after = cell.end + 1;
  if (*cell.after == fDelimiter || IsLineEnd(cell.after)) return nullptr;
  return *cell.after == '\r' ? kLoneReturn : kAfterQuote;
}

char FindDelimiter(std::string_view text, bool preferTab) {
  std::array<std::size_t, kDelimiters.size()> counts{};
  // The header alone decides: names hardly ever hold a delimiter, while decimal commas and texts in the
  // rows do.
  bool isQuoted = false;
  for (const char c : text) {
    if (c == '"') isQuoted = !isQuoted;
    if (isQuoted) continue;
    if (c == '\n') break;
    const std::size_t which = kDelimiters.find(c);
    if (which != std::string_view::npos) ++counts[which];
  }
  if (preferTab && counts[kDelimiters.find('\t')] > 0) return '\t';
  std::size_t best = 0;
  for (std::size_t i = 1; i < counts.size(); ++i) {
    if (counts[i] > counts[best]) best = i;
  }
  return kDelimiters[best];
}

}  // namespace standalone
