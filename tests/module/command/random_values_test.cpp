// Values made of random tokens: a command is taken without an error or refused with one.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>

#include "command_run.h"

namespace command_parser_test {

namespace {

constexpr std::array kTokens = {"a",   "b",    "g", "x", "z",  "y",  "ALL", "BY", "HIGH",
                                "LOW", "MEAN", "1", "0", "-2", ".5", "'1'", "''", "(",
                                ")",   "[",    "]", "*", ":",  ";",  "/ 2"};
constexpr std::array kKeywords = {"CUSTOM LMATRIX=",           "CUSTOM LMATRIX=a 1 KMATRIX=",
                                  "CUSTOM KMATRIX=",           "ODDSRATIOS FACTOR=[",
                                  "ODDSRATIOS COVARIATE=[",    "ODDSRATIOS FACTOR=[a] CONTROL=[",
                                  "ODDSRATIOS COVARIATE=[x(1", "SAVE PREDPROB(p "};

TEST(RandomValues, AreTakenWithoutAnErrorOrRefusedWithOne) {
  std::mt19937 random(7);  // its sequence is the same on every machine
  int taken = 0;
  int refused = 0;
  for (int i = 0; i < 1200; ++i) {
    const std::string keyword = kKeywords[random() % kKeywords.size()];
    std::string command = "TAVOREG y BY a b g WITH x z /" + keyword;
    for (auto length = random() % 7; length > 0; --length)
      command += std::string(" ") + kTokens[random() % kTokens.size()];
    if (keyword.find('[') != std::string::npos) command += "]";
    if (keyword.find("PREDPROB") != std::string::npos) command += ")";
    SCOPED_TRACE(command);
    CommandRun run;
    const bool isTaken = run.Parse(command);
    const auto errors = std::count_if(run.Messages().begin(), run.Messages().end(),
                                      [](const standalone::Message& message) { return message.isError; });
    if (isTaken) {
      EXPECT_EQ(errors, 0);
      for (const tavo::OrvCustomTest& test : run.Specs().CustomTests())
        EXPECT_TRUE(test.IsValid() || test.RowCount() == 0);
    } else {
      EXPECT_GE(errors, 1);
    }
    ++(isTaken ? taken : refused);
  }
  EXPECT_GT(taken, 20);
  EXPECT_GT(refused, 20);
}

}  // namespace

}  // namespace command_parser_test
