#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "standalone/data/cells.h"
#include "standalone/data/table.h"

namespace {

using host::CaseValue;
using host::OBS;
using host::VORN_Variable;
using standalone::Column;
using standalone::Table;

/// A numeric column "x" and a string column "s" of width 10.
Table MakeTable(const std::vector<double>& numbers, const std::vector<std::string>& texts) {
  Table table;
  table.SetCaseCount(numbers.size());
  Column& x = table.Add(VORN_Variable("x", 0));
  Column& s = table.Add(VORN_Variable("s", 10));
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    x.cells[i].number = numbers[i];
    standalone::PadText(texts[i], 10, &s.cells[2 * i]);
  }
  return table;
}

std::string TextOf(const OBS* cells, int width) {
  return {reinterpret_cast<const char*>(cells), static_cast<std::size_t>(width)};
}

TEST(Table, AddsColumnsThatHoldMissingValues) {
  Table table;
  table.SetCaseCount(3);
  const Column& number = table.Add(VORN_Variable("n", 0));
  const Column& text = table.Add(VORN_Variable("t", 9));
  ASSERT_EQ(number.cells.size(), 3u);
  ASSERT_EQ(text.cells.size(), 6u);
  EXPECT_EQ(number.cells[2].number, host::kSystemMissing);
  EXPECT_EQ(TextOf(&text.cells[4], 16), std::string(16, ' '));
  EXPECT_EQ(table.Find("T"), 1);
  EXPECT_EQ(table.Find("u"), -1);
}

TEST(ActiveData, APassVisitsTheCasesInOrderAndEnds) {
  Table table = MakeTable({1, 2, 3}, {"a", "b", "c"});
  const auto source = standalone::MakeProcedureDataSource(table);
  const auto pass = source->NewInputIterator(0);
  const CaseValue x(*pass, 0);
  const CaseValue s(*pass, 1);
  EXPECT_FALSE(x.IsString());
  EXPECT_TRUE(s.IsString());
  for (const char* expected : {"1a", "2b", "3c"}) {
    ASSERT_NE(pass->NextCase(), 0);
    EXPECT_EQ(x.Number(), expected[0] - '0');
    EXPECT_EQ(s.Cells()->text[0], expected[1]);
  }
  EXPECT_EQ(pass->NextCase(), 0);
  EXPECT_EQ(pass->NextCase(), 0);
  EXPECT_FALSE(source->FatalError());
}

TEST(ActiveData, TwoPassesMoveOnTheirOwn) {
  Table table = MakeTable({1, 2}, {"a", "b"});
  const auto source = standalone::MakeProcedureDataSource(table);
  const auto first = source->NewInputIterator(0);
  const auto second = source->NewInputIterator(0);
  const CaseValue a(*first, 0);
  const CaseValue b(*second, 0);
  first->NextCase();
  first->NextCase();
  second->NextCase();
  EXPECT_EQ(a.Number(), 2);
  EXPECT_EQ(b.Number(), 1);
}

TEST(ActiveData, AnEmptySourceHasNoColumnsAndNoCases) {
  Table table;
  const auto source = standalone::MakeProcedureDataSource(table);
  EXPECT_EQ(source->ColumnCount(), 0u);
  EXPECT_EQ(source->FindVarIndex("x"), -1);
  EXPECT_EQ(source->NewInputIterator(0)->NextCase(), 0);
}

TEST(ActiveData, APassIsOfOneGroup) {
  Table table = MakeTable({1}, {"a"});
  const auto source = standalone::MakeProcedureDataSource(table);
  const auto pass = source->NewInputIterator(0);
  auto* procedurePass = dynamic_cast<host::ProcDSIterator*>(pass.get());
  ASSERT_NE(procedurePass, nullptr);
  EXPECT_EQ(&pass->GetDataSource(), source.get());
  procedurePass->NextCase();
  EXPECT_FALSE(procedurePass->SplitGroupEnd());
}

