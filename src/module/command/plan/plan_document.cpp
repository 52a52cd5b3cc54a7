#include "module/command/plan/plan_document.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <new>
#include <optional>
#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/framework/MemoryManager.hpp>
#include <xercesc/framework/XMLAttr.hpp>
#include <xercesc/framework/XMLElementDecl.hpp>
#include <xercesc/internal/XMLScanner.hpp>
#include <xercesc/parsers/SAXParser.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax/HandlerBase.hpp>
#include <xercesc/sax/Locator.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/RefVectorOf.hpp>
#include <xercesc/util/SecurityManager.hpp>
#include <xercesc/util/XMLEntityResolver.hpp>
#include <xercesc/util/XMLResourceIdentifier.hpp>
#include <xercesc/util/XMLString.hpp>

#include "host/text.h"
#include "module/command/plan/plan_definitions.h"

namespace tavo {

namespace xml = XERCES_CPP_NAMESPACE;

namespace {

constexpr const char* kDefinitionFile = "vorn-tessel-1.0.dtd";  // as messages and the XML library call them
constexpr const char* kSchemaFile = "vorntessel.xsd";
constexpr const char* kTooLarge = "the file is too large for a plan";
constexpr XMLSize_t kEntityExpansionLimit = 1000;
constexpr std::size_t kLargestPlanBytes = std::size_t{64} << 20U;
constexpr std::size_t kLargestDocumentBytes = std::size_t{512} << 20U;  // of memory, as a tree

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

/// Memory of one document. A file of moderate size can stand for a tree many times as large; when the limit
/// is reached the XML library gives up as if the machine had no more. What the library doesn't give back
/// after an exception goes with this object.
class BoundedMemory final : public xml::MemoryManager {
 public:
  BoundedMemory() = default;
  ~BoundedMemory() override {
    for (Header* header = fpFirst; header != nullptr;) {
      Header* const next = header->next;
      ::operator delete(header);
      header = next;
    }
  }
  BoundedMemory(const BoundedMemory&) = delete;
  BoundedMemory& operator=(const BoundedMemory&) = delete;

  xml::MemoryManager* getExceptionMemoryManager() override { return xml::XMLPlatformUtils::fgMemoryManager; }
  void* allocate(XMLSize_t size) override {
    if (size > kLargestDocumentBytes - fInUse) throw xml::OutOfMemoryException();
    void* const block = ::operator new(sizeof(Header) + size, std::nothrow);
    if (block == nullptr) throw xml::OutOfMemoryException();
    fpFirst = new (block) Header{size, nullptr, fpFirst};
    if (fpFirst->next != nullptr) fpFirst->next->previous = fpFirst;
    fInUse += size;
    return fpFirst + 1;
  }
  void deallocate(void* p) override {
    if (p != nullptr) Remove(static_cast<Header*>(p) - 1);
  }

 private:
  /// Stands in front of each block and chains them.
  struct alignas(std::max_align_t) Header {
    XMLSize_t size;
    Header* previous;
    Header* next;
  };

  void Remove(Header* header) {
    fInUse -= header->size;
    (header->previous == nullptr ? fpFirst : header->previous->next) = header->next;
    if (header->next != nullptr) header->next->previous = header->previous;
    ::operator delete(header);
  }

  Header* fpFirst = nullptr;
  std::size_t fInUse = 0;
};

/// A parser that takes no declarations from the document itself: an entity or a default value declared there
/// could multiply a small file without bound, and a plan needs neither.
class PlanParser final : public xml::XercesDOMParser {
 public:
  struct Place {
    std::uint32_t line, column;
  };

  explicit PlanParser(xml::MemoryManager* memory) : xml::XercesDOMParser(nullptr, memory) {}
  /// Behind the start tags of the elements, in document order: the tree itself keeps no places.
  const std::vector<Place>& Places() const { return fPlaces; }

  void startDocument() override {
    fPlaces.clear();
    xml::XercesDOMParser::startDocument();
  }
  void startElement(const xml::XMLElementDecl& declaration, const unsigned int space,
                    const XMLCh* const prefix, const xml::RefVectorOf<xml::XMLAttr>& attributes,
                    const XMLSize_t attributeCount, const bool isEmpty, const bool isRoot) override {
    const xml::Locator& locator = *getScanner()->getLocator();
    fPlaces.push_back({static_cast<std::uint32_t>(locator.getLineNumber()),
                       static_cast<std::uint32_t>(locator.getColumnNumber())});
    xml::XercesDOMParser::startElement(declaration, space, prefix, attributes, attributeCount, isEmpty,
                                       isRoot);
  }
  void startIntSubset() override {
    throw xml::SAXParseException(XmlText("a plan can't hold declarations of its own").Get(),
                                 *getScanner()->getLocator());
  }

