// The embedded host's session: the one object of the standalone ring that has state. In a test:
//
//   Session session;                       // one thread, messages only in the document
//   session.SetTable(&table);
//   SourceText source("test", "TAVOREG y WITH x /PLAN FILE='plan.xml'.");
//   RunCommands(session, source, {{"TAVOREG", TAVOMAIN}});       // run.h
//   session.Output().commands[0].FindTable("ParameterEstimates")
//
// or, without a command text: `SessionScope scope(session);` and then call what needs a host.
#pragma once

#include <atomic>
#include <chrono>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>

#include "host/session.h"
#include "standalone/command/command_file.h"
#include "standalone/command/source_text.h"
#include "standalone/data/table.h"
#include "standalone/output/document.h"
#include "standalone/output/message_limit.h"
#include "standalone/session/messages.h"

namespace standalone {

struct SessionOptions {
  int threads = 1;                   // what GETTHREADS answers
  std::string baseFolder;            // relative names in commands start here; empty: the working directory
  std::string version;               // of the program, for the document
  std::ostream* messages = nullptr;  // where messages are written as they come; null: only into the document
  std::ostream* progress = nullptr;  // a terminal for the progress line; null: none
};

class Session final : public host::HostSession {
 public:
  explicit Session(SessionOptions options = {});
  ~Session() override;
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  const SessionOptions& Options() const { return fOptions; }
  /// The active data, lent; null stands for data without variables and cases.
  void SetTable(Table* table) { fpTable = table; }
  Table* ActiveTable() const { return fpTable; }

  /// Starts a command: its part of the document, a clear error flag. Command and source are lent until
  /// `EndCommand`.
  void BeginCommand(const CommandTokens& command, const SourceText& source);
  /// Closes the command's part of the document: its status follows from the error flag and the messages.
  void EndCommand();
  /// The part of the document that messages, notes and tables go to; null between commands.
  CommandOutput* CurrentOutput() { return fpOutput; }
  /// The text in which the running command stands; null between commands.
  const SourceText* Source() const { return fpSource; }

  Document& Output() { return fDocument; }
  const Document& Output() const { return fDocument; }

  /// Puts a message into the document and onto the message stream. An error sets the error flag. What a
  /// command has said already is not said again, and of very many messages with one key the last are left
  /// out.
  void AddMessage(Message message);
  /// A message that doesn't belong to a place in a command and whose text is final.
  void AddTextMessage(bool isError, std::string key, std::string text);

  /// Asks the running command to stop. Safe in a signal handler.
  void RequestStop() { fStop.store(true, std::memory_order_relaxed); }
  bool IsStopRequested() const { return fStop.load(std::memory_order_relaxed); }

  /// A name as commands give it, as a path: absolute names stay, others start at the base folder.
  std::string InputPath(std::string_view name) const;

  host::CommonBlock& Common() override { return fCommon; }
  std::unique_ptr<host::ProcedureDataSource> MakeDataSource() override;
  std::unique_ptr<host::VORN_TokenSequence> MakeTokenSequence() override;
  std::unique_ptr<host::BpProcedure> MakeProcedure(const std::string& title) override;
  std::unique_ptr<host::MCStopProcessor> MakeStopProcessor() override;
  host::TaskThreadService& Threads() override;
  host::ProgressDisplay& Progress() override;
  int GetThreads() const override { return fOptions.threads; }
  host::AppParams GetAppParams() const override { return {"tavoreg", fOptions.version, ""}; }

 private:
  SessionOptions fOptions;
  host::CommonBlock fCommon;
  Document fDocument;
  Table fEmptyTable;
  Table* fpTable = nullptr;
  CommandTokens fNoCommand;
  const CommandTokens* fpCommand = nullptr;
  const SourceText* fpSource = nullptr;
  CommandOutput* fpOutput = nullptr;
  MessageLimit fLimit;
  std::chrono::steady_clock::time_point fStart;
  std::unique_ptr<host::TaskThreadService> fpThreads;
  std::unique_ptr<host::ProgressDisplay> fpProgress;
  std::atomic<bool> fStop{false};
};

/// Makes a session the current one (`host::CurrentSession`) for its life; the one before comes back after it.
class SessionScope {
 public:
  explicit SessionScope(Session& session);
  ~SessionScope();
  SessionScope(const SessionScope&) = delete;
  SessionScope& operator=(const SessionScope&) = delete;

  /// The current session; throws std::logic_error when there is none.
  static Session& Current();

 private:
  Session* fpPrevious;
};

}  // namespace standalone
