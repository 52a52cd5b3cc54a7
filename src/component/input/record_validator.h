// Whether a record may enter the analysis.
#pragma once

#include <vector>

#include "estimation/numerics/record.h"
#include "frame/orv_status.h"
#include "input/comp_settings.h"

namespace tavo {

/// Decides by the role of each column. A value that only leaves the case out (missing, weight not above 0) fails
/// silently; a value that can't be (a category code that isn't whole) fails hard, with 91006 in the status. The same
/// rules run in all passes, so that every pass sees the same cases.
class OrvRecordValidator {
 public:
  OrvRecordValidator(const std::vector<VariableRole>& roles, const std::vector<int>& factorColumns,
                     const std::vector<int>& factorSizes, int targetCategories);
  explicit OrvRecordValidator(const TavoCompSettings& settings);

  /// True when the record enters. `status` changes only on a hard failure (91004, 91006, 95049).
  bool Validate(const MCCommon::Record& record, OrvStatus& status) const;

 private:
  std::vector<VariableRole> fRoles;
  int fNTargetCategories;
  std::vector<int> fCategoryLimits;  // by column
};

}  // namespace tavo
