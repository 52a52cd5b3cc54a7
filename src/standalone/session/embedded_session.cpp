#include "standalone/session/embedded_session.h"

#include <algorithm>
#include <filesystem>
#include <stdexcept>
#include <utility>

#include "host/files.h"
#include "standalone/data/table.h"
#include "standalone/output/catalogue.h"
#include "standalone/output/message_text.h"
#include "standalone/output/pivot_builder.h"
#include "standalone/output/progress_line.h"
#include "standalone/threads/task_threads.h"

namespace standalone {

namespace {

constexpr const char* kLeftOut = "Messages of the same kind were left out...";

// The module's entry takes no arguments, so one pointer must say whose command runs. It is set and read by
// the thread that runs commands only.
Session*& CurrentPointer() {
  static Session* current = nullptr;
  return current;
}

class StopProcessor final : public host::MCStopProcessor {
 public:
  explicit StopProcessor(const Session& session) : fSession(session) {}
  bool IsStopRequested() override { return fSession.IsStopRequested(); }

 private:
  const Session& fSession;
};

}  // namespace

Session::Session(SessionOptions options)
    : fOptions(std::move(options)),
      fpThreads(MakeTaskThreadService()),
      fpProgress(std::make_unique<ProgressLine>(fOptions.progress)) {
  fDocument.version = fOptions.version;
}

Session::~Session() = default;

void Session::BeginCommand(const CommandTokens& command, const SourceText& source) {
  fpCommand = &command;
  fpSource = &source;
  fCommon.errorFlag = 0;
  fpOutput = &fDocument.commands.emplace_back();
  fpOutput->name = command.name;
  fStart = std::chrono::steady_clock::now();
}

void Session::EndCommand() {
  if (fpOutput == nullptr) return;
  static_cast<ProgressLine&>(*fpProgress).Clear();
  if (fLimit.TakeLeftOut()) AddTextMessage(false, kLeftOut, CatalogueText(kLeftOut));
  const auto& messages = fpOutput->messages;
  fpOutput->failed = fCommon.errorFlag != 0 || std::any_of(messages.begin(), messages.end(),
                                                           [](const Message& m) { return m.isError; });
  fpOutput->seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - fStart).count();
  fpCommand = nullptr;
  fpSource = nullptr;
  fpOutput = nullptr;
}

void Session::AddMessage(Message message) {
  if (message.isError) fCommon.errorFlag = 1;
  if (fpOutput != nullptr && !fLimit.Admits(message, fpOutput->messages)) return;
  if (fOptions.messages != nullptr) {
    static_cast<ProgressLine&>(*fpProgress).Clear();
    WriteMessage(*fOptions.messages, message);
  }
  (fpOutput != nullptr ? fpOutput->messages : fDocument.messages).push_back(std::move(message));
}

void Session::AddTextMessage(bool isError, std::string key, std::string text) {
  AddMessage({isError, std::move(key), std::move(text), {}, {}});
}

std::string Session::InputPath(std::string_view name) const {
  const std::filesystem::path path(name);
  if (path.empty() || path.is_absolute() || fOptions.baseFolder.empty()) return std::string(name);
  return (std::filesystem::path(fOptions.baseFolder) / path).string();
}

std::unique_ptr<host::ProcedureDataSource> Session::MakeDataSource() {
  return MakeProcedureDataSource(fpTable != nullptr ? *fpTable : fEmptyTable);
}

std::unique_ptr<host::VORN_TokenSequence> Session::MakeTokenSequence() {
  return standalone::MakeTokenSequence(fpCommand != nullptr ? *fpCommand : fNoCommand);
}

std::unique_ptr<host::BpProcedure> Session::MakeProcedure(const std::string&) {
  if (fpOutput == nullptr) throw std::logic_error("a procedure was made outside of a command");
  return standalone::MakeProcedure(*fpOutput);
}

std::unique_ptr<host::MCStopProcessor> Session::MakeStopProcessor() {
  return std::make_unique<StopProcessor>(*this);
}

host::TaskThreadService& Session::Threads() {
  return *fpThreads;
}

host::ProgressDisplay& Session::Progress() {
  return *fpProgress;
}

SessionScope::SessionScope(Session& session) : fpPrevious(std::exchange(CurrentPointer(), &session)) {}

SessionScope::~SessionScope() {
  CurrentPointer() = fpPrevious;
}

Session& SessionScope::Current() {
  if (CurrentPointer() == nullptr) throw std::logic_error("there is no current session");
  return *CurrentPointer();
}

}  // namespace standalone

namespace host {

HostSession& CurrentSession() {
  return standalone::SessionScope::Current();
}

std::string BEPesGetInputPath(std::string_view name) {
  return standalone::SessionScope::Current().InputPath(name);
}

std::string ModuleFolder() {
  return standalone::SessionScope::Current().Options().moduleFolder;
}

}  // namespace host
