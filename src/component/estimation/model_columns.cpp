// Design columns: their values, which of them depend on others, and the start values of the fit.
#include <algorithm>
#include <cmath>

#include "component/estimation/model.h"
#include "component/numerics/missing_value.h"
#include "component/tabulation/factor_tables.h"

namespace tavo {

using MCCommonMath::MCMV;

namespace {

// Powers are small whole numbers.
double Power(double base, int exponent) {
  double power = 1;
  for (int e = 0; e < exponent; ++e)
    power *= base;
  return power;
}

}  // namespace

double TavoModel::ParameterValue(const double* row, const OrvRegrParameter& parameter,
                                 bool usePatternOffsets) const {
  const std::vector<int>& offsets = (usePatternOffsets ? fPatternLayout : fDataLayout).covariateOffset;
  double value = 1;
  for (std::size_t c = 0; c < parameter.covariates.size(); ++c) {
    const std::size_t column = static_cast<std::size_t>(parameter.covariates[c]);
    if (column >= offsets.size() || offsets[column] < 0) return MCMV::gMissingValue;
    value *= Power(row[offsets[column]], parameter.multiplicities[c]);
  }
  return value;
}

// What a column holds on the internal scale; FillColumn says the same for many rows. A column without spread
// holds 0, not the 0/0 of the formula.
double TavoModel::DesignValue(const double* row, std::size_t effect, bool usePatternOffsets) const {
  const std::size_t first = fFirstTerm[effect];
  const std::size_t end = fFirstTerm[effect + 1];
  if (first == end) return fConstantValues[effect];
  const double scale = fEffectScales[effect];
  if (scale == 0) return 0;
  double value = 1;
  for (std::size_t t = first; t < end; ++t) {
    const CovariateTerm& term = fCovariateTerms[t];
    value *= Power(row[usePatternOffsets ? term.patternOffset : term.dataOffset], term.power);
  }
  if (fNIntercepts > 0) value -= fEffectCentres[effect];
  return value / scale;
}

bool TavoModel::TakesXPrimeX() const {
  return fbStructureReady && !fbBuilt && fpXPrimeX != nullptr && !fCancel.IsCancelled();
}

bool TavoModel::AddPatternToXPrimeX(const double* patternRow, const std::vector<int>& parameters) {
  if (!TakesXPrimeX() || patternRow == nullptr) return false;
  if (parameters.size() != static_cast<std::size_t>(fNEffects)) return false;
  fWorkValues.clear();
  for (std::size_t e = 0; e < parameters.size(); ++e)
    fWorkValues.push_back(DesignValue(patternRow, e, true));
  if (!fpXPrimeX->UpdateXXSparse(fNEffects, parameters, fWorkValues, patternRow[fPatternLayout.weight]))
    return false;
  ++fNRecordsAdded;
  return true;
}

bool TavoModel::AddBlockToXPrimeX(const TavoRowBlock& block) {
  if (!TakesXPrimeX() || block.MaxIndexPlusOne() > BasicParameterCount()) return false;
  block.AddOuterTo(*fpXPrimeX, block.Weights());
  fNRecordsAdded += static_cast<int>(block.RowCount());
  return true;
}

OrvStatus TavoModel::FindRedundancies() {
  if (fbBuilt) return Fail(StatusCode::kModelBuiltTwice);
  if (fNRecordsAdded == 0 || fpXPrimeX == nullptr) return Fail(StatusCode::kDataNotProcessed);
  const int basic = BasicParameterCount();
  fpXPrimeX->GetDiagonal(fXPrimeXDiagonal);
  fBasicBits.Resize(basic, false);
  for (int k = 0; k < basic && !fCancel.IsCancelled(); ++k) {
    const bool isKept = fpXPrimeX->Sweep(k, fSettings.Tolerance(), fXPrimeXDiagonal, fBasicBits, true);
    if (!isKept) fpXPrimeX->ClearResidual(k, fBasicBits);
  }
  CompressBasicParameters();
  fAllBits.Resize(ParameterCount(), false);
  for (int logit = 0; logit < fNEquations; ++logit) {
    for (int k = 0; k < basic; ++k)
      fAllBits.Set(logit * basic + k, fBasicBits.IsIn(k));
  }
  fNAllNonRedundant = fNBasicNonRedundant * fNEquations;
  return EndOfLongStep();
}

void TavoModel::CompressBasicParameters() {
  fNBasicNonRedundant = 0;
  fCompressedIndex.assign(fBasicParameters.size(), -1);
  fNonRedundantCentres.clear();
  fNonRedundantScales.clear();
  for (std::size_t k = 0; k < fBasicParameters.size(); ++k) {
    if (!fBasicBits.IsIn(static_cast<int>(k))) continue;
    fCompressedIndex[k] = fNBasicNonRedundant++;
    fNonRedundantCentres.push_back(fParameterCentres[k]);
    fNonRedundantScales.push_back(fParameterScales[k]);
  }
}

TavoFitLayout TavoModel::FitLayout() const {
  TavoFitLayout layout{fNEquations, HasIntercept(), fNonRedundantCentres, fNonRedundantScales, {}};
  for (std::size_t k = 0; k < fBasicParameters.size(); ++k) {
    if (fBasicBits.IsIn(static_cast<int>(k)))
      layout.isIndicator.push_back(fBasicParameters[k].covariates.empty());
  }
  return layout;
}

OrvStatus TavoModel::GetInitialEstimates(std::vector<double>& estimates) {
  if (!fbStructureReady) return Fail(StatusCode::kUserError);
  if (fbBuilt) return Fail(StatusCode::kModelBuiltTwice);
  estimates.assign(static_cast<std::size_t>(fNAllNonRedundant), 0.0);
  for (const double count : fWeightedCounts) {
    if (!(count > 0)) return Fail(StatusCode::kUserError);
  }
  if (!HasIntercept() || fNBasicNonRedundant == 0) return fStatus;
  for (std::size_t j = 0; j < static_cast<std::size_t>(fNEquations); ++j) {
    estimates[j * static_cast<std::size_t>(fNBasicNonRedundant)] =
        std::log(fWeightedCounts[j] / fWeightedCounts.back());
  }
  return fStatus;
}

void TavoModel::BuildSparseRow(const double* patternRow, const std::vector<int>& parameters,
                               std::vector<int>& indices, std::vector<double>& values) const {
  indices.clear();
  values.clear();
  for (std::size_t e = 0; e < parameters.size(); ++e) {
    const std::size_t k = static_cast<std::size_t>(parameters[e]);
    if (k >= fCompressedIndex.size() || fCompressedIndex[k] < 0) continue;
    const double value = DesignValue(patternRow, e, true);
    if (value == 0) continue;
    indices.push_back(fCompressedIndex[k]);
    values.push_back(value);
  }
  // Without an intercept all columns of a row can be 0. Its categories are equally probable then, and it
  // counts.
  if (indices.empty() && fNBasicNonRedundant > 0) {
    indices.push_back(0);
    values.push_back(0.0);
  }
}

void TavoModel::StartBlock(const std::vector<int>& parameters, BlockColumns which,
                           TavoRowBlock& block) const {
  block.Clear();
  for (std::size_t e = 0; e < parameters.size(); ++e) {
    const std::size_t k = static_cast<std::size_t>(parameters[e]);
    if (k >= fBasicParameters.size()) continue;
    const int index = which == BlockColumns::kAll ? parameters[e] : fCompressedIndex[k];
    if (index < 0) continue;
    if (fFirstTerm[e] == fFirstTerm[e + 1]) {
      block.AddConstant(index, fConstantValues[e]);
    } else {
      block.AddColumn(index, e);
    }
  }
}

void TavoModel::FillBlock(const double* patternRows, std::size_t rowLength, std::size_t rows,
                          TavoRowBlock& block) const {
  block.SetRowCount(rows);
  const double* row = patternRows;
  for (std::size_t r = 0; r < rows; ++r, row += rowLength) {
    block.Categories()[r] = row[fPatternLayout.response];
    block.Weights()[r] = row[fPatternLayout.weight];
  }
  for (std::size_t v = 0; v < block.ColumnCount(); ++v)
    FillColumn(patternRows, rowLength, rows, block.Source(v), block.Column(v));
}

// What DesignValue answers, for many rows.
void TavoModel::FillColumn(const double* patternRows, std::size_t rowLength, std::size_t rows,
                           std::size_t effect, double* column) const {
  const double scale = fEffectScales[effect];
  std::fill(column, column + rows, scale == 0 ? 0.0 : 1.0);
  if (scale == 0) return;
  for (std::size_t t = fFirstTerm[effect]; t < fFirstTerm[effect + 1]; ++t) {
    const double* cell = patternRows + fCovariateTerms[t].patternOffset;
    for (std::size_t r = 0; r < rows; ++r, cell += rowLength)
      column[r] *= Power(*cell, fCovariateTerms[t].power);
  }
  const double centre = fNIntercepts > 0 ? fEffectCentres[effect] : 0.0;
  for (std::size_t r = 0; r < rows; ++r)
    column[r] = (column[r] - centre) / scale;
}

}  // namespace tavo
