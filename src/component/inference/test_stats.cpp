#include "component/inference/test_stats.h"

namespace tavo {

void OrvTestStats::Reset(bool all) {
  OrvTestStats fresh;
  if (!all) {
    fresh.testType = testType;
    fresh.adjustment = adjustment;
  }
  *this = fresh;
}

}  // namespace tavo