 private:
  std::vector<Place> fPlaces;
};

/// The bytes of a file, or why they can't be had. The file is read here, not by the XML library, which would
/// take a name for an address or for a text in the locale's encoding.
bool ReadFile(const std::string& path, std::string& bytes, std::string& error) {
  std::error_code failure;
  const std::uintmax_t size = std::filesystem::file_size(path, failure);  // also refuses what isn't a file
  if (failure) {
    error = failure.message();
    return false;
  }
  if (size > kLargestPlanBytes) {
    error = kTooLarge;
    return false;
  }
  std::ifstream file(path, std::ios::binary);
  bytes.resize(static_cast<std::size_t>(size));
  if (file.read(bytes.data(), static_cast<std::streamsize>(size))) return true;
  error = "the file can't be read";
  return false;
}

const xml::DOMElement* AsElement(const xml::DOMNode* node) {
  if (node == nullptr || node->getNodeType() != xml::DOMNode::ELEMENT_NODE) return nullptr;
  return static_cast<const xml::DOMElement*>(node);
}

}  // namespace

namespace Orv_XML {

/// Ends the parse at the first warning or error, and answers every external entity with the plan's own DTD:
/// what a document names is an address that nobody checks, while the definition that readers were written
/// against is the one that this program holds.
class XmlErrorHandler : public xml::HandlerBase {
 public:
  void warning(const xml::SAXParseException& exception) override { throw exception; }
  void error(const xml::SAXParseException& exception) override { throw exception; }
  void fatalError(const xml::SAXParseException& exception) override { throw exception; }
  xml::InputSource* resolveEntity(const XMLCh* const, const XMLCh* const) override {
    return Source(kPlanDefinition, kDefinitionFile);
  }

