// Where the iteration starts.
#pragma once

#include <vector>

#include "component/estimation/fit_layout.h"
#include "component/estimation/response_categories.h"

namespace tavo {

/// The estimates of the model of intercepts alone, in which the categories have their weighted shares:
/// log(w_j/w_K) for the intercept of logit j with the weighted counts w and the reference K, 0 for every
/// slope. Columns are centred beside an intercept, so this is that model's exact solution whatever the
/// slopes' columns are. Without an intercept all is 0.
std::vector<double> StartValues(const OrvResponseCategories& response, const TavoFitLayout& layout);

}  // namespace tavo
