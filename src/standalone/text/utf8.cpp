#include "standalone/text/utf8.h"

#include <algorithm>
#include <cassert>
#include <cstdint>
#include <cstring>

namespace standalone {

namespace {

constexpr Utf8Character kInvalid{0xFFFD, 1, false};

/// Bytes of the character that a lead byte announces; 0 for a byte that can't lead: C0 and C1 would lead
/// overlong forms only, F5 and above codes beyond U+10FFFF.
std::size_t AnnouncedLength(unsigned char lead) {
  if (lead < 0x80) return 1;
  if (lead >= 0xC2 && lead <= 0xDF) return 2;
  if (lead >= 0xE0 && lead <= 0xEF) return 3;
  if (lead >= 0xF0 && lead <= 0xF4) return 4;
  return 0;
}

/// Refuses overlong forms and surrogates: a character has one spelling, so that equal texts have equal
/// bytes.
bool IsLegalCode(char32_t code, std::size_t length) {
  if (length == 3) return code >= 0x800 && (code < 0xD800 || code > 0xDFFF);
  if (length == 4) return code >= 0x10000 && code <= 0x10FFFF;
  return true;
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

Utf8Character DecodeUtf8(std::string_view text, std::size_t offset) {
  assert(offset < text.size());
  const auto lead = static_cast<unsigned char>(text[offset]);
  const std::size_t length = AnnouncedLength(lead);
  if (length == 1) return {lead, 1, true};
  if (length == 0 || length > text.size() - offset) return kInvalid;

  char32_t code = lead & (0x7Fu >> length);
  for (std::size_t i = 1; i < length; ++i) {
    const auto byte = static_cast<unsigned char>(text[offset + i]);
    if ((byte & 0xC0) != 0x80) return kInvalid;
    code = (code << 6) | (byte & 0x3Fu);
  }
  return IsLegalCode(code, length) ? Utf8Character{code, length, true} : kInvalid;
}

std::size_t CountCharacters(std::string_view text) {
  std::size_t count = 0;
  for (std::size_t offset = 0; offset < text.size(); ++count)
    offset += DecodeUtf8(text, offset).length;
  return count;
}

std::u32string DecodeAll(std::string_view text) {
  std::u32string codes;
  for (std::size_t offset = 0; offset < text.size();) {
    const Utf8Character character = DecodeUtf8(text, offset);
    codes.push_back(character.code);
    offset += character.length;
  }
  return codes;
}

std::size_t FindBadByte(std::string_view text) {
  std::size_t offset = 0;
  while (offset < text.size()) {
    // Data files are ASCII for the most part: eight bytes are settled at a time, and only what stops that
    // is decoded.
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

std::string ValidUtf8(std::string_view text) {
  std::string out;
  for (std::size_t at = 0; at < text.size();) {
    const Utf8Character next = DecodeUtf8(text, at);
    out += next.valid ? text.substr(at, next.length) : std::string_view("\xEF\xBF\xBD");
    at += next.length;
  }
  return out;
}

std::string_view CutText(std::string_view text, std::size_t bytes) {
  if (text.size() <= bytes) return text;
  std::size_t end = bytes;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
    --end;
  return text.substr(0, end);
}

std::string Shortened(std::string_view text, std::size_t limit) {
  std::size_t offset = 0;
  for (std::size_t count = 0; count < limit && offset < text.size(); ++count) {
    offset += DecodeUtf8(text, offset).length;
  }
  std::string result(text.substr(0, offset));
  if (offset < text.size()) result += "...";
  return result;
}

}  // namespace standalone
