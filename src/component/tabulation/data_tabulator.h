// The third pass: the sample sorted into design units, and each unit's score handed to the design tree.
#pragma once

#include <vector>

#include "frame/orv_cancel_info.h"
#include "frame/orv_status.h"
#include "input/comp_settings.h"
#include "input/record_extractor.h"
#include "input/record_iterator.h"
#include "input/record_validator.h"
#include "tabulation/orv_key.h"

namespace tavo {

class SampleDesign;
class TavoModel;

/// What the records of one design key hold.
struct OrvRClusterData {
  std::vector<double> recordData;    // rows end to end
  std::vector<double> constValues;   // by constant design variable; missing until one is met
  int subpopComplement = 0;          // records outside the subpopulation
};

/// A design value that wasn't constant, was missing, or a population below its sample: where it was first met.
struct DesignFinding {
  bool reported = false;
  OrvKey key;
};

/// Groups records by the strata and cluster codes of all stages, sorts the groups, and walks them in order: the length
/// of the key prefix that two neighbours share tells which levels of the design end between them.
class TavoDataTabulator {
 public:
  /// Everything is lent.
  TavoDataTabulator(const TavoCompSettings& settings, const OrvRecordExtractor& extractor,
                    const OrvCancelInfo& cancel);

  OrvStatus TabulateDesign(MCCommon::RecordIterator& iterator);
  /// For designs whose last stage has clusters: one unit per key, the sum of its rows' scores.
  OrvStatus FeedDesignByUnit(TavoModel& model, SampleDesign& design);
  /// For designs in which each record is a unit; records outside the subpopulation are units with zero scores.
  OrvStatus FeedDesignByRecord(TavoModel& model, SampleDesign& design);

  /// By constant design variable.
  const std::vector<DesignFinding>& ConstFindings() const { return fConstFindings; }
  /// Keys at which a population was below its sample.
  const std::vector<OrvKey>& PopulationKeys() const { return fPopulationKeys; }
  /// Warnings in order of arrival.
  const std::vector<OrvStatus>& StatusList() const { return fStatusList; }
  int UnitCount() const { return fTable.Size(); }

 private:
  using DataTable = OrvKeyTable<OrvRClusterData>;

  OrvStatus ProcessCase(const double* record);
  int EnterConstants(const double* record, OrvRClusterData& data) const;
  int CompareConstants(const double* record, OrvRClusterData& data) const;
  void ReportInconsistent(int index, const OrvKey& key);
  OrvStatus CheckStageValues(SampleDesign& design, const DataTable::Node& node);
  OrvStatus CloseDesignLevels(SampleDesign& design, int prefix, const DataTable::Node& node);
  int PrefixAfter(std::size_t node) const;

  const TavoCompSettings& fSettings;
  const OrvRecordExtractor& fExtractor;
  const OrvCancelInfo& fCancel;
  OrvRecordValidator fValidator;
  DataTable fTable;
  std::vector<DataTable::Node*> fTablePairs;  // by appearance, later sorted by key
  OrvKey fKey;                                // working key
  int fNValid = 0;
  bool fbSourceProcessed = false;
  std::vector<DesignFinding> fConstFindings;
  std::vector<OrvKey> fPopulationKeys;
  std::vector<OrvStatus> fStatusList;
};

}  // namespace tavo
