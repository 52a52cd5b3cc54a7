#include "module/saved/matrix_file.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <set>

#include "host/output.h"
#include "module/saved/document_strings.h"

namespace tavo {

namespace {

using MCCommonMath::MCMV;

// A matrix file is read back by other procedures, which know its rows by rowtype_ and varname_. Columns and
// rows are called P1, P2, …, as a parameter's name is seldom a legal name and often too long; the name itself
// is the label. Columns that name the logits of a row are there only when there are several.
constexpr int kLogitWidth = 64;
constexpr int kNameWidth = 8;
constexpr host::VORN_Format kCellFormat = {5, 8, 6};

// Blanks fill the cells to their end: the host compares strings as if they went on with blanks.
std::vector<host::OBS> StringCells(const std::string& text, int width) {
  std::vector<host::OBS> cells(static_cast<std::size_t>(host::CellCount(width)));
  std::fill_n(reinterpret_cast<char*>(cells.data()), cells.size() * sizeof(host::OBS), ' ');
  std::copy_n(text.data(), std::min(text.size(), static_cast<std::size_t>(width)),
              reinterpret_cast<char*>(cells.data()));
  return cells;
}

/// A category of the dependent variable by its code.
std::string CategoryText(const TavoOutputFrame& frame, int code) {
  return frame.Categories().Printed(frame.Specs().DependentVariable(), code);
}

/// The usual width, unless that would cut two logits to one.
int LogitWidth(const std::vector<std::string>& names) {
  std::set<std::string> cut;
  std::size_t longest = 0;
  for (const std::string& name : names) {
    cut.insert(name.substr(0, kLogitWidth));
    longest = std::max(longest, name.size());
  }
  return cut.size() == names.size() ? kLogitWidth : static_cast<int>(longest);
}

/// Makes the variables and writes the cases of one matrix file.
class MatrixWriter {
 public:
  MatrixWriter(host::IndependentDataStore& store, const TavoOutputFrame& frame)
      : fStore(store), fStats(*frame.Stats()), fNames(frame.ParameterNames()), fbLogits(LogitCount() > 1) {
    for (std::size_t a = 0; a < LogitCount(); ++a)
      fLogitNames.push_back(CategoryText(frame, fStats.DependentCategories()[a]));
  }

  bool MakeVariables();
  bool WriteRows(MatrixKind kind, std::string& error);

 private:
  std::size_t LogitCount() const { return fStats.DependentCategories().size() - 1; }
  const OrvParamStats& StatsOf(std::size_t logit, std::size_t parameter) const {
    return fStats.ParamStats()[logit * fNames.size() + parameter];
  }
  host::VORN_Variable* MakeString(const char* name, int width);
  double Element(std::size_t a, std::size_t b, std::size_t i, std::size_t j) const {
    return fStats.Covariance()->GetElem(static_cast<int>(a), static_cast<int>(b), static_cast<int>(i),
                                        static_cast<int>(j));
  }
  double MatrixCell(MatrixKind kind, std::size_t a, std::size_t b, std::size_t i, std::size_t j) const;
  bool WriteMatrixRow(MatrixKind kind, std::size_t a, std::size_t b, std::size_t i, std::string& error);
  bool WriteStatisticRows(const char* rowType, double OrvParamStats::*statistic, double whenRedundant,
                          std::string& error);
  template <class CellOf>
  bool AddRow(const char* rowType, const std::string& variable, std::size_t a, std::size_t b, CellOf cellOf,
              std::string& error);

