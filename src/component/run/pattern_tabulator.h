// The first two passes over the records, and the evaluation of the likelihood over what the second one
// leaves.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <vector>

#include "component/estimation/estimation_method.h"
#include "component/estimation/precise_block.h"
#include "component/estimation/precise_sums.h"
#include "component/estimation/row_block.h"
#include "component/frame/orv_cancel_info.h"
#include "component/frame/orv_status.h"
#include "component/input/comp_settings.h"
#include "component/input/record_extractor.h"
#include "component/input/record_iterator.h"
#include "component/input/record_validator.h"
#include "component/tabulation/factor_tables.h"
#include "component/tabulation/packed_int.h"
#include "component/tabulation/row_patterns.h"

namespace tavo {

class TavoAccumStats;
class TavoCallBackCompStats;
class TavoModel;

/// Groups records by row pattern: the combination of parameter positions of all effects with factors. The
/// design columns of factors are the same for all rows of a pattern, so an evaluation works them out once per
/// pattern and walks rows of just response, covariates and weight. Rows are cut into equal slices for
/// threads.
///
/// A stored row holds: the local index of the response category (reference last, as the model orders them),
/// the covariates in settings' order, the weight.
class TavoPatternTabulator {
 public:
  /// Nothing is owned. `rowExtractor` keeps dependent, covariates and weight; `dataExtractor` also the
  /// factors.
  TavoPatternTabulator(const TavoCompSettings& settings, const OrvRecordExtractor& rowExtractor,
                       const OrvRecordExtractor& dataExtractor, const OrvCancelInfo& cancel);
  ~TavoPatternTabulator();

  /// First pass. The errors of reading (StatusCode::kNoRecords, kNullRecord, kNullRecordData, kShortRecord,
  /// kInvalidValue, and kUserError for a stream that failed or a category out of range),
  /// StatusCode::kEmptySubpopulation, StatusCode::kCancelled.
  OrvStatus FillFactorTables(MCCommon::RecordIterator& iterator, OrvFactorTables& tables);
  /// Second pass, once; takes the response categories from the model. Cuts the slices at its end. The errors
  /// of reading, and StatusCode::kUserError for a response that the first pass did not meet.
  OrvStatus CreatePatterns(MCCommon::RecordIterator& iterator, OrvFactorTables& tables,
                           const TavoModel& model);
  /// Hands every row to the model's X'WX, after CreatePatterns. StatusCode::kUserError when the model refuses
  /// one, StatusCode::kCancelled.
  OrvStatus ReplayPatterns(TavoModel& model);
  /// The same in twice the precision.
  OrvStatus ReplayPatternsPrecisely(TavoModel& model) const;

  /// Of the weights in the rows.
  double WeightUnit() const { return fRowExtractor.WeightUnit(); }

  /// Cuts the rows into min(rows, count) slices, at least one, and prepares as many workers. One slice
  /// without a thread service, or when it has no threads to give.
  void SetThreads(int count);
  int SliceCount() const { return fNSlices; }
  /// Rows of each slice, for tests: the first rows % slices take one row more.
  std::vector<int> SliceRows() const;

  /// Takes accumulator and model, not owned, for the evaluations to come; makes one clone of the accumulator
  /// per slice when there are several. `Detach` forgets both and deletes the clones.
  void AttachAccumulator(TavoAccumStats& accumulator, const TavoModel& model);
  void Detach();
  /// Resets the accumulator and its clones to empty sums.
  void SetMode(EstimationMethod method, bool separationCheck);
  /// One evaluation over all rows into the attached accumulator, after CreatePatterns. Sums are merged in
  /// slice order, so they are the same in each run with the same number of slices. StatusCode::kUserError
  /// when the accumulator refuses a row, StatusCode::kTooManyParameters when memory ran out,
  /// StatusCode::kCancelled.
  OrvStatus EvaluateRows(bool likelihoodOnly);
  /// Score and information at `estimates`, in twice the precision, with the model that is attached; see
  /// TavoEvaluator.
  OrvStatus EvaluatePrecisely(const MCCommonMath::PreciseColumn& estimates,
                              MCCommonMath::PreciseColumn& scores,
                              MCCommonMath::PreciseSymMatrix& information);
  /// The part of one slice; called by the workers. Doesn't throw.
  OrvStatus EvaluateSlice(int slice) const;

  int PatternCount() const { return fPatternTable.Size(); }
  int RowCount() const { return static_cast<int>(fNRows); }
  int RowLength() const { return static_cast<int>(fRowLength); }
  /// The rows of a vector of positions (one per effect with factors), or null.
  const TavoRowPatterns* RowsOfPattern(const std::vector<int>& positions) const;

