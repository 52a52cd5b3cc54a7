// The tokens of command files: text in, compact dump out.
#include <gtest/gtest.h>

#include "command_dump.h"
#include "standalone/command/parser_keys.h"

namespace {

using command_test::Dump;
using standalone::CommandTokens;
using standalone::SourceText;

std::vector<CommandTokens> Read(std::string text) {
  return ReadCommands(SourceText("f", std::move(text)));
}

/// All commands of a text, separated by " | ", errors behind their command as <line:column+length key>.
std::string Tokens(std::string text) {
  std::string dump;
  for (const CommandTokens& command : Read(std::move(text))) {
    if (!dump.empty()) dump += " | ";
    dump += Dump(command.tokens);
    for (const standalone::TokenError& error : command.errors) {
      dump.append("<").append(Dump(error.position)).append(" ").append(error.key).append(">");
    }
  }
  return dump;
}

struct Case {
  const char* text;
  const char* tokens;
};

void Check(const std::vector<Case>& cases) {
  for (const Case& c : cases)
    EXPECT_EQ(Tokens(c.text), c.tokens) << c.text;
}

TEST(CommandReader, ReadsNumbersInEveryForm) {
  Check({
      {"X 1 -1 .5 -.5 3.0 1e-6 1E+5 +2", "X #1 #-1 #0.5 #-0.5 #3 #1e-06 #1e+05 #2"},
      {"X 007 -0 0.1 123456789012345678901234567890", "X #7 #-0 #0.1 #1.2345678901234568e+29"},
      {"X 3. 4", "X #3 #4"},
      {"X 5e-324 1.7976931348623157e308", "X #5e-324 #1.7976931348623157e+308"},
  });
}

TEST(CommandReader, TakesWhatIsNoWholeNumberForAWord) {
  Check({
      {"X 2-1 1e 0x10 1.2.3 -x - + . x", "X ~2-1 ~1e ~0x10 ~1.2.3 ~-x ~- ~+ ~. x"},
      {"X inf nan 1d5 2019a", "X inf nan ~1d5 ~2019a"},
  });
}

TEST(CommandReader, GivesASignToTheNumberBehindAnyOperator) {
  Check({{"X -1/2;-1/-2 (+3)[-4]=-5:-6*-7", "X #-1 / #2 ; #-1 / #-2 ( #3 ) [ #-4 ] = #-5 : #-6 * #-7"}});
}

TEST(CommandReader, TellsNamesFromOtherWords) {
  Check({
      {"X a_ a.b a_1 @x #y $z age2 \xC3\xA9tage", "X a_ a.b a_1 @x #y $z age2 \xC3\xA9tage"},
      {"X a- a. b _a plan-2.xml", "X ~a- ~a. b ~_a ~plan-2.xml"},
  });
}

TEST(CommandReader, GivesReservedWordsTheirCodesInAnyCase) {
  Check({{"tavoreg y By a To b WITH x all", "tavoreg y !By a !To b !WITH x !all"}});
  const std::vector<CommandTokens> commands = Read("X TO WITH BY ALL");
  const std::vector<host::TokenInfoObj>& tokens = commands.at(0).tokens;
  EXPECT_EQ(tokens.at(1).getOperatorCode(), host::OperatorCode::kTo);
  EXPECT_EQ(tokens.at(2).getOperatorCode(), host::OperatorCode::kWith);
  EXPECT_EQ(tokens.at(3).getOperatorCode(), host::OperatorCode::kBy);
  EXPECT_EQ(tokens.at(4).getOperatorCode(), host::OperatorCode::kAll);
  EXPECT_TRUE(tokens.at(4).IsPlainString());
  EXPECT_FALSE(tokens.at(4).IsVarName());
}

TEST(CommandReader, GivesEachOperatorItsCode) {
  const std::vector<CommandTokens> commands = Read("X * / ( ) : ; = [ ]");
  using enum host::OperatorCode;
  const std::vector<host::OperatorCode> expected = {
      kNone,          kTimes,        kSlash,  kLeftParenthesis, kRightParenthesis,
      kRootSeparator, kRowSeparator, kEquals, kLeftBracket,     kRightBracket};
  std::vector<host::OperatorCode> found;
  for (const host::TokenInfoObj& token : commands.at(0).tokens)
    found.push_back(token.code);
  EXPECT_EQ(found, expected);
  EXPECT_EQ(Dump(commands.at(0).tokens), "X * / ( ) : ; = [ ]");
}

TEST(CommandReader, ReadsLiteralsWithEitherQuoteAndDoubledQuotesInside) {
  Check({
      {"X 'a b' \"it's\" 'it''s' \"say \"\"so\"\"\" '' '\t'", "X 'a b' 'it's' 'it's' 'say \"so\"' '' '\t'"},
      {"X '/* no comment */' 'a.'\nY", "X '/* no comment */' 'a.' Y"},
      {"X f='a'b", "X f = 'a' b"},
  });
}

TEST(CommandReader, TakesACommaForABlankButNotBetweenDigits) {
  Check({
      {"X a,b, c ,d,,e", "X a b c d e"},
      {"X 1, 2 ,3,-4,.5,x", "X #1 #2 #3 #-4 #0.5 x"},
      {"X 0,5", "X #0 #5<1:4+1 Comma between two digits...>"},
  });
}

TEST(CommandReader, EndsACommandWithAPeriodAtTheEndOfALine) {
  Check({
      {"A x.\nB y.", "A x | B y"},
      {"A x.  \t\r\nB y  .\n", "A x | B y"},
      {"A x. B y.", "A ~x. B y"},
      {"A 3.\nB 1e5.\nC .5.\nD 'x'.\nE (x).\nF DEFF.", "A #3 | B #1e+05 | C #0.5 | D 'x' | E ( x ) | F DEFF"},
      {"A x. /* end */\nB y. /* a */ /* b */", "A x | B y"},
      {"A x. /* over\nlines */ B y", "A x | B y"},
      {"A 3..\nB x\n.\n.\nC", "A #3 | B x | C"},
  });
}

TEST(CommandReader, EndsACommandWithABlankLineOrTheEndOfTheText) {
  Check({
      {"A x\n\nB y", "A x | B y"},
      {"\n\n A x\n \t \n\n\nB y\n\n", "A x | B y"},
      {"A x\r\n\r\nB y", "A x | B y"},
      {"A x\n/PLAN", "A x / PLAN"},
      {"", ""},
      {" \n\n\t", ""},
  });
}

TEST(CommandReader, SkipsCommentsAndKeepsTheCommandGoing) {
  Check({
      {"/* first */ A x /* mid */ y/**/z", "A x y z"},
      {"A x\n/* a line of its own */\ny", "A x y"},
      {"A x /* blank\n\nlines inside. \n\n*/ y", "A x y"},
      {"A /*/ x */ y /* * / ** */ z", "A y z"},
      {"A 'x'/* - */.", "A 'x'"},
  });
}

TEST(CommandReader, NamesACommandByItsFirstTokenInUpperCase) {
  const std::vector<CommandTokens> commands = Read("tavoreg y.\nOther.\n12 x.\n");
  ASSERT_EQ(commands.size(), 3u);
  EXPECT_EQ(commands[0].name, "TAVOREG");
  EXPECT_EQ(commands[1].name, "OTHER");
  EXPECT_EQ(commands[2].name, "");
  EXPECT_TRUE(commands[1].errors.empty());
  EXPECT_EQ(commands[2].errors.size(), 1u);
}

TEST(CommandReader, CountsPositionsInCharacters) {
  // The literal holds é and €; its quotes belong to it.
  const std::vector<CommandTokens> commands = Read("A \xC3\xA9t\xC3\xA9 '\xE2\x82\xAC''' x\r\n\t/12.5.");
  std::string positions;
  for (const host::TokenInfoObj& token : commands.at(0).tokens)
    positions += Dump(token.position) + " ";
  EXPECT_EQ(positions, "1:1+1 1:3+3 1:7+5 1:13+1 2:2+1 2:3+4 ");
}

TEST(CommandReader, AgreesWithTheSourceTextAboutPositions) {
  const SourceText source("f", "A '\xE2\x82\xAC' bc\rd /* \n x */ ef\r\n\xC3\xA9 g");
  const std::vector<CommandTokens> commands = ReadCommands(source);
  std::size_t offset = 0;
  ASSERT_EQ(commands.size(), 1u);
  for (const host::TokenInfoObj& token : commands[0].tokens) {
    offset = source.Text().find(token.IsLiteral() ? "'" : token.text, offset);
    const std::size_t length = token.text.size() + (token.IsLiteral() ? 2 : 0);
    EXPECT_EQ(Dump(token.position), Dump(source.PositionOf(offset, length))) << token.text;
    offset += length;
  }
}

TEST(CommandReader, ReportsMistakesInTheTextWithTheirPlace) {
  Check({
      {"A 'x\ny z", "A y z<1:3+1 Literal not closed on its line...>"},
      {"A \"x", "A<1:3+1 Literal not closed on its line...>"},
      {"A 'it's'", "A 'it' s<1:8+1 Literal not closed on its line...>"},
      {"A x /* y\nz.\n\nB", "A x<1:5+2 Comment not closed...>"},
      {"A x.\n/*/", "A x | <2:1+2 Comment not closed...>"},
      {"A \xFFx y", "A y<1:3+1 Invalid UTF-8 in command...>"},
      {"A '\xC3' y", "A '\xC3' y<1:4+1 Invalid UTF-8 in command...>"},
      {"A \x07 y", "A y<1:3+1 Control character in command...>"},
      {"A 1e999", "A<1:3+5 Number ^1 out of range...>"},
      {"A 1e-999", "A<1:3+6 Number ^1 out of range...>"},
      {"A -1.7976931348623157e308", "A<1:3+23 Number ^1 out of range...>"},
      {"/PLAN x", "/ PLAN x<1:1+1 Command name expected but ^1 found...>"},
      {"A \xE2\x80\x9Cx\xE2\x80\x9D", "A<1:3+1 Typographic character ^1 in command...>"},
      {"A \xE2\x88\x92"
       "1",
       "A<1:3+1 Typographic character ^1 in command...>"},
      {"A x\xC2\xA0y", "A<1:4+1 Typographic character ^1 in command...>"},
      {"A a\xE2\x80\x93z", "A a\xE2\x80\x93z"},
  });
}

TEST(CommandReader, ReportsANulByteWhereverItStandsInACommand) {
  EXPECT_EQ(Tokens(std::string("A x\0y z", 7)), "A z<1:4+1 NUL byte in command...>");
  EXPECT_EQ(Tokens(std::string("A '\0'", 5)).substr(0, 3), "A '");
  EXPECT_NE(Tokens(std::string("A '\0'", 5)).find("<1:4+1 NUL byte in command...>"), std::string::npos);
}

TEST(CommandReader, RefusesEveryMalformedSequenceOfUtf8) {
  const std::vector<std::string> malformed = {
      "\x80",              // a byte that continues nothing
      "\xC0\xAF",          // an overlong slash
      "\xE0\x80\xAF",      // the same in three bytes
      "\xED\xA0\x80",      // a surrogate
      "\xF4\x90\x80\x80",  // above U+10FFFF
      "\xF5\x80\x80\x80",
      "\xE2\x82",
      "\xF0\x9D\x84",
  };
  for (const std::string& bytes : malformed) {
    EXPECT_EQ(Tokens("A " + bytes + " z"), "A z<1:3+1 Invalid UTF-8 in command...>");
  }
}

TEST(CommandReader, DoesNotLoseTheNextCommandInAnOpenLiteral) {
  Check({{"A 'x.\nB y.", "A<1:3+1 Literal not closed on its line...> | B y"}});
}

TEST(CommandReader, LeavesTheContentOfCommentsAlone) {
  EXPECT_EQ(Tokens(std::string("A /* \xFF \0 \xE2\x80\x9C */ x", 17)), "A x");
}

TEST(CommandReader, GivesATokenSequenceOverACommand) {
  const std::vector<CommandTokens> commands = Read("A x y");
  const auto sequence = MakeTokenSequence(commands.at(0));
  EXPECT_EQ(&sequence->Tokens(), &commands[0].tokens);
}

}  // namespace
