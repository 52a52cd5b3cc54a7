// An XML text as a plain tree, read by Xerces.
#pragma once

#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/sax2/Attributes.hpp>
#include <xercesc/sax2/DefaultHandler.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/TransService.hpp>
#include <xercesc/util/XMLUni.hpp>

namespace test_support {

struct XmlNode {
  std::string name;
  std::vector<std::pair<std::string, std::string>> attributes;  // in no particular order
  std::vector<XmlNode> children;

  bool Has(const std::string& attribute) const { return Find(attribute) != nullptr; }
  /// Empty when there is no such attribute.
  std::string At(const std::string& attribute) const {
    const std::string* value = Find(attribute);
    return value == nullptr ? std::string() : *value;
  }
  const XmlNode* Child(const std::string& childName) const {
    for (const XmlNode& child : children) {
      if (child.name == childName) return &child;
    }
    return nullptr;
  }
  std::vector<const XmlNode*> Children(const std::string& childName) const {
    std::vector<const XmlNode*> found;
    for (const XmlNode& child : children) {
      if (child.name == childName) found.push_back(&child);
    }
    return found;
  }
  /// Of all children, in order.
  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const XmlNode& child : children)
      names.push_back(child.name);
    return names;
  }

 private:
  const std::string* Find(const std::string& attribute) const {
    for (const auto& [key, value] : attributes) {
      if (key == attribute) return &value;
    }
    return nullptr;
  }
};

namespace xml = XERCES_CPP_NAMESPACE;

inline std::string Utf8(const XMLCh* text) {
  const xml::TranscodeToStr converted(text, "UTF-8");
  return {reinterpret_cast<const char*>(converted.str()), converted.length()};
}

class TreeHandler final : public xml::DefaultHandler {
 public:
  void startElement(const XMLCh* const, const XMLCh* const, const XMLCh* const name,
                    const xml::Attributes& attributes) override {
    XmlNode node;
    node.name = Utf8(name);
    for (XMLSize_t i = 0; i < attributes.getLength(); ++i) {
      node.attributes.emplace_back(Utf8(attributes.getQName(i)), Utf8(attributes.getValue(i)));
    }
    fOpen.push_back(std::move(node));
  }
  void endElement(const XMLCh* const, const XMLCh* const, const XMLCh* const) override {
    XmlNode node = std::move(fOpen.back());
    fOpen.pop_back();
    (fOpen.empty() ? fTop : fOpen.back()).children.push_back(std::move(node));
  }
  void fatalError(const xml::SAXParseException& e) override {
    throw std::runtime_error(Utf8(e.getMessage()));
  }
  void error(const xml::SAXParseException& e) override { fatalError(e); }

  XmlNode Root() { return fTop.children.empty() ? XmlNode() : std::move(fTop.children.front()); }

 private:
  XmlNode fTop;
  std::vector<XmlNode> fOpen;
};

/// The root element. Throws std::runtime_error for a text that isn't well-formed.
inline XmlNode ParseXml(const std::string& text) {
  xml::XMLPlatformUtils::Initialize();
  XmlNode root;
  {
    const std::unique_ptr<xml::SAX2XMLReader> reader(xml::XMLReaderFactory::createXMLReader());
    TreeHandler handler;
    reader->setFeature(xml::XMLUni::fgSAX2CoreValidation, false);
    reader->setFeature(xml::XMLUni::fgSAX2CoreNameSpacePrefixes, true);  // keeps the xmlns attributes
    reader->setContentHandler(&handler);
    reader->setErrorHandler(&handler);
    const xml::MemBufInputSource source(reinterpret_cast<const XMLByte*>(text.data()), text.size(), "text");
    reader->parse(source);
    root = handler.Root();
  }
  xml::XMLPlatformUtils::Terminate();
  return root;
}

}  // namespace test_support
