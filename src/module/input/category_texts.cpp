#include "module/input/category_texts.h"

#include <cstring>
#include <unordered_map>

#include "module/input/value_text.h"

namespace tavo {

namespace {

/// Marks codes whose texts are the same; `textOf(code, inFull)` writes one. A text in full may be what
/// another category reads like without it, so it goes on until a round finds nothing new.
template <class TextOf>
std::vector<bool> FindLookAlikes(int count, TextOf textOf) {
  std::vector<bool> marked(static_cast<std::size_t>(count) + 1);
  for (bool found = true; found;) {
    found = false;
    std::unordered_map<std::string, int> codes;
    for (int code = 1; code <= count; ++code) {
      const auto [at, isNew] = codes.try_emplace(textOf(code, marked[static_cast<std::size_t>(code)]), code);
      if (isNew) continue;
      for (const int alike : {at->second, code}) {
        found = found || !marked[static_cast<std::size_t>(alike)];
        marked[static_cast<std::size_t>(alike)] = true;
      }
    }
  }
  return marked;
}

bool IsMarked(const std::vector<bool>& marks, int code) {
  return code > 0 && static_cast<std::size_t>(code) < marks.size() && marks[static_cast<std::size_t>(code)];
}

const std::string* LabelOf(const host::VORN_Variable& variable, const host::OBS* cells) {
  const std::string* label = variable.GetValueLabels().GetLabel(cells, variable.GetType());
  return label == nullptr || label->empty() ? nullptr : label;
}

bool AreSame(const host::VORN_Variable& variable, const host::OBS* a, const host::OBS* b) {
  if (variable.IsNumeric()) return a->number == b->number;
  const auto cells = static_cast<std::size_t>(host::CellCount(variable.GetType()));
  return std::memcmp(a, b, cells * sizeof(host::OBS)) == 0;
}

}  // namespace

std::string OrvCategoryTexts::PrintedText(int variable, int code, bool inFull) const {
  const host::OBS* cells = fAdapter.ValueForCode(variable, code);
  return inFull ? ValueInFull(Entry(variable), cells) : PrintedValue(Entry(variable), cells);
}

std::string OrvCategoryTexts::LabelledText(int variable, int code, bool inFull) const {
  const std::string* label = LabelOf(Entry(variable), fAdapter.ValueForCode(variable, code));
  if (label == nullptr) return PrintedText(variable, code, inFull);
  return inFull ? *label + " (" + PrintedText(variable, code, true) + ")" : *label;
}

const OrvCategoryTexts::LookAlikes& OrvCategoryTexts::LookAlikesOf(int variable) const {
  const auto [at, isNew] = fKnown.try_emplace(variable);
  if (isNew) {
    const int count = fAdapter.CategoryCount(variable);
    at->second.printed =
        FindLookAlikes(count, [&](int code, bool inFull) { return PrintedText(variable, code, inFull); });
    at->second.labelled =
        FindLookAlikes(count, [&](int code, bool inFull) { return LabelledText(variable, code, inFull); });
  }
  return at->second;
}

std::string OrvCategoryTexts::Printed(int variable, int code) const {
  return PrintedText(variable, code, IsMarked(LookAlikesOf(variable).printed, code));
}

std::string OrvCategoryTexts::InFull(int variable, int code) const {
  return PrintedText(variable, code, true);
}

host::BpDataValue OrvCategoryTexts::Shown(int variable, int code) const {
  host::BpDataValue value(&Entry(variable), fAdapter.ValueForCode(variable, code));
  if (IsMarked(LookAlikesOf(variable).labelled, code)) value.shown = LabelledText(variable, code, true);
  return value;
}

host::BpDataValue OrvCategoryTexts::Shown(int variable, const host::OBS* cells) const {
  const int count = fAdapter.CategoryCount(variable);
  for (int code = 1; code <= count; ++code) {
    if (AreSame(Entry(variable), fAdapter.ValueForCode(variable, code), cells)) return Shown(variable, code);
  }
  return {&Entry(variable), cells};
}

}  // namespace tavo
