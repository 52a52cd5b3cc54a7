// A tree of XML elements and its writing as a document.
#pragma once

#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace MCCommonXML {

/// An element with attributes and children, no text between them. Names of elements and attributes are
/// not owned and must outlive the tree: they are the constants of a document type, while values may come from
/// anywhere. A number stays a number until it is written, which keeps large matrices small.
class XMLElement {
 public:
  static std::unique_ptr<XMLElement> Create(std::string_view name) {
    return std::make_unique<XMLElement>(name);
  }
  explicit XMLElement(std::string_view name) : fName(name) {}
  XMLElement(const XMLElement&) = delete;
  XMLElement& operator=(const XMLElement&) = delete;

  /// Attributes are written in the order in which they were added. The caller names each once.
  XMLElement& AddAttribute(std::string_view name, std::string_view text);
  XMLElement& AddAttribute(std::string_view name, const char* text) {
    return AddAttribute(name, std::string_view(text));
  }
  /// Written as the shortest text that reads back to the same double; "INF", "-INF" and "NaN" for the rest.
  XMLElement& AddAttribute(std::string_view name, double number);
  /// Room for a number of attributes, for elements that come in millions.
  void ReserveAttributes(std::size_t count) { fAttributes.reserve(count); }

  /// Takes the child; the reference is good for as long as this element lives.
  XMLElement& AddChild(std::unique_ptr<XMLElement> child);
  XMLElement& AddChild(std::string_view name) { return AddChild(Create(name)); }
  void ReserveChildren(std::size_t count) { fChildren.reserve(count); }

  using Value = std::variant<double, std::string>;
  std::string_view Name() const { return fName; }
  const std::vector<std::pair<std::string_view, Value>>& Attributes() const { return fAttributes; }
  const std::vector<std::unique_ptr<XMLElement>>& Children() const { return fChildren; }

 private:
  std::string_view fName;
  std::vector<std::pair<std::string_view, Value>> fAttributes;
  std::vector<std::unique_ptr<XMLElement>> fChildren;
};

/// Write the tree under `root`, which stays the caller's, as a document of its own: one element a line,
/// indented. Values are taken as UTF-8. Characters that mean something in XML are escaped, line ends and tabs
/// too, so that they survive attribute normalization; what XML can't hold (other control characters, bytes
/// that are no UTF-8) becomes U+FFFD. True when the stream took everything; otherwise the rest isn't written.
///
/// The UTF-8 form holds characters as they are. The other is pure ASCII with character references, which
/// reads the same whatever encoding a later step takes the file for.
bool WriteTreeUTF8(std::ostream& out, const XMLElement& root);
bool WriteTree(std::ostream& out, const XMLElement& root);

}  // namespace MCCommonXML
