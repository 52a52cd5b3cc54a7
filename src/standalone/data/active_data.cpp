#include "standalone/data/table.h"

#include <algorithm>
#include <cstring>

#include "standalone/data/cells.h"

namespace standalone {

namespace {

/// What the passes of one command share: the table, where its own variables begin, and whether something
/// failed.
struct ActiveState {
  Table& table;
  std::size_t fFirstMade;  // columns from here on belong to the procedure
  bool fbFatalError = false;
};

/// One pass. The bindings point at `fRow`, so moving on is all that a case costs.
class TableCursor final : public host::ProcDSIterator {
 public:
  TableCursor(ActiveState& state, const host::VORN_DataSource& source) : fState(state), fSource(source) {}

  int NextCase() override {
    fbOnCase = fNext < fState.table.CaseCount();
    if (!fbOnCase) return 0;
    fRow = fNext++;
    return 1;
  }

  bool SplitGroupEnd() const override { return false; }  // data in memory is one group

  const host::VORN_DataSource& GetDataSource() const override { return fSource; }

  host::ColumnBinding Bind(unsigned column) const override {
    const Column& bound = fState.table.At(column);
    return {bound.cells.data(), &fRow, bound.Stride()};
  }

  void SetColumnValue(unsigned column, double value) override {
    if (Column* target = Writable(column, true)) target->cells[fRow].number = value;
  }

  void SetColumnValue(unsigned column, const char* text, std::size_t length) override {
    if (Column* target = Writable(column, false)) {
      PadText({text, length}, target->variable.GetType(), &target->cells[fRow * target->Stride()]);
    }
  }

 private:
  /// The column, when the current case's value may be written there; a write to any other is a failure.
  Column* Writable(unsigned column, bool isNumeric) {
    const bool isOwn = column >= fState.fFirstMade && column < fState.table.ColumnCount();
    if (!fbOnCase || !isOwn || fState.table.At(column).variable.IsNumeric() != isNumeric) {
      fState.fbFatalError = true;
      return nullptr;
    }
    return &fState.table.At(column);
  }

  ActiveState& fState;
  const host::VORN_DataSource& fSource;
  std::size_t fNext = 0;
  std::size_t fRow = 0;
  bool fbOnCase = false;
};

class TableDataSource final : public host::ProcedureDataSource {
 public:
  explicit TableDataSource(Table& table) : fState{table, table.ColumnCount()} {}

  unsigned ColumnCount() const override { return static_cast<unsigned>(fState.table.ColumnCount()); }
  const host::VORN_Variable* GetVariable(unsigned index) const override {
    return &fState.table.At(index).variable;
  }
  host::VORN_Variable* GetVariable(unsigned index) override { return &fState.table.At(index).variable; }
  int FindVarIndex(std::string_view name) const override { return fState.table.Find(name); }

  host::VORN_Variable* MakeVariable(int type, int& index) override {
    if (type < 0 || type > static_cast<int>(kWidestText)) return nullptr;
    index = static_cast<int>(fState.table.ColumnCount());
    return &fState.table.Add(host::VORN_Variable(std::string(), type)).variable;
  }

  std::unique_ptr<host::VORN_InputCaseIterator> NewInputIterator(int /*mode*/) override {
    return std::make_unique<TableCursor>(fState, *this);
  }

  // Columns in memory need no room beside the old cells, and no pass is dearer than another.
  void SetMaxObsAdded(unsigned /*cells*/) override {}
  void SetLastPass() override {}

  bool FatalError() const override { return fState.fbFatalError; }

 private:
  ActiveState fState;
};

}  // namespace

std::unique_ptr<host::ProcedureDataSource> MakeProcedureDataSource(Table& table) {
  return std::make_unique<TableDataSource>(table);
}

}  // namespace standalone
