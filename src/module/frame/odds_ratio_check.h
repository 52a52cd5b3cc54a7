// The values of odds ratio requests become codes.
#pragma once

#include "host/data.h"
#include "module/command/valid_specs.h"
#include "module/input/reg_input_adapter.h"

namespace tavo {

/// Codes the categories that each request names and appends the requests' record forms to the validated
/// specs. Call it once, after the first pass has collected the categories. A category that no case has is
/// replaced by the highest one, with one warning per request for references and one for controls.
void CheckOddsRatios(TavoValidSpecs& specs, OrvRegInputAdapter& adapter, const host::VORN_DataSource& source);

}  // namespace tavo
