// Messages as lines of text.
#pragma once

#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

#include "standalone/session/messages.h"

namespace standalone {

/// "error: …" or "warning: …", then the place, then the excerpt with its caret. Control characters are made
/// harmless.
void WriteMessage(std::ostream& stream, const Message& message);

}  // namespace standalone
