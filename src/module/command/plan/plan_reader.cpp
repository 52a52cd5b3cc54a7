#include "module/command/plan/plan_reader.h"

#include "module/command/plan/analysis_reader.h"
#include "module/command/plan/sample_reader.h"

namespace tavo {

PlanStatus OrvPlanReader::ReadAnalysis(const std::string& path) {
  PlanDocument document;
  if (!document.Parse(path)) return End(PlanStatus::kInvalidFile, document.Error());
  return ReadAnalysisSection(document, true);
}

PlanStatus OrvPlanReader::ReadAnalysisUnchecked(const std::string& path) {
  PlanDocument document;
  if (!document.Parse(path)) return End(PlanStatus::kInvalidFile, document.Error());
  return ReadAnalysisSection(document, false);
}

PlanStatus OrvPlanReader::ReadAnalysisText(const std::string& text, const std::string& name) {
  PlanDocument document;
  if (!document.ParseText(text, name)) return End(PlanStatus::kInvalidFile, document.Error());
  return ReadAnalysisSection(document, true);
}

PlanStatus OrvPlanReader::ReadSample(const std::string& path) {
  PlanDocument document;
  if (!document.Parse(path)) return End(PlanStatus::kInvalidFile, document.Error());
  return ReadSampleSection(document, true);
}

PlanStatus OrvPlanReader::ReadSampleUnchecked(const std::string& path) {
  PlanDocument document;
  if (!document.Parse(path)) return End(PlanStatus::kInvalidFile, document.Error());
  return ReadSampleSection(document, false);
}

PlanStatus OrvPlanReader::ReadAnalysisSection(const PlanDocument& document, bool checks) {
  fPlan.mode = PlanMode::ANALYSIS_MODE;
  fPlan.file = document.Name();
  if (checks) fRemarks = FindPlanRemarks(document);
  const PlanElement design = document.Root().Child(PlanAnalysisReader::kSection);
  if (!design) return End(PlanStatus::kNoAnalysisDesign, document.Name());
  PlanAnalysisReader reader(fPlan, checks);
  reader.Read(design);
  return checks ? End(reader.Status(), reader.Detail()) : PlanStatus::kOK;
}

PlanStatus OrvPlanReader::ReadSampleSection(const PlanDocument& document, bool checks) {
  fPlan.mode = PlanMode::SAMPLE_MODE;
  fPlan.file = document.Name();
  const PlanElement design = document.Root().Child(PlanSampleReader::kSection);
  if (!design) return End(PlanStatus::kNoSampleDesign, document.Name());
  PlanSampleReader reader(fPlan);
  reader.Read(design);
  return checks ? End(reader.SectionStatus(), reader.Detail()) : PlanStatus::kOK;
}

std::string OrvPlanReader::SchemaFault(const std::string& path) {
  PlanDocument document;
  std::string fault;
  if (document.Parse(path)) document.KeepsToItsSchema(fault);
  return fault;
}

std::string OrvPlanReader::SchemaFaultOfText(const std::string& text, const std::string& name) {
  PlanDocument document;
  std::string fault;
  if (document.ParseText(text, name)) document.KeepsToItsSchema(fault);
  return fault;
}

PlanStatus OrvPlanReader::End(PlanStatus status, const std::string& detail) {
  fDetail = detail;
  return status;
}

}  // namespace tavo
