// Columns enter the fit centred and scaled to unit variance: the information is near the identity then,
// whatever the units of the covariates are, and its factor keeps its digits. Nothing is stored per case; a
// value is worked out from the row each time, which costs less than reading it from memory would.
#include "component/estimation/design_columns.h"

#include <algorithm>
#include <cassert>

#include "component/numerics/missing_value.h"

namespace tavo {

using MCCommonMath::DoubleDouble;
using MCCommonMath::MCMV;

namespace {

// Powers are small whole numbers.
double Power(double base, int exponent) {
  double power = 1;
  for (int e = 0; e < exponent; ++e)
    power *= base;
  return power;
}

// By record column, as far as any covariate lies.
std::vector<int> CovariateOffsets(const std::vector<int>& covariates, const OrvRecordExtractor& extractor) {
  assert(extractor.CovariateOffsets().size() == covariates.size());
  std::vector<int> offsets;
  for (std::size_t c = 0; c < covariates.size(); ++c) {
    const auto column = static_cast<std::size_t>(covariates[c]);
    if (column >= offsets.size()) offsets.resize(column + 1, -1);
    offsets[column] = extractor.CovariateOffsets()[c];
  }
  return offsets;
}

}  // namespace

OrvDesignColumns::OrvDesignColumns(const OrvParameterList& parameters,
                                   const std::vector<OrvModelEffect>& effects,
                                   const std::vector<int>& covariates, const OrvRecordExtractor& patternRow,
                                   const OrvRecordExtractor& dataRow)
    : fbIntercept(parameters.HasIntercept()),
      fPattern{patternRow.WeightOffset(), patternRow.DependentOffset(),
               CovariateOffsets(covariates, patternRow)},
      fData{dataRow.WeightOffset(), dataRow.DependentOffset(), CovariateOffsets(covariates, dataRow)},
      fCentres(parameters.EffectCentres()),
      fScales(parameters.EffectScales()),
      fFirstTerm(1, 0) {
  if (fbIntercept) fFirstTerm.push_back(0);
  for (const OrvModelEffect& effect : effects)
    AppendTerms(effect);
  assert(fFirstTerm.size() == fScales.size() + 1);
  SetConstants();
}

// Closes the range of one model effect's terms.
void OrvDesignColumns::AppendTerms(const OrvModelEffect& effect) {
  std::vector<int> columns;
  std::vector<int> powers;
  effect.Covariates(columns, powers);
  for (std::size_t c = 0; c < columns.size(); ++c) {
    const auto column = static_cast<std::size_t>(columns[c]);
    // Both offsets are looked up once here, not for each row.
    assert(column < fPattern.covariateOffset.size() && fPattern.covariateOffset[column] >= 0);
    fTerms.push_back({fPattern.covariateOffset[column], fData.covariateOffset[column], powers[c]});
  }
  fFirstTerm.push_back(fTerms.size());
}

// A column without covariates holds 1 where it holds anything.
void OrvDesignColumns::SetConstants() {
  fConstantValues.assign(fScales.size(), 0.0);
  for (std::size_t e = 0; e < fScales.size(); ++e) {
    if (fScales[e] == 0) continue;
    const double centre = fbIntercept ? fCentres[e] : 0.0;
    fConstantValues[e] = (1.0 - centre) / fScales[e];
  }
}

double OrvDesignColumns::ParameterValue(const double* row, const OrvRegrParameter& parameter,
                                        RowKind kind) const {
  const std::vector<int>& offsets = LayoutOf(kind).covariateOffset;
  double value = 1;
  for (std::size_t c = 0; c < parameter.covariates.size(); ++c) {
    const std::size_t column = static_cast<std::size_t>(parameter.covariates[c]);
    if (column >= offsets.size() || offsets[column] < 0) return MCMV::gMissingValue;
    value *= Power(row[offsets[column]], parameter.multiplicities[c]);
  }
  return value;
}

// FillColumn says the same for many rows. A column without spread holds 0, not the 0/0 of the formula.
double OrvDesignColumns::Value(const double* row, std::size_t effect, RowKind kind) const {
  const std::size_t first = fFirstTerm[effect];
  const std::size_t end = fFirstTerm[effect + 1];
  if (first == end) return fConstantValues[effect];
  const double scale = fScales[effect];
  if (scale == 0) return 0;
  double value = 1;
  for (std::size_t t = first; t < end; ++t) {
    const CovariateTerm& term = fTerms[t];
    value *= Power(row[kind == RowKind::kPattern ? term.patternOffset : term.dataOffset], term.power);
  }
  if (fbIntercept) value -= fCentres[effect];
  return value / scale;
}

DoubleDouble OrvDesignColumns::PreciseValue(const double* row, std::size_t effect, RowKind kind) const {
  const std::size_t first = fFirstTerm[effect];
  const std::size_t end = fFirstTerm[effect + 1];
  if (first == end) return fConstantValues[effect];
  const double scale = fScales[effect];
  if (scale == 0) return {};
  DoubleDouble value = 1;
  bool isFirst = true;
  for (std::size_t t = first; t < end; ++t) {
    const CovariateTerm& term = fTerms[t];
    const double cell = row[kind == RowKind::kPattern ? term.patternOffset : term.dataOffset];
    for (int power = 0; power < term.power; ++power) {
      value = isFirst ? DoubleDouble(cell) : value * cell;
      isFirst = false;
    }
  }
  if (fbIntercept) value -= fCentres[effect];
  return Quotient(value, scale);
}

void OrvDesignColumns::BuildSparseRow(const double* patternRow, const std::vector<int>& parameters,
                                      const OrvRedundancy& redundancy, std::vector<int>& indices,
                                      std::vector<double>& values) const {
  const std::vector<int>& compressed = redundancy.CompressedIndices();
  indices.clear();
  values.clear();
  for (std::size_t e = 0; e < parameters.size(); ++e) {
    const std::size_t k = static_cast<std::size_t>(parameters[e]);
    if (k >= compressed.size() || compressed[k] < 0) continue;
    const double value = Value(patternRow, e, RowKind::kPattern);
    if (value == 0) continue;
    indices.push_back(compressed[k]);
    values.push_back(value);
  }
  // Without an intercept all columns of a row can be 0. Its categories are equally probable then, and it
  // counts.
  if (indices.empty() && redundancy.NonRedundantCount() > 0) {
    indices.push_back(0);
    values.push_back(0.0);
  }
}

// The factors are the same in all rows of a pattern: a column without covariates holds one value there, which
// the block's sums take once instead of row by row.
void OrvDesignColumns::StartBlock(const std::vector<int>& parameters, const std::vector<int>& indices,
                                  TavoRowBlock& block) const {
  block.Clear();
  for (std::size_t e = 0; e < parameters.size(); ++e) {
    const std::size_t k = static_cast<std::size_t>(parameters[e]);
    if (k >= indices.size() || indices[k] < 0) continue;
    if (fFirstTerm[e] == fFirstTerm[e + 1]) {
      block.AddConstant(indices[k], fConstantValues[e]);
    } else {
      block.AddColumn(indices[k], e);
    }
  }
}

void OrvDesignColumns::FillBlock(const double* patternRows, std::size_t rowLength, std::size_t rows,
                                 TavoRowBlock& block) const {
  block.SetRowCount(rows);
  const double* row = patternRows;
  for (std::size_t r = 0; r < rows; ++r, row += rowLength) {
    block.Categories()[r] = row[fPattern.response];
    block.Weights()[r] = row[fPattern.weight];
  }
  for (std::size_t v = 0; v < block.ColumnCount(); ++v)
    FillColumn(patternRows, rowLength, rows, block.Source(v), block.Column(v));
}

// What Value answers, for many rows: the same operations in the same order, so that both give the same bits.
void OrvDesignColumns::FillColumn(const double* patternRows, std::size_t rowLength, std::size_t rows,
                                  std::size_t effect, double* column) const {
  const double scale = fScales[effect];
  std::fill(column, column + rows, scale == 0 ? 0.0 : 1.0);
  if (scale == 0) return;
  for (std::size_t t = fFirstTerm[effect]; t < fFirstTerm[effect + 1]; ++t) {
    const double* cell = patternRows + fTerms[t].patternOffset;
    for (std::size_t r = 0; r < rows; ++r, cell += rowLength)
      column[r] *= Power(*cell, fTerms[t].power);
  }
  const double centre = fbIntercept ? fCentres[effect] : 0.0;
  for (std::size_t r = 0; r < rows; ++r)
    column[r] = (column[r] - centre) / scale;
}

void OrvDesignColumns::FillPreciseBlock(const double* patternRows, std::size_t rowLength,
                                        OrvPreciseBlock& block) const {
  const TavoRowBlock& rounded = block.Block();
  for (std::size_t v = 0; v < rounded.ColumnCount(); ++v) {
    const double* row = patternRows;
    for (std::size_t r = 0; r < rounded.RowCount(); ++r, row += rowLength)
      block.Column(v).Set(r, PreciseValue(row, rounded.Source(v), RowKind::kPattern));
  }
}

}  // namespace tavo
