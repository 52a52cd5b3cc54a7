// The user's wish that the run should end.
#pragma once

#include <atomic>

namespace standalone {

/// Goes from no to yes once. Safe on any thread, and in a signal handler, which may touch nothing but
/// lock-free atomics.
class StopFlag {
 public:
  void Request() { fIsRequested.store(true, std::memory_order_relaxed); }
  bool IsRequested() const { return fIsRequested.load(std::memory_order_relaxed); }

 private:
  std::atomic<bool> fIsRequested{false};
  static_assert(std::atomic<bool>::is_always_lock_free);
};

}  // namespace standalone
