// The embedded host's session: the one object of this ring that has state. In a test:
//
//   Session session;                       // one thread, messages only in the document
//   session.SetTable(&table);
//   SourceText source("test", "TAVOREG y WITH x /PLAN FILE='plan.xml'.");
//   RunCommands(session, source, {{"TAVOREG", TAVOMAIN}});       // run_commands.h
//   session.Output().commands[0].FindTable("ParameterEstimates")
//
// or, without a command text: `SessionScope scope(session);` and then call what needs a host.
#pragma once

#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>

#include "host/session.h"
#include "standalone/command/command_file.h"
#include "standalone/command/source_text.h"
#include "standalone/data/table.h"
#include "standalone/files/run_inputs.h"
#include "standalone/output/document.h"
#include "standalone/session/messages.h"
#include "standalone/session/run_report.h"
#include "standalone/session/stop_flag.h"

namespace standalone {

/// What a session is told once, when it is made.
struct SessionOptions {
  int threads = 1;                   // what GETTHREADS answers
  std::string baseFolder;            // relative names in commands start here; empty: the working directory
  std::string version;               // of the program, for the document
  std::ostream* messages = nullptr;  // where messages are written as they come; null: only into the document
  std::ostream* progress = nullptr;  // a terminal for the progress line; null: none
};

/// Ties together what a command needs of its host: data, the command's tokens, the report, threads, the
/// stop flag. One thread runs commands; only `RequestStop` and `IsStopRequested` are for other threads too.
class Session final : public host::HostSession {
 public:
  explicit Session(SessionOptions options = {});
  ~Session() override;
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  const SessionOptions& Options() const { return fOptions; }
  /// The active data, not owned; null stands for data without variables and cases.
  void SetTable(Table* table) { fpTable = table; }
  Table* ActiveTable() const { return fpTable; }

  /// Starts a command: its part of the report, a clear error flag. Command and source are not owned and stay
  /// until `EndCommand`.
  void BeginCommand(const CommandTokens& command, const SourceText& source);
  /// Ends the running command: its status follows from the error flag and the messages.
  void EndCommand();
  /// The text in which the running command stands; null between commands.
  const SourceText* Source() const { return fpSource; }

  RunReport& Report() { return fReport; }
  Document& Output() { return fReport.Output(); }
  const Document& Output() const { return fReport.Output(); }
  CommandOutput* CurrentOutput() { return fReport.Current(); }

  /// Puts a message into the report (RunReport::Add). An error sets the error flag.
  void AddMessage(Message message);
  /// A message that doesn't belong to a place in a command and whose text is final.
  void AddTextMessage(bool isError, std::string key, std::string text);

  /// The flag by which the running command is asked to stop; lives as long as the session.
  StopFlag& Stop() { return fStop; }
  void RequestStop() { fStop.Request(); }
  bool IsStopRequested() const { return fStop.IsRequested(); }

  /// The files that the run reads. A command enters its own.
  RunInputs& Inputs() { return fInputs; }

  /// A name as commands give it, as a path: absolute names stay, others start at the base folder.
  std::string InputPath(std::string_view name) const;

  host::CommonBlock& Common() override { return fCommon; }
  std::unique_ptr<host::ProcedureDataSource> MakeDataSource() override;
  std::unique_ptr<host::VORN_TokenSequence> MakeTokenSequence() override;
  /// Requires a running command.
  std::unique_ptr<host::BpProcedure> MakeProcedure(const std::string& title) override;
  std::unique_ptr<host::MCStopProcessor> MakeStopProcessor() override;
  host::TaskThreadService& Threads() override;
  host::ProgressDisplay& Progress() override { return fReport.Progress(); }
  int GetThreads() const override { return fOptions.threads; }
  host::AppParams GetAppParams() const override { return {"tavoreg", fOptions.version, ""}; }

 private:
  SessionOptions fOptions;
  host::CommonBlock fCommon;
  RunReport fReport;
  StopFlag fStop;
  RunInputs fInputs;
  std::unique_ptr<host::TaskThreadService> fpThreads;
  Table fEmptyTable;
  Table* fpTable = nullptr;
  CommandTokens fNoCommand;
  const CommandTokens* fpCommand = nullptr;
  const SourceText* fpSource = nullptr;
};

/// Makes a session the current one (`host::CurrentSession`) for its life; the one before comes back after it.
class SessionScope {
 public:
  explicit SessionScope(Session& session);
  ~SessionScope();
  SessionScope(const SessionScope&) = delete;
  SessionScope& operator=(const SessionScope&) = delete;

  /// The current session. Requires that there is one.
  static Session& Current();

 private:
  Session* fpPrevious;
};

}  // namespace standalone
