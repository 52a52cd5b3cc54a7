// tavoreg plan create, and wrong calls of tavoreg plan.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

#include "plan_program.h"
#include "source_folder.h"
#include "survey_files.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;

Words Texts(const json& list) {
  Words texts;
  for (const json& text : list)
    texts.push_back(text.get<std::string>());
  return texts;
}

std::filesystem::path ReferenceFolder() {
  return std::filesystem::path(TAVO_SOURCE_DIR) / "tests" / "reference";
}

Words ReferenceCases() {
  Words names;
  for (const auto& entry : std::filesystem::directory_iterator(ReferenceFolder())) {
    if (std::filesystem::exists(entry.path() / "expected.json") &&
        std::filesystem::exists(entry.path() / "plan.xml") &&
        std::filesystem::exists(entry.path() / "data.csv")) {
      names.push_back(entry.path().filename().string());
    }
  }
  std::sort(names.begin(), names.end());
  return names;
}

/// The option for a stage's sizes or probabilities; a matrix becomes a table in the folder.
Words SizeOption(const json& stage, const std::string& name, const std::filesystem::path& folder) {
  if (!stage.contains(name)) return {};
  const json& given = stage[name];
  if (given.contains("value")) return {"--" + name, NumberText(given["value"].get<double>())};
  if (given.contains("variable")) return {"--" + name, given["variable"].get<std::string>()};
  const std::string table = "table" + std::to_string(stage["number"].get<int>()) + ".csv";
  std::ofstream file(folder / table);
  for (const json& variable : given["variables"])
    file << variable.get<std::string>() << ',';
  file << (name == "population" ? "size" : "probability") << '\n';
  for (const json& row : given["rows"]) {
    for (const json& category : row["categories"])
      file << category.get<std::string>() << ',';
    file << NumberText(row["value"].get<double>()) << '\n';
  }
  return {"--" + name, table};
}

/// The options that make a plan like the one that `plan show` shows.
Words CreateOptions(const json& shown, const std::filesystem::path& folder) {
  const json& analysis = shown["analysis"];
  Words words = {"create", "--weight", analysis["weight"], "--srs", analysis["srs_estimator"]};
  for (const json& stage : analysis["stages"]) {
    words = words + Words{"--stage", "--estimator", stage["method"]};
    if (stage["label"] != "") words = words + Words{"--label", stage["label"]};
    for (const std::string& name : Texts(stage["strata"]))
      words = words + Words{"--strata", name};
    for (const std::string& name : Texts(stage["clusters"]))
      words = words + Words{"--cluster", name};
    words = words + SizeOption(stage, "population", folder) + SizeOption(stage, "probability", folder);
  }
  return words;
}

class PlanOfReference : public testing::TestWithParam<std::string> {};

TEST_P(PlanOfReference, CreateMakesAPlanThatGivesTheSameTables) {
  const TemporaryFolder folder;
  std::filesystem::copy(ReferenceFolder() / GetParam(), folder.Path(),
                        std::filesystem::copy_options::recursive);
  const auto tables = [&] {
    const ProgramRun run = RunProgram(
        {"run", "command.tvs", "--data", "data.csv", "--format", "json", "--threads", "1"}, folder.Path());
    EXPECT_EQ(run.exitStatus, 0) << run.messages;
    json all = json::array();
    const json document = run.Json();
    for (const json& command : document["commands"])
      all.push_back({command["tables"], command["messages"]});
    return all.dump();
  };
  const std::string before = tables();
  EXPECT_GT(before.size(), 500U);

  const ProgramRun shown = Plan({"show", "plan.xml", "--format", "json"}, folder.Path());
  ASSERT_EQ(shown.exitStatus, 0) << shown.messages;
  const Words options = CreateOptions(shown.Json(), folder.Path());
  const ProgramRun made = Plan(options + Words{"-o", "plan.xml", "--force"}, folder.Path());
  ASSERT_EQ(made.exitStatus, 0) << made.messages;
  EXPECT_THAT(ReadText(folder.Path() / "plan.xml"), HasSubstr("Application name=\"tavoreg\""));
  EXPECT_EQ(tables(), before);

  json again = Plan({"show", "plan.xml", "--format", "json"}, folder.Path()).Json();
  EXPECT_EQ(again, shown.Json());
}

INSTANTIATE_TEST_SUITE_P(Cases, PlanOfReference, testing::ValuesIn(ReferenceCases()),
                         [](const auto& each) { return "Case" + each.param; });

const Words kSimple = {"create", "--strata", "st", "--cluster", "psu", "--weight", "w", "--estimator", "wr"};

json Shown(const Words& create, const TemporaryFolder& folder) {
  const ProgramRun made = Plan(create + Words{"-o", "made.xml", "--force"}, folder.Path());
  EXPECT_EQ(made.exitStatus, 0) << made.messages;
  return Plan({"show", "made.xml", "--format", "json"}, folder.Path()).Json();
}

