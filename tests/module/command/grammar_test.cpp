#include "module/command/grammar.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "command_run.h"

namespace command_parser_test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const host::SubComDescriptor& Find(const host::CommandDescriptor& command, const std::string& name) {
  for (const host::SubComDescriptor& subcommand : command.subcommands) {
    if (subcommand.name == name) return subcommand;
  }
  throw std::out_of_range(name);
}

TEST(Grammar, HasAllSubcommandsInOrder) {
  std::vector<std::string> names;
  for (const auto& subcommand : tavo::BuildGrammar().subcommands)
    names.push_back(subcommand.name);
  EXPECT_THAT(names,
              ElementsAre("", "PLAN", "JOINTPROB", "MODEL", "INTERCEPT", "CUSTOM", "ODDSRATIOS", "CRITERIA",
                          "STATISTICS", "TEST", "DOMAIN", "MISSING", "PRINT", "SAVE", "OUTFILE"));
}

TEST(Grammar, OnlyTheVariableListAndThePlanAreRequiredAndOnlyCustomAndOddsRatiosRepeat) {
  for (const auto& subcommand : tavo::BuildGrammar().subcommands) {
    EXPECT_EQ(subcommand.required, subcommand.name.empty() || subcommand.name == "PLAN") << subcommand.name;
    EXPECT_EQ(subcommand.repeatable, subcommand.name == "CUSTOM" || subcommand.name == "ODDSRATIOS")
        << subcommand.name;
  }
}

TEST(Grammar, OnlyHistoryPredProbAndPredValMayStandAloneAndOnlyLMatrixTakesSlashes) {
  for (const auto& subcommand : tavo::BuildGrammar().subcommands) {
    for (const auto& param : subcommand.params) {
      const bool alone = param.name == "HISTORY" || param.name == "PREDPROB" || param.name == "PREDVAL";
      EXPECT_EQ(param.valueRequired, !alone) << param.name;
      const bool isRows = subcommand.name == "CUSTOM" && param.name == "LMATRIX";
      EXPECT_EQ(param.slashAllowed, isRows) << subcommand.name << param.name;
    }
  }
}

TEST(Grammar, KeywordsOfCriteriaAndPrintStandInReadingOrder) {
  const host::CommandDescriptor command = tavo::BuildGrammar();
  const auto names = [&](const char* subcommand) {
    std::vector<std::string> result;
    for (const auto& param : Find(command, subcommand).params)
      result.push_back(param.name);
    return result;
  };
  EXPECT_THAT(names("CRITERIA"), ElementsAre("CHKSEP", "CILEVEL", "DF", "LCONVERGE", "MXITER", "MXSTEP",
                                             "PCONVERGE", "SINGULAR"));
  EXPECT_THAT(names("PRINT"), ElementsAre("SAMPLEINFO", "VARIABLEINFO", "SUMMARY", "HISTORY", "GEF",
                                          "LMATRIX", "COVB", "CORB", "CLASSTABLE", "NONE"));
}

TEST(Grammar, NothingAfterTheNameIsTheHostsError) {
  CommandRun run;
  EXPECT_FALSE(run.Parse("TAVOREG"));
  EXPECT_THAT(run.Keys(), ElementsAre("Variable list is required for command ^1..."));
}

TEST(Grammar, RepeatingCriteriaIsTheHostsError) {
  CommandRun run;
  EXPECT_FALSE(run.Parse("TAVOREG y /CRITERIA MXITER=1 /CRITERIA MXITER=2"));
  EXPECT_THAT(run.Keys(), ElementsAre("Subcommand ^1 already called..."));
}

TEST(Grammar, RepeatingCustomIsLegal) {
  CommandRun run;
  EXPECT_TRUE(run.Parse("TAVOREG y BY a /CUSTOM LMATRIX=a 1 -1 /CUSTOM LMATRIX=a 1/3 -1/3"));
}

TEST(Grammar, AMessageOfTheSecondCustomNamesItsNumber) {
  CommandRun run;
  EXPECT_FALSE(run.Parse("TAVOREG y BY a /CUSTOM LMATRIX=a 1 -1 /CUSTOM LABEL='q'"));
  ASSERT_EQ(run.Messages().size(), 1U);
  EXPECT_THAT(run.Messages()[0].text, testing::HasSubstr("CUSTOM 2 "));
}

TEST(Grammar, AMessageOfTheOnlyCustomNamesThePlainKeyword) {
  CommandRun run;
  EXPECT_FALSE(run.Parse("TAVOREG y BY a /CUSTOM LABEL='p'"));
  ASSERT_EQ(run.Messages().size(), 1U);
  EXPECT_THAT(run.Messages()[0].text, testing::HasSubstr("CUSTOM needs"));
}

TEST(Grammar, MessagesOfAStageNameTheStageAndNoSubcommand) {
  CommandRun run;
  run.WritePlan(Plan(Stage(1, "wr", {}, {"psu"}) + Stage(2, "wr", {}, {"nix"})));
  EXPECT_FALSE(run.Parse("TAVOREG y /PRINT NONE"));
  ASSERT_EQ(run.Messages().size(), 1U);
  EXPECT_THAT(run.Messages()[0].text, testing::StartsWith("Stage 2 of the plan: "));
  EXPECT_THAT(run.Messages()[0].text, testing::Not(testing::HasSubstr("PRINT")));
  EXPECT_THAT(run.Messages()[0].location, IsEmpty());
}

TEST(Grammar, SubcommandsThatAskForMoreOutputAreTakenWithoutAMessage) {
  CommandRun run;
  EXPECT_TRUE(
      run.Parse("TAVOREG y BY a /SAVE PREDVAL PREDPROB(p:10) /OUTFILE MODEL='m.xml' "
                "/ODDSRATIOS FACTOR=[a] /CUSTOM LMATRIX=a 1 -1"));
  EXPECT_THAT(run.Messages(), IsEmpty());
}

}  // namespace

}  // namespace command_parser_test
