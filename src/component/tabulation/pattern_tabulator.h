// The first two passes over the records, and the evaluation of the likelihood over what the second one leaves.
#pragma once

#include <memory>
#include <vector>

#include "frame/orv_cancel_info.h"
#include "frame/orv_status.h"
#include "input/comp_settings.h"
#include "input/record_extractor.h"
#include "input/record_iterator.h"
#include "input/record_validator.h"
#include "tabulation/factor_tables.h"
#include "tabulation/packed_int.h"
#include "tabulation/row_patterns.h"

namespace tavo {

class TavoAccumStats;
class TavoCallBackCompStats;
class TavoModel;

/// Groups records by row pattern: the combination of parameter positions of all effects with factors. The design
/// columns of factors are the same for all rows of a pattern, so an evaluation works them out once per pattern and
/// walks rows of just response, covariates and weight. Rows are cut into equal slices for threads.
///
/// A stored row holds: the local index of the response category (reference last, as the model orders them), the
/// covariates in settings' order, the weight.
class TavoPatternTabulator {
 public:
  /// Everything is lent. `rowExtractor` keeps dependent, covariates and weight; `dataExtractor` also the factors.
  TavoPatternTabulator(const TavoCompSettings& settings, const OrvRecordExtractor& rowExtractor,
                       const OrvRecordExtractor& dataExtractor, const OrvCancelInfo& cancel);
  ~TavoPatternTabulator();

  /// First pass. 91001 to 91006, 95007, 1.
  OrvStatus FillFactorTables(MCCommon::RecordIterator& iterator, OrvFactorTables& tables);
  /// Second pass; takes the response categories from the model. Cuts the slices at its end.
  OrvStatus CreatePatterns(MCCommon::RecordIterator& iterator, OrvFactorTables& tables, const TavoModel& model);
  /// Hands every row to the model's AddPatternToXPrimeX.
  OrvStatus ReplayPatterns(TavoModel& model);

  /// Cuts the rows into min(rows, count) slices, at least one, and prepares as many workers.
  void SetThreads(int count);
  int SliceCount() const { return fNSlices; }
  /// Rows of each slice, for tests: the first rows % slices take one row more.
  std::vector<int> SliceRows() const;

  /// Lends the accumulator and the model for the evaluations to come; makes one clone of the accumulator per slice when
  /// there are several. `Detach` forgets both and deletes the clones.
  void AttachAccumulator(TavoAccumStats& accumulator, const TavoModel& model);
  void Detach();
  /// Resets the accumulator and its clones to empty sums.
  void SetMode(int method, bool separationCheck);
  /// One evaluation over all rows into the attached accumulator. Sums are merged in slice order, so they are the same
  /// in each run with the same number of slices.
  OrvStatus EvaluateRows(bool likelihoodOnly);
  /// The part of one slice; called by the workers.
  OrvStatus EvaluateSlice(int slice) const;

  int PatternCount() const { return static_cast<int>(fPatternTable.Nodes().size()); }
  int RowCount() const { return fNRows; }
  int RowLength() const { return fRowLength; }
  /// The rows of a vector of positions (one per effect with factors), or null.
  const TavoRowPatterns* RowsOfPattern(const std::vector<int>& positions) const;

 private:
  using PatternTable = OrvKeyTable<TavoRowPatterns>;
  struct SliceEnd {
    int pattern = 0;  // index of the slice's last pattern
    int row = 0;      // rows of that pattern that lie before the slice's end
  };

  OrvStatus ForEachValidRecord(MCCommon::RecordIterator& iterator, auto&& visit);
  OrvStatus ExtractRecord(const double* record, OrvFactorTables& tables);
  bool IsInSubpopulation(const double* record) const;
  void ParametersOfPattern(const OrvKey& key, std::vector<int>& units, std::vector<int>& positions,
                           std::vector<int>& parameters) const;

  const TavoCompSettings& fSettings;
  const OrvRecordExtractor& fRowExtractor;
  const OrvRecordExtractor& fDataExtractor;
  const OrvCancelInfo& fCancel;
  OrvRecordValidator fValidator;
  int fRowLength;
  OrvPackedInt fPacker;
  std::vector<int> fFactorEffects;      // model effect numbers of the effects with factors
  std::vector<int> fParameterOffsets;   // by model effect
  std::vector<int> fLocalDependent;     // by category code - 1
  PatternTable fPatternTable;
  OrvKey fKey;                          // working key
  std::vector<int> fPositions;          // working positions
  std::vector<int> fUnits;              // working packed units
  std::vector<double> fDataRow;         // working extracted row
  int fNRows = 0;
  int fNValid = 0;
  bool fbPatternsCreated = false;
  int fNSlices = 1;
  std::vector<SliceEnd> fSliceEnds;
  TavoAccumStats* fpAccumulator = nullptr;
  const TavoModel* fpModel = nullptr;
  std::vector<std::unique_ptr<TavoAccumStats>> fClones;
  bool fbLikelihoodOnly = false;
  std::unique_ptr<host::TaskCompletion> fpCompletion;
  std::unique_ptr<host::TaskThreadPool> fpPool;
  std::vector<std::unique_ptr<TavoCallBackCompStats>> fCallBacks;
  std::vector<OrvStatus> fSliceStatuses;
};

}  // namespace tavo
