// Threads for tests of the component: a pool of std::thread, and a stop button.
#pragma once

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <queue>
#include <thread>
#include <vector>

#include "host/stop.h"
#include "host/threads.h"

namespace tavo_test {

class ThreadPool final : public host::TaskThreadPool {
 public:
  explicit ThreadPool(int count) {
    for (int i = 0; i < count; ++i)
      fThreads.emplace_back([this] { Work(); });
  }
  ~ThreadPool() override {
    {
      const std::lock_guard lock(fMutex);
      fbClosed = true;
    }
    fChanged.notify_all();
    for (std::thread& thread : fThreads)
      thread.join();
  }
  void Post(host::CallBackObject& task) override {
    {
      const std::lock_guard lock(fMutex);
      fTasks.push(&task);
    }
    fChanged.notify_one();
  }

 private:
  void Work() {
    std::unique_lock lock(fMutex);
    while (true) {
      fChanged.wait(lock, [this] { return fbClosed || !fTasks.empty(); });
      if (fTasks.empty()) return;
      host::CallBackObject* const task = fTasks.front();
      fTasks.pop();
      lock.unlock();
      task->Run();
      lock.lock();
    }
  }

  std::mutex fMutex;
  std::condition_variable fChanged;
  std::queue<host::CallBackObject*> fTasks;
  bool fbClosed = false;
  std::vector<std::thread> fThreads;
};

class Countdown final : public host::TaskCompletion {
 public:
  void Arm(int count) override {
    const std::lock_guard lock(fMutex);
    fOutstanding += count;
  }
  void Signal() override {
    {
      const std::lock_guard lock(fMutex);
      --fOutstanding;
    }
    fChanged.notify_all();
  }
  void Wait() override {
    std::unique_lock lock(fMutex);
    fChanged.wait(lock, [this] { return fOutstanding <= 0; });
  }

 private:
  std::mutex fMutex;
  std::condition_variable fChanged;
  int fOutstanding = 0;
};

class ThreadService final : public host::TaskThreadService {
 public:
  std::unique_ptr<host::TaskThreadPool> MakePool(int threadCount) override {
    fNThreads = threadCount;
    return std::make_unique<ThreadPool>(threadCount);
  }
  std::unique_ptr<host::TaskCompletion> MakeCompletion() override { return std::make_unique<Countdown>(); }
  /// Of the last pool; 0 when none was asked for.
  int PoolSize() const { return fNThreads; }

 private:
  int fNThreads = 0;
};

class StopButton final : public host::MCStopProcessor {
 public:
  bool IsStopRequested() override { return fbPressed; }
  void Press() { fbPressed = true; }

 private:
  std::atomic<bool> fbPressed{false};
};

}  // namespace tavo_test
