// What is printed: text to the letter, Markdown and HTML by their structure. TAVO_RECORD=1 in the environment
// writes the recorded files anew; look at the difference before you commit it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "bad_input.h"
#include "markup.h"
#include "source_folder.h"

namespace {

using testing::HasSubstr;

namespace fs = std::filesystem;

fs::path Source() {
  return TAVO_SOURCE_DIR;
}

ProgramRun RunExample(std::vector<std::string> more, const fs::path& folder = Source()) {
  const fs::path example = Source() / "examples" / "nhanes";
  more.insert(more.begin(),
              {"run", (example / "cholesterol.tvs").string(), "--data", (example / "nhanes.csv").string()});
  return RunProgram(more, folder);
}

std::string ExampleText() {
  return RunExample({"--format", "text"}).output;
}

void ExpectRecorded(const std::string& text, const std::string& name) {
  const fs::path path = Source() / "tests" / "end_to_end" / "expected" / name;
  if (std::getenv("TAVO_RECORD") != nullptr) std::ofstream(path, std::ios::binary) << text;
  EXPECT_EQ(text, ReadText(path));
}

std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);)
    lines.push_back(line);
  return lines;
}

/// The names and the titles of the tables of an analysis.
std::vector<std::string> TableTexts(const nlohmann::json& document, const char* member) {
  std::vector<std::string> texts;
  for (const auto& table : document["commands"][0]["tables"])
    texts.push_back(table[member]);
  return texts;
}

TEST(TheExample, PrintsWhatIsRecorded) {
  const ProgramRun run = RunExample({});
  EXPECT_EQ(run.exitStatus, 0);
  EXPECT_EQ(run.messages, "");
  ExpectRecorded(Settled(run.output), "nhanes_cholesterol.txt");
}

TEST(TheExample, IsDescribedAsRecorded) {
  const ProgramRun run = RunProgram({"describe", "examples/nhanes/nhanes.csv"}, Source());
  EXPECT_EQ(run.exitStatus, 0);
  ExpectRecorded(run.output, "nhanes_describe.txt");
}

/// The code blocks of the README, without their fences.
std::vector<std::vector<std::string>> ReadmeBlocks() {
  std::vector<std::vector<std::string>> blocks;
  bool isInside = false;
  for (const std::string& line : LinesOf(ReadText(Source() / "README.md"))) {
    if (line.starts_with("```")) {
      isInside = !isInside;
      if (isInside) blocks.emplace_back();
    } else if (isInside) {
      blocks.back().push_back(line);
    }
  }
  return blocks;
}

TEST(TheReadme, ShowsLinesOfTheExamplesOutput) {
  const auto blocks = ReadmeBlocks();
  const auto shown = std::find_if(blocks.begin(), blocks.end(), [](const auto& block) {
    return std::find(block.begin(), block.end(), "Parameter Estimates") != block.end();
  });
  ASSERT_NE(shown, blocks.end());
  EXPECT_GT(shown->size(), 20U);
  const std::vector<std::string> printed = LinesOf(ExampleText());
  auto place = printed.begin();
  for (const std::string& line : *shown) {
    if (line.empty()) continue;
    place = std::find(place, printed.end(), line);
    ASSERT_NE(place, printed.end()) << "not printed, or not there: " << line;
    ++place;
  }
}

TEST(TheReadme, ShowsTheExamplesCommand) {
  const auto blocks = ReadmeBlocks();
  const auto command = LinesOf(ReadText(Source() / "examples" / "nhanes" / "cholesterol.tvs"));
  EXPECT_THAT(blocks, testing::Contains(command));
}

TEST(OutputFiles, HaveTheFormatOfTheirEnding) {
  const TemporaryFolder folder;
  for (const auto& [name, format] : std::vector<std::pair<std::string, std::string>>{{"a.txt", "text"},
                                                                                     {"a.md", "markdown"},
                                                                                     {"a.html", "html"},
                                                                                     {"a.HTM", "html"},
                                                                                     {"a.json", "json"}}) {
    const ProgramRun run = RunExample({"--output", name}, folder.Path());
    EXPECT_EQ(run.exitStatus, 0) << run.messages;
    EXPECT_EQ(run.output, "");
    const std::string written = ReadText(folder.Path() / name);
    const std::string printed = RunExample({"--format", format}, folder.Path()).output;
    EXPECT_GT(written.size(), 3000U);
    if (format == "json") {
      EXPECT_EQ(nlohmann::json::parse(written)["commands"][0]["tables"],
                nlohmann::json::parse(printed)["commands"][0]["tables"]);
    } else {
      EXPECT_EQ(Settled(written).substr(0, 20), Settled(printed).substr(0, 20)) << name;
      EXPECT_EQ(LinesOf(written).size(), LinesOf(printed).size()) << name;
    }
  }
}

TEST(OutputFiles, TakeTheFormatOfTheOptionBeforeThatOfTheirEnding) {
  const TemporaryFolder folder;
  EXPECT_EQ(RunExample({"--output", "a.txt", "--format", "json"}, folder.Path()).exitStatus, 0);
  EXPECT_TRUE(nlohmann::json::parse(ReadText(folder.Path() / "a.txt")).contains("commands"));
}

