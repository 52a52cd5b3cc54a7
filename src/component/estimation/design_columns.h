// The values of the design columns.
#pragma once

#include <cstddef>
#include <vector>

#include "component/estimation/parameter_list.h"
#include "component/estimation/precise_block.h"
#include "component/estimation/redundancy.h"
#include "component/estimation/row_block.h"
#include "component/input/model_effect.h"
#include "component/input/record_extractor.h"
#include "component/numerics/double_double.h"

namespace tavo {

/// The two kinds of rows that cases are reduced to: those of a pattern (response, covariates, weight) and
/// those of data, which also hold the factors.
enum class RowKind { kPattern, kData };

/// What the columns of a row hold on the internal scale. The factors of an effect choose which of its columns
/// a row has, and the others are 0; the effect's covariates give that column its value, so a row has one
/// entry for each model effect. The columns of the row are named by `parameters`, one basic parameter for
/// each model effect, -1 for none.
///
/// Const operations may be called from several threads at once.
class OrvDesignColumns {
 public:
  /// Of no columns.
  OrvDesignColumns() = default;
  /// `covariates` are the record columns of all covariates, in the order of the extractors' offsets; every
  /// covariate of an effect is among them.
  OrvDesignColumns(const OrvParameterList& parameters, const std::vector<OrvModelEffect>& effects,
                   const std::vector<int>& covariates, const OrvRecordExtractor& patternRow,
                   const OrvRecordExtractor& dataRow);

  /// The product of the parameter's covariates raised to their powers, in the units of the data; 1 without
  /// covariates, missing when the rows don't hold a covariate.
  double ParameterValue(const double* row, const OrvRegrParameter& parameter, RowKind kind) const;
  /// The value of a model effect's column, (v - centre)/scale.
  double Value(const double* row, std::size_t effect, RowKind kind) const;
  /// The same in twice the precision: powers and products of covariates that are far from 0 leave little of
  /// themselves when their centre is taken away.
  MCCommonMath::DoubleDouble PreciseValue(const double* row, std::size_t effect, RowKind kind) const;
  double Response(const double* dataRow) const { return dataRow[fData.response]; }
  double Weight(const double* row, RowKind kind) const { return row[LayoutOf(kind).weight]; }

  /// The non-redundant columns of a pattern row: compressed indices, strictly ascending, and values that are
  /// not 0. A row of zeros gets one explicit 0, since no entry at all would be no row. Outputs are cleared
  /// first; they keep their capacity.
  void BuildSparseRow(const double* patternRow, const std::vector<int>& parameters,
                      const OrvRedundancy& redundancy, std::vector<int>& indices,
                      std::vector<double>& values) const;
  /// Gives a block the entries of a pattern's rows. `indices` by basic parameter: under which index it
  /// enters, -1 when it doesn't.
  void StartBlock(const std::vector<int>& parameters, const std::vector<int>& indices,
                  TavoRowBlock& block) const;
  /// Gives a started block the values of up to TavoRowBlock::kMaxRows pattern rows that lie end to end, each
  /// of `rowLength` cells. A row's zeros stay among its entries.
  void FillBlock(const double* patternRows, std::size_t rowLength, std::size_t rows,
                 TavoRowBlock& block) const;
  /// Gives a block that FillBlock has filled its columns in twice the precision.
  void FillPreciseBlock(const double* patternRows, std::size_t rowLength, OrvPreciseBlock& block) const;

 private:
  struct RowLayout {
    int weight = 0;
    int response = 0;
    std::vector<int> covariateOffset;  // by record column; -1 for a column that is no covariate
  };
  // One covariate of an effect, with its place in both kinds of rows.
  struct CovariateTerm {
    int patternOffset = 0;
    int dataOffset = 0;
    int power = 0;
  };

  const RowLayout& LayoutOf(RowKind kind) const { return kind == RowKind::kPattern ? fPattern : fData; }
  void AppendTerms(const OrvModelEffect& effect);
  void SetConstants();
  void FillColumn(const double* patternRows, std::size_t rowLength, std::size_t rows, std::size_t effect,
                  double* column) const;

  bool fbIntercept = false;
  RowLayout fPattern;
  RowLayout fData;
  std::vector<double> fCentres;         // by model effect
  std::vector<double> fScales;          // by model effect
  std::vector<double> fConstantValues;  // by model effect: the value of a column without covariates
  std::vector<std::size_t> fFirstTerm;  // by model effect, and one entry more: its range of fTerms
  std::vector<CovariateTerm> fTerms;
};

}  // namespace tavo
