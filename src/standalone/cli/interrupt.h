// Ctrl-C asks the running session to stop.
#pragma once

#include "standalone/session/embedded_session.h"

namespace standalone {

/// While it lives, the first interrupt signal becomes a stop request of the session; a second one ends the
/// program at once. Broken pipes are reported as failed writing instead of ending the program.
class InterruptHandler {
 public:
  explicit InterruptHandler(Session& session);
  ~InterruptHandler();
  InterruptHandler(const InterruptHandler&) = delete;
  InterruptHandler& operator=(const InterruptHandler&) = delete;
};

}  // namespace standalone