TEST(ActiveData, FindsNamesWithoutRegardToCase) {
  Table table = MakeTable({1}, {"a"});
  const auto source = standalone::MakeProcedureDataSource(table);
  EXPECT_EQ(source->FindVarIndex("S"), 1);
  EXPECT_EQ(source->FindVarIndex("x"), 0);
  EXPECT_EQ(source->FindVarIndex("xs"), -1);
  EXPECT_EQ(source->FindVarIndex(""), -1);
}

TEST(ActiveData, AMadeVariableIsAppendedMissingAndCanBeWritten) {
  Table table = MakeTable({1, 2, 3}, {"a", "b", "c"});
  const auto source = standalone::MakeProcedureDataSource(table);
  source->SetMaxObsAdded(2);
  int number = -1;
  int text = -1;
  VORN_Variable* made = source->MakeVariable(0, number);
  ASSERT_NE(made, nullptr);
  made->SetName("p");
  source->MakeVariable(4, text)->SetName("q");
  EXPECT_EQ(number, 2);
  EXPECT_EQ(text, 3);
  EXPECT_EQ(source->FindVarIndex("P"), 2);

  const auto pass = source->NewInputIterator(0);
  pass->NextCase();
  pass->NextCase();
  pass->SetColumnValue(2, 0.25);
  pass->SetColumnValue(3, "abcdef", 6);
  EXPECT_EQ(table.At(2).cells[0].number, host::kSystemMissing);
  EXPECT_EQ(table.At(2).cells[1].number, 0.25);
  EXPECT_EQ(table.At(2).cells[2].number, host::kSystemMissing);
  EXPECT_EQ(TextOf(&table.At(3).cells[1], 8), "abcd    ");
  EXPECT_EQ(TextOf(&table.At(3).cells[2], 8), "        ");
  EXPECT_FALSE(source->FatalError());
}

TEST(ActiveData, AColumnOfTheUsersIsNeverWritten) {
  Table table = MakeTable({1, 2}, {"a", "b"});
  const auto source = standalone::MakeProcedureDataSource(table);
  const auto pass = source->NewInputIterator(0);
  pass->NextCase();
  pass->SetColumnValue(0, 99);
  pass->SetColumnValue(1, "zz", 2);
  EXPECT_EQ(table.At(0).cells[0].number, 1);
  EXPECT_EQ(table.At(1).cells[0].text[0], 'a');
  EXPECT_TRUE(source->FatalError());
}

TEST(ActiveData, AWriteOfTheWrongTypeOrOutsideACaseIsAFailure) {
  for (const bool isOnCase : {true, false}) {
    Table table = MakeTable({1}, {"a"});
    const auto source = standalone::MakeProcedureDataSource(table);
    int index = -1;
    source->MakeVariable(0, index);
    const auto pass = source->NewInputIterator(0);
    if (isOnCase) {
      pass->NextCase();
      pass->SetColumnValue(2, "text", 4);
    } else {
      pass->SetColumnValue(2, 1.0);
    }
    EXPECT_EQ(table.At(2).cells[0].number, host::kSystemMissing);
    EXPECT_TRUE(source->FatalError());
  }
}

TEST(ActiveData, RefusesTypesThatNoVariableHas) {
  Table table;
  const auto source = standalone::MakeProcedureDataSource(table);
  int index = 0;
  EXPECT_EQ(source->MakeVariable(-1, index), nullptr);
  EXPECT_EQ(source->MakeVariable(32768, index), nullptr);
  EXPECT_EQ(source->ColumnCount(), 0u);
}

TEST(ActiveData, VariablesOfAnEarlierCommandAreTheUsersInALaterOne) {
  Table table = MakeTable({1}, {"a"});
  int index = -1;
  standalone::MakeProcedureDataSource(table)->MakeVariable(0, index);
  const auto source = standalone::MakeProcedureDataSource(table);
  EXPECT_EQ(source->ColumnCount(), 3u);
  const auto pass = source->NewInputIterator(0);
  pass->NextCase();
  pass->SetColumnValue(2, 5);
  EXPECT_EQ(table.At(2).cells[0].number, host::kSystemMissing);
}

