#include "standalone/data/table_schema.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <string>
#include <vector>

#include "standalone/files/data_reader.h"
#include "temporary_folder.h"

namespace {

using host::MeasurementLevel;
using host::VORN_Format;
using standalone::ParseTableSchema;
using standalone::ReadDataFile;
using standalone::ReadResult;

constexpr double kMissing = host::kSystemMissing;

/// Reads a data file with a schema beside it.
ReadResult Read(const std::string& data, const std::string& schema) {
  const TemporaryFolder folder;
  folder.Write("data.schema.json", schema);
  return ReadDataFile({folder.Write("data.csv", data), "", 1});
}

/// A schema with one field "x".
std::string OneField(const std::string& keys) {
  return R"({"fields": [{"name": "x")" + keys + "}]}";
}

const host::VORN_Variable& First(const ReadResult& read) {
  return read.table.At(0).variable;
}

TEST(TableSchema, DeclaredMissingValuesKeepTheirValue) {
  const ReadResult read = Read("x,y\n8,1\n1,2\n", R"({"fields": [{"name": "x", "type": "integer",
      "missingValues": ["8", 9, "", "NA"]}]})");
  ASSERT_TRUE(read.ok) << read.error;
  EXPECT_EQ(read.table.At(0).cells[0].number, 8);
  const auto& missing = First(read).GetMissingValues().values;
  ASSERT_EQ(missing.size(), 2u);
  EXPECT_EQ(missing[0][0].number, 8);
  EXPECT_EQ(missing[1][0].number, 9);
  EXPECT_TRUE(read.table.At(1).variable.GetMissingValues().Empty());
}

TEST(TableSchema, TextsAtTheTopMeanSystemMissing) {
  const ReadResult read = Read("x,s\n-99,a\n1,none\n-99.0,b\n none ,c\nNA,d\n",
                               R"({"missingValues": ["", "-99", "none"], "fields": []})");
  ASSERT_TRUE(read.ok) << read.error;
  std::vector<double> numbers;
  for (const host::OBS& cell : read.table.At(0).cells)
    numbers.push_back(cell.number);
  EXPECT_EQ(numbers, (std::vector<double>{kMissing, 1, -99, kMissing, kMissing}));
  EXPECT_EQ(std::string(read.table.At(1).cells[1].text, 8), "        ");
  EXPECT_EQ(read.table.At(1).variable.GetType(), 1);
}

TEST(TableSchema, CategoriesBecomeValueLabels) {
  const ReadResult read = Read("sex,area,s\n1,2,E\n2,1,M\n", R"({"fields": [
      {"name": "sex", "categories": [{"value": 1, "label": "male"}, {"value": "2", "label": "female"}]},
      {"name": "area", "categories": [1, {"value": 2}]},
      {"name": "s", "type": "string", "categories": [{"value": "E", "label": "Elementary"},
                                                     {"value": "Middle", "label": "Middle school"}]}]})");
  ASSERT_TRUE(read.ok) << read.error;
  const host::OBS two = read.table.At(0).cells[1];
  EXPECT_EQ(*First(read).GetValueLabels().GetLabel(&two, 0), "female");
  EXPECT_TRUE(read.table.At(1).variable.GetValueLabels().Pairs().empty());
  const host::VORN_Variable& s = read.table.At(2).variable;
  EXPECT_EQ(s.GetType(), 6);  // wide enough for every category
  EXPECT_EQ(*s.GetValueLabels().GetLabel(read.table.At(2).cells.data(), 6), "Elementary");
  EXPECT_EQ(First(read).GetMeasurementLevel(), MeasurementLevel::kNominal);
}

TEST(TableSchema, TheTypeOverridesWhatTheCellsLookLike) {
  const ReadResult read = Read("x\n01\n02\n", OneField(R"(, "type": "string")"));
  ASSERT_TRUE(read.ok) << read.error;
  EXPECT_EQ(First(read).GetType(), 2);
  EXPECT_EQ(std::string(read.table.At(0).cells[0].text, 2), "01");
  EXPECT_EQ(First(read).GetMissingValues().values.size(), 1u);  // the blank
}

TEST(TableSchema, IdentifiersAreNumbersWhenTheSchemaSaysSo) {
  for (const char* type : {"number", "integer"}) {
    const ReadResult read =
        Read("x\n01\n9007199254740992\n", OneField(std::string(R"(, "type": ")") + type + "\""));
    ASSERT_TRUE(read.ok) << read.error;
    EXPECT_EQ(First(read).GetType(), 0);
    EXPECT_EQ(read.table.At(0).cells[0].number, 1);
    EXPECT_EQ(read.table.At(0).cells[1].number, 9007199254740992.0);
  }
}

