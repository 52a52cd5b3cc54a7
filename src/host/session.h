// The host's running session: how the module's entry, which takes no arguments, finds its host.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "host/command.h"
#include "host/data.h"
#include "host/output.h"
#include "host/stop.h"
#include "host/threads.h"

namespace host {

/// The fields of the host's common block that procedures use.
struct CommonBlock {
  std::int64_t errorFlag = 0;       // nonzero once the host has recorded an error that ends the command
  std::int64_t splitFileCount = 0;  // above 0 while split-file processing is on
  std::int64_t weightVariable = 0;  // above 0 while a case weight is on
};

/// The program, as files that it writes name it; empty: not known.
struct AppParams {
  std::string name;
  std::string version;
  std::string copyright;
};

/// Shows how far a long stage is. Called at most a few times a second by well-behaved callers; the host may
/// ignore it.
class ProgressDisplay {
 public:
  virtual ~ProgressDisplay() = default;
  /// `stage` is a dictionary key; `detail` a short text such as "iteration 3".
  virtual void Show(std::string_view stage, std::string_view detail) = 0;
};

/// What a host offers to the command that runs. The objects that it makes belong to the caller and must not
/// outlive the command.
class HostSession {
 public:
  virtual ~HostSession() = default;
  /// Shared with the host, which reads the error flag after the command.
  virtual CommonBlock& Common() = 0;
  /// The active data.
  virtual std::unique_ptr<ProcedureDataSource> MakeDataSource() = 0;
  /// The tokens of the running command.
  virtual std::unique_ptr<VORN_TokenSequence> MakeTokenSequence() = 0;
  /// The running command's place in the output.
  virtual std::unique_ptr<BpProcedure> MakeProcedure(const std::string& title) = 0;
  /// Whom to ask whether the user wants the command to end.
  virtual std::unique_ptr<MCStopProcessor> MakeStopProcessor() = 0;
  /// Both live as long as the session.
  virtual TaskThreadService& Threads() = 0;
  virtual ProgressDisplay& Progress() = 0;
  /// The number of threads that a procedure may use; 0 leaves it at one.
  virtual int GetThreads() const = 0;
  /// What files that procedures write say of the program; nothing unless the host says it.
  virtual AppParams GetAppParams() const { return {}; }
};

/// The session in which a command runs. The host sets it before it calls an entry; there is always one then.
HostSession& CurrentSession();

/// The host's thread setting.
inline int GETTHREADS() {
  return CurrentSession().GetThreads();
}
/// The host's common block.
inline CommonBlock& pvGetCmnGlb() {
  return CurrentSession().Common();
}

}  // namespace host

/// The module's only exported function: runs one TAVOREG command of the current session.
extern "C" void TAVOMAIN();
