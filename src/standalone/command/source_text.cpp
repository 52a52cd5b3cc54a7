#include "standalone/command/source_text.h"

#include <algorithm>

#include "standalone/text/utf8.h"

namespace standalone {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kReplacement = "\xEF\xBF\xBD";
constexpr std::string_view kEllipsis = "...";

// A long line is cut to this many characters, of which at most kWindowLead stand before the place.
constexpr std::size_t kWindow = 100;
constexpr std::size_t kWindowLead = 60;

/// Characters that would move the terminal's cursor or turn the direction of the line, so that the caret
/// would point at the wrong place.
bool SpoilsTheLine(char32_t code) {
  return code < 0x20 || (code >= 0x7F && code < 0xA0) || code == 0x200E || code == 0x200F ||
         (code >= 0x2028 && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069) || code == 0xFEFF;
}

/// One character as an excerpt shows it: always one column wide.
std::string_view Shown(std::string_view line, std::size_t offset, const Utf8Character& character) {
  if (character.code == U'\t') return " ";
  if (!character.valid || SpoilsTheLine(character.code)) return kReplacement;
  return line.substr(offset, character.length);
}

}  // namespace

SourceText::SourceText(std::string name, std::string text) : fName(std::move(name)), fText(std::move(text)) {
  // A byte-order mark is no part of the first line: it would shift its columns.
  if (fText.starts_with(kByteOrderMark)) fText.erase(0, kByteOrderMark.size());
  fLineStarts.push_back(0);
  for (std::size_t i = 0; i < fText.size(); ++i) {
    const bool isCarriageReturnAlone = fText[i] == '\r' && (i + 1 == fText.size() || fText[i + 1] != '\n');
    if (fText[i] == '\n' || isCarriageReturnAlone) fLineStarts.push_back(i + 1);
  }
}

std::string_view SourceText::Line(int line) const {
  if (line < 1 || line > LineCount()) return {};
  const auto index = static_cast<std::size_t>(line) - 1;
  const std::size_t start = fLineStarts[index];
  std::size_t end = index + 1 < fLineStarts.size() ? fLineStarts[index + 1] : fText.size();
  const auto isLineEnd = [](char c) { return c == '\n' || c == '\r'; };
  while (end > start && isLineEnd(fText[end - 1]))
    --end;
  return std::string_view(fText).substr(start, end - start);
}

host::SourcePosition SourceText::PositionOf(std::size_t offset, std::size_t length) const {
  if (fLineStarts.empty()) return {};
  offset = std::min(offset, fText.size());
  const auto next = std::upper_bound(fLineStarts.begin(), fLineStarts.end(), offset);
  const auto start = *std::prev(next);
  const std::string_view text = fText;
  host::SourcePosition position;
  position.line = static_cast<int>(next - fLineStarts.begin());
  position.column = static_cast<int>(CountCharacters(text.substr(start, offset - start))) + 1;
  position.length = static_cast<int>(CountCharacters(text.substr(offset, length)));
  return position;
}

std::string SourceText::Location(const host::SourcePosition& position) const {
  if (position.line <= 0) return {};
  return fName + ":" + std::to_string(position.line) + ":" + std::to_string(position.column);
}

std::string SourceText::Excerpt(const host::SourcePosition& position) const {
  if (position.line <= 0 || position.line > LineCount()) return {};
  const std::string_view line = Line(position.line);
  const std::size_t count = CountCharacters(line);
  const std::size_t place = std::min(static_cast<std::size_t>(std::max(position.column, 1)) - 1, count);

  const bool isLong = count > kWindow;
  const std::size_t first = isLong && place > kWindowLead ? place - kWindowLead : 0;
  const std::size_t last = isLong ? std::min(first + kWindow, count) : count;

  std::string shown(first > 0 ? kEllipsis : std::string_view());
  const std::size_t margin = shown.size();
  std::size_t offset = 0;
  for (std::size_t i = 0; i < last; ++i) {
    const Utf8Character character = DecodeUtf8(line, offset);
    if (i >= first) shown += Shown(line, offset, character);
    offset += character.length;
  }
  if (last < count) shown += kEllipsis;

  const std::size_t visible = std::max<std::size_t>(last - place, 1);
  const std::size_t length =
      std::clamp<std::size_t>(static_cast<std::size_t>(std::max(position.length, 1)), 1, visible);
  shown += '\n';
  shown.append(margin + place - first, ' ');
  shown += '^';
  shown.append(length - 1, '~');
  return shown;
}

}  // namespace standalone
