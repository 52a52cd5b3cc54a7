// What needs no knowledge of UTF-8: digits, letters without their case, blanks around a text.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>

namespace standalone {

// The functions of <cctype> follow the locale and may not be given a char; a command must mean the same
// everywhere.

constexpr bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

/// A letter from a to z in upper case; any other byte as it is, so the bytes of longer characters stay whole.
constexpr char UpperOf(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

inline std::string UpperOf(std::string_view text) {
  std::string upper(text);
  std::transform(upper.begin(), upper.end(), upper.begin(), [](char c) { return UpperOf(c); });
  return upper;
}

/// Equality without regard to the case of ASCII letters.
inline bool IsSameWord(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return UpperOf(x) == UpperOf(y); });
}

/// The text without the blanks behind it.
inline std::string_view WithoutTrailingBlanks(std::string_view text, std::string_view blanks = " ") {
  while (!text.empty() && blanks.find(text.back()) != std::string_view::npos)
    text.remove_suffix(1);
  return text;
}

/// The text without the blanks at its ends; tabs count as blanks unless `blanks` says otherwise.
inline std::string_view Trimmed(std::string_view text, std::string_view blanks = " \t") {
  while (!text.empty() && blanks.find(text.front()) != std::string_view::npos)
    text.remove_prefix(1);
  return WithoutTrailingBlanks(text, blanks);
}

}  // namespace standalone
