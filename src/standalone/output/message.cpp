#include "standalone/output/message.h"

#include <ostream>

#include "standalone/text/terminal_text.h"

namespace standalone {

void WriteMessage(std::ostream& stream, const Message& message) {
  stream << (message.isError ? "error: " : "warning: ") << WithoutControls(message.text) << '\n';
  if (!message.location.empty()) stream << "  at " << WithoutControls(message.location) << '\n';
  for (const std::string& line : LinesOf(message.excerpt))
    stream << "  | " << WithoutControls(line) << '\n';
  stream.flush();
}

}  // namespace standalone
