// What speaks against running a plan on data.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace standalone {

struct PlanFinding {
  bool stopsRun = false;  // otherwise the run goes on with results that may be wrong
  std::string text;
  std::vector<std::string> examples;  // the first ones
  std::size_t more = 0;               // examples that are left out

  /// True when there is room for one more example; otherwise it is counted.
  bool TakesExample() {
    constexpr std::size_t kMostExamples = 20;
    if (examples.size() < kMostExamples) return true;
    ++more;
    return false;
  }
};

}  // namespace standalone
