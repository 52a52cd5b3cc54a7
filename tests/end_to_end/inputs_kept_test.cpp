// No output of the program takes the place of a file that it reads.
#include <gtest/gtest.h>

#include <filesystem>

#include "survey_files.h"

namespace {

namespace fs = std::filesystem;

constexpr const char* kCommand = "TAVOREG y BY g WITH x\n  /PLAN FILE='plan.xml'";
constexpr const char* kSchema = R"({"fields": [{"name": "y", "title": "Answer"}]})";

class InputsKept : public ::testing::Test {
 protected:
  InputsKept() {
    fFolder.Write("d.csv", SurveyData().Text());
    fFolder.Write("d.schema.json", kSchema);
    fFolder.Write("plan.xml", SimplePlan());
    fFolder.Write("command.tvs", std::string(kCommand) + ".\n");
  }
  ProgramRun Run(const std::vector<std::string>& more, const std::string& outfile = "") const {
    if (!outfile.empty()) {
      fFolder.Write("command.tvs", kCommand + std::string("\n  /OUTFILE ") + outfile + ".\n");
    }
    std::vector<std::string> arguments = {"run", "command.tvs", "--data", "d.csv"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return RunProgram(arguments, fFolder.Path());
  }
  /// The content of all files by name.
  std::map<std::string, std::string> Files() const {
    std::map<std::string, std::string> files;
    for (const auto& entry : fs::directory_iterator(fFolder.Path()))
      files[entry.path().filename()] = ReadText(entry.path());
    return files;
  }

  TemporaryFolder fFolder;
};

TEST_F(InputsKept, OutputAndSaveRefuseThemBeforeAnythingRuns) {
  fs::create_hard_link(fFolder.Path() / "plan.xml", fFolder.Path() / "hard.json");
  fs::create_symlink("plan.xml", fFolder.Path() / "soft.html");
  fs::create_symlink("d.csv", fFolder.Path() / "soft.csv");
  const auto before = Files();
  for (const std::vector<std::string>& more :
       std::vector<std::vector<std::string>>{{"--output", "./plan.xml", "--format", "text"},
                                             {"--output", "hard.json"},
                                             {"--output", "soft.html"},
                                             {"--output", "d.csv", "--format", "text"},
                                             {"--output", "d.schema.json"},
                                             {"--output", "command.tvs", "--format", "text"},
                                             {"--save", "d.csv"},
                                             {"--save", "soft.csv"}}) {
    const ProgramRun run = Run(more);
    EXPECT_EQ(run.exitStatus, 2) << more[1];
    EXPECT_EQ(run.output, "") << more[1];
    EXPECT_NE(run.messages.find("The file " + more[1] + ", which " + more[0] + " names, is read by the run"),
              std::string::npos)
        << run.messages;
    EXPECT_EQ(Files(), before) << more[1];
  }
}

TEST_F(InputsKept, OutfileRefusesThemWithThePlaceInTheCommand) {
  fs::create_symlink("d.csv", fFolder.Path() / "link.csv");
  for (const auto& [outfile, use] :
       std::vector<std::pair<std::string, std::string>>{{"MODEL='./plan.xml'", "PLAN"},
                                                        {"PARAMETER='d.csv'", "--data"},
                                                        {"COVB='d.csv'", "--data"},
                                                        {"CORB='./link.csv'", "--data"},
                                                        {"COVB='d.tsv'", "the schema of the data"},
                                                        {"MODEL='command.tvs'", "the command file"}}) {
    Run({}, outfile);
    const auto before = Files();
    const ProgramRun run = Run({});
    EXPECT_EQ(run.exitStatus, 1) << outfile;
    EXPECT_NE(run.messages.find("is named for both " + use + " and "), std::string::npos) << run.messages;
    EXPECT_NE(run.messages.find("command.tvs:3:"), std::string::npos) << run.messages;
    EXPECT_EQ(Files(), before) << outfile;
  }
}

TEST_F(InputsKept, JointProbabilitiesThatThePlanBringsAreNotReplaced) {
  fFolder.Write("plan.xml", PlanText({{"unequal_wor", {"st"}, {"psu"}}}));
  std::string joint = "st,psu,Unit_No_,p1,p2,p3,p4,p5\n";
  for (int stratum = 1; stratum <= 4; ++stratum) {
    for (int unit = 1; unit <= 5; ++unit) {
      joint += std::to_string(stratum) + "," + std::to_string(unit) + "," + std::to_string(unit);
      for (int other = 1; other <= 5; ++other)
        joint += other == unit ? ",0.4" : ",0.15";
      joint += "\n";
    }
  }
  fFolder.Write("plan.csv", joint);
  EXPECT_EQ(Run({}, "COVB='./plan.csv'").exitStatus, 1);
  EXPECT_EQ(ReadText(fFolder.Path() / "plan.csv"), joint);
  fFolder.Write("command.tvs", std::string(kCommand) + ".\n");
  EXPECT_EQ(Run({"--save", "plan.csv"}).exitStatus, 3);
  EXPECT_EQ(Run({"--output", "plan.csv", "--format", "text"}).exitStatus, 3);
  EXPECT_EQ(ReadText(fFolder.Path() / "plan.csv"), joint);
}

TEST_F(InputsKept, AFileOfAnEarlierRunIsReplaced) {
  for (int i = 0; i < 2; ++i) {
    const ProgramRun run =
        Run({"--output", "out.json", "--save", "saved.csv"}, "COVB='cov.csv' MODEL='m.xml'");
    EXPECT_EQ(run.exitStatus, 0) << run.messages;
  }
}

TEST_F(InputsKept, ASchemaMadeByHandIsNotReplacedByThatOfAnOutput) {
  fFolder.Write("x.schema.json", kSchema);
  const ProgramRun run = Run({"--save", "x.csv"});
  EXPECT_EQ(run.exitStatus, 2);
  EXPECT_NE(run.messages.find("x.schema.json, which somebody else has made"), std::string::npos)
      << run.messages;
  EXPECT_EQ(Run({}, "COVB='x.csv'").exitStatus, 1);
  EXPECT_EQ(RunProgram({"convert", "d.csv", "x.csv"}, fFolder.Path()).exitStatus, 2);
  EXPECT_EQ(Run({"--save", "d.tsv"}).exitStatus, 2) << "the schema of the data";
  EXPECT_EQ(ReadText(fFolder.Path() / "d.schema.json"), kSchema);
  EXPECT_EQ(ReadText(fFolder.Path() / "x.schema.json"), kSchema);
}

TEST_F(InputsKept, ConvertingRefusesToReplaceWhatItReads) {
  fs::create_hard_link(fFolder.Path() / "d.csv", fFolder.Path() / "same.csv");
  const auto before = Files();
  for (const std::string out : {"d.csv", "./d.csv", "same.csv", "d.tsv"}) {
    const ProgramRun run = RunProgram({"convert", "d.csv", out}, fFolder.Path());
    EXPECT_EQ(run.exitStatus, 2) << out;
    EXPECT_NE(run.messages.find("would replace "), std::string::npos) << run.messages;
    EXPECT_EQ(Files(), before) << out;
  }
}

}  // namespace
