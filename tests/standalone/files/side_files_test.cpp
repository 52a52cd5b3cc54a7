// Case files that a procedure reads and writes beside the active data.
#include <gtest/gtest.h>

#include "host/files.h"
#include "sample_tables.h"
#include "standalone/files/data_reader.h"
#include "standalone/files/data_writer.h"
#include "standalone/session/embedded_session.h"
#include "test_folder.h"

namespace {

using host::UserCaseFileSpec;
using host::UserInputCaseFile;
using host::UserOutputCaseFile;

class SideFiles : public testing::TestWithParam<const char*> {
 protected:
  static standalone::SessionOptions StartingIn(const std::string& folder) {
    standalone::SessionOptions options;
    options.baseFolder = folder;
    return options;
  }
  static UserCaseFileSpec Spec(const std::string& name, bool forOutput) {
    UserCaseFileSpec spec;
    spec.Init(name, true, forOutput);
    return spec;
  }
  std::string Name() const { return std::string("side") + GetParam(); }

  TestFolder fFolder;
  standalone::Session fSession{StartingIn(fFolder.Path())};
  standalone::SessionScope fScope{fSession};
  std::string fError;
};

INSTANTIATE_TEST_SUITE_P(Forms, SideFiles, testing::Values(".vdt", ".csv"),
                         [](const auto& form) { return std::string(form.param + 1); });

/// Makes a number x and a string s of 12 bytes.
void MakeVariables(host::IndependentDataStore& store) {
  int index = -1;
  host::VORN_Variable* x = store.MakeVariable(0, index);
  ASSERT_TRUE(x != nullptr && index == 0);
  x->SetName("x");
  x->SetLabel("a number");
  host::VORN_Variable* s = store.MakeVariable(12, index);
  ASSERT_TRUE(s != nullptr && index == 1);
  s->SetName("s");
}

TEST_P(SideFiles, WhatIsWrittenIsReadAgainFromTheCommandFilesFolder) {
  const auto out = UserOutputCaseFile::Create(Spec(Name(), true), fError);
  ASSERT_NE(out, nullptr) << fError;
  host::IndependentDataStore& store = out->DataSource();
  MakeVariables(store);
  host::DSDocument document;
  document.AddLine("document Plan File: p.xml");
  document.Day(3);
  document.Month(11);
  document.Year(2024);
  document.AddDateLine();
  store.SaveDocuments(document);
  ASSERT_TRUE(store.WriteDictionary(fError)) << fError;
  host::VORN_Case row(store);
  ASSERT_TRUE(row.SetColumnValue(0, 1.25) && row.SetColumnValue(1, "text"));
  ASSERT_TRUE(store.AddCase(row, fError)) << fError;
  row.InitCase();
  ASSERT_TRUE(store.AddCase(row, fError)) << fError;
  EXPECT_FALSE(Spec(Name(), false).Exists());  // nothing is there before the end
  ASSERT_TRUE(out->Commit(fError)) << fError;

  const auto in = UserInputCaseFile::Open(Spec(Name(), false), fError);
  ASSERT_NE(in, nullptr) << fError;
  host::VORN_DataSource& source = in->DataSource();
  ASSERT_EQ(source.ColumnCount(), 2u);
  EXPECT_EQ(source.FindVarIndex("S"), 1);
  EXPECT_EQ(source.GetVariable(0u)->GetLabel(), "a number");
  EXPECT_EQ(source.GetVariable(1u)->GetType(), 12);
  const auto pass = source.NewInputIterator(0);
  const host::CaseValue x(*pass, 0);
  const host::CaseValue s(*pass, 1);
  ASSERT_EQ(pass->NextCase(), 1);
  EXPECT_EQ(x.Number(), 1.25);
  EXPECT_EQ(std::string(s.Cells()->text, 12), "text        ");
  ASSERT_EQ(pass->NextCase(), 1);
  EXPECT_TRUE(x.IsMissing());
  EXPECT_EQ(pass->NextCase(), 0);
  const standalone::ReadResult read = standalone::ReadDataFile({fFolder.Path(Name()), "", 1});
  EXPECT_EQ(read.table.Documents(),
            (std::vector<std::string>{"document Plan File: p.xml", "(Entered 2024-11-03)"}));
}

TEST_P(SideFiles, WithoutACommitThereIsNoFile) {
  {
    const auto out = UserOutputCaseFile::Create(Spec(Name(), true), fError);
    ASSERT_NE(out, nullptr) << fError;
    MakeVariables(out->DataSource());
    EXPECT_FALSE(out->Commit(fError));
    EXPECT_NE(fError.find("it has no dictionary yet"), std::string::npos) << fError;
  }
  EXPECT_TRUE(std::filesystem::is_empty(fFolder.Path()));
}

TEST_P(SideFiles, AFileThatCantBeReadIsToldWithItsPath) {
  EXPECT_EQ(UserInputCaseFile::Open(Spec(Name(), false), fError), nullptr);
  EXPECT_NE(fError.find(fFolder.Path(Name())), std::string::npos) << fError;
  EXPECT_NE(fError.find("No such file"), std::string::npos) << fError;
}

TEST_P(SideFiles, AFileThatCantBeWrittenIsToldBeforeItIsFilled) {
  EXPECT_EQ(UserOutputCaseFile::Create(Spec("none/" + Name(), true), fError), nullptr);
  EXPECT_NE(fError.find("none/" + Name() + " cannot be written"), std::string::npos) << fError;
  std::filesystem::create_directory(fFolder.Path(Name()));
  EXPECT_EQ(UserOutputCaseFile::Create(Spec(Name(), true), fError), nullptr);
  EXPECT_NE(fError.find("it is a folder"), std::string::npos) << fError;
}

class SideFileRules : public SideFiles {};
INSTANTIATE_TEST_SUITE_P(Forms, SideFileRules, testing::Values(".vdt"));

TEST_P(SideFileRules, ANameWithoutAFormIsRefused) {
  EXPECT_EQ(UserOutputCaseFile::Create(Spec("side.dat", true), fError), nullptr);
  EXPECT_NE(fError.find("must be .csv, .tsv or .vdt"), std::string::npos) << fError;
  EXPECT_EQ(UserInputCaseFile::Open(Spec("side.dat", false), fError), nullptr);
  EXPECT_NE(fError.find("must be .csv, .tsv or .vdt"), std::string::npos) << fError;
  EXPECT_EQ(UserOutputCaseFile::Create(UserCaseFileSpec(), fError), nullptr);
  EXPECT_EQ(UserInputCaseFile::Open(UserCaseFileSpec(), fError), nullptr);
  EXPECT_EQ(fError, "no file is named");
}

TEST_P(SideFileRules, TheDictionaryIsCheckedAndThenClosed) {
  const auto out = UserOutputCaseFile::Create(Spec(Name(), true), fError);
  host::IndependentDataStore& store = out->DataSource();
  EXPECT_FALSE(store.WriteDictionary(fError));
  EXPECT_NE(fError.find("there are no variables"), std::string::npos) << fError;
  MakeVariables(store);
  store.GetVariable(1u)->SetName("X");
  EXPECT_FALSE(store.WriteDictionary(fError));
  EXPECT_NE(fError.find("has the name of another variable"), std::string::npos) << fError;
  store.GetVariable(1u)->SetName("s");
  EXPECT_TRUE(store.WriteDictionary(fError)) << fError;
  int index = 0;
  EXPECT_EQ(store.MakeVariable(0, index), nullptr);
}

TEST_P(SideFileRules, CasesOfAnotherShapeOrBeforeTheDictionaryAreRefused) {
  const auto out = UserOutputCaseFile::Create(Spec(Name(), true), fError);
  host::IndependentDataStore& store = out->DataSource();
  const host::VORN_Case empty(store);
  MakeVariables(store);
  EXPECT_FALSE(store.AddCase(host::VORN_Case(store), fError));
  EXPECT_NE(fError.find("a case comes before the dictionary"), std::string::npos) << fError;
  ASSERT_TRUE(store.WriteDictionary(fError));
  EXPECT_FALSE(store.AddCase(empty, fError));
  EXPECT_NE(fError.find("a case has other variables"), std::string::npos) << fError;
}

TEST_P(SideFileRules, ACaseTakesValuesOfItsTypesAndIsClearedBetweenRows) {
  const auto out = UserOutputCaseFile::Create(Spec(Name(), true), fError);
  MakeVariables(out->DataSource());
  host::VORN_Case row(out->DataSource());
  EXPECT_EQ(row.Cells(0)->number, host::kSystemMissing);
  EXPECT_FALSE(row.SetColumnValue(0, "text"));
  EXPECT_FALSE(row.SetColumnValue(1, 1.0));
  EXPECT_FALSE(row.SetColumnValue(2, 1.0));
  EXPECT_TRUE(
      row.SetColumnValue(1, "elevenbytes\xC3\xA4"));  // the last character has two bytes, one too many
  EXPECT_EQ(std::string(row.Cells(1)->text, 16), "elevenbytes     ");
  row.InitCase();
  EXPECT_EQ(std::string(row.Cells(1)->text, 16), std::string(16, ' '));
}

TEST_P(SideFileRules, TheClockGivesADayOfTheCalendar) {
  const host::CalendarDate today = host::BCLOCK();
  EXPECT_TRUE(today.day >= 1 && today.day <= 31 && today.month >= 1 && today.month <= 12 &&
              today.year >= 2024);
}

}  // namespace
