#include "component/run/data_tabulator.h"

#include <algorithm>
#include <cassert>
#include <cstdint>
#include <utility>

#include "component/design/sample_design.h"
#include "component/estimation/model.h"
#include "component/estimation/unit_scores.h"
#include "component/numerics/missing_value.h"
#include "component/run/record_pass.h"

namespace tavo {

using MCCommonMath::IsMissing;
using MCCommonMath::MCMV;

namespace {

/// Codes of a valid record are whole.
std::int32_t CodeOf(double cell) {
  return static_cast<std::int32_t>(cell);
}

}  // namespace

TavoDataTabulator::TavoDataTabulator(const TavoCompSettings& settings, const OrvRecordExtractor& extractor,
                                     const OrvCancelInfo& cancel)
    : fSettings(settings),
      fExtractor(extractor),
      fCancel(cancel),
      fValidator(settings),
      fRowLength(static_cast<std::size_t>(extractor.Size())),
      fKey(static_cast<int>(settings.CatDesignVars().size())),
      fConstFindings(settings.ContDesignVars().size()) {
  if (settings.Stages().empty()) return;
  fNStrataVars = static_cast<int>(settings.Stages().front().strata.size());
  fNClusterVars = static_cast<int>(settings.Stages().front().clusters.size());
}

// ---- the pass ----

OrvStatus TavoDataTabulator::TabulateDesign(MCCommon::RecordIterator& iterator) {
  if (fbSourceProcessed) return OrvStatus::Error(StatusCode::kUserError);
  OrvStatus status;
  ForEachValidRecord(iterator, fValidator, fCancel, status,
                     [this](const double* record) { return ProcessCase(record); });
  if (status.IsError()) return status;
  fbSourceProcessed = true;
  std::sort(fTablePairs.begin(), fTablePairs.end(),
            [](const Unit* a, const Unit* b) { return a->key < b->key; });
  return status;
}

OrvStatus TavoDataTabulator::ProcessCase(const double* record) {
  FillKey(record);
  bool isNew = false;
  Unit& unit = UnitOfKey(isNew);
  OrvRClusterData& data = unit.payload;
  OrvStatus status;
  if (!fConstFindings.empty()) {
    const int found = isNew ? EnterConstants(record, data) : CompareConstants(record, data);
    if (found >= 0) status = ReportInconsistent(found, unit.key);
  }
  // Records outside the subpopulation stay in the design, as the spread of the units' zeros is part of the
  // variance of a subpopulation (Cochran 1977, ch. 2): dropping them would make its size look fixed.
  const int subpop = fSettings.SubpopVar();
  if (subpop >= 0 && CodeOf(record[subpop]) != fSettings.SubpopValue()) {
    ++data.subpopComplement;
    return status;
  }
  const std::size_t start = data.recordData.size();
  data.recordData.resize(start + fRowLength);
  fExtractor.Extract(record, data.recordData.data() + start);
  return status;
}

void TavoDataTabulator::FillKey(const double* record) {
  const std::vector<int>& columns = fSettings.CatDesignVars();
  for (std::size_t i = 0; i < columns.size(); ++i)
    fKey[static_cast<int>(i)] = CodeOf(record[columns[i]]);
}

// Survey files are often sorted by design, so the previous record's unit is tried before the table.
TavoDataTabulator::Unit& TavoDataTabulator::UnitOfKey(bool& isNew) {
  if (fpLastUnit != nullptr && fpLastUnit->key.HasSameValues(fKey)) return *fpLastUnit;
  fKey.ComputeHash();
  fpLastUnit = fTable.Find(fKey);
  isNew = fpLastUnit == nullptr;
  if (isNew) {
    fpLastUnit = fTable.Insert(fKey);
    fTablePairs.push_back(fpLastUnit);
  }
  return *fpLastUnit;
}

// ---- values that must be constant within a unit ----

// Answers the last variable without a value, or -1.
int TavoDataTabulator::EnterConstants(const double* record, OrvRClusterData& data) const {
  int found = -1;
  for (const int column : fSettings.ContDesignVars()) {
    if (IsMissing(record[column])) found = static_cast<int>(data.constValues.size());
    data.constValues.push_back(record[column]);
  }
  return found;
}

// Answers a variable that had no value so far, or the first one that has another value, or -1.
int TavoDataTabulator::CompareConstants(const double* record, OrvRClusterData& data) const {
  const std::vector<int>& columns = fSettings.ContDesignVars();
  int found = -1;
  for (std::size_t c = 0; c < columns.size(); ++c) {
    double& stored = data.constValues[c];
    const double value = record[columns[c]];
    if (IsMissing(stored)) {
      stored = value;
      found = static_cast<int>(c);
    } else if (found < 0 && DesignValuesDiffer(stored, value)) {
      found = static_cast<int>(c);
    }
  }
  return found;
}

void TavoDataTabulator::NoteFinding(int index, const OrvKey& key) {
  assert(index >= 0 && static_cast<std::size_t>(index) < fConstFindings.size());
  fConstFindings[static_cast<std::size_t>(index)] = {true, key};
}

// Once for each variable: a whole file may be inconsistent.
OrvStatus TavoDataTabulator::ReportInconsistent(int index, const OrvKey& key) {
  if (fConstFindings[static_cast<std::size_t>(index)].reported) return OrvStatus();
  NoteFinding(index, key);
  fStatusList.push_back(OrvStatus::Warning(StatusCode::kInconsistentDesignValue).SetInteger(1, index));
  return fStatusList.back();
}

// ---- feeding the design ----

int TavoDataTabulator::PrefixAfter(std::size_t position) const {
  if (position + 1 == fTablePairs.size()) return -1;
  return SharedPrefix(fTablePairs[position]->key, fTablePairs[position + 1]->key);
}

template <class AddUnit>
OrvStatus TavoDataTabulator::FeedDesign(SampleDesign& design, MCOrv::JointInclProbs* joint,
                                        AddUnit&& addUnit) {
  if (!fbSourceProcessed) return OrvStatus::Error(StatusCode::kUserError);
  OrvStatus status;  // the first error, until then the last warning
  const auto take = [&status](const OrvStatus& answer) {
    if (!status.IsError() && !answer.IsOK()) status = answer;
  };
  for (std::size_t i = 0; i < fTablePairs.size() && !status.IsError() && !fCancel.IsCancelled(); ++i) {
    const Unit& unit = *fTablePairs[i];
    const int prefix = PrefixAfter(i);
    if (joint != nullptr) take(SelectJointUnit(*joint, design, unit.key));
    if (status.IsError()) break;
    addUnit(unit.payload);
    take(CheckStageValues(design, unit));
    take(CloseDesignLevels(design, prefix, unit));
    if (joint != nullptr && !status.IsError()) take(NoteKeyChange(prefix));
  }
  return !status.IsError() && fCancel.IsCancelled() ? OrvStatus::Error(StatusCode::kCancelled) : status;
}

OrvStatus TavoDataTabulator::FeedDesignByUnit(TavoModel& model, SampleDesign& design,
                                              MCOrv::JointInclProbs* joint) {
  OrvUnitScores scores(model);
  return FeedDesign(design, joint, [&](const OrvRClusterData& data) {
    scores.StartUnit();
    const double* const end = data.recordData.data() + data.recordData.size();
    for (const double* row = data.recordData.data(); row != end; row += fRowLength)
      scores.Add(row);
    design.AddUnit(scores.Totals());
  });
}

OrvStatus TavoDataTabulator::FeedDesignByRecord(TavoModel& model, SampleDesign& design,
                                                MCOrv::JointInclProbs* joint) {
  OrvUnitScores scores(model);
  return FeedDesign(design, joint, [&](const OrvRClusterData& data) {
    const double* const end = data.recordData.data() + data.recordData.size();
    for (const double* row = data.recordData.data(); row != end && !fCancel.IsCancelled();
         row += fRowLength) {
      scores.StartUnit();
      scores.Add(row);
      design.AddUnit(scores.Totals());
    }
    scores.StartUnit();
    for (int i = 0; i < data.subpopComplement && !fCancel.IsCancelled(); ++i)
      design.AddUnit(scores.Totals());
  });
}

// ---- joint inclusion probabilities ----

// Tells the design which stratum and unit of the first stage the key belongs to, when either is a new one.
OrvStatus TavoDataTabulator::SelectJointUnit(MCOrv::JointInclProbs& joint, SampleDesign& design,
                                             const OrvKey& key) {
  const auto strataEnd = key.Values().begin() + fNStrataVars;
  if (fbNewStratum) {
    fbNewStratum = false;
    fNUnitsMet = 0;
    std::vector<double> matrix;
    const bool isRead = joint.ReadStratum({key.Values().begin(), strataEnd}, fJointUnits, matrix);
    if (!isRead) return OrvStatus::Error(StatusCode::kJointFileUnreadable);
    const int count = static_cast<int>(fJointUnits.size());
    if (!design.SetJointProbabilities(count, std::move(matrix))) {
      return OrvStatus::Error(StatusCode::kUserError);
    }
  }
  if (!fbNewCluster) return OrvStatus();
  fbNewCluster = false;
  const auto found = fJointUnits.find({strataEnd, strataEnd + fNClusterVars});
  if (found == fJointUnits.end()) return OrvStatus::Error(StatusCode::kClusterNotInJointFile);
  if (!design.SetUnitIndex(found->second)) return OrvStatus::Error(StatusCode::kUserError);
  ++fNUnitsMet;
  return OrvStatus();
}

// `prefix`: values that the next key shares with the one just fed, -1 after the last one.
OrvStatus TavoDataTabulator::NoteKeyChange(int prefix) {
  fbNewStratum = prefix < fNStrataVars;
  fbNewCluster = prefix < fNStrataVars + fNClusterVars;
  if (!fbNewStratum || fbJProbStatus || fNUnitsMet >= fJointUnits.size()) return OrvStatus();
  fbJProbStatus = true;
  fStatusList.push_back(OrvStatus::Warning(StatusCode::kJointFileHasMoreUnits));
  return fStatusList.back();
}

// ---- what the design answers ----

OrvStatus TavoDataTabulator::CheckStageValues(SampleDesign& design, const Unit& unit) {
  DesignFault fault = DesignFault::kNone;
  int index = -1;
  if (fConstFindings.empty() || !design.ReadsStageValues()) return OrvStatus();
  if (design.SetStageValues(unit.payload.constValues, fault, index)) return OrvStatus();
  assert(fault == DesignFault::kUnequalValue);
  return ReportInconsistent(index, unit.key);
}

OrvStatus TavoDataTabulator::CloseDesignLevels(SampleDesign& design, int prefix, const Unit& unit) {
  DesignFault fault = DesignFault::kNone;
  int index = -1;
  if (design.CloseLevels(prefix, fault, index)) return OrvStatus();
  if (fault == DesignFault::kMissingValue) {
    NoteFinding(index, unit.key);
    return OrvStatus::Error(StatusCode::kMissingInclusionProb).SetInteger(1, index);
  }
  assert(fault == DesignFault::kPopulationTooSmall);
  fPopulationKeys.push_back(unit.key);
  return OrvStatus::Error(StatusCode::kPopulationBelowSample).SetInteger(1, index);
}

}  // namespace tavo
