#include <gtest/gtest.h>

#include <set>
#include <string>

#include "recorded_session.h"
#include "standalone/command/parser_keys.h"

namespace {

using command_test::SessionMessages;

TEST(ParserMessage, SendsKeyAndArgumentsWithTheirRank) {
  SessionMessages().records.clear();
  host::ParserMessage message;
  message.SetCommandName("TAVOREG");
  message.SetProcedureTitle("TavoReg");
  message.GenericError("Empty label in subcommand ^1 ...", {"CUSTOM 2"});
  message.GenericWarning("Duplicate effect in ^1 ...", {"MODEL"});
  ASSERT_EQ(SessionMessages().records.size(), 2u);
  EXPECT_TRUE(SessionMessages().records[0].isError);
  EXPECT_EQ(SessionMessages().records[0].key, "Empty label in subcommand ^1 ...");
  EXPECT_EQ(SessionMessages().records[0].arguments, std::vector<std::string>{"CUSTOM 2"});
  EXPECT_FALSE(SessionMessages().records[1].isError);
}

TEST(ParserMessage, ForgetsPlaceCandidatesAndGroupAfterUse) {
  SessionMessages().records.clear();
  host::ParserMessage message;
  message.SetPosition({3, 4, 5});
  message.SetCandidates({"age", "race"});
  message.SetGroupText("Plan stage 2");
  message.GenericError("Variable ^1 for subcommand ^2 is not found in the dictionary...", {"aeg", "DOMAIN"});
  message.GenericError("Variable ^1 for subcommand ^2 is not found in the dictionary...", {"x", "DOMAIN"});
  ASSERT_EQ(SessionMessages().records.size(), 2u);

  const standalone::MessageContext& first = SessionMessages().records[0].context;
  EXPECT_EQ(first.position.line, 3);
  EXPECT_EQ(first.candidates, (std::vector<std::string>{"age", "race"}));
  EXPECT_EQ(first.misspelt, "aeg");
  EXPECT_EQ(first.groupText, "Plan stage 2");

  const standalone::MessageContext& second = SessionMessages().records[1].context;
  EXPECT_EQ(second.position.line, 0);
  EXPECT_TRUE(second.candidates.empty());
  EXPECT_EQ(second.misspelt, "");
  EXPECT_EQ(second.groupText, "");
}

/// The arguments ^1 to ^9 that a text names.
std::set<char> ArgumentsOf(std::string_view text) {
  std::set<char> arguments;
  for (std::size_t i = 0; i + 1 < text.size(); ++i) {
    if (text[i] == '^') arguments.insert(text[i + 1]);
  }
  return arguments;
}

TEST(ParserCatalogue, HasASentenceOfItsOwnForEachKey) {
  std::set<std::string> seen;
  for (const standalone::CatalogueEntry& entry : standalone::ParserCatalogue()) {
    const std::string text = entry.text;
    EXPECT_TRUE(seen.insert(entry.key).second) << entry.key;
    EXPECT_NE(text, entry.key);
    EXPECT_TRUE(text.ends_with('.')) << text;
    EXPECT_EQ(text.find("..."), std::string::npos) << text;
    // Every argument of the key is told, and none that the key hasn't.
    EXPECT_EQ(ArgumentsOf(text), ArgumentsOf(entry.key)) << text;
  }
  EXPECT_EQ(seen.size(), standalone::ParserCatalogue().size());
  EXPECT_TRUE(seen.contains(standalone::keys::kParenthesisNotClosed));
}

}  // namespace