TEST(TableSchema, TitleFormatAndMeasureOverrideWhatWasGuessed) {
  const ReadResult read = Read("x,y,z\n1.23456,abc,AB\n", R"({"fields": [
      {"name": "x", "title": "A number", "x-format": "F10.2", "x-measure": "scale"},
      {"name": "y", "x-format": "A12", "x-measure": "ordinal"},
      {"name": "z", "x-format": "AHEX8", "title": ""}]})");
  ASSERT_TRUE(read.ok) << read.error;
  EXPECT_EQ(First(read).GetLabel(), "A number");
  EXPECT_EQ(First(read).GetFormat(), (VORN_Format{5, 10, 2}));
  EXPECT_EQ(First(read).GetMeasurementLevel(), MeasurementLevel::kScale);
  EXPECT_EQ(read.table.At(1).variable.GetType(), 12);
  EXPECT_EQ(read.table.At(1).variable.GetFormat(), (VORN_Format{1, 12, 0}));
  EXPECT_EQ(read.table.At(1).variable.GetMeasurementLevel(), MeasurementLevel::kOrdinal);
  EXPECT_EQ(read.table.At(2).variable.GetType(), 4);
  EXPECT_EQ(read.table.At(2).variable.GetFormat(), (VORN_Format{2, 8, 0}));
}

TEST(TableSchema, OrderedCategoriesAreOrdinal) {
  const auto level = [](const std::string& keys) {
    return First(Read("x\n1\n", OneField(keys))).GetMeasurementLevel();
  };
  EXPECT_EQ(level(R"(, "categories": [1], "categoriesOrdered": true)"), MeasurementLevel::kOrdinal);
  EXPECT_EQ(level(R"(, "categories": [1], "categoriesOrdered": false)"), MeasurementLevel::kNominal);
  EXPECT_EQ(level(R"(, "categoriesOrdered": true, "x-measure": "scale")"), MeasurementLevel::kScale);
  EXPECT_EQ(level(R"(, "type": "number")"), MeasurementLevel::kUnknown);
}

TEST(TableSchema, AMissingRangeIsDeclared) {
  const auto missing = [](const std::string& range) {
    return First(Read("x\n1\n", OneField(R"(, "x-missing-range": )" + range))).GetMissingValues();
  };
  EXPECT_TRUE(missing("[97, 99]").hasRange);
  EXPECT_EQ(missing("[97, 99]").rangeLow, 97);
  EXPECT_EQ(missing("[97, 99]").rangeHigh, 99);
  EXPECT_EQ(missing("[900, null]").rangeHigh, DBL_MAX);
  EXPECT_EQ(missing("[null, -1]").rangeLow, -DBL_MAX);
}

TEST(TableSchema, FieldsMayBeFewerThanColumnsAndInAnyOrder) {
  const ReadResult read =
      Read("a,b,c\n1,2,3\n", R"({"fields": [{"name": "c", "title": "C"}, {"name": "a", "title": "A"}]})");
  ASSERT_TRUE(read.ok) << read.error;
  EXPECT_EQ(First(read).GetLabel(), "A");
  EXPECT_EQ(read.table.At(1).variable.GetLabel(), "");
  EXPECT_EQ(read.table.At(2).variable.GetLabel(), "C");
}

TEST(TableSchema, AFieldIsFoundByTheHeadersTextOrByTheVariablesName) {
  const ReadResult read = Read("my age,SEX\n1,2\n", R"({"fields": [{"name": "my age", "title": "Age"},
                                                                     {"name": "sex", "title": "Sex"}]})");
  ASSERT_TRUE(read.ok) << read.error;
  EXPECT_EQ(First(read).GetLabel(), "Age");
  EXPECT_EQ(read.table.At(1).variable.GetLabel(), "Sex");
}

TEST(TableSchema, AGivenPathIsUsedInsteadOfTheOneBeside) {
  const TemporaryFolder folder;
  folder.Write("data.schema.json", "not even JSON");
  const std::string other = folder.Write("other.json", OneField(R"(, "title": "other")"));
  const std::string data = folder.Write("data.csv", "x\n1\n");
  EXPECT_EQ(First(ReadDataFile({data, other, 1})).GetLabel(), "other");
  EXPECT_FALSE(ReadDataFile({data, "", 1}).ok);
  const ReadResult none = ReadDataFile({data, folder.Path("none.json"), 1});
  EXPECT_FALSE(none.ok);
  EXPECT_NE(none.error.find("none.json"), std::string::npos);
}

TEST(TableSchema, AByteOrderMarkIsPassedOver) {
  EXPECT_EQ(First(Read("x\n1\n", "\xEF\xBB\xBF" + OneField(R"(, "title": "T")"))).GetLabel(), "T");
}

