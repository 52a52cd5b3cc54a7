#include "standalone/cli/plan_matrix_file.h"

#include <optional>
#include <set>
#include <vector>

#include "host/data.h"
#include "standalone/data/cell_scanner.h"
#include "standalone/data/file_text.h"
#include "standalone/data/row_slices.h"
#include "standalone/text/ascii.h"
#include "standalone/text/numbers.h"

namespace standalone {

namespace {

constexpr std::size_t kLargestFile = std::size_t{16} << 20;

class MatrixReader {
 public:
  MatrixReader(const FileText& text, const std::string& valueColumn, host::VarCatList& matrix)
      : fText(text),
        fScanner(FindDelimiter(text.View(), false), text.End()),
        fValueColumn(valueColumn),
        fMatrix(matrix),
        fpPlace(text.Begin()) {}

  std::string Read() {
    std::string fault = ReadRow() ? ReadHeader() : fFault;
    while (fault.empty() && !fScanner.IsAtEnd(fpPlace)) {
      if (CellScanner::IsLineEnd(fpPlace)) {
        fpPlace = CellScanner::SkipLineEnd(fpPlace);
        continue;
      }
      fault = ReadRow() ? EnterRow() : fFault;
    }
    if (fault.empty() && fMatrix.getMapSize() == 0) fault = Fault("the file has no row of values");
    return fault;
  }

 private:
  /// Reads the cells of a row and moves behind it.
  bool ReadRow() {
    fpRow = fpPlace;
    fCells.clear();
    for (;;) {
      Cell cell;
      if (const char* fault = fScanner.Scan(fpPlace, cell)) {
        fpRow = cell.after;
        fFault = Fault(fault);
        return false;
      }
      fCells.emplace_back(Trimmed(cell.Text()));
      fpPlace = cell.after;
      if (CellScanner::IsLineEnd(fpPlace)) break;
      ++fpPlace;
    }
    fpPlace = CellScanner::SkipLineEnd(fpPlace);
    return true;
  }

  std::string ReadHeader() {
    fNColumns = fCells.size();
    fValueIndex = fNColumns;
    for (std::size_t i = 0; i < fNColumns; ++i) {
      if (!IsSameWord(fCells[i], fValueColumn)) {
        fMatrix.addVarName(fCells[i]);
      } else if (fValueIndex < fNColumns) {
        return Fault("two columns are named " + fValueColumn);
      } else {
        fValueIndex = i;
      }
    }
    if (fValueIndex == fNColumns) {
      return Fault("no column is named " + fValueColumn + "; the one that holds the values must be");
    }
    if (fNColumns == 1) return Fault("there is no column of categories beside " + fValueColumn);
    return {};
  }

  std::string EnterRow() {
    if (fCells.size() != fNColumns) {
      return Fault("this line has " + std::to_string(fCells.size()) + " cells, the header has " +
                   std::to_string(fNColumns));
    }
    // Whether the number can be a size or a probability is for the reader of the plan to say.
    const std::optional<double> value = DoubleFromText(fCells[fValueIndex]);
    if (!value) {
      return Fault("\"" + fCells[fValueIndex] + "\" in column " + fValueColumn + " is no number");
    }
    fCells.erase(fCells.begin() + static_cast<std::ptrdiff_t>(fValueIndex));
    for (const std::string& category : fCells) {
      if (category.empty()) return Fault("a category is empty");
      fMatrix.addStringToCatList(category);
    }
    if (!fKeys.insert(fCells).second) return Fault("these categories have a value already");
    fMatrix.addCatList(*value);
    return {};
  }

  std::string Fault(const std::string& message) const {
    return fText.Describe({static_cast<std::size_t>(fpRow - fText.Begin()), message});
  }

  const FileText& fText;
  CellScanner fScanner;
  const std::string& fValueColumn;
  host::VarCatList& fMatrix;
  const char* fpPlace;
  const char* fpRow = nullptr;
  std::vector<std::string> fCells;
  std::set<std::vector<std::string>> fKeys;
  std::size_t fNColumns = 0;
  std::size_t fValueIndex = 0;
  std::string fFault;
};

}  // namespace

std::string ReadMatrixFile(const std::string& path, const std::string& valueColumn,
                           host::VarCatList& matrix) {
  FileText text;
  if (std::string error = FileText::Read(path, text, kLargestFile); !error.empty())
    return path + ": " + error;
  const std::size_t bad = FindBadByteInParts(text.View(), 1);
  if (bad < text.Size()) return text.Describe({bad, "the text is not valid UTF-8; save the file as UTF-8"});
  return MatrixReader(text, valueColumn, matrix).Read();
}

}  // namespace standalone
