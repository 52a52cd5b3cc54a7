#include "standalone/output/pivot_builder.h"

#include <algorithm>
#include <deque>
#include <stdexcept>
#include <unordered_map>

#include "standalone/output/content_text.h"

namespace standalone {

namespace {

/// The table under construction: the document's table and the current category of each dimension (0: none).
struct TableState {
  PivotTable& table;
  std::vector<int> current;

  PivotCell& CurrentCell() {
    if (std::find(current.begin(), current.end(), 0) != current.end()) {
      // An exception and no assertion, which a released program hasn't: the number would be printed at
      // another place.
      throw std::logic_error("a cell of table " + table.id +
                             " was set before every dimension had a category");
    }
    return table.At(current);
  }
};

void AddOnce(std::vector<std::string>& notes, std::string note) {
  if (std::find(notes.begin(), notes.end(), note) == notes.end()) notes.push_back(std::move(note));
}

class DimensionBuilder;

class CategoryBuilder final : public host::BpCategory {
 public:
  CategoryBuilder(DimensionBuilder& dimension, int label) : fDimension(dimension), fLabel(label) {}
  void Cell(const host::BpCellText& content) override;
  void CellNote(const host::BpCellText& note) override;
  void Note(const host::BpCellText& note) override;

 private:
  DimensionBuilder& fDimension;
  int fLabel;
};

class GroupBuilder final : public host::BpGroup {
 public:
  GroupBuilder(DimensionBuilder& dimension, int label) : fDimension(dimension), fLabel(label) {}
  host::BpGroup& Group(const host::BpCellText& label) override;
  host::BpCategory& Category(const host::BpCellText& label) override;
  void Note(const host::BpCellText& note) override;

 private:
  DimensionBuilder& fDimension;
  int fLabel;
};

class DimensionBuilder final : public host::BpDimension {
 public:
  DimensionBuilder(TableState& state, std::size_t index) : fState(state), fIndex(index) {}

  void Position(host::BpPlace place, int level, bool hideLabel, bool hideWhenSingle) override {
    PivotDimension& dimension = Data();
    dimension.place = place;
    dimension.level = level;
    dimension.hideLabel = hideLabel;
    dimension.hideWhenSingle = hideWhenSingle;
  }
  host::BpGroup& Group(const host::BpCellText& label) override { return GroupIn(0, label); }
  host::BpCategory& Category(const host::BpCellText& label) override { return CategoryIn(0, label); }
  void Note(const host::BpCellText& note) override { NoteOn(0, note); }

  host::BpGroup& GroupIn(int parent, const host::BpCellText& label) {
    const int at = Find(parent, label, false);
    return fGroups.try_emplace(at, *this, at).first->second;
  }
  host::BpCategory& CategoryIn(int parent, const host::BpCellText& label) {
    const int at = Find(parent, label, true);
    MakeCurrent(at);
    return fCategories.try_emplace(at, *this, at).first->second;
  }
  void NoteOn(int label, const host::BpCellText& note) {
    AddOnce(Data().labels[static_cast<std::size_t>(label)].notes, TextOf(note));
  }
  void MakeCurrent(int label) { fState.current[fIndex] = label; }
  TableState& State() { return fState; }

 private:
  PivotDimension& Data() { return fState.table.dimensions[fIndex]; }

  /// The label of that identity below `parent`, made when it isn't there.
  int Find(int parent, const host::BpCellText& label, bool isCategory) {
    // Looked up by identity and not by text: categories whose texts are the same stay two.
    std::string key = std::to_string(parent) + (isCategory ? 'c' : 'g') + IdentityOf(label);
    std::vector<PivotLabel>& labels = Data().labels;
    const auto [at, isNew] = fKnown.try_emplace(std::move(key), static_cast<int>(labels.size()));
    if (isNew) {
      labels.push_back({LabelOf(label), isCategory, parent, {}, {}});
      labels[static_cast<std::size_t>(parent)].children.push_back(at->second);
    }
    return at->second;
  }

