#include "table_checks.h"

#include "sample_tables.h"
#include "standalone/files/data_writer.h"
#include "standalone/files/dictionary_check.h"
#include "target.h"

namespace fuzz {

namespace {

using standalone::ReadDataFile;
using standalone::ReadResult;
using standalone::Table;

void CheckShape(const Table& table) {
  const std::string fault = standalone::DictionaryFault(table);
  Require(fault.empty(), "a table that was read has a sound dictionary: " + fault);
  for (std::size_t i = 0; i < table.ColumnCount(); ++i) {
    const standalone::Column& column = table.At(i);
    Require(column.cells.size() == table.CaseCount() * column.Stride(), "every column has every case");
    Require(table.Find(column.variable.GetName()) == static_cast<int>(i), "a variable is found by its name");
  }
}

void CheckWayBack(const Table& table, const std::string& dump, const std::string& path) {
  const std::string failure = standalone::WriteDataFile(path, table);
  Require(failure.empty(), "a table that was read can be written: " + failure);
  const ReadResult again = ReadDataFile({path, "", 1});
  Require(again.ok, "what was written can be read: " + again.error);
  const std::string back = sample::Dump(again.table);
  Require(back == dump, "writing and reading leave a table as it was; it was\n" + dump + "and is\n" + back);
}

}  // namespace

void CheckReading(const ReadResult& read, const TestFolder& folder) {
  Require(read.ok == read.error.empty(), "a reading that fails says why");
  if (!read.ok) {
    Require(read.table.ColumnCount() == 0 && read.table.CaseCount() == 0, "a failure hands out no table");
    return;
  }
  CheckShape(read.table);
  const std::string dump = sample::Dump(read.table);
  CheckWayBack(read.table, dump, folder.Path("back.csv"));
  CheckWayBack(read.table, dump, folder.Path("back.vdt"));
}

}  // namespace fuzz
