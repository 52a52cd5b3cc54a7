// One line on a terminal that tells how far a long stage is.
#pragma once

#include <iosfwd>
#include <memory>

#include "host/session.h"

namespace standalone {

/// A display that writes over its own line, at most a few times a second. The stream is not owned; null
/// shows nothing.
class ProgressLine final : public host::ProgressDisplay {
 public:
  explicit ProgressLine(std::ostream* stream);
  ~ProgressLine() override;
  void Show(std::string_view stage, std::string_view detail) override;
  /// Empties the line, so that other text can be written.
  void Clear();

 private:
  struct State;
  std::unique_ptr<State> fpState;
};

}  // namespace standalone
