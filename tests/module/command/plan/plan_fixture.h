// Plan files for tests, and how they are read.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "module/command/plan/plan_reader.h"
#include "standalone/session/embedded_session.h"
#include "test_folder.h"

namespace tavo {

inline std::string Variable(const std::string& name) {
  return "<Variable name=\"" + name + "\"/>";
}
inline std::string Strata(const std::string& names) {
  return "<StrataVarList>" + names + "</StrataVarList>";
}
inline std::string Clusters(const std::string& names) {
  return "<ClusterVarList>" + names + "</ClusterVarList>";
}
inline std::string Stage(const std::string& method, const std::string& content,
                         const std::string& number = "1") {
  return "<AnalysisStage stageNumber=\"" + number + "\" estimationMethod=\"" + method + "\">" + content +
         "</AnalysisStage>";
}
inline std::string Analysis(const std::string& content, const std::string& attributes = "") {
  return "<AnalysisDesign " + attributes + ">" + content + "</AnalysisDesign>";
}
inline std::string Plan(const std::string& content, const std::string& prolog = "") {
  return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n" + prolog + "<VORNTessel version=\"12.0\">" + content +
         "</VORNTessel>\n";
}
/// A sound plan of one stage.
inline std::string SmallAnalysis() {
  return Analysis(Stage("wr", Strata(Variable("h")) + Clusters(Variable("psu"))) + "<Weight>" +
                  Variable("w") + "</Weight>");
}

class PlanReading : public ::testing::Test {
 protected:
  PlanReading() : fScope(fSession) {}

  PlanStatus ReadFile(const std::string& path) {
    fPlan = OrvPlanData();
    OrvPlanReader reader(fPlan);
    const PlanStatus status = reader.ReadAnalysis(path);
    fDetail = reader.Detail();
    return status;
  }
  PlanStatus ReadText(const std::string& document) { return ReadFile(fFolder.Write("plan.xml", document)); }
  /// Reads the content of an analysis section.
  PlanStatus ReadDesign(const std::string& content, const std::string& attributes = "") {
    return ReadText(Plan(Analysis(content, attributes)));
  }
  /// Reads a plan with one stage of equal probabilities that holds a value element.
  PlanStatus ReadValue(const std::string& element) {
    return ReadDesign(Stage("equal_wor", Strata(Variable("h")) + Clusters(Variable("psu")) + element));
  }
  /// Reads a document that has a sample section.
  PlanStatus ReadSampleText(const std::string& document) {
    fPlan = OrvPlanData();
    OrvPlanReader reader(fPlan);
    const PlanStatus status = reader.ReadSample(fFolder.Write("plan.xml", document));
    fDetail = reader.Detail();
    return status;
  }
  /// Reads the content of a sample section.
  PlanStatus ReadSample(const std::string& content, const std::string& attributes = "") {
    return ReadSampleText(Plan("<SampleDesign " + attributes + ">" + content + "</SampleDesign>"));
  }
  const OrvPlanStage& FirstStage() const { return fPlan.stages.at(0); }

  standalone::Session fSession;
  standalone::SessionScope fScope;
  TestFolder fFolder;
  OrvPlanData fPlan;
  std::string fDetail;
};

}  // namespace tavo
