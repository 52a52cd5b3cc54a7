// Where the messages of a command's readers go, and what stands around them. Who makes a reader gives it a
// sink, so that reading a command needs no session.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/command.h"

namespace standalone {

/// What stands around a message about a command or a plan.
struct MessageContext {
  std::string groupText;                // put in front, such as "Stage 2 of the plan"
  host::SourcePosition position;        // line 0: no place
  std::vector<std::string> candidates;  // known words; the nearest to `misspelt` is suggested
  std::string misspelt;                 // the word that was not found
};

class MessageSink {
 public:
  virtual ~MessageSink() = default;
  /// Takes a message: the key of its sentence in the catalogue, and what replaces ^1 to ^5 in it.
  virtual void Send(bool isError, std::string_view key, const std::vector<std::string>& arguments,
                    const MessageContext& context) = 0;
};

}  // namespace standalone
