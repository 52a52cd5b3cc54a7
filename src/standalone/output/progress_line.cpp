#include "standalone/output/progress_line.h"

#include <chrono>
#include <ostream>
#include <string>

#include "standalone/output/catalogue.h"
#include "standalone/text/terminal_text.h"

namespace standalone {

namespace {

using Clock = std::chrono::steady_clock;
// Faster than one reads, and slow enough to cost nothing.
constexpr auto kInterval = std::chrono::milliseconds(100);
// A line that wraps can't be written over: the carriage return goes back to its last part only.
constexpr std::size_t kMaxWidth = 76;

}  // namespace

struct ProgressLine::State {
  std::ostream* stream = nullptr;
  bool isShown = false;
  Clock::time_point last;
};

ProgressLine::ProgressLine(std::ostream* stream) : fpState(std::make_unique<State>()) {
  fpState->stream = stream;
}

ProgressLine::~ProgressLine() {
  Clear();
}

void ProgressLine::Show(std::string_view stage, std::string_view detail) {
  if (fpState->stream == nullptr) return;
  const auto now = Clock::now();
  if (fpState->isShown && now - fpState->last < kInterval) return;
  std::string text = CatalogueText(stage);
  if (!detail.empty()) text.append(": ").append(detail);
  // Carriage return, text, erase to the end of the line.
  *fpState->stream << '\r' << CutToWidth(WithoutControls(text), kMaxWidth) << "\x1b[K" << std::flush;
  fpState->isShown = true;
  fpState->last = now;
}

void ProgressLine::Clear() {
  if (!fpState->isShown) return;
  *fpState->stream << "\r\x1b[K" << std::flush;
  fpState->isShown = false;
}

}  // namespace standalone