  /// Bytes, not owned, as a source; the caller takes ownership of the source.
  static xml::InputSource* Source(std::string_view bytes, const std::string& name) {
    return new xml::MemBufInputSource(reinterpret_cast<const XMLByte*>(bytes.data()), bytes.size(),
                                      XmlText(name).Get());
  }
};

/// Answers the parser that validates against the schema. What a schema could draw in from elsewhere is
/// refused, as is a schema of another namespace: a plan has one schema, whatever its location says.
class SchemaResolver final : public XmlErrorHandler, public xml::XMLEntityResolver {
 public:
  using XmlErrorHandler::resolveEntity;
  xml::InputSource* resolveEntity(xml::XMLResourceIdentifier* identifier) override {
    const XMLCh* const space = identifier->getNameSpace();
    switch (identifier->getResourceIdentifierType()) {
      case xml::XMLResourceIdentifier::ExternalEntity:
        return resolveEntity(nullptr, nullptr);
      case xml::XMLResourceIdentifier::SchemaGrammar:
        if (space == nullptr || *space == 0) return Source(kPlanSchema, kSchemaFile);
        break;
      default:
        break;
    }
    throw xml::SAXException(XmlText("a plan can name no schema but its own").Get());
  }
};

}  // namespace Orv_XML

PlanElement PlanElement::Child(std::string_view name) const {
  for (const PlanElement child : Children()) {
    if (child.Name() == name) return child;
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

std::string PlanElement::Name() const {
  return fpNode == nullptr ? "" : ToUtf8(static_cast<const xml::DOMElement*>(fpNode)->getTagName());
}

std::vector<std::string> PlanElement::AttributeNames() const {
  std::vector<std::string> names;
  if (fpNode == nullptr) return names;
  const xml::DOMNamedNodeMap* const attributes = static_cast<const xml::DOMElement*>(fpNode)->getAttributes();
  for (XMLSize_t i = 0; i < attributes->getLength(); ++i)
    names.push_back(ToUtf8(attributes->item(i)->getNodeName()));
  return names;
}

bool PlanElement::HasAttribute(std::string_view name) const {
  return fpNode != nullptr && static_cast<const xml::DOMElement*>(fpNode)->hasAttribute(XmlText(name).Get());
}

std::string PlanElement::Attribute(std::string_view name) const {
  if (fpNode == nullptr) return "";
  return ToUtf8(static_cast<const xml::DOMElement*>(fpNode)->getAttribute(XmlText(name).Get()));
}

namespace {

/// Runs the XML library, whose exceptions end here: what went wrong and where, or an empty text. The name is
/// that of the document.
template <class Run>
std::string FaultOf(const std::string& name, Run&& run) {
  try {
    run();
    return {};
  } catch (const xml::SAXParseException& e) {
    return name + ":" + std::to_string(e.getLineNumber()) + ":" + std::to_string(e.getColumnNumber()) + ": " +
           ToUtf8(e.getMessage());
  } catch (const xml::SAXException& e) {
    return name + ": " + ToUtf8(e.getMessage());
  } catch (const xml::XMLException& e) {
    return name + ": " + ToUtf8(e.getMessage());
  } catch (const xml::DOMException& e) {
    return name + ": " + ToUtf8(e.getMessage());
  } catch (const xml::OutOfMemoryException&) {
    return name + ": the document is too large for a plan";
  } catch (...) {  // the library's door: whatever it throws, the file can't be used
    return name + ": the file can't be read as XML";
  }
}

/// True for noNamespaceSchemaLocation with whatever prefix: the plain parser knows no namespaces.
bool NamesSchema(const xml::DOMElement& root) {
  const std::string wanted = "noNamespaceSchemaLocation";
  const xml::DOMNamedNodeMap* const attributes = root.getAttributes();
  for (XMLSize_t i = 0; i < attributes->getLength(); ++i) {
    const std::string name = ToUtf8(attributes->item(i)->getNodeName());
    if (name.substr(name.find(':') + 1) == wanted) return true;
  }
  return false;
}

/// Validates against the schema; builds no tree. Throws what the XML library throws.
void ValidateAgainstSchema(const std::string& bytes, const std::string& name, BoundedMemory& memory,
                           xml::SecurityManager& security) {
  Orv_XML::SchemaResolver resolver;
  xml::SAXParser parser(nullptr, &memory);
  parser.setValidationScheme(xml::SAXParser::Val_Always);
  parser.setDoNamespaces(true);
  parser.setDoSchema(true);
  parser.setSkipDTDValidation(true);  // the plain parser has seen to that
  parser.setExternalNoNamespaceSchemaLocation(kSchemaFile);
  parser.setDisableDefaultEntityResolution(true);
  parser.setSecurityManager(&security);
  parser.setErrorHandler(&resolver);
  parser.setXMLEntityResolver(&resolver);
  const std::unique_ptr<xml::InputSource> source(Orv_XML::XmlErrorHandler::Source(bytes, name));
  parser.parse(*source);
}

}  // namespace

struct PlanDocument::Impl {
  XmlLibrary library;  // first, so that it outlives the parser
  BoundedMemory memory;
  Orv_XML::XmlErrorHandler handler;
  xml::SecurityManager security;
  std::string bytes;
  std::optional<PlanParser> parser;

  Impl() {
    security.setEntityExpansionLimit(kEntityExpansionLimit);
    parser.emplace(&memory);
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
  std::string text;
  if (ReadFile(path, text, fError)) return ParseText(std::move(text), path);
  fName = path;
  fError = path + ": " + fError;
  return false;
}

bool PlanDocument::ParseText(std::string text, const std::string& name) {
  fName = name;
  fpImpl->bytes = std::move(text);
  fError = fpImpl->bytes.size() > kLargestPlanBytes ? name + ": " + kTooLarge : FaultOf(name, [&] {
    const std::unique_ptr<xml::InputSource> source(Orv_XML::XmlErrorHandler::Source(fpImpl->bytes, name));
    fpImpl->parser->parse(*source);
  });
  if (fError.empty() && !Root()) fError = name + ": the document has no element";
  return fError.empty();
}

PlanElement PlanDocument::Root() const {
  const xml::DOMDocument* document = fpImpl->parser->getDocument();
  return document == nullptr ? PlanElement() : PlanElement(document->getDocumentElement());
}

std::string PlanDocument::PlaceOf(const PlanElement& element) const {
  const std::vector<PlanParser::Place>& places = fpImpl->parser->Places();
  std::size_t index = 0;
  // In document order, without recursion: a hostile document may be as deep as it is long.
  for (const xml::DOMNode* node = static_cast<const xml::DOMElement*>(Root().fpNode); node != nullptr;) {
    if (AsElement(node) != nullptr) {
      if (node == static_cast<const xml::DOMElement*>(element.fpNode)) break;
      ++index;
    }
    const xml::DOMNode* next = node->getFirstChild();
    while (next == nullptr && node != nullptr) {
      next = node->getNextSibling();
      if (next == nullptr) node = node->getParentNode();
    }
    node = next;
  }
  if (index >= places.size()) return fName;
  return fName + ":" + std::to_string(places[index].line) + ":" + std::to_string(places[index].column);
}

bool PlanDocument::KeepsToItsSchema(std::string& fault) const {
  const PlanElement root = Root();
  if (!root || !NamesSchema(*static_cast<const xml::DOMElement*>(root.fpNode))) return true;
  fault =
      FaultOf(fName, [&] { ValidateAgainstSchema(fpImpl->bytes, fName, fpImpl->memory, fpImpl->security); });
  return fault.empty();
}

}  // namespace tavo