TEST(PlanCreate, TakesListsByCommasAndRepetitionAndOptionsInAnyOrder) {
  const TemporaryFolder folder;
  const json plan = Shown({"create", "--strata", "a,b", "--strata", "c", "--cluster=d", "--estimator", "wr",
                           "--stage", "--estimator", "equal-wor", "--weight", "w", "--population", "12",
                           "--label", "two & <2>", "--srs", "wr"},
                          folder);
  const json& stages = plan["analysis"]["stages"];
  ASSERT_EQ(stages.size(), 2U);
  EXPECT_EQ(stages[0]["strata"], json({"a", "b", "c"}));
  EXPECT_EQ(stages[0]["clusters"], json({"d"}));
  EXPECT_EQ(stages[0]["method"], "wr");
  EXPECT_EQ(stages[1]["label"], "two & <2>");
  EXPECT_EQ(stages[1]["method"], "equal_wor");
  EXPECT_EQ(stages[1]["population"]["value"], 12);
  EXPECT_EQ(plan["analysis"]["weight"], "w");
  EXPECT_EQ(plan["analysis"]["srs_estimator"], "wr");
}

TEST(PlanCreate, SizesAloneSayThatProbabilitiesAreEqual) {
  const TemporaryFolder folder;
  const json size = Shown({"create", "--cluster", "psu", "--weight", "w", "--population", "n"}, folder);
  EXPECT_EQ(size["analysis"]["stages"][0]["method"], "equal_wor");
  EXPECT_EQ(size["analysis"]["stages"][0]["population"]["variable"], "n");
  const json rate = Shown({"create", "--cluster", "psu", "--weight", "w", "--probability", "1"}, folder);
  EXPECT_EQ(rate["analysis"]["stages"][0]["probability"]["value"], 1);
}

TEST(PlanCreate, ReadsATableOfSizesOrProbabilities) {
  const TemporaryFolder folder;
  folder.Write("n.csv", "\xef\xbb\xbfst,SIZE,k\r\n 01 ,20,\"a,b\"\r\n2,30,\"say \"\"so\"\"\"\r\n\r\n");
  const json plan = Shown(
      {"create", "--strata", "st,k", "--cluster", "psu", "--weight", "w", "--population", "n.csv"}, folder);
  const json& matrix = plan["analysis"]["stages"][0]["population"];
  EXPECT_EQ(matrix["variables"], json({"st", "k"}));
  ASSERT_EQ(matrix["rows"].size(), 2U);
  EXPECT_EQ(matrix["rows"][0]["categories"], json({"01", "a,b"}));
  EXPECT_EQ(matrix["rows"][0]["value"], 20);
  EXPECT_EQ(matrix["rows"][1]["categories"], json({"2", "say \"so\""}));
}

TEST(PlanCreate, WithoutAFileThePlanGoesToStandardOutput) {
  const TemporaryFolder folder;
  const ProgramRun run = Plan(kSimple, folder.Path());
  EXPECT_EQ(run.exitStatus, 0);
  EXPECT_THAT(run.output, testing::StartsWith("<?xml"));
  EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
}

TEST(PlanCreate, ReplacesAFileOnlyWhenForced) {
  const TemporaryFolder folder;
  folder.Write("design.xml", "precious");
  const ProgramRun refused = Plan(kSimple + Words{"-o", "design.xml"}, folder.Path());
  EXPECT_EQ(refused.exitStatus, 2);
  EXPECT_THAT(refused.messages, HasSubstr("--force"));
  EXPECT_EQ(ReadText(folder.Path() / "design.xml"), "precious");
  EXPECT_EQ(Plan(kSimple + Words{"-o", "design.xml", "--force"}, folder.Path()).exitStatus, 0);
  EXPECT_THAT(ReadText(folder.Path() / "design.xml"), HasSubstr("AnalysisDesign"));
}

TEST(PlanCreate, AnUnwritableFileEndsWithThree) {
  const TemporaryFolder folder;
  EXPECT_EQ(Plan(kSimple + Words{"-o", "nowhere/design.xml"}, folder.Path()).exitStatus, 3);
  EXPECT_EQ(Plan(kSimple + Words{"-o", "."}, folder.Path()).exitStatus, 3);
}

