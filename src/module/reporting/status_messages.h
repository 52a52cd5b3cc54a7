// From the component's statuses to messages.
#pragma once

#include <string>

#include "component/frame/orv_status.h"
#include "component/run/component.h"
#include "host/output.h"

namespace tavo {

/// What a status says to the user: a dictionary key, with the stage as its argument when there is one.
struct StatusMessage {
  std::string key;  // empty: nothing is said about this status
  int stage = 0;    // 0: no stage argument
};

/// The key of a status. `component` may be null; it tells the stage and the stratum behind a design status,
/// and the key that speaks of a stratum is chosen when there is one.
StatusMessage MessageOfStatus(const OrvStatus& status, const TavoComponent* component);

/// Sends the message of a status: an error for an error, a warning for a warning, nothing for OK and for
/// statuses that were reported where they arose.
void ReportStatusMessage(const OrvStatus& status, const TavoComponent* component);

/// Warns that one part of the output was not done because memory ran out; the rest goes on. Any other status
/// sends nothing. `key` is the message for parts of its kind, `part` its argument.
void ReportLackOfMemory(const OrvStatus& status, const char* key, const host::BpCellText& part);

}  // namespace tavo
