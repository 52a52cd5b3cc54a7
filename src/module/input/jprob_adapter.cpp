#include "module/input/jprob_adapter.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <utility>

#include "component/numerics/missing_value.h"
#include "host/output.h"

namespace tavo {

using MCCommonMath::MCMV;

namespace {

using UnitNumber = std::int32_t;

/// The integer part; what no 32-bit number holds becomes the nearest one that can't be a unit number.
UnitNumber UnitNumberOf(double value) {
  constexpr double kHighest = std::numeric_limits<UnitNumber>::max();
  if (!(value > 0)) return 0;
  return static_cast<UnitNumber>(std::min(value, kHighest));
}

const char* MessageOf(OrvJProbAdapter::Error error) {
  switch (error) {
    case OrvJProbAdapter::kVariableNotInFile:
      return "Some strata or cluster variable not in joint prob file ...";
    case OrvJProbAdapter::kWrongType:
      return "Some strata or cluster variable have wrong types in joint prob file ...";
    case OrvJProbAdapter::kValueMissing:
      return "No missing joint incl prob ...";
    case OrvJProbAdapter::kDuplicateUnit:
      return "Duplicate cluster or Unit_No_ ...";
    case OrvJProbAdapter::kNone:
    case OrvJProbAdapter::kNotReadable:
      break;
  }
  return nullptr;
}

bool IsProbability(double value) {
  return value > 0 && value <= 1;
}

}  // namespace

OrvJProbAdapter::OrvJProbAdapter(OrvInputAdapter& adapter, const OrvPlanValidSpecs& specs,
                                 const host::VORN_DataSource& active, host::VORN_DataSource& file,
                                 bool includeUserMissing) {
  fError = CheckVariables(specs, active, file);
  if (fError == kNone) fError = ReadFile(adapter, file, includeUserMissing);
  if (const char* key = tavo::MessageOf(fError)) host::BpError(host::Key(key), host::BpErrorLevel::kWarning);
}

// ---- the file ----

OrvJProbAdapter::Error OrvJProbAdapter::CheckVariables(const OrvPlanValidSpecs& specs,
                                                       const host::VORN_DataSource& active,
                                                       const host::VORN_DataSource& file) {
  if (specs.Stages().empty()) return kVariableNotInFile;
  const DesignStage& stage = specs.Stages().front().stage;
  Error error = CheckGroup(stage.strata, active, file);
  fNStrata = fColumns.size();
  if (error == kNone) error = CheckGroup(stage.clusters, active, file);
  if (error != kNone) return error;

  const std::size_t unitColumn = fColumns.size();
  if (file.ColumnCount() <= unitColumn) return kVariableNotInFile;
  fNProbabilities = file.ColumnCount() - unitColumn - 1;
  for (std::size_t i = unitColumn; i < file.ColumnCount(); ++i) {
    if (!file.GetVariable(static_cast<unsigned>(i))->IsNumeric()) return kWrongType;
  }
  return kNone;
}

// The next file variables are the planned ones, whatever their order.
OrvJProbAdapter::Error OrvJProbAdapter::CheckGroup(const std::vector<int>& planned,
                                                   const host::VORN_DataSource& active,
                                                   const host::VORN_DataSource& file) {
  for (std::size_t i = 0; i < planned.size(); ++i) {
    if (fColumns.size() >= file.ColumnCount()) return kVariableNotInFile;
    const host::VORN_Variable& variable = *file.GetVariable(static_cast<unsigned>(fColumns.size()));
    const int index = active.FindVarIndex(variable.GetName());
    const auto found = std::find(planned.begin(), planned.end(), index);
    if (index < 0 || found == planned.end()) return kVariableNotInFile;
    if (variable.GetType() != active.GetVariable(static_cast<unsigned>(index))->GetType()) return kWrongType;
    fColumns.push_back({index, static_cast<std::size_t>(found - planned.begin())});
  }
  return kNone;
}

/// The columns of one pass over the file.
struct OrvJProbAdapter::CaseReader {
  std::vector<OrvCaseValue> design;
  host::CaseValue unitNumber;
  std::vector<host::CaseValue> probabilities;