TEST(PlanCreate, ImpossibleDesignsAreRefusedWithAReasonAndLeaveNoFile) {
  const TemporaryFolder folder;
  folder.Write("bad.csv", "st,size\n1,20\n1,30\n");
  folder.Write("short.csv", "st,size\n1\n");
  folder.Write("text.csv", "st,size\n1,many\n");
  folder.Write("half.csv", "st,size\n1,2.5\n");
  folder.Write("other.csv", "other,size\n1,2\n");
  folder.Write("nosize.csv", "st,n\n1,2\n");
  folder.Write("quote.csv", "st,size\n\"1,2\n");
  folder.Write("empty.csv", "");
  folder.Write("latin.csv", "st,size\n\xe4,2\n");
  const Words psu = {"--cluster", "psu", "--weight", "w"};
  const Words sized = {"--strata", "st", "--cluster", "psu", "--weight", "w", "--population"};
  const std::vector<std::pair<Words, const char*>> designs = {
      {{}, "no stage"},
      {{"--weight", "w"}, "no stage"},
      {{"--strata", "st", "--estimator", "wr"}, "no weight variable"},
      {psu, "--estimator"},
      {psu + Words{"--estimator", "wrr"}, "Did you mean wr?"},
      {psu + Words{"--estimator", "equal_wor"}, "--population or --probability"},
      {psu + Words{"--estimator", "wr", "--population", "7"}, "uses no population sizes"},
      {psu + Words{"--probability", "0.5", "--population", "7"}, "both --population and --probability"},
      {psu + Words{"--population", "0"}, "whole number above 0"},
      {psu + Words{"--population", "7.5"}, "whole number above 0"},
      {psu + Words{"--population", "-7"}, "whole number above 0"},
      {psu + Words{"--probability", "1.5"}, "above 0 and at most 1"},
      {psu + Words{"--population", "7 or 8"}, "cannot be the name"},
      {psu + Words{"--estimator", "wr", "--strata", "PSU"}, "more than once"},
      {psu + Words{"--estimator", "wr", "--strata", "w"}, "more than once"},
      {psu + Words{"--estimator", "wr", "--strata", "1a"}, "cannot be the name"},
      {psu + Words{"--estimator", "wr", "--srs", "both"}, "wr or wor"},
      {psu + Words{"--estimator", "wr", "--stage", "--weight", "v"}, "given twice"},
      {psu + Words{"--estimator", "wr", "--label", "bell \a"}, "no XML document can hold"},
      {{"--weight", "w", "--estimator", "unequal_wor"}, "no cluster variables"},
      {psu + Words{"--estimator", "wr", "--stage", "--cluster", "hh", "--estimator", "unequal_wor"},
       "first stage"},
      {{"--weight", "w", "--strata", "st", "--estimator", "wr", "--stage", "--cluster", "hh", "--estimator",
        "wr"},
       "before the last has no cluster"},
      {psu + Words{"--estimator", "wr", "--stage", "--cluster", "b", "--estimator", "wr", "--stage",
                   "--cluster", "c", "--estimator", "wr", "--stage", "--estimator", "wr"},
       "more than 3 stages"},
      {sized + Words{"nowhere.csv"}, "nowhere.csv"},
      {sized + Words{"bad.csv"}, "bad.csv:3:1: these categories have a value already"},
      {sized + Words{"short.csv"}, "short.csv:2:1: "},
      {sized + Words{"text.csv"}, "\"many\""},
      {sized + Words{"half.csv"}, "whole number above 0"},
      {sized + Words{"other.csv"}, "other"},
      {sized + Words{"nosize.csv"}, "no column is named size"},
      {sized + Words{"quote.csv"}, "quote.csv:2:1: "},
      {sized + Words{"empty.csv"}, "no column is named size"},
      {sized + Words{"latin.csv"}, "UTF-8"},
  };
  for (const auto& [design, reason] : designs) {
    const ProgramRun run = Plan(Words{"create", "-o", "design.xml"} + design, folder.Path());
    EXPECT_EQ(run.exitStatus, 2) << reason << run.messages;
    EXPECT_THAT(run.messages, HasSubstr(reason));
    EXPECT_EQ(run.output, "");
    EXPECT_FALSE(std::filesystem::exists(folder.Path() / "design.xml")) << reason;
  }
}

TEST(PlanCommand, WrongCallsEndWithTwoAndHelpWithNought) {
  const TemporaryFolder folder;
  for (const Words& words : std::vector<Words>{{},
                                               {"crate"},
                                               {"show"},
                                               {"show", "a", "b"},
                                               {"show", "nowhere.xml"},
                                               {"check", "plan.xml"},
                                               {"check", "--data", "d.csv"},
                                               {"create", "--stge"},
                                               {"create", "--strata"},
                                               {"create", "--strata", "a", "b"},
                                               {"show", "plan.xml", "--format", "html"}}) {
    const ProgramRun run = Plan(words, folder.Path());
    EXPECT_EQ(run.exitStatus, 2) << testing::PrintToString(words);
    EXPECT_NE(run.messages, "");
  }
  EXPECT_THAT(Plan({"crate"}, folder.Path()).messages, HasSubstr("did you mean create?"));
  for (const Words& words :
       std::vector<Words>{{"--help"}, {"create", "--help"}, {"show", "--help"}, {"check", "-h"}}) {
    const ProgramRun run = Plan(words, folder.Path());
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_THAT(run.output, HasSubstr("Usage: tavoreg plan"));
  }
  EXPECT_THAT(RunProgram({"--help"}, folder.Path()).output, HasSubstr("plan "));
}

}  // namespace
