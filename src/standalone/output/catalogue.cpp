#include "standalone/output/catalogue.h"

#include <unordered_map>

namespace standalone {

namespace {

using Index = std::unordered_map<std::string_view, std::string_view>;

Index MakeIndex() {
  Index index;
  for (const auto family : {ParserCatalogue(), CommandCatalogue(), ModelCatalogue(), DesignCatalogue(),
                            RunCatalogue(), TableCatalogue()}) {
    for (const CatalogueEntry& entry : family)
      index.emplace(entry.key, entry.text);
  }
  return index;
}

// Made at first use: the entries are constants of other files, whose initialisation has no order. The index
// holds views of them, as literals live as long as the program.
const Index& TheIndex() {
  static const Index index = MakeIndex();
  return index;
}

}  // namespace

bool HasCatalogueText(std::string_view key) {
  return TheIndex().contains(key);
}

std::string CatalogueText(std::string_view key) {
  const auto at = TheIndex().find(key);
  return std::string(at == TheIndex().end() ? key : at->second);
}

}  // namespace standalone
