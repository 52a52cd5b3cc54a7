// The active data, as a host shows it to the module: a dictionary of variables and passes over the cases.
//
// Values travel in cells of 8 bytes (`OBS`). A numeric value takes one cell; a string of width w takes
// CellCount(w) cells, laid end to end, UTF-8, padded with blanks. All data operations are called from the
// module's main thread only.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace host {

/// The system-missing value: the most negative finite double, always compared exactly.
inline constexpr double kSystemMissing = -1.7976931348623157e308;

/// One cell of a case: a double or 8 characters of a string.
union OBS {
  double number;
  char text[8];
};
static_assert(sizeof(OBS) == 8);

/// Cells of a value of the given type (0 numeric, otherwise the string width in bytes).
constexpr int CellCount(int type) {
  return type < 9 ? 1 : (type + 7) >> 3;
}

/// A print format. Type bytes used here: 1 string (A), 2 hexadecimal string (AHEX, two digits per byte),
/// 5 plain number (F). Others may occur in dictionaries and print as F.
struct VORN_Format {
  std::uint8_t type = 5;
  int width = 8;
  int decimals = 2;
  bool IsString() const { return type == 1 || type == 2; }
  friend bool operator==(const VORN_Format&, const VORN_Format&) = default;
};

/// Value labels of one variable. Keys are whole values (CellCount cells).
class VORN_ValueLabelMap {
 public:
  void AddPair(std::vector<OBS> value, std::string label) {
    fPairs.emplace_back(std::move(value), std::move(label));
  }
  /// The label of a value of the given type, or null.
  const std::string* GetLabel(const OBS* value, int type) const;
  const std::vector<std::pair<std::vector<OBS>, std::string>>& Pairs() const { return fPairs; }
  void Reset() { fPairs.clear(); }

 private:
  std::vector<std::pair<std::vector<OBS>, std::string>> fPairs;
};

/// Values that the dictionary declares missing: single values, and for numbers at most one closed range.
struct VORN_MissingValues {
  std::vector<std::vector<OBS>> values;
  bool hasRange = false;
  double rangeLow = 0;
  double rangeHigh = 0;
  bool Empty() const { return values.empty() && !hasRange; }
};

enum class MeasurementLevel { kUnknown, kNominal, kOrdinal, kScale };

/// One entry of the dictionary. Type is 0 for a number, otherwise the string width in bytes.
class VORN_Variable {
 public:
  VORN_Variable(std::string name, int type) : fName(std::move(name)), fType(type) {
    fFormat = type == 0 ? VORN_Format{5, 8, 2} : VORN_Format{1, type, 0};
  }
  int GetType() const { return fType; }
  bool IsNumeric() const { return fType == 0; }
  const std::string& GetName() const { return fName; }
  /// The name in upper case (ASCII letters), the form in which names are compared.
  std::string GetUpperCaseName() const;
  const std::string& GetLabel() const { return fLabel; }
  const VORN_Format& GetFormat() const { return fFormat; }
  MeasurementLevel GetMeasurementLevel() const { return fMeasurementLevel; }
  const VORN_ValueLabelMap& GetValueLabels() const { return fValueLabels; }
  const VORN_MissingValues& GetMissingValues() const { return fMissingValues; }

  void SetName(std::string name) { fName = std::move(name); }
  void SetLabel(std::string label) { fLabel = std::move(label); }
  void SetFormat(const VORN_Format& format) { fFormat = format; }
  void SetMeasurementLevel(MeasurementLevel level) { fMeasurementLevel = level; }
  void SetValueLabels(VORN_ValueLabelMap labels) { fValueLabels = std::move(labels); }
  void SetMissingValues(VORN_MissingValues missing) { fMissingValues = std::move(missing); }

 private:
  std::string fName;
  int fType;
  std::string fLabel;
  VORN_Format fFormat;
  MeasurementLevel fMeasurementLevel = MeasurementLevel::kUnknown;
  VORN_ValueLabelMap fValueLabels;
  VORN_MissingValues fMissingValues;
};

/// Where the cells of one column lie for the current case: `cells + *row * stride`. A host with columns in
/// memory points at the column and at the row number that its cursor moves, so binding costs nothing per
/// case; a host that reads row by row points at its row buffer and at a constant 0.
struct ColumnBinding {
  const OBS* cells = nullptr;
  const std::size_t* row = nullptr;
  std::size_t stride = 1;
};

class VORN_DataSource;

/// One pass over the cases.
class VORN_InputCaseIterator {
 public:
  virtual ~VORN_InputCaseIterator() = default;
  /// Moves on to the next case. 0 at the end of the source or after a failure (see
  /// ProcedureDataSource::FatalError).
  virtual int NextCase() = 0;
  virtual const VORN_DataSource& GetDataSource() const = 0;
  /// The place of a column's cells (column from 0); stays valid for the iterator's life.
  virtual ColumnBinding Bind(unsigned column) const = 0;
  /// Writes into the current case; only variables that the procedure itself has made may be written.
  virtual void SetColumnValue(unsigned column, double value) = 0;
  virtual void SetColumnValue(unsigned column, const char* text, std::size_t length) = 0;
};

/// A pass over the active data of a procedure.
class ProcDSIterator : public VORN_InputCaseIterator {
 public:
  /// True when the last `NextCase` stopped at the end of a split group instead of on a case.
  virtual bool SplitGroupEnd() const = 0;
};

