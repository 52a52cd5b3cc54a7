// The host's output: pivot tables, messages and notes.
//
// Texts are either literal or keys into the host's dictionary (`translate`); a key is also the English
// template. A template holds ^1, ^2, … for its arguments and [first:rest:]n for an argument that is a list:
// the first group of its elements goes through `first`, in which %k is the k-th element of the group, each
// later group through `rest`, in which ^k is the k-th. Numbers become text only when the host renders them.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "host/data.h"

namespace host {

/// How a number is printed.
struct BpFormatSpec {
  enum class Kind {
    kCoefficient,   // 3 decimals, more for small numbers
    kGeneralStat,   // 3 decimals
    kSignificance,  // 3 decimals, "<.001" below .0005
    kCount,         // whole
    kPercent,       // 1 decimal and a percent sign
    kCorrelation,   // 3 decimals
    kSigDigit,      // as many decimals as the number needs, at most 3
    kMean           // the decimals of a variable's format plus two
  };
  Kind kind = Kind::kGeneralStat;
  int decimals = -1;  // of kMean
};

/// Which of name and label, or value and label, a text shows.
enum class BpShow { kValue = 0, kLabel = 1, kDefault = 2 };

/// A text, or a key of the dictionary when `translate` is set.
struct BpString {
  std::string text;
  bool translate = false;
};
/// A number; the host's missing value shows as an empty cell.
struct BpNumber {
  double value = kSystemMissing;
  BpFormatSpec format;
};
/// A variable by its name or label; not owned.
struct BpVariable {
  const VORN_Variable* variable = nullptr;
  BpShow show = BpShow::kDefault;
};
/// A value of a variable. The cells are copied.
class BpDataValue {
 public:
  BpDataValue() = default;
  BpDataValue(const VORN_Variable* variable, const OBS* cells, BpShow preference = BpShow::kDefault);
  const VORN_Variable* variable = nullptr;
  std::vector<OBS> cells;  // empty: no value
  BpShow preference = BpShow::kDefault;
  /// Shown in the place of label or print format unless it is empty: for a value that these would not tell
  /// from others. It stays the same value.
  std::string shown;
};
class BpComposite;

/// Anything that a cell, a label, a note or a message may hold.
class BpCellText {
 public:
  BpCellText() : fContent(BpString{}) {}
  BpCellText(BpString text) : fContent(std::move(text)) {}       // NOLINT: implicit on purpose, as all below
  BpCellText(BpNumber number) : fContent(number) {}              // NOLINT
  BpCellText(BpVariable variable) : fContent(variable) {}        // NOLINT
  BpCellText(BpDataValue value) : fContent(std::move(value)) {}  // NOLINT
  BpCellText(const BpComposite& composite);                      // NOLINT

  using Content =
      std::variant<BpString, BpNumber, BpVariable, BpDataValue, std::shared_ptr<const BpComposite>>;
  const Content& Get() const { return fContent; }

 private:
  Content fContent;
};

/// A template with its arguments.
class BpComposite {
 public:
  explicit BpComposite(std::string templateText, bool translate = true)
      : fTemplate(std::move(templateText)), fTranslate(translate) {}
  BpComposite& Add(BpCellText argument);
  /// Opens an argument that is a list; until EndSublist, `Add` appends to it.
  BpComposite& Sublist();
  BpComposite& EndSublist();

  using Argument = std::variant<BpCellText, std::vector<BpCellText>>;
  const std::string& Template() const { return fTemplate; }
  bool Translate() const { return fTranslate; }
  const std::vector<Argument>& Arguments() const { return fArguments; }

