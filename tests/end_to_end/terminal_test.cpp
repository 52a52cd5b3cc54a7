// What a person at a terminal sees, where output and messages arrive at the same place.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "bad_input.h"

namespace {

using testing::HasSubstr;
using testing::Not;

/// How often a text holds another.
int CountOf(const std::string& text, const std::string& part) {
  int count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size()))
    ++count;
  return count;
}

class Terminal : public testing::Test {
 protected:
  Terminal() {
    fFolder.Write("plan.xml", SimplePlan());
    fFolder.Write("data.csv", SurveyData().Text());
    // The first command ends with an error that points at its place, the second runs.
    fFolder.Write("command.tvs", "TAVOREG y WITH nix\n  /PLAN FILE='plan.xml'.\n" + kSimple + ".\n");
  }
  std::vector<std::string> Run(std::vector<std::string> more = {}) const {
    more.insert(more.begin(), {"run", "command.tvs", "--data", "data.csv", "--no-progress"});
    return more;
  }
  const std::filesystem::path& Folder() const { return fFolder.Path(); }

  TemporaryFolder fFolder;
};

TEST_F(Terminal, ShowsEachMessageOnce) {
  const ProgramRun run = RunOnTerminal(Run(), Folder());
  EXPECT_EQ(run.exitStatus, 1);
  EXPECT_EQ(CountOf(run.output, "at command.tvs:1:16"), 1) << run.output;
  EXPECT_EQ(CountOf(run.output, "The data have no variable nix"), 1) << run.output;
  EXPECT_EQ(CountOf(run.output, "Error: "), 0) << run.output;
  EXPECT_THAT(run.output, HasSubstr("\n\nTAVOREG, ended with an error  ("));
  EXPECT_THAT(run.output, HasSubstr("\n1 error: see above.\n"));
}

TEST_F(Terminal, ShowsTheSameTablesAsAFileHolds) {
  const ProgramRun onTerminal = RunOnTerminal(Run(), Folder());
  const ProgramRun toFiles = RunProgram(Run(), Folder());
  const std::string tables = "Sample Design Information";
  ASSERT_THAT(toFiles.output, HasSubstr(tables));
  ASSERT_THAT(onTerminal.output, HasSubstr(tables));
  EXPECT_EQ(onTerminal.output.substr(onTerminal.output.find(tables)),
            toFiles.output.substr(toFiles.output.find(tables)));
}

TEST_F(Terminal, LeavesNothingOutOfFilesAndPipes) {
  const ProgramRun run = RunProgram(Run(), Folder());
  EXPECT_EQ(CountOf(run.messages, "at command.tvs:1:16"), 1);
  EXPECT_EQ(CountOf(run.output, "at command.tvs:1:16"), 1);
  EXPECT_THAT(run.output, Not(HasSubstr("see above")));
  EXPECT_EQ(RunOnTerminal(Run({"--output", "out.txt"}), Folder()).exitStatus, 1);
  const std::string written = ReadText(Folder() / "out.txt");
  EXPECT_EQ(CountOf(written, "at command.tvs:1:16"), 1);
  EXPECT_THAT(written, Not(HasSubstr("see above")));
}

TEST_F(Terminal, GetsDocumentsForOtherReadersWhole) {
  const ProgramRun run = RunOnTerminal(Run({"--format", "markdown"}), Folder());
  EXPECT_EQ(CountOf(run.output, "> **Error:**"), 1) << run.output;
}

TEST_F(Terminal, ShowsWhatWasWrongWithTheDataOnceAndNothingElse) {
  const ProgramRun run =
      RunOnTerminal({"run", "command.tvs", "--data", "nix.csv", "--no-progress"}, Folder());
  EXPECT_EQ(run.exitStatus, 2);
  EXPECT_EQ(run.output, "error: nix.csv: the file can't be read: No such file or directory\n");
}

struct Nameless {
  const char* name;
  const char* command;
};

class CommandWithoutAName : public testing::TestWithParam<Nameless> {};

TEST_P(CommandWithoutAName, HasATitleAReaderUnderstands) {
  const TemporaryFolder folder;
  folder.Write("data.csv", SurveyData().Text());
  folder.Write("command.tvs", GetParam().command);
  const ProgramRun run = RunProgram({"run", "command.tvs", "--data", "data.csv"}, folder.Path());
  EXPECT_EQ(run.exitStatus, 1);
  EXPECT_THAT(run.output, testing::StartsWith("Command without a name, ended with an error  ("));
  EXPECT_THAT(run.output, HasSubstr("A command must begin with its name"));
}

INSTANTIATE_TEST_SUITE_P(Commands, CommandWithoutAName,
                         testing::Values(Nameless{"Slash", "/PLAN FILE='plan.xml'.\n"},
                                         Nameless{"Literal", "\"x\".\n"}, Nameless{"Number", "12 y.\n"}),
                         [](const auto& each) { return std::string(each.param.name); });

}  // namespace
