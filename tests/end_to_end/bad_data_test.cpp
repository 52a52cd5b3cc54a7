// Data that can't be read, that contradict the plan, or that a model can't be fitted to.

#include <gtest/gtest.h>

#include "bad_input.h"

namespace {

const std::string kCommand = kSimple + ".\n";
const char* const kDataProblem = "Data file problem...";
const char* const kWentOn = "Tavoreg continues despite warnings";

BadInput Unreadable(const std::string& name, const std::string& data, const std::string& says) {
  return {name, {kCommand, data}, 2, {Error(kDataProblem, says)}};
}

std::vector<BadInput> FileCases() {
  // The third line of the file holds the second case.
  const std::string head = "st,psu,w,y,g,x\n1,1,2.5,0,low,0.3\n";
  return {
      {"NoFile",
       {kCommand, ""},
       2,
       {Error(kDataProblem, "data.csv: the file can't be read: No such file or directory")}},
      {"UnknownEnding",
       {kCommand, head, SimplePlan(), {}, "data.xls"},
       2,
       {Error(kDataProblem, "ending tells its form, and must be .csv")}},
      Unreadable("BlankHeader", "\n1,2\n", "data.csv:1:1: the first line is blank"),
      Unreadable("ALineTooLong", head + "1,2,2.5,0,low,0.3,9\n",
                 "data.csv:3:1: this line has 7 cells, the header has 6"),
      Unreadable("ALineTooShort", head + "1,2,2.5,0\n",
                 "data.csv:3:1: this line has 4 cells, the header has 6"),
      Unreadable("TextBehindAQuote", head + "1,2,2.5,0,\"low\"er,0.3\n",
                 "data.csv:3:16: text behind a closing quote"),
      Unreadable("QuoteNeverClosed", head + "1,2,2.5,0,\"low,0.3\n", "data.csv:3:11:"),
      Unreadable("NotUtf8", head + "1,2,2.5,0,l\xF6w,0.3\n", "data.csv:3:12: invalid UTF-8"),
      Unreadable("NulByte", head + std::string("1,2,2.5,0,l\0w,0.3\n", 18), "data.csv:3:12: a NUL byte"),
  };
}

std::vector<BadInput> CaseCases() {
  const DataFile data = SurveyData();
  const auto fill = [&](const std::string& name, const std::string& value) {
    return DataFile(data).Fill(name, [&](std::size_t) { return value; }).Text();
  };
  DataFile outside = data;
  for (std::size_t i = 0; i < outside.rows.size(); ++i) {
    if (outside.Cell(i, "d") == "3") outside.Cell(i, "w") = "0";
  }
  return {
      {"HeaderOnly",
       {kCommand, data.Text().substr(0, data.Text().find('\n') + 1)},
       1,
       {Error("There are no valid cases ...", "No case can be used")}},
      {"NoValidCase",
       {kCommand, fill("x", "NA")},
       1,
       {Error("There are no valid cases ...", "No case can be used")}},
      {"AllWeightsZero",
       {kCommand, fill("w", "0")},
       1,
       {Error("No case has a positive weight ...", "the weight that the plan names is zero or negative")}},
      {"OneValueOfTheDependent",
       {kCommand, fill("y", "1")},
       1,
       {Error("Dependant variable has only one value", "has only one value among the cases in use")}},
      {"DomainWithoutWeight",
       {CommandWith("  /DOMAIN VARIABLE=d(3)"), outside.Text()},
       1,
       {Error("There are no valid cases in the subpopulation", "no case with a positive weight")}},
  };
}

std::vector<BadInput> DesignCases() {
  const auto with = [](const std::string& name, const std::string& value, const std::string& element) {
    DataFile data = SurveyData();
    data.Cell(17, name) = value;
    return Analysis{kCommand, data.Text(), SizedPlan(SizeVariable(element, name))};
  };
  DataFile below = SurveyData();
  DataFile gap = SurveyData();
  for (std::size_t i = 0; i < below.rows.size(); ++i) {
    if (below.Cell(i, "st") != "2") continue;
    below.Cell(i, "pop") = "3";
    gap.Cell(i, "pop") = "";
  }
  const std::string byPopulation = SizedPlan(SizeVariable("PopulationSize", "pop"));
  std::vector<ExpectedMessage> everyCase;
  for (int i = 1; i <= 20; ++i) {
    everyCase.push_back(
        Error("Invalid value in pop. size variable ^1 ...", "Case " + std::to_string(i) + " has"));
  }
  everyCase.push_back(
      Warning("Messages of the same kind were left out...", "More messages of a kind that is shown above"));
  return {
      {"FractionOfAUnit",
       with("pop", "20.5", "PopulationSize"),
       1,
       {Error("Invalid value in pop. size variable ^1 ...",
              "Case 18 has a population size in variable pop")}},
      {"ChanceAboveOne",
       with("prob", "1.5", "IncProb"),
       1,
       {Error("Invalid value in incl. prob. variable ^1 ...",
              "Case 18 has an inclusion probability in variable prob")}},
      {"AFaultInEveryCase",
       {kCommand, SurveyData().Fill("pop", [](std::size_t i) { return i < 200 ? "0" : "50"; }).Text(),
        byPopulation},
       1,
       everyCase},
      {"SizesThatDiffer",
       with("pop", "37", "PopulationSize"),
       0,
       {Warning("Unequal pop size in stage ^1 stratum ...",
                "not the same for all units of a stratum in stage 1")}},
      {"ChancesThatDiffer",
       with("prob", "0.7", "IncProb"),
       0,
       {Warning("Unequal incl prob in stage ^1 stratum ...",
                "not the same for all units of a stratum in stage 1")}},
      {"PopulationBelowTheSample",
       {kCommand, below.Text(), byPopulation},
       1,
       {Error("Pop size too big in stage ^1 stratum ...",
              "A stratum of stage 1 has more units in the sample")}},
      {"PopulationBelowTheSampleWithoutStrata",
       {kCommand, SurveyData().Text(),
        PlanText({{"equal_wor", {}, {"psu"}, SizeValue("PopulationSize", "4")}})},
       1,
       {Error("Pop size too big in stage ^1 ...", "Stage 1 has more units in the sample")}},
      {"PopulationMissing",
       {kCommand, gap.Text(), byPopulation},
       1,
       {Error("No incl prob in active in stage ^1 stratum ...",
              "stratum in stage 1 has no inclusion probability")}},
  };
}

std::vector<BadInput> FitCases() {
  const DataFile data = SurveyData();
  const auto isOne = [&](std::size_t i) { return data.Cell(i, "y") == "1"; };
  const std::string separated =
      DataFile(data).Fill("q", [&](std::size_t i) { return isOne(i) ? "2" : "1"; }).Text();
  const std::string halfSeparated =
      DataFile(data).Fill("q", [&](std::size_t i) { return isOne(i) || i % 3 == 0 ? "2" : "1"; }).Text();
  const auto number = [](std::size_t i) { return std::to_string(i); };
  const std::string manyLevels = DataFile(data).Fill("many", number).Fill("lots", number).Text();
  const auto by = [](const std::string& factor, const std::string& more) {
    return "TAVOREG y BY " + factor + "\n  /PLAN FILE='plan.xml'" + more + ".";
  };
  return {
      {"CompleteSeparation",
       {by("q", ""), separated},
       0,
       {Warning("Log-likelihood value is zero", "determine the dependent variable completely"),
        Warning(kWentOn, "The results rest on the last iteration")}},
      {"QuasiCompleteSeparation",
       {by("q", ""), halfSeparated},
       0,
       {Warning("Quasi-complete separation may exist in data", "some estimates grow without limit"),
        Warning(kWentOn, "The results rest on the last iteration")}},
      {"QuasiCompleteSeparationLookedForLater",
       {by("q", "\n  /CRITERIA CHKSEP=5 MXITER=4"), halfSeparated},
       0,
       {Warning("Maximum iterations was reached", "Raise CRITERIA MXITER"),
        Warning(kWentOn, "The results rest on the last iteration")}},
      {"TooFewIterations",
       {CommandWith("  /CRITERIA MXITER=2"), data.Text()},
       0,
       {Warning("Maximum iterations was reached", "Raise CRITERIA MXITER"),
        Warning(kWentOn, "The results rest on the last iteration")}},
      {"TooManyParameters",
       {"TAVOREG many BY lots\n  /PLAN FILE='plan.xml'.", manyLevels},
       1,
       {Error("Number of parameters ^1 exceeds limit ^2",
              "The model has 57599 parameters, more than the limit of 46340")}},
  };
}

class BadData : public testing::TestWithParam<BadInput> {};

TEST_P(BadData, IsAnswered) {
  ExpectAnswer(GetParam());
}

std::string NameOf(const testing::TestParamInfo<BadInput>& each) {
  return each.param.name;
}

INSTANTIATE_TEST_SUITE_P(File, BadData, testing::ValuesIn(FileCases()), NameOf);
INSTANTIATE_TEST_SUITE_P(Cases, BadData, testing::ValuesIn(CaseCases()), NameOf);
INSTANTIATE_TEST_SUITE_P(Design, BadData, testing::ValuesIn(DesignCases()), NameOf);
INSTANTIATE_TEST_SUITE_P(Fit, BadData, testing::ValuesIn(FitCases()), NameOf);

/// The first command's tables without the one that counts the cases.
nlohmann::json TablesButCounts(const nlohmann::json& document) {
  nlohmann::json tables = nlohmann::json::array();
  for (const auto& table : document["commands"][0]["tables"]) {
    if (table["id"] != "SampleDesignInformation") tables.push_back(table);
  }
  return tables;
}

TEST(CasesWithoutWeight, AreLeftOutInSilenceAndCountAsValid) {
  DataFile some = SurveyData();
  DataFile rest = SurveyData();
  rest.rows.clear();
  for (std::size_t i = 0; i < some.rows.size(); ++i) {
    if (i % 7 == 3) {
      some.Cell(i, "w") = i % 2 == 0 ? "0" : "-1.5";
    } else {
      rest.rows.push_back(some.rows[i]);
    }
  }
  const std::string command = CommandWith(
      "  /STATISTICS PARAMETER SE DEFF\n  /PRINT SAMPLEINFO VARIABLEINFO SUMMARY "
      "CLASSTABLE HISTORY");
  const ProgramRun with = RunAnalysis({command, some.Text()});
  const ProgramRun without = RunAnalysis({command, rest.Text()});
  EXPECT_EQ(with.exitStatus, 0);
  EXPECT_EQ(with.messages, "");
  EXPECT_GE(TablesButCounts(with.Json()).size(), 5U);
  EXPECT_EQ(TablesButCounts(with.Json()), TablesButCounts(without.Json()));
  const auto valid = [](const ProgramRun& run) {
    return FindCell(run.Json(), "SampleDesignInformation", {"Unweighted Cases", "Valid"}, {"N"})["value"];
  };
  EXPECT_EQ(valid(with), some.rows.size());
  EXPECT_EQ(valid(without), rest.rows.size());
}

}  // namespace
