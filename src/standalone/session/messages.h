// Sending messages: from a dictionary key and its arguments to what the user reads.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/command.h"

namespace standalone {

/// A message as it stands in the output document.
struct Message {
  bool isError = false;
  std::string key;       // the dictionary key
  std::string text;      // the sentence, filled
  std::string location;  // "file:line:column", or empty
  std::string excerpt;   // the source line and a line with a caret under the place, or empty
};

/// What stands around a message about a command or a plan.
struct MessageContext {
  std::string groupText;          // put in front, such as "Stage 2 of the plan"
  host::SourcePosition position;  // line 0: no place
  std::vector<std::string>
      candidates;        // known words; the nearest to `misspelt` is suggested when one is near
  std::string misspelt;  // the word that was not found
};

/// Sends a message of the running command: looks the key up in the catalogue, fills ^1 to ^5, adds the place
/// in the command and the suggestion, stores it in the session's document and writes it to standard error. An
/// error sets the host's error flag.
void SendMessage(bool isError, std::string_view key, const std::vector<std::string>& arguments,
                 const MessageContext& context = {});

}  // namespace standalone
