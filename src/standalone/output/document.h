// The output document: what a run reports, as plain data. A document holds commands; a command holds
// messages, notes and pivot tables. Numbers stay numbers here; the renderers make text of them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <unordered_map>
#include <variant>
#include <vector>

#include "host/output.h"
#include "standalone/output/message.h"

namespace standalone {

/// What a cell holds: nothing, a text, or a number with its format (a missing number is the host's missing
/// value).
using CellContent = std::variant<std::monostate, std::string, host::BpNumber>;

struct PivotCell {
  CellContent content;
  std::vector<std::string> notes;
};

/// A group or a category of a dimension.
struct PivotLabel {
  std::string text;
  bool isCategory = false;
  int parent = -1;            // index into PivotDimension::labels; -1 for the root
  std::vector<int> children;  // in order
  std::vector<std::string> notes;
};

/// A tree of labels. `labels[0]` is the root: it carries the dimension's own label and notes.
struct PivotDimension {
  host::BpPlace place = host::BpPlace::kRow;
  int level = 1;  // 1 is the innermost of its place
  bool hideLabel = false;
  bool hideWhenSingle = false;
  std::vector<PivotLabel> labels;

  const std::string& Label() const { return labels[0].text; }
  /// Indices of the categories, in the order in which the tree shows them.
  std::vector<int> Categories() const;
  /// The labels from the outermost group (the root left out) to the label itself. Groups without a text,
  /// which only keep categories together, are left out.
  std::vector<std::string> Path(int label) const;
};

/// A table. The cells are sparse; a cell's coordinates are one category (index into `labels`) per dimension,
/// in the order of `dimensions`.
class PivotTable {
 private:
  struct Hash {
    std::size_t operator()(const std::vector<int>& key) const;
  };

 public:
  using Cells = std::unordered_map<std::vector<int>, PivotCell, Hash>;

  std::string id, title, caption;
  std::vector<std::string> heading;  // outline path, outermost first; empty below the procedure itself
  std::vector<std::string> notes;
  std::vector<PivotDimension> dimensions;

  /// The cell at these coordinates, or null. `coordinates` has one entry per dimension.
  const PivotCell* Find(const std::vector<int>& coordinates) const;
  /// The cell at these coordinates; made empty when it isn't there.
  PivotCell& At(const std::vector<int>& coordinates);
  std::size_t CellCount() const { return fCells.size(); }
  const Cells& AllCells() const { return fCells; }
  /// Indices of the dimensions of a place, outermost first.
  std::vector<std::size_t> DimensionsOf(host::BpPlace place) const;

 private:
  Cells fCells;
};

/// A note of a command: which files and variables it used and made.
struct CommandNote {
  int group = 0;
  std::string label, text;
};

struct CommandOutput {
  std::string name;  // upper case; empty when the command has none, which is an error
  bool failed = false;
  double seconds = 0;
  std::vector<Message> messages;
  std::vector<CommandNote> notes;                   // ordered by group
  std::vector<std::unique_ptr<PivotTable>> tables;  // in the order in which they were made

  /// The n-th table (from 1) of that id which has cells, or null.
  const PivotTable* FindTable(const std::string& id, int n = 1) const;
  bool HasMessage(const std::string& key) const;
  /// What a person reads in the place of the name: the name, or that there is none.
  std::string Title() const;
};

struct Document {
  std::string version;
  std::vector<Message> messages;       // of the run as a whole, such as a data file that cannot be read
  std::deque<CommandOutput> commands;  // a deque: references stay while commands are added
};

}  // namespace standalone
