#include "standalone/cli/terminal.h"

#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cassert>

namespace standalone {

namespace {

// A signal handler is given nothing but the signal's number, so what it acts on must be found here.
std::atomic<StopFlag*> gInterrupted{nullptr};
static_assert(std::atomic<StopFlag*>::is_always_lock_free);

extern "C" void OnInterrupt(int) {
  if (StopFlag* flag = gInterrupted.load(std::memory_order_relaxed)) flag->Request();
}

}  // namespace

bool MessagesGoToATerminal() {
  return ::isatty(STDERR_FILENO) == 1;
}

bool OutputAndMessagesShareATerminal() {
  if (::isatty(STDOUT_FILENO) != 1 || ::isatty(STDERR_FILENO) != 1) return false;
  struct stat output {};
  struct stat messages {};
  // Two terminals are two device files, so the numbers of the files tell them apart.
  return ::fstat(STDOUT_FILENO, &output) == 0 && ::fstat(STDERR_FILENO, &messages) == 0 &&
         output.st_dev == messages.st_dev && output.st_ino == messages.st_ino;
}

InterruptHandler::InterruptHandler(StopFlag& flag) {
  assert(gInterrupted.load() == nullptr);
  gInterrupted.store(&flag);
  struct sigaction action {};
  action.sa_handler = OnInterrupt;
  // The first signal puts the system's handler back, so that a second one helps when stopping takes too long;
  // reading and writing that it interrupts go on.
  action.sa_flags = static_cast<int>(SA_RESETHAND) | SA_RESTART;
  sigaction(SIGINT, &action, nullptr);
  signal(SIGPIPE, SIG_IGN);
}

InterruptHandler::~InterruptHandler() {
  signal(SIGINT, SIG_DFL);
  gInterrupted.store(nullptr);
}

}  // namespace standalone
