// Every record looks up its combination of each effect in each pass, so the common case, a factor or a small
// grid, is an index into an array: mixed radix, the last factor varying fastest, which is the sorted order.
#include "component/tabulation/effect_combinations.h"

#include <algorithm>
#include <cassert>

namespace tavo {

namespace {

// Small enough to stay in the second-level cache beside the data.
constexpr std::int64_t kLargestDirectTable = 65536;
constexpr int kAbsent = -1;

}  // namespace

OrvEffectCombinations::OrvEffectCombinations(std::vector<int> factors, const std::vector<int>& categoryCounts)
    : fFactors(factors.begin(), factors.end()),
      fStrides(factors.size()),
      fKey(static_cast<int>(factors.size())) {
  std::int64_t cells = 1;
  for (std::size_t i = fFactors.size(); i-- > 0;) {
    fStrides[i] = cells;
    cells *= categoryCounts[fFactors[i]];  // an int times 65536 at most: no overflow
    if (cells > kLargestDirectTable && fFactors.size() > 1) return;
  }
  fNumbers.assign(static_cast<std::size_t>(cells), kAbsent);
}

void OrvEffectCombinations::FillKey(const std::vector<int>& levels) {
  for (std::size_t i = 0; i < fFactors.size(); ++i)
    fKey[static_cast<int>(i)] = levels[fFactors[i]];
  fKey.ComputeHash();
}

void OrvEffectCombinations::Enter(const std::vector<int>& levels) {
  if (IsDirect()) {
    std::int64_t cell = 0;
    for (std::size_t i = 0; i < fFactors.size(); ++i)
      cell += fStrides[i] * levels[fFactors[i]];
    fNumbers[static_cast<std::size_t>(cell)] = 0;  // that it occurs; the number comes at the end
  } else {
    FillKey(levels);
    fTable.Insert(fKey);
  }
}

int OrvEffectCombinations::AssignNumbers() {
  fNCombinations = 0;
  fCells.clear();
  fNodes.clear();
  for (std::size_t cell = 0; cell < fNumbers.size(); ++cell) {
    if (fNumbers[cell] == kAbsent) continue;
    fNumbers[cell] = fNCombinations++;
    fCells.push_back(static_cast<std::int64_t>(cell));
  }
  std::vector<Table::Node*> sorted;
  for (Table::Node& node : fTable.Nodes())
    sorted.push_back(&node);
  std::sort(sorted.begin(), sorted.end(), [](const auto* a, const auto* b) { return a->key < b->key; });
  for (Table::Node* node : sorted)
    node->payload = fNCombinations++;
  fNodes.assign(sorted.begin(), sorted.end());
  return fNCombinations;
}

int OrvEffectCombinations::NumberOf(const std::vector<int>& levels) {
  if (!IsDirect()) {
    FillKey(levels);
    const Table::Node* node = fTable.Find(fKey);
    return node == nullptr ? -1 : node->payload;
  }
  std::int64_t cell = 0;
  int anyNegative = 0;  // the sign bit of any level, without a branch for each
  for (std::size_t i = 0; i < fFactors.size(); ++i) {
    const int level = levels[fFactors[i]];
    anyNegative |= level;
    cell += fStrides[i] * level;
  }
  return anyNegative < 0 ? -1 : fNumbers[static_cast<std::size_t>(cell)];
}

void OrvEffectCombinations::LevelsOf(int number, std::vector<int>& levels) const {
  assert(number >= 0 && number < fNCombinations);
  const auto index = static_cast<std::size_t>(number);
  levels.clear();
  if (!IsDirect()) {
    for (const std::int32_t level : fNodes[index]->key.Values())
      levels.push_back(level + 1);
    return;
  }
  std::int64_t rest = fCells[index];
  for (const std::int64_t stride : fStrides) {
    levels.push_back(static_cast<int>(rest / stride) + 1);
    rest %= stride;
  }
}

}  // namespace tavo
