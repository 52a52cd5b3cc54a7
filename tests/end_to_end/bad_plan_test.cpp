// Plan files that can't be used: the answer names the file, the stage, the variable or the value.

#include <gtest/gtest.h>

#include "bad_input.h"

namespace {

const std::string kCommand = kSimple + ".\n";
const char* const kPlanVariableNotFound = "Variable ^1 for parameter ^2 is not found in the dictionary...";
const char* const kInvalidPlan = "Invalid plan file...";
const char* const kBadSize = "Population size value is incorrect...";
const char* const kBadChance = "Inclusion probability value is incorrect...";

BadInput Refused(const std::string& name, const std::string& plan, const ExpectedMessage& message) {
  return {name, {kCommand, SurveyData().Text(), plan}, 1, {message}};
}

/// A matrix of population sizes with one key variable: pairs of category and size.
std::string Matrix(const std::string& variable,
                   const std::vector<std::pair<std::string, std::string>>& rows) {
  std::string text = "<PopulationSize><Matrix numberOfValues=\"" + std::to_string(rows.size()) +
                     "\"><MatrixVarList numberOfVariables=\"1\"><Variable name=\"" + variable +
                     "\"/></MatrixVarList>";
  for (const auto& [category, size] : rows) {
    text += "<MatrixValue sizeValue=\"" + size + "\">" + category + "</MatrixValue>";
  }
  return text + "</Matrix></PopulationSize>";
}

std::string Key(const std::string& value) {
  return "<Category value=\"" + value + "\"/>";
}

std::vector<BadInput> FileCases() {
  const std::string cut = SimplePlan().substr(0, SimplePlan().find("</AnalysisStage>"));
  return {
      Refused("NoFile", "",
              Error("File ^1 cannot be accessed...", "The file plan.xml cannot be read. Check that it exists",
                    "'plan.xml'")),
      Refused("NotXml", "st;psu;w\n", Error(kInvalidPlan, "plan.xml:1:1")),
      Refused("CutShort", cut, Error(kInvalidPlan, "plan.xml:7:1")),
      Refused("TagsThatCross", "<a>\n  <b>\n</a>\n", Error(kInvalidPlan, "plan.xml:3:3")),
      Refused("OnlyBlanks", " \n", Error(kInvalidPlan, "plan.xml:2:1")),
      Refused("NoAnalysisDesign", "<VORNTessel/>",
              Error("AnalysisDesign is missing in plan file...", "plan.xml has no AnalysisDesign element")),
  };
}

std::vector<BadInput> StatusCases() {
  return {
      Refused("NameThatIsNone", PlanText({{"wr", {"1st"}, {}}}),
              Error("Variable is not a valid VORN variable...", "AnalysisStage 1, variable \"1st\"")),
      Refused("VariableTwice", PlanText({{"wr", {"st"}, {"st"}}}),
              Error("Variable is repeated more than once...", "AnalysisStage 1, variable \"st\"")),
      Refused("UnequalInALaterStage", PlanText({{"wr", {"st"}, {"psu"}}, {"unequal_wor", {}, {"d"}}}),
              Error("Illegal estimation method for this stage...", "AnalysisStage 2")),
      Refused("NegativePopulation", SizedPlan(SizeValue("PopulationSize", "-3")),
              Error(kBadSize, "AnalysisStage 1, value \"-3\"")),
      Refused("PopulationInWords", SizedPlan(SizeValue("PopulationSize", "many")),
              Error(kBadSize, "value \"many\"")),
      Refused("FractionOfAUnit", SizedPlan(SizeValue("PopulationSize", "20.5")),
              Error(kBadSize, "value \"20.5\"")),
      Refused("ChanceAboveOne", SizedPlan(SizeValue("IncProb", "1.5")),
              Error(kBadChance, "AnalysisStage 1, value \"1.5\"")),
      Refused("ChanceOfZero", SizedPlan(SizeValue("IncProb", "0")), Error(kBadChance, "value \"0\"")),
      Refused("StageWithoutClusters", PlanText({{"wr", {"st"}, {}}, {"wr", {}, {"psu"}}}),
              Error("Cluster variables are required for non-final stages...", "AnalysisStage 1")),
      Refused("MatrixOfAnotherVariable", SizedPlan(Matrix("g", {{Key("1"), "20"}})),
              Error("Matrix variable is invalid...", "matrix variable \"g\"")),
      Refused(
          "MatrixWithTooManyKeys", SizedPlan(Matrix("st", {{Key("1") + Key("2"), "20"}})),
          Error("Matrix category list does not match the matrix variable list...", "MatrixValue number 1")),
      Refused("FourStages", PlanText({{"wr", {}, {"psu"}}, {"wr", {}, {"d"}}, {"wr", {}, {"b"}}, {}}),
              Error("The plan cannot have more than ^1 stages...", "more than 3 stages")),
      Refused("SrsEstimatorThatIsNone", PlanText({{}}, "w", "SRSestimator=\"maybe\""),
              Error("Illegal SRS estimator method...", "SRSestimator=\"maybe\"")),
  };
}

std::vector<BadInput> IncompleteCases() {
  const std::string misnumbered =
      "<P><AnalysisDesign><AnalysisStage stageNumber=\"2\" estimationMethod=\"wr\"/>"
      "<Weight><Variable name=\"w\"/></Weight></AnalysisDesign></P>";
  return {
      Refused("NoWeight", PlanText({{"wr", {"st"}, {"psu"}}}, ""),
              Error("The plan doesn't name a weight variable...", "Add a Weight element to AnalysisDesign")),
      Refused("NoStage", PlanText({}), Error("The plan doesn't have any stage...", "The plan has no stage")),
      Refused(
          "StageOutOfNumber", misnumbered,
          Error("Stage Number Sequence [%1:, ^1:]1 is invalid", "The stages of the plan are numbered 2.")),
      Refused("NoEstimator", PlanText({{"often", {"st"}, {"psu"}}}),
              Error("Stage ^1 of the plan has no estimation method...", "Stage 1 of the plan")),
      Refused(
          "WithoutReplacementNorPopulation", PlanText({{"equal_wor", {"st"}, {"psu"}}}),
          Error("Stage ^1 of the plan is sampled without replacement but gives neither population sizes nor "
                "inclusion probabilities...",
                "Stage 1 of the plan")),
      Refused("UnequalWithoutReplacement", PlanText({{"unequal_wor", {"st"}, {"psu"}}}),
              Error("Default joint probability file ^1 cannot be accessed...",
                    "unequal probabilities without replacement, which needs joint inclusion")),
  };
}

std::vector<BadInput> DictionaryCases() {
  return {
      Refused("UnknownStratum", PlanText({{"wr", {"stratum"}, {"psu"}}}),
              Error(kPlanVariableNotFound, "Stage 1 of the plan: The data have no variable stratum")),
      Refused("UnknownWeight", PlanText({{"wr", {"st"}, {"psu"}}}, "weight"),
              Error(kPlanVariableNotFound, "Plan: The data have no variable weight")),
      Refused("UnknownPopulation", SizedPlan(SizeVariable("PopulationSize", "units")),
              Error(kPlanVariableNotFound, "Stage 1 of the plan: The data have no variable units")),
      {"WeightIsText",
       {"TAVOREG y WITH x\n  /PLAN FILE='plan.xml'.", SurveyData().Text(),
        PlanText({{"wr", {"st"}, {"psu"}}}, "g")},
       1,
       {Error("Variable ^1 for parameter ^2 is not numeric...", "Plan: Variable g")}},
      Refused("MatrixKeyIsNoNumber", SizedPlan(Matrix("st", {{Key("one"), "20"}})),
              Error("MATRIX variable ^1 in column ^4 has value ^2 of invalid type or format in row ^3...",
                    "Row 1 of a matrix in the plan gives one for variable st")),
      {"MatrixKeyNotFound",
       {kCommand, SurveyData().Text(), SizedPlan(Matrix("st", {{Key("1"), "20"}, {Key("2"), "30"}}))},
       1,
       {Error("No population size ^1 [%1 = %2:, ^1 = ^2:]2 ...", "stage 1 has no row for st = 3"),
        Error("No population size ^1 [%1 = %2:, ^1 = ^2:]2 ...", "stage 1 has no row for st = 4")}},
  };
}

BadInput Warned(const std::string& name, const std::string& plan,
                const std::vector<ExpectedMessage>& messages) {
  return {name, {kCommand, SurveyData().Text(), plan}, 0, messages};
}

std::string Replaced(std::string text, const std::string& from, const std::string& to) {
  return text.replace(text.find(from), from.size(), to);
}

std::vector<BadInput> PassedOverCases() {
  const char* const unknown = "Unknown element ^1 in ^2 of the plan at ^3, known are ^4...";
  const std::string stratified = PlanText({{"wr", {"st"}, {}}});
  return {
      Warned("MisspeltStrata",
             Replaced(Replaced(stratified, "<StrataVarList", "<StratumVarList"), "</StrataVarList",
                      "</StratumVarList"),
             {Warning(unknown, "Did you mean StrataVarList?")}),
      Warned("SecondWeight",
             Replaced(stratified, "</AnalysisDesign>",
                      "<Weight><Variable name=\"x\"/></Weight></AnalysisDesign>"),
             {Warning("Element ^1 stands in ^2 of the plan again at ^3...", "The first one counts")}),
      Warned("VariableWithoutName", Replaced(stratified, "<Variable name=\"st\"/>", "<Variable nam=\"st\"/>"),
             {Warning("Unknown attribute ^1 of ^2 in the plan at ^3, known are ^4...",
                      "attribute nam of Variable"),
              Warning("Attribute ^1 of ^2 is missing in the plan at ^3...",
                      "Variable without the attribute name")}),
  };
}

class BadPlan : public testing::TestWithParam<BadInput> {};

TEST_P(BadPlan, IsAnswered) {
  ExpectAnswer(GetParam());
}

std::string NameOf(const testing::TestParamInfo<BadInput>& each) {
  return each.param.name;
}

INSTANTIATE_TEST_SUITE_P(File, BadPlan, testing::ValuesIn(FileCases()), NameOf);
INSTANTIATE_TEST_SUITE_P(Status, BadPlan, testing::ValuesIn(StatusCases()), NameOf);
INSTANTIATE_TEST_SUITE_P(PassedOver, BadPlan, testing::ValuesIn(PassedOverCases()), NameOf);
INSTANTIATE_TEST_SUITE_P(Incomplete, BadPlan, testing::ValuesIn(IncompleteCases()), NameOf);
INSTANTIATE_TEST_SUITE_P(Dictionary, BadPlan, testing::ValuesIn(DictionaryCases()), NameOf);

}  // namespace
