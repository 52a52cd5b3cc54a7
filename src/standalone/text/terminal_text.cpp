#include "standalone/text/terminal_text.h"

#include <algorithm>
#include <array>

#include "standalone/text/utf8.h"

namespace standalone {

namespace {

struct CodeRange {
  char32_t first, last;
};

// The C library's wcwidth follows the locale, and a document must look the same everywhere. The ranges
// follow Unicode's East Asian Width (UAX 11), drawn coarsely: a wrong width shifts a column by one, and
// nothing else.
// Marks that combine with the character before them, and characters that show nothing.
constexpr std::array kZeroWidth = {
    CodeRange{0x0300, 0x036F}, CodeRange{0x0483, 0x0489}, CodeRange{0x0591, 0x05BD},
    CodeRange{0x064B, 0x065F}, CodeRange{0x200B, 0x200F}, CodeRange{0x20D0, 0x20FF},
    CodeRange{0xFE00, 0xFE0F}, CodeRange{0xFE20, 0xFE2F}, CodeRange{0xFEFF, 0xFEFF}};
constexpr std::array kDoubleWidth = {
    CodeRange{0x1100, 0x115F},   CodeRange{0x2E80, 0x303E},  CodeRange{0x3041, 0xA4CF},
    CodeRange{0xAC00, 0xD7A3},   CodeRange{0xF900, 0xFAFF},  CodeRange{0xFE30, 0xFE6F},
    CodeRange{0xFF00, 0xFF60},   CodeRange{0xFFE0, 0xFFE6},  CodeRange{0x1F300, 0x1F64F},
    CodeRange{0x1F900, 0x1F9FF}, CodeRange{0x20000, 0x3FFFD}};

template <std::size_t N>
bool IsIn(const std::array<CodeRange, N>& ranges, char32_t code) {
  return std::any_of(ranges.begin(), ranges.end(),
                     [code](const CodeRange& r) { return code >= r.first && code <= r.last; });
}

std::size_t WidthOf(char32_t code) {
  if (code < 0x300) return 1;
  if (IsIn(kZeroWidth, code)) return 0;
  return IsIn(kDoubleWidth, code) ? 2 : 1;
}

/// Bytes of the longest beginning of `text` that fits into `width`; at least one character.
std::size_t BytesThatFit(std::string_view text, std::size_t width) {
  std::size_t used = 0, at = 0;
  while (at < text.size()) {
    const Utf8Character next = DecodeUtf8(text, at);
    const std::size_t step = WidthOf(next.code);
    // Never nothing: a caller that cuts a word piece by piece must come to its end.
    if (used + step > width && at > 0) break;
    used += step;
    at += next.length;
  }
  return at;
}

class Wrapper {
 public:
  explicit Wrapper(std::size_t width) : fWidth(std::max<std::size_t>(width, 1)) {}

  void AddWord(std::string_view word) {
    std::size_t width = DisplayWidth(word);
    if (fUsed > 0 && fUsed + 1 + width > fWidth) EndLine();
    if (fUsed > 0) {
      fLines.back() += ' ';
      ++fUsed;
    }
    while (width > fWidth - std::min(fUsed, fWidth)) {
      const std::size_t bytes = BytesThatFit(word, fWidth - std::min(fUsed, fWidth));
      fLines.back() += word.substr(0, bytes);
      word.remove_prefix(bytes);
      width = DisplayWidth(word);
      if (word.empty()) return;
      EndLine();
    }
    fLines.back() += word;
    fUsed += width;
  }
  void EndLine() {
    fLines.emplace_back();
    fUsed = 0;
  }
  std::vector<std::string> Take() { return std::move(fLines); }

 private:
  std::size_t fWidth;
  std::size_t fUsed = 0;
  std::vector<std::string> fLines{std::string()};
};

}  // namespace

std::size_t DisplayWidth(std::string_view text) {
  std::size_t width = 0;
  for (std::size_t at = 0; at < text.size();) {
    const Utf8Character next = DecodeUtf8(text, at);
    width += WidthOf(next.code);
    at += next.length;
  }
  return width;
}

std::string CutToWidth(std::string_view text, std::size_t width) {
  if (DisplayWidth(text) <= width || width == 0) return std::string(width == 0 ? std::string_view() : text);
  if (width == 1) return "…";
  return std::string(text.substr(0, BytesThatFit(text, width - 1))) + "…";
}

std::string PadRight(std::string_view text, std::size_t width) {
  const std::size_t used = DisplayWidth(text);
  return std::string(text) + std::string(width > used ? width - used : 0, ' ');
}

std::string PadLeft(std::string_view text, std::size_t width) {
  const std::size_t used = DisplayWidth(text);
  return std::string(width > used ? width - used : 0, ' ') + std::string(text);
}

std::string PadCentre(std::string_view text, std::size_t width) {
  const std::size_t used = DisplayWidth(text);
  const std::size_t before = width > used ? (width - used) / 2 : 0;
  return PadRight(std::string(before, ' ') + std::string(text), width);
}

std::vector<std::string> Wrap(std::string_view text, std::size_t width) {
  Wrapper wrapper(width);
  for (std::size_t at = 0; at <= text.size();) {
    const std::size_t end = std::min(text.find_first_of(" \n", at), text.size());
    if (end > at) wrapper.AddWord(text.substr(at, end - at));
    if (end < text.size() && text[end] == '\n') wrapper.EndLine();
    at = end + 1;
  }
  return wrapper.Take();
}

std::vector<std::string> LinesOf(std::string_view text) {
  std::vector<std::string> lines;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    lines.emplace_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return lines;
}

std::string WithoutControls(std::string_view text) {
  std::string out;
  for (std::size_t at = 0; at < text.size();) {
    const Utf8Character next = DecodeUtf8(text, at);
    const bool isControl = (next.code < 0x20 && next.code != '\n') || (next.code >= 0x7F && next.code < 0xA0);
    if (isControl || !next.valid) {
      out += '?';
    } else {
      out += text.substr(at, next.length);
    }
    at += next.length;
  }
  return out;
}

}  // namespace standalone
