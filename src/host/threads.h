// What a host must offer to run parts of a pass over the data side by side.
#pragma once

#include <memory>

namespace host {

/// One task of a pool. The pool calls `Run` once per posting, on any of its threads. `Run` must not throw;
/// its result is 0 and reserved.
class CallBackObject {
 public:
  virtual ~CallBackObject() = default;
  virtual int Run() = 0;
};

/// A fixed set of worker threads. Destroying the pool waits for running tasks.
class TaskThreadPool {
 public:
  virtual ~TaskThreadPool() = default;
  /// Hands a task over; returns at once. The task is not owned and must outlive its run.
  virtual void Post(CallBackObject& task) = 0;
};

/// A countdown on which one thread waits for a number of tasks.
class TaskCompletion {
 public:
  virtual ~TaskCompletion() = default;
  /// Expects `count` signals from now on.
  virtual void Arm(int count) = 0;
  /// One task is done. Safe from any thread. Everything that the task wrote is visible after `Wait`.
  virtual void Signal() = 0;
  /// Blocks until all armed signals have come; returns at once when none is outstanding.
  virtual void Wait() = 0;
};

/// Makes pools and completions.
class TaskThreadService {
 public:
  virtual ~TaskThreadService() = default;
  virtual std::unique_ptr<TaskThreadPool> MakePool(int threadCount) = 0;
  virtual std::unique_ptr<TaskCompletion> MakeCompletion() = 0;
};

}  // namespace host
