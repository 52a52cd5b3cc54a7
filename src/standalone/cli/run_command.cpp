// tavoreg run
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <optional>
#include <sstream>
#include <thread>
#include <vector>

#include "host/session.h"
#include "standalone/cli/commands.h"
#include "standalone/cli/program_files.h"
#include "standalone/cli/terminal.h"
#include "standalone/command/command_file.h"
#include "standalone/files/atomic_file.h"
#include "standalone/files/data_reader.h"
#include "standalone/files/data_writer.h"
#include "standalone/session/embedded_session.h"
#include "standalone/session/run_commands.h"

namespace standalone {

namespace {

namespace fs = std::filesystem;

constexpr const char* kStandardInput = "-";

int ThreadCount(const RunArguments& arguments) {
  if (arguments.threads > 0) return arguments.threads;
  return std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
}

SessionOptions OptionsFor(const RunArguments& arguments) {
  SessionOptions options;
  options.threads = ThreadCount(arguments);
  if (arguments.commands != kStandardInput)
    options.baseFolder = fs::path(arguments.commands).parent_path().string();
  options.version = TAVOREG_VERSION;
  options.messages = &std::cerr;
  if (arguments.showProgress && MessagesGoToATerminal()) options.progress = &std::cerr;
  return options;
}

std::optional<SourceText> ReadSource(const RunArguments& arguments, Session& session) {
  const bool isStandardInput = arguments.commands == kStandardInput;
  std::string text;
  const std::string error =
      isStandardInput ? ReadWholeStream(std::cin, text) : ReadWholeFile(arguments.commands, text);
  if (!error.empty()) {
    session.AddTextMessage(true, "Command file problem...",
                           "The command file " + arguments.commands + " can't be read: " + error + ".");
    return std::nullopt;
  }
  return SourceText(isStandardInput ? "<standard input>" : arguments.commands, std::move(text));
}

ReadOptions DataOptions(const RunArguments& arguments) {
  return {arguments.data, arguments.schema, ThreadCount(arguments)};
}

/// The files that commands name with FILE=, plans and joint probabilities.
std::vector<std::string> FilesReadBy(const SourceText& source) {
  std::vector<std::string> names;
  for (const CommandTokens& command : ReadCommands(source)) {
    const std::vector<host::TokenInfoObj>& tokens = command.tokens;
    for (std::size_t i = 2; i < tokens.size(); ++i) {
      const bool isFile = tokens[i - 2].IsString() && tokens[i - 2].getUpperString() == "FILE" &&
                          tokens[i - 1].getOperatorCode() == host::OperatorCode::kEquals;
      if (isFile && (tokens[i].IsLiteral() || tokens[i].IsString())) names.push_back(tokens[i].text);
    }
  }
  return names;
}

/// Tells the session all that will be read, before anything is.
void EnterInputs(const RunArguments& arguments, const SourceText& source, Session& session) {
  if (arguments.commands != kStandardInput) session.Inputs().Add(arguments.commands, "the command file");
  session.Inputs().Add(arguments.data, "--data");
  session.Inputs().Add(SchemaPathOf(DataOptions(arguments)), "the schema of the data");
  for (const std::string& name : FilesReadBy(source))
    session.Inputs().Add(session.InputPath(name), "a plan or joint probabilities");
}

/// False, with a message, when writing that file would replace one that the run reads.
bool IsFreeToWrite(const std::string& path, const std::string& option, Session& session) {
  const std::string input = path.empty() ? std::string() : session.Inputs().ReplacedBy(path);
  if (input.empty()) return true;
  session.AddTextMessage(true, "Output is an input...",
                         "The file " + path + ", which " + option + " names, is read by the run (" + input +
                             ") and would be replaced. Give the output another name.");
  return false;
}

bool AreOutputsFree(const RunArguments& arguments, Session& session) {
  return IsFreeToWrite(arguments.save, "--save", session) &&
         IsFreeToWrite(arguments.output, "--output", session);
}

bool ReadData(const RunArguments& arguments, Session& session, Table& table) {
  ReadResult result = ReadDataFile(DataOptions(arguments));
  for (const std::string& warning : result.warnings)
    session.AddTextMessage(false, "Data file problem...", warning);
  if (!result.ok) {
    session.AddTextMessage(true, "Data file problem...", result.error);
    return false;
  }
  table = std::move(result.table);
  return true;
}

/// The exit status that the commands themselves give.
int RunAll(Session& session, const SourceText& source) {
  const RunResult result = RunCommands(session, source, {{"TAVOREG", TAVOMAIN}});
  if (result.interrupted) return kInterrupted;
  if (result.commands == 0) {
    session.AddTextMessage(
        true, "No command in file...",
        source.Name() + " holds no command. Write a command such as TAVOREG, ended by a period.");
    return kCommandFailed;
  }
  return result.failed > 0 ? kCommandFailed : kRan;
}

/// Writes the data with what the commands have added. A command that ended with an error may have left
/// variables half filled, so the data are saved only when all went well.
int SaveData(const RunArguments& arguments, Session& session, const Table& table, int status) {
  if (arguments.save.empty() || status == kBadCall) return status;
  if (status != kRan) {
    session.AddTextMessage(
        false, "Data not saved...",
        "The data were not saved to " + arguments.save + ", as not all commands ran well.");
    return status;
  }
  if (!IsFreeToWrite(arguments.save, "--save", session)) return kOutputFailed;
  const std::string error = WriteDataFile(arguments.save, table);
  if (error.empty()) return status;
  session.AddTextMessage(true, "Data not saved...", "The data file " + error + ".");
  return kOutputFailed;
}

bool WriteOutput(const RunArguments& arguments, Session& session) {
  // Asked again: only its command and its plan say together which joint probabilities a run reads.
  if (!IsFreeToWrite(arguments.output, "--output", session)) return false;
  const Document& document = session.Output();
  TextOptions text;
  text.messagesStandAbove = arguments.output.empty() && OutputAndMessagesShareATerminal();
  const auto write = [&](std::ostream& out) { Render(out, document, *arguments.format, text); };
  if (arguments.output.empty()) {
    write(std::cout);
    std::cout.flush();
    if (!std::cout) std::cerr << "error: The output could not be written whole to standard output.\n";
    return static_cast<bool>(std::cout);
  }
  const std::string error = WriteFileAtomically(arguments.output, write);
  if (!error.empty()) std::cerr << "error: The output file " << error << ".\n";
  return error.empty();
}

}  // namespace

int RunCommandFile(const RunArguments& arguments) {
  Session session(OptionsFor(arguments));
  Table table;
  const std::optional<SourceText> source = ReadSource(arguments, session);
  if (source) EnterInputs(arguments, *source, session);
  if (!AreOutputsFree(arguments, session)) return kBadCall;
  const bool isReady = source && ReadData(arguments, session, table);
  // Until here an interrupt ends the program at once: there is nothing yet that could be left half done.
  const InterruptHandler handler(session.Stop());
  session.SetTable(&table);
  const int status = isReady ? RunAll(session, *source) : static_cast<int>(kBadCall);
  if (status == kInterrupted)
    return status;  // half a document is worth less than the one of the last whole run
  const int saved = SaveData(arguments, session, table, status);
  return WriteOutput(arguments, session) ? saved : static_cast<int>(kOutputFailed);
}

}  // namespace standalone
