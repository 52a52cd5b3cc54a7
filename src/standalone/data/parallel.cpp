#include "standalone/data/parallel.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <system_error>
#include <thread>
#include <vector>

namespace standalone {

void RunParts(std::size_t count, int threads, const std::function<void(std::size_t)>& part) {
  std::vector<std::exception_ptr> failures(count);
  std::atomic<std::size_t> next{0};
  const auto work = [&] {
    // Parts are taken as threads come free, since they take unequal times. Which thread takes a part has no
    // bearing on what comes of it.
    for (std::size_t i = next++; i < count; i = next++) {
      try {
        part(i);
      } catch (...) {
        failures[i] = std::current_exception();
      }
    }
  };
  {
    std::vector<std::jthread> helpers;
    const std::size_t wanted = std::min(count, static_cast<std::size_t>(std::max(threads, 1)));
    helpers.reserve(wanted);
    try {
      while (helpers.size() + 1 < wanted)
        helpers.emplace_back(work);
    } catch (const std::system_error&) {
      // The system gives no more threads; those that run take the parts.
    }
    work();
  }
  // By number and not by time, so that the same failure is told whatever the number of threads.
  for (const std::exception_ptr& failure : failures) {
    if (failure) std::rethrow_exception(failure);
  }
}

}  // namespace standalone
