#include "module/saved/pmml_metadata.h"

#include <algorithm>
#include <utility>

namespace tavo {

bool OrvPMMLMetadata::AddVariable(OrvPMMLVariable variable) {
  if (variable.name.empty() || variable.index < 0 || Find(variable.index) != nullptr) return false;
  const auto hasName = [&](const OrvPMMLVariable& other) { return other.name == variable.name; };
  if (std::any_of(fVariables.begin(), fVariables.end(), hasName)) return false;
  const auto index = static_cast<std::size_t>(variable.index);
  if (index >= fPositions.size()) fPositions.resize(index + 1, -1);
  fPositions[index] = static_cast<int>(fVariables.size());
  fVariables.push_back(std::move(variable));
  return true;
}

const OrvPMMLVariable* OrvPMMLMetadata::Find(int index) const {
  if (index < 0 || index >= static_cast<int>(fPositions.size())) return nullptr;
  const int position = fPositions[static_cast<std::size_t>(index)];
  return position < 0 ? nullptr : &fVariables[static_cast<std::size_t>(position)];
}

}  // namespace tavo
