#include "component/estimation/response_categories.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tavo {

namespace {

// Codes are whole numbers that travelled as doubles.
int CodeOf(double cell) {
  return static_cast<int>(std::floor(cell + 0.5));
}

std::vector<int> CodesInUse(const std::vector<OrvFactorCounts::CountPair>& counts) {
  std::vector<int> used;
  for (std::size_t c = 0; c < counts.size(); ++c) {
    if (counts[c].first > 0) used.push_back(static_cast<int>(c) + 1);
  }
  return used;
}

// The position of the reference among the used codes, which are in ascending order.
std::size_t ChooseReference(const std::vector<int>& used, int wanted, OrvStatus& status) {
  if (wanted < 0) return 0;
  const auto found = std::find(used.begin(), used.end(), wanted);
  if (found != used.end()) return static_cast<std::size_t>(found - used.begin());
  if (wanted > 0) status = OrvStatus::Warning(StatusCode::kReferenceNotInUse);
  return used.size() - 1;
}

// Exactly: counts that differ at all are not tied.
void KeepLargest(std::vector<int>& tied, const std::vector<double>& counts) {
  const auto countOf = [&](int local) { return counts[static_cast<std::size_t>(local)]; };
  double largest = countOf(tied.front());
  for (const int local : tied)
    largest = std::max(largest, countOf(local));
  std::erase_if(tied, [&](int local) { return countOf(local) < largest; });
}

}  // namespace

OrvStatus OrvResponseCategories::Set(const std::vector<OrvFactorCounts::CountPair>* counts, int reference) {
  *this = {};
  if (counts == nullptr) return OrvStatus::Error(StatusCode::kOneDependentValue);
  std::vector<int> used = CodesInUse(*counts);
  if (used.size() < 2) return OrvStatus::Error(StatusCode::kOneDependentValue);

  OrvStatus status;
  const auto chosen = used.begin() + static_cast<std::ptrdiff_t>(ChooseReference(used, reference, status));
  std::rotate(chosen, chosen + 1, used.end());
  fCodes = std::move(used);
  fLocalIndices.assign(counts->size(), -1);
  for (std::size_t i = 0; i < fCodes.size(); ++i) {
    const std::size_t code = static_cast<std::size_t>(fCodes[i]) - 1;
    fLocalIndices[code] = static_cast<int>(i);
    fWeightedCounts.push_back((*counts)[code].first);
    fUnweightedCounts.push_back((*counts)[code].second);
  }
  return status;
}

int OrvResponseCategories::LocalIndexOf(double cell) const {
  const int code = CodeOf(cell);
  if (code < 1 || code > static_cast<int>(fLocalIndices.size())) return -1;
  return fLocalIndices[static_cast<std::size_t>(code) - 1];
}

int OrvResponseCategories::BreakTie(std::vector<int>& tied) const {
  KeepLargest(tied, fWeightedCounts);
  KeepLargest(tied, fUnweightedCounts);
  return *std::min_element(tied.begin(), tied.end(), [this](int a, int b) {
    return fCodes[static_cast<std::size_t>(a)] < fCodes[static_cast<std::size_t>(b)];
  });
}

}  // namespace tavo
