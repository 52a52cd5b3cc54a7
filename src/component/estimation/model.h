// The multinomial logit model: what the parameters are and what they equal.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "component/estimation/fit_layout.h"
#include "component/estimation/rank_update.h"
#include "component/estimation/regr_parameter.h"
#include "component/estimation/row_block.h"
#include "component/frame/orv_cancel_info.h"
#include "component/frame/orv_status.h"
#include "component/input/comp_settings.h"
#include "component/input/custom_test.h"
#include "component/input/record_extractor.h"
#include "component/numerics/bit_set.h"
#include "component/numerics/rect_matrix.h"
#include "component/numerics/sym_matrix.h"

namespace tavo {

using MCCommonMath::MCBitSet;
using MCCommonMath::MCRectMatrix;
using MCCommonMath::MCSymMatrix;

class OrvFactorTables;

/// A baseline-category logit. With K response categories, the reference last, there are K-1 logits, each with
/// the same p basic design columns; logit j of a row x is x'b_j, and category j has probability exp(x'b_j) /
/// (1 + sum over all logits). The list of all parameters is the basic list repeated K-1 times: parameter j*p
/// + k is column k of logit j.
///
/// The fit works on an internal scale: column k enters as (v - c)/s with its effect's centre c (only in a
/// model with an intercept) and scale s. Estimates are kept on both scales. A column without spread, a
/// constant covariate beside an intercept, has scale 0 and enters as 0, so that it is found redundant.
///
/// Calling order: SetRecordLayout, SetupDependent, BuildParameters, AddPatternToXPrimeX for each row,
/// FindRedundancies, GetInitialEstimates, SetCaseCounts, the optimizer with BuildSparseRow, SetEstimates, the
/// design pass with ComputeCaseScores or AddCaseScores, ScaleSRSCovariance. BuildSparseRow, StartBlock,
/// FillBlock and ParameterValue may be called from several threads at once; everything else from one.
class TavoModel {
 public:
  /// Settings and cancel object are lent.
  TavoModel(const TavoCompSettings& settings, const OrvCancelInfo& cancel);
  virtual ~TavoModel();

  /// Positions in the rows of both extractors.
  void SetRecordLayout(const OrvRecordExtractor& patternRow, const OrvRecordExtractor& dataRow);
  /// Decides the response categories in use and the reference. The tables are lent from here on. 95028, 95029
  /// (warning). As all operations that return a status, it returns the model's status, which keeps a warning.
  virtual OrvStatus SetupDependent(OrvFactorTables& tables);
  /// Builds the parameter lists; `maxCount` is the tables' count of basic columns. 95045.
  virtual OrvStatus BuildParameters(int maxCount);
  /// Adds one pattern row to X'WX; `parameters` holds one basic parameter index per model effect.
  virtual bool AddPatternToXPrimeX(const double* patternRow, const std::vector<int>& parameters);
  /// The same for the rows of a block that was started with all columns.
  bool AddBlockToXPrimeX(const TavoRowBlock& block);
  /// Sweeps X'WX: a column that depends on earlier ones is aliased. 95004, 95005, 1.
  virtual OrvStatus FindRedundancies();
  /// Start values of the kept parameters: the exact solution of the model with intercepts only.
  virtual OrvStatus GetInitialEstimates(std::vector<double>& estimates);
  /// Kept design columns of a pattern row: compressed indices (strictly ascending) and values that are not 0.
  /// A row of zeros gets one explicit 0, since no entry at all would be no row. Outputs are cleared first;
  /// they keep their capacity.
  virtual void BuildSparseRow(const double* patternRow, const std::vector<int>& parameters,
                              std::vector<int>& indices, std::vector<double>& values) const;
  /// The same for many rows of a pattern: StartBlock gives the block its entries, those of the kept columns
  /// under their compressed indices or those of all columns under their basic ones; FillBlock gives it the
  /// values of up to TavoRowBlock::kMaxRows pattern rows that lie end to end. A row's zeros may stay among
  /// its entries. Memory that runs out throws std::bad_alloc.
  void StartBlock(const std::vector<int>& parameters, BlockColumns which, TavoRowBlock& block) const;
  void FillBlock(const double* patternRows, std::size_t rowLength, std::size_t rows,
                 TavoRowBlock& block) const;
  /// Takes the estimates of the kept parameters and the inverse of their information, both on the internal
  /// scale. 91000 when their sizes don't fit the kept parameters, 95045, 1.
  OrvStatus SetEstimates(const std::vector<double>& estimates, const MCSymMatrix& hessianInverse);
  void SetCaseCounts(double sampleSize, double populationTotal);
  /// Score of one data row, a vector over all parameters: (1 if the response is j, else 0, minus probability
  /// j) * x * w. Also accumulates the central part of the covariance under simple random sampling and the
  /// classification table.
  virtual void ComputeCaseScores(std::vector<double>& scores, const double* dataRow);
  /// Adds the same values to running sums.
  void AddCaseScores(std::vector<double>& sums, const double* dataRow);
  /// Scales the SRS centre by N/(n-1), and by 1 - n/N without replacement. Completes the model. 95007.
  OrvStatus ScaleSRSCovariance();
  /// Probabilities (by local index, reference last) and the predicted category code; 0 and missing values for
  /// a level combination that the estimation data didn't have, and on a cancel. 95006 before there are
  /// estimates. Ties within machine epsilon: the largest weighted count, then the largest unweighted count,
  /// then the smallest code.
  virtual OrvStatus PredictCategory(const double* dataRow, std::vector<double>& probabilities, int& category);
  /// First basic parameter and count of an effect; with an intercept, effect 0 is the intercept.
  virtual bool GetEffectParameters(int effect, int& first, int& count) const;
  /// The product of the parameter's covariates raised to their powers; 1 without covariates.
  double ParameterValue(const double* row, const OrvRegrParameter& parameter, bool usePatternOffsets) const;
  /// Fills a dense design row of p values. False for an unknown level combination, whose columns stay 0, or
  /// on a cancel. Not standardised, a column holds its covariate product; standardised, its value on the
  /// internal scale.
  bool FillDesignRow(std::vector<double>& row, const double* dataRow, bool standardise) const;
  /// The categories of a factor (position from 0) that have weight, ascending, with the chosen reference
  /// moved to the end; `counts` in parallel. `reference`: 0 highest in use, -1 lowest, otherwise that
  /// category. Warnings: 95041 fewer than two categories where a comparison is wanted (`isControl` false; no
  /// reference is chosen then), 95042 and, for a control, 95043 the requested category is not in use and the
  /// highest was taken (integers: record column, request).
  OrvStatus FactorLevels(int factor, int reference, bool isControl, std::vector<int>& levels,
                         std::vector<double>& counts) const;
  /// The rows of a custom hypothesis as numbers: one row each, with the columns of one logit, or of all
  /// logits
  /// (`isFull`) when the first row is kAll. Rows count from 0 in the arguments of errors: 95009 wrong number
  /// of values in a kAll row, 95019 a row without type, 95020 wrong number of values for an effect, 95021 an
  /// intercept where the model has none, 95022 unknown effect, 95039 kAll mixed with other rows, 95045, 1 (L
  /// is zero then). The model's own status isn't touched.
  OrvStatus BuildHypothesisMatrix(const std::vector<TavoMatrixRow>& rows, MCRectMatrix& L,
                                  bool& isFull) const;

