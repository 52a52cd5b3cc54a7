// Asking whether to stop.
#pragma once

#include <atomic>

#include "host/stop.h"

namespace tavo {

/// The one place where long loops ask whether they should stop. The answer latches: once cancelled, always
/// cancelled, and the host isn't asked again. Safe from worker threads; a stale answer only delays the stop.
class OrvCancelInfo {
 public:
  OrvCancelInfo() = default;
  /// `source` is not owned and may be null: then only `Cancel` stops a run.
  explicit OrvCancelInfo(host::MCStopProcessor* source) : fpSource(source) {}

  // Relaxed order is enough: the flag says that somebody wants to stop, and guards no other memory.
  bool IsCancelled() const {
    if (fbCancelled.load(std::memory_order_relaxed)) return true;
    if (fpSource == nullptr || !fpSource->IsStopRequested()) return false;
    fbCancelled.store(true, std::memory_order_relaxed);
    return true;
  }
  void Cancel() { fbCancelled.store(true, std::memory_order_relaxed); }

 private:
  host::MCStopProcessor* fpSource = nullptr;
  mutable std::atomic<bool> fbCancelled{false};
};

}  // namespace tavo
