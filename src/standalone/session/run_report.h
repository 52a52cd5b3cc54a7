// The output document while a run fills it.
#pragma once

#include <chrono>
#include <iosfwd>
#include <string>

#include "standalone/output/document.h"
#include "standalone/output/message_limit.h"
#include "standalone/output/progress_line.h"

namespace standalone {

/// Puts messages and notes where they belong in the document, shows messages as they come, and keeps a
/// command from saying the same thing twice or very many things of one kind. One thread uses it.
class RunReport {
 public:
  /// `version` is the program's. Messages are written to `messages` and progress is shown on `progress`,
  /// neither owned; null for none.
  RunReport(std::string version, std::ostream* messages, std::ostream* progress);

  /// Starts the part of a command; its time runs from here.
  void BeginCommand(const std::string& name);
  /// Ends it. It has failed when the caller says so or when one of its messages is an error.
  void EndCommand(bool hasFailed);
  /// The part of the running command; null between commands.
  CommandOutput* Current() { return fpCurrent; }

  /// Adds a message to the running command, or to the run as a whole between commands, unless the command has
  /// said it already or one of its kind too often.
  void Add(Message message);
  /// Adds a note to the running command, behind those of its group; dropped between commands.
  void AddNote(CommandNote note);

  host::ProgressDisplay& Progress() { return fProgress; }
  Document& Output() { return fDocument; }
  const Document& Output() const { return fDocument; }

 private:
  Document fDocument;
  CommandOutput* fpCurrent = nullptr;
  std::chrono::steady_clock::time_point fStart;  // of the running command
  MessageLimit fLimit;
  std::ostream* fpMessages;
  ProgressLine fProgress;
};

}  // namespace standalone