  /// The non-redundant parameters as the iteration sees them.
  TavoFitLayout FitLayout() const;

  bool HasIntercept() const { return fNIntercepts > 0; }
  int InterceptCount() const { return fNIntercepts; }
  int EquationCount() const { return fNEquations; }
  /// Model effects, the intercept included.
  int EffectCount() const { return fNEffects; }
  int ParameterCount() const { return static_cast<int>(fAllParameters.size()); }
  int BasicParameterCount() const { return static_cast<int>(fBasicParameters.size()); }
  int BasicNonRedundantCount() const { return fNBasicNonRedundant; }
  int AllNonRedundantCount() const { return fNAllNonRedundant; }
  int CategoryCount() const { return static_cast<int>(fCategories.size()); }
  /// Response category codes in use, reference last.
  const std::vector<int>& Categories() const { return fCategories; }
  /// By category code - 1: the position in Categories(), -1 for an empty category.
  const std::vector<int>& LocalCategoryIndices() const { return fLocalCategories; }
  const std::vector<double>& WeightedCounts() const { return fWeightedCounts; }
  const std::vector<double>& UnweightedCounts() const { return fUnweightedCounts; }
  const std::vector<OrvRegrParameter>& AllParameters() const { return fAllParameters; }
  const std::vector<OrvRegrParameter>& BasicParameters() const { return fBasicParameters; }
  /// A set bit marks a kept parameter.
  const MCBitSet& BasicBits() const { return fBasicBits; }
  const MCBitSet& AllBits() const { return fAllBits; }
  /// Per basic parameter.
  const std::vector<double>& Centres() const { return fParameterCentres; }
  const std::vector<double>& Scales() const { return fParameterScales; }
  /// Per kept basic parameter.
  const std::vector<double>& NonRedundantCentres() const { return fNonRedundantCentres; }
  const std::vector<double>& NonRedundantScales() const { return fNonRedundantScales; }
  const std::vector<double>& Estimates() const { return fEstimates; }                        // data scale
  const std::vector<double>& TransformedEstimates() const { return fTransformedEstimates; }  // internal scale
  const MCRectMatrix& ClassificationTable() const { return fClassification; }
  const MCSymMatrix* HessianGI() const { return fpHessianGI.get(); }
  /// Null when the settings don't ask for it.
  const MCSymMatrix* SRSCentre() const;
  /// Swept on BasicBits by FindRedundancies.
  const MCSymMatrix* XPrimeX() const { return fpXPrimeX.get(); }
  /// Its diagonal before the first sweep.
  const std::vector<double>& XPrimeXDiagonal() const { return fXPrimeXDiagonal; }
  void ReleaseHessianGI() { fpHessianGI.reset(); }
  void ReleaseSRSCentre();
  void ReleaseXPrimeX() { fpXPrimeX.reset(); }
  double SampleSize() const { return fSampleSize; }
  double PopulationTotal() const { return fPopulationTotal; }
  bool IsBuilt() const { return fbBuilt; }
  const OrvStatus& Status() const { return fStatus; }
  const TavoCompSettings& Settings() const { return fSettings; }

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

