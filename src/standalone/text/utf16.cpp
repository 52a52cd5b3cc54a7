// Conversion between UTF-8 and UTF-16 (Unicode Standard, section 3.9). Texts come from files and may hold
// anything, so nothing is refused: what has no counterpart becomes U+FFFD.
#include "host/text.h"
#include "standalone/text/utf8.h"

namespace host {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsHighSurrogate(char16_t unit) {
  return unit >= 0xD800 && unit <= 0xDBFF;
}
bool IsLowSurrogate(char16_t unit) {
  return unit >= 0xDC00 && unit <= 0xDFFF;
}

void AppendUtf8(std::string& text, char32_t code) {
  const auto put = [&text](char32_t byte) { text += static_cast<char>(static_cast<unsigned char>(byte)); };
  if (code < 0x80) {
    put(code);
    return;
  }
  if (code < 0x800) {
    put(0xC0 | (code >> 6));
  } else if (code < 0x10000) {
    put(0xE0 | (code >> 12));
    put(0x80 | ((code >> 6) & 0x3F));
  } else {
    put(0xF0 | (code >> 18));
    put(0x80 | ((code >> 12) & 0x3F));
    put(0x80 | ((code >> 6) & 0x3F));
  }
  put(0x80 | (code & 0x3F));
}

void AppendUtf16(std::u16string& text, char32_t code) {
  if (code < 0x10000) {
    text += static_cast<char16_t>(code);
    return;
  }
  text += static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10));
  text += static_cast<char16_t>(0xDC00 + ((code - 0x10000) & 0x3FF));
}

}  // namespace

std::string VORNMBU16ToGeneric(std::u16string_view text) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    char32_t code = text[i];
    if (IsHighSurrogate(text[i]) && i + 1 < text.size() && IsLowSurrogate(text[i + 1])) {
      code = 0x10000 + ((code - 0xD800) << 10) + (text[++i] - char32_t{0xDC00});
    } else if (IsHighSurrogate(text[i]) || IsLowSurrogate(text[i])) {
      code = kReplacement;
    }
    AppendUtf8(result, code);
  }
  return result;
}

std::u16string VORNMBGenericToU16(std::string_view text) {
  std::u16string result;
  result.reserve(text.size());
  for (std::size_t offset = 0; offset < text.size();) {
    const standalone::Utf8Character character = standalone::DecodeUtf8(text, offset);
    AppendUtf16(result, character.code);
    offset += character.length;
  }
  return result;
}

}  // namespace host
