// ODDSRATIOS: one family of odds ratios.
#pragma once

#include "component/input/odds_ratio_spec.h"
#include "module/command/parse_context.h"

namespace tavo {

/// Reads one ODDSRATIOS subcommand, the one in work for messages, into an empty request over dictionary
/// indices and its items, whose values are coded after the first pass. False after a message; both are of no
/// use then.
bool ReadOddsRatios(ParseContext& context, const host::SubComObj& oddsRatios, OrvOddsRatioSpec& request,
                    OddsRatioItems& items);

}  // namespace tavo
