// A plan document as a tree of elements, and how it is parsed safely.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tavo {

/// An element of a parsed plan, owned by its document. Copying is cheap; a null element answers as an empty
/// one.
class PlanElement {
 public:
  PlanElement() = default;
  explicit operator bool() const { return fpNode != nullptr; }

  /// The first direct child element of that name, or null.
  PlanElement Child(std::string_view name) const;
  /// All direct child elements.
  std::vector<PlanElement> Children() const;
  /// All elements of that name below this one, in document order.
  std::vector<PlanElement> Descendants(std::string_view name) const;
  std::string Name() const;
  bool HasAttribute(std::string_view name) const;
  std::vector<std::string> AttributeNames() const;
  /// UTF-8; empty when absent.
  std::string Attribute(std::string_view name) const;

 private:
  friend class PlanDocument;
  explicit PlanElement(const void* node) : fpNode(node) {}
  const void* fpNode = nullptr;  // a DOM element; the parser's types stay out of headers
};

/// Parses an XML file. A document may name the plan's own DTD, and is validated then against the one that the
/// program carries, whatever the document says. It may name the schema, which changes nothing in reading.
/// Nothing else is ever read or fetched. Declarations inside the document are refused, and the memory of the
/// tree is limited. Warnings of the XML parser refuse the file like errors.
class PlanDocument {
 public:
  PlanDocument();
  ~PlanDocument();
  PlanDocument(const PlanDocument&) = delete;
  PlanDocument& operator=(const PlanDocument&) = delete;

  /// False when the file can't be read or isn't well-formed; Error() says what and where.
  bool Parse(const std::string& path);
  /// The same for a text that is given; `name` is what messages call it.
  bool ParseText(std::string text, const std::string& name);
  const std::string& Error() const { return fError; }
  /// The path or name that was given.
  const std::string& Name() const { return fName; }
  PlanElement Root() const;
  /// "name:line:column" of the end of an element's start tag, counted from 1. The document is gone through up
  /// to the element.
  std::string PlaceOf(const PlanElement& element) const;

  /// True when the root names no schema in xsi:noNamespaceSchemaLocation, or when the parsed document keeps
  /// to the plan's own schema. Otherwise `fault` says where it doesn't, and why.
  bool KeepsToItsSchema(std::string& fault) const;

 private:
  struct Impl;
  std::unique_ptr<Impl> fpImpl;
  std::string fName;
  std::string fError;
};

}  // namespace tavo
