#include "standalone/data/cells.h"

#include <algorithm>
#include <cstring>

#include "standalone/text/utf8.h"

namespace standalone {

namespace {

bool IsBlank(char c) {
  return c == ' ' || c == '\t';
}

/// True for 8 bytes that are all ASCII and none of them NUL.
bool IsPlainWord(const char* bytes) {
  constexpr std::uint64_t kLow = 0x0101010101010101u;
  constexpr std::uint64_t kHigh = 0x8080808080808080u;
  std::uint64_t word;
  std::memcpy(&word, bytes, sizeof word);
  return ((word | (word - kLow)) & kHigh) == 0;  // a byte of 0 borrows and shows its high bit
}

}  // namespace

std::string_view TrimBlanks(std::string_view text) {
  while (!text.empty() && IsBlank(text.front()))
    text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back()))
    text.remove_suffix(1);
  return text;
}

std::string_view CutText(std::string_view text, std::size_t bytes) {
  if (text.size() <= bytes) return text;
  std::size_t end = bytes;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
    --end;
  return text.substr(0, end);
}

void PadText(std::string_view text, int width, host::OBS* cells) {
  const std::string_view kept = CutText(text, static_cast<std::size_t>(width));
  const std::size_t bytes = static_cast<std::size_t>(host::CellCount(width)) * sizeof(host::OBS);
  char* out = reinterpret_cast<char*>(cells);
  std::memset(std::copy(kept.begin(), kept.end(), out), ' ', bytes - kept.size());
}

std::vector<host::OBS> TextValue(std::string_view text, int width) {
  std::vector<host::OBS> value(static_cast<std::size_t>(host::CellCount(width)));
  PadText(text, width, value.data());
  return value;
}

std::string_view UnpaddedText(const host::OBS* cells, int width) {
  std::string_view text(reinterpret_cast<const char*>(cells), static_cast<std::size_t>(width));
  while (text.ends_with(' '))
    text.remove_suffix(1);
  return text;
}

std::vector<host::OBS> NumberValue(double number) {
  host::OBS cell;
  cell.number = number;
  return {cell};
}

std::size_t FindBadByte(std::string_view text) {
  std::size_t offset = 0;
  while (offset < text.size()) {
    while (text.size() - offset >= 8 && IsPlainWord(text.data() + offset))
      offset += 8;
    const std::size_t stop = std::min(offset + 8, text.size());
    while (offset < stop) {
      const Utf8Character character = DecodeUtf8(text, offset);
      if (!character.valid || character.code == 0) return offset;
      offset += character.length;
    }
  }
  return text.size();
}

}  // namespace standalone
