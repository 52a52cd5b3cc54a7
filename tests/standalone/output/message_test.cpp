#include "standalone/output/message.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

using standalone::WriteMessage;

TEST(WriteMessage, PutsPlaceAndExcerptUnderTheSentence) {
  std::ostringstream stream;
  WriteMessage(stream, {true, "key", "Something is wrong.", "a.tvs:1:9", "TAVOREG yy\n        ^~"});
  EXPECT_EQ(stream.str(), "error: Something is wrong.\n  at a.tvs:1:9\n  | TAVOREG yy\n  |         ^~\n");
}

TEST(WriteMessage, LetsNoTextSteerTheTerminal) {
  std::ostringstream stream;
  WriteMessage(stream, {false, "key", "File \x1b[2J.", "\x07:1:1", ""});
  EXPECT_EQ(stream.str(), "warning: File ?[2J.\n  at ?:1:1\n");
}

}  // namespace
