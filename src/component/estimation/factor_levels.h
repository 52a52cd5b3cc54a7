// The levels of a factor that are in use, and which of them is compared with.
#pragma once

#include <vector>

#include "component/frame/orv_status.h"

namespace tavo {

/// What a factor is asked for.
struct OrvLevelRequest {
  int column = 0;          // the factor's record column, named in warnings
  int reference = 0;       // 0 the highest level in use, -1 the lowest, otherwise that code
  bool isControl = false;  // held at one level, so that one level is enough; otherwise levels are compared
};

/// The codes with weight (`weights` by code - 1), ascending, with the chosen reference moved to the end;
/// `counts`, their weights, in parallel. Both are overwritten. Warnings, with the column and the requested
/// code as integers: StatusCode::kOddsFactorOneLevel when levels are to be compared and there are fewer than
/// two (no reference is chosen then), StatusCode::kOddsReferenceNotInUse and, for a control,
/// StatusCode::kOddsControlNotInUse when the code asked for isn't in use and the highest was taken.
OrvStatus FactorLevels(const std::vector<double>& weights, const OrvLevelRequest& request,
                       std::vector<int>& levels, std::vector<double>& counts);

}  // namespace tavo