  void CompressBasicParameters();
  OrvStatus Fail(std::uint32_t code);
  OrvStatus FailWithCount(std::int64_t count, std::int32_t limit);
  OrvStatus EndOfLongStep();
  std::size_t ChooseReference(const std::vector<int>& used);
  void ClearParameters();
  void TakeTransformation();
  void AppendParameter(const OrvRegrParameter& parameter, double centre, double scale);
  bool AppendEffectParameters(int effect);
  bool AppendCovariateTerms(const OrvRegrParameter& parameter);
  void RepeatForOtherLogits();
  void AllocateMatrices();
  double DesignValue(const double* row, std::size_t effect, bool usePatternOffsets) const;
  void FillColumn(const double* patternRows, std::size_t rowLength, std::size_t rows, std::size_t effect,
                  double* column) const;
  bool TakesXPrimeX() const;
  bool FindParameters(const double* dataRow) const;
  bool FillScoringRow(const double* dataRow);
  void EvaluateScoringRow(std::vector<double>& probabilities, int& local);
  int BreakTie();
  bool ScoreRow(std::vector<double>& sums, const double* dataRow);
  void AddToSRSCentre(double weight);
  OrvStatus FillHypothesisRow(const TavoMatrixRow& row, int number, bool isFull, MCRectMatrix& L) const;
  OrvStatus FillEffectTerms(const TavoMatrixRow& row, int number, MCRectMatrix& L) const;
  OrvStatus FillAllValues(const TavoMatrixRow& row, int number, MCRectMatrix& L) const;

  const TavoCompSettings& fSettings;
  const OrvCancelInfo& fCancel;
  OrvFactorTables* fpTables = nullptr;
  RowLayout fPatternLayout;
  RowLayout fDataLayout;
  std::vector<int> fCategories;
  std::vector<int> fLocalCategories;
  std::vector<double> fWeightedCounts;
  std::vector<double> fUnweightedCounts;
  int fNEffects = 0;
  int fNEquations = 0;
  int fNIntercepts = 0;
  std::vector<double> fEffectCentres;
  std::vector<double> fEffectScales;
  std::vector<double> fParameterCentres;
  std::vector<double> fParameterScales;
  std::vector<double> fNonRedundantCentres;
  std::vector<double> fNonRedundantScales;
  std::unique_ptr<MCSymMatrix> fpXPrimeX;
  std::vector<double> fXPrimeXDiagonal;
  std::unique_ptr<MCSymMatrix> fpSRSCentre;
  mutable OrvRankUpdate fSRSRows;  // rows still to be added to the SRS centre; flushed before anyone reads it
  bool fbSRSBySparseRows = false;  // rows with few entries go to the SRS centre one by one
  std::unique_ptr<MCSymMatrix> fpHessianGI;
  int fNRecordsAdded = 0;
  MCBitSet fBasicBits;
  MCBitSet fAllBits;
  std::vector<OrvRegrParameter> fAllParameters;
  std::vector<OrvRegrParameter> fBasicParameters;
  int fNBasicNonRedundant = 0;
  int fNAllNonRedundant = 0;
  std::vector<int> fCompressedIndex;  // per basic parameter, -1 when aliased
  bool fbStructureReady = false;
  bool fbBuilt = false;
  std::vector<double> fEstimates;
  std::vector<double> fTransformedEstimates;
  std::vector<std::size_t> fFirstTerm;  // by model effect, and one entry more: its range of fCovariateTerms
  std::vector<CovariateTerm> fCovariateTerms;
  std::vector<double> fConstantValues;  // by model effect: the design value of an effect without covariates
  // Work of the evaluation of one data row: its design row, sparse, with basic parameter indices.
  mutable std::vector<int> fWorkParameters;  // by model effect
  std::vector<int> fWorkIndices;
  std::vector<double> fWorkValues;
  std::vector<double> fWorkProbabilities;  // K
  std::vector<int> fWorkScoreIndices;      // of the score, over all logits
  std::vector<double> fWorkScoreValues;
  std::vector<int> fWorkTied;
  double fPopulationTotal = 0;
  double fSampleSize = 0;
  long fNCasesWithWeight = 0;
  std::vector<int> fFirstParameter;    // by settings' effect
  std::vector<int> fEffectParameters;  // count, by settings' effect
  MCRectMatrix fClassification;        // observed by predicted, local indices, weighted
  OrvStatus fStatus;
};

}  // namespace tavo
