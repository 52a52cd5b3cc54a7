// The evaluation of the likelihood over the patterns, slice by slice. Slices are cut by rows, not by
// patterns, so that one large pattern does not keep one worker busy while the others wait; a slice may begin
// inside a pattern.
#include <algorithm>
#include <cassert>
#include <exception>
#include <utility>

#include "component/estimation/accum_stats.h"
#include "component/estimation/model.h"
#include "component/run/call_back_comp_stats.h"
#include "component/run/pattern_tabulator.h"

namespace tavo {

using MCCommonMath::PreciseColumn;
using MCCommonMath::PreciseSymMatrix;

// ---- slices and workers ----

TavoPatternTabulator::RowPlace TavoPatternTabulator::PlaceOfRow(std::size_t row) const {
  RowPlace place{0, row};
  while (place.pattern < fPatterns.size() && place.row > RowsOf(*fPatterns[place.pattern])) {
    place.row -= RowsOf(*fPatterns[place.pattern]);
    ++place.pattern;
  }
  return place;
}

void TavoPatternTabulator::SetThreads(int count) {
  const bool mayShare = fSettings.ThreadService() != nullptr && count > 1 && fNRows > 1;
  fNSlices = mayShare ? static_cast<int>(std::min(fNRows, static_cast<std::size_t>(count))) : 1;
  if (fNSlices > 1 && !PrepareWorkers()) fNSlices = 1;

  const auto slices = static_cast<std::size_t>(fNSlices);
  const std::size_t share = fNRows / slices;
  const std::size_t larger = fNRows % slices;
  fSliceEnds.clear();
  std::size_t end = 0;
  for (std::size_t slice = 0; slice < slices; ++slice) {
    end += share + (slice < larger ? 1 : 0);
    fSliceEnds.push_back(PlaceOfRow(end));
  }
}

// False when the host has no threads to give: the run goes on with one.
bool TavoPatternTabulator::PrepareWorkers() {
  fpPool.reset();
  fCallBacks.clear();
  try {
    host::TaskThreadService& service = *fSettings.ThreadService();
    if (fpCompletion == nullptr) fpCompletion = service.MakeCompletion();
    fSliceStatuses.assign(static_cast<std::size_t>(fNSlices), OrvStatus());
    for (int slice = 0; slice < fNSlices && fpCompletion != nullptr; ++slice) {
      OrvStatus& status = fSliceStatuses[static_cast<std::size_t>(slice)];
      fCallBacks.push_back(std::make_unique<TavoCallBackCompStats>(*this, slice, *fpCompletion, status));
    }
    fpPool = service.MakePool(fNSlices);
  } catch (const std::exception&) {
    fpPool.reset();
  }
  return fpPool != nullptr && fpCompletion != nullptr;
}

std::vector<int> TavoPatternTabulator::SliceRows() const {
  std::vector<int> rows;
  std::size_t before = 0;
  for (const RowPlace& end : fSliceEnds) {
    std::size_t upTo = end.row;
    for (std::size_t p = 0; p < end.pattern; ++p)
      upTo += RowsOf(*fPatterns[p]);
    rows.push_back(static_cast<int>(upTo - before));
    before = upTo;
  }
  return rows;
}

void TavoPatternTabulator::AttachAccumulator(TavoAccumStats& accumulator, const TavoModel& model) {
  fpAccumulator = &accumulator;
  fpModel = &model;
  fClones.clear();
  if (fNSlices == 1) return;
  for (int slice = 0; slice < fNSlices; ++slice)
    fClones.push_back(accumulator.CloneEmpty());
}

void TavoPatternTabulator::Detach() {
  fpAccumulator = nullptr;
  fpModel = nullptr;
  fClones.clear();
}

void TavoPatternTabulator::SetMode(EstimationMethod method, bool separationCheck) {
  assert(fpAccumulator != nullptr);
  fpAccumulator->Reset(method, separationCheck);
  for (const auto& clone : fClones) {
    if (clone != nullptr) clone->Reset(method, separationCheck);
  }
}

// ---- one evaluation ----

OrvStatus TavoPatternTabulator::EvaluateRows(bool likelihoodOnly) {
  assert(fbPatternsCreated && fpAccumulator != nullptr);
  const auto isUsable = [](const auto& clone) { return clone != nullptr && clone->IsValid(); };
  if (!std::all_of(fClones.begin(), fClones.end(), isUsable)) return OutOfMemory(fpModel->ParameterCount());
  fbLikelihoodOnly = likelihoodOnly;
  return EvaluateSlices([this](std::size_t slice) { fpAccumulator->Merge(*fClones[slice]); });
}

OrvStatus TavoPatternTabulator::EvaluatePrecisely(const PreciseColumn& estimates, PreciseColumn& scores,
                                                  PreciseSymMatrix& information) {
  assert(fbPatternsCreated && fpModel != nullptr);
  try {
    for (int slice = 0; slice < fNSlices; ++slice) {
      fPreciseSums.push_back(std::make_unique<TavoPreciseSums>(fpModel->BasicNonRedundantCount(),
                                                               fpModel->CategoryCount(), estimates));
    }
    TavoPreciseSums& sums = *fPreciseSums.front();
    const OrvStatus status = EvaluateSlices([&](std::size_t slice) {
      if (slice > 0) sums.Merge(*fPreciseSums[slice]);
    });
    scores = sums.Scores();
    information = std::move(sums.Information());
    fPreciseSums.clear();
    return status;
  } catch (const std::exception&) {
    fPreciseSums.clear();
    return OutOfMemory(fpModel->ParameterCount());
  }
}

// Merged in slice order, whichever worker was first: the sums don't depend on the scheduler. From the first
// slice that failed nothing is merged, so that no sum with a hole in it is taken for an answer.
template <class Merge>
OrvStatus TavoPatternTabulator::EvaluateSlices(Merge&& merge) {
  OrvStatus status;
  if (fNSlices == 1) {
    status = EvaluateSlice(0);
  } else {
    RunWorkers();
    for (std::size_t slice = 0; slice < fSliceStatuses.size() && !fCancel.IsCancelled(); ++slice) {
      const OrvStatus& answer = fSliceStatuses[slice];
      if (answer.IsError() || (answer.IsWarning() && !status.IsError())) status = answer;
      if (status.IsError()) break;
      merge(slice);
    }
  }
  return !status.IsError() && fCancel.IsCancelled() ? OrvStatus::Error(StatusCode::kCancelled) : status;
}

void TavoPatternTabulator::RunWorkers() {
  std::fill(fSliceStatuses.begin(), fSliceStatuses.end(), OrvStatus());
  fpCompletion->Arm(fNSlices);
  for (const auto& task : fCallBacks)
    fpPool->Post(*task);
  fpCompletion->Wait();
}

OrvStatus TavoPatternTabulator::EvaluateSlice(int slice) const {
  assert(slice >= 0 && slice < fNSlices && !fSliceEnds.empty());
  assert(fpAccumulator != nullptr || !fPreciseSums.empty());
  const auto index = static_cast<std::size_t>(slice);
  try {
    if (!fPreciseSums.empty()) {
      TavoPreciseSums& sums = *fPreciseSums[index];
      return WalkSlice(slice,
                       [&](const Pattern& pattern, std::size_t first, std::size_t last, PatternWalk& walk) {
                         return EvaluatePatternPrecisely(pattern, first, last, walk, sums);
                       });
    }
    TavoAccumStats& accumulator = fNSlices == 1 ? *fpAccumulator : *fClones[index];
    return WalkSlice(slice,
                     [&](const Pattern& pattern, std::size_t first, std::size_t last, PatternWalk& walk) {
                       return EvaluatePattern(pattern, first, last, walk, accumulator);
                     });
  } catch (const std::exception&) {  // only memory can run out here
    return OutOfMemory(fpModel->ParameterCount());
  }
}

template <class Take>
OrvStatus TavoPatternTabulator::WalkSlice(int slice, Take&& take) const {
  const auto index = static_cast<std::size_t>(slice);
  RowPlace place = slice == 0 ? RowPlace{} : fSliceEnds[index - 1];
  const RowPlace& end = fSliceEnds[index];
  PatternWalk walk;
  walk.indices.reserve(fParameterOffsets.size());
  walk.values.reserve(fParameterOffsets.size());
  for (; place.pattern <= end.pattern && place.pattern < fPatterns.size(); place = {place.pattern + 1, 0}) {
    if (fCancel.IsCancelled()) break;
    const Pattern& pattern = *fPatterns[place.pattern];
    const std::size_t last = place.pattern == end.pattern ? end.row : RowsOf(pattern);
    if (place.row >= last) continue;
    ParametersOfPattern(pattern, walk);
    const OrvStatus status = take(pattern, place.row, last, walk);
    if (status.IsError()) return status;
  }
  return OrvStatus();
}

OrvStatus TavoPatternTabulator::EvaluatePattern(const Pattern& pattern, std::size_t first, std::size_t last,
                                                PatternWalk& walk, TavoAccumStats& accumulator) const {
  const double* const rows = pattern.payload.RecordData().data() + first * fRowLength;
  const bool isShort = last - first < kShortRun;
  const bool isAdded = isShort ? EvaluateRowByRow(rows, last - first, walk, accumulator)
                               : EvaluateInBlocks(rows, last - first, walk, accumulator);
  return isAdded ? OrvStatus() : OrvStatus::Error(StatusCode::kUserError);
}

// For few rows a block costs more to set up than it saves.
bool TavoPatternTabulator::EvaluateRowByRow(const double* rows, std::size_t count, PatternWalk& walk,
                                            TavoAccumStats& accumulator) const {
  const double* row = rows;
  for (std::size_t i = 0; i < count; ++i, row += fRowLength) {
    fpModel->BuildSparseRow(row, walk.parameters, walk.indices, walk.values);
    const int category = static_cast<int>(row[0]);
    const double weight = row[fRowLength - 1];
    if (accumulator.UpdateForRow(walk.indices, walk.values, category, weight, fbLikelihoodOnly) < 0) {
      return false;
    }
  }
  return true;
}

bool TavoPatternTabulator::EvaluateInBlocks(const double* rows, std::size_t count, PatternWalk& walk,
                                            TavoAccumStats& accumulator) const {
  return ForEachBlock(
      rows, count, *fpModel, BlockColumns::kNonRedundant, walk,
      [&](const TavoRowBlock& block) { return accumulator.UpdateForBlock(block, fbLikelihoodOnly) == 0; });
}

OrvStatus TavoPatternTabulator::EvaluatePatternPrecisely(const Pattern& pattern, std::size_t first,
                                                         std::size_t last, PatternWalk& walk,
                                                         TavoPreciseSums& sums) const {
  const double* const rows = pattern.payload.RecordData().data() + first * fRowLength;
  const bool isAdded = ForEachPreciseBlock(rows, last - first, *fpModel, BlockColumns::kNonRedundant, walk,
                                           [&](OrvPreciseBlock& block) { return sums.Add(block); });
  return isAdded ? OrvStatus() : OrvStatus::Error(StatusCode::kUserError);
}

}  // namespace tavo
