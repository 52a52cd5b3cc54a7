// tavoreg plan show.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "plan_program.h"
#include "survey_files.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;

TEST(PlanShow, TellsBothSectionsInWords) {
  const TemporaryFolder folder;
  folder.Write(
      "plan.xml",
      "<VORNTessel><SampleDesign><SampleStage label=\"Schools\" stageNumber=\"1\" "
      "selectionMethod=\"pps_systematic\"><ClusterVarList><Variable name=\"school\"/></ClusterVarList>"
      "<InputSampleRate><SingleValue value=\"0.1\"/><MinSize><SingleValue value=\"2\"/></MinSize>"
      "</InputSampleRate><MOS fromData=\"no\"><Variable name=\"pupils\"/></MOS><Index><Variable "
      "name=\"i\"/></Index></SampleStage><Weight><Variable name=\"sw\"/></Weight></SampleDesign>"
      "<AnalysisDesign><AnalysisStage stageNumber=\"1\" estimationMethod=\"equal_wor\"><StrataVarList>"
      "<Variable name=\"st\"/></StrataVarList><PopulationSize><Matrix numberOfValues=\"1\"><MatrixVarList>"
      "<Variable name=\"st\"/></MatrixVarList><MatrixValue sizeValue=\"20\"><Category value=\"north\"/>"
      "</MatrixValue></Matrix></PopulationSize></AnalysisStage><Weight><Variable name=\"aw\"/></Weight>"
      "</AnalysisDesign></VORNTessel>");
  const ProgramRun text = Plan({"show", "plan.xml"}, folder.Path());
  EXPECT_EQ(text.exitStatus, 0) << text.messages;
  EXPECT_EQ(text.output,
            "Plan file                    plan.xml\n"
            "\n"
            "Analysis\n"
            "  Weight                     aw\n"
            "  Design effects compare to  simple random sampling without replacement\n"
            "  Stage 1\n"
            "    Estimator                without replacement, equal probabilities\n"
            "    Strata                   st\n"
            "    Clusters                 -\n"
            "    Population size          matrix of 1 values by st\n"
            "      north                  20\n"
            "\n"
            "Sample\n"
            "  Weight                     sw\n"
            "  Measure of size            pupils\n"
            "  Stage 1                    Schools\n"
            "    Selection                proportional to size, systematic\n"
            "    Strata                   -\n"
            "    Clusters                 school\n"
            "    Sampling rate            0.1\n"
            "    Smallest sample size     2\n"
            "    Writes unit numbers to   i\n");
  const json document = Plan({"show", "plan.xml", "--format", "json"}, folder.Path()).Json();
  EXPECT_EQ(document["faults"], json::array());
  EXPECT_EQ(document["sample"]["measure_of_size"]["variable"], "pupils");
  EXPECT_EQ(document["sample"]["stages"][0]["rate"]["minimum"], 2);
  EXPECT_EQ(document["sample"]["stages"][0]["index"], "i");
  EXPECT_EQ(document["analysis"]["stages"][0]["population"]["rows"][0]["value"], 20);
}

TEST(PlanShow, ShowsAFaultyPlanAndSaysWhatIsWrong) {
  const TemporaryFolder folder;
  folder.Write("plan.xml", SizedPlan(SizeValue("IncProb", "1.5")));
  const ProgramRun run = Plan({"show", "plan.xml"}, folder.Path());
  EXPECT_EQ(run.exitStatus, 1);
  EXPECT_THAT(run.output, HasSubstr("Inclusion probability    1.5"));
  EXPECT_THAT(run.messages, HasSubstr("above 0 and at most 1"));
  folder.Write("plan.xml", "<VORNTessel/>");
  const ProgramRun empty = Plan({"show", "plan.xml", "--format", "json"}, folder.Path());
  EXPECT_EQ(empty.exitStatus, 1);
  EXPECT_EQ(empty.Json()["faults"].size(), 1U);
  folder.Write("plan.xml", "<VORNTessel>");
  EXPECT_EQ(Plan({"show", "plan.xml"}, folder.Path()).exitStatus, 2);
}

TEST(PlanShow, TextsOfAPlanCannotSteerATerminal) {
  const TemporaryFolder folder;
  folder.Write("plan.xml",
               "<p><AnalysisDesign><AnalysisStage label=\"a&#xA;b&#x9B;2J\"/></AnalysisDesign></p>");
  EXPECT_THAT(Plan({"show", "plan.xml"}, folder.Path()).output, Not(HasSubstr("\xc2\x9b")));
}

}  // namespace
