// Plan files, through every entry of their reader.
#include <algorithm>

#include "module/command/plan/plan_document.h"
#include "module/command/plan/plan_reader.h"
#include "module/command/plan/plan_writer.h"
#include "standalone/session/embedded_session.h"
#include "target.h"
#include "test_folder.h"

namespace {

using tavo::OrvPlanData;
using tavo::OrvPlanReader;
using tavo::OrvPlanWriter;
using tavo::PlanStatus;

/// One section of plan files: how it is read and written.
struct Section {
  const char* name;
  PlanStatus (OrvPlanReader::*read)(const std::string&);
  PlanStatus (OrvPlanReader::*readUnchecked)(const std::string&);
  std::string (*write)(const OrvPlanData&);
};

constexpr Section kSections[] = {
    {"analysis", &OrvPlanReader::ReadAnalysis, &OrvPlanReader::ReadAnalysisUnchecked,
     [](const OrvPlanData& plan) { return OrvPlanWriter::Write({}, nullptr, &plan); }},
    {"sample", &OrvPlanReader::ReadSample, &OrvPlanReader::ReadSampleUnchecked,
     [](const OrvPlanData& plan) { return OrvPlanWriter::Write({}, &plan, nullptr); }},
};

void RequireAll(bool holds, const Section& section, const std::string& what) {
  fuzz::Require(holds, std::string(section.name) + " section: " + what);
}

/// A refusal has exactly one message, and the reader's details are part of it.
void CheckMessage(standalone::Session& session, PlanStatus status, const std::string& detail) {
  session.Output().messages.clear();
  tavo::OrvPlanMessages::Report(status, detail);
  const std::size_t expected = status == PlanStatus::kOK ? 0 : 1;
  fuzz::Require(session.Output().messages.size() == expected, "a status has one message, success none");
  fuzz::Require(expected == 0 || session.Output().messages[0].isError, "a refusal is an error");
}

/// A stage's sample size or rate may be an element that holds no value. Readers take it, but the definition
/// that written plans keep to has no room for it.
bool LacksAValue(const OrvPlanData& plan) {
  return plan.mode == tavo::PlanMode::SAMPLE_MODE &&
         std::any_of(plan.stages.begin(), plan.stages.end(), [](const tavo::OrvPlanStage& stage) {
           return stage.valueKind != tavo::PlanValueKind::kNone &&
                  stage.valueWay == tavo::PlanValueWay::NOT_GIVEN;
         });
}

/// A written plan names the definition and the schema, but a plan that was read without them may break them,
/// with a stage of number 0 for example; such a plan has its way back without them.
std::string Undeclared(std::string text) {
  for (const std::string_view declaration : {"<!DOCTYPE VORNTessel SYSTEM \"vorn-tessel-1.0.dtd\">\n",
                                             " xsi:noNamespaceSchemaLocation=\"vorntessel.xsd\""}) {
    const std::size_t place = text.find(declaration);
    fuzz::Require(place != std::string::npos, "a written plan names its definition and its schema");
    text.erase(place, declaration.size());
  }
  return text;
}

void CheckWayBack(const Section& section, const OrvPlanData& plan, const TestFolder& folder) {
  const std::string text = section.write(plan);
  OrvPlanData back;
  OrvPlanReader reader(back);
  const PlanStatus status = (reader.*section.read)(folder.Write("back.xml", Undeclared(text)));
  RequireAll(status == PlanStatus::kOK, section, "a plan that is written reads back: " + reader.Detail());
  const std::string again = section.write(back);
  RequireAll(again == text, section, "writing and reading leave a plan as it was:\n" + text + again);
}

void CheckSection(const Section& section, const std::string& path, standalone::Session& session,
                  const TestFolder& folder) {
  OrvPlanData checked;
  OrvPlanReader reader(checked);
  const PlanStatus status = (reader.*section.read)(path);
  CheckMessage(session, status, reader.Detail());
  OrvPlanData unchecked;
  OrvPlanReader silent(unchecked);
  const PlanStatus silentStatus = (silent.*section.readUnchecked)(path);
  if (status != PlanStatus::kOK) return;
  RequireAll(silentStatus == PlanStatus::kOK, section, "what passes the checks passes without them");
  RequireAll(unchecked.stages.size() == checked.stages.size() && unchecked.weight == checked.weight &&
                 unchecked.designVariables == checked.designVariables,
             section, "the checks change nothing");  // but what a stage of another method has no use for
  if (!LacksAValue(checked)) CheckWayBack(section, checked, folder);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  static const TestFolder folder;
  static const tavo::PlanDocument library;  // keeps the XML library loaded between inputs
  standalone::Session session;
  const standalone::SessionScope scope(session);
  const std::string path = folder.Write("plan.xml", fuzz::TextOf(bytes, size));
  for (const Section& section : kSections)
    CheckSection(section, path, session, folder);
  return 0;
}
