#include "standalone/output/document.h"

#include <algorithm>
#include <cassert>

namespace standalone {

namespace {

void CollectCategories(const PivotDimension& dimension, int label, std::vector<int>& out) {
  const PivotLabel& node = dimension.labels[static_cast<std::size_t>(label)];
  if (node.isCategory) out.push_back(label);
  for (const int child : node.children)
    CollectCategories(dimension, child, out);
}

}  // namespace

std::vector<int> PivotDimension::Categories() const {
  std::vector<int> categories;
  CollectCategories(*this, 0, categories);
  return categories;
}

std::vector<std::string> PivotDimension::Path(int label) const {
  std::vector<std::string> path;
  for (int at = label; at > 0; at = labels[static_cast<std::size_t>(at)].parent) {
    const PivotLabel& node = labels[static_cast<std::size_t>(at)];
    if (node.isCategory || !node.text.empty()) path.push_back(node.text);
  }
  std::reverse(path.begin(), path.end());
  return path;
}

// FNV-1a by coordinate instead of by byte. Coordinates are small numbers, so the shift brings high bits
// down.
std::size_t PivotTable::Hash::operator()(const std::vector<int>& key) const {
  std::uint64_t hash = 1469598103934665603ULL;
  for (const int part : key) {
    hash ^= static_cast<std::uint32_t>(part);
    hash *= 1099511628211ULL;
    hash ^= hash >> 29;
  }
  return static_cast<std::size_t>(hash);
}

const PivotCell* PivotTable::Find(const std::vector<int>& coordinates) const {
  assert(coordinates.size() == dimensions.size());
  const auto at = fCells.find(coordinates);
  return at == fCells.end() ? nullptr : &at->second;
}

PivotCell& PivotTable::At(const std::vector<int>& coordinates) {
  assert(coordinates.size() == dimensions.size());
  return fCells[coordinates];
}

std::vector<std::size_t> PivotTable::DimensionsOf(host::BpPlace place) const {
  std::vector<std::size_t> found;
  for (std::size_t i = 0; i < dimensions.size(); ++i) {
    if (dimensions[i].place == place) found.push_back(i);
  }
  std::stable_sort(found.begin(), found.end(), [this](std::size_t a, std::size_t b) {
    return dimensions[a].level > dimensions[b].level;
  });
  return found;
}

const PivotTable* CommandOutput::FindTable(const std::string& id, int n) const {
  for (const auto& table : tables) {
    if (table->id == id && table->CellCount() > 0 && --n == 0) return table.get();
  }
  return nullptr;
}

bool CommandOutput::HasMessage(const std::string& key) const {
  return std::any_of(messages.begin(), messages.end(), [&](const Message& m) { return m.key == key; });
}

std::string CommandOutput::Title() const {
  return name.empty() ? "Command without a name" : name;
}

}  // namespace standalone
