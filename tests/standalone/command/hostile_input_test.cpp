// Large and broken commands: each must be read in linear time and bounded memory, without recursion. A
// quadratic reader would need hours for these.
#include <gtest/gtest.h>

#include <random>
#include <set>
#include <string>

#include "command_dump.h"
#include "standalone/command/parser_keys.h"

namespace {

using command_test::Parse;
using command_test::Parsed;

constexpr std::size_t kMillion = 1000000;

std::string Repeated(std::string_view piece, std::size_t count) {
  std::string text;
  text.reserve(piece.size() * count);
  for (std::size_t i = 0; i < count; ++i)
    text += piece;
  return text;
}

TEST(HostileInput, ACommandOfAMegabyteOnOneLineIsRead) {
  const Parsed parsed = Parse("TAVOREG y BY " + Repeated("ab ", kMillion / 3) + "/PLAN FILE=p.");
  EXPECT_TRUE(parsed.succeeded);
  EXPECT_EQ(parsed.commands.at(0).tokens.size(), 3 + kMillion / 3 + 5);
  EXPECT_EQ(parsed.commands.at(0).tokens.back().position.column, static_cast<int>(kMillion / 3 * 3 + 25));
}

TEST(HostileInput, AHundredThousandParenthesesAreRead) {
  const std::string open(100000, '('), closed(100000, ')');
  EXPECT_TRUE(Parse("TAVOREG y /PLAN FILE=p /MODEL a" + open).succeeded);
  const Parsed balanced = Parse("TAVOREG y /PLAN FILE=p /SAVE PREDPROB" + open + "x" + closed);
  EXPECT_TRUE(balanced.succeeded);
  EXPECT_EQ(balanced.specification.getSubComObj("SAVE")->params.at(0).value.size(), 199999u);
  const Parsed unclosed = Parse("TAVOREG y /PLAN FILE=p /SAVE PREDPROB" + open);
  ASSERT_EQ(unclosed.messages.records.size(), 1u);
  EXPECT_EQ(unclosed.messages.records[0].key, standalone::keys::kParenthesisNotClosed);
}

TEST(HostileInput, AMillionSlashesGiveADozenMessages) {
  EXPECT_EQ(Parse("TAVOREG y " + Repeated("/a", kMillion / 2)).messages.records.size(), 12u);
  EXPECT_EQ(Parse("TAVOREG y " + std::string(kMillion, '/')).messages.records.size(), 2u);
}

TEST(HostileInput, FractionsAndSlashesWithoutEndAreOneValue) {
  const Parsed parsed =
      Parse("TAVOREG y /PLAN FILE=p /CUSTOM LMATRIX=a" + Repeated(" 1/2", 100000) + Repeated(" 1/x", 100000));
  EXPECT_TRUE(parsed.succeeded);
  EXPECT_EQ(parsed.specification.getSubComObj("CUSTOM")->params.at(0).value.size(), 600001u);
}

TEST(HostileInput, OneHugeTokenIsOneToken) {
  const std::string digits(kMillion, '7');
  EXPECT_EQ(Parse("TAVOREG 0." + digits + " x").commands.at(0).tokens.size(), 3u);
  EXPECT_EQ(Parse("TAVOREG " + digits).commands.at(0).errors.size(), 1u);  // out of range
  EXPECT_EQ(Parse("TAVOREG '" + Repeated("''", kMillion / 2) + "'").commands.at(0).tokens.at(1).text,
            std::string(kMillion / 2, '\''));
  EXPECT_TRUE(Parse("TAVOREG " + std::string(kMillion, 'x')).commands.at(0).tokens.at(1).IsPlainString());
}

TEST(HostileInput, PeriodsAndCommentsOnOneLineAreReadOnce) {
  const Parsed parsed = Parse("TAVOREG " + Repeated(". /* c */ ", kMillion / 10) + "x");
  EXPECT_EQ(parsed.commands.size(), 1u);
  EXPECT_EQ(parsed.commands.at(0).tokens.size(), kMillion / 10 + 2);
}

TEST(HostileInput, ABinaryFileGivesTenErrorsAtMost) {
  std::mt19937 random(7);
  std::string bytes(kMillion, '\0');
  for (char& c : bytes)
    c = static_cast<char>(random() & 0xFF);
  const standalone::SourceText source("f", bytes);
  for (const standalone::CommandTokens& command : ReadCommands(source)) {
    ASSERT_LE(command.errors.size(), 10u);
    for (const standalone::TokenError& error : command.errors) {
      ASSERT_FALSE(source.Location(error.position).empty());
    }
  }
  EXPECT_EQ(
      Parse(std::string("TAVOREG") + Repeated(std::string("\0 ", 2), 1000)).commands.at(0).errors.size(),
      10u);
}

TEST(HostileInput, AFileAboveTheLimitIsRefusedWhole) {
  const auto commands = ReadCommands(standalone::SourceText("f", std::string((8u << 20) + 1, 'x')));
  ASSERT_EQ(commands.size(), 1u);
  EXPECT_TRUE(commands[0].tokens.empty());
  ASSERT_EQ(commands[0].errors.size(), 1u);
  EXPECT_EQ(commands[0].errors[0].key, standalone::keys::kFileTooLarge);
}

// Random sequences of pieces of the language: whatever comes out, success and messages agree, every message
// is in the catalogue and points into the text.
TEST(HostileInput, RandomCommandsNeverBreakTheParser) {
  const std::vector<std::string> pieces = {
      "/",    "=",        "(",       ")",      "[",       "]",        ";",        ":",
      "*",    ",",        "PLAN",    "FILE",   "p",       "PRINT",    "HISTORY",  "COVB",
      "SAVE", "PREDPROB", "PREDVAL", "CUSTOM", "LMATRIX", "KMATRIX",  "LABEL",    "'x'",
      "1",    "-2.5",     "BY",      "ALL",    "MODEL",   "CRITERIA", "DF",       "/PLAN FILE=p ",
      "\n",   ".",        "\n\n",    "/*",     "*/",      "'",        "\xC3\xA9", "\xFF"};
  std::set<std::string> known;
  for (const standalone::CatalogueEntry& entry : standalone::ParserCatalogue())
    known.insert(entry.key);
  std::mt19937 random(42);
  for (int trial = 0; trial < 4000; ++trial) {
    std::string text = "TAVOREG y ";
    const std::size_t count = random() % 25;
    for (std::size_t i = 0; i < count; ++i) {
      text += pieces[random() % pieces.size()];
      if (random() % 2 == 0) text += ' ';
    }
    const Parsed parsed = Parse(text);
    ASSERT_EQ(parsed.succeeded, parsed.messages.records.empty()) << text;
    for (const auto& record : parsed.messages.records) {
      ASSERT_TRUE(known.contains(record.key)) << record.key;
      ASSERT_FALSE(parsed.source.Excerpt(record.context.position).empty()) << text;
    }
    for (const standalone::CommandTokens& command : parsed.commands) {
      for (const standalone::TokenError& error : command.errors)
        ASSERT_TRUE(known.contains(error.key));
    }
  }
}

}  // namespace
