#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "host/data.h"
#include "standalone/data/cells.h"
#include "standalone/data/table.h"

namespace {

using host::OBS;
using host::ObsVecMap;

OBS Number(double number) {
  OBS cell;
  cell.number = number;
  return cell;
}

/// Inserts a number and gives it a value.
void Put(ObsVecMap& map, double key, double value) {
  const OBS cell = Number(key);
  map.Insert(&cell)->number = value;
}

/// The value of a number's entry, -1 when there is none.
double Get(const ObsVecMap& map, double key) {
  const OBS cell = Number(key);
  const OBS* found = map.Contains(&cell);
  return found == nullptr ? -1 : found->number;
}

TEST(ObsVecMap, AnswersNullForAKeyThatWasNeverInserted) {
  ObsVecMap map({0}, 1);
  for (const double key : {0.0, 1.0, 4095.0, 4096.0, 0.5, -3.0})
    EXPECT_EQ(Get(map, key), -1) << key;
  Put(map, 7, 70);
  for (const double key : {0.0, 6.0, 8.0, 4095.0, 1e9, 7.5, -7.0})
    EXPECT_EQ(Get(map, key), -1) << key;
  EXPECT_EQ(Get(map, 7), 70);
}

TEST(ObsVecMap, FindsSmallWholeNumbersFractionsLargeAndNegativeNumbersAlike) {
  ObsVecMap map({0}, 1);
  const std::vector<double> keys = {
      0,           1,    4095,  4096,   4097, 0.5,   2.25,  -1,
      -4095,       1e15, 1e300, -1e300, 1e-9, 65536, 12345, host::kSystemMissing,
      2147483648.0};
  for (std::size_t i = 0; i < keys.size(); ++i)
    Put(map, keys[i], static_cast<double>(i));
  for (std::size_t i = 0; i < keys.size(); ++i)
    EXPECT_EQ(Get(map, keys[i]), static_cast<double>(i)) << keys[i];
  EXPECT_EQ(map.Size(), keys.size());
}

TEST(ObsVecMap, TakesMinusZeroForZero) {
  ObsVecMap single({0}, 1);
  Put(single, -0.0, 5);
  EXPECT_EQ(Get(single, 0.0), 5);
  EXPECT_EQ(Get(single, -0.0), 5);
  EXPECT_FALSE(std::signbit(single.Sort()[0]->number));

  ObsVecMap pair({0, 0}, 1);
  const OBS stored[] = {Number(1), Number(-0.0)};
  const OBS asked[] = {Number(1), Number(0.0)};
  pair.Insert(stored)->number = 6;
  ASSERT_NE(pair.Contains(asked), nullptr);
  EXPECT_EQ(pair.Contains(asked)->number, 6);
}

TEST(ObsVecMap, InsertingAKeyAgainReturnsTheSameCellsWithTheirValue) {
  ObsVecMap map({0}, 1);
  const OBS key = Number(3);
  OBS* first = map.Insert(&key);
  EXPECT_EQ(first->number, 0);
  first->number = 9;
  EXPECT_EQ(map.Insert(&key), first);
  EXPECT_EQ(map.Contains(&key), first);
  EXPECT_EQ(first->number, 9);
  EXPECT_EQ(map.Size(), 1u);
}

TEST(ObsVecMap, KeepsKeyAndValueCellsSideBySide) {
  ObsVecMap map({0, 12}, 1);
  EXPECT_EQ(map.CellSize(), 4);  // one cell for the number, two for the string, one for the value
  std::vector<OBS> key = {Number(2)};
  for (const OBS& cell : standalone::TextValue("north-west", 12))
    key.push_back(cell);
  const OBS* value = map.Insert(key.data());
  const OBS* stored = value - (map.CellSize() - 1);
  EXPECT_EQ(stored->number, 2);
  EXPECT_EQ(std::memcmp(stored + 1, key.data() + 1, 16), 0);
  EXPECT_EQ(ObsVecMap({0}, 3).CellSize(), 4);
}

TEST(ObsVecMap, PointersStayValidWhileItGrows) {
  ObsVecMap map({0}, 1);
  std::vector<OBS*> values;
  for (int i = 0; i < 20000; ++i) {
    const OBS key = Number(i * 1.5);
    values.push_back(map.Insert(&key));
    values.back()->number = i;
  }
  for (int i = 0; i < 20000; ++i) {
    const OBS key = Number(i * 1.5);
    ASSERT_EQ(map.Contains(&key), values[static_cast<std::size_t>(i)]);
    ASSERT_EQ(values[static_cast<std::size_t>(i)]->number, i);
    ASSERT_EQ((values[static_cast<std::size_t>(i)] - 1)->number, i * 1.5);
  }
}

TEST(ObsVecMap, MovesWithItsEntries) {
  ObsVecMap map({0}, 1);
  Put(map, 4, 40);
  Put(map, 4.5, 45);
  ObsVecMap moved(std::move(map));
  EXPECT_EQ(Get(moved, 4), 40);
  ObsVecMap assigned({0}, 1);
  Put(assigned, 1, 1);
  assigned = std::move(moved);
  EXPECT_EQ(Get(assigned, 4), 40);
  EXPECT_EQ(Get(assigned, 4.5), 45);
  EXPECT_EQ(Get(assigned, 1), -1);
}

TEST(ObsVecMap, ComparesStringsOverAllTheirCells) {
  ObsVecMap narrow({3}, 1);
  narrow.Insert(standalone::TextValue("Yes", 3).data())->number = 1;
  narrow.Insert(standalone::TextValue("No", 3).data())->number = 2;
  EXPECT_EQ(narrow.Contains(standalone::TextValue("Yes", 3).data())->number, 1);
  EXPECT_EQ(narrow.Contains(standalone::TextValue("No", 3).data())->number, 2);
  EXPECT_EQ(narrow.Contains(standalone::TextValue("yes", 3).data()), nullptr);
  EXPECT_EQ(narrow.Contains(standalone::TextValue("", 3).data()), nullptr);

  ObsVecMap wide({20}, 1);
  wide.Insert(standalone::TextValue("aaaaaaaabbbbbbbbc", 20).data())->number = 1;
  EXPECT_EQ(wide.Contains(standalone::TextValue("aaaaaaaabbbbbbbbd", 20).data()), nullptr);
  EXPECT_EQ(wide.Contains(standalone::TextValue("aaaaaaaabbbbbbbbc", 20).data())->number, 1);
}

TEST(ObsVecMap, AWidthOf8TakesOneCellAndAWidthOf9Two) {
  EXPECT_EQ(ObsVecMap({8}, 1).CellSize(), 2);
  EXPECT_EQ(ObsVecMap({9}, 1).CellSize(), 3);
  ObsVecMap map({9}, 1);
  map.Insert(standalone::TextValue("abcdefgh1", 9).data())->number = 1;
  map.Insert(standalone::TextValue("abcdefgh2", 9).data())->number = 2;
  EXPECT_EQ(map.Size(), 2u);
  EXPECT_EQ(map.Contains(standalone::TextValue("abcdefgh2", 9).data())->number, 2);
}

TEST(ObsVecMap, AnEmptyKeyHasOneEntry) {
  ObsVecMap map({}, 1);
  EXPECT_EQ(map.Contains(nullptr), nullptr);
  map.Insert(nullptr)->number = 8;
  EXPECT_EQ(map.Contains(nullptr)->number, 8);
  EXPECT_EQ(map.Size(), 1u);
}

TEST(ObsVecMap, SortsNumbersByValueAndStringsByBytes) {
  ObsVecMap numbers({0}, 1);
  for (const double key : {10.0, -2.0, 9.5, 0.0, 4096.0, host::kSystemMissing})
    Put(numbers, key, 1);
  std::vector<double> order;
  for (const OBS* key : numbers.Sort())
    order.push_back(key->number);
  EXPECT_EQ(order, (std::vector<double>{host::kSystemMissing, -2, 0, 9.5, 10, 4096}));

  ObsVecMap texts({4}, 1);
  for (const char* key : {"b", "a", "\xC3\xA4", "B", ""})
    texts.Insert(standalone::TextValue(key, 4).data());
  std::vector<std::string> words;
  for (const OBS* key : texts.Sort())
    words.emplace_back(key->text, 4);
  EXPECT_EQ(words, (std::vector<std::string>{"    ", "B   ", "a   ", "b   ", "\xC3\xA4  "}));
}

TEST(ObsVecMap, SortsSeveralKeyVariablesByTheFirstThatDiffers) {
  ObsVecMap map({0, 9}, 1);
  const std::vector<std::pair<double, std::string>> keys = {{2, "a"}, {1, "z"}, {10, "a"}, {1, "b"}};
  for (const auto& [number, text] : keys) {
    std::vector<OBS> key = {Number(number)};
    for (const OBS& cell : standalone::TextValue(text, 9))
      key.push_back(cell);
    map.Insert(key.data());
  }
  std::vector<std::pair<double, char>> order;
  for (const OBS* key : map.Sort())
    order.emplace_back(key->number, (key + 1)->text[0]);
  EXPECT_EQ(order, (std::vector<std::pair<double, char>>{{1, 'b'}, {1, 'z'}, {2, 'a'}, {10, 'a'}}));
}

TEST(ObsVecMap, AgreesWithAnOrderedMapOnRandomNumbers) {
  std::mt19937_64 random(20240607);
  for (const double scale : {1.0, 0.25, 1e7, 1e-300}) {
    ObsVecMap map({0}, 1);
    std::map<double, double> twin;
    for (int i = 0; i < 30000; ++i) {
      const double key = static_cast<double>(static_cast<int>(random() % 12000) - 2000) * scale;
      if (random() % 3 == 0) {
        Put(map, key, i);
        twin[key] = i;
      }
      const auto found = twin.find(key);
      ASSERT_EQ(Get(map, key), found == twin.end() ? -1 : found->second) << key;
    }
    ASSERT_EQ(map.Size(), twin.size());
    const std::vector<const OBS*> sorted = map.Sort();
    auto expected = twin.begin();
    for (const OBS* key : sorted)
      ASSERT_EQ(key->number, (expected++)->first);
  }
}

TEST(ObsVecMap, AgreesWithAnOrderedMapOnRandomKeysOfSeveralVariables) {
  std::mt19937_64 random(7);
  ObsVecMap map({0, 11, 2}, 1);
  std::map<std::string, double> twin;
  for (int i = 0; i < 20000; ++i) {
    const int a = static_cast<int>(random() % 30);
    const std::string b = "unit " + std::to_string(random() % 20);
    const std::string c = std::to_string(random() % 12);
    std::vector<OBS> key = {Number(a)};
    for (const OBS& cell : standalone::TextValue(b, 11))
      key.push_back(cell);
    for (const OBS& cell : standalone::TextValue(c, 2))
      key.push_back(cell);
    const std::string text = std::to_string(a) + "|" + b + "|" + c;
    const bool isKnown = twin.contains(text);
    ASSERT_EQ(map.Contains(key.data()) != nullptr, isKnown);
    if (isKnown) {
      ASSERT_EQ(map.Contains(key.data())->number, twin[text]);
    }
    map.Insert(key.data())->number = twin[text] = i;
  }
  EXPECT_EQ(map.Size(), twin.size());
}

TEST(ObsVecMap, MakesItsKeySpecFromTheVariablesTypes) {
  standalone::Table table;
  table.Add(host::VORN_Variable("a", 0));
  table.Add(host::VORN_Variable("b", 8));
  table.Add(host::VORN_Variable("c", 32767));
  const auto source = standalone::MakeProcedureDataSource(table);
  EXPECT_EQ(ObsVecMap::MakeKeySpec(*source, {2, 0, 1}), (ObsVecMap::KeySpec{32767, 0, 8}));
  EXPECT_EQ(ObsVecMap({32767, 0}, 1).GetKeySpec(), (ObsVecMap::KeySpec{32767, 0}));
}

}  // namespace
