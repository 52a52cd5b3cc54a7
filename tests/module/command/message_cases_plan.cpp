#include "message_cases.h"

namespace command_parser_test {

namespace {

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

}  // namespace

std::vector<MessageCase> PlanCases() {
  return {
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
      // The host's own state.
      {"No split file ...", {}, "TAVOREG y", SimplePlan(), false, "", {.splitFileCount = 2}},
      {"No VORN weight ...", {}, "TAVOREG y", SimplePlan(), false, "", {.weightVariable = 1}},
  };
}

}  // namespace command_parser_test
