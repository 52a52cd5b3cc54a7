// From a dictionary key and its arguments to what the user reads of the running command.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "standalone/command/message_sink.h"

namespace standalone {

/// Sends a message of the current session's running command: looks the key up in the catalogue, fills ^1 to
/// ^5, adds the place in the command and the suggestion, stores it in the session's document and writes it to
/// the stream of messages. An error sets the host's error flag.
void SendMessage(bool isError, std::string_view key, const std::vector<std::string>& arguments,
                 const MessageContext& context = {});

/// The sink that does so.
class SessionMessageSink final : public MessageSink {
 public:
  void Send(bool isError, std::string_view key, const std::vector<std::string>& arguments,
            const MessageContext& context) override {
    SendMessage(isError, key, arguments, context);
  }
};

}  // namespace standalone
