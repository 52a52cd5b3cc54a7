// The example of hypothesis tests, with everything that it prints.

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

#include "program.h"
#include "source_folder.h"

namespace {

std::filesystem::path Source(const std::string& path) {
  return std::filesystem::path(TAVO_SOURCE_DIR) / path;
}

std::string PrintedExample() {
  const ProgramRun run = RunProgram({"run", "hypotheses.tvs", "--data", "nhanes.csv", "--format", "text"},
                                    Source("examples/nhanes"));
  EXPECT_EQ(run.exitStatus, 0) << run.messages;
  return Settled(run.output);
}

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines(1);
  for (const char c : text) {
    if (c == '\n') {
      lines.emplace_back();
    } else {
      lines.back() += c;
    }
  }
  return lines;
}

TEST(HypothesesExample, PrintsTheRecordedTables) {
  const std::string printed = PrintedExample();
  const std::filesystem::path recorded = Source("tests/end_to_end/expected/nhanes_hypotheses.txt");
  if (std::getenv("TAVO_RECORD") != nullptr) std::ofstream(recorded, std::ios::binary) << printed;
  EXPECT_EQ(printed, ReadText(recorded));
}

TEST(HypothesesExample, TheDocumentedTablesAreThoseThatItPrints) {
  const std::vector<std::string> printed = Lines(PrintedExample());
  bool inBlock = false;
  std::size_t at = 0;
  int compared = 0;
  for (const std::string& line : Lines(ReadText(Source("docs/hypothesis-tests.md")))) {
    if (line.starts_with("```")) {
      inBlock = line == "```text";
      continue;
    }
    if (!inBlock || line.empty()) continue;
    while (at < printed.size() && printed[at] != line)
      ++at;
    ASSERT_LT(at, printed.size()) << "not printed, or not in this order: " << line;
    ++compared;
  }
  EXPECT_GT(compared, 40);
}

TEST(HypothesesExample, TheDocumentedCommandIsTheExample) {
  const std::string page = ReadText(Source("docs/hypothesis-tests.md"));
  EXPECT_NE(page.find(ReadText(Source("examples/nhanes/hypotheses.tvs"))), std::string::npos);
}

}  // namespace
