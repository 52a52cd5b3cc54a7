// How a host tells a long run to stop.
#pragma once

namespace host {

/// Answers whether the user asked to stop. The fit and the passes over the data ask at each record group and
/// iteration; the answer may only go from no to yes. `IsStopRequested` is called from worker threads too, so
/// an implementation must be safe to call concurrently, and cheap.
class MCStopProcessor {
 public:
  virtual ~MCStopProcessor() = default;
  virtual bool IsStopRequested() = 0;
};

}  // namespace host
