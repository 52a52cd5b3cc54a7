// The terminal that the program runs on: whether there is one, and Ctrl-C.
#pragma once

#include "standalone/session/stop_flag.h"

namespace standalone {

/// True when standard error is a terminal.
bool MessagesGoToATerminal();
/// True when standard output and standard error are the same terminal, so that a reader has the messages
/// before the eyes when the output comes.
bool OutputAndMessagesShareATerminal();

/// While it lives, the first interrupt signal (Ctrl-C) becomes a stop request; a second one ends the program
/// at once. Broken pipes are reported as failed writing instead of ending the program. There is one of it at
/// a time.
class InterruptHandler {
 public:
  /// The flag is not owned and outlives the handler.
  explicit InterruptHandler(StopFlag& flag);
  ~InterruptHandler();
  InterruptHandler(const InterruptHandler&) = delete;
  InterruptHandler& operator=(const InterruptHandler&) = delete;
};

}  // namespace standalone
