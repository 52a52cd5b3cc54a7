// Reading a plan file.
#pragma once

#include <string>

#include "command/plan/plan_data.h"

namespace tavo {

/// Reads the analysis section of an XML plan document. Nothing is ever fetched from outside, an external entity never
/// reads a file, and entity expansion is limited. Never throws.
class OrvPlanReader {
 public:
  /// `plan` is lent and filled.
  explicit OrvPlanReader(OrvPlanData& plan) : fPlan(plan) {}

  /// Reads and checks. The first status that isn't OK wins; later elements are still read.
  PlanStatus ReadAnalysis(const std::string& path);

  /// Where and why the file was refused: "file:line:column: what the XML parser says", or the element or attribute
  /// that the status is about. Empty when there is nothing to add.
  const std::string& Detail() const { return fDetail; }

 private:
  OrvPlanData& fPlan;
  std::string fDetail;
};

/// Sends the message of a status.
class OrvPlanMessages {
 public:
  /// `detail` as OrvPlanReader::Detail gives it. kOK and unknown statuses send nothing.
  static void Report(PlanStatus status, const std::string& detail);
};

}  // namespace tavo