  TableState& fState;
  std::size_t fIndex;
  std::unordered_map<std::string, int> fKnown;
  // Node-based maps: callers keep references to the handles.
  std::unordered_map<int, GroupBuilder> fGroups;
  std::unordered_map<int, CategoryBuilder> fCategories;
};

void CategoryBuilder::Cell(const host::BpCellText& content) {
  fDimension.MakeCurrent(fLabel);
  fDimension.State().CurrentCell().content = ContentOf(content);
}

void CategoryBuilder::CellNote(const host::BpCellText& note) {
  fDimension.MakeCurrent(fLabel);
  AddOnce(fDimension.State().CurrentCell().notes, TextOf(note));
}

void CategoryBuilder::Note(const host::BpCellText& note) {
  fDimension.NoteOn(fLabel, note);
}

host::BpGroup& GroupBuilder::Group(const host::BpCellText& label) {
  return fDimension.GroupIn(fLabel, label);
}

host::BpCategory& GroupBuilder::Category(const host::BpCellText& label) {
  return fDimension.CategoryIn(fLabel, label);
}

void GroupBuilder::Note(const host::BpCellText& note) {
  fDimension.NoteOn(fLabel, note);
}

class TableBuilder final : public host::BpPivotTable {
 public:
  TableBuilder(CommandOutput& output, PivotTable& table) : fOutput(output), fState{table, {}} {}
  TableBuilder(const TableBuilder&) = delete;
  TableBuilder& operator=(const TableBuilder&) = delete;

  ~TableBuilder() override {
    // A procedure may begin a table before it knows that there is nothing to put into it.
    if (!fState.table.dimensions.empty()) return;
    std::erase_if(fOutput.tables, [this](const auto& table) { return table.get() == &fState.table; });
  }

  host::BpDimension& Dimension(const host::BpCellText& label) override {
    if (fState.table.CellCount() > 0) {
      throw std::logic_error("a dimension of table " + fState.table.id + " was made after its cells");
    }
    PivotDimension dimension;
    dimension.labels.push_back({LabelOf(label), false, -1, {}, {}});
    fState.table.dimensions.push_back(std::move(dimension));
    fState.current.push_back(0);
    return fDimensions.emplace_back(fState, fState.table.dimensions.size() - 1);
  }
  void Caption(const host::BpCellText& caption) override { fState.table.caption = TextOf(caption); }
  void Note(const host::BpCellText& note) override { AddOnce(fState.table.notes, TextOf(note)); }

 private:
  CommandOutput& fOutput;
  TableState fState;
  std::deque<DimensionBuilder> fDimensions;  // a deque: handles stay where they are
};

class HeadingBuilder final : public host::BpHeading {
 public:
  HeadingBuilder(CommandOutput& output, std::vector<std::string> path)
      : fOutput(output), fPath(std::move(path)) {}

  std::unique_ptr<host::BpPivotTable> PivotTable(const host::BpCellText& title,
                                                 std::string_view identifier) override {
    auto table = std::make_unique<standalone::PivotTable>();
    table->id = identifier;
    table->title = TextOf(title);
    table->heading = fPath;
    fOutput.tables.push_back(std::move(table));
    return std::make_unique<TableBuilder>(fOutput, *fOutput.tables.back());
  }
  std::unique_ptr<host::BpHeading> Heading(const host::BpCellText& text) override {
    std::vector<std::string> path = fPath;
    path.push_back(TextOf(text));
    return std::make_unique<HeadingBuilder>(fOutput, std::move(path));
  }

 private:
  CommandOutput& fOutput;
  std::vector<std::string> fPath;
};

class Procedure final : public host::BpProcedure {
 public:
  explicit Procedure(CommandOutput& output) : fHeading(output, {}) {}
  host::BpHeading& Heading() override { return fHeading; }

 private:
  HeadingBuilder fHeading;
};

}  // namespace

std::unique_ptr<host::BpProcedure> MakeProcedure(CommandOutput& output) {
  return std::make_unique<Procedure>(output);
}

}  // namespace standalone
