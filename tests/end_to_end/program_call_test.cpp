// Calling the program: options, files, exit status, interrupts.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "bad_input.h"

namespace {

using testing::HasSubstr;

namespace fs = std::filesystem;

/// A folder with an analysis that works: command.tvs, plan.xml, data.csv.
class WorkingFolder {
 public:
  WorkingFolder() {
    fFolder.Write("command.tvs", kSimple + ".\n");
    fFolder.Write("plan.xml", SimplePlan());
    fFolder.Write("data.csv", SurveyData().Text());
  }
  const TemporaryFolder& Files() const { return fFolder; }
  ProgramRun Run(std::vector<std::string> more) const {
    more.insert(more.begin(), {"run", "command.tvs"});
    return RunProgram(more, fFolder.Path());
  }
  /// The files that were not there at the start.
  std::vector<std::string> NewFiles() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(fFolder.Path())) {
      const std::string name = entry.path().filename().string();
      if (name != "command.tvs" && name != "plan.xml" && name != "data.csv") names.push_back(name);
    }
    return names;
  }

 private:
  TemporaryFolder fFolder;
};

struct BadCall {
  std::string name;
  std::vector<std::string> arguments;
  std::string says;
};

void PrintTo(const BadCall& call, std::ostream* out) {
  *out << call.name;
}

std::vector<BadCall> BadCalls() {
  return {
      {"NoSubcommand", {}, "subcommand"},
      {"MisspeltSubcommand", {"rnu", "command.tvs"}, "did you mean run?"},
      {"UnknownOption", {"run", "command.tvs", "--data", "data.csv", "--treads", "2"}, "--treads"},
      {"NoCommandFile", {"run", "--data", "data.csv"}, "COMMANDS"},
      {"NoData", {"run", "command.tvs"}, "name the file to analyse with --data FILE"},
      {"DataWithoutName", {"run", "command.tvs", "--data"}, "--data"},
      {"UnknownFormat", {"run", "command.tvs", "--data", "data.csv", "--format", "pdf"}, "pdf"},
      {"NoThreads", {"run", "command.tvs", "--data", "data.csv", "--threads", "0"}, "--threads"},
      {"OutputOfUnknownEnding",
       {"run", "command.tvs", "--data", "data.csv", "--output", "out.pdf"},
       "the ending of out.pdf names no format (.txt, .md, .html, .json)"},
      {"CommandFileMissing", {"run", "nix.tvs", "--data", "data.csv"}, "nix.tvs can't be read: No such file"},
      {"CommandFileIsAFolder", {"run", ".", "--data", "data.csv"}, "can't be read: it is a folder"},
      {"DataMissing",
       {"run", "command.tvs", "--data", "nix.csv"},
       "nix.csv: the file can't be read: No such file"},
      {"DataIsAFolder", {"run", "command.tvs", "--data", "folder.csv"}, "folder.csv: the file can't be read"},
      {"SchemaMissing",
       {"run", "command.tvs", "--data", "data.csv", "--schema", "nix.json"},
       "nix.json: the schema can't be read: No such file"},
      {"DescribeNothing", {"describe"}, "FILE"},
      {"DescribeMissing", {"describe", "nix.csv"}, "nix.csv: the file can't be read: No such file"},
  };
}

class Call : public testing::TestWithParam<BadCall> {};

TEST_P(Call, ThatIsWrongEndsWithTwoAndSaysWhy) {
  const WorkingFolder folder;
  fs::create_directory(folder.Files().Path() / "folder.csv");
  const ProgramRun run = RunProgram(GetParam().arguments, folder.Files().Path());
  EXPECT_EQ(run.exitStatus, 2);
  EXPECT_THAT(run.messages, HasSubstr(GetParam().says));
}

INSTANTIATE_TEST_SUITE_P(Calls, Call, testing::ValuesIn(BadCalls()),
                         [](const auto& each) { return each.param.name; });

TEST(DataThatMayNotBeRead, EndsWithTwo) {
  if (::geteuid() == 0) GTEST_SKIP() << "the superuser may read everything";
  const WorkingFolder folder;
  fs::permissions(folder.Files().Path() / "data.csv", fs::perms::none);
  const ProgramRun run = folder.Run({"--data", "data.csv"});
  EXPECT_EQ(run.exitStatus, 2);
  EXPECT_THAT(run.messages, HasSubstr("data.csv: the file can't be read: Permission denied"));
}

TEST(OutputFolderThatIsMissing, EndsWithThreeAndLeavesNothing) {
  const WorkingFolder folder;
  const ProgramRun run = folder.Run({"--data", "data.csv", "--output", "nix/out.txt"});
  EXPECT_EQ(run.exitStatus, 3);
  EXPECT_THAT(run.messages, HasSubstr("nix/out.txt cannot be written: No such file or directory"));
  EXPECT_THAT(folder.NewFiles(), testing::IsEmpty());
}

TEST(OutputThatIsAFolder, EndsWithThreeAndLeavesNothing) {
  const WorkingFolder folder;
  fs::create_directory(folder.Files().Path() / "out.txt");
  const ProgramRun run = folder.Run({"--data", "data.csv", "--output", "out.txt"});
  EXPECT_EQ(run.exitStatus, 3);
  EXPECT_THAT(run.messages, HasSubstr("out.txt cannot be written: it is a folder"));
  EXPECT_THAT(folder.NewFiles(), testing::ElementsAre("out.txt"));
  EXPECT_TRUE(fs::is_empty(folder.Files().Path() / "out.txt"));
}