  CaseReader(const host::VORN_InputCaseIterator& cases, std::size_t designColumns, std::size_t count,
             bool includeUserMissing)
      : unitNumber(cases, static_cast<unsigned>(designColumns)) {
    for (std::size_t i = 0; i < designColumns; ++i)
      design.emplace_back(cases, static_cast<int>(i), includeUserMissing);
    for (std::size_t j = 0; j < count; ++j)
      probabilities.emplace_back(cases, static_cast<unsigned>(designColumns + 1 + j));
  }
};

OrvJProbAdapter::Error OrvJProbAdapter::ReadFile(OrvInputAdapter& adapter, host::VORN_DataSource& file,
                                                 bool includeUserMissing) {
  const std::unique_ptr<host::VORN_InputCaseIterator> cases = file.NewInputIterator(0);
  if (cases == nullptr) return kNotReadable;
  const CaseReader values(*cases, fColumns.size(), fNProbabilities, includeUserMissing);
  while (cases->NextCase() != 0) {
    Key key(fNStrata + 1);
    Row row(ClusterCount() + fNProbabilities);
    for (std::size_t i = 0; i < fColumns.size(); ++i) {
      if (!values.design[i].IsValid()) return kValueMissing;
      bool isNew = false;
      const auto [variable, position] = fColumns[i];
      // A value that only this file has gets a code too, so that its rows don't pass for those of another
      // stratum.
      const int code = adapter.CodeForValue(variable, values.design[i].Cells(), isNew, true);
      if (i < fNStrata) {
        key[position] = code;
      } else {
        row[position] = code;
      }
    }
    if (values.unitNumber.IsMissing()) return kValueMissing;
    key.back() = UnitNumberOf(values.unitNumber.Number());
    for (std::size_t j = 0; j < fNProbabilities; ++j) {
      const host::CaseValue& value = values.probabilities[j];
      row[ClusterCount() + j] = value.IsMissing() ? MCMV::gMissingValue : value.Number();
    }
    if (!fRows.emplace(std::move(key), std::move(row)).second) return kDuplicateUnit;
  }
  return kNone;
}

// ---- a stratum ----

bool OrvJProbAdapter::ReadStratum(const std::vector<std::int32_t>& strataKey,
                                  MCOrv::JointInclProbs::Units& units, std::vector<double>& matrix) const {
  units.clear();
  matrix.clear();
  if (fError != kNone) return false;
  std::vector<const Row*> rows;
  Fault fault = FindStratum(strataKey, rows);
  if (fault == Fault::kNone) fault = CollectUnits(rows, units);
  if (fault == Fault::kNone) fault = CopyMatrix(rows, matrix);
  if (fault == Fault::kNone) return true;
  units.clear();
  matrix.clear();
  host::BpError(host::Key(MessageOf(fault)), host::BpErrorLevel::kError);
  return false;
}

OrvJProbAdapter::Fault OrvJProbAdapter::FindStratum(const std::vector<std::int32_t>& strataKey,
                                                    std::vector<const Row*>& rows) const {
  Key first = strataKey;
  first.push_back(std::numeric_limits<UnitNumber>::min());
  for (auto it = fRows.lower_bound(first); it != fRows.end(); ++it) {
    const auto& [key, row] = *it;
    if (key.size() != first.size() || !std::equal(strataKey.begin(), strataKey.end(), key.begin())) break;
    rows.push_back(&row);
    // The rows come in the order of the unit numbers, which must be 1, 2, 3 … without a gap.
    if (static_cast<std::size_t>(key.back()) != rows.size()) return Fault::kUnitNumber;
    if (rows.size() > fNProbabilities) return Fault::kUnitNumberTooBig;
  }
  return rows.empty() ? Fault::kNoStratum : Fault::kNone;
}

OrvJProbAdapter::Fault OrvJProbAdapter::CollectUnits(const std::vector<const Row*>& rows,
                                                     MCOrv::JointInclProbs::Units& units) const {
  std::vector<std::int32_t> cluster(ClusterCount());
  for (std::size_t a = 0; a < rows.size(); ++a) {
    std::transform(rows[a]->begin(), rows[a]->begin() + static_cast<std::ptrdiff_t>(cluster.size()),
                   cluster.begin(), [](double code) { return static_cast<std::int32_t>(code); });
    if (!units.emplace(cluster, static_cast<int>(a) + 1).second) return Fault::kDuplicate;
  }
  return Fault::kNone;
}

OrvJProbAdapter::Fault OrvJProbAdapter::CopyMatrix(const std::vector<const Row*>& rows,
                                                   std::vector<double>& matrix) const {
  const std::size_t n = rows.size();
  const auto probability = [&](std::size_t a, std::size_t b) { return (*rows[a])[ClusterCount() + b]; };
  matrix.reserve(n * n);
  for (std::size_t a = 0; a < n; ++a) {
    for (std::size_t b = 0; b < n; ++b) {
      if (!IsProbability(probability(a, b))) return Fault::kProbability;
      matrix.push_back(probability(a, b));
    }
  }
  for (std::size_t a = 0; a < n; ++a) {
    for (std::size_t b = 0; b < n; ++b) {
      const double lower = std::min(matrix[a * n + a], matrix[b * n + b]);
      // Two units can't be drawn together more often than each is drawn.
      if (matrix[a * n + b] > lower) return Fault::kOutOfRange;
    }
  }
  return Fault::kNone;
}

const char* OrvJProbAdapter::MessageOf(Fault fault) {
  switch (fault) {
    case Fault::kUnitNumber:
      return "Invalid Unit_No_ value ...";
    case Fault::kUnitNumberTooBig:
      return "Unit_No_ value too big ...";
    case Fault::kNoStratum:
      return "Some levels not in joint prob file ...";
    case Fault::kProbability:
      return "Invalid joint incl probability ...";
    case Fault::kOutOfRange:
      return "Joint incl prob out of range ...";
    case Fault::kDuplicate:
    case Fault::kNone:
      break;
  }
  return "Duplicate cluster or Unit_No_ ...";
}

}  // namespace tavo
