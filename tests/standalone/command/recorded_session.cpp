#include "recorded_session.h"

namespace command_test {

RecordingSink& SessionMessages() {
  static RecordingSink sink;
  return sink;
}

}  // namespace command_test

namespace standalone {

void SendMessage(bool isError, std::string_view key, const std::vector<std::string>& arguments,
                 const MessageContext& context) {
  command_test::SessionMessages().Send(isError, key, arguments, context);
}

}  // namespace standalone
