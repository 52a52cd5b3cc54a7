// The passes that fill the tables and the patterns.
#include "component/run/pattern_tabulator.h"

#include <algorithm>
#include <cassert>

#include "component/estimation/accum_stats.h"
#include "component/estimation/model.h"
#include "component/run/call_back_comp_stats.h"
#include "component/run/record_pass.h"

namespace tavo {

namespace {

// Packed keys up to this one are looked up without hashing.
constexpr std::int64_t kLargestDirectKey = 65536;

/// Codes of a valid record are whole.
int CodeOf(double cell) {
  return static_cast<int>(cell);
}

}  // namespace

TavoPatternTabulator::TavoPatternTabulator(const TavoCompSettings& settings,
                                           const OrvRecordExtractor& rowExtractor,
                                           const OrvRecordExtractor& dataExtractor,
                                           const OrvCancelInfo& cancel)
    : fSettings(settings),
      fRowExtractor(rowExtractor),
      fDataExtractor(dataExtractor),
      fCancel(cancel),
      fValidator(settings),
      fRowLength(static_cast<std::size_t>(rowExtractor.Size())),
      fDataRow(static_cast<std::size_t>(dataExtractor.Size())) {}

TavoPatternTabulator::~TavoPatternTabulator() = default;

bool TavoPatternTabulator::IsInSubpopulation(const double* record) const {
  return fSettings.SubpopVar() < 0 || CodeOf(record[fSettings.SubpopVar()]) == fSettings.SubpopValue();
}

// ---- first pass ----

OrvStatus TavoPatternTabulator::FillFactorTables(MCCommon::RecordIterator& iterator,
                                                 OrvFactorTables& tables) {
  OrvStatus status;
  ForEachValidRecord(iterator, fValidator, fCancel, status, [&](const double* record) {
    if (!IsInSubpopulation(record)) {
      tables.AddComplement(record[fSettings.WeightVar()]);
      return OrvStatus();
    }
    return tables.Update(record) ? OrvStatus() : OrvStatus::Error(StatusCode::kUserError);
  });
  if (!status.IsError() && !(tables.TotalWeight() > 0))
    status = OrvStatus::Error(StatusCode::kEmptySubpopulation);
  return status;
}

// ---- second pass ----

OrvStatus TavoPatternTabulator::CreatePatterns(MCCommon::RecordIterator& iterator, OrvFactorTables& tables,
                                               const TavoModel& model) {
  assert(!fbPatternsCreated);
  if (!TakeLayout(tables, model)) return OrvStatus::Error(StatusCode::kUserError);
  OrvStatus status;
  ForEachValidRecord(iterator, fValidator, fCancel, status,
                     [&](const double* record) { return ExtractRecord(record, tables); });
  if (status.IsError()) return status;
  fbPatternsCreated = true;
  SetThreads(fSettings.Threads());
  return status;
}

bool TavoPatternTabulator::TakeLayout(OrvFactorTables& tables, const TavoModel& model) {
  fLocalDependent = model.LocalCategoryIndices();
  fFactorEffects = tables.FactorEffects();
  fParameterOffsets = tables.ParameterOffsets();
  fPositions.assign(fFactorEffects.size(), 0);

  std::vector<int> bounds;
  std::int64_t keys = 1;
  for (const int effect : fFactorEffects) {
    bounds.push_back(std::max(tables.ParameterCount(effect), 1));
    keys = std::min(keys * bounds.back(), kLargestDirectKey + 1);
  }
  // Without factors there is nothing to pack: the empty key is the only one.
  if (!bounds.empty() && !fPacker.SetBounds(static_cast<int>(bounds.size()), 0, bounds)) return false;
  fUnits.assign(static_cast<std::size_t>(fPacker.UnitCount()), 0);
  fKey = OrvKey(fPacker.UnitCount());
  if (keys <= kLargestDirectKey) fDirectPatterns.assign(static_cast<std::size_t>(keys), nullptr);
  return true;
}

// The pattern is entered before the subpopulation is asked for: which patterns there are doesn't depend on
// it.
OrvStatus TavoPatternTabulator::ExtractRecord(const double* record, OrvFactorTables& tables) {
  fDataExtractor.Extract(record, fDataRow.data());
  // A record outside the subpopulation may have a level combination that the subpopulation doesn't have.
  if (!tables.LocalParameterIndices(fDataRow.data(), fPositions)) return OrvStatus();
  Pattern& pattern = PatternAt(fPositions);
  if (!IsInSubpopulation(record)) return OrvStatus();

  const auto code = static_cast<std::size_t>(CodeOf(record[fSettings.Dependent()]) - 1);
  const int category = code < fLocalDependent.size() ? fLocalDependent[code] : -1;
  if (category < 0) return OrvStatus::Error(StatusCode::kUserError);
  std::vector<double>& rows = pattern.payload.RecordData();
  const std::size_t start = rows.size();
  rows.resize(start + fRowLength);
  fRowExtractor.Extract(record, rows.data() + start);
  rows[start] = category;
  ++fNRows;
  return OrvStatus();
}

// Looked up for every record, in the order of cost: a direct table where the keys are few, the pattern of the
// record before, a hash table.
TavoPatternTabulator::Pattern& TavoPatternTabulator::PatternAt(const std::vector<int>& positions) {
  fPacker.Pack(positions, fUnits, false);
  if (!fDirectPatterns.empty()) {
    Pattern*& pattern = fDirectPatterns[fUnits.empty() ? 0 : static_cast<std::size_t>(fUnits[0])];
    if (pattern == nullptr) pattern = &EnterPattern();
    return *pattern;
  }
  // Neighbours in a file are often alike.
  if (fpLastPattern == nullptr || fpLastPattern->key.Values() != fUnits) fpLastPattern = &EnterPattern();
  return *fpLastPattern;
}

// The pattern of the working units, found or new.
TavoPatternTabulator::Pattern& TavoPatternTabulator::EnterPattern() {
  for (std::size_t u = 0; u < fUnits.size(); ++u)
    fKey[static_cast<int>(u)] = fUnits[u];
  fKey.ComputeHash();
  if (Pattern* const found = fPatternTable.Find(fKey)) return *found;
  Pattern* const entered = fPatternTable.Insert(fKey);
  fPatterns.push_back(entered);
  return *entered;
}

const TavoRowPatterns* TavoPatternTabulator::RowsOfPattern(const std::vector<int>& positions) const {
  OrvKey key;
  if (fPacker.Size() > 0) {
    std::vector<int> units;
    if (!fPacker.Pack(positions, units, true)) return nullptr;
    key = OrvKey(std::vector<std::int32_t>(units.begin(), units.end()));
  }
  const Pattern* const found = fPatternTable.Find(key);
  return found == nullptr ? nullptr : &found->payload;
}

std::size_t TavoPatternTabulator::RowsOf(const Pattern& pattern) const {
  return pattern.payload.RecordData().size() / fRowLength;
}

// ---- walking the patterns ----

// Effects without factors have one parameter each; the key holds the positions of the others.
void TavoPatternTabulator::ParametersOfPattern(const Pattern& pattern, PatternWalk& walk) const {
  walk.parameters = fParameterOffsets;
  if (fPacker.Size() == 0) return;
  fPacker.Unpack(walk.positions, pattern.key.Values());
  for (std::size_t e = 0; e < fFactorEffects.size(); ++e) {
    walk.parameters[static_cast<std::size_t>(fFactorEffects[e])] += walk.positions[e];
  }
}

OrvStatus TavoPatternTabulator::ReplayPatterns(TavoModel& model) {
  assert(fbPatternsCreated);
  PatternWalk walk;
  for (const Pattern* pattern : fPatterns) {
    if (fCancel.IsCancelled()) break;
    if (ReplayPattern(*pattern, model, walk)) continue;
    return OrvStatus::Error(fCancel.IsCancelled() ? StatusCode::kCancelled : StatusCode::kUserError);
  }
  return fCancel.IsCancelled() ? OrvStatus::Error(StatusCode::kCancelled) : OrvStatus();
}

bool TavoPatternTabulator::ReplayPattern(const Pattern& pattern, TavoModel& model, PatternWalk& walk) const {
  const std::size_t count = RowsOf(pattern);
  const double* const rows = pattern.payload.RecordData().data();
  ParametersOfPattern(pattern, walk);
  if (count >= kShortRun) {
    return ForEachBlock(rows, count, model, BlockColumns::kAll, walk,
                        [&model](const TavoRowBlock& block) { return model.AddBlockToXPrimeX(block); });
  }
  bool isAdded = true;
  for (std::size_t i = 0; i < count && isAdded; ++i)
    isAdded = model.AddPatternToXPrimeX(rows + i * fRowLength, walk.parameters);
  return isAdded;
}

// Blocks start anew with each pattern: the rows of two patterns don't have the same columns.
bool TavoPatternTabulator::ForEachBlock(const double* rows, std::size_t count, const TavoModel& model,
                                        BlockColumns columns, PatternWalk& walk,
                                        const std::function<bool(const TavoRowBlock&)>& take) const {
  model.StartBlock(walk.parameters, columns, walk.block);
  for (std::size_t done = 0; done < count && !fCancel.IsCancelled(); done += TavoRowBlock::kMaxRows) {
    const std::size_t share = std::min(count - done, TavoRowBlock::kMaxRows);
    model.FillBlock(rows + done * fRowLength, fRowLength, share, walk.block);
    if (!take(walk.block)) return false;
  }
  return true;
}

bool TavoPatternTabulator::ForEachPreciseBlock(const double* rows, std::size_t count, const TavoModel& model,
                                               BlockColumns columns, PatternWalk& walk,
                                               const std::function<bool(OrvPreciseBlock&)>& take) const {
  const double* row = rows;
  return ForEachBlock(rows, count, model, columns, walk, [&](const TavoRowBlock& block) {
    walk.precise.Start(block);
    model.FillPreciseBlock(row, fRowLength, walk.precise);
    row += block.RowCount() * fRowLength;
    return take(walk.precise);
  });
}

OrvStatus TavoPatternTabulator::ReplayPatternsPrecisely(TavoModel& model) const {
  PatternWalk walk;
  for (const Pattern* pattern : fPatterns) {
    if (fCancel.IsCancelled()) break;
    ParametersOfPattern(*pattern, walk);
    const bool isAdded = ForEachPreciseBlock(pattern->payload.RecordData().data(), RowsOf(*pattern), model,
                                             BlockColumns::kAll, walk, [&model](OrvPreciseBlock& block) {
                                               model.AddPreciseBlockToXPrimeX(block);
                                               return true;
                                             });
    if (!isAdded) return OrvStatus::Error(StatusCode::kUserError);
  }
  return fCancel.IsCancelled() ? OrvStatus::Error(StatusCode::kCancelled) : OrvStatus();
}

}  // namespace tavo
