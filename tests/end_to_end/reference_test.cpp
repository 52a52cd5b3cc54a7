// The program against results of an independent statistics package; see tests/reference/README.md.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <regex>

#include "program.h"

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

void Compare(const json& document, const json& check) {
  const json cell = FindCell(document, check["table"], Labels(check["row"]), Labels(check["column"]));
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

class Reference : public testing::TestWithParam<std::string> {};

TEST_P(Reference, AllCellsAgree) {
  const std::filesystem::path folder = ReferenceFolder() / GetParam();
  const json expected = json::parse(ReadText(folder / "expected.json"));
  const ProgramRun run = RunProgram({"run", "command.tvs", "--data", "data.csv", "--format", "json"}, folder);
  ASSERT_EQ(run.exitStatus, 0) << run.messages;
  const json document = run.Json();
  ASSERT_TRUE(document.is_object()) << run.output.substr(0, 500);
  EXPECT_EQ(document["commands"][0]["status"], expected["status"]);
  ASSERT_FALSE(expected["checks"].empty());
  for (const json& check : expected["checks"])
    Compare(document, check);
}

TEST_P(Reference, TwoThreadsPrintWhatOnePrints) {
  const std::filesystem::path folder = ReferenceFolder() / GetParam();
  const auto tables = [&](const char* threads) {
    return RunProgram({"run", "command.tvs", "--data", "data.csv", "--format", "text", "--threads", threads},
                      folder)
        .output;
  };
  // The changes of the last iteration are noise of rounding, and so differ with the order of the sums.
  const auto settled = [](const std::string& text) {
    static const std::regex lastChange("change of the log-likelihood is[^;]*;");
    return std::regex_replace(WithoutSeconds(text), lastChange, "change of the log-likelihood;");
  };
  const std::string one = tables("1");
  EXPECT_GT(one.size(), 500U);
  EXPECT_EQ(settled(one), settled(tables("2")));
}

INSTANTIATE_TEST_SUITE_P(Cases, Reference, testing::ValuesIn(Cases()),
                         [](const auto& each) { return "Case" + each.param; });

}  // namespace
