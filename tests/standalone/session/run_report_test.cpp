#include "standalone/session/run_report.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

using standalone::MessageLimit;
using standalone::RunReport;

TEST(RunReport, MessagesBetweenCommandsBelongToTheRun) {
  RunReport report("1.2", nullptr, nullptr);
  report.Add({false, "k", "before", "", ""});
  report.BeginCommand("TAVOREG");
  report.Add({false, "k", "inside", "", ""});
  report.EndCommand(false);
  report.Add({false, "k", "after", "", ""});
  EXPECT_EQ(report.Output().version, "1.2");
  ASSERT_EQ(report.Output().messages.size(), 2u);
  EXPECT_EQ(report.Output().messages[1].text, "after");
  ASSERT_EQ(report.Output().commands.size(), 1u);
  EXPECT_EQ(report.Output().commands[0].name, "TAVOREG");
  EXPECT_EQ(report.Output().commands[0].messages.at(0).text, "inside");
}

TEST(RunReport, ACommandFailsByItsCallerOrByAnError) {
  RunReport report("", nullptr, nullptr);
  report.BeginCommand("A");
  report.Add({false, "k", "warning", "", ""});
  report.EndCommand(false);
  report.BeginCommand("B");
  report.EndCommand(true);
  report.BeginCommand("C");
  report.Add({true, "k", "error", "", ""});
  report.EndCommand(false);
  EXPECT_FALSE(report.Output().commands[0].failed);
  EXPECT_TRUE(report.Output().commands[1].failed);
  EXPECT_TRUE(report.Output().commands[2].failed);
}

TEST(RunReport, WhatIsLeftOutIsShownNowhereAndToldAtTheEnd) {
  std::ostringstream stream;
  RunReport report("", &stream, nullptr);
  report.BeginCommand("A");
  for (int i = 0; i < MessageLimit::kMostOfOneKey + 5; ++i)
    report.Add({false, "k", "case " + std::to_string(i), "", ""});
  report.EndCommand(false);
  const auto& messages = report.Output().commands[0].messages;
  ASSERT_EQ(messages.size(), static_cast<std::size_t>(MessageLimit::kMostOfOneKey) + 1);
  EXPECT_EQ(messages.back().key, "Messages of the same kind were left out...");
  EXPECT_EQ(stream.str().find("case 20"), std::string::npos);
  EXPECT_NE(stream.str().find(messages.back().text), std::string::npos);
}

TEST(RunReport, ClearsTheProgressLineBeforeAMessage) {
  std::ostringstream terminal;
  RunReport report("", &terminal, &terminal);
  report.BeginCommand("A");
  report.Progress().Show("Iteration History", "iteration 3");
  report.Add({false, "k", "Mind this.", "", ""});
  report.EndCommand(false);
  EXPECT_EQ(terminal.str(), "\rIteration History: iteration 3\x1b[K\r\x1b[Kwarning: Mind this.\n");
}

TEST(RunReport, NotesAreOrderedByGroupAndWithinItByTheirComing) {
  RunReport report("", nullptr, nullptr);
  report.AddNote({1, "dropped", "between commands"});
  report.BeginCommand("A");
  report.AddNote({3, "c", ""});
  report.AddNote({1, "a", ""});
  report.AddNote({1, "b", ""});
  report.EndCommand(false);
  std::string labels;
  for (const auto& note : report.Output().commands[0].notes)
    labels += note.label;
  EXPECT_EQ(labels, "abc");
}

}  // namespace
