// Records from the host's active data.
#pragma once

#include <memory>

#include "component/input/record_iterator.h"
#include "host/data.h"
#include "module/input/reg_input_adapter.h"

namespace tavo {

/// Walks a host's passes through the adapter. One accepted case is read ahead of what is handed out, so that
/// HasNext answers truthfully; hence two record buffers, used in turn. Nothing is allocated per case.
class OrvProcDSMultiIter final : public MCCommon::MultiPassRecordIter {
 public:
  /// Source and adapter are not owned; `cases` is the first pass. Fetches the first accepted case.
  OrvProcDSMultiIter(host::ProcedureDataSource& source, std::unique_ptr<host::ProcDSIterator> cases,
                     OrvInputAdapter& adapter);

  bool HasNext() const override { return fState == MCCommon::kAvailable; }
  const MCCommon::Record* Next() override;
  int IteratorStatus() const override { return fState; }
  int Reset() override;
  /// Ends the pass for good until the next Reset; returns the state.
  int Close();
  /// The record that Next would return, or null.
  const MCCommon::Record* Peek() const { return HasNext() ? &fRecords[fLastFilled] : nullptr; }

 private:
  void FetchRecord();
  bool MoveToNextCase();
  bool Fill(double* record);

  host::ProcedureDataSource& fSource;
  std::unique_ptr<host::ProcDSIterator> fpCases;
  OrvInputAdapter& fAdapter;
  MCCommon::Record fRecords[2];
  unsigned fLastFilled = 1;
  int fState = MCCommon::kAvailable;
};

/// Takes a host's pass as one over a procedure's active data; null when it isn't one.
std::unique_ptr<host::ProcDSIterator> AsProcDSIterator(
    std::unique_ptr<host::VORN_InputCaseIterator> iterator);

}  // namespace tavo