/// A dictionary and a maker of passes.
class VORN_DataSource {
 public:
  virtual ~VORN_DataSource() = default;
  /// Number of variables; 0 for an empty source.
  virtual unsigned ColumnCount() const = 0;
  /// The entry at a 0-based index below ColumnCount().
  virtual const VORN_Variable* GetVariable(unsigned index) const = 0;
  virtual VORN_Variable* GetVariable(unsigned index) = 0;
  /// Index of a name, compared without case, or -1.
  virtual int FindVarIndex(std::string_view name) const = 0;
  /// Appends a variable to the working dictionary; null when that isn't possible.
  virtual VORN_Variable* MakeVariable(int type, int& index) = 0;
  /// A new pass from the first case on, owned by the caller; null on failure.
  virtual std::unique_ptr<VORN_InputCaseIterator> NewInputIterator(int mode) = 0;
};

/// The active data source of a procedure.
class ProcedureDataSource : public VORN_DataSource {
 public:
  /// The procedure adds at most `cells` cells to each case.
  virtual void SetMaxObsAdded(unsigned cells) = 0;
  /// The next pass is the last one.
  virtual void SetLastPass() = 0;
  /// True after a failure while reading, to tell it from the end of the data.
  virtual bool FatalError() const = 0;
};

/// One column of an iterator's current case.
class CaseValue {
 public:
  CaseValue() = default;
  CaseValue(const VORN_InputCaseIterator& iterator, unsigned column);

  const OBS* Cells() const { return fBinding.cells + *fBinding.row * fBinding.stride; }
  double Number() const { return Cells()->number; }
  bool IsString() const { return fType != 0; }
  /// True for a system-missing value and for a value that the dictionary declares missing.
  bool IsMissing() const {
    if (fType == 0 && Number() == kSystemMissing) return true;
    return fpMissing != nullptr && IsDeclaredMissing();
  }

 private:
  bool IsDeclaredMissing() const;

  ColumnBinding fBinding;
  int fType = 0;
  const VORN_MissingValues* fpMissing = nullptr;  // null when nothing is declared
};

/// A hash map from a key of cells to value cells. The key and value cells of an entry adjoin in memory, and
/// pointers handed out stay valid until the map is destroyed. Numbers are compared as numbers (-0 equals 0),
/// strings byte by byte over their cells. Look-up takes constant time; keys of small whole numbers are
/// answered from a direct table.
class ObsVecMap {
 public:
  using KeySpec = std::vector<std::uint16_t>;  // per key variable: 0 numeric, otherwise the string width

  static KeySpec MakeKeySpec(const VORN_DataSource& source, const std::vector<int>& variables);

  ObsVecMap(KeySpec keySpec, int valueCells);
  ~ObsVecMap();
  ObsVecMap(ObsVecMap&&) noexcept;
  ObsVecMap& operator=(ObsVecMap&&) noexcept;

  /// Cells of one entry, key and value together.
  int CellSize() const;
  /// The value cells of a key, or null.
  OBS* Contains(const OBS* key) const {
    if (fDirectLimit > 0) {  // 0 for string keys and for several key variables
      const double number = key->number;
      if (number >= 0 && number < fDirectLimit) {
        const int index = static_cast<int>(number);
        if (static_cast<double>(index) == number) return fpDirect[index];
      }
    }
    return Find(key);
  }
  /// Makes an entry (value cells zero) and returns its value cells; the key starts CellSize() - valueCells
  /// cells before them. Inserting a key that is there already returns the existing cells.
  OBS* Insert(const OBS* key);
  std::size_t Size() const;
  const KeySpec& GetKeySpec() const;
  /// Pointers to the entries' keys, ascending: numbers by value, strings by bytes.
  std::vector<const OBS*> Sort() const;

 private:
  struct Impl;
  OBS* Find(const OBS* key) const;

  std::unique_ptr<Impl> fpImpl;
  double fDirectLimit = 0;         // whole numbers from 0 to below this are answered from fpDirect
  OBS* const* fpDirect = nullptr;  // value cells by number, null where there is no entry; owned by the Impl
};

/// True when the number is whole to within the host's fuzz (relative 1e-10).
bool FUZZYINTEGER(const double* value);
/// The nearest whole number.
double FUZZYROUND(const double* value);

/// Text to value by a format: 0 on success. `value` must have room for the format's cells. A string shorter
/// than the width is padded with blanks; a number must fill the whole text but for blanks around it. Blank
/// numeric text, and a lone ".", give system-missing.
long FromString(std::string_view text, const VORN_Format& format, OBS* value);
/// Value to text by a format: 0 on success. Numbers are trimmed; strings keep their padding.
long ToString(const OBS* value, const VORN_Format& format, std::string& text);
/// The character that the host prints and reads as decimal point.
char DecimalSymbol();

/// A variable name that compares without case.
class VornVarName {
 public:
  VornVarName() = default;
  VornVarName(std::string name) : fName(std::move(name)) {}  // NOLINT: names are written as texts everywhere
  VornVarName(const char* name) : fName(name) {}             // NOLINT
  const std::string& Text() const { return fName; }
  bool Empty() const { return fName.empty(); }
  friend bool operator==(const VornVarName& a, const VornVarName& b);

 private:
  std::string fName;
};

/// Upper case of ASCII letters; other bytes stay.
std::string GetUpperVarName(std::string_view name);
/// True for a text that may name a variable: a letter or one of @ # $ (or a byte above 127) first, then
/// letters, digits and . _ @ # $, not ending in a period, 1 to 64 bytes, no reserved word.
bool ValidateVORNName(std::string_view name);

}  // namespace host
