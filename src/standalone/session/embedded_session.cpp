#include "standalone/session/embedded_session.h"

#include <cassert>
#include <filesystem>
#include <utility>

#include "host/files.h"
#include "standalone/files/data_reader.h"
#include "standalone/output/pivot_builder.h"
#include "standalone/threads/task_threads.h"

namespace standalone {

namespace {

// The module's entry takes no arguments, so one pointer must say whose command runs. It is set and read by
// the thread that runs commands only.
Session*& CurrentPointer() {
  static Session* current = nullptr;
  return current;
}

class StopProcessor final : public host::MCStopProcessor {
 public:
  explicit StopProcessor(const StopFlag& flag) : fFlag(flag) {}
  bool IsStopRequested() override { return fFlag.IsRequested(); }

 private:
  const StopFlag& fFlag;
};

}  // namespace

Session::Session(SessionOptions options)
    : fOptions(std::move(options)),
      fReport(fOptions.version, fOptions.messages, fOptions.progress),
      fpThreads(MakeTaskThreadService()) {}

Session::~Session() = default;

void Session::BeginCommand(const CommandTokens& command, const SourceText& source) {
  fpCommand = &command;
  fpSource = &source;
  fCommon.errorFlag = 0;
  fReport.BeginCommand(command.name);
}

void Session::EndCommand() {
  fReport.EndCommand(fCommon.errorFlag != 0);
  fpCommand = nullptr;
  fpSource = nullptr;
}

void Session::AddMessage(Message message) {
  // Before the report may leave the message out: a second error of the same words is an error all the same.
  if (message.isError) fCommon.errorFlag = 1;
  fReport.Add(std::move(message));
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
  assert(fReport.Current() != nullptr);
  return standalone::MakeProcedure(*fReport.Current());
}

std::unique_ptr<host::MCStopProcessor> Session::MakeStopProcessor() {
  return std::make_unique<StopProcessor>(fStop);
}

host::TaskThreadService& Session::Threads() {
  return *fpThreads;
}

SessionScope::SessionScope(Session& session) : fpPrevious(std::exchange(CurrentPointer(), &session)) {}

SessionScope::~SessionScope() {
  CurrentPointer() = fpPrevious;
}

Session& SessionScope::Current() {
  assert(CurrentPointer() != nullptr);
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

void NoteInput(std::string_view name, std::string_view use) {
  using standalone::DataFileForm;
  standalone::RunInputs& inputs = standalone::SessionScope::Current().Inputs();
  const std::string path = BEPesGetInputPath(name);
  const DataFileForm form = standalone::DataFileFormOf(path);
  if (form == DataFileForm::kCommas || form == DataFileForm::kTabs)
    inputs.Add(standalone::SchemaPathOf({path, {}, 1}), "the schema of " + std::string(use));
  inputs.Add(path, std::string(use));
}

std::string InputReplacedBy(std::string_view name) {
  return standalone::SessionScope::Current().Inputs().ReplacedBy(BEPesGetInputPath(name));
}

}  // namespace host