TEST(OutputFolderThatIsReadOnly, EndsWithThreeAndLeavesNothing) {
  if (::geteuid() == 0) GTEST_SKIP() << "the superuser may write everywhere";
  const WorkingFolder folder;
  const fs::path locked = folder.Files().Path() / "locked";
  fs::create_directory(locked);
  fs::permissions(locked, fs::perms::owner_read | fs::perms::owner_exec);
  const ProgramRun run = folder.Run({"--data", "data.csv", "--output", "locked/out.txt"});
  EXPECT_EQ(run.exitStatus, 3);
  EXPECT_THAT(run.messages, HasSubstr("locked/out.txt cannot be written: Permission denied"));
  EXPECT_TRUE(fs::is_empty(locked));
}

TEST(AFullDevice, EndsWithThree) {
  if (!fs::exists("/dev/full")) GTEST_SKIP() << "no device that is always full";
  const WorkingFolder folder;
  EXPECT_EQ(folder.Run({"--data", "data.csv", "--output", "/dev/full", "--format", "text"}).exitStatus, 3);
}

TEST(OutputThatExists, IsReplacedByAWholeRunOnly) {
  const WorkingFolder folder;
  const fs::path output = folder.Files().Write("out.json", "old");
  EXPECT_EQ(folder.Run({"--data", "nix.csv", "--output", "nix/out.json"}).exitStatus, 3);
  EXPECT_EQ(ReadText(output), "old");
  EXPECT_EQ(folder.Run({"--data", "data.csv", "--output", "out.json"}).exitStatus, 0);
  EXPECT_EQ(nlohmann::json::parse(ReadText(output))["commands"][0]["status"], "ok");
}

TEST(AFailedCommand, StillWritesItsDocument) {
  const WorkingFolder folder;
  folder.Files().Write("command.tvs", "TAVOREG y WITH nix\n  /PLAN FILE='plan.xml'.");
  const ProgramRun run = folder.Run({"--data", "data.csv", "--output", "out.json"});
  EXPECT_EQ(run.exitStatus, 1);
  const auto document = nlohmann::json::parse(ReadText(folder.Files().Path() / "out.json"));
  EXPECT_EQ(document["commands"][0]["status"], "error");
  EXPECT_EQ(document["commands"][0]["messages"].size(), 1U);
}

TEST(FilesThatCannotBeRead, AreToldInTheDocumentAsWell) {
  const WorkingFolder folder;
  const auto document = folder.Run({"--data", "nix.csv", "--format", "json"}).Json();
  ASSERT_EQ(document["messages"].size(), 1U);
  EXPECT_EQ(document["messages"][0]["level"], "error");
  EXPECT_TRUE(document["commands"].empty());
}

TEST(PlanFiles, AreLookedForBesideTheCommandFile) {
  const WorkingFolder folder;
  fs::create_directory(folder.Files().Path() / "elsewhere");
  const ProgramRun run =
      RunProgram({"run", "../command.tvs", "--data", "../data.csv"}, folder.Files().Path() / "elsewhere");
  EXPECT_EQ(run.exitStatus, 0) << run.messages;
}

TEST(Help, AnswersWithZero) {
  const TemporaryFolder folder;
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"--help"}, {"run", "--help"}, {"describe", "--help"}}) {
    const ProgramRun run = RunProgram(arguments, folder.Path());
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_THAT(run.output, HasSubstr("--help"));
  }
  const ProgramRun version = RunProgram({"--version"}, folder.Path());
  EXPECT_EQ(version.exitStatus, 0);
  EXPECT_EQ(version.output.rfind("tavoreg ", 0), 0U);
}

/// A fit of some seconds whose command warns before it begins.
void WriteLongRun(const TemporaryFolder& folder) {
  DataFile data = SurveyData(6000);
  data.Fill("p", [](std::size_t i) { return std::to_string(i * 7919 % 6007 % 25); });
  data.Fill("q", [](std::size_t i) { return std::to_string(i * 104729 % 6011 % 25); });
  folder.Write("data.csv", data.Text());
  folder.Write("plan.xml", SimplePlan());
  folder.Write("command.tvs", "TAVOREG y3 BY p q b WITH x\n  /PLAN FILE='plan.xml'\n  /MODEL p*q x.\n");
}

TEST(AnInterrupt, EndsWith130AndWritesNothing) {
  const TemporaryFolder folder;
  WriteLongRun(folder);
  const fs::path kept = folder.Write("kept.txt", "of an earlier run");
  for (const std::string output : {"new.json", "kept.txt"}) {
    const ProgramRun run =
        InterruptProgram({"run", "command.tvs", "--data", "data.csv", "--output", output}, folder.Path());
    EXPECT_EQ(run.exitStatus, 130) << run.messages;
    EXPECT_THAT(run.messages, HasSubstr("error: The run was interrupted"));
  }
  EXPECT_EQ(ReadText(kept), "of an earlier run");
  EXPECT_FALSE(fs::exists(folder.Path() / "new.json"));
  EXPECT_EQ(std::distance(fs::directory_iterator(folder.Path()), fs::directory_iterator()), 4);
}

}  // namespace
