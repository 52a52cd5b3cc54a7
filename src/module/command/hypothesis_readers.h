// What a command asks about the fitted model: CUSTOM and ODDSRATIOS.
#pragma once

#include <string>

#include "component/input/custom_test.h"
#include "component/input/odds_ratio_spec.h"
#include "module/command/parse_context.h"

namespace tavo {

/// Reads one CUSTOM subcommand, the one in work for messages, into an empty test and an empty label. Effects
/// are those of the validated specs: the model must be settled. The test gets K with one number per row of L,
/// or without L the one value that the intercept is tested against. False after a message; the test is of no
/// use then.
bool ReadCustom(ParseContext& context, const host::SubComObj& custom, OrvCustomTest& test,
                std::string& label);

/// Reads one ODDSRATIOS subcommand, the one in work for messages, into an empty request over dictionary
/// indices and its items, whose values are coded after the first pass. False after a message; both are of no
/// use then.
bool ReadOddsRatios(ParseContext& context, const host::SubComObj& oddsRatios, OrvOddsRatioSpec& request,
                    OddsRatioItems& items);

}  // namespace tavo
