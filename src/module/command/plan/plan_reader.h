// Reading a plan file.
#pragma once

#include <string>

#include "module/command/plan/plan_data.h"
#include "module/command/plan/plan_document.h"
#include "module/command/plan/plan_remarks.h"
#include "module/command/plan/section_reader.h"

namespace tavo {

/// Reads one section of an XML plan document into a plan. Never throws.
class OrvPlanReader {
 public:
  static constexpr std::size_t kMaximumStages = PlanSectionReader::kMaximumStages;

  /// `plan` is filled, not owned; it should be a fresh one for each reading.
  explicit OrvPlanReader(OrvPlanData& plan) : fPlan(plan) {}

  /// Reads and checks. The first status that isn't OK wins; later elements are still read. What a root
  /// element says about a schema changes nothing here; see SchemaFault.
  PlanStatus ReadAnalysis(const std::string& path);
  PlanStatus ReadSample(const std::string& path);
  /// Fill the same fields and are silent about all but a file that is no plan document and a section that
  /// isn't there.
  PlanStatus ReadAnalysisUnchecked(const std::string& path);
  PlanStatus ReadSampleUnchecked(const std::string& path);
  /// Reads and checks a document in memory; `name` is what messages call it.
  PlanStatus ReadAnalysisText(const std::string& text, const std::string& name);

  /// Where a plan that names the schema breaks it: "file:line:column: what the XML parser says". Empty when
  /// it keeps to it, names none, or can't be read at all.
  static std::string SchemaFault(const std::string& path);
  /// The same for a document in memory.
  static std::string SchemaFaultOfText(const std::string& text, const std::string& name);

  /// What the status is about: "file:line:column: what the XML parser says", or the element and the value.
  /// Empty when there is nothing to add.
  const std::string& Detail() const { return fDetail; }
  /// What a checked reading of an analysis passed over, whatever its status; see FindPlanRemarks.
  const std::vector<PlanRemark>& Remarks() const { return fRemarks; }

 private:
  PlanStatus ReadAnalysisSection(const PlanDocument& document, bool checks);
  PlanStatus ReadSampleSection(const PlanDocument& document, bool checks);
  PlanStatus End(PlanStatus status, const std::string& detail);

  OrvPlanData& fPlan;
  std::string fDetail;
  std::vector<PlanRemark> fRemarks;
};

/// Sends the messages of statuses and remarks.
class OrvPlanMessages {
 public:
  /// The message's key; empty for kOK and unknown statuses.
  static const char* Key(PlanStatus status);
  /// `detail` as OrvPlanReader::Detail gives it. kOK and unknown statuses send nothing.
  static void Report(PlanStatus status, const std::string& detail);
  /// A warning, which suggests the nearest known word.
  static void Report(const PlanRemark& remark);
};

}  // namespace tavo
