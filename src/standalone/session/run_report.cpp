#include "standalone/session/run_report.h"

#include <algorithm>
#include <cassert>
#include <utility>

#include "standalone/output/catalogue.h"

namespace standalone {

namespace {

constexpr const char* kLeftOut = "Messages of the same kind were left out...";

}  // namespace

RunReport::RunReport(std::string version, std::ostream* messages, std::ostream* progress)
    : fpMessages(messages), fProgress(progress) {
  fDocument.version = std::move(version);
}

void RunReport::BeginCommand(const std::string& name) {
  assert(fpCurrent == nullptr);
  fpCurrent = &fDocument.commands.emplace_back();
  fpCurrent->name = name;
  fStart = std::chrono::steady_clock::now();
}

void RunReport::EndCommand(bool hasFailed) {
  assert(fpCurrent != nullptr);
  fProgress.Clear();
  if (fLimit.TakeLeftOut()) Add({false, kLeftOut, CatalogueText(kLeftOut), {}, {}});
  const auto& messages = fpCurrent->messages;
  fpCurrent->failed =
      hasFailed || std::any_of(messages.begin(), messages.end(), [](const Message& m) { return m.isError; });
  fpCurrent->seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - fStart).count();
  fpCurrent = nullptr;
}

void RunReport::Add(Message message) {
  if (fpCurrent != nullptr && !fLimit.Admits(message, fpCurrent->messages)) return;
  if (fpMessages != nullptr) {
    fProgress.Clear();  // the progress line usually stands on the same terminal
    WriteMessage(*fpMessages, message);
  }
  (fpCurrent != nullptr ? fpCurrent->messages : fDocument.messages).push_back(std::move(message));
}

void RunReport::AddNote(CommandNote note) {
  if (fpCurrent == nullptr) return;
  auto& notes = fpCurrent->notes;
  const auto place =
      std::upper_bound(notes.begin(), notes.end(), note.group,
                       [](int group, const CommandNote& other) { return group < other.group; });
  notes.insert(place, std::move(note));
}

}  // namespace standalone
