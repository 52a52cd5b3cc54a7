// The manuals of plan files and of the command language: what they show is run.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "plan_program.h"
#include "source_folder.h"

namespace {

struct Block {
  std::string language;
  std::string file;  // the name that the fence gives it
  std::string text;
};

/// The fenced blocks of a page. A fence is ```language, or ```language file=NAME.
std::vector<Block> BlocksOf(const std::filesystem::path& page) {
  std::vector<Block> blocks;
  bool isInside = false;
  std::istringstream lines(ReadText(page));
  for (std::string line; std::getline(lines, line);) {
    if (!line.starts_with("```")) {
      if (isInside) blocks.back().text += line + '\n';
      continue;
    }
    isInside = !isInside;
    if (!isInside) continue;
    std::istringstream fence(line.substr(3));
    Block& block = blocks.emplace_back();
    fence >> block.language;
    for (std::string word; fence >> word;) {
      if (word.starts_with("file=")) block.file = word.substr(5);
    }
  }
  return blocks;
}

/// The words of a command line; quotes keep blanks together.
Words WordsOf(const std::string& line) {
  Words words;
  bool isQuoted = false, isOpen = false;
  for (const char c : line) {
    if (c == '"') isQuoted = !isQuoted;
    const bool isGap = c == ' ' && !isQuoted;
    if (!isGap && !isOpen) words.emplace_back();
    isOpen = !isGap;
    if (!isGap && c != '"') words.back() += c;
  }
  return words;
}

const std::vector<Block>& Manual() {
  static const std::vector<Block> blocks =
      BlocksOf(std::filesystem::path(TAVO_SOURCE_DIR) / "docs" / "plan-files.md");
  return blocks;
}

TEST(PlanManual, EveryCommandRuns) {
  const TemporaryFolder folder;
  for (const Block& block : Manual()) {
    if (!block.file.empty()) folder.Write(block.file, block.text);
  }
  int count = 0;
  for (const Block& block : Manual()) {
    if (block.language != "sh") continue;
    std::istringstream lines(block.text);
    for (std::string line; std::getline(lines, line); ++count) {
      Words words = WordsOf(line);
      ASSERT_GE(words.size(), 3U) << line;
      ASSERT_EQ(words[0] + " " + words[1], "tavoreg plan") << line;
      words.erase(words.begin());
      const ProgramRun run = RunProgram(words, folder.Path());
      EXPECT_EQ(run.exitStatus, 0) << line << '\n' << run.messages << run.output;
      EXPECT_EQ(run.messages, "") << line;
    }
  }
  EXPECT_GE(count, 10);
}

TEST(PlanManual, EveryPlanReads) {
  int count = 0;
  for (const Block& block : Manual()) {
    if (block.language != "xml") continue;
    ASSERT_TRUE(block.text.starts_with("<?xml")) << "every example is a whole document";
    const TemporaryFolder folder;
    folder.Write("plan.xml", block.text);
    const ProgramRun run = Plan({"show", "plan.xml", "--format", "json"}, folder.Path());
    EXPECT_EQ(run.exitStatus, 0) << block.text << run.messages;
    EXPECT_FALSE(run.Json()["analysis"]["stages"].empty()) << block.text;
    ++count;
  }
  EXPECT_GE(count, 5);
}

nlohmann::json Content(const std::string& file, const TemporaryFolder& folder) {
  nlohmann::json content = Plan({"show", file, "--format", "json"}, folder.Path()).Json();
  content.erase("file");
  return content;
}

TEST(PlanManual, ThePlansThatItMakesAreThoseThatItShows) {
  const TemporaryFolder folder;
  for (const Block& block : Manual()) {
    if (!block.file.empty()) folder.Write(block.file, block.text);
  }
  for (const auto& [made, shown] : {std::pair{"one.xml", "one-stage.xml"},
                                    {"two.xml", "two-stages.xml"},
                                    {"three.xml", "three-stages.xml"}}) {
    bool isMade = false;
    for (const Block& block : Manual()) {
      Words words = WordsOf(block.text.substr(0, block.text.find('\n')));
      if (std::find(words.begin(), words.end(), made) == words.end()) continue;
      words.erase(words.begin());
      isMade = RunProgram(words, folder.Path()).exitStatus == 0;
    }
    EXPECT_TRUE(isMade) << made;
    EXPECT_EQ(Content(made, folder), Content(shown, folder)) << made;
  }
}

TEST(CommandManual, EveryCommandRunsOnTheExampleSurvey) {
  const std::filesystem::path source = TAVO_SOURCE_DIR;
  const std::filesystem::path survey = source / "examples" / "nhanes";
  const TemporaryFolder folder;
  folder.Write("plan.xml", ReadText(survey / "plan.xml"));
  int count = 0;
  for (const Block& block : BlocksOf(source / "docs" / "command-language.md")) {
    if (block.language != "tavoreg") continue;
    folder.Write("command.tvs", block.text);
    const ProgramRun run =
        RunProgram({"run", "command.tvs", "--data", (survey / "nhanes.csv").string(), "--format", "json"},
                   folder.Path());
    EXPECT_EQ(run.exitStatus, 0) << block.text << run.messages;
    const nlohmann::json document = run.Json();
    ASSERT_TRUE(document.is_object()) << block.text;
    ASSERT_FALSE(document["commands"].empty()) << block.text;
    for (const nlohmann::json& command : document["commands"]) {
      EXPECT_EQ(command["status"], "ok") << block.text;
      EXPECT_FALSE(command["tables"].empty()) << block.text;
      for (const nlohmann::json& message : command["messages"])
        EXPECT_NE(message["level"], "error") << message["text"];
    }
    ++count;
  }
  EXPECT_GE(count, 9);
}

}  // namespace
