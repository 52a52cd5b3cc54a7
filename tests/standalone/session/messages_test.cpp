#include "standalone/session/messages.h"

#include <gtest/gtest.h>

#include "standalone/session/embedded_session.h"
#include "standalone/text/utf8.h"

namespace {

using standalone::Message;

/// A session that is current and runs a command of one line.
class SessionMessages : public testing::Test {
 protected:
  SessionMessages() { fSession.BeginCommand(fCommands.at(0), fSource); }
  const std::vector<Message>& Messages() { return fSession.CurrentOutput()->messages; }

  standalone::SourceText fSource{"a.tvs", "TAVOREG aeg /PLAN FILE=p /PRNT."};
  std::vector<standalone::CommandTokens> fCommands = ReadCommands(fSource);
  standalone::Session fSession;
  standalone::SessionScope fScope{fSession};
};

TEST_F(SessionMessages, CarryTheStageOfThePlanInFront) {
  standalone::MessageContext context;
  context.groupText = "Stage 2 of the plan";
  standalone::SendMessage(true, "Variable ^1 for parameter ^2 is not numeric...", {"x", "STRATA"}, context);
  EXPECT_TRUE(Messages().at(0).text.starts_with("Stage 2 of the plan: Variable x")) << Messages().at(0).text;
}

TEST_F(SessionMessages, CutALongArgumentInTheMiddle) {
  std::string token = "begin";
  while (token.size() < 500000)
    token += "\xC3\xA4";
  token += "end";
  standalone::SendMessage(true, "Empty label in subcommand ^1 ...", {token});
  host::BpComposite composite("Duplicate effect in ^1 ...");
  composite.Add(host::Plain(token));
  host::BpError(composite, host::BpErrorLevel::kWarning);
  host::BpError(host::Plain(token), host::BpErrorLevel::kWarning);
  standalone::MessageContext context;
  context.groupText = token;
  standalone::SendMessage(false, "Empty label in subcommand ^1 ...", {"CUSTOM"}, context);
  ASSERT_EQ(Messages().size(), 4u);
  for (const Message& message : Messages()) {
    EXPECT_LT(message.text.size(), 1000u);
    EXPECT_NE(message.text.find("begin\xC3\xA4"), std::string::npos) << message.text;
    EXPECT_NE(message.text.find(" ... \xC3\xA4"), std::string::npos) << message.text;
    EXPECT_NE(message.text.find("\xC3\xA4"
                                "end"),
              std::string::npos)
        << message.text;
    EXPECT_EQ(standalone::FindBadByte(message.text), message.text.size());
  }
}

TEST_F(SessionMessages, KeepAnArgumentOfTheLengthOfAPath) {
  const std::string path(1000, 'p');
  standalone::SendMessage(true, "Empty label in subcommand ^1 ...", {path});
  EXPECT_NE(Messages().at(0).text.find(path), std::string::npos);
}

TEST_F(SessionMessages, OfAnInterpreterHaveTheirRankAndTheirArguments) {
  host::ParserMessage message;
  message.SetCommandName("TAVOREG");
  message.SetProcedureTitle("TavoReg");
  message.GenericError("Empty label in subcommand ^1 ...", {"CUSTOM 2"});
  message.GenericWarning("Duplicate effect in ^1 ...", {"MODEL"});
  ASSERT_EQ(Messages().size(), 2u);
  EXPECT_TRUE(Messages()[0].isError);
  EXPECT_EQ(Messages()[0].key, "Empty label in subcommand ^1 ...");
  EXPECT_NE(Messages()[0].text.find("CUSTOM 2"), std::string::npos) << Messages()[0].text;
  EXPECT_FALSE(Messages()[1].isError);
}

TEST_F(SessionMessages, OfAnInterpreterForgetPlaceCandidatesAndGroupAfterUse) {
  constexpr const char* kKey = "Variable ^1 for subcommand ^2 is not found in the dictionary...";
  host::ParserMessage message;
  message.SetPosition({1, 9, 3});
  message.SetCandidates({"age", "race"});
  message.SetGroupText("Plan stage 2");
  message.GenericError(kKey, {"aeg", "DOMAIN"});
  message.GenericError(kKey, {"aeg", "DOMAIN"});
  ASSERT_EQ(Messages().size(), 2u);
  EXPECT_EQ(Messages()[0].location, "a.tvs:1:9");
  EXPECT_EQ(Messages()[0].excerpt, "TAVOREG aeg /PLAN FILE=p /PRNT.\n        ^~~");
  EXPECT_TRUE(Messages()[0].text.starts_with("Plan stage 2: ")) << Messages()[0].text;
  EXPECT_TRUE(Messages()[0].text.ends_with("Did you mean age?")) << Messages()[0].text;
  EXPECT_EQ(Messages()[1].location, "");
  EXPECT_EQ(Messages()[1].excerpt, "");
  EXPECT_EQ("Plan stage 2: " + Messages()[1].text + " Did you mean age?", Messages()[0].text);
}

TEST_F(SessionMessages, OfTheUniversalParserComeWithItsAnswer) {
  host::CommandDescriptor grammar;
  grammar.name = "TAVOREG";
  grammar.addSubComDesc({"", host::UPSpecTypes::SubComSpec::kTokens, true, false, {}});
  host::SubComDescriptor plan{"PLAN", host::UPSpecTypes::SubComSpec::kNamed, true, false, {}};
  plan.addParamDesc("FILE", host::UPSpecTypes::ParamSpec::kFilePath, true);
  grammar.addSubComDesc(plan);
  host::CommandSpec specification;
  const auto sequence = fSession.MakeTokenSequence();
  EXPECT_NE(host::UniversalParser(*sequence, specification, grammar).getCommandSpecifications(), 0);
  ASSERT_EQ(Messages().size(), 1u);
  EXPECT_EQ(Messages()[0].key, "Subcommand ^1 is not recognized...");
  EXPECT_EQ(Messages()[0].location, "a.tvs:1:27");

  const standalone::SourceText good("b.tvs", "TAVOREG y /PLAN FILE=p.");
  const auto commands = ReadCommands(good);
  host::CommandSpec second;
  EXPECT_EQ(
      host::UniversalParser(*MakeTokenSequence(commands.at(0)), second, grammar).getCommandSpecifications(),
      0);
  EXPECT_EQ(Messages().size(), 1u);
}

}  // namespace
