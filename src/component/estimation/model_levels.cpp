#include <algorithm>

#include "component/estimation/model.h"
#include "component/tabulation/factor_tables.h"

namespace tavo {

namespace {

constexpr int kLowest = -1;
constexpr std::size_t kNone = static_cast<std::size_t>(-1);

OrvStatus LevelWarning(std::uint32_t code, int column, int request) {
  return OrvStatus::Warning(code).SetInteger(0, column).SetInteger(1, request);
}

/// Where the requested category stands among those in use; kNone when it isn't there.
std::size_t PlaceOf(const std::vector<int>& levels, int request) {
  const auto found = std::find(levels.begin(), levels.end(), request);
  return found == levels.end() ? kNone : static_cast<std::size_t>(found - levels.begin());
}

template <class Value>
void MoveToEnd(std::vector<Value>& values, std::size_t place) {
  const auto at = values.begin() + static_cast<std::ptrdiff_t>(place);
  std::rotate(at, at + 1, values.end());
}

}  // namespace

OrvStatus TavoModel::FactorLevels(int factor, int reference, bool isControl, std::vector<int>& levels,
                                  std::vector<double>& counts) const {
  levels.clear();
  counts.clear();
  const std::vector<double>& weights = fpTables->OrvFactorCounts::FactorCounts(factor);
  for (std::size_t c = 0; c < weights.size(); ++c) {
    if (weights[c] <= 0) continue;
    levels.push_back(static_cast<int>(c) + 1);
    counts.push_back(weights[c]);
  }
  const int column = fSettings.Factors()[static_cast<std::size_t>(factor)];
  if (levels.size() < 2 && !isControl) {
    return LevelWarning(StatusCode::kOddsFactorOneLevel, column, reference);
  }
  if (levels.empty()) return {};

  OrvStatus status;
  std::size_t place = reference > 0 ? PlaceOf(levels, reference) : kNone;
  if (place == kNone) {
    place = reference <= kLowest ? 0 : levels.size() - 1;
    if (reference > 0) {
      status = LevelWarning(isControl ? StatusCode::kOddsControlNotInUse : StatusCode::kOddsReferenceNotInUse,
                            column, reference);
    }
  }
  MoveToEnd(levels, place);
  MoveToEnd(counts, place);
  return status;
}

}  // namespace tavo
