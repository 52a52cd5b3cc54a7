// Every message that the command's subcommands can raise, with a command that raises it and its arguments.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "command_run.h"
#include "output/catalogue.h"
#include "output/template.h"

namespace command_parser_test {

namespace {

using Arguments = std::vector<standalone::TemplateArgument>;

struct MessageCase {
  const char* key;
  Arguments arguments;
  std::string command;
  std::string plan = SimplePlan();
  bool isError = true;
  const char* group = "";  // what stands in front of the sentence
};

std::string Single(const char* element, const char* child, const std::string& attribute) {
  return std::string("<") + element + "><" + child + " " + attribute + "/></" + element + ">";
}

std::string Matrix(const std::string& variable, const std::string& category) {
  return "<PopulationSize><Matrix numberOfValues='1'><MatrixVarList numberOfVariables='1'><Variable name='" +
         variable + "'/></MatrixVarList><MatrixValue sizeValue='10'><Category value='" + category +
         "'/></MatrixValue></Matrix></PopulationSize>";
}

std::string SizePlan(const std::string& variable) {
  return Plan(
      Stage(1, "equal_wor", {"st"}, {}, Single("PopulationSize", "Variable", "name='" + variable + "'")));
}

std::string ProbPlan(const std::string& variable) {
  return Plan(Stage(1, "equal_wor", {"st"}, {}, Single("IncProb", "Variable", "name='" + variable + "'")));
}

const std::vector<MessageCase>& Cases() {
  static const std::vector<MessageCase> cases = {
      // The variable list.
      {"Variable name ^1 in variable list ^2 is not valid...", {"3", "TAVOREG"}, "TAVOREG 3"},
      {"Variable name ^1 in variable list ^2 is not valid...", {"3", "TAVOREG"}, "TAVOREG y BY a 3"},
      {"Variable ^1 for variable list ^2 is not found in the dictionary...",
       {"nix", "TAVOREG"},
       "TAVOREG nix"},
      {"Variable ^1 for variable list ^2 is not found in the dictionary...",
       {"nix", "TAVOREG"},
       "TAVOREG y WITH nix"},
      {"Variable ^1 for variable list ^2 is not numeric...", {"g", "TAVOREG"}, "TAVOREG y WITH g"},
      {"Variable ^1 for parameter ^2 has invalid value, subcommand ^3...",
       {"y", "TAVOREG", "TAVOREG"},
       "TAVOREG y ("},
      {"Variable ^1 for parameter ^2 has invalid value, subcommand ^3...",
       {"y", "TAVOREG", "TAVOREG"},
       "TAVOREG y (1 2)"},
      {"Variable ^1 for parameter ^2 has invalid value, subcommand ^3...",
       {"y", "TAVOREG", "TAVOREG"},
       "TAVOREG y (*) BY a"},
      {"Variable ^1 has value ^2 of invalid type or format, variable list ^3...",
       {"y", "one", "TAVOREG"},
       "TAVOREG y (one)"},
      {"Invalid syntax in variable list ^2, symbol ^1 ...", {"a", "TAVOREG"}, "TAVOREG y a"},
      {"Keyword ^1 should be followed by a valid variable name in ^2 variable list...",
       {"BY", "TAVOREG"},
       "TAVOREG y BY"},
      {"Keyword ^1 should be followed by a valid variable name in ^2 variable list...",
       {"BY", "TAVOREG"},
       "TAVOREG y BY WITH x"},
      {"Keyword ^1 should be followed by a valid variable name in ^2 variable list...",
       {"WITH", "TAVOREG"},
       "TAVOREG y WITH TO x"},
      {"Keyword ^1 should be followed by a valid variable name in ^2 variable list...",
       {"TO", "TAVOREG"},
       "TAVOREG y BY a TO WITH x"},
      {"Keyword ^1 already occured in ^2 variable list...", {"BY", "TAVOREG"}, "TAVOREG y BY a WITH x BY b"},
      {"Keyword ^1 already occured in ^2 variable list...", {"WITH", "TAVOREG"}, "TAVOREG y WITH x WITH z"},
      {"Keyword TO improperly used in ^1...", {"TAVOREG"}, "TAVOREG y BY c TO a"},
      {"Keyword TO improperly used in ^1...", {"TAVOREG"}, "TAVOREG y BY a TO b TO c"},
      {"Variable ^1 for parameter ^2 already occured...", {"Y", "TAVOREG"}, "TAVOREG y BY Y"},
      {"Variable ^1 for parameter ^2 already occured...", {"b", "TAVOREG"}, "TAVOREG y BY b a TO c"},

      // Files.
      {"Parameter ^1 of subcommand ^2 has incorrect value type...",
       {"FILE", "PLAN"},
       "TAVOREG y /PLAN FILE=3"},
      {"File ^1 cannot be accessed...", {"nix.xml"}, "TAVOREG y /PLAN FILE='nix.xml'"},
      {"Parameter ^1 of subcommand ^2 has incorrect value type...",
       {"FILE", "JOINTPROB"},
       "TAVOREG y /JOINTPROB FILE=a b"},
      {"File ^1 cannot be accessed...", {"nix.vdt"}, "TAVOREG y /JOINTPROB FILE='nix.vdt'"},

      // Effects and the model.
      {"Model effect is opening with ^1, subcommand ^2 ...", {"*", "MODEL"}, "TAVOREG y BY a /MODEL *"},
      {"Model effect is opening with ^1, subcommand ^2 ...", {"b", "MODEL"}, "TAVOREG y BY a /MODEL b"},
      {"Syntax error in effect ^1, subcommand ^2 ...", {"", "MODEL"}, "TAVOREG y BY a /MODEL a*"},
      {"Syntax error in effect ^1, subcommand ^2 ...", {"b", "MODEL"}, "TAVOREG y BY a /MODEL a*b"},
      {"Syntax error in effect ^1, subcommand ^2 ...", {"2", "MODEL"}, "TAVOREG y BY a /MODEL a*2"},
      {"Covariate ^1 nested in effect, subcommand ^2 ...",
       {"x", "MODEL"},
       "TAVOREG y BY a WITH x /MODEL a(x)"},
      {"Repeated factor in effect ^1, subcommand ^2 ...", {"a", "MODEL"}, "TAVOREG y BY a /MODEL a*a"},
      {"Unbalanced parentheses in effect, subcommand ^1 ...", {"MODEL"}, "TAVOREG y BY a b /MODEL a(b"},
      {"Unbalanced parentheses in effect, subcommand ^1 ...", {"MODEL"}, "TAVOREG y BY a b /MODEL a(b))"},
      {"Duplicate effect in ^1 ...", {"MODEL"}, "TAVOREG y BY a /MODEL a a", SimplePlan(), false},
      {"Model does not use [%1:, ^1:]1",
       {std::vector<std::string>{"b", "x"}},
       "TAVOREG y BY a b WITH x /MODEL a",
       SimplePlan(),
       false},
      {"No factors, no covariates, no intercept ...", {}, "TAVOREG y /INTERCEPT INCLUDE=NO"},
      {"Subcommand ^1 is invalid when parameter ^2 has value ^3...",
       {"MODEL", "INTERCEPT", "ONLY"},
       "TAVOREG y BY a /MODEL a /INTERCEPT INCLUDE=ONLY"},
      {"Parameter ^1 of subcommand ^2 cannot take value ^3...",
       {"INCLUDE", "INTERCEPT", "Maybe"},
       "TAVOREG y /INTERCEPT INCLUDE=Maybe SHOW=Maybe"},
      {"Parameter ^1 of subcommand ^2 cannot take value ^3...",
       {"SHOW", "INTERCEPT", "Maybe"},
       "TAVOREG y /INTERCEPT SHOW=Maybe"},
      {"Parameter ^1 of subcommand ^2 with value ^3 is ignored...",
       {"SHOW", "INTERCEPT", "NO"},
       "TAVOREG y BY a /INTERCEPT INCLUDE=NO SHOW=NO",
       SimplePlan(),
       false},

      // Criteria.
      {"Parameter ^1 of subcommand ^2 does not have a valid integer value...",
       {"CHKSEP", "CRITERIA"},
       "TAVOREG y /CRITERIA CHKSEP=1.5"},
      {"Parameter ^1 of subcommand ^2 does not have a valid numerical value...",
       {"CILEVEL", "CRITERIA"},
       "TAVOREG y /CRITERIA CILEVEL=100"},
      {"Parameter ^1 of subcommand ^2 does not have a valid numerical value...",
       {"DF", "CRITERIA"},
       "TAVOREG y /CRITERIA DF=0"},
      {"Square brackets required for parameter ^1 in subcommand ^2...",
       {"LCONVERGE", "CRITERIA"},
       "TAVOREG y /CRITERIA LCONVERGE=0.1"},
      {"Parameter ^1 of subcommand ^2 does not have a valid numerical value...",
       {"LCONVERGE", "CRITERIA"},
       "TAVOREG y /CRITERIA LCONVERGE=[]"},
      {"Parameter ^1 of subcommand ^2 does not have a valid numerical value...",
       {"PCONVERGE", "CRITERIA"},
       "TAVOREG y /CRITERIA PCONVERGE=[-1]"},
      {"Invalid syntax in parameter ^2, symbol ^1, subcommand ^3 ...",
       {"X", "LCONVERGE", "CRITERIA"},
       "TAVOREG y /CRITERIA LCONVERGE=[0.001 X]"},
      {"Invalid syntax in parameter ^2, symbol ^1, subcommand ^3 ...",
       {"3", "PCONVERGE", "CRITERIA"},
       "TAVOREG y /CRITERIA PCONVERGE=[0.001 RELATIVE 3]"},
      {"Parameter ^1 of subcommand ^2 does not have a valid integer value...",
       {"MXITER", "CRITERIA"},
       "TAVOREG y /CRITERIA MXITER=-1"},
      {"Parameter ^1 of subcommand ^2 does not have a valid integer value...",
       {"MXSTEP", "CRITERIA"},
       "TAVOREG y /CRITERIA MXSTEP=0"},
      {"Parameter ^1 of subcommand ^2 does not have a valid numerical value...",
       {"SINGULAR", "CRITERIA"},
       "TAVOREG y /CRITERIA SINGULAR=0"},

      // Tests, domain, missing values, printing.
      {"Parameter ^1 of subcommand ^2 cannot take value ^3...",
       {"TYPE", "TEST", "T"},
       "TAVOREG y /TEST TYPE=T"},
      {"Parameter ^1 of subcommand ^2 cannot take value ^3...",
       {"PADJUST", "TEST", "Holm"},
       "TAVOREG y /TEST PADJUST=Holm"},
      {"Variable name ^1 for parameter ^2 of subcommand ^3 is not valid...",
       {"1", "VARIABLE", "DOMAIN"},
       "TAVOREG y /DOMAIN VARIABLE=1(2)"},
      {"Variable ^1 for parameter ^2 of subcommand ^3 is not found in the dictionary...",
       {"nix", "VARIABLE", "DOMAIN"},
       "TAVOREG y /DOMAIN VARIABLE=nix(2)"},
      {"Variable name ^1 for variable list ^2 cannot be used for parameter ^3...",
       {"a", "TAVOREG", "DOMAIN"},
       "TAVOREG y BY a /DOMAIN VARIABLE=a(1)"},
      {"Parameter ^1 of subcommand ^2 has incorrect value type...",
       {"VARIABLE", "DOMAIN"},
       "TAVOREG y /DOMAIN VARIABLE=d"},
      {"Parameter ^1 of subcommand ^2 has incorrect value type...",
       {"VARIABLE", "DOMAIN"},
       "TAVOREG y /DOMAIN VARIABLE=d(1) 2"},
      {"^3 variable ^1 has value ^2 of invalid type or format, subcommand ^4...",
       {"d", "high", "", "DOMAIN"},
       "TAVOREG y /DOMAIN VARIABLE=d(high)"},
      {"^3 variable ^1 has value ^2 of invalid type or format, subcommand ^4...",
       {"ts", "long", "", "DOMAIN"},
       "TAVOREG y /DOMAIN VARIABLE=ts(long)"},
      {"Parameter ^1 of subcommand ^2 cannot take value ^3...",
       {"CLASSMISSING", "MISSING", "SOME"},
       "TAVOREG y /MISSING CLASSMISSING=SOME"},
      {"Parameter ^1 of subcommand ^2 does not have a valid integer value...",
       {"HISTORY", "PRINT"},
       "TAVOREG y /PRINT HISTORY(0)"},

      // What is still to come.
      {"Subcommand ^1 is not available yet and is ignored...",
       {"SAVE"},
       "TAVOREG y /SAVE PREDVAL",
       SimplePlan(),
       false},
      {"Subcommand ^1 is not available yet and is ignored...",
       {"OUTFILE"},
       "TAVOREG y /OUTFILE COVB='v.vdt'",
       SimplePlan(),
       false},
      {"Subcommand ^1 is not available yet and is ignored...",
       {"ODDSRATIOS"},
       "TAVOREG y BY a /ODDSRATIOS FACTOR=[a]",
       SimplePlan(),
       false},

      // The plan.
      {"The plan doesn't have any stage...", {}, "TAVOREG y", Plan("")},
      {"Stage Number Sequence [%1:, ^1:]1 is invalid",
       {std::vector<std::string>{"1", "3"}},
       "TAVOREG y",
       Plan(Stage(1, "wr", {}, {"psu"}) + Stage(3, "wr", {}, {"psu2"}))},
      {"Plan variable name ^1 for parameter ^2 cannot be used for variable list ^3...",
       {"w", "ANALYSISWEIGHT", "TAVOREG"},
       "TAVOREG w",
       SimplePlan(),
       true,
       "Plan: "},
      {"Plan variable name ^1 for parameter ^2 cannot be used for variable list ^3...",
       {"n", "POPSIZE VARIABLE", "TAVOREG"},
       "TAVOREG y WITH n",
       SizePlan("n"),
       true,
       "Stage 1 of the plan: "},
      {"Plan variable name ^1 for parameter ^2 cannot be used for variable list ^3...",
       {"p", "INCLPROB VARIABLE", "TAVOREG"},
       "TAVOREG y WITH p",
       ProbPlan("p"),
       true,
       "Stage 1 of the plan: "},
      {"Plan variable name ^1 for parameter ^2 cannot be used for variable list ^3...",
       {"st", "STRATA", "TAVOREG"},
       "TAVOREG y BY st",
       SimplePlan(),
       true,
       "Stage 1 of the plan: "},
      {"Plan variable name ^1 for parameter ^2 cannot be used for variable list ^3...",
       {"psu2", "CLUSTER", "TAVOREG"},
       "TAVOREG y BY psu2",
       Plan(Stage(1, "wr", {}, {"psu"}) + Stage(2, "wr", {}, {"psu2"})),
       true,
       "Stage 2 of the plan: "},
      {"Plan variable name ^1 cannot be used for parameter ^2 of subcommand ^3...",
       {"n", "VARIABLE", "DOMAIN"},
       "TAVOREG y /DOMAIN VARIABLE=n(1)",
       SizePlan("n"),
       true,
       "Stage 1 of the plan: "},
      {"Variable ^1 for parameter ^2 is not found in the dictionary...",
       {"nix", "ANALYSISWEIGHT"},
       "TAVOREG y",
       Plan(Stage(1, "wr", {}, {"psu"}), "nix"),
       true,
       "Plan: "},
      {"Variable ^1 for parameter ^2 is not found in the dictionary...",
       {"nix", "CLUSTER"},
       "TAVOREG y",
       Plan(Stage(1, "wr", {}, {"nix"})),
       true,
       "Stage 1 of the plan: "},
      {"Variable ^1 for parameter ^2 is not found in the dictionary...",
       {"nix", "POPSIZE"},
       "TAVOREG y",
       SizePlan("nix"),
       true,
       "Stage 1 of the plan: "},
      {"Variable ^1 for parameter ^2 is not numeric...",
       {"ts", "INCLPROB"},
       "TAVOREG y",
       ProbPlan("ts"),
       true,
       "Stage 1 of the plan: "},
      {"Variable ^1 for parameter ^2 is not numeric...",
       {"g", "ANALYSISWEIGHT"},
       "TAVOREG y",
       Plan(Stage(1, "wr", {}, {"psu"}), "g"),
       true,
       "Plan: "},
      {"MATRIX variable ^1 in column ^4 has value ^2 of invalid type or format in row ^3...",
       {"ts", "north", "1", "1"},
       "TAVOREG y",
       Plan(Stage(1, "equal_wor", {"ts"}, {}, Matrix("ts", "north"))),
       true,
       "Stage 1 of the plan: "},
      {"Default joint probability file ^1 cannot be accessed...",
       {"plan.vdt"},
       "TAVOREG y",
       Plan(Stage(1, "unequal_wor", {}, {"psu"}))},
      {"The plan doesn't name a weight variable...", {}, "TAVOREG y", Plan(Stage(1, "wr", {}, {"psu"}), "")},
      {"Stage ^1 of the plan has no estimation method...",
       {"1"},
       "TAVOREG y",
       Plan(Stage(1, "srs", {}, {"psu"}))},
      {"Stage ^1 of the plan is sampled without replacement but gives neither population sizes nor inclusion "
       "probabilities...",
       {"2"},
       "TAVOREG y",
       Plan(Stage(1, "wr", {}, {"psu"}) + Stage(2, "equal_wor", {}, {"psu2"}))},
  };
  return cases;
}

class EveryMessage : public testing::TestWithParam<std::size_t> {};

TEST_P(EveryMessage, IsSentWithItsArguments) {
  const MessageCase& expected = Cases()[GetParam()];
  SCOPED_TRACE(expected.command);
  ASSERT_TRUE(standalone::HasCatalogueText(expected.key)) << expected.key;
  CommandRun run;
  run.WritePlan(expected.plan);
  EXPECT_EQ(run.Parse(expected.command), !expected.isError);
  ASSERT_EQ(run.Messages().size(), 1U) << testing::PrintToString(run.Keys());
  const standalone::Message& message = run.Messages().front();
  EXPECT_EQ(message.key, expected.key);
  EXPECT_EQ(message.isError, expected.isError);
  const std::string sentence =
      expected.group + standalone::FillTemplate(standalone::CatalogueText(expected.key), expected.arguments);
  EXPECT_THAT(message.text, testing::StartsWith(sentence));
}

INSTANTIATE_TEST_SUITE_P(Commands, EveryMessage, testing::Range(std::size_t{0}, Cases().size()));

}  // namespace

}  // namespace command_parser_test
