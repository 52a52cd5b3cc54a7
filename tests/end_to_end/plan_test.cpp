// tavoreg plan: making, showing and checking plan files.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

#include "program.h"
#include "survey_files.h"

namespace {

using nlohmann::json;
using testing::AnyOf;
using testing::HasSubstr;
using testing::Not;
using Words = std::vector<std::string>;

Words operator+(Words words, const Words& more) {
  words.insert(words.end(), more.begin(), more.end());
  return words;
}

Words Texts(const json& list) {
  Words texts;
  for (const json& text : list)
    texts.push_back(text.get<std::string>());
  return texts;
}

ProgramRun Plan(const Words& words, const std::filesystem::path& folder) {
  return RunProgram(Words{"plan"} + words, folder);
}

// ---- create ----

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

// ---- show ----

TEST(PlanShow, TellsBothSectionsInWords) {
  const TemporaryFolder folder;
  folder.Write(
      "plan.xml",
      "<VORNTessel><SampleDesign><SampleStage label=\"Schools\" stageNumber=\"1\" "
      "selectionMethod=\"pps_systematic\"><ClusterVarList><Variable name=\"school\"/></ClusterVarList>"
      "<InputSampleRate><SingleValue value=\"0.1\"/><MinSize><SingleValue value=\"2\"/></MinSize>"
      "</InputSampleRate><MOS fromData=\"no\"><Variable name=\"pupils\"/></MOS><Index><Variable "
      "name=\"i\"/></Index></SampleStage><Weight><Variable name=\"sw\"/></Weight></SampleDesign>"
      "<AnalysisDesign><AnalysisStage stageNumber=\"1\" estimationMethod=\"equal_wor\"><StrataVarList>"
      "<Variable name=\"st\"/></StrataVarList><PopulationSize><Matrix numberOfValues=\"1\"><MatrixVarList>"
      "<Variable name=\"st\"/></MatrixVarList><MatrixValue sizeValue=\"20\"><Category value=\"north\"/>"
      "</MatrixValue></Matrix></PopulationSize></AnalysisStage><Weight><Variable name=\"aw\"/></Weight>"
      "</AnalysisDesign></VORNTessel>");
  const ProgramRun text = Plan({"show", "plan.xml"}, folder.Path());
  EXPECT_EQ(text.exitStatus, 0) << text.messages;
  EXPECT_EQ(text.output,
            "Plan file                    plan.xml\n"
            "\n"
            "Analysis\n"
            "  Weight                     aw\n"
            "  Design effects compare to  simple random sampling without replacement\n"
            "  Stage 1\n"
            "    Estimator                without replacement, equal probabilities\n"
            "    Strata                   st\n"
            "    Clusters                 -\n"
            "    Population size          matrix of 1 values by st\n"
            "      north                  20\n"
            "\n"
            "Sample\n"
            "  Weight                     sw\n"
            "  Measure of size            pupils\n"
            "  Stage 1                    Schools\n"
            "    Selection                proportional to size, systematic\n"
            "    Strata                   -\n"
            "    Clusters                 school\n"
            "    Sampling rate            0.1\n"
            "    Smallest sample size     2\n"
            "    Writes unit numbers to   i\n");
  const json document = Plan({"show", "plan.xml", "--format", "json"}, folder.Path()).Json();
  EXPECT_EQ(document["faults"], json::array());
  EXPECT_EQ(document["sample"]["measure_of_size"]["variable"], "pupils");
  EXPECT_EQ(document["sample"]["stages"][0]["rate"]["minimum"], 2);
  EXPECT_EQ(document["sample"]["stages"][0]["index"], "i");
  EXPECT_EQ(document["analysis"]["stages"][0]["population"]["rows"][0]["value"], 20);
}

TEST(PlanShow, ShowsAFaultyPlanAndSaysWhatIsWrong) {
  const TemporaryFolder folder;
  folder.Write("plan.xml", SizedPlan(SizeValue("IncProb", "1.5")));
  const ProgramRun run = Plan({"show", "plan.xml"}, folder.Path());
  EXPECT_EQ(run.exitStatus, 1);
  EXPECT_THAT(run.output, HasSubstr("Inclusion probability    1.5"));
  EXPECT_THAT(run.messages, HasSubstr("above 0 and at most 1"));
  folder.Write("plan.xml", "<VORNTessel/>");
  const ProgramRun empty = Plan({"show", "plan.xml", "--format", "json"}, folder.Path());
  EXPECT_EQ(empty.exitStatus, 1);
  EXPECT_EQ(empty.Json()["faults"].size(), 1U);
  folder.Write("plan.xml", "<VORNTessel>");
  EXPECT_EQ(Plan({"show", "plan.xml"}, folder.Path()).exitStatus, 2);
}

TEST(PlanShow, TextsOfAPlanCannotSteerATerminal) {
  const TemporaryFolder folder;
  folder.Write("plan.xml",
               "<p><AnalysisDesign><AnalysisStage label=\"a&#xA;b&#x9B;2J\"/></AnalysisDesign></p>");
  EXPECT_THAT(Plan({"show", "plan.xml"}, folder.Path()).output, Not(HasSubstr("\xc2\x9b")));
}

// ---- check ----

struct Checked {
  int exitStatus;
  json report;
  std::string messages;
};

Checked Check(const std::string& plan, const DataFile& data) {
  const TemporaryFolder folder;
  folder.Write("plan.xml", plan);
  folder.Write("data.csv", data.Text());
  const ProgramRun run = Plan({"check", "plan.xml", "--data", "data.csv", "--format", "json"}, folder.Path());
  return {run.exitStatus, run.Json(), run.messages};
}

TEST(PlanCheck, CountsStrataAndUnitsOfEachStage) {
  const Checked run = Check(PlanText({{"wr", {"st"}, {"psu"}}, {"wr", {"g"}, {}}}), SurveyData());
  EXPECT_EQ(run.exitStatus, 0) << run.report.dump(1);
  EXPECT_EQ(run.report["cases"], 240);
  EXPECT_EQ(run.report["cases_in_sample"], 240);
  EXPECT_EQ(run.report["findings"], json::array());
  const json& stages = run.report["stages"];
  ASSERT_EQ(stages.size(), 2U);
  EXPECT_EQ(stages[0]["strata"], 4);
  EXPECT_EQ(stages[0]["units"], 20);
  EXPECT_EQ(stages[0]["fewest_units"], 5);
  EXPECT_EQ(stages[0]["most_units"], 5);
  EXPECT_EQ(stages[1]["units"], 240) << "without clusters the cases are the units";
  EXPECT_LE(stages[1]["strata"].get<int>(), 60);
  EXPECT_GT(stages[1]["strata"].get<int>(), 40);
}

TEST(PlanCheck, TellsTheSameAsText) {
  const TemporaryFolder folder;
  folder.Write("plan.xml", SimplePlan());
  folder.Write("data.csv", SurveyData().Fill("w", [](std::size_t i) { return i == 3 ? "" : "1"; }).Text());
  const ProgramRun run = Plan({"check", "plan.xml", "--data", "data.csv"}, folder.Path());
  EXPECT_EQ(run.exitStatus, 1);
  EXPECT_EQ(run.output,
            "Plan file                    plan.xml\n"
            "Data file                    data.csv\n"
            "Cases                        240\n"
            "  in the sample              239\n"
            "  weight missing             1\n"
            "  weight 0                   0\n"
            "  weight negative            0\n"
            "  stratum or cluster missing 0\n"
            "\n"
            "Stage 1\n"
            "  Estimator                  with replacement\n"
            "  Strata                     4\n"
            "  Units                      20\n"
            "  Units of a stratum         5 to 5\n"
            "  Strata with a single unit  0\n"
            "\n"
            "biases results: 1 case without a weight: a run leaves them out.\n");
}

std::string Matrix(const std::string& element, const std::string& variable,
                   const std::vector<std::pair<std::string, std::string>>& rows) {
  std::string text = "<" + element + "><Matrix numberOfValues=\"" + std::to_string(rows.size()) +
                     "\"><MatrixVarList><Variable name=\"" + variable + "\"/></MatrixVarList>";
  for (const auto& [category, value] : rows) {
    text += "<MatrixValue sizeValue=\"" + value + "\"><Category value=\"" + category + "\"/></MatrixValue>";
  }
  return text + "</Matrix></" + element + ">";
}

struct FaultCase {
  const char* what;
  std::string plan;
  std::function<void(DataFile&)> spoil;
  const char* effect;
  std::string text;     // in the only finding
  std::string example;  // the first one
};

TEST(PlanCheck, EachFaultIsFound) {
  const auto nothing = [](DataFile&) {};
  const std::string sized = SizedPlan(SizeVariable("PopulationSize", "pop"));
  const std::string rated = SizedPlan(SizeVariable("IncProb", "prob"));
  const auto cell = [](std::size_t row, const char* name, const char* value) {
    return [=](DataFile& data) { data.Cell(row, name) = value; };
  };
  const auto all = [](const char* name, const char* value) {
    return [=](DataFile& data) { data.Fill(name, [&](std::size_t) { return value; }); };
  };
  const std::vector<FaultCase> faults = {
      {"a misspelt stratum", PlanText({{"wr", {"stt"}, {"psu"}}}), nothing, "stops", "Did you mean st?", ""},
      {"a misspelt weight", PlanText({{"wr", {"st"}, {"psu"}}}, "wgt"), nothing, "stops",
       "no variable wgt (weight)", ""},
      {"a string as weight", PlanText({{"wr", {"st"}, {"psu"}}}, "g"), nothing, "stops",
       "g (weight) is a string", ""},
      {"a string as size", SizedPlan(SizeVariable("PopulationSize", "g")), nothing, "stops", "is a string",
       ""},
      {"a misspelt size", SizedPlan(SizeVariable("PopulationSize", "popp")), nothing, "stops",
       "Did you mean pop?", ""},
      {"no weight", PlanText({{"wr", {"st"}, {"psu"}}}, ""), nothing, "stops", "no weight", ""},
      {"no stage", PlanText({}), nothing, "stops", "no stage", ""},
      {"no method", PlanText({{"other", {"st"}, {"psu"}}}), nothing, "stops", "no estimation method", ""},
      {"no sizes", SizedPlan(""), nothing, "stops", "neither population sizes nor", ""},
      {"a reader's status", SizedPlan(SizeValue("IncProb", "2")), nothing, "stops", "above 0 and at most 1",
       ""},
      {"no clusters for unequal probabilities", PlanText({{"unequal_wor", {"st"}, {}}}), nothing, "stops",
       "no cluster variables", ""},
      {"a missing weight", SimplePlan(), cell(7, "w", ""), "biases", "1 case without a weight", ""},
      {"a weight of 0", SimplePlan(), cell(7, "w", "0"), "biases", "1 case with weight 0", ""},
      {"a negative weight", SimplePlan(), cell(7, "w", "-1"), "biases", "1 case with a negative weight", ""},
      {"a missing stratum", SimplePlan(), cell(7, "st", ""), "biases", "1 case without a stratum or cluster",
       ""},
      {"a missing cluster", SimplePlan(), cell(7, "psu", ""), "biases", "1 case without a stratum or cluster",
       ""},
      {"a lone unit", SimplePlan(), cell(0, "st", "9"), "biases", "1 stratum with a single unit", "st=9"},
      {"a lone unit of a rate", SizedPlan(SizeValue("IncProb", "0.5")), cell(0, "st", "9"), "biases",
       "1 stratum with a single unit", "st=9"},
      {"a lone unit in one of its strata",
       PlanText({{"equal_wor", {}, {"psu"}, SizeValue("PopulationSize", "90")}, {"wr", {"st"}, {}}}),
       cell(0, "st", "9"), "biases", "Stage 2: 1 stratum with a single unit", "psu=1, st=9"},
      {"a population below the sample", SizedPlan(SizeValue("PopulationSize", "4")), nothing, "stops",
       "4 strata with more units", "st=1: 5 units, population 4"},
      {"a population variable below the sample", sized,
       [](DataFile& data) {
         for (std::size_t i = 0; i < data.rows.size(); ++i) {
           if (data.Cell(i, "st") == "2") data.Cell(i, "pop") = "4";
         }
       },
       "stops", "1 stratum with more units", "st=2: 5 units, population 4"},
      {"two populations of a stratum", sized, cell(0, "pop", "21"), "biases",
       "1 stratum with more than one population", "st=1"},
      {"a population missing once", sized, cell(0, "pop", ""), "biases",
       "1 stratum with no population size in some", "st=1"},
      {"a population that isn't whole", sized, all("pop", "20.5"), "stops", "", ""},
      {"a probability missing once", rated, cell(5, "prob", ""), "biases", "with no inclusion probability in some", "st=2"},
      {"a probability above 1", rated, cell(5, "prob", "1.25"), "", "not above 0 and at most 1",
       "case 6: 1.25"},
      {"a matrix that lacks a stratum",
       SizedPlan(Matrix("PopulationSize", "st", {{"1", "20"}, {"2", "20"}, {"3", "20"}})), nothing, "stops",
       "the matrix has no row", "st=4"},
      {"a matrix with an unreadable category",
       SizedPlan(Matrix("IncProb", "st",
                        {{"1", "0.5"}, {"2", "0.5"}, {"3", "0.5"}, {"4", "0.5"}, {"north", "0.5"}})),
       nothing, "stops", "cannot be read", "row 5: north for st"},
      {"a matrix below the sample",
       SizedPlan(Matrix("PopulationSize", "st", {{"1", "20"}, {"2", "20"}, {"3", "20"}, {"4", "4"}})),
       nothing, "stops", "1 stratum with more units", "st=4: 5 units, population 4"},
  };
  for (const FaultCase& fault : faults) {
    DataFile data = SurveyData();
    fault.spoil(data);
    const Checked run = Check(fault.plan, data);
    ASSERT_TRUE(run.report.is_object()) << fault.what << run.messages;
    EXPECT_EQ(run.exitStatus, 1) << fault.what;
    ASSERT_FALSE(run.report["findings"].empty()) << fault.what;
    const json& finding = run.report["findings"][0];
    if (*fault.effect != '\0') {
      EXPECT_EQ(finding["effect"], fault.effect) << fault.what << finding.dump();
    }
    EXPECT_THAT(finding["text"].get<std::string>(), HasSubstr(fault.text)) << fault.what;
    if (!fault.example.empty()) {
      ASSERT_FALSE(finding["examples"].empty()) << fault.what << finding.dump();
      EXPECT_EQ(finding["examples"][0], fault.example) << fault.what;
    }
  }
}

TEST(PlanCheck, WhatIsNoFaultIsNotFound) {
  const auto nothing = [](DataFile&) {};
  const std::vector<std::tuple<const char*, std::string, std::function<void(DataFile&)>>> sound = {
      {"sizes by variable", SizedPlan(SizeVariable("PopulationSize", "pop")), nothing},
      {"sizes that are as large as the sample", SizedPlan(SizeValue("PopulationSize", "5")), nothing},
      {"probabilities by variable", SizedPlan(SizeVariable("IncProb", "prob")), nothing},
      {"a matrix",
       SizedPlan(Matrix("IncProb", "ST", {{"1", "0.5"}, {"2", "0.5"}, {"3.0", "0.5"}, {"4", "1"}})), nothing},
      {"a unit that was taken for certain", SizedPlan(SizeVariable("PopulationSize", "pop")),
       [](DataFile& data) { data.Cell(0, "st") = "9", data.Cell(0, "pop") = "1"; }},
      {"lone units below a stage with replacement",
       PlanText({{"wr", {"st"}, {"psu"}}, {"equal_wor", {}, {"x", "z"}, SizeValue("PopulationSize", "900")}}),
       [](DataFile& data) { data.rows.resize(20); }},
      {"names in another case", PlanText({{"wr", {"ST"}, {"Psu"}}}, "W"), nothing},
  };
  for (const auto& [what, plan, spoil] : sound) {
    DataFile data = SurveyData();
    spoil(data);
    const Checked run = Check(plan, data);
    EXPECT_EQ(run.exitStatus, 0) << what << run.report.dump(1) << run.messages;
  }
}

TEST(PlanCheck, ListsTwentyStrataAndCountsTheOthers) {
  DataFile data = SurveyData(100);
  data.Fill("st", [](std::size_t i) { return std::to_string(i); });
  const json finding = Check(SimplePlan(), data).report["findings"][0];
  EXPECT_THAT(finding["text"].get<std::string>(), HasSubstr("100 strata with a single unit"));
  EXPECT_EQ(finding["examples"].size(), 20U);
  EXPECT_EQ(finding["more"], 80);
}

TEST(PlanCheck, UnreadableFilesEndWithTwo) {
  const TemporaryFolder folder;
  folder.Write("plan.xml", SimplePlan());
  folder.Write("broken.xml", "<p>");
  folder.Write("data.csv", "a,b\n1\n");
  folder.Write("good.csv", SurveyData(40).Text());
  for (const Words& words :
       std::vector<Words>{{"check", "plan.xml", "--data", "nowhere.csv"},
                          {"check", "plan.xml", "--data", "data.csv"},
                          {"check", "broken.xml", "--data", "good.csv"},
                          {"check", "nowhere.xml", "--data", "good.csv"},
                          {"check", "plan.xml", "--data", "good.csv", "--schema", "no.json"}}) {
    const ProgramRun run = Plan(words, folder.Path());
    EXPECT_EQ(run.exitStatus, 2) << testing::PrintToString(words);
    EXPECT_THAT(run.messages, HasSubstr("error: "));
    EXPECT_EQ(run.output, "");
  }
}

TEST(PlanCheck, ASchemaThatDeclaresAStratumMissingCounts) {
  const TemporaryFolder folder;
  folder.Write("plan.xml", SimplePlan());
  folder.Write("data.csv", SurveyData(40).Text());
  folder.Write("s.json", R"({"fields": [{"name": "st", "type": "number", "missingValues": ["4"]}]})");
  const ProgramRun run = Plan(
      {"check", "plan.xml", "--data", "data.csv", "--schema", "s.json", "--format", "json"}, folder.Path());
  EXPECT_EQ(run.exitStatus, 1) << run.messages;
  EXPECT_EQ(run.Json()["design_missing"], 10);
}

// What check passes, a run accepts; what it says would stop a run, stops one.
TEST(PlanCheck, AgreesWithRuns) {
  const std::string command = "TAVOREG y WITH x /PLAN FILE='plan.xml' /STATISTICS PARAMETER SE.";
  const std::vector<std::pair<std::string, bool>> plans = {
      {SimplePlan(), true},
      {SizedPlan(SizeVariable("PopulationSize", "pop")), true},
      {SizedPlan(SizeVariable("IncProb", "prob")), true},
      {SizedPlan(SizeValue("PopulationSize", "4")), false},
      {SizedPlan(Matrix("PopulationSize", "st", {{"1", "20"}})), false},
      {SizedPlan(Matrix("PopulationSize", "st", {{"north", "20"}})), false},
      {SizedPlan(""), false},
      {PlanText({{"wr", {"nothing"}, {"psu"}}}), false},
  };
  for (const auto& [plan, isSound] : plans) {
    EXPECT_EQ(Check(plan, SurveyData()).exitStatus, isSound ? 0 : 1) << plan;
    const ProgramRun run = RunAnalysis({command, SurveyData().Text(), plan});
    EXPECT_EQ(run.exitStatus, isSound ? 0 : 1) << plan << run.messages;
  }
}

}  // namespace
