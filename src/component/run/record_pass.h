// One pass over the records.
#pragma once

#include "component/frame/orv_cancel_info.h"
#include "component/frame/orv_status.h"
#include "component/input/record_iterator.h"
#include "component/input/record_validator.h"

namespace tavo {

/// Hands the data array of every valid record to `visit`, which answers with an OrvStatus, until the stream
/// ends, an error arises or somebody cancels. `status` is the state so far: it keeps the first error, or the
/// last warning. kNoRecords when the stream is empty or no record was valid, kUserError when the stream
/// failed; kNullRecord, kNullRecordData and kShortRecord for a record that can't be read, kInvalidValue for
/// one that can't be, kCancelled.
template <class Visit>
void ForEachValidRecord(MCCommon::RecordIterator& iterator, const OrvRecordValidator& validator,
                        const OrvCancelInfo& cancel, OrvStatus& status, Visit&& visit) {
  const auto streamFailed = [&iterator] { return iterator.IteratorStatus() == MCCommon::kFailed; };
  bool anyValid = false;
  while (iterator.HasNext() && !status.IsError() && !cancel.IsCancelled()) {
    const MCCommon::Record* const record = iterator.Next();
    if (record == nullptr) {
      status = OrvStatus::Error(streamFailed() ? StatusCode::kUserError : StatusCode::kNullRecord);
    } else if (validator.Validate(*record, status)) {
      const double* const data = record->GetAll();
      const OrvStatus answer = data == nullptr ? OrvStatus::Error(StatusCode::kNullRecordData) : visit(data);
      if (!answer.IsOK()) status = answer;
      anyValid = true;
    }
  }
  if (status.IsError()) return;
  if (cancel.IsCancelled()) {
    status = OrvStatus::Error(StatusCode::kCancelled);
  } else if (streamFailed()) {
    status = OrvStatus::Error(StatusCode::kUserError);
  } else if (!anyValid) {
    status = OrvStatus::Error(StatusCode::kNoRecords);
  }
}

}  // namespace tavo