/// Which of the numbers count as missing under a declaration.
std::vector<bool> MissingOf(const std::vector<double>& numbers, host::VORN_MissingValues missing) {
  Table table = MakeTable(numbers, std::vector<std::string>(numbers.size()));
  table.At(0).variable.SetMissingValues(std::move(missing));
  const auto source = standalone::MakeProcedureDataSource(table);
  const auto pass = source->NewInputIterator(0);
  const CaseValue x(*pass, 0);
  std::vector<bool> result;
  while (pass->NextCase() != 0)
    result.push_back(x.IsMissing());
  return result;
}

TEST(CaseValue, SystemMissingIsMissingWithoutADeclaration) {
  EXPECT_EQ(MissingOf({1, host::kSystemMissing, -1}, {}), (std::vector<bool>{false, true, false}));
}

TEST(CaseValue, DeclaredValuesAndRangesAreMissing) {
  host::VORN_MissingValues missing;
  missing.values = {standalone::NumberValue(0), standalone::NumberValue(9)};
  missing.hasRange = true;
  missing.rangeLow = 97;
  missing.rangeHigh = 99.5;
  EXPECT_EQ(MissingOf({-0.0, 9, 8, 97, 96.9, 99.5, 99.6, host::kSystemMissing}, missing),
            (std::vector<bool>{true, true, false, true, false, true, false, true}));
}

TEST(CaseValue, DeclaredStringsAreComparedOverTheirCells) {
  Table table = MakeTable({1, 2, 3, 4}, {"", "refused", "refused1", "refused"});
  host::VORN_MissingValues missing;
  missing.values = {standalone::TextValue("", 10), standalone::TextValue("refused", 10)};
  table.At(1).variable.SetMissingValues(missing);
  const auto source = standalone::MakeProcedureDataSource(table);
  const auto pass = source->NewInputIterator(0);
  const CaseValue s(*pass, 1);
  std::vector<bool> result;
  while (pass->NextCase() != 0)
    result.push_back(s.IsMissing());
  EXPECT_EQ(result, (std::vector<bool>{true, true, false, true}));
}

TEST(CaseValue, AStringWhoseBytesLookLikeSystemMissingIsAValue) {
  Table table;
  table.SetCaseCount(1);
  Column& s = table.Add(VORN_Variable("s", 8));
  s.cells[0].number = host::kSystemMissing;  // the bytes of that double, read as text
  const auto source = standalone::MakeProcedureDataSource(table);
  const auto pass = source->NewInputIterator(0);
  const CaseValue value(*pass, 0);
  pass->NextCase();
  EXPECT_FALSE(value.IsMissing());
}

TEST(ValueLabels, AreFoundByNumberAndByPaddedText) {
  host::VORN_ValueLabelMap numbers;
  numbers.AddPair(standalone::NumberValue(0), "none");
  numbers.AddPair(standalone::NumberValue(2), "two");
  OBS key;
  key.number = -0.0;
  ASSERT_NE(numbers.GetLabel(&key, 0), nullptr);
  EXPECT_EQ(*numbers.GetLabel(&key, 0), "none");
  key.number = 3;
  EXPECT_EQ(numbers.GetLabel(&key, 0), nullptr);

  host::VORN_ValueLabelMap texts;
  texts.AddPair(standalone::TextValue("E", 12), "Elementary");
  EXPECT_EQ(*texts.GetLabel(standalone::TextValue("E", 12).data(), 12), "Elementary");
  EXPECT_EQ(texts.GetLabel(standalone::TextValue("e", 12).data(), 12), nullptr);
  texts.Reset();
  EXPECT_EQ(texts.GetLabel(standalone::TextValue("E", 12).data(), 12), nullptr);
}

}  // namespace
