#include "command/plan/plan_document.h"

#include <filesystem>
#include <optional>
#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/LocalFileInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax/HandlerBase.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/SecurityManager.hpp>
#include <xercesc/util/XMLString.hpp>

#include "host/files.h"
#include "host/text.h"

namespace tavo {

namespace xml = XERCES_CPP_NAMESPACE;

namespace {

constexpr const char* kDefinitionFile = "vorn-tessel-1.0.dtd";
constexpr XMLSize_t kEntityExpansionLimit = 1000;
constexpr std::uintmax_t kLargestPlanBytes = 64U << 20U;

static_assert(sizeof(XMLCh) == sizeof(char16_t));

std::string ToUtf8(const XMLCh* text) {
  if (text == nullptr) return "";
  return host::VORNMBU16ToGeneric({reinterpret_cast<const char16_t*>(text), xml::XMLString::stringLen(text)});
}

/// A text for calls into the XML library.
class XmlText {
 public:
  explicit XmlText(std::string_view text) : fText(host::VORNMBGenericToU16(text)) {}
  const XMLCh* Get() const { return reinterpret_cast<const XMLCh*>(fText.c_str()); }

 private:
  std::u16string fText;
};

/// The library counts its users; it must be alive before any of its objects is made.
class XmlLibrary {
 public:
  XmlLibrary() { xml::XMLPlatformUtils::Initialize(); }
  ~XmlLibrary() { xml::XMLPlatformUtils::Terminate(); }
  XmlLibrary(const XmlLibrary&) = delete;
  XmlLibrary& operator=(const XmlLibrary&) = delete;
};

const xml::DOMElement* AsElement(const xml::DOMNode* node) {
  if (node == nullptr || node->getNodeType() != xml::DOMNode::ELEMENT_NODE) return nullptr;
  return static_cast<const xml::DOMElement*>(node);
}

}  // namespace

namespace Orv_XML {

/// Ends the parse at the first warning or error, and answers every external entity with the plan's own DTD.
class XmlErrorHandler final : public xml::HandlerBase {
 public:
  void warning(const xml::SAXParseException& exception) override { throw exception; }
  void error(const xml::SAXParseException& exception) override { throw exception; }
  void fatalError(const xml::SAXParseException& exception) override { throw exception; }
  xml::InputSource* resolveEntity(const XMLCh* const, const XMLCh* const) override {
    const std::string path = (std::filesystem::path(host::ModuleFolder()) / kDefinitionFile).string();
    return new xml::LocalFileInputSource(XmlText(path).Get());  // the parser takes ownership
  }
};

}  // namespace Orv_XML

PlanElement PlanElement::Child(std::string_view name) const {
  for (const PlanElement child : Children()) {
    if (ToUtf8(static_cast<const xml::DOMElement*>(child.fpNode)->getTagName()) == name) return child;
  }
  return {};
}

std::vector<PlanElement> PlanElement::Children() const {
  std::vector<PlanElement> children;
  if (fpNode == nullptr) return children;
  const auto* node = static_cast<const xml::DOMElement*>(fpNode)->getFirstChild();
  for (; node != nullptr; node = node->getNextSibling()) {
    if (const xml::DOMElement* element = AsElement(node)) children.push_back(PlanElement(element));
  }
  return children;
}

std::vector<PlanElement> PlanElement::Descendants(std::string_view name) const {
  std::vector<PlanElement> found;
  if (fpNode == nullptr) return found;
  const auto* list = static_cast<const xml::DOMElement*>(fpNode)->getElementsByTagName(XmlText(name).Get());
  for (XMLSize_t i = 0; const xml::DOMElement* element = AsElement(list->item(i)); ++i) {
    found.push_back(PlanElement(element));
  }
  return found;
}

bool PlanElement::HasAttribute(std::string_view name) const {
  return fpNode != nullptr && static_cast<const xml::DOMElement*>(fpNode)->hasAttribute(XmlText(name).Get());
}

std::string PlanElement::Attribute(std::string_view name) const {
  if (fpNode == nullptr) return "";
  return ToUtf8(static_cast<const xml::DOMElement*>(fpNode)->getAttribute(XmlText(name).Get()));
}

struct PlanDocument::Impl {
  XmlLibrary library;  // first, so that it outlives the parser
  Orv_XML::XmlErrorHandler handler;
  xml::SecurityManager security;
  std::optional<xml::XercesDOMParser> parser;

  Impl() {
    security.setEntityExpansionLimit(kEntityExpansionLimit);
    parser.emplace();
    parser->setValidationScheme(xml::XercesDOMParser::Val_Auto);
    parser->setIncludeIgnorableWhitespace(false);
    parser->setCreateEntityReferenceNodes(false);
    parser->setDisableDefaultEntityResolution(true);
    parser->setSecurityManager(&security);
    parser->setErrorHandler(&handler);
    parser->setEntityResolver(&handler);
  }
};

PlanDocument::PlanDocument() : fpImpl(std::make_unique<Impl>()) {}
PlanDocument::~PlanDocument() = default;

bool PlanDocument::Parse(const std::string& path) {
  std::error_code failure;
  const std::uintmax_t bytes = std::filesystem::file_size(path, failure);
  if (failure || bytes > kLargestPlanBytes) {
    fError = path + (failure ? ": " + failure.message() : ": the file is too large for a plan");
    return false;
  }
  try {
    fpImpl->parser->parse(XmlText(path).Get());
  } catch (const xml::SAXParseException& e) {
    fError = path + ":" + std::to_string(e.getLineNumber()) + ":" + std::to_string(e.getColumnNumber()) + ": " +
             ToUtf8(e.getMessage());
  } catch (const xml::XMLException& e) {
    fError = path + ": " + ToUtf8(e.getMessage());
  } catch (const xml::DOMException& e) {
    fError = path + ": " + ToUtf8(e.getMessage());
  } catch (const xml::OutOfMemoryException&) {
    fError = path + ": not enough memory to read the file";
  } catch (...) {  // the library's door: whatever it throws, the file can't be used
    fError = path + ": the file can't be read as XML";
  }
  if (fError.empty() && !Root()) fError = path + ": the document has no element";
  return fError.empty();
}

PlanElement PlanDocument::Root() const {
  const xml::DOMDocument* document = fpImpl->parser->getDocument();
  return document == nullptr ? PlanElement() : PlanElement(document->getDocumentElement());
}

}  // namespace tavo
