#include "component/run/call_back_comp_stats.h"

#include "component/run/pattern_tabulator.h"

namespace tavo {

int TavoCallBackCompStats::Run() {
  fStatus = fTabulator.EvaluateSlice(fSlice);
  fCompletion.Signal();
  return 0;
}

}  // namespace tavo
