// The program against fits in 120 digits of problems that are hard for arithmetic in 16; see
// tests/reference/exact. docs/numerical-accuracy.md tells how many digits agree.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <map>

#include "program.h"
#include "source_folder.h"

namespace {

using nlohmann::json;

/// Of a standard error relative to itself; of an estimate relative to itself or its standard error and of an
/// F relative to itself or 1, whichever is larger: an estimate near 0 can't be known better than its terms,
/// and needn't be.
constexpr long double kGoal = 1e-9L;

/// What misses the goal, and why. A problem that meets it has to leave the list.
const std::map<std::string, std::string>& KnownProblems() {
  static const std::string kParallel =
      "of rows whose contrasts are correlated by more than 1 - 5e-13 a joint test keeps the first";
  static const std::string kOutlier =
      "beside one huge value the others look constant, and their column's information counts as singular";
  static const std::string kCentre =
      "a column that isn't centred looks dependent beside the factor's columns";
  static const std::string kReference = "the logits of a rare reference cancel in the iteration";
  static const std::map<std::string, std::string> kKnown = {
      {"collinear: two columns 1e-6 apart", kParallel},
      {"collinear: two columns 1e-7 apart", kParallel},
      {"powers: quartic in a calendar year", kParallel},
      {"outliers: one value of 1e8", kOutlier},
      {"interactions: nested slopes, offset of 1e6", kCentre},
      {"no_intercept: no intercept, offset of 1e6 beside a factor", kCentre},
      {"rare: reference of three categories with a share of 1e-10", kReference},
      {"rare: reference of three categories with a share of 1e-4", kReference},
      {"rare: reference of three categories with a share of 1e-8", kReference},
  };
  return kKnown;
}

struct Problem {
  std::string family;
  std::size_t command = 0;
  std::string name;  // as the results call it
  std::string Key() const { return family + ": " + name; }
};

std::filesystem::path ExactFolder() {
  return std::filesystem::path(TAVO_SOURCE_DIR) / "tests" / "reference" / "exact";
}

const json& ExactResults(const std::string& family) {
  static std::map<std::string, json> read;
  json& results = read[family];
  if (results.is_null()) results = json::parse(ReadText(ExactFolder() / family / "exact.json"));
  return results;
}

std::vector<Problem> Problems() {
  std::vector<std::string> families;
  for (const auto& entry : std::filesystem::directory_iterator(ExactFolder())) {
    if (std::filesystem::exists(entry.path() / "exact.json"))
      families.push_back(entry.path().filename().string());
  }
  std::sort(families.begin(), families.end());
  std::vector<Problem> problems;
  for (const std::string& family : families) {
    const json& commands = ExactResults(family)["commands"];
    for (std::size_t c = 0; c < commands.size(); ++c)
      problems.push_back({family, c, commands[c]["name"].get<std::string>()});
  }
  return problems;
}

/// What the program says to the command file of a family; it runs once.
const json& ProgramResults(const std::string& family) {
  static std::map<std::string, json> run;
  json& results = run[family];
  if (results.is_null()) {
    results =
        RunProgram({"run", "command.tvs", "--data", "data.csv", "--format", "json"}, ExactFolder() / family)
            .Json();
  }
  return results;
}

/// The value of the one cell that a check means: in the only table of its id, or the n-th of them. Null when
/// there is none.
json CellValue(const json& tables, const json& check) {
  int filled = 0;
  for (const json& table : tables) {
    if (table["id"] != check["table"] || table["cells"].empty()) continue;
    if (++filled < check.value("nth", 1)) continue;
    const json cell =
        FindCellIn(table, check["row"].get<std::vector<std::string>>(), {check["column"].get<std::string>()});
    return cell.is_null() ? json() : cell["value"];
  }
  return {};
}

long double Number(const json& digits) {
  return std::strtold(digits.get<std::string>().c_str(), nullptr);
}

/// Infinite when the program has no number there.
long double ErrorOf(const json& value, const json& check) {
  if (!value.is_number() || !std::isfinite(value.get<double>()))
    return std::numeric_limits<long double>::infinity();
  const long double want = Number(check["value"]);
  const long double scale = check.contains("scale") ? Number(check["scale"]) : std::abs(want);
  return std::abs(static_cast<long double>(value.get<double>()) - want) / scale;
}

class Exact : public testing::TestWithParam<Problem> {};

TEST_P(Exact, ResultsAgreeToNineDigits) {
  const Problem& problem = GetParam();
  const json& run = ProgramResults(problem.family);
  ASSERT_TRUE(run.is_object()) << "no results";
  ASSERT_EQ(run["commands"].size(), ExactResults(problem.family)["commands"].size());
  const json& tables = run["commands"][problem.command]["tables"];
  const json& checks = ExactResults(problem.family)["commands"][problem.command]["checks"];
  ASSERT_FALSE(checks.empty());

  long double worst = 0;
  std::string misses;
  for (const json& check : checks) {
    const json value = CellValue(tables, check);
    const long double error = ErrorOf(value, check);
    worst = std::max(worst, error);
    const bool isMet = check.value("exact", false) ? error == 0 : error <= kGoal;
    if (!isMet) misses += check.dump() + " got " + value.dump() + "\n";
  }
  RecordProperty("digits", std::to_string(static_cast<double>(-std::log10(std::max(worst, 1e-18L)))));
  const auto known = KnownProblems().find(problem.Key());
  if (known == KnownProblems().end()) {
    EXPECT_EQ(misses, "") << problem.Key();
  } else {
    EXPECT_NE(misses, "") << problem.Key() << " meets the goal: take it off the list";
  }
}

TEST(ExactList, NamesProblemsThatThereAre) {
  std::vector<std::string> keys;
  for (const Problem& problem : Problems())
    keys.push_back(problem.Key());
  for (const auto& [key, reason] : KnownProblems())
    EXPECT_TRUE(std::find(keys.begin(), keys.end(), key) != keys.end()) << key;
}

INSTANTIATE_TEST_SUITE_P(Problems, Exact, testing::ValuesIn(Problems()), [](const auto& each) {
  std::string name;
  for (const char c : each.param.Key())
    name += std::isalnum(static_cast<unsigned char>(c)) != 0 ? c : '_';
  return name;
});

}  // namespace
