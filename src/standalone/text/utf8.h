// UTF-8 one character at a time, with invalid bytes kept apart: counting, cutting, replacing.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace standalone {

/// One character of a text. An invalid byte is a character of its own: `valid` false, length 1, code U+FFFD.
struct Utf8Character {
  char32_t code = 0;
  std::size_t length = 1;  // bytes
  bool valid = true;
};

/// The character that starts at a byte offset inside the text. Overlong forms, surrogates and codes above
/// U+10FFFF are invalid (RFC 3629, section 3).
Utf8Character DecodeUtf8(std::string_view text, std::size_t offset);

/// Number of characters; an invalid byte counts as one.
std::size_t CountCharacters(std::string_view text);

/// The text as codes, an invalid byte as U+FFFD.
std::u32string DecodeAll(std::string_view text);

/// Offset of the first byte that is NUL or no part of valid UTF-8; the text's size when it is sound.
std::size_t FindBadByte(std::string_view text);

/// Valid UTF-8: each invalid byte becomes U+FFFD.
std::string ValidUtf8(std::string_view text);

/// At most `bytes` bytes of a UTF-8 text, cut between characters.
std::string_view CutText(std::string_view text, std::size_t bytes);

/// At most `limit` characters of a text, with "..." behind them when it was longer: for texts in messages.
std::string Shortened(std::string_view text, std::size_t limit);

}  // namespace standalone