 private:
  using PatternTable = OrvKeyTable<TavoRowPatterns>;
  using Pattern = PatternTable::Node;
  /// Below this many rows a block costs more to set up than it saves.
  static constexpr std::size_t kShortRun = 16;
  /// A place between two rows.
  struct RowPlace {
    std::size_t pattern = 0;
    std::size_t row = 0;  // rows of that pattern that lie before the place
  };
  /// Work vectors of a walk over patterns; one set per walk, reused for all patterns and rows.
  struct PatternWalk {
    std::vector<int> positions;
    std::vector<int> parameters;  // by model effect
    std::vector<int> indices;     // of the sparse design row
    std::vector<double> values;
    TavoRowBlock block;
    OrvPreciseBlock precise;
  };

  bool ReplayPattern(const Pattern& pattern, TavoModel& model, PatternWalk& walk) const;
  /// Hands rows of the walk's pattern to `take`, a block at a time, until it answers false: then false. Ends
  /// early on a cancel.
  bool ForEachBlock(const double* rows, std::size_t count, const TavoModel& model, BlockColumns columns,
                    PatternWalk& walk, const std::function<bool(const TavoRowBlock&)>& take) const;
  bool TakeLayout(OrvFactorTables& tables, const TavoModel& model);
  OrvStatus ExtractRecord(const double* record, OrvFactorTables& tables);
  bool IsInSubpopulation(const double* record) const;
  Pattern& PatternAt(const std::vector<int>& positions);
  Pattern& EnterPattern();
  std::size_t RowsOf(const Pattern& pattern) const;
  void ParametersOfPattern(const Pattern& pattern, PatternWalk& walk) const;
  RowPlace PlaceOfRow(std::size_t row) const;
  bool PrepareWorkers();
  void RunWorkers();
  /// Evaluates all slices and calls merge(slice) for each, in their order; not for a single one.
  template <class Merge>
  OrvStatus EvaluateSlices(Merge&& merge);
  /// Hands the rows of a slice to `take`, pattern by pattern (pattern, first row, row behind the last, walk),
  /// until it answers an error.
  template <class Take>
  OrvStatus WalkSlice(int slice, Take&& take) const;
  OrvStatus EvaluatePattern(const Pattern& pattern, std::size_t first, std::size_t last, PatternWalk& walk,
                            TavoAccumStats& accumulator) const;
  OrvStatus EvaluatePatternPrecisely(const Pattern& pattern, std::size_t first, std::size_t last,
                                     PatternWalk& walk, TavoPreciseSums& sums) const;
  bool ForEachPreciseBlock(const double* rows, std::size_t count, const TavoModel& model,
                           BlockColumns columns, PatternWalk& walk,
                           const std::function<bool(OrvPreciseBlock&)>& take) const;
  /// False for a refused row. The two differ in speed only.
  bool EvaluateRowByRow(const double* rows, std::size_t count, PatternWalk& walk,
                        TavoAccumStats& accumulator) const;
  bool EvaluateInBlocks(const double* rows, std::size_t count, PatternWalk& walk,
                        TavoAccumStats& accumulator) const;

  const TavoCompSettings& fSettings;
  const OrvRecordExtractor& fRowExtractor;
  const OrvRecordExtractor& fDataExtractor;
  const OrvCancelInfo& fCancel;
  OrvRecordValidator fValidator;
  std::size_t fRowLength;
  OrvPackedInt fPacker;
  std::vector<int> fFactorEffects;     // model effect numbers of the effects with factors
  std::vector<int> fParameterOffsets;  // by model effect
  std::vector<int> fLocalDependent;    // by category code - 1
  PatternTable fPatternTable;
  std::vector<Pattern*> fPatterns;        // in order of first appearance
  std::vector<Pattern*> fDirectPatterns;  // by packed key, when that is one small number
  OrvKey fKey;                            // working key
  Pattern* fpLastPattern = nullptr;       // of the previous record
  std::vector<int> fPositions;            // working positions
  std::vector<int> fUnits;                // working packed units
  std::vector<double> fDataRow;           // working extracted row
  std::size_t fNRows = 0;
  bool fbPatternsCreated = false;
  int fNSlices = 1;
  std::vector<RowPlace> fSliceEnds;
  TavoAccumStats* fpAccumulator = nullptr;
  const TavoModel* fpModel = nullptr;
  std::vector<std::unique_ptr<TavoAccumStats>> fClones;
  bool fbLikelihoodOnly = false;
  std::vector<std::unique_ptr<TavoPreciseSums>>
      fPreciseSums;  // by slice, during an evaluation in twice the precision
  // The pool comes last, so that it is destroyed first: no task of it outlives what the task refers to.
  std::vector<OrvStatus> fSliceStatuses;
  std::unique_ptr<host::TaskCompletion> fpCompletion;
  std::vector<std::unique_ptr<TavoCallBackCompStats>> fCallBacks;
  std::unique_ptr<host::TaskThreadPool> fpPool;
};

}  // namespace tavo