 private:
  std::string fTemplate;
  bool fTranslate;
  bool fInSublist = false;
  std::vector<Argument> fArguments;
};

/// A key of the host's dictionary as a text.
inline BpString Key(std::string text) {
  return {std::move(text), true};
}
/// A text that prints as it stands.
inline BpString Plain(std::string text) {
  return {std::move(text), false};
}

/// One category of a dimension. All handles below are owned by their table and live as long as it.
class BpCategory {
 public:
  virtual ~BpCategory() = default;
  /// Puts content where the current categories of all dimensions of the table cross. A category becomes its
  /// dimension's current one when `Category` returns it.
  virtual void Cell(const BpCellText& content) = 0;
  /// A footnote on that same cell.
  virtual void CellNote(const BpCellText& note) = 0;
  /// A footnote on the category's label.
  virtual void Note(const BpCellText& note) = 0;
};

/// Categories that stand under one label.
class BpGroup {
 public:
  virtual ~BpGroup() = default;
  /// The inner group, or category, of that label; made at the end when it isn't there yet. Labels are told
  /// apart by the text that they show, and data values by their cells.
  virtual BpGroup& Group(const BpCellText& label) = 0;
  virtual BpCategory& Category(const BpCellText& label) = 0;
  virtual void Note(const BpCellText& note) = 0;
};

/// The two axes of a table.
enum class BpPlace { kRow = 0, kColumn = 1 };

/// A dimension is the outermost group of its categories.
class BpDimension : public BpGroup {
 public:
  /// Rows or columns; level 1 is the innermost dimension of its place, higher levels lie outside it.
  /// `hideLabel`: the dimension's own label is not shown beside its categories. `hideWhenSingle`: the
  /// dimension isn't shown at all when it has one category only.
  virtual void Position(BpPlace place, int level, bool hideLabel, bool hideWhenSingle) = 0;
};

/// A table while it is filled: dimensions first, then cells.
class BpPivotTable {
 public:
  virtual ~BpPivotTable() = default;
  virtual BpDimension& Dimension(const BpCellText& label) = 0;
  virtual void Caption(const BpCellText& caption) = 0;
  virtual void Note(const BpCellText& note) = 0;
};

/// A place in the outline of the output. Tables appear in the order in which they were made.
class BpHeading {
 public:
  virtual ~BpHeading() = default;
  /// A new table. It is complete when the handle is destroyed; one without any dimension is not rendered.
  virtual std::unique_ptr<BpPivotTable> PivotTable(const BpCellText& title, std::string_view identifier) = 0;
  virtual std::unique_ptr<BpHeading> Heading(const BpCellText& text) = 0;
};

/// The procedure's output from its start to its end. Number formats are its services.
class BpProcedure {
 public:
  virtual ~BpProcedure() = default;
  virtual BpHeading& Heading() = 0;

  static BpFormatSpec Coefficient() { return {BpFormatSpec::Kind::kCoefficient}; }
  static BpFormatSpec GeneralStat() { return {BpFormatSpec::Kind::kGeneralStat}; }
  static BpFormatSpec Significance() { return {BpFormatSpec::Kind::kSignificance}; }
  static BpFormatSpec Count() { return {BpFormatSpec::Kind::kCount}; }
  static BpFormatSpec Percent() { return {BpFormatSpec::Kind::kPercent}; }
  static BpFormatSpec Correlation() { return {BpFormatSpec::Kind::kCorrelation}; }
  static BpFormatSpec SigDigit() { return {BpFormatSpec::Kind::kSigDigit}; }
  /// The format for means of a variable: two decimals more than its own.
  static BpFormatSpec Mean(const VORN_Variable& variable) {
    return {BpFormatSpec::Kind::kMean, variable.GetFormat().decimals + 2};
  }
};

/// The rank of a message.
enum class BpErrorLevel { kWarning = 2, kError = 3 };

/// Sends a message. An error sets the host's error flag, which ends the command at its next stage.
void BpError(const BpCellText& text, BpErrorLevel level);
/// A note of the command: a label (a key) with its text. Groups order the notes: 1 input files, 2 saved
/// files, 3 saved variables.
void AddNotes(int group, std::string_view label, const BpCellText& text);
/// The user's text of a dictionary key.
std::string FacSTDictionaryLookUp(std::string_view key);

}  // namespace host
