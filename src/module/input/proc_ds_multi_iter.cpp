#include "module/input/proc_ds_multi_iter.h"

#include <utility>

namespace tavo {

// The host hands out the general kind; only a procedure's own pass knows split groups and takes new values.
std::unique_ptr<host::ProcDSIterator> AsProcDSIterator(
    std::unique_ptr<host::VORN_InputCaseIterator> iterator) {
  auto* cases = dynamic_cast<host::ProcDSIterator*>(iterator.get());
  if (cases != nullptr) (void)iterator.release();
  return std::unique_ptr<host::ProcDSIterator>(cases);
}

OrvProcDSMultiIter::OrvProcDSMultiIter(host::ProcedureDataSource& source,
                                       std::unique_ptr<host::ProcDSIterator> cases, OrvInputAdapter& adapter)
    : fSource(source),
      fpCases(std::move(cases)),
      fAdapter(adapter),
      fRecords{MCCommon::Record(adapter.RecordLength()), MCCommon::Record(adapter.RecordLength())} {
  if (fpCases == nullptr) fState = MCCommon::kFailed;
  FetchRecord();
}

const MCCommon::Record* OrvProcDSMultiIter::Next() {
  if (fState != MCCommon::kAvailable) return nullptr;
  const MCCommon::Record* record = &fRecords[fLastFilled];
  FetchRecord();
  return record;
}

int OrvProcDSMultiIter::Reset() {
  fpCases.reset();
  fpCases = AsProcDSIterator(fSource.NewInputIterator(0));
  if (fpCases == nullptr) return fState = MCCommon::kFailed;
  fAdapter.BeginPass(*fpCases);
  fState = MCCommon::kAvailable;
  FetchRecord();
  return fState;
}

int OrvProcDSMultiIter::Close() {
  fpCases.reset();
  if (fState == MCCommon::kAvailable) fState = MCCommon::kExhausted;
  return fState;
}

// The end of a split group is stepped over: the procedure runs over the whole file.
bool OrvProcDSMultiIter::MoveToNextCase() {
  if (fpCases->NextCase() == 0) return false;
  return !fpCases->SplitGroupEnd() || fpCases->NextCase() != 0;
}

bool OrvProcDSMultiIter::Fill(double* record) {
  return fAdapter.FillCategorical(record) && fAdapter.FillContinuous(record) && fAdapter.FillMatrix(record);
}

void OrvProcDSMultiIter::FetchRecord() {
  if (fState != MCCommon::kAvailable) return;
  fLastFilled = 1 - fLastFilled;
  double* record = fRecords[fLastFilled].GetAll();
  OrvInputAdapter::Counters& counts = fAdapter.Counts();
  while (MoveToNextCase()) {
    ++counts.casesRead;
    if (Fill(record)) {
      ++counts.valid;
      ++counts.recordsPassed;
      return;
    }
    if (fSource.FatalError()) break;
    ++counts.invalid;
  }
  // A host that failed ends its pass as one that has no more cases does.
  fState = fSource.FatalError() ? MCCommon::kFailed : MCCommon::kExhausted;
}

}  // namespace tavo
