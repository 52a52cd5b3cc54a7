// A host's active data played from a script: cases, ends of split groups, failures.
#pragma once

#include <algorithm>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/data.h"

namespace tavo {

using Cells = std::vector<host::OBS>;

inline Cells Number(double value) {
  host::OBS cell{};
  cell.number = value;
  return {cell};
}

/// A string as a variable of that width holds it.
inline Cells Text(std::string_view text, int width) {
  Cells cells(static_cast<std::size_t>(host::CellCount(width)));
  std::string padded(text);
  padded.resize(cells.size() * sizeof(host::OBS), ' ');
  std::memcpy(static_cast<void*>(cells.data()), padded.data(), padded.size());
  return cells;
}

/// A value for a script: a number, or a text that is padded to its variable's width.
struct Value {
  Value(double v) : number(v) {}     // NOLINT: scripts are written as lists of values
  Value(int v) : number(v) {}        // NOLINT
  Value(const char* v) : text(v) {}  // NOLINT
  double number = 0;
  std::string text;
};
inline const Value kMissing{host::kSystemMissing};

class ScriptedSource final : public host::ProcedureDataSource {
 public:
  enum class Event { kCase, kSplitEnd, kFailure, kFailureOnCase };

  host::VORN_Variable& AddVariable(const std::string& name, int type = 0) {
    return fVariables.emplace_back(name, type);
  }
  /// Variables come before cases; as many values as variables.
  void AddCase(const std::vector<Value>& values, Event event = Event::kCase) {
    Cells row;
    for (std::size_t i = 0; i < values.size(); ++i) {
      const int type = fVariables[i].GetType();
      const Cells cells = type == 0 ? Number(values[i].number) : Text(values[i].text, type);
      row.insert(row.end(), cells.begin(), cells.end());
    }
    fScript.push_back({event, row});
  }
  void AddEvent(Event event) { fScript.push_back({event, Cells(CellsBefore(fVariables.size()))}); }
  void ClearCases() { fScript.clear(); }

  bool refusesPasses = false;     // NewInputIterator answers null
  bool makesPlainPasses = false;  // NewInputIterator answers a pass over something else
  int passes = 0;                 // that were begun

  unsigned ColumnCount() const override { return static_cast<unsigned>(fVariables.size()); }
  const host::VORN_Variable* GetVariable(unsigned index) const override { return &fVariables[index]; }
  host::VORN_Variable* GetVariable(unsigned index) override { return &fVariables[index]; }
  int FindVarIndex(std::string_view name) const override {
    for (std::size_t i = 0; i < fVariables.size(); ++i) {
      if (fVariables[i].GetName() == name) return static_cast<int>(i);
    }
    return -1;
  }
  host::VORN_Variable* MakeVariable(int, int&) override { return nullptr; }
  void SetMaxObsAdded(unsigned) override {}
  void SetLastPass() override {}
  bool FatalError() const override { return fbFatal; }

  std::unique_ptr<host::VORN_InputCaseIterator> NewInputIterator(int) override {
    if (refusesPasses) return nullptr;
    ++passes;
    if (makesPlainPasses) return std::make_unique<PlainPass>(*this);
    return std::make_unique<Pass>(*this);
  }
  std::unique_ptr<host::ProcDSIterator> NewPass() { return std::make_unique<Pass>(*this); }

 private:
  struct Step {
    Event event;
    Cells row;
  };

  std::size_t CellsBefore(std::size_t column) const {
    std::size_t cells = 0;
    for (std::size_t i = 0; i < column; ++i) {
      cells += static_cast<std::size_t>(host::CellCount(fVariables[i].GetType()));
    }
    return cells;
  }

  class Pass final : public host::ProcDSIterator {
   public:
    explicit Pass(ScriptedSource& source)
        : fSource(source), fRow(source.CellsBefore(source.fVariables.size())) {}
    int NextCase() override {
      fbSplitEnd = false;
      if (fNext >= fSource.fScript.size()) return 0;
      const Step& step = fSource.fScript[fNext++];
      std::copy(step.row.begin(), step.row.end(), fRow.begin());  // the bindings point into the row
      fbSplitEnd = step.event == Event::kSplitEnd;
      if (step.event == Event::kFailure || step.event == Event::kFailureOnCase) fSource.fbFatal = true;
      return step.event == Event::kFailure ? 0 : 1;
    }
    bool SplitGroupEnd() const override { return fbSplitEnd; }
    const host::VORN_DataSource& GetDataSource() const override { return fSource; }
    host::ColumnBinding Bind(unsigned column) const override {
      static constexpr std::size_t kFirstRow = 0;
      return {fRow.data() + fSource.CellsBefore(column), &kFirstRow, 0};
    }
    void SetColumnValue(unsigned, double) override {}
    void SetColumnValue(unsigned, const char*, std::size_t) override {}

   private:
    ScriptedSource& fSource;
    Cells fRow;
    std::size_t fNext = 0;
    bool fbSplitEnd = false;
  };

  class PlainPass final : public host::VORN_InputCaseIterator {
   public:
    explicit PlainPass(const ScriptedSource& source) : fSource(source) {}
    int NextCase() override { return 0; }
    const host::VORN_DataSource& GetDataSource() const override { return fSource; }
    host::ColumnBinding Bind(unsigned) const override { return {}; }
    void SetColumnValue(unsigned, double) override {}
    void SetColumnValue(unsigned, const char*, std::size_t) override {}

   private:
    const ScriptedSource& fSource;
  };

  std::vector<host::VORN_Variable> fVariables;
  std::vector<Step> fScript;
  bool fbFatal = false;
};

}  // namespace tavo
