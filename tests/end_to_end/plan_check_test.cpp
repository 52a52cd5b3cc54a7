// tavoreg plan check.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "plan_program.h"
#include "survey_files.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;

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

/// The simple plan, naming the schema, with more in it.
std::string SchemaPlan(const std::string& more) {
  std::string text = SimplePlan();
  const std::string root = "<VORNTessel ";
  text.replace(text.find(root), root.size(),
               root +
                   "xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" "
                   "xsi:noNamespaceSchemaLocation=\"vorntessel.xsd\" ");
  return text.insert(text.find("<AnalysisDesign"), more);
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
      {"a misspelt element", PlanText({{"wr", {"st"}, {"psu"}, "<PopulationSise/>"}}), nothing, "biases",
       "Did you mean PopulationSize?", ""},
      {"what the schema forbids", SchemaPlan("<Header unknown=\"1\"/>"), nothing, "format",
       "plan.xml:3:", ""},
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
      {"a probability missing once", rated, cell(5, "prob", ""), "biases",
       "with no inclusion probability in some", "st=2"},
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

TEST(PlanCheck, ALongCategoryOfAMatrixIsCutInTheMiddle) {
  const std::string category = "begin" + std::string(500000, 'z') + "end";
  const Checked run = Check(
      SizedPlan("<PopulationSize><Matrix numberOfValues=\"1\"><MatrixVarList numberOfVariables=\"1\">"
                "<Variable name=\"st\"/></MatrixVarList><MatrixValue sizeValue=\"20\"><Category value=\"" +
                category + "\"/></MatrixValue></Matrix></PopulationSize>"),
      SurveyData());
  EXPECT_EQ(run.exitStatus, 1);
  const std::string text = run.report["findings"].dump();
  EXPECT_THAT(text, HasSubstr("row 1: beginzzz"));
  EXPECT_THAT(text, HasSubstr("zzzend for st"));
  EXPECT_LT(text.size(), 5000U);
}

TEST(PlanCheck, ListsTwentyStrataAndCountsTheOthers) {
  DataFile data = SurveyData(100);
  data.Fill("st", [](std::size_t i) { return std::to_string(i); });
  const json finding = Check(SimplePlan(), data).report["findings"][0];
  EXPECT_THAT(finding["text"].get<std::string>(), HasSubstr("100 strata with a single unit"));
  EXPECT_EQ(finding["examples"].size(), 20U);
  EXPECT_EQ(finding["more"], 80);
}

TEST(PlanCheck, ListsStrataInTheOrderOfTheirValuesNotOfTheFile) {
  const TemporaryFolder folder;
  folder.Write("plan.xml", SizedPlan(SizeValue("PopulationSize", "4")));
  DataFile data = SurveyData();
  std::reverse(data.rows.begin(), data.rows.end());
  folder.Write("data.csv", data.Text());
  const ProgramRun run = Plan({"check", "plan.xml", "--data", "data.csv"}, folder.Path());
  EXPECT_NE(run.output.find("  st=1: 5 units, population 4\n"
                            "  st=2: 5 units, population 4\n"
                            "  st=3: 5 units, population 4\n"
                            "  st=4: 5 units, population 4\n"),
            std::string::npos)
      << run.output;
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
