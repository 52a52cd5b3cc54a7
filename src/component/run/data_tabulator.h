// The third pass: the sample sorted into design units, and each unit's score handed to the design tree.
//
// An example with the key (stratum, cluster) and the units (1, 1), (1, 2), (2, 1): between the first two one
// value is shared, so a cluster has ended; between the last two none is, so the stratum has ended with it;
// after the last one everything ends.
#pragma once

#include <cstddef>
#include <vector>

#include "component/design/joint_incl_probs.h"
#include "component/frame/orv_cancel_info.h"
#include "component/frame/orv_status.h"
#include "component/input/comp_settings.h"
#include "component/input/record_extractor.h"
#include "component/input/record_iterator.h"
#include "component/input/record_validator.h"
#include "component/tabulation/orv_key.h"

namespace tavo {

class SampleDesign;
class TavoModel;

/// What the records of one design key hold.
struct OrvRClusterData {
  std::vector<double> recordData;   // rows end to end
  std::vector<double> constValues;  // by constant design variable; missing until one is met
  int subpopComplement = 0;         // records outside the subpopulation
};

/// A design value that wasn't constant, was missing, or a population below its sample: where it was first
/// met.
struct DesignFinding {
  bool reported = false;
  OrvKey key;
};

/// Groups records by the strata and cluster codes of all stages, sorts the groups, and walks them in order:
/// the length of the key prefix that two neighbours share tells which levels of the design end between them.
class TavoDataTabulator {
 public:
  /// Nothing is owned.
  TavoDataTabulator(const TavoCompSettings& settings, const OrvRecordExtractor& extractor,
                    const OrvCancelInfo& cancel);

  /// The pass itself, once. kUserError for a second call, otherwise the errors of ForEachValidRecord; warning
  /// kInconsistentDesignValue.
  OrvStatus TabulateDesign(MCCommon::RecordIterator& iterator);
  /// The feeds answer kUserError before TabulateDesign, kMissingInclusionProb and kPopulationBelowSample for
  /// a fault of the design, kCancelled; warning kInconsistentDesignValue. `joint` (not owned, null for a
  /// design that needs none) gives the joint inclusion probabilities: kJointFileUnreadable when it has no
  /// valid stratum of a key, kUserError when its stratum doesn't fit together, kClusterNotInJointFile when
  /// the stratum lacks a unit of the sample, and once the warning kJointFileHasMoreUnits when the sample
  /// lacks a unit of a stratum.
  ///
  /// For designs whose last stage has clusters: one unit per key, the sum of its rows' scores.
  OrvStatus FeedDesignByUnit(TavoModel& model, SampleDesign& design, MCOrv::JointInclProbs* joint = nullptr);
  /// For designs in which each record is a unit; records outside the subpopulation are units with zero
  /// scores.
  OrvStatus FeedDesignByRecord(TavoModel& model, SampleDesign& design,
                               MCOrv::JointInclProbs* joint = nullptr);

  /// By constant design variable.
  const std::vector<DesignFinding>& ConstFindings() const { return fConstFindings; }
  /// Keys at which a population was below its sample.
  const std::vector<OrvKey>& PopulationKeys() const { return fPopulationKeys; }
  /// Warnings in order of arrival.
  const std::vector<OrvStatus>& StatusList() const { return fStatusList; }
  int UnitCount() const { return fTable.Size(); }

 private:
  using DataTable = OrvKeyTable<OrvRClusterData>;
  using Unit = DataTable::Node;

  OrvStatus ProcessCase(const double* record);
  void FillKey(const double* record);
  Unit& UnitOfKey(bool& isNew);
  int EnterConstants(const double* record, OrvRClusterData& data) const;
  int CompareConstants(const double* record, OrvRClusterData& data) const;
  OrvStatus ReportInconsistent(int index, const OrvKey& key);
  void NoteFinding(int index, const OrvKey& key);
  /// Walks the units in key order: `addUnit` hands one over, then its values are checked and the levels that
  /// end with it are closed.
  template <class AddUnit>
  OrvStatus FeedDesign(SampleDesign& design, MCOrv::JointInclProbs* joint, AddUnit&& addUnit);
  OrvStatus SelectJointUnit(MCOrv::JointInclProbs& joint, SampleDesign& design, const OrvKey& key);
  OrvStatus NoteKeyChange(int prefix);
  OrvStatus CheckStageValues(SampleDesign& design, const Unit& unit);
  OrvStatus CloseDesignLevels(SampleDesign& design, int prefix, const Unit& unit);
  int PrefixAfter(std::size_t position) const;

  const TavoCompSettings& fSettings;
  const OrvRecordExtractor& fExtractor;
  const OrvCancelInfo& fCancel;
  OrvRecordValidator fValidator;
  std::size_t fRowLength;
  DataTable fTable;
  std::vector<Unit*> fTablePairs;  // by appearance, later sorted by key
  Unit* fpLastUnit = nullptr;      // of the previous record
  OrvKey fKey;                     // working key
  bool fbSourceProcessed = false;
  std::vector<DesignFinding> fConstFindings;
  std::vector<OrvKey> fPopulationKeys;
  std::vector<OrvStatus> fStatusList;

  // Joint inclusion probabilities: the current stratum of the first stage, and where the walk stands in it.
  int fNStrataVars = 0;  // of the first stage
  int fNClusterVars = 0;
  MCOrv::JointInclProbs::Units fJointUnits;
  std::size_t fNUnitsMet = 0;  // units of the stratum that the sample has
  bool fbNewStratum = true;
  bool fbNewCluster = true;
  bool fbJProbStatus = false;  // kJointFileHasMoreUnits was reported
};

}  // namespace tavo
