// Whether a record may enter the analysis.
#pragma once

#include <cstddef>
#include <vector>

#include "component/frame/orv_status.h"
#include "component/input/comp_settings.h"
#include "component/numerics/record.h"

namespace tavo {

/// Decides by the role of each column. A value that only leaves the case out (missing, weight not above 0)
/// fails silently; a value that can't be (a category code that isn't whole) fails hard, with kInvalidValue in
/// the status. The same rules run in all passes, so that every pass sees the same cases. A weight or
/// covariate that is infinite or NaN fails hard: it would spoil every sum that it enters.
class OrvRecordValidator {
 public:
  OrvRecordValidator(const std::vector<VariableRole>& roles, const std::vector<int>& factorColumns,
                     const std::vector<int>& factorSizes, int targetCategories);
  explicit OrvRecordValidator(const TavoCompSettings& settings);

  /// True when the record enters. `status` changes only on a hard failure: kShortRecord, kInvalidValue or
  /// kStartNotBeforeEnd.
  bool Validate(const MCCommon::Record& record, OrvStatus& status) const;

 private:
  enum class Verdict { kPass, kLeaveOut, kInvalid };
  /// A column that has a test.
  struct Check {
    std::size_t column;
    VariableRole role;
    int limit;  // largest code of a category; 0: the dependent is continuous
  };
  static Verdict Judge(const Check& check, double value);
  static Verdict JudgeCategory(double value, int limit);
  static Verdict JudgeNumber(double value);

  std::size_t fNColumns;
  std::vector<Check> fChecks;
  int fStartColumn = -1;
  int fEndColumn = -1;  // of a continuous dependent
};

}  // namespace tavo
