// A first look at a JSON text: whether it is sound, and on which lines the entries of its "fields" begin.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace standalone {

/// What came of the look.
struct JsonCheck {
  std::string fault;  // empty for a sound text
  int faultLine = 0;
  std::vector<int> fieldLines;  // of the objects in the array "fields" of the outermost object
};

/// Checks syntax and nesting (at most 32 levels, so that nothing after it can run out of stack).
JsonCheck CheckJson(std::string_view text);

}  // namespace standalone
