// Every message that the command can raise, with a command that raises it, its arguments and its place.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

#include "message_cases.h"
#include "standalone/output/catalogue.h"

namespace command_parser_test {

namespace {

const std::vector<MessageCase>& Cases() {
  static const std::vector<MessageCase> cases = [] {
    std::vector<MessageCase> all = CommandCases();
    for (const auto& more : {HypothesisCases(), OutputCases(), PlanCases()})
      all.insert(all.end(), more.begin(), more.end());
    return all;
  }();
  return cases;
}

class EveryMessage : public testing::TestWithParam<std::size_t> {};

TEST_P(EveryMessage, IsSentWithItsArgumentsAndItsPlace) {
  const MessageCase& expected = Cases()[GetParam()];
  SCOPED_TRACE(expected.command);
  ASSERT_TRUE(standalone::HasCatalogueText(expected.key)) << expected.key;
  CommandRun run;
  run.WritePlan(expected.plan);
  run.initial = expected.initial;
  std::string command = expected.command;
  const std::size_t mark = command.find('^');
  if (mark != std::string::npos) command.erase(mark, 1);

  EXPECT_EQ(run.Parse(command), !expected.isError);
  ASSERT_EQ(run.Messages().size(), 1U) << testing::PrintToString(run.Keys());
  const standalone::Message& message = run.Messages().front();
  EXPECT_EQ(message.key, expected.key);
  EXPECT_EQ(message.isError, expected.isError);
  const std::string sentence =
      expected.group + standalone::FillTemplate(standalone::CatalogueText(expected.key), expected.arguments);
  EXPECT_THAT(message.text, testing::StartsWith(sentence));
  EXPECT_EQ(message.location, mark == std::string::npos ? "" : "test.tvs:1:" + std::to_string(mark + 1));
}

INSTANTIATE_TEST_SUITE_P(Commands, EveryMessage, testing::Range(std::size_t{0}, Cases().size()));

enum class Level { kError, kWarning };

/// The family of messages that the command answers with.
const std::map<std::string, Level>& Family() {
  constexpr Level E = Level::kError;
  constexpr Level W = Level::kWarning;
  static const std::map<std::string, Level> family = {
      {"ALL was expected in ^2 row but ^1 was found, subcommand ^3 ...", E},
      {"Covariate ^1 nested in effect, subcommand ^2 ...", E},
      {"Default joint probability file ^1 cannot be accessed...", E},
      {"Denominator ^1 in fraction for ^2 is not a valid number, subcommand ^3 ...", E},
      {"^1 and ^2 different number of rows, subcommand ^3 ...", E},
      {"Different number of values in ^1 for the same effect, subcommand ^2 ...", E},
      {"Different number of values in ^1, subcommand ^2 ...", E},
      {"No split file ...", W},
      {"No VORN weight ...", W},
      {"Effect ^1 in ^2 not in MODEL, subcommand ^3 ...", E},
      {"Either ^1 or ^2, or both, required for ^3...", E},
      {"File ^1 cannot be accessed...", E},
      {"File ^1 cannot be used for both ^2 and ^3...", E},
      {"Parameter ^1 of subcommand ^2 with value ^3 is ignored...", W},
      {"Intercept cannot be used in ^1, subcommand ^2 ...", E},
      {"Only intercept can be used in ^1, subcommand ^2 ...", E},
      {"Intercept value was expected in ^2 row but ^1 was found, subcommand ^3 ...", E},
      {"^3 variable ^1 has value ^2 of invalid type or format, subcommand ^4...", E},
      {"^3 variable ^1 has value ^2 of invalid type or format...", E},
      {"MATRIX variable ^1 in column ^4 has value ^2 of invalid type or format in row ^3...", E},
      {"Variable ^1 has value ^2 of invalid type or format, variable list ^3...", E},
      {"^1 for ^2 is not a covariate variable name, subcommand ^3 ...", E},
      {"^1 specified for ^2 is not a factor or covariate variable name, subcommand ^3 ...", E},
      {"^1 for ^2 is not a factor variable name, subcommand ^3 ...", E},
      {"Parameter ^1 of subcommand ^2 cannot take value ^3...", E},
      {"Subcommand ^1 is invalid when parameter ^2 has value ^3...", E},
      {"Invalid type of ^2 row ^1, subcommand ^3 ...", E},
      {"^2 row should contain ^1 value, subcommand ^3 ...", E},
      {"Variable name ^1 for parameter ^2 of subcommand ^3 is not valid...", E},
      {"Variable name ^1 for parameter ^2 is not valid...", E},
      {"Variable name ^1 in variable list ^2 is not valid...", E},
      {"Keyword ^1 should be followed by a valid variable name in ^2 variable list...", E},
      {"Keyword ^1 already occured in ^2 variable list...", E},
      {"Keyword TO improperly used in ^1...", E},
      {"Empty label in subcommand ^1 ...", E},
      {"Model effect was expected in ^2 row but ^1 was found, subcommand ^3 ...", E},
      {"No factors, no covariates, no intercept ...", E},
      {"Model does not use [%1:, ^1:]1", W},
      {"^1 should be scalar when ^2 is not used, subcommand ^3...", E},
      {"No denominator for numerator ^1 in fraction for ^2, subcommand ^3 ...", E},
      {"No valid number after symbol ^1 in parameter ^2, subcommand ^3 ...", E},
      {"The parser cannot get plan file specifications...", E},
      {"The plan doesn't have any stage...", E},
      {"Parser cannot get information for the current stage...", E},
      {"The command doesn't have any subcommand...", E},
      {"Stage Number Sequence [%1:, ^1:]1 is invalid", E},
      {"Not positive denominator ^1 in fraction for ^2, subcommand ^3 ...", E},
      {"Either ^1 or ^2, but not both, required for ^3...", E},
      {"Output variable ^1 already exists...", E},
      {"Parameter ^1 of subcommand ^3 cannot be given with parameter ^2...", E},
      {"Parameter ^1 of subcommand ^2 does not have a valid integer value...", E},
      {"Parameter ^1 of subcommand ^2 does not have a valid numerical value...", E},
      {"Parameter ^1 is required when parameter ^2 takes value ^4, subcommand ^3...", E},
      {"Parameter ^1 is required when parameter ^2 is used, subcommand ^3...", E},
      {"Unbalanced parentheses in effect, subcommand ^1 ...", E},
      {"Plan variable name ^1 for parameter ^2 cannot be used for variable list ^3...", E},
      {"Plan variable name ^1 cannot be used for parameter ^2 of subcommand ^3...", E},
      {"Repeated covariate ^1 in parameter ^2, subcommand ^3 ...", E},
      {"Duplicate effect ^1 in ^2 row, subcommand ^3 ...", E},
      {"Repeated factor in effect ^1, subcommand ^2 ...", E},
      {"Repeated factor ^1 in parameter ^2, subcommand ^3 ...", E},
      {"Duplicate effect in ^1 ...", W},
      {"Square brackets required for parameter ^1 in subcommand ^2...", E},
      {"Symbol ^1 in parameter ^2 is not a number, subcommand ^3 ...", E},
      {"Invalid syntax in parameter ^2, symbol ^1, subcommand ^3 ...", E},
      {"Invalid syntax in parameter ^2, symbol ^1 ...", E},
      {"Invalid syntax in variable list ^2, symbol ^1 ...", E},
      {"Syntax error in effect ^1, subcommand ^2 ...", E},
      {"Variable name ^1 for variable list ^2 cannot be used for parameter ^3...", E},
      {"Variable ^1 for parameter ^2 has invalid value, subcommand ^3...", E},
      {"Variable ^1 for parameter ^2 of subcommand ^3 is not found in the dictionary...", E},
      {"Variable ^1 for subcommand ^2 is not found in the dictionary...", E},
      {"Variable ^1 for parameter ^2 is not found in the dictionary...", E},
      {"Variable ^1 for variable list ^2 is not found in the dictionary...", E},
      {"Variable ^1 for parameter ^2 of subcommand ^3 is not numeric...", E},
      {"Variable ^1 for subcommand ^2 is not numeric...", E},
      {"Variable ^1 for parameter ^2 is not numeric...", E},
      {"Variable ^1 for variable list ^2 is not numeric...", E},
      {"Variable ^1 for parameter ^2 of subcommand ^3 already occured...", E},
      {"Variable ^1 for parameter ^2 already occured...", E},
      {"Model effect is opening with ^1, subcommand ^2 ...", E},
      {"Parameter ^1 of subcommand ^2 has incorrect value type...", E},
  };
  return family;
}

/// Members of the family that no command brings about, with the reason.
const std::map<std::string, const char*>& Unreachable() {
  static const std::map<std::string, const char*> keys = {
      {"^3 variable ^1 has value ^2 of invalid type or format...",
       "values stand in the variable list or in a subcommand; a plan's matrix has a message of its own"},
      {"Variable name ^1 for parameter ^2 is not valid...",
       "the reader of a plan file refuses names that can't be variables"},
      {"The parser cannot get plan file specifications...",
       "a plan file without an analysis section is refused by its reader"},
      {"The command doesn't have any subcommand...", "the host asks for the variable list first"},
      {"Parser cannot get information for the current stage...",
       "the reader of a plan file tells sizes from probabilities"},
      {"Parameter ^1 is required when parameter ^2 is used, subcommand ^3...",
       "no keyword needs another one that is given by itself"},
      {"Invalid syntax in parameter ^2, symbol ^1 ...",
       "tokens are read in the variable list or in a subcommand"},
      {"Variable ^1 for subcommand ^2 is not found in the dictionary...",
       "variables that are looked up stand in a keyword"},
      {"Variable ^1 for parameter ^2 of subcommand ^3 is not numeric...",
       "no keyword looks up a variable that must be a number"},
      {"Variable ^1 for subcommand ^2 is not numeric...",
       "no subcommand looks up a variable that must be a number"},
      {"Variable ^1 for parameter ^2 of subcommand ^3 already occured...",
       "the reader of a plan file refuses repeated names, and keywords have messages of their own"},
  };
  return keys;
}

/// Messages beside the family: what a sound run can't be made from.
const std::set<std::string>& Own() {
  static const std::set<std::string> keys = {
      "The plan doesn't name a weight variable...",
      "Stage ^1 of the plan has no estimation method...",
      "Stage ^1 of the plan is sampled without replacement but gives neither population sizes nor inclusion "
      "probabilities...",
  };
  return keys;
}

TEST(MessageFamily, EveryMemberHasACommandThatRaisesItOrAReasonWhyNoneDoes) {
  std::set<std::string> raised;
  for (const MessageCase& each : Cases())
    raised.insert(each.key);
  for (const auto& [key, level] : Family()) {
    EXPECT_NE(raised.contains(key), Unreachable().contains(key)) << key;
  }
}

TEST(MessageFamily, EveryRowIsAboutAMemberAtItsLevel) {
  for (const MessageCase& each : Cases()) {
    if (Own().contains(each.key)) continue;
    const auto member = Family().find(each.key);
    ASSERT_NE(member, Family().end()) << each.key;
    EXPECT_EQ(each.isError, member->second == Level::kError) << each.key;
  }
}

TEST(MessageFamily, WhatNoCommandBringsAboutIsAMember) {
  for (const auto& [key, reason] : Unreachable())
    EXPECT_TRUE(Family().contains(key)) << key;
}

TEST(MessageFamily, BothPartsOfAPlanAreNamedInFrontOfMessages) {
  const auto hasGroup = [](const std::string& group) {
    return std::any_of(Cases().begin(), Cases().end(),
                       [&](const MessageCase& each) { return each.group == group + ": "; });
  };
  EXPECT_TRUE(hasGroup(standalone::CatalogueText("Global plan stage...")));
  EXPECT_TRUE(
      hasGroup(standalone::FillTemplate(standalone::CatalogueText("Plan stage ^1..."), {std::string("1")})));
}

}  // namespace

}  // namespace command_parser_test
