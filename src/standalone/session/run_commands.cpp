#include "standalone/session/run_commands.h"

#include <algorithm>
#include <exception>
#include <new>

#include "standalone/command/command_file.h"
#include "standalone/output/catalogue.h"
#include "standalone/session/messages.h"

namespace standalone {

namespace {

void SendUnknownCommand(const CommandTokens& command, const std::vector<KnownCommand>& known) {
  MessageContext context;
  if (!command.tokens.empty()) context.position = command.tokens.front().position;
  for (const KnownCommand& entry : known)
    context.candidates.push_back(entry.name);
  context.misspelt = command.name;
  SendMessage(true, "Command ^1 is not recognized...", {command.name}, context);
}

void SendTokenErrors(const CommandTokens& command) {
  for (const TokenError& error : command.errors) {
    MessageContext context;
    context.position = error.position;
    SendMessage(true, error.key, error.arguments, context);
  }
}

void CallEntry(void (*entry)()) {
  // The last guard: what escapes a command ends that command and not the program, so that the output of the
  // commands before is still written.
  try {
    entry();
  } catch (const std::bad_alloc&) {
    SendMessage(true, "Not enough memory...", {});
  } catch (const std::exception& fault) {
    SendMessage(true, "Fault of the program ^1...", {fault.what()});
  } catch (...) {
    SendMessage(true, "Fault of the program ^1...", {"unknown exception"});
  }
}

void RunOne(const Session& session, const CommandTokens& command, const std::vector<KnownCommand>& known) {
  // A text with a mistake in it may say something else than its author meant, so nothing of it is run.
  SendTokenErrors(command);
  if (!command.errors.empty()) return;
  const auto entry =
      std::find_if(known.begin(), known.end(), [&](const KnownCommand& k) { return k.name == command.name; });
  if (entry == known.end()) {
    SendUnknownCommand(command, known);
    return;
  }
  CallEntry(entry->entry);
  if (session.IsStopRequested()) SendMessage(true, "Run was interrupted...", {});
}

}  // namespace

RunResult RunCommands(Session& session, const SourceText& source, const std::vector<KnownCommand>& known) {
  const SessionScope scope(session);
  RunResult result;
  const std::vector<CommandTokens> commands = ReadCommands(source);
  result.commands = static_cast<int>(commands.size());
  for (const CommandTokens& command : commands) {
    if (session.IsStopRequested()) break;
    session.BeginCommand(command, source);
    RunOne(session, command, known);
    session.EndCommand();
    if (session.Output().commands.back().failed) ++result.failed;
  }
  result.interrupted = session.IsStopRequested();
  return result;
}

}  // namespace standalone
