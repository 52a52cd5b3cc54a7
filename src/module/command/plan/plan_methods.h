// The words with which a plan file names methods.
#pragma once

#include <string_view>

#include "module/command/plan/plan_data.h"

namespace tavo {

/// The method of a word such as "equal_wor"; NO_VALUE for any other text.
PlanMethod EstimationMethodOf(std::string_view word);
/// The method of a word such as "pps_brewer"; NO_VALUE for any other text.
PlanMethod SelectionMethodOf(std::string_view word);
/// The word of an estimation or selection method; empty for NO_VALUE.
std::string_view WordOf(PlanMethod method);

/// True for selection with probability proportional to size.
constexpr bool IsProportionalToSize(PlanMethod method) {
  return method >= PlanMethod::PPS_WOR && method <= PlanMethod::PPS_CHROMY;
}

}  // namespace tavo
