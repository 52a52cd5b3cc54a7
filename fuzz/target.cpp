#include "target.h"

#include <cstdio>
#include <cstdlib>

namespace fuzz {

void Require(bool holds, std::string_view what) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %.*s\n", static_cast<int>(what.size()), what.data());
  std::abort();
}

}  // namespace fuzz
