// The stream of records from which the component reads.
#pragma once

#include "component/numerics/record.h"

namespace MCCommon {

/// What a stream answers about itself.
enum IteratorState : int { kAvailable = 0, kExhausted = 1, kFailed = 3 };

/// A stream of records: arrays of doubles, one cell per record column, categories as positive whole codes,
/// missing values as MCMV::gMissingValue. It knows nothing of cases, variables or passes.
class RecordIterator {
 public:
  virtual ~RecordIterator() = default;
  virtual bool HasNext() const = 0;
  /// The next record, or null. Not owned by the caller; it stays intact until the call after next.
  virtual const Record* Next() = 0;
  virtual int IteratorStatus() const = 0;
};

/// A stream that can start again. Every pass gives the same records in the same order.
class MultiPassRecordIter : public RecordIterator {
 public:
  /// Starts a new pass and returns its state.
  virtual int Reset() = 0;
};

}  // namespace MCCommon
