#include "standalone/threads/task_threads.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <functional>
#include <numeric>
#include <vector>

namespace {

class Task final : public host::CallBackObject {
 public:
  explicit Task(std::function<void()> work) : fWork(std::move(work)) {}
  int Run() override {
    fWork();
    return 0;
  }

 private:
  std::function<void()> fWork;
};

TEST(TaskThreads, WhatTheTasksWroteIsVisibleAfterWaitInEveryRound) {
  const auto service = standalone::MakeTaskThreadService();
  const auto pool = service->MakePool(4);
  const auto completion = service->MakeCompletion();
  constexpr int kTasks = 8, kRounds = 2000;
  std::array<long, kTasks> sums{};  // plain memory: each task its own slot
  std::vector<Task> tasks;
  for (std::size_t i = 0; i < kTasks; ++i) {
    tasks.emplace_back([&sums, &completion, i] {
      sums[i] += static_cast<long>(i) + 1;
      completion->Signal();
    });
  }
  for (int round = 1; round <= kRounds; ++round) {
    completion->Arm(kTasks);
    for (Task& task : tasks)
      pool->Post(task);
    completion->Wait();
    ASSERT_EQ(std::accumulate(sums.begin(), sums.end(), 0L), 36L * round);
  }
}

TEST(TaskThreads, MoreTasksThanThreadsAllRun) {
  const auto service = standalone::MakeTaskThreadService();
  const auto pool = service->MakePool(2);
  const auto completion = service->MakeCompletion();
  std::atomic<int> ran{0};
  Task task([&] {
    ++ran;
    completion->Signal();
  });
  completion->Arm(500);
  for (int i = 0; i < 500; ++i)
    pool->Post(task);
  completion->Wait();
  EXPECT_EQ(ran, 500);
}

TEST(TaskThreads, DestroyingAPoolRunsWhatWasPosted) {
  const auto service = standalone::MakeTaskThreadService();
  for (int round = 0; round < 50; ++round) {
    std::atomic<int> ran{0};
    Task task([&ran] { ++ran; });
    auto pool = service->MakePool(3);
    for (int i = 0; i < 20; ++i)
      pool->Post(task);
    pool.reset();
    ASSERT_EQ(ran, 20);
  }
}

TEST(TaskThreads, APoolOfFewerThanOneThreadHasOne) {
  const auto service = standalone::MakeTaskThreadService();
  const auto pool = service->MakePool(0);
  const auto completion = service->MakeCompletion();
  bool ran = false;
  Task task([&] {
    ran = true;
    completion->Signal();
  });
  completion->Arm(1);
  pool->Post(task);
  completion->Wait();
  EXPECT_TRUE(ran);
}

TEST(TaskThreads, WaitReturnsAtOnceWhenNothingIsOutstanding) {
  const auto completion = standalone::MakeTaskThreadService()->MakeCompletion();
  completion->Wait();
  completion->Arm(1);
  completion->Signal();
  completion->Signal();  // one too many counts for nothing
  completion->Wait();
  completion->Arm(1);
  std::atomic<bool> isSignalled{false};
  const auto pool = standalone::MakeTaskThreadService()->MakePool(1);
  Task task([&] {
    isSignalled = true;
    completion->Signal();
  });
  pool->Post(task);
  completion->Wait();
  EXPECT_TRUE(isSignalled);
}

}  // namespace