TEST(TableSchema, UnknownKeysOfTheConventionAreIgnoredAndOurPrefixIsWatched) {
  const ReadResult read = Read("x\n1\n", R"({"$schema": "s", "primaryKey": "x", "fields": [{"name": "x",
      "description": "d", "constraints": {"required": true}, "x-mesure": "scale"}]})");
  ASSERT_TRUE(read.ok) << read.error;
  ASSERT_EQ(read.warnings.size(), 1u);
  EXPECT_NE(read.warnings[0].find("x-mesure"), std::string::npos);
}

struct SchemaFault {
  std::string schema;
  std::string part;
  int line = 1;
};

TEST(TableSchema, WhatIsWrongIsNamedWithItsLine) {
  const std::vector<SchemaFault> faults = {
      {"[]", "JSON object"},
      {"{}", "no array \"fields\"", 0},
      {R"({"fields": {}})", "\"fields\" must be an array", 0},
      {"{\"fields\": [\n{\"name\": \"x\"},\n3]}", "entry 2", 0},
      {"{\"fields\": [\n{}]}", "no \"name\"", 2},
      {"{\"fields\": [\n\n{\"name\": 3}]}", "\"name\" must be a string, but is 3", 3},
      {R"({"fields": [{"name": ""}]})", "is empty"},
      {"{\"fields\": [{\"name\": \"x\"},\n{\"name\": \"x\"}]}", "twice", 2},
      {"{\"fields\": [{\"name\": \"x\"},\n{\"name\": \"y\"}]}", "no such column; it has x", 2},
      {"{\"fields\": [{\"name\": \"x\"},\n{\"name\": \"X\"}]}", "its column is that of field \"x\"", 2},
      {OneField(R"(, "type": "date")"), "\"string\", \"number\" or \"integer\""},
      {OneField(R"(, "type": 3)"), "\"type\" must be"},
      {OneField(R"(, "title": 3)"), "\"title\" must be a string"},
      {OneField(R"(, "missingValues": "9")"), "\"missingValues\" must be an array"},
      {OneField(R"(, "missingValues": [[9]])"), "a number or a string"},
      {OneField(R"(, "missingValues": ["refused"])"), "the value \"refused\" is no number"},
      {OneField(R"(, "type": "string", "missingValues": [9])"), "the value 9 is a number"},
      {OneField(R"(, "type": "string", "x-missing-range": [1, 2])"), "x-missing-range is for numbers"},
      {OneField(R"(, "categories": {"1": "a"})"), "\"categories\" must be an array"},
      {OneField(R"(, "categories": [{"label": "a"}])"), "no \"value\""},
      {OneField(R"(, "categories": [{"value": true}])"), "\"value\" must be a number or a string"},
      {OneField(R"(, "categories": [{"value": 1, "label": 1}])"), "\"label\" must be a string"},
      {OneField(R"(, "categories": [{"value": "one", "label": "a"}])"), "the value \"one\" is no number"},
      {OneField(R"(, "categoriesOrdered": 1)"), "true or false"},
      {OneField(R"(, "x-format": "Q8")"), "\"x-format\" must be a format"},
      {OneField(R"(, "x-format": 8)"), "\"x-format\" must be a format"},
      {OneField(R"(, "x-format": "F8.9")"), "\"x-format\" must be a format"},
      {OneField(R"(, "x-format": "F99999999999")"), "\"x-format\" must be a format"},
      {OneField(R"(, "x-format": "A40000")"), "\"x-format\" must be a format"},
      {OneField(R"(, "x-format": "AHEX7")"), "\"x-format\" must be a format"},
      {OneField(R"(, "type": "string", "x-format": "F8")"), "x-format is for numbers"},
      {OneField(R"(, "type": "integer", "x-format": "A8")"), "x-format is for strings"},
      {OneField(R"(, "x-format": "A2", "categories": ["abc"])"), "doesn't fit the x-format"},
      {OneField(R"(, "x-measure": "interval")"), "\"nominal\", \"ordinal\", \"scale\" or \"unknown\""},
      {OneField(R"(, "x-blank-missing": 0)"), "\"x-blank-missing\" must be true or false"},
      {OneField(R"(, "type": "number", "x-blank-missing": false)"), "x-blank-missing is for strings"},
      {R"({"x-documents": "a", "fields": []})", "\"x-documents\" must be an array of strings", 0},
      {R"({"x-documents": [1], "fields": []})", "\"x-documents\" must be an array of strings", 0},
      {OneField(R"(, "x-missing-range": [2, 1])"), "\"x-missing-range\" must be"},
      {OneField(R"(, "x-missing-range": [1])"), "\"x-missing-range\" must be"},
      {OneField(R"(, "x-missing-range": ["1", 2])"), "\"x-missing-range\" must be"},
      {R"({"missingValues": "NA", "fields": []})", "\"missingValues\" must be an array of strings", 0},
      {R"({"missingValues": [9], "fields": []})", "\"missingValues\" must be an array of strings", 0},
      {"", "JSON"},
      {"{\n\"fields\": [}", "JSON", 2},
      {"{\"fields\": []} x", "JSON"},
      {"{\"fields\": [{\"name\": \"\xFF\"}]}", "JSON"},
      {"{\"fields\": [\n1e999]}", "JSON", 2},
  };
  for (const SchemaFault& fault : faults) {
    const ReadResult read = Read("x\n1\n", fault.schema);
    EXPECT_FALSE(read.ok) << fault.schema;
    EXPECT_EQ(read.table.ColumnCount(), 0u) << fault.schema;
    EXPECT_NE(read.error.find(fault.part), std::string::npos) << read.error << "\nfor " << fault.schema;
    if (fault.line > 0 && fault.part != "JSON object") {
      const std::string place = "data.schema.json:" + std::to_string(fault.line) + ": ";
      EXPECT_NE(read.error.find(place), std::string::npos) << read.error << "\nfor " << fault.schema;
    }
  }
}

