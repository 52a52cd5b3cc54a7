#include "standalone/session/embedded_session.h"

#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>

#include "host/files.h"
#include "standalone/session/run_commands.h"

namespace {

using host::BpErrorLevel;
using standalone::RunCommands;
using standalone::Session;
using standalone::SessionOptions;
using standalone::SessionScope;
using standalone::SourceText;

void EntryWithTable() {
  const auto procedure = host::CurrentSession().MakeProcedure("TavoReg");
  const auto table = procedure->Heading().PivotTable(host::Key("Pseudo R Squares"), "PseudoRSquares");
  table->Dimension(host::Key("Statistics"))
      .Category(host::Key("McFadden"))
      .Cell(host::BpNumber{0.25, host::BpProcedure::Correlation()});
  host::AddNotes(3, "Predicted Values", host::Plain("p"));
  host::AddNotes(1, "Plan File", host::Plain("plan.xml"));
}
void EntryWithWarning() {
  host::BpError(host::Key("Tavoreg continues despite warnings"), BpErrorLevel::kWarning);
}
void EntryWithError() {
  host::BpError(host::BpComposite("Stage Number Sequence [%1:, ^1:]1 is invalid")
                    .Sublist()
                    .Add(host::BpNumber{1, host::BpProcedure::Count()})
                    .Add(host::BpNumber{3, host::BpProcedure::Count()})
                    .EndSublist(),
                BpErrorLevel::kError);
}
void EntryThatThrows() {
  throw std::runtime_error("lost");
}
void EntryThatIsStopped() {
  SessionScope::Current().RequestStop();
}

const std::vector<standalone::KnownCommand> kKnown = {{"TABLE", EntryWithTable},
                                                      {"WARN", EntryWithWarning},
                                                      {"FAIL", EntryWithError},
                                                      {"THROW", EntryThatThrows},
                                                      {"STOP", EntryThatIsStopped}};

TEST(RunCommands, RunsEachCommandOnItsOwnAndGoesOnAfterAFailure) {
  Session session;
  const SourceText source("t", "fail.\nTable.\nwarn.\n");
  const auto result = RunCommands(session, source, kKnown);
  EXPECT_EQ(result.commands, 3);
  EXPECT_EQ(result.failed, 1);
  EXPECT_FALSE(result.interrupted);
  const auto& commands = session.Output().commands;
  ASSERT_EQ(commands.size(), 3u);
  EXPECT_TRUE(commands[0].failed);
  EXPECT_EQ(commands[0].messages[0].key, "Stage Number Sequence [%1:, ^1:]1 is invalid");
  EXPECT_EQ(commands[0].messages[0].text,
            "The stages of the plan are numbered 1, 3. Number them 1, 2, 3 in this order.");
  EXPECT_FALSE(commands[1].failed);
  EXPECT_NE(commands[1].FindTable("PseudoRSquares"), nullptr);
  EXPECT_FALSE(commands[2].failed);
  EXPECT_TRUE(commands[2].HasMessage("Tavoreg continues despite warnings"));
}

TEST(RunCommands, NotesAreOrderedByGroup) {
  Session session;
  RunCommands(session, SourceText("t", "table."), kKnown);
  const auto& notes = session.Output().commands[0].notes;
  ASSERT_EQ(notes.size(), 2u);
  EXPECT_EQ(notes[0].label, "Plan File");
  EXPECT_EQ(notes[1].text, "p");
}

TEST(RunCommands, AnUnknownCommandIsNamedWithItsPlaceAndTheNearestKnownOne) {
  Session session;
  const auto result = RunCommands(session, SourceText("a.tvs", "\n  tabel x."), kKnown);
  EXPECT_EQ(result.failed, 1);
  const auto& message = session.Output().commands[0].messages.at(0);
  EXPECT_EQ(message.key, "Command ^1 is not recognized...");
  EXPECT_NE(message.text.find("Did you mean TABLE?"), std::string::npos) << message.text;
  EXPECT_EQ(message.location, "a.tvs:2:3");
  EXPECT_NE(message.excerpt.find('^'), std::string::npos);
}

TEST(RunCommands, AMistakeInTheTextKeepsTheCommandFromRunning) {
  Session session;
  const auto result = RunCommands(session, SourceText("t", "TABLE 'open."), kKnown);
  EXPECT_EQ(result.failed, 1);
  EXPECT_TRUE(session.Output().commands[0].tables.empty());
  EXPECT_FALSE(session.Output().commands[0].messages.empty());
}

TEST(RunCommands, AnExceptionOfAnEntryIsReportedAsAFaultOfTheProgram) {
  Session session;
  EXPECT_EQ(RunCommands(session, SourceText("t", "throw.\ntable."), kKnown).failed, 1);
  const auto& message = session.Output().commands[0].messages.at(0);
  EXPECT_EQ(message.key, "Fault of the program ^1...");
  EXPECT_NE(message.text.find("lost"), std::string::npos);
  EXPECT_FALSE(session.Output().commands[1].failed);
}

TEST(RunCommands, AStopRequestEndsTheRunBeforeTheNextCommand) {
  Session session;
  const auto result = RunCommands(session, SourceText("t", "stop.\ntable."), kKnown);
  EXPECT_TRUE(result.interrupted);
  EXPECT_EQ(session.Output().commands.size(), 1u);
  EXPECT_TRUE(session.Output().commands[0].HasMessage("Run was interrupted..."));
}

TEST(Session, MessagesGoToTheStreamAsTheyComeWithPlaceAndExcerpt) {
  std::ostringstream stream;
  SessionOptions options;
  options.messages = &stream;
  Session session(options);
  RunCommands(session, SourceText("a.tvs", "nonsense."), kKnown);
  EXPECT_EQ(stream.str(),
            "error: There is no command NONSENSE. This program runs the command TAVOREG.\n"
            "  at a.tvs:1:1\n  | nonsense.\n  | ^~~~~~~~\n");
}

TEST(Session, AnErrorSetsTheErrorFlagAndTheNextCommandClearsIt) {
  Session session;
  const SessionScope scope(session);
  const SourceText source("t", "table.");
  const auto commands = standalone::ReadCommands(source);
  session.BeginCommand(commands[0], source);
  EXPECT_EQ(host::pvGetCmnGlb().errorFlag, 0);
  host::BpError(host::Plain("w"), BpErrorLevel::kWarning);
  EXPECT_EQ(host::pvGetCmnGlb().errorFlag, 0);
  host::BpError(host::Plain("e"), BpErrorLevel::kError);
  EXPECT_NE(host::pvGetCmnGlb().errorFlag, 0);
  session.EndCommand();
  session.BeginCommand(commands[0], source);
  EXPECT_EQ(host::pvGetCmnGlb().errorFlag, 0);
}

TEST(Session, RelativeNamesStartAtTheFolderOfTheCommandFile) {
  SessionOptions options;
  options.baseFolder = "/data/study";
  Session session(options);
  const SessionScope scope(session);
  EXPECT_EQ(host::BEPesGetInputPath("plan.xml"), "/data/study/plan.xml");
  EXPECT_EQ(host::BEPesGetInputPath("../plan.xml"), "/data/study/../plan.xml");
  EXPECT_EQ(host::BEPesGetInputPath("/abs/plan.xml"), "/abs/plan.xml");
  EXPECT_EQ(host::BEPesGetInputPath(""), "");
  Session here;
  const SessionScope inner(here);
  EXPECT_EQ(host::BEPesGetInputPath("plan.xml"), "plan.xml");
}

TEST(Session, TheSessionBeforeComesBackAfterAScope) {
  Session outer, inner;
  const SessionScope a(outer);
  {
    const SessionScope b(inner);
    EXPECT_EQ(&SessionScope::Current(), &inner);
  }
  EXPECT_EQ(&SessionScope::Current(), &outer);
}

TEST(Session, WithoutDataThereIsASourceWithoutVariables) {
  Session session;
  EXPECT_EQ(session.MakeDataSource()->ColumnCount(), 0u);
  EXPECT_TRUE(session.MakeTokenSequence()->Tokens().empty());
}

TEST(Session, TheStopProcessorAnswersWhatWasRequested) {
  Session session;
  const auto processor = session.MakeStopProcessor();
  EXPECT_FALSE(processor->IsStopRequested());
  session.RequestStop();
  EXPECT_TRUE(processor->IsStopRequested());
}

TEST(Session, GetThreadsAnswersTheOption) {
  SessionOptions options;
  options.threads = 3;
  Session session(options);
  const SessionScope scope(session);
  EXPECT_EQ(host::GETTHREADS(), 3);
}

}  // namespace
