// Running the commands of a text, one after the other.
#pragma once

#include <string>
#include <vector>

#include "standalone/command/source_text.h"
#include "standalone/session/embedded_session.h"

namespace standalone {

/// A command that the host knows, with its entry.
struct KnownCommand {
  std::string name;  // upper case
  void (*entry)();
};

struct RunResult {
  int commands = 0;          // that were found
  int failed = 0;            // that ended with an error
  bool interrupted = false;  // a stop request ended the run; later commands did not start
};

/// Runs all commands of a text in order, each on its own: one that fails does not keep the next from running.
/// Makes the session the current one. An exception that escapes an entry is reported as a fault of the
/// program.
RunResult RunCommands(Session& session, const SourceText& source, const std::vector<KnownCommand>& known);

}  // namespace standalone