/// An analysis with every table, labels that are full of marks, two logits, a domain and a hidden intercept.
class MarkedUp : public testing::Test {
 protected:
  MarkedUp() {
    DataFile data = SurveyData();
    std::replace(data.names.begin(), data.names.end(), std::string("g"), std::string("<b> & \\\"|*_`"));
    fFolder.Write("data.csv", Quoted(data).Text());
    fFolder.Write("plan.xml", SimplePlan());
    fFolder.Write("command.tvs",
                  "TAVOREG y3 BY V_b__________ b WITH x\n  /PLAN FILE='plan.xml'\n  /INTERCEPT SHOW=NO\n"
                  "  /DOMAIN VARIABLE=d(2)\n  /STATISTICS PARAMETER SE TTEST CINTERVAL EXP DEFF DEFFSQRT\n"
                  "  /PRINT SAMPLEINFO VARIABLEINFO SUMMARY HISTORY COVB CORB CLASSTABLE.");
  }

  static DataFile Quoted(DataFile data) {
    for (std::string& name : data.names) {
      std::string quoted = "\"";
      for (const char c : name)
        quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
      name = quoted + '"';
    }
    return data;
  }
  std::string Print(const std::string& format) const {
    const ProgramRun run =
        RunProgram({"run", "command.tvs", "--data", "data.csv", "--format", format}, fFolder.Path());
    EXPECT_EQ(run.exitStatus, 0) << run.messages;
    return run.output;
  }
  nlohmann::json Document() const { return nlohmann::json::parse(Print("json")); }

 private:
  TemporaryFolder fFolder;
};

TEST_F(MarkedUp, HtmlIsBalancedAndItsRowsFillTheirTables) {
  const HtmlPage page = ReadHtml(Print("html"));
  EXPECT_EQ(page.fault, "");
  EXPECT_THAT(page.text, HasSubstr("&lt;b&gt; &amp; \\"));
  std::vector<std::string> names;
  for (const HtmlTable& table : page.tables) {
    names.push_back(table.name);
    ASSERT_FALSE(table.rowWidths.empty()) << table.name;
    const int width = table.rowWidths.back().at(0);
    EXPECT_GE(width, 2) << table.name;
    for (const auto& part : table.rowWidths)
      EXPECT_THAT(part, testing::Each(width)) << table.name;
  }
  EXPECT_GE(names.size(), 9U);
  EXPECT_EQ(names, TableTexts(Document(), "id"));
}

TEST_F(MarkedUp, MarkdownRowsHaveTheCellsOfTheirHeader) {
  const std::string text = Print("markdown");
  std::vector<std::string> titles;
  for (const MarkdownTable& table : ReadMarkdownTables(text)) {
    titles.push_back(table.title);
    ASSERT_GE(table.cells.size(), 3U) << table.title;
    EXPECT_THAT(table.cells, testing::Each(table.cells[0])) << table.title;
  }
  EXPECT_EQ(titles, TableTexts(Document(), "title"));
  EXPECT_THAT(text, testing::Not(HasSubstr("<b>")));
}

TEST_F(MarkedUp, TextKeepsToItsWidthAndShowsEachTitle) {
  const std::string text = Print("text");
  for (const std::string& title : TableTexts(Document(), "title"))
    EXPECT_THAT(text, HasSubstr("\n" + title + "\n"));
  for (const std::string& line : LinesOf(text)) {
    const auto characters = std::count_if(
        line.begin(), line.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; });
    EXPECT_LE(characters, 120) << line;
  }
}

TEST_F(MarkedUp, EveryNumberOfTheDocumentIsPrinted) {
  const std::string text = Print("text");
  const std::string html = Print("html");
  int numbers = 0;
  const auto tables = Document()["commands"][0]["tables"];
  for (const auto& table : tables) {
    for (const auto& cell : table["cells"]) {
      const std::string printed = cell["text"];
      if (!cell["value"].is_number() || printed.empty()) continue;
      ++numbers;
      EXPECT_THAT(text, HasSubstr(printed)) << table["id"];
      EXPECT_THAT(html, HasSubstr(printed.starts_with("<") ? "&lt;" + printed.substr(1) : printed))
          << table["id"];
    }
  }
  EXPECT_GT(numbers, 150);
}

class Format : public testing::TestWithParam<std::string> {};

TEST_P(Format, CarriesTheMessagesWithTheirPlace) {
  const TemporaryFolder folder;
  folder.Write("data.csv", SurveyData().Text());
  folder.Write("plan.xml", SimplePlan());
  folder.Write("command.tvs", "TAVOREG y WITH nix\n  /PLAN FILE='plan.xml'.");
  const ProgramRun run =
      RunProgram({"run", "command.tvs", "--data", "data.csv", "--format", GetParam()}, folder.Path());
  EXPECT_EQ(run.exitStatus, 1);
  EXPECT_THAT(run.output, HasSubstr("The data have no variable nix"));
  EXPECT_THAT(run.output, HasSubstr("command.tvs:1:16"));
  if (GetParam() == "html") {
    EXPECT_EQ(ReadHtml(run.output).fault, "");
  }
}

INSTANTIATE_TEST_SUITE_P(Formats, Format, testing::Values("text", "markdown", "html", "json"),
                         [](const auto& each) { return each.param; });

}  // namespace
