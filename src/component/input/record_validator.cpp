// Runs for each record of each pass: the columns without a test are left out when the validator is made, and
// no look-up is left for the records.
#include "component/input/record_validator.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "component/numerics/missing_value.h"

namespace tavo {

using MCCommonMath::IsMissing;
using MCCommonMath::MCMV;

namespace {

// Codes become 32-bit integers in keys and tables.
constexpr int kLargestCode = std::numeric_limits<std::int32_t>::max();

bool IsWhole(double value) {
  return value == std::trunc(value);
}

int LimitOfFactor(int column, const std::vector<int>& factorColumns, const std::vector<int>& factorSizes) {
  const auto found = std::find(factorColumns.begin(), factorColumns.end(), column);
  const auto j = static_cast<std::size_t>(found - factorColumns.begin());
  return j < factorSizes.size() ? factorSizes[j] : 0;
}

}  // namespace

OrvRecordValidator::OrvRecordValidator(const std::vector<VariableRole>& roles,
                                       const std::vector<int>& factorColumns,
                                       const std::vector<int>& factorSizes, int targetCategories)
    : fNColumns(roles.size()) {
  for (std::size_t i = 0; i < roles.size(); ++i) {
    const int column = static_cast<int>(i);
    int limit = kLargestCode;
    if (roles[i] == VariableRole::kNone) continue;
    if (roles[i] == VariableRole::kFactor) limit = LimitOfFactor(column, factorColumns, factorSizes);
    if (roles[i] == VariableRole::kDependent) limit = std::max(targetCategories, 0);
    if (roles[i] == VariableRole::kDependent && limit == 0) fEndColumn = column;
    if (roles[i] == VariableRole::kStartTime) fStartColumn = column;
    fChecks.push_back({i, roles[i], limit});
  }
}

OrvRecordValidator::OrvRecordValidator(const TavoCompSettings& settings)
    : OrvRecordValidator(settings.VariableTypes(), settings.Factors(), settings.FactorSizes(),
                         settings.DependentCategories()) {}

OrvRecordValidator::Verdict OrvRecordValidator::JudgeCategory(double value, int limit) {
  // A missing code too: the missing value is the most negative number.
  if (value < 0.5) return Verdict::kLeaveOut;
  return IsWhole(value) && value <= limit ? Verdict::kPass : Verdict::kInvalid;
}

OrvRecordValidator::Verdict OrvRecordValidator::JudgeNumber(double value) {
  if (IsMissing(value)) return Verdict::kLeaveOut;
  return std::isfinite(value) ? Verdict::kPass : Verdict::kInvalid;
}

OrvRecordValidator::Verdict OrvRecordValidator::Judge(const Check& check, double value) {
  const auto passIf = [](bool valid) { return valid ? Verdict::kPass : Verdict::kInvalid; };
  switch (check.role) {
    case VariableRole::kDesignCategory:
    case VariableRole::kCategory:
    case VariableRole::kFactor:
      return JudgeCategory(value, check.limit);
    case VariableRole::kDependent:
      return check.limit > 0 ? JudgeCategory(value, check.limit) : JudgeNumber(value);
    // Whether a missing one matters depends on the rest of its unit: the design answers for that.
    case VariableRole::kInclusionProbability:
      return passIf(IsMissing(value) || (value > 0 && value <= 1));
    case VariableRole::kPopulationSize:
      return passIf(IsMissing(value) || (value >= 1 && std::isfinite(value)));
    case VariableRole::kWeight:
      return value <= 0 ? Verdict::kLeaveOut : JudgeNumber(value);
    case VariableRole::kCovariate:
    case VariableRole::kStartTime:
      return JudgeNumber(value);
    case VariableRole::kTwoValued:
      return passIf(value == 0 || value == 1);
    case VariableRole::kWholeNumber:
      return passIf(IsWhole(value));
    case VariableRole::kNone:
      break;
  }
  return Verdict::kPass;
}

bool OrvRecordValidator::Validate(const MCCommon::Record& record, OrvStatus& status) const {
  if (fNColumns > static_cast<std::size_t>(record.Size())) {
    status = OrvStatus::Error(StatusCode::kShortRecord);
    return false;
  }
  // The first column that fails decides, so that a record's fate doesn't depend on how many things are wrong.
  const double* const cells = record.GetAll();
  for (const Check& check : fChecks) {
    const double value = cells[check.column];
    const Verdict verdict = Judge(check, value);
    if (verdict == Verdict::kPass) continue;
    if (verdict == Verdict::kInvalid) {
      status = OrvStatus::Error(StatusCode::kInvalidValue);
      status.SetInteger(1, static_cast<int>(check.column)).SetReal(1, value);
    }
    return false;
  }
  if (fStartColumn < 0) return true;
  const double end = fEndColumn < 0 ? MCMV::gMissingValue : cells[fEndColumn];
  if (cells[fStartColumn] < end) return true;
  status = OrvStatus::Error(StatusCode::kStartNotBeforeEnd);
  status.SetReal(1, cells[fStartColumn]);
  return false;
}

}  // namespace tavo
