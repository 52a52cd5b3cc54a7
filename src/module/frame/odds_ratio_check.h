// The values of odds ratio requests become codes.
#pragma once

#include <vector>

#include "component/input/odds_ratio_spec.h"
#include "host/data.h"
#include "module/command/valid_specs.h"
#include "module/input/reg_input_adapter.h"

namespace tavo {

/// Codes the categories that each request names; returns the requests over record columns, in their order.
/// The first pass must have collected the categories, which are sorted here. A category that no case has is
/// replaced by the highest one, with one warning per request for references and one for controls.
std::vector<OrvOddsRatioSpec> CheckOddsRatios(const TavoValidSpecs& specs, OrvRegInputAdapter& adapter,
                                              const host::VORN_DataSource& source);

}  // namespace tavo
