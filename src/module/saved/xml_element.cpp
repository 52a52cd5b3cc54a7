#include "module/saved/xml_element.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <ostream>

namespace MCCommonXML {

namespace {

constexpr char32_t kReplacement = 0xFFFD;
// Documents have millions of short pieces, and a stream is slow at each.
constexpr std::size_t kBufferSize = 1U << 16U;

bool IsContinuation(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

/// The bytes of a UTF-8 sequence by its first byte; 0 for a byte that starts none.
std::size_t SequenceLength(unsigned char first) {
  if (first < 0x80U) return 1;
  if (first >= 0xC2U && first < 0xE0U) return 2;
  if (first >= 0xE0U && first < 0xF0U) return 3;
  if (first >= 0xF0U && first < 0xF5U) return 4;
  return 0;
}

/// Characters of XML 1.0.
bool IsXmlCharacter(char32_t c) {
  if (c < 0x20) return c == '\t' || c == '\n' || c == '\r';
  return c < 0xD800 || (c >= 0xE000 && c <= 0xFFFD) || (c >= 0x10000 && c <= 0x10FFFF);
}

/// The character at `position`, which moves behind it; the replacement character, one byte on, for bytes that
/// are no UTF-8, and for characters that XML doesn't allow.
char32_t NextCharacter(std::string_view text, std::size_t& position) {
  const auto first = static_cast<unsigned char>(text[position]);
  const std::size_t length = SequenceLength(first);
  constexpr std::array<char32_t, 5> kSmallest = {0, 0, 0x80, 0x800, 0x10000};
  char32_t c = length <= 1 ? first : first & (0x7FU >> length);
  bool isWhole = length > 0 && length <= text.size() - position;
  for (std::size_t i = 1; isWhole && i < length; ++i) {
    isWhole = IsContinuation(text[position + i]);
    c = (c << 6U) | (static_cast<unsigned char>(text[position + i]) & 0x3FU);
  }
  // A longer sequence than a character needs is no UTF-8 either: it could smuggle in what is escaped below.
  if (!isWhole || c < kSmallest[length]) {
    ++position;
    return kReplacement;
  }
  position += length;
  return IsXmlCharacter(c) ? c : kReplacement;
}

class TreeWriter {
 public:
  TreeWriter(std::ostream& out, bool asAscii) : fOut(out), fbAscii(asAscii) {
    fBuffer.reserve(2 * kBufferSize);
  }

  bool Write(const XMLElement& root) {
    fBuffer += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    WriteElement(root, 0);
    Flush();
    return fOut.good();
  }

 private:
  void WriteElement(const XMLElement& element, std::size_t depth) {
    if (!fOut.good()) return;
    fBuffer.append(2 * depth, ' ').append("<").append(element.Name());
    for (const auto& [name, value] : element.Attributes())
      WriteAttribute(name, value);
    if (element.Children().empty()) {
      fBuffer += "/>\n";
    } else {
      fBuffer += ">\n";
      for (const auto& child : element.Children())
        WriteElement(*child, depth + 1);
      fBuffer.append(2 * depth, ' ').append("</").append(element.Name()).append(">\n");
    }
    if (fBuffer.size() >= kBufferSize) Flush();
  }

  void WriteAttribute(std::string_view name, const XMLElement::Value& value) {
    fBuffer.append(" ").append(name).append("=\"");
    if (const auto* text = std::get_if<std::string>(&value)) {
      WriteText(*text);
    } else {
      WriteNumber(std::get<double>(value));
    }
    fBuffer += '"';
  }

  void WriteNumber(double number) {
    if (!std::isfinite(number)) {  // the words of XML Schema
      fBuffer += std::isnan(number) ? "NaN" : number > 0 ? "INF" : "-INF";
      return;
    }
    std::array<char, 32> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    fBuffer.append(digits.data(), end);
  }

  void WriteText(std::string_view text) {
    for (std::size_t position = 0; position < text.size();) {
      const std::size_t begin = position;
      const char32_t c = NextCharacter(text, position);
      if (c < 0x80) {
        WriteAscii(static_cast<char>(c));
      } else if (fbAscii) {
        WriteReference(c);
      } else if (c == kReplacement) {
        fBuffer += "\xEF\xBF\xBD";
      } else {
        fBuffer.append(text.substr(begin, position - begin));
      }
    }
  }

  void WriteAscii(char c) {
    switch (c) {
      case '&':
        fBuffer += "&amp;";
        break;
      case '<':
        fBuffer += "&lt;";
        break;
      case '>':
        fBuffer += "&gt;";
        break;
      case '"':
        fBuffer += "&quot;";
        break;
      case '\t':
      case '\n':
      case '\r':
        WriteReference(static_cast<char32_t>(c));
        break;
      default:
        fBuffer += c;
    }
  }

  void WriteReference(char32_t c) { fBuffer += "&#" + std::to_string(static_cast<std::uint32_t>(c)) + ";"; }

  void Flush() {
    fOut.write(fBuffer.data(), static_cast<std::streamsize>(fBuffer.size()));
    fBuffer.clear();
  }

  std::ostream& fOut;
  bool fbAscii;
  std::string fBuffer;
};

}  // namespace

XMLElement& XMLElement::AddAttribute(std::string_view name, std::string_view text) {
  fAttributes.emplace_back(name, Value(std::in_place_type<std::string>, text));
  return *this;
}

XMLElement& XMLElement::AddAttribute(std::string_view name, double number) {
  fAttributes.emplace_back(name, number);
  return *this;
}

XMLElement& XMLElement::AddChild(std::unique_ptr<XMLElement> child) {
  return *fChildren.emplace_back(std::move(child));
}

bool WriteTreeUTF8(std::ostream& out, const XMLElement& root) {
  return TreeWriter(out, false).Write(root);
}

bool WriteTree(std::ostream& out, const XMLElement& root) {
  return TreeWriter(out, true).Write(root);
}

}  // namespace MCCommonXML
