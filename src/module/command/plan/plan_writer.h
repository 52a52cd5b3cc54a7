// Writing a plan file.
#pragma once

#include <string>
#include <string_view>

#include "module/command/plan/plan_data.h"

namespace tavo {

/// What a plan file says about itself; no reader looks at it.
struct PlanHeader {
  std::string copyright;
  std::string description;
  std::string application;
  std::string applicationVersion = "1.0";
  std::string annotation;
  std::string timestamp;
};

/// Makes the text of a plan document from what a reader fills. The text reads back to the same plan, when the
/// plan is one that a reader accepts and that keeps to the schema; nothing is checked here.
class OrvPlanWriter {
 public:
  /// The document with both of its sections, in UTF-8; a null section is left out. It names the definition
  /// and the schema. Characters that no XML document can hold become U+FFFD (see CanHold). An element that
  /// was read without a value, such as an empty PopulationSize, is left out.
  static std::string Write(const PlanHeader& header, const OrvPlanData* sample, const OrvPlanData* analysis);

  /// True for a valid UTF-8 text without characters that XML forbids, such as most control characters.
  static bool CanHold(std::string_view text);
};

}  // namespace tavo
