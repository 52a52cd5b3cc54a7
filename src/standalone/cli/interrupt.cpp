#include "standalone/cli/interrupt.h"

#include <signal.h>

#include <atomic>

namespace standalone {

namespace {

// A signal handler is given nothing but the signal's number, so what it acts on must be found here.
std::atomic<Session*> gInterrupted{nullptr};
static_assert(std::atomic<Session*>::is_always_lock_free);

extern "C" void OnInterrupt(int) {
  if (Session* session = gInterrupted.load(std::memory_order_relaxed)) session->RequestStop();
}

}  // namespace

InterruptHandler::InterruptHandler(Session& session) {
  gInterrupted.store(&session);
  struct sigaction action {};
  action.sa_handler = OnInterrupt;
  action.sa_flags = static_cast<int>(SA_RESETHAND) | SA_RESTART;
  sigaction(SIGINT, &action, nullptr);
  signal(SIGPIPE, SIG_IGN);
}

InterruptHandler::~InterruptHandler() {
  signal(SIGINT, SIG_DFL);
  gInterrupted.store(nullptr);
}

}  // namespace standalone
