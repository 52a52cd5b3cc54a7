// The program against results of an independent statistics package; see tests/reference/README.md.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "program.h"
#include "source_folder.h"

namespace {

using nlohmann::json;

std::filesystem::path ReferenceFolder() {
  return std::filesystem::path(TAVO_SOURCE_DIR) / "tests" / "reference";
}

std::vector<std::string> Cases() {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(ReferenceFolder())) {
    if (std::filesystem::exists(entry.path() / "expected.json"))
      names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::vector<std::string> Labels(const json& labels) {
  std::vector<std::string> texts;
  for (const json& label : labels)
    texts.push_back(label.is_string() ? label.get<std::string>() : label.dump());
  return texts;
}

/// The table that a check means: the only one of its id, the one of its title, or the n-th that has cells.
json FindTable(const json& document, const json& check) {
  json found;
  int filled = 0;
  int hits = 0;
  for (const json& table : document["commands"][check.value("command", std::size_t{0})]["tables"]) {
    if (table["id"] != check["table"]) continue;
    if (check.contains("title") && table["title"] != check["title"]) continue;
    filled += table["cells"].empty() ? 0 : 1;
    if (check.contains("nth") && (table["cells"].empty() || filled != check["nth"])) continue;
    found = table;
    ++hits;
  }
  return hits == 1 ? found : json();
}

void Compare(const json& document, const json& check) {
  const json table = FindTable(document, check);
  ASSERT_FALSE(table.is_null()) << "no single table for " << check.dump();
  const json cell = FindCellIn(table, Labels(check["row"]), Labels(check["column"]));
  ASSERT_FALSE(cell.is_null()) << "no single cell for " << check.dump();
  const json& value = cell["value"];
  if (check["value"].is_null()) {
    EXPECT_TRUE(value.is_null()) << check.dump() << " got " << value.dump();
  } else if (check["value"].is_string()) {
    EXPECT_EQ(value, check["value"]) << check.dump();
  } else {
    ASSERT_TRUE(value.is_number()) << check.dump() << " got " << value.dump();
    const double want = check["value"];
    const double tolerance = std::max(check.value("atol", 1e-9), check.value("rtol", 1e-6) * std::abs(want));
    EXPECT_NEAR(value.get<double>(), want, tolerance) << check.dump();
  }
}

std::vector<std::string> SplitAtCommas(const std::string& line) {
  std::vector<std::string> cells(1);
  for (const char c : line) {
    if (c == ',') {
      cells.emplace_back();
    } else if (c != '"' && c != '\r') {
      cells.back() += c;
    }
  }
  return cells;
}

/// A saved variable against its expected values by row; the reference files hold no commas inside cells.
void CompareSaved(const std::filesystem::path& file, const json& saved) {
  std::istringstream lines(ReadText(file));
  std::string line;
  ASSERT_TRUE(std::getline(lines, line));
  const std::vector<std::string> header = SplitAtCommas(line);
  const auto column = std::find(header.begin(), header.end(), saved["column"].get<std::string>());
  ASSERT_NE(column, header.end()) << saved["column"];
  int compared = 0;
  for (int row = 1; std::getline(lines, line); ++row) {
    const json want = saved["rows"].value(std::to_string(row), json("not compared"));
    const std::string got = SplitAtCommas(line)[static_cast<std::size_t>(column - header.begin())];
    if (want == "not compared") continue;
    ++compared;
    if (want.is_null()) {
      EXPECT_TRUE(got.empty() || got == ".") << row << ": " << got;
    } else if (want.is_string()) {
      EXPECT_EQ(got, want.get<std::string>()) << row;
    } else {
      const double value = want;
      EXPECT_NEAR(std::stod(got), value, std::max(1e-9, saved.value("rtol", 1e-6) * std::abs(value))) << row;
    }
  }
  EXPECT_EQ(compared, static_cast<int>(saved["rows"].size()));
}

class Reference : public testing::TestWithParam<std::string> {};

TEST_P(Reference, AllCellsAgree) {
  const std::filesystem::path folder = ReferenceFolder() / GetParam();
  const json expected = json::parse(ReadText(folder / "expected.json"));
  const TemporaryFolder scratch;
  std::vector<std::string> arguments = {"run", "command.tvs", "--data", "data.csv", "--format", "json"};
  if (expected.contains("saved")) {
    arguments.insert(arguments.end(), {"--save", (scratch.Path() / expected["saved"][0]["file"]).string()});
  }
  const ProgramRun run = RunProgram(arguments, folder);
  ASSERT_EQ(run.exitStatus, 0) << run.messages;
  const json document = run.Json();
  ASSERT_TRUE(document.is_object()) << run.output.substr(0, 500);
  EXPECT_EQ(document["commands"][0]["status"], expected["status"]);
  ASSERT_FALSE(expected["checks"].empty());
  for (const json& check : expected["checks"])
    Compare(document, check);
  for (const json& saved : expected.value("saved", json::array()))
    CompareSaved(scratch.Path() / saved["file"], saved);
}

TEST_P(Reference, TwoThreadsPrintWhatOnePrints) {
  const std::filesystem::path folder = ReferenceFolder() / GetParam();
  const auto tables = [&](const char* threads) {
    return RunProgram({"run", "command.tvs", "--data", "data.csv", "--format", "text", "--threads", threads},
                      folder)
        .output;
  };
  const std::string one = tables("1");
  EXPECT_GT(one.size(), 500U);
  EXPECT_EQ(Settled(one), Settled(tables("2")));
}

INSTANTIATE_TEST_SUITE_P(Cases, Reference, testing::ValuesIn(Cases()),
                         [](const auto& each) { return "Case" + each.param; });

}  // namespace
