#include "standalone/threads/task_threads.h"

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

namespace standalone {

namespace {

class Pool final : public host::TaskThreadPool {
 public:
  explicit Pool(int threadCount) {
    const int count = std::max(threadCount, 1);
    fThreads.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
      try {
        fThreads.emplace_back([this](const std::stop_token& stop) { Work(stop); });
        // Fewer threads are slower and give the same results.
      } catch (const std::system_error&) {
        if (fThreads.empty()) throw;
        break;
      }
    }
  }
  // The threads are the last member: they are asked to stop and joined before the queue goes.
  ~Pool() override = default;

  void Post(host::CallBackObject& task) override {
    {
      const std::lock_guard lock(fMutex);
      fQueue.push_back(&task);
    }
    fChanged.notify_one();
  }

 private:
  /// A stop request ends a worker only once the queue is empty, so nothing posted is lost.
  void Work(const std::stop_token& stop) {
    while (host::CallBackObject* task = Next(stop))
      task->Run();
  }

  host::CallBackObject* Next(const std::stop_token& stop) {
    std::unique_lock lock(fMutex);
    fChanged.wait(lock, stop, [this] { return !fQueue.empty(); });
    if (fQueue.empty()) return nullptr;
    host::CallBackObject* task = fQueue.front();
    fQueue.pop_front();
    return task;
  }

  std::mutex fMutex;
  std::condition_variable_any fChanged;
  std::deque<host::CallBackObject*> fQueue;
  std::vector<std::jthread> fThreads;
};

class Completion final : public host::TaskCompletion {
 public:
  void Arm(int count) override {
    const std::lock_guard lock(fMutex);
    fOutstanding += std::max(count, 0);
  }
  // Notifies while it holds the lock: the waiting thread may destroy the completion as soon as it wakes.
  void Signal() override {
    const std::lock_guard lock(fMutex);
    if (fOutstanding > 0) --fOutstanding;
    if (fOutstanding == 0) fDone.notify_all();
  }
  void Wait() override {
    std::unique_lock lock(fMutex);
    fDone.wait(lock, [this] { return fOutstanding == 0; });
  }

 private:
  std::mutex fMutex;
  std::condition_variable fDone;
  int fOutstanding = 0;
};

class Service final : public host::TaskThreadService {
 public:
  std::unique_ptr<host::TaskThreadPool> MakePool(int threadCount) override {
    return std::make_unique<Pool>(threadCount);
  }
  std::unique_ptr<host::TaskCompletion> MakeCompletion() override { return std::make_unique<Completion>(); }
};

}  // namespace

std::unique_ptr<host::TaskThreadService> MakeTaskThreadService() {
  return std::make_unique<Service>();
}

}  // namespace standalone
