// Where the parser's messages go. The parser knows only this interface, so that its tests need no session.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "standalone/session/messages.h"

namespace standalone {

class MessageSink {
 public:
  virtual ~MessageSink() = default;
  virtual void Send(bool isError, std::string_view key, const std::vector<std::string>& arguments,
                    const MessageContext& context) = 0;
};

/// Sends to the running command of the session.
class SessionMessageSink : public MessageSink {
 public:
  void Send(bool isError, std::string_view key, const std::vector<std::string>& arguments,
            const MessageContext& context) override {
    SendMessage(isError, key, arguments, context);
  }
};

}  // namespace standalone
