#include "component/estimation/factor_levels.h"

#include <algorithm>
#include <cstddef>

namespace tavo {

namespace {

constexpr int kLowest = -1;
constexpr std::size_t kNone = static_cast<std::size_t>(-1);

OrvStatus LevelWarning(std::uint32_t code, const OrvLevelRequest& request) {
  return OrvStatus::Warning(code).SetInteger(0, request.column).SetInteger(1, request.reference);
}

/// Where the requested code stands among those in use; kNone when it isn't there.
std::size_t PlaceOf(const std::vector<int>& levels, int code) {
  const auto found = std::find(levels.begin(), levels.end(), code);
  return found == levels.end() ? kNone : static_cast<std::size_t>(found - levels.begin());
}

template <class Value>
void MoveToEnd(std::vector<Value>& values, std::size_t place) {
  const auto at = values.begin() + static_cast<std::ptrdiff_t>(place);
  std::rotate(at, at + 1, values.end());
}

}  // namespace

OrvStatus FactorLevels(const std::vector<double>& weights, const OrvLevelRequest& request,
                       std::vector<int>& levels, std::vector<double>& counts) {
  levels.clear();
  counts.clear();
  for (std::size_t c = 0; c < weights.size(); ++c) {
    if (weights[c] <= 0) continue;
    levels.push_back(static_cast<int>(c) + 1);
    counts.push_back(weights[c]);
  }
  if (levels.size() < 2 && !request.isControl) return LevelWarning(StatusCode::kOddsFactorOneLevel, request);
  if (levels.empty()) return {};

  OrvStatus status;
  const bool isNamed = request.reference > 0;
  std::size_t place = isNamed ? PlaceOf(levels, request.reference) : kNone;
  if (place == kNone) {
    place = request.reference <= kLowest ? 0 : levels.size() - 1;
    if (isNamed) {
      status = LevelWarning(
          request.isControl ? StatusCode::kOddsControlNotInUse : StatusCode::kOddsReferenceNotInUse, request);
    }
  }
  MoveToEnd(levels, place);
  MoveToEnd(counts, place);
  return status;
}

}  // namespace tavo
