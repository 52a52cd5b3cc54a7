// The program is one file: a copy of it works wherever it lies.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "bad_input.h"

namespace {

namespace fs = std::filesystem;

/// The plan with its own definition and schema named, so that a run needs both.
std::string DeclaredPlan() {
  std::string plan = SimplePlan();
  const std::string root = "<VORNTessel ";
  const std::size_t place = plan.find(root);
  EXPECT_NE(place, std::string::npos);
  return plan.replace(place, root.size(),
                      "<!DOCTYPE VORNTessel SYSTEM \"vorn-tessel-1.0.dtd\">\n" + root +
                          "xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" "
                          "xsi:noNamespaceSchemaLocation=\"vorntessel.xsd\" ");
}

/// The program alone in a folder, and an analysis in another one.
class SingleFile : public testing::Test {
 protected:
  SingleFile() : fProgram(fAlone.Path() / "tavoreg") {
    fs::copy_file(TAVOREG_PROGRAM, fProgram);
    fWork.Write("command.tvs", kSimple + ".\n");
    fWork.Write("data.csv", SurveyData().Text());
  }
  ProgramRun RunOn(const std::string& plan) const {
    fWork.Write("plan.xml", plan);
    return RunCopy(fProgram, {"run", "command.tvs", "--data", "data.csv", "--format", "text"}, fWork.Path());
  }

  TemporaryFolder fAlone;
  TemporaryFolder fWork;
  fs::path fProgram;
};

TEST_F(SingleFile, RunsACommandWhosePlanNamesDefinitionAndSchema) {
  const ProgramRun copy = RunOn(DeclaredPlan());
  EXPECT_EQ(copy.exitStatus, 0) << copy.messages;
  EXPECT_EQ(copy.messages, "");
  const ProgramRun original =
      RunProgram({"run", "command.tvs", "--data", "data.csv", "--format", "text"}, fWork.Path());
  EXPECT_EQ(WithoutSeconds(copy.output), WithoutSeconds(original.output));
  EXPECT_THAT(copy.output, testing::HasSubstr("Tests of Model Effects"));
}

TEST_F(SingleFile, StillRefusesAPlanThatBreaksItsDefinition) {
  std::string plan = DeclaredPlan();
  const std::string end = "</VORNTessel>";
  plan.replace(plan.find(end), end.size(), "<Unknown/>" + end);
  const ProgramRun copy = RunOn(plan);
  EXPECT_EQ(copy.exitStatus, 1);
  EXPECT_THAT(copy.messages, testing::HasSubstr("Unknown"));
}

TEST_F(SingleFile, LeavesNothingBesideItself) {
  RunOn(DeclaredPlan());
  EXPECT_EQ(std::distance(fs::directory_iterator(fAlone.Path()), fs::directory_iterator()), 1);
}

}  // namespace
