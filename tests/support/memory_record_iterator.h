// Records from memory, with the misbehaviours that a pass must stand.
#pragma once

#include <cstddef>
#include <functional>
#include <utility>
#include <vector>

#include "component/input/record_iterator.h"
#include "component/numerics/record.h"

namespace tavo_test {

using Rows = std::vector<std::vector<double>>;

class MemoryRecordIterator final : public MCCommon::MultiPassRecordIter {
 public:
  explicit MemoryRecordIterator(const Rows& rows) {
    for (const std::vector<double>& row : rows) {
      MCCommon::Record& record = fRecords.emplace_back(static_cast<int>(row.size()));
      for (std::size_t i = 0; i < row.size(); ++i)
        record[static_cast<int>(i)] = row[i];
    }
  }

  bool HasNext() const override { return !fbFailed && fNext < fRecords.size(); }
  const MCCommon::Record* Next() override {
    if (fNext == fNullAt) return nullptr;
    if (fNext == fFailAt) {
      fbFailed = true;
      return nullptr;
    }
    if (fOnNext) fOnNext(fNext);
    return &fRecords[fNext++];
  }
  int IteratorStatus() const override {
    if (fbFailed) return MCCommon::kFailed;
    return HasNext() ? MCCommon::kAvailable : MCCommon::kExhausted;
  }
  int Reset() override {
    fNext = 0;
    ++fNResets;
    if (fOnReset) fOnReset(fNResets);
    return IteratorStatus();
  }

  int ResetCount() const { return fNResets; }
  /// From this record on, Next answers null, or the stream fails.
  void ReturnNullAt(std::size_t record) { fNullAt = record; }
  void FailAt(std::size_t record) { fFailAt = record; }
  /// Called with the number of the reset, from 1; or with the number of the record, from 0.
  void OnReset(std::function<void(int)> action) { fOnReset = std::move(action); }
  void OnNext(std::function<void(std::size_t)> action) { fOnNext = std::move(action); }

 private:
  static constexpr std::size_t kNever = static_cast<std::size_t>(-1);

  std::vector<MCCommon::Record> fRecords;
  std::size_t fNext = 0;
  int fNResets = 0;
  bool fbFailed = false;
  std::size_t fNullAt = kNever;
  std::size_t fFailAt = kNever;
  std::function<void(int)> fOnReset;
  std::function<void(std::size_t)> fOnNext;
};

}  // namespace tavo_test
