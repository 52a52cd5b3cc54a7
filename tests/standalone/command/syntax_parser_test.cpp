// Commands that fit the grammar: text in, tree out.
#include "standalone/command/syntax_parser.h"

#include <gtest/gtest.h>

#include "command_dump.h"

namespace {

using command_test::Parse;
using command_test::Parsed;

/// The tree behind "TAVOREG y /PLAN FILE=p", which every command needs.
std::string Tree(const std::string& subcommands) {
  const Parsed parsed = Parse("TAVOREG y /PLAN FILE=p " + subcommands);
  if (!parsed.succeeded) {
    return parsed.messages.records.empty() ? "?" : parsed.messages.records.front().key;
  }
  const std::string tree = command_test::Dump(parsed.specification);
  const std::string front = "/ {y} /PLAN FILE={p} ";
  return tree.starts_with(front) ? tree.substr(front.size()) : tree;
}

TEST(SyntaxParser, ReadsTheOpeningListUpToTheFirstSlash) {
  const Parsed parsed = Parse("tavoreg dep (LOW) by a b to c with x\n /plan file='p.xml'.");
  EXPECT_TRUE(parsed.succeeded);
  EXPECT_EQ(command_test::Dump(parsed.specification),
            "/ {dep ( LOW ) !by a b !to c !with x} /PLAN FILE={'p.xml'}");
  EXPECT_TRUE(parsed.messages.records.empty());
}

TEST(SyntaxParser, AcceptsAnEqualsSignBehindASubcommandsName) {
  EXPECT_EQ(Tree("/MODEL = a b /MISSING=CLASSMISSING=INCLUDE"),
            "/MODEL {a b} /MISSING CLASSMISSING={INCLUDE}");
}

TEST(SyntaxParser, ReadsSubcommandsInTheOrderOfTheCommand) {
  EXPECT_EQ(Tree("/PRINT NONE /MODEL a*b c(d) /INTERCEPT INCLUDE=NO SHOW=YES"),
            "/PRINT NONE /MODEL {a * b c ( d )} /INTERCEPT INCLUDE={NO} SHOW={YES}");
}

TEST(SyntaxParser, TakesAnEmptySubcommandForOneWithoutKeywords) {
  EXPECT_EQ(Tree("/MODEL /TEST /PRINT"), "/MODEL {} /TEST /PRINT");
}

TEST(SyntaxParser, ReadsFileNamesAsWordsAndLiterals) {
  EXPECT_EQ(Tree("/JOINTPROB FILE='dir/joint probs.csv'"), "/JOINTPROB FILE={'dir/joint probs.csv'}");
  EXPECT_EQ(Tree("/JOINTPROB FILE=joint-1.csv"), "/JOINTPROB FILE={~joint-1.csv}");
  EXPECT_EQ(Tree("/OUTFILE COVB='x.csv' PARAMETER=par.xml"), "/OUTFILE COVB={'x.csv'} PARAMETER={par.xml}");
}

TEST(SyntaxParser, ReadsListKeywordsAloneOrWithAValue) {
  EXPECT_EQ(Tree("/PRINT HISTORY"), "/PRINT HISTORY");
  EXPECT_EQ(Tree("/PRINT HISTORY(3) COVB"), "/PRINT HISTORY={#3} COVB");
  EXPECT_EQ(Tree("/PRINT HISTORY=3 COVB"), "/PRINT HISTORY={#3} COVB");
  EXPECT_EQ(Tree("/PRINT HISTORY=(3) COVB"), "/PRINT HISTORY={#3} COVB");
  EXPECT_EQ(Tree("/PRINT COVB, HISTORY, CORB"), "/PRINT COVB HISTORY CORB");
  EXPECT_EQ(Tree("/SAVE PREDPROB(p:10) PREDVAL(best)"), "/SAVE PREDPROB={p : #10} PREDVAL={best}");
  EXPECT_EQ(Tree("/SAVE PREDPROB PREDVAL"), "/SAVE PREDPROB PREDVAL");
  EXPECT_EQ(Tree("/SAVE PREDPROB=p:10 PREDVAL=best"), "/SAVE PREDPROB={p : #10} PREDVAL={best}");
  EXPECT_EQ(Tree("/SAVE PREDPROB=p:10 PREDVAL"), "/SAVE PREDPROB={p : #10} PREDVAL");
  EXPECT_EQ(Tree("/SAVE PREDPROB(:7) PREDVAL"), "/SAVE PREDPROB={: #7} PREDVAL");
  EXPECT_EQ(Tree("/SAVE PREDPROB((p))"), "/SAVE PREDPROB={( p )}");
}

TEST(SyntaxParser, LetsANameBeAKeywordWhereAValueStands) {
  EXPECT_EQ(Tree("/SAVE PREDVAL(PREDPROB)"), "/SAVE PREDVAL={PREDPROB}");
  EXPECT_EQ(Tree("/SAVE PREDPROB=PREDVAL:3"), "/SAVE PREDPROB={PREDVAL : #3}");
  EXPECT_EQ(Tree("/CUSTOM LMATRIX=label 1 -1 model 2 KMATRIX=0"),
            "/CUSTOM LMATRIX={label #1 #-1 model #2} KMATRIX={#0}");
  EXPECT_EQ(Tree("/ODDSRATIOS FACTOR=[control] CONTROL=[factor(1)]"),
            "/ODDSRATIOS FACTOR={[ control ]} CONTROL={[ factor ( #1 ) ]}");
}

TEST(SyntaxParser, ReadsBracketedValuesWhole) {
  EXPECT_EQ(Tree("/CRITERIA LCONVERGE=[0.001 ABSOLUTE] MXITER=5 PCONVERGE=[1e-6]"),
            "/CRITERIA LCONVERGE={[ #0.001 ABSOLUTE ]} MXITER={#5} PCONVERGE={[ #1e-06 ]}");
  EXPECT_EQ(Tree("/DOMAIN VARIABLE=both(1)"), "/DOMAIN VARIABLE={both ( #1 )}");
  EXPECT_EQ(Tree("/ODDSRATIOS COVARIATE=[x(1 10) z(-5)] CONTROL=[a(LOW) z(MEAN)]"),
            "/ODDSRATIOS COVARIATE={[ x ( #1 #10 ) z ( #-5 ) ]} CONTROL={[ a ( LOW ) z ( MEAN ) ]}");
}

TEST(SyntaxParser, RepeatingCustomIsLegal) {
  EXPECT_EQ(
      Tree("/CUSTOM LABEL='a' LMATRIX=1 /CUSTOM KMATRIX=1 /ODDSRATIOS FACTOR=[a] /CUSTOM LMATRIX=ALL 1"),
      "/CUSTOM LABEL={'a'} LMATRIX={#1} /CUSTOM KMATRIX={#1} /ODDSRATIOS FACTOR={[ a ]} "
      "/CUSTOM LMATRIX={!ALL #1}");
}

TEST(SyntaxParser, LeavesTheFractionBarInsideTheMatrix) {
  EXPECT_EQ(Tree("/CUSTOM LMATRIX=a 1 -1/2 -1/2; b 1/3 KMATRIX=1 /PRINT NONE"),
            "/CUSTOM LMATRIX={a #1 #-1 / #2 #-1 / #2 ; b #1 / #3} KMATRIX={#1} /PRINT NONE");
  EXPECT_EQ(Tree("/CUSTOM LMATRIX=1/3"), "/CUSTOM LMATRIX={#1 / #3}");
}

TEST(SyntaxParser, EndsTheMatrixAtASlashWithASubcommandsName) {
  EXPECT_EQ(Tree("/CUSTOM LMATRIX=a 1 -1/PRINT NONE"), "/CUSTOM LMATRIX={a #1 #-1} /PRINT NONE");
  EXPECT_EQ(Tree("/CUSTOM LMATRIX=a 1/2/print NONE"), "/CUSTOM LMATRIX={a #1 / #2} /PRINT NONE");
  EXPECT_EQ(Tree("/CUSTOM LMATRIX=a 1; /CUSTOM KMATRIX=2"), "/CUSTOM LMATRIX={a #1 ;} /CUSTOM KMATRIX={#2}");
}

TEST(SyntaxParser, LeavesFaultyFractionsToTheReaderOfTheMatrix) {
  EXPECT_EQ(Tree("/CUSTOM LMATRIX=a 1/"), "/CUSTOM LMATRIX={a #1 /}");
  EXPECT_EQ(Tree("/CUSTOM LMATRIX=a 1/; b 1"), "/CUSTOM LMATRIX={a #1 / ; b #1}");
  EXPECT_EQ(Tree("/CUSTOM LMATRIX=a 1/b 2"), "/CUSTOM LMATRIX={a #1 / b #2}");
  EXPECT_EQ(Tree("/CUSTOM LMATRIX=a 1/'2'"), "/CUSTOM LMATRIX={a #1 / '2'}");
}

TEST(SyntaxParser, OffersKeywordsInAnyCaseUnderTheirOwnNames) {
  const Parsed parsed = Parse("Tavoreg y\n/Plan File=p\n/Statistics se Deff\n/print History (2).");
  ASSERT_TRUE(parsed.succeeded);
  EXPECT_EQ(command_test::Dump(parsed.specification),
            "/ {y} /PLAN FILE={p} /STATISTICS SE DEFF /PRINT HISTORY={#2}");
}

TEST(SyntaxParser, KnowsWhereSubcommandsAndKeywordsStand) {
  const Parsed parsed = Parse("TAVOREG y\n  /PLAN FILE='p'\n  /PRINT COVB HISTORY(2).");
  const host::CommandSpec& specification = parsed.specification;
  EXPECT_EQ(command_test::Dump(specification.getSubComObj("")->position), "1:9+1");
  EXPECT_EQ(command_test::Dump(specification.getSubComObj("")->exportParamObj()->position), "1:9+1");
  EXPECT_EQ(command_test::Dump(specification.getSubComObj("PRINT")->position), "3:4+5");
  const host::ParamObj* history = specification.getSubComObj("PRINT")->getParamObj("HISTORY");
  EXPECT_EQ(command_test::Dump(history->position), "3:15+7");
  EXPECT_EQ(command_test::Dump(history->value.at(0).position), "3:23+1");
}

// Whole commands as people write them; each must fit the grammar without a message.
TEST(SyntaxParser, AcceptsCommandsOfTheField) {
  const std::vector<std::string> commands = {
      "TAVOREG swide BY yr WITH meals ell\n  /PLAN FILE='plan.xml'\n  /CRITERIA MXITER=100\n"
      "  /STATISTICS PARAMETER SE TTEST CINTERVAL DEFF DEFFSQRT\n"
      "  /PRINT SAMPLEINFO VARIABLEINFO SUMMARY HISTORY(1) COVB CORB CLASSTABLE GEF.",
      "tavoreg swide by stype with meals\n  /plan file='plan.xml'\n  /model stype meals\n"
      "  /statistics parameter se exp deff\n"
      "  /print sampleinfo variableinfo summary classtable gef lmatrix.",
      "TAVOREG HI_CHOL BY race agecat RIAGENDR\n  /PLAN FILE='plan.xml'\n"
      "  /MODEL race agecat RIAGENDR agecat*RIAGENDR\n  /PRINT SUMMARY CLASSTABLE HISTORY.",
      "TAVOREG stype WITH meals mobility\n  /PLAN FILE='plan.xml'\n  /DOMAIN VARIABLE=swide('Yes')\n"
      "  /PRINT CLASSTABLE\n  /SAVE PREDPROB(prob:25) PREDVAL(pred).",
      "/* the lowest category is the reference */\nTAVOREG level (LOW) BY swide WITH meals\n"
      "  /PLAN FILE='plan.xml'.",
      "TAVOREG award BY stype WITH meals mobility\n  /PLAN FILE='plan.xml'\n  /MODEL stype meals mobility\n"
      "  /TEST TYPE=ADJCHISQUARE PADJUST=SEQSIDAK\n"
      "  /CUSTOM LABEL='pairs' LMATRIX=stype 1 -1 0; stype 1 0 -1; stype 2 -2 0; stype 0 1 -1\n"
      "  /PRINT NONE.",
      "TAVOREG swide BY stype yr WITH meals\n  /PLAN FILE='plan.xml'\n"
      "  /CUSTOM LABEL='levels' LMATRIX=stype 1 -1/2 -1/2; stype 0 1 -1 KMATRIX=0.5; -0.25\n"
      "  /CUSTOM LMATRIX=1 stype 1/3 1/3 1/3 yr 1/2 1/2 meals 50\n"
      "  /CUSTOM LMATRIX=ALL 0 1 -1 0 0 0 0; ALL 0 0 0 0 1 -1 1/4\n  /CUSTOM KMATRIX=1\n"
      "  /CUSTOM LMATRIX=stype 1 -1 0; stype 2 -2 0; stype 0 0 0\n  /TEST TYPE=F PADJUST=SIDAK.",
      "TAVOREG stype ('E') BY aw WITH meals mobility\n  /PLAN FILE='plan.xml'\n"
      "  /ODDSRATIOS FACTOR=[aw]\n  /ODDSRATIOS FACTOR=[aw(0)] CONTROL=[meals(20)]\n"
      "  /ODDSRATIOS COVARIATE=[meals(1 10) mobility(-5)]\n"
      "  /ODDSRATIOS COVARIATE=[meals(10)] CONTROL=[aw(LOW) mobility(MEAN)].",
      "TAVOREG bush BY nader WITH lprec\n  /PLAN FILE='plan.xml'\n  /JOINTPROB FILE='joint.csv'\n"
      "  /INTERCEPT INCLUDE=NO SHOW=YES\n  /MISSING CLASSMISSING=INCLUDE\n  /CRITERIA CILEVEL=90 DF=12.5.",
  };
  for (const std::string& command : commands) {
    const Parsed parsed = Parse(command);
    EXPECT_EQ(parsed.commands.size(), 1u) << command;
    EXPECT_TRUE(parsed.commands.at(0).errors.empty()) << command;
    EXPECT_TRUE(parsed.succeeded) << command;
    EXPECT_TRUE(parsed.messages.records.empty()) << command;
  }
}

// Printing the tree as a command and reading it again gives the same tree.
TEST(SyntaxParser, ReadsItsOwnPrintedFormBack) {
  const Parsed first = Parse(
      "TAVOREG y (2) BY a WITH x /PLAN FILE=p /CUSTOM LABEL='it''s' LMATRIX=a 1/2 -1/2 KMATRIX=1; 2 "
      "/PRINT HISTORY(3) COVB /SAVE PREDPROB(p:3) PREDVAL");
  ASSERT_TRUE(first.succeeded);
  std::string printed = "TAVOREG";
  const auto print = [&](const std::vector<host::TokenInfoObj>& tokens) {
    for (const host::TokenInfoObj& token : tokens) {
      std::string text = token.text;
      if (token.IsLiteral()) text = "\"" + text + "\"";
      printed += " " + text;
    }
  };
  for (const host::SubComObj& subcommand : first.specification.subcommands) {
    if (!subcommand.name.empty()) printed += "\n/" + subcommand.name;
    for (const host::ParamObj& param : subcommand.params) {
      printed += " " + param.name;
      if (!param.name.empty() && !param.isLeadingToken()) printed += "=";
      print(param.value);
    }
  }
  const Parsed second = Parse(printed);
  EXPECT_TRUE(second.succeeded) << printed;
  EXPECT_EQ(command_test::Dump(second.specification), command_test::Dump(first.specification));
}

}  // namespace
