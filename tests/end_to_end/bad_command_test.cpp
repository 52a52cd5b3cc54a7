// Mistakes in a command: the answer says what is wrong, points at it, and suggests the word that was meant.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "bad_input.h"

namespace {

const char* const kNotFound = "Variable ^1 for variable list ^2 is not found in the dictionary...";
const char* const kNotInteger = "Parameter ^1 of subcommand ^2 does not have a valid integer value...";

std::string Data() {
  return SurveyData().Text();
}
std::string LongNames() {
  return SurveyData().Fill("weight_kg", [](std::size_t i) { return std::to_string(60 + i % 7); }).Text();
}

/// A command that runs into one error.
BadInput Wrong(const std::string& name, const std::string& command, const ExpectedMessage& message) {
  return {name, {command, Data()}, 1, {message}};
}

std::vector<BadInput> VariableListCases() {
  return {
      Wrong("UnknownDependent", "TAVOREG yy\n  /PLAN FILE='plan.xml'.",
            Error(kNotFound, "no variable yy", "yy")),
      Wrong("UnknownFactor", "TAVOREG y BY sex\n  /PLAN FILE='plan.xml'.",
            Error(kNotFound, "no variable sex", "sex")),
      {"UnknownCovariate",
       {"TAVOREG y WITH x weigth_kg\n  /PLAN FILE='plan.xml'.", LongNames()},
       1,
       {Error(kNotFound, "Did you mean weight_kg?", "weigth_kg")}},
      Wrong("StringAsCovariate", "TAVOREG y WITH x g\n  /PLAN FILE='plan.xml'.",
            Error("Variable ^1 for variable list ^2 is not numeric...", "Variable g", "x |g")),
      Wrong("TwiceNamed", "TAVOREG y BY b WITH b\n  /PLAN FILE='plan.xml'.",
            Error("Variable ^1 for parameter ^2 already occured...", "Variable b", "WITH |b")),
      Wrong("ReferenceOfAnotherType", "TAVOREG y('a') WITH x\n  /PLAN FILE='plan.xml'.",
            Error("Variable ^1 has value ^2 of invalid type or format, variable list ^3...",
                  "value a given for variable y", "'a'")),
      Wrong("NothingBehindWith", "TAVOREG y BY g WITH\n  /PLAN FILE='plan.xml'.",
            Error("Keyword ^1 should be followed by a valid variable name in ^2 variable list...",
                  "keyword WITH", "WITH")),
      Wrong("EmptyModel", "TAVOREG y\n  /PLAN FILE='plan.xml'\n  /INTERCEPT INCLUDE=NO.",
            Error("No factors, no covariates, no intercept ...", "The model is empty")),
      Wrong("WeightAsCovariate", "TAVOREG y WITH w\n  /PLAN FILE='plan.xml'.",
            Error("Plan variable name ^1 for parameter ^2 cannot be used for variable list ^3...",
                  "Variable w serves the plan")),
      Wrong("StratumAsFactor", "TAVOREG y BY st\n  /PLAN FILE='plan.xml'.",
            Error("Plan variable name ^1 for parameter ^2 cannot be used for variable list ^3...",
                  "Stage 1 of the plan: Variable st serves the plan")),
  };
}

std::vector<BadInput> SyntaxCases() {
  return {
      Wrong("MisspeltCommand", "TAVOREK y WITH x\n  /PLAN FILE='plan.xml'.",
            Error("Command ^1 is not recognized...", "Did you mean TAVOREG?", "TAVOREK")),
      Wrong("UnknownCommand", "FREQUENCIES y.",
            Error("Command ^1 is not recognized...", "no command FREQUENCIES", "FREQUENCIES")),
      Wrong("MisspeltSubcommand", CommandWith("  /CRITERA MXITER=3"),
            Error("Subcommand ^1 is not recognized...", "Did you mean CRITERIA?", "CRITERA")),
      Wrong("MisspeltKeyword", CommandWith("  /CRITERIA CHKSEP=20 MXITR=3"),
            Error("^1 is not a valid parameter for subcommand ^2...", "Did you mean MXITER?", "MXITR")),
      Wrong(
          "MisspeltPrintKeyword", CommandWith("  /PRINT SUMMARY CLASTABLE"),
          Error("^1 is not a valid parameter for subcommand ^2...", "Did you mean CLASSTABLE?", "CLASTABLE")),
      Wrong("MisspeltWord", CommandWith("  /INTERCEPT INCLUDE=YESS"),
            Error("Parameter ^1 of subcommand ^2 cannot take value ^3...",
                  "cannot be YESS. It takes YES, NO or ONLY.", "YESS")),
      Wrong("UnclosedLiteral", "TAVOREG y WITH x\n  /PLAN FILE='plan.xml.",
            Error("Literal not closed on its line...", "no closing quote", "FILE=|'")),
      Wrong("UnclosedComment", "TAVOREG y WITH x /* a comment\n  /PLAN FILE='plan.xml'.",
            Error("Comment not closed...", "never closed", "/*")),
      Wrong("NoPlan", "TAVOREG y WITH x.",
            Error("Subcommand ^1 is required...", "Subcommand PLAN is missing", "TAVOREG")),
      Wrong("PlanWithoutFile", "TAVOREG y WITH x /PLAN.",
            Error("Parameter ^1 is required in subcommand ^2...", "PLAN needs the keyword FILE", "PLAN")),
      Wrong("RepeatedCriteria", CommandWith("  /CRITERIA MXITER=3\n  /CRITERIA MXSTEP=3"),
            Error("Subcommand ^1 already called...", "CRITERIA was given before", "MXITER=3\n  /|CRITERIA")),
      Wrong("NegativeIterations", CommandWith("  /CRITERIA MXITER=-3"),
            Error(kNotInteger, "value of MXITER", "MXITER")),
      Wrong("FractionOfAnIteration", CommandWith("  /PRINT HISTORY(1.5)"),
            Error(kNotInteger, "value of HISTORY", "1.5")),
      Wrong("ConfidenceOf100", CommandWith("  /CRITERIA CILEVEL=100"),
            Error("Parameter ^1 of subcommand ^2 does not have a valid numerical value...",
                  "value of CILEVEL", "CILEVEL")),
      Wrong("WordForANumber", CommandWith("  /CRITERIA CILEVEL=high"),
            Error("Parameter ^1 of subcommand ^2 has incorrect value type...", "value of CILEVEL", "high")),
      Wrong("NoBrackets", CommandWith("  /CRITERIA LCONVERGE=0.01"),
            Error("Square brackets required for parameter ^1 in subcommand ^2...", "value of LCONVERGE",
                  "LCONVERGE")),
      Wrong("NoCommand", "", Error("No command in file...", "command.tvs holds no command")),
      Wrong("OnlyAComment", "/* nothing yet */\n",
            Error("No command in file...", "command.tvs holds no command")),
  };
}

std::vector<BadInput> SubcommandCases() {
  return {
      Wrong("EffectOfAnotherVariable", CommandWith("  /MODEL g b"),
            Error("Model effect is opening with ^1, subcommand ^2 ...", "b was found in subcommand MODEL",
                  "g |b")),
      Wrong("EffectNotClosed", CommandWith("  /MODEL x(g"),
            Error("Unbalanced parentheses in effect, subcommand ^1 ...", "parentheses of an effect", "x(|g")),
      Wrong("NestedInACovariate", CommandWith("  /MODEL g(x)"),
            Error("Covariate ^1 nested in effect, subcommand ^2 ...", "nested in the covariate x", "g(|x")),
      {"FactorNotUsed",
       {"TAVOREG y BY g b\n  /PLAN FILE='plan.xml'\n  /MODEL g.", Data()},
       0,
       {Warning("Model does not use [%1:, ^1:]1", "these variables of the command: b")}},
      Wrong("UnknownDomain", CommandWith("  /DOMAIN VARIABLE=region(2)"),
            Error("Variable ^1 for parameter ^2 of subcommand ^3 is not found in the dictionary...",
                  "no variable region, which VARIABLE of subcommand DOMAIN names", "region")),
      Wrong("DomainValueNotFound", CommandWith("  /DOMAIN VARIABLE=d(9)"),
            Error("Invalid domain variable value", "No case has the value that subcommand DOMAIN gives")),
      {"ReferenceNotFound",
       {"TAVOREG y(7) WITH x\n  /PLAN FILE='plan.xml'.", Data()},
       0,
       {Warning("Highest factor level is used", "The reference category does not occur")}},
  };
}

class BadCommand : public testing::TestWithParam<BadInput> {};

TEST_P(BadCommand, IsAnswered) {
  ExpectAnswer(GetParam());
}

std::string NameOf(const testing::TestParamInfo<BadInput>& each) {
  return each.param.name;
}

INSTANTIATE_TEST_SUITE_P(VariableList, BadCommand, testing::ValuesIn(VariableListCases()), NameOf);
INSTANTIATE_TEST_SUITE_P(Syntax, BadCommand, testing::ValuesIn(SyntaxCases()), NameOf);
INSTANTIATE_TEST_SUITE_P(Subcommand, BadCommand, testing::ValuesIn(SubcommandCases()), NameOf);

TEST(SeveralCommands, RunThoughOneFails) {
  const ProgramRun run = RunAnalysis({"TAVOREG y WITH nix\n  /PLAN FILE='plan.xml'.\n" + kSimple + ".\n\n" +
                                          kSimple + "\n  /NIX.\nTAVOREG y WITH z\n  /PLAN FILE='plan.xml'.\n",
                                      Data()});
  EXPECT_EQ(run.exitStatus, 1);
  const auto commands = run.Json()["commands"];
  ASSERT_EQ(commands.size(), 4U);
  const std::vector<std::string> status = {"error", "ok", "error", "ok"};
  for (std::size_t i = 0; i < status.size(); ++i) {
    EXPECT_EQ(commands[i]["status"], status[i]) << i;
    EXPECT_EQ(commands[i]["tables"].empty(), status[i] == "error") << i;
    EXPECT_EQ(commands[i]["messages"].size(), status[i] == "error" ? 1U : 0U) << i;
  }
}

TEST(SubcommandsThatAddToTheOutput, LeaveTheOtherTablesAsTheyAre) {
  const std::string print = "\n  /STATISTICS PARAMETER SE\n  /PRINT SAMPLEINFO SUMMARY";
  const auto tables = [&](const std::string& more) {
    const ProgramRun run = RunAnalysis({kSimple + print + more + ".", Data()});
    EXPECT_EQ(run.exitStatus, 0) << more << '\n' << run.messages;
    return run.Json()["commands"][0]["tables"];
  };
  const auto without = tables("");
  ASSERT_GE(without.size(), 3U);
  for (const std::string more : {"CUSTOM LMATRIX=g 1 -1 0", "ODDSRATIOS FACTOR=[g]", "SAVE PREDPROB PREDVAL",
                                 "OUTFILE COVB='covariances.vdt'"}) {
    const auto with = tables("\n  /" + more);
    for (const auto& table : without)
      EXPECT_THAT(with, testing::Contains(table)) << more;
  }
}

}  // namespace