TEST(TableSchema, ANumberTypeOnTextIsAnErrorAtTheCell) {
  for (const bool isInteger : {false, true}) {
    const ReadResult read =
        Read("y,x\n1,2\n2,abc\n", OneField(isInteger ? R"(, "type": "integer")" : R"(, "type": "number")"));
    EXPECT_FALSE(read.ok);
    EXPECT_NE(read.error.find("data.csv:3:3: "), std::string::npos) << read.error;
    EXPECT_NE(read.error.find("\"abc\""), std::string::npos) << read.error;
    EXPECT_NE(read.error.find("variable x"), std::string::npos) << read.error;
  }
}

TEST(TableSchema, AnIntegerFieldRefusesFractions) {
  const ReadResult sound = Read("x\n1\n2.0\n1e3\n\n", OneField(R"(, "type": "integer")"));
  ASSERT_TRUE(sound.ok) << sound.error;
  EXPECT_EQ(First(sound).GetFormat().decimals, 0);
  const ReadResult fraction = Read("x\n1\n2.5\n", OneField(R"(, "type": "integer")"));
  EXPECT_NE(fraction.error.find("data.csv:3:1: "), std::string::npos) << fraction.error;
  EXPECT_NE(fraction.error.find("whole number"), std::string::npos) << fraction.error;
}

TEST(TableSchema, ATextWiderThanItsFormatIsAnErrorAtTheCell) {
  const ReadResult read = Read("x\nab\nabcd\n", OneField(R"(, "x-format": "A3")"));
  EXPECT_FALSE(read.ok);
  EXPECT_NE(read.error.find("data.csv:3:1: "), std::string::npos) << read.error;
}

TEST(TableSchema, DeepNestingIsRefusedWithoutRunningOutOfStack) {
  for (const char* bracket : {"[", "{\"a\":"}) {
    std::string text = "{\"fields\": ";
    for (int i = 0; i < 1000000; ++i)
      text += bracket;
    const auto result = ParseTableSchema("deep.json", text);
    EXPECT_NE(result.error.find("deep.json:1: "), std::string::npos) << result.error;
    EXPECT_NE(result.error.find("nested deeper"), std::string::npos) << result.error;
  }
}

TEST(TableSchema, HugeTokensAreShortenedInMessages) {
  const auto result = ParseTableSchema(
      "s.json", R"({"fields": [{"name": "x", "type": ")" + std::string(100000, 'q') + "\"}]}");
  EXPECT_FALSE(result.error.empty());
  EXPECT_LT(result.error.size(), 300u);
  EXPECT_LT(ParseTableSchema("s.json", "{\"fields\": " + std::string(100000, 'q')).error.size(), 300u);
}

TEST(TableSchema, ManyFieldsAreReadInReasonableTime) {
  std::string text = "{\"fields\": [";
  for (int i = 0; i < 50000; ++i)
    text += (i == 0 ? "{\"name\": \"v" : ",\n{\"name\": \"v") + std::to_string(i) + "\"}";
  const auto result = ParseTableSchema("s.json", text + "]}");
  EXPECT_EQ(result.error, "");
  ASSERT_EQ(result.schema.fields.size(), 50000u);
  EXPECT_EQ(result.schema.fields[49999].line, 50000);
}

TEST(TableSchema, CategoriesThatAskForMuchMemoryAreRefused) {
  std::string categories = "\"v\"";
  for (int i = 1; i < 9000; ++i)
    categories += ", \"v\"";
  const ReadResult read =
      Read("x\na\n", OneField(", \"x-format\": \"A32767\", \"categories\": [" + categories + "]"));
  EXPECT_NE(read.error.find("would fill the memory"), std::string::npos) << read.error;
}

}  // namespace