  host::IndependentDataStore& fStore;
  const TavoOutputStats& fStats;
  const std::vector<std::string>& fNames;
  bool fbLogits;  // the file has columns that name the logits
  std::vector<std::string> fLogitNames;
  std::unique_ptr<host::VORN_Case> fpCase;
};

host::VORN_Variable* MatrixWriter::MakeString(const char* name, int width) {
  int index = -1;
  host::VORN_Variable* variable = fStore.MakeVariable(width, index);
  if (variable == nullptr) return nullptr;
  variable->SetName(name);
  variable->SetFormat({1, width, 0});
  variable->SetMeasurementLevel(host::MeasurementLevel::kNominal);
  return variable;
}

host::VORN_ValueLabelMap RowTypeLabels() {
  constexpr std::pair<const char*, const char*> kLabels[] = {
      {"COV", "Covariances"},         {"CORR", "Correlations"},
      {"EST", "Parameter estimates"}, {"SE", "Standard errors"},
      {"SIG", "Significance levels"}, {"DF", "Sampling design degrees of freedom"}};
  host::VORN_ValueLabelMap labels;
  for (const auto& [value, key] : kLabels) {
    labels.AddPair(StringCells(value, kNameWidth), host::FacSTDictionaryLookUp(key));
  }
  return labels;
}

bool MatrixWriter::MakeVariables() {
  if (fbLogits) {
    const int width = LogitWidth(fLogitNames);
    if (MakeString("RowLogit_", width) == nullptr || MakeString("ColumnLogit_", width) == nullptr)
      return false;
  }
  host::VORN_Variable* rowType = MakeString("rowtype_", kNameWidth);
  if (rowType == nullptr) return false;
  rowType->SetValueLabels(RowTypeLabels());
  host::VORN_Variable* name = MakeString("varname_", kNameWidth);
  if (name == nullptr) return false;
  host::VORN_ValueLabelMap labels;
  for (std::size_t i = 0; i < fNames.size(); ++i) {
    labels.AddPair(StringCells("P" + std::to_string(i + 1), kNameWidth), fNames[i]);
  }
  name->SetValueLabels(std::move(labels));
  for (std::size_t i = 0; i < fNames.size(); ++i) {
    int index = -1;
    host::VORN_Variable* cell = fStore.MakeVariable(0, index);
    if (cell == nullptr) return false;
    cell->SetName("P" + std::to_string(i + 1));
    cell->SetLabel(fNames[i]);
    cell->SetFormat(kCellFormat);
    cell->SetMeasurementLevel(host::MeasurementLevel::kScale);
  }
  return true;
}

template <class CellOf>
bool MatrixWriter::AddRow(const char* rowType, const std::string& variable, std::size_t a, std::size_t b,
                          CellOf cellOf, std::string& error) {
  fpCase->InitCase();
  unsigned column = 0;
  if (fbLogits) {
    fpCase->SetColumnValue(column++, fLogitNames[a]);
    fpCase->SetColumnValue(column++, fLogitNames[b]);
  }
  fpCase->SetColumnValue(column++, std::string_view(rowType));
  fpCase->SetColumnValue(column++, std::string_view(variable));
  for (std::size_t j = 0; j < fNames.size(); ++j)
    fpCase->SetColumnValue(column++, cellOf(j));
  return fStore.AddCase(*fpCase, error);
}

double MatrixWriter::MatrixCell(MatrixKind kind, std::size_t a, std::size_t b, std::size_t i,
                                std::size_t j) const {
  const bool isCovariance = kind == MatrixKind::kCovariances;
  // A redundant parameter is held at zero: it varies with nothing, so its covariances are 0, and a
  // correlation with it has no meaning.
  if (StatsOf(a, i).redundant || StatsOf(b, j).redundant) return isCovariance ? 0.0 : MCMV::gMissingValue;
  if (isCovariance) return Element(a, b, i, j);
  const double rowVariance = Element(a, a, i, i);
  const double columnVariance = Element(b, b, j, j);
  if (!(rowVariance > 0) || !(columnVariance > 0)) return MCMV::gMissingValue;
  // Exactly 1, not what rounding makes of it.
  if (a == b && i == j) return 1.0;
  // By the roots one after the other: the product of two variances may leave the range of doubles where the
  // correlation does not.
  return Element(a, b, i, j) / (std::sqrt(rowVariance) * std::sqrt(columnVariance));
}

bool MatrixWriter::WriteMatrixRow(MatrixKind kind, std::size_t a, std::size_t b, std::size_t i,
                                  std::string& error) {
  const char* rowType = kind == MatrixKind::kCovariances ? "COV" : "CORR";
  return AddRow(
      rowType, "P" + std::to_string(i + 1), a, b, [&](std::size_t j) { return MatrixCell(kind, a, b, i, j); },
      error);
}

bool MatrixWriter::WriteStatisticRows(const char* rowType, double OrvParamStats::*statistic,
                                      double whenRedundant, std::string& error) {
  for (std::size_t a = 0; a < LogitCount(); ++a) {
    const auto cell = [&](std::size_t j) {
      const OrvParamStats& stats = StatsOf(a, j);
      return stats.redundant ? whenRedundant : stats.*statistic;
    };
    if (!AddRow(rowType, "", a, a, cell, error)) return false;
  }
  return true;
}

// Blocks of logits row by row, whole matrices with both triangles: a reader takes the rows of a type as they
// come and needs no rule of symmetry. The statistics follow, whose rows belong to one logit each.
bool MatrixWriter::WriteRows(MatrixKind kind, std::string& error) {
  fpCase = std::make_unique<host::VORN_Case>(fStore);
  for (std::size_t a = 0; a < LogitCount(); ++a) {
    for (std::size_t b = 0; b < LogitCount(); ++b) {
      for (std::size_t i = 0; i < fNames.size(); ++i) {
        if (!WriteMatrixRow(kind, a, b, i, error)) return false;
      }
    }
  }
  return WriteStatisticRows("EST", &OrvParamStats::estimate, 0.0, error) &&
         WriteStatisticRows("SE", &OrvParamStats::standardError, MCMV::gMissingValue, error) &&
         WriteStatisticRows("SIG", &OrvParamStats::significance, MCMV::gMissingValue, error) &&
         WriteStatisticRows("DF", &OrvParamStats::df, MCMV::gMissingValue, error);
}

bool Fail(const std::string& error) {
  host::BpError(host::Plain(error), host::BpErrorLevel::kError);
  return false;
}

}  // namespace

bool WriteMatrixFile(const host::UserCaseFileSpec& file, MatrixKind kind, const TavoOutputFrame& frame) {
  assert(frame.Stats() != nullptr && frame.Stats()->Covariance() != nullptr);
  std::string error;
  const std::unique_ptr<host::UserOutputCaseFile> output = host::UserOutputCaseFile::Create(file, error);
  if (output == nullptr) return Fail(error);
  host::IndependentDataStore& store = output->DataSource();
  MatrixWriter writer(store, frame);
  if (!writer.MakeVariables()) return Fail(file.DocumentationString() + ": its variables can't be made");
  // What was made of the file so far is dropped with `output` unless it is committed at the end.
  store.SaveDocuments(BuildDocument(DocumentLines(frame.Specs(), frame.Source(),
                                                  CategoryText(frame, frame.Stats()->ReferenceCategory()),
                                                  frame.EffectNames())));
  const bool written = store.WriteDictionary(error) && writer.WriteRows(kind, error) && output->Commit(error);
  return written || Fail(error);
}

}  // namespace tavo
