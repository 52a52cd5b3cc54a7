#include "standalone/text/utf8.h"

namespace standalone {

namespace {

constexpr Utf8Character kInvalid{0xFFFD, 1, false};

/// Bytes of the character that a lead byte announces; 0 for a byte that can't lead.
std::size_t AnnouncedLength(unsigned char lead) {
  if (lead < 0x80) return 1;
  if (lead >= 0xC2 && lead <= 0xDF) return 2;
  if (lead >= 0xE0 && lead <= 0xEF) return 3;
  if (lead >= 0xF0 && lead <= 0xF4) return 4;
  return 0;
}

bool IsLegalCode(char32_t code, std::size_t length) {
  if (length == 3) return code >= 0x800 && (code < 0xD800 || code > 0xDFFF);
  if (length == 4) return code >= 0x10000 && code <= 0x10FFFF;
  return true;
}

}  // namespace

Utf8Character DecodeUtf8(std::string_view text, std::size_t offset) {
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
