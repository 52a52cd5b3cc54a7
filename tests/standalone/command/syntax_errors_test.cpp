// Commands that do not fit the grammar: each message with its key, its arguments, its place and its
// suggestion.
#include <gtest/gtest.h>

#include "command_dump.h"
#include "standalone/command/syntax_parser.h"
#include "standalone/text/suggestion.h"

namespace {

using command_test::Parse;
using command_test::Parsed;

/// "line:column+length key|arguments", and "?word" when a near word is known; messages separated by line
/// ends.
std::string Messages(const std::string& text) {
  const Parsed parsed = Parse(text);
  EXPECT_EQ(parsed.succeeded, parsed.messages.records.empty()) << text;
  std::string dump;
  for (const auto& record : parsed.messages.records) {
    EXPECT_TRUE(record.isError);
    if (!dump.empty()) dump += '\n';
    dump.append(command_test::Dump(record.context.position)).append(" ").append(record.key);
    for (const std::string& argument : record.arguments)
      dump += "|" + argument;
    const std::string nearest = standalone::NearestWord(record.context.misspelt, record.context.candidates);
    if (!nearest.empty()) dump += " ?" + nearest;
  }
  return dump;
}

struct Case {
  const char* text;
  const char* messages;
};

void Check(const std::vector<Case>& cases) {
  for (const Case& c : cases)
    EXPECT_EQ(Messages(c.text), c.messages) << c.text;
}

TEST(SyntaxParser, ReportsTheMissingListWithNothingAfterTheName) {
  Check({
      {"TAVOREG",
       "1:1+7 Variable list is required for command ^1...|TAVOREG\n"
       "1:1+7 Subcommand ^1 is required...|PLAN"},
      {"TAVOREG /PLAN FILE=p", "1:1+7 Variable list is required for command ^1...|TAVOREG"},
      {"TAVOREG y", "1:1+7 Subcommand ^1 is required...|PLAN"},
  });
}

TEST(SyntaxParser, ReportsUnknownSubcommandsWithTheNearestOne) {
  Check({
      {"TAVOREG y /PLN FILE=p", "1:12+3 Subcommand ^1 is not recognized...|PLN ?PLAN"},
      {"TAVOREG y /PLAN FILE=p /STAT SE", "1:25+4 Subcommand ^1 is not recognized...|STAT ?STATISTICS"},
      {"TAVOREG y /PLAN FILE=p /WHATEVER", "1:25+8 Subcommand ^1 is not recognized...|WHATEVER"},
      {"TAVOREG y /PLAN FILE=dir/p.xml", "1:26+5 Subcommand ^1 is not recognized...|p.xml"},
      {"TAVOREG y /PLAN FILE=p /CUSTOM LMATRIX=a 1 -1 /PRNT NONE",
       "1:48+4 Subcommand ^1 is not recognized...|PRNT ?PRINT"},
      {"TAVOREG y /PLAN FILE=p /CUSTOM LMATRIX=a /whatever",
       "1:43+8 Subcommand ^1 is not recognized...|whatever"},
  });
}

TEST(SyntaxParser, DoesNotAcceptAbbreviations) {
  Check({
      {"TAVOREG y /PLAN FILE=p /PRINT HIST",
       "1:31+4 ^1 is not a valid parameter for subcommand ^2...|HIST|PRINT ?HISTORY"},
      {"TAVOREG y /PLAN FI=p", "1:17+2 ^1 is not a valid parameter for subcommand ^2...|FI|PLAN"},
  });
}

TEST(SyntaxParser, ReportsASlashWithoutASubcommand) {
  Check({
      {"TAVOREG y /PLAN FILE=p /", "1:24+1 No subcommand name after the last slash..."},
      {"TAVOREG y /PLAN FILE=p / 'x'", "1:26+3 Subcommand name ^1 is invalid...|x"},
      {"TAVOREG y //PLAN FILE=p", "1:12+1 Subcommand name ^1 is invalid...|/"},
      {"TAVOREG y /PLAN FILE=p /PRINT NONE /2", "1:37+1 Subcommand name ^1 is invalid...|2"},
  });
}

TEST(SyntaxParser, ReportsUnknownKeywordsWithTheNearestOne) {
  Check({
      {"TAVOREG y /PLAN FILE=p /STATISTICS PARAMETR",
       "1:36+8 ^1 is not a valid parameter for subcommand ^2...|PARAMETR|STATISTICS ?PARAMETER"},
      {"TAVOREG y /PLAN FILE=p /CUSTOM KMATRIX=1 LMATRX=a 1",
       "1:42+6 ^1 is not a valid parameter for subcommand ^2...|LMATRX|CUSTOM ?LMATRIX"},
      {"TAVOREG y /PLAN FILE=p /CRITERIA MXITER=10 20",
       "1:44+2 ^1 is not a valid parameter for subcommand ^2...|20|CRITERIA"},
      {"TAVOREG y /PLAN FILE=p /STATISTICS (SE)",
       "1:36+1 ^1 is not a valid parameter for subcommand ^2...|(|STATISTICS"},
  });
}

TEST(SyntaxParser, ReportsMissingRequiredKeywords) {
  Check({
      {"TAVOREG y /PLAN", "1:12+4 Parameter ^1 is required in subcommand ^2...|FILE|PLAN"},
      {"TAVOREG y /PLAN FILE=p /DOMAIN",
       "1:25+6 Parameter ^1 is required in subcommand ^2...|VARIABLE|DOMAIN"},
      {"TAVOREG y /PLAN FILE=p /MISSING",
       "1:25+7 Parameter ^1 is required in subcommand ^2...|CLASSMISSING|MISSING"},
  });
}

TEST(SyntaxParser, RepeatingCriteriaIsAnError) {
  Check({
      {"TAVOREG y /PLAN FILE=p /CRITERIA DF=1 /CRITERIA DF=2",
       "1:40+8 Subcommand ^1 already called...|CRITERIA"},
      {"TAVOREG y /PLAN FILE=p /plan FILE=q", "1:25+4 Subcommand ^1 already called...|PLAN"},
  });
}

TEST(SyntaxParser, ReportsARepeatedKeyword) {
  Check({
      {"TAVOREG y /PLAN FILE=p /STATISTICS SE EXP se",
       "1:43+2 Parameter ^1 already occurred in subcommand ^2...|SE|STATISTICS"},
      {"TAVOREG y /PLAN FILE=p FILE=q", "1:24+4 Parameter ^1 already occurred in subcommand ^2...|FILE|PLAN"},
  });
}

TEST(SyntaxParser, ReportsValuesOfTheWrongKind) {
  const std::string front = "TAVOREG y /PLAN FILE=p /";
  const std::vector<std::vector<std::string>> cases = {
      {"CRITERIA DF=x", "DF|CRITERIA", "1:37+1"},
      {"CRITERIA DF='1'", "DF|CRITERIA", "1:37+3"},
      {"CRITERIA DF=[1]", "DF|CRITERIA", "1:37+1"},
      {"INTERCEPT INCLUDE=1", "INCLUDE|INTERCEPT", "1:43+1"},
      {"INTERCEPT INCLUDE='NO'", "INCLUDE|INTERCEPT", "1:43+4"},
      {"CUSTOM LABEL=x", "LABEL|CUSTOM", "1:38+1"},
      {"SAVE PREDVAL(3)", "PREDVAL|SAVE", "1:38+1"},
      {"SAVE PREDVAL(ALL)", "PREDVAL|SAVE", "1:38+3"},
      {"SAVE PREDVAL(a b)", "PREDVAL|SAVE", "1:38+1"},
      {"PRINT HISTORY(x)", "HISTORY|PRINT", "1:39+1"},
      {"PRINT HISTORY((3))", "HISTORY|PRINT", "1:39+1"},
      {"OUTFILE COVB=1", "COVB|OUTFILE", "1:38+1"},
      {"OUTFILE MODEL=1", "MODEL|OUTFILE", "1:39+1"},
      {"OUTFILE MODEL=''", "MODEL|OUTFILE", "1:39+2"},
  };
  for (const std::vector<std::string>& c : cases) {
    EXPECT_EQ(Messages(front + c[0]),
              c[2] + " Parameter ^1 of subcommand ^2 has incorrect value type...|" + c[1])
        << c[0];
  }
}

TEST(SyntaxParser, ReportsMissingValues) {
  const std::string front = "TAVOREG y /PLAN FILE=p /";
  const std::vector<std::vector<std::string>> cases = {
      {"CRITERIA DF=", "DF|CRITERIA", "1:34+2"},
      {"CRITERIA DF", "DF|CRITERIA", "1:34+2"},
      {"CRITERIA DF= MXITER=3", "DF|CRITERIA", "1:34+2"},
      {"CRITERIA DF MXITER=3", "DF|CRITERIA", "1:34+2"},
      {"CRITERIA DF= /PRINT NONE", "DF|CRITERIA", "1:34+2"},
      {"CUSTOM LMATRIX= KMATRIX=1", "LMATRIX|CUSTOM", "1:32+7"},
      {"CUSTOM LMATRIX= /CUSTOM KMATRIX=1", "LMATRIX|CUSTOM", "1:32+7"},
      {"JOINTPROB FILE", "FILE|JOINTPROB", "1:35+4"},
      {"PRINT HISTORY()", "HISTORY|PRINT", "1:31+7"},
      {"PRINT HISTORY= COVB=1", "HISTORY|PRINT", "1:31+7"},
      {"SAVE PREDPROB=", "PREDPROB|SAVE", "1:30+8"},
  };
  for (const std::vector<std::string>& c : cases) {
    EXPECT_EQ(Messages(front + c[0]), c[2] + " Parameter ^1 of subcommand ^2 needs a value...|" + c[1])
        << c[0];
  }
}

TEST(SyntaxParser, ExpectsTheEqualsSignOfANamedKeyword) {
  const std::vector<std::vector<std::string>> cases = {
      {"PLAN FILE 'p'", "FILE|PLAN", "1:17+4"},
      {"PLAN FILE p", "FILE|PLAN", "1:17+4"},
      {"PLAN FILE=p /CRITERIA MXITER(5)", "MXITER|CRITERIA", "1:34+6"},
      {"PLAN FILE=p /PRINT HISTORY 3", "HISTORY|PRINT", "1:31+7"},
  };
  for (const std::vector<std::string>& c : cases) {
    EXPECT_EQ(Messages("TAVOREG y /" + c[0]),
              c[2] + " Equals sign expected after parameter ^1, subcommand ^2...|" + c[1])
        << c[0];
  }
}

TEST(SyntaxParser, RefusesAValueOfABareKeyword) {
  Check({
      {"TAVOREG y /PLAN FILE=p /PRINT COVB(1)",
       "1:31+4 Keyword ^1 cannot have a value, subcommand ^2...|COVB|PRINT"},
      {"TAVOREG y /PLAN FILE=p /STATISTICS SE=1 EXP",
       "1:36+2 Keyword ^1 cannot have a value, subcommand ^2...|SE|STATISTICS"},
  });
}

TEST(SyntaxParser, ReportsAnUnclosedParenthesis) {
  const char* key = "1:31+7 Closing parenthesis missing after parameter ^1, subcommand ^2...|HISTORY|PRINT";
  Check({
      {"TAVOREG y /PLAN FILE=p /PRINT HISTORY(3", key},
      {"TAVOREG y /PLAN FILE=p /PRINT HISTORY((3)", key},
      {"TAVOREG y /PLAN FILE=p /PRINT HISTORY( /MODEL a", key},
  });
}

TEST(SyntaxParser, ReportsEachFaultySubcommandOnce) {
  Check({{"TAVOREG y\n/PLAN FILE p\n/PRNT NONE COVB=1\n/CRITERIA DF=x MXITER=y\n/PRINT NONE.",
          "2:7+4 Equals sign expected after parameter ^1, subcommand ^2...|FILE|PLAN\n"
          "3:2+4 Subcommand ^1 is not recognized...|PRNT ?PRINT\n"
          "4:14+1 Parameter ^1 of subcommand ^2 has incorrect value type...|DF|CRITERIA"}});
}

TEST(SyntaxParser, RefusesAnOpeningListThatTheGrammarDoesNotKnow) {
  const standalone::SourceText source("f", "SHOW x /ALLOWED");
  const auto commands = ReadCommands(source);
  host::CommandDescriptor grammar{"SHOW", {}};
  grammar.addSubComDesc({"ALLOWED", host::UPSpecTypes::SubComSpec::kNamed, false, false, {}});
  host::CommandSpec specification;
  command_test::RecordingSink messages;
  EXPECT_FALSE(standalone::SyntaxParser(commands.at(0).tokens, grammar, specification, messages).Parse());
  ASSERT_EQ(messages.records.size(), 1u);
  EXPECT_EQ(messages.records[0].key, "Parameter ^1 does not belong to any subcommand...");
  EXPECT_EQ(specification.getSubComListSize(), 1u);
}

TEST(SyntaxParser, PutsTheCaretUnderTheWordThatIsWrong) {
  const Parsed parsed = Parse("TAVOREG y\n  /PLAN FILE='\xC3\xA9tude.xml'  /STATISTICS PARAMETR SE.");
  ASSERT_EQ(parsed.messages.records.size(), 1u);
  const host::SourcePosition& position = parsed.messages.records[0].context.position;
  EXPECT_EQ(parsed.source.Location(position), "test.tvs:2:39");
  EXPECT_EQ(parsed.source.Excerpt(position),
            "  /PLAN FILE='\xC3\xA9tude.xml'  /STATISTICS PARAMETR SE.\n"
            "                                      ^~~~~~~~");
}

TEST(SyntaxParser, ShortensLongWordsInItsMessages) {
  const Parsed parsed = Parse("TAVOREG y /PLAN FILE=p /" + std::string(100000, 'x'));
  ASSERT_EQ(parsed.messages.records.size(), 1u);
  EXPECT_EQ(parsed.messages.records[0].arguments.at(0), std::string(60, 'x') + "...");
}

}  // namespace
