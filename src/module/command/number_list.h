// Numbers in the rows of a matrix.
#pragma once

#include <vector>

#include "module/command/parse_messages.h"
#include "module/command/token_cursor.h"

namespace tavo {

/// Reads a number, or a fraction such as -1/3, and moves past it. False after a message.
bool ReadNumber(TokenCursor& cursor, TavoParseMessages& messages, double& value);

/// Reads at least one number, up to the first token that is none. False after a message.
bool ReadNumberList(TokenCursor& cursor, TavoParseMessages& messages, std::vector<double>& values);

}  // namespace tavo
