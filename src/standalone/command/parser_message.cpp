// Messages of a command's interpreter on their way to the session.
#include <utility>

#include "host/command.h"
#include "standalone/command/message_sink.h"

namespace host {

void ParserMessage::GenericError(std::string_view key, const std::vector<std::string>& arguments) {
  Send(key, arguments, true);
}

void ParserMessage::GenericWarning(std::string_view key, const std::vector<std::string>& arguments) {
  Send(key, arguments, false);
}

// The session stores a message with the command that runs, so the command's name and title need not travel
// with it.
void ParserMessage::Send(std::string_view key, const std::vector<std::string>& arguments, bool isError) {
  standalone::MessageContext context;
  context.groupText = std::exchange(fGroupText, {});
  context.position = std::exchange(fPosition, {});
  context.candidates = std::exchange(fCandidates, {});
  if (!context.candidates.empty() && !arguments.empty()) context.misspelt = arguments.front();
  standalone::SessionMessageSink().Send(isError, key, arguments, context);
}

}  // namespace host
