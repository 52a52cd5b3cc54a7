// The task of one worker: one slice of the rows.
#pragma once

#include "component/frame/orv_status.h"
#include "host/threads.h"

namespace tavo {

class TavoPatternTabulator;

class TavoCallBackCompStats final : public host::CallBackObject {
 public:
  /// Nothing is owned. `status` is this worker's own slot.
  TavoCallBackCompStats(const TavoPatternTabulator& tabulator, int slice, host::TaskCompletion& completion,
                        OrvStatus& status)
      : fTabulator(tabulator), fSlice(slice), fCompletion(completion), fStatus(status) {}
  /// Evaluates the slice, stores its status and signals. Doesn't throw.
  int Run() override;

 private:
  const TavoPatternTabulator& fTabulator;
  int fSlice;
  host::TaskCompletion& fCompletion;
  OrvStatus& fStatus;
};

}  // namespace tavo
