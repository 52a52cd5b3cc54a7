#include "adapter_fixture.h"

namespace tavo {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Records of one covariate; a missing value makes the case invalid.
class MultiIter : public AdapterTest {
 protected:
  MultiIter() { fSpecs.AddContinuous(Add("x")); }

  void AddCases(std::initializer_list<double> values) {
    for (const double value : values)
      fSource.AddCase({value});
  }
  static constexpr double kInvalid = host::kSystemMissing;
  using Event = ScriptedSource::Event;
};

TEST_F(MultiIter, OneAcceptedCaseIsReturnedAndTheStateTurns1) {
  AddCases({5});
  Start();
  EXPECT_EQ(fIterator->IteratorStatus(), MCCommon::kAvailable);
  ASSERT_TRUE(fIterator->HasNext());
  const MCCommon::Record* record = fIterator->Next();
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(record->GetAll()[0], 5);
  EXPECT_EQ(fIterator->IteratorStatus(), MCCommon::kExhausted);
  EXPECT_FALSE(fIterator->HasNext());
  EXPECT_EQ(fIterator->Next(), nullptr);
  EXPECT_EQ(record->GetAll()[0], 5) << "the end leaves the last record intact";
}

TEST_F(MultiIter, NoAcceptedCaseHasNothingAtOnce) {
  AddCases({kInvalid, kInvalid});
  Start();
  EXPECT_FALSE(fIterator->HasNext());
  EXPECT_EQ(fIterator->Next(), nullptr);
  EXPECT_EQ(fIterator->Peek(), nullptr);
  EXPECT_EQ(fIterator->IteratorStatus(), MCCommon::kExhausted);
  EXPECT_EQ(fAdapter->Counts().casesRead, 2);
  EXPECT_EQ(fAdapter->Counts().invalid, 2);
  EXPECT_EQ(fAdapter->Counts().recordsPassed, 0);
}

TEST_F(MultiIter, NoCaseAtAllHasNothingAtOnce) {
  Start();
  EXPECT_FALSE(fIterator->HasNext());
  EXPECT_EQ(fIterator->IteratorStatus(), MCCommon::kExhausted);
  EXPECT_EQ(fAdapter->Counts().casesRead, 0);
}

TEST_F(MultiIter, InvalidCasesAtTheEndAreCountedAndTheStateTurns1WithoutAFurtherRecord) {
  AddCases({1, 2, kInvalid, kInvalid});
  Start();
  EXPECT_THAT(ReadColumn(0), ElementsAre(1, 2));
  EXPECT_EQ(fIterator->IteratorStatus(), MCCommon::kExhausted);
  EXPECT_EQ(fAdapter->Counts().casesRead, 4);
  EXPECT_EQ(fAdapter->Counts().valid, 2);
  EXPECT_EQ(fAdapter->Counts().invalid, 2);
}

TEST_F(MultiIter, InvalidCasesInBetweenAreSteppedOver) {
  AddCases({kInvalid, 1, kInvalid, kInvalid, 2, 3});
  Start();
  EXPECT_THAT(ReadColumn(0), ElementsAre(1, 2, 3));
}

TEST_F(MultiIter, ASplitGroupEndIsSteppedOverAndTheCaseAfterItIsReadInTheSameTurn) {
  AddCases({1});
  fSource.AddEvent(Event::kSplitEnd);
  AddCases({2, 3});
  fSource.AddEvent(Event::kSplitEnd);
  Start();
  ASSERT_TRUE(fIterator->HasNext());
  fIterator->Next();
  ASSERT_TRUE(fIterator->HasNext()) << "the boundary is no end";
  EXPECT_EQ(fIterator->Peek()->GetAll()[0], 2);
  EXPECT_THAT(ReadColumn(0), ElementsAre(2, 3));
  EXPECT_EQ(fAdapter->Counts().casesRead, 3) << "boundaries are no cases";
  EXPECT_EQ(fIterator->IteratorStatus(), MCCommon::kExhausted);
}

TEST_F(MultiIter, ASplitGroupEndAtTheStartIsSteppedOver) {
  fSource.AddEvent(Event::kSplitEnd);
  AddCases({4});
  Start();
  EXPECT_THAT(ReadColumn(0), ElementsAre(4));
}

TEST_F(MultiIter, ARecordStaysIntactUntilTheCallAfterNext) {
  AddCases({1, 2, 3, 4});
  Start();
  const MCCommon::Record* first = fIterator->Next();
  EXPECT_EQ(first->GetAll()[0], 1);
  EXPECT_EQ(fIterator->Peek()->GetAll()[0], 2);
  EXPECT_NE(fIterator->Peek(), first);
  const MCCommon::Record* second = fIterator->Next();
  EXPECT_EQ(second->GetAll()[0], 2);
  EXPECT_NE(second, first);
  EXPECT_EQ(fIterator->Next(), first) << "two buffers in turn";
}

TEST_F(MultiIter, PeekShowsWithoutAdvancing) {
  AddCases({1, 2});
  Start();
  EXPECT_EQ(fIterator->Peek()->GetAll()[0], 1);
  EXPECT_EQ(fIterator->Peek()->GetAll()[0], 1);
  EXPECT_THAT(ReadColumn(0), ElementsAre(1, 2));
}

TEST_F(MultiIter, ResetStartsAtTheFirstCaseFromAnywhere) {
  AddCases({1, 2, 3});
  Start();
  fIterator->Next();
  EXPECT_EQ(fIterator->Reset(), MCCommon::kAvailable);
  EXPECT_THAT(ReadColumn(0), ElementsAre(1, 2, 3));
  EXPECT_EQ(fIterator->Reset(), MCCommon::kAvailable);
  EXPECT_THAT(ReadColumn(0), ElementsAre(1, 2, 3));
  EXPECT_EQ(fSource.passes, 2);
}

TEST_F(MultiIter, ResetToASourceWithoutAcceptedCasesAnswers1) {
  AddCases({1});
  Start();
  fSource.ClearCases();
  EXPECT_EQ(fIterator->Reset(), MCCommon::kExhausted);
}

TEST_F(MultiIter, ResetThatGetsNoPassOrAWrongOneAnswers3) {
  AddCases({1});
  Start();
  fSource.refusesPasses = true;
  EXPECT_EQ(fIterator->Reset(), MCCommon::kFailed);
  EXPECT_FALSE(fIterator->HasNext());
  fSource.refusesPasses = false;
  fSource.makesPlainPasses = true;
  EXPECT_EQ(fIterator->Reset(), MCCommon::kFailed);
  fSource.makesPlainPasses = false;
  EXPECT_EQ(fIterator->Reset(), MCCommon::kAvailable) << "the next pass may succeed";
  EXPECT_THAT(ReadColumn(0), ElementsAre(1));
}

TEST_F(MultiIter, CloseEndsThePass) {
  AddCases({1, 2});
  Start();
  EXPECT_EQ(fIterator->Close(), MCCommon::kExhausted);
  EXPECT_FALSE(fIterator->HasNext());
  EXPECT_EQ(fIterator->Next(), nullptr);
  EXPECT_EQ(fIterator->Close(), MCCommon::kExhausted);
  EXPECT_EQ(fIterator->Reset(), MCCommon::kAvailable);
}

TEST_F(MultiIter, AFailureWhileReadingTurnsTheState3AndIsNoInvalidCase) {
  AddCases({1, 2});
  fSource.AddCase({kInvalid}, Event::kFailureOnCase);
  AddCases({3});
  Start();
  EXPECT_THAT(ReadColumn(0), ElementsAre(1, 2));
  EXPECT_EQ(fIterator->IteratorStatus(), MCCommon::kFailed);
  EXPECT_EQ(fAdapter->Counts().invalid, 0);
  EXPECT_EQ(fIterator->Close(), MCCommon::kFailed) << "closing hides no failure";
}

TEST_F(MultiIter, AFailureThatEndsTheCasesIsToldFromTheirEnd) {
  AddCases({1});
  fSource.AddEvent(Event::kFailure);
  AddCases({2});
  Start();
  EXPECT_THAT(ReadColumn(0), ElementsAre(1));
  EXPECT_EQ(fIterator->IteratorStatus(), MCCommon::kFailed);
}

TEST_F(MultiIter, AMissingFirstPassIsAFailure) {
  AddCases({1});
  Start();
  const OrvProcDSMultiIter iterator(fSource, nullptr, *fAdapter);
  EXPECT_EQ(iterator.IteratorStatus(), MCCommon::kFailed);
  EXPECT_FALSE(iterator.HasNext());
}

TEST_F(MultiIter, OneRecordMoreIsReadThanHandedOut) {
  AddCases({1, 2, 3});
  Start();
  EXPECT_EQ(fAdapter->Counts().recordsPassed, 1);
  fIterator->Next();
  EXPECT_EQ(fAdapter->Counts().recordsPassed, 2);
  ReadAll();
  EXPECT_EQ(fAdapter->Counts().recordsPassed, 3);
}

TEST_F(MultiIter, SystemMissingAndTheRecordsMarkerAreTheSame) {
  EXPECT_EQ(host::kSystemMissing, kMarker);
}

}  // namespace
}  // namespace tavo
