// The multinomial logit model: what the parameters are and what they equal.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "component/estimation/case_scorer.h"
#include "component/estimation/design_columns.h"
#include "component/estimation/fit_layout.h"
#include "component/estimation/parameter_list.h"
#include "component/estimation/precise_fit.h"
#include "component/estimation/redundancy.h"
#include "component/estimation/response_categories.h"
#include "component/estimation/row_block.h"
#include "component/estimation/srs_centre.h"
#include "component/frame/orv_cancel_info.h"
#include "component/frame/orv_status.h"
#include "component/input/comp_settings.h"
#include "component/input/custom_test.h"
#include "component/input/record_extractor.h"
#include "component/numerics/bit_set.h"
#include "component/numerics/rect_matrix.h"
#include "component/numerics/sym_matrix.h"
#include "component/tabulation/factor_tables.h"

namespace tavo {

using MCCommonMath::MCBitSet;
using MCCommonMath::MCRectMatrix;
using MCCommonMath::MCSymMatrix;

/// A baseline-category logit (Agresti 2002, section 7.1). With K response categories, the reference last,
/// there are K-1 logits, each with the same p basic design columns; logit j of a row x is x'b_j, and category
/// j has probability exp(x'b_j) / (1 + sum over all logits).
///
/// The model is the whole of its parts, and says in which order they come to be: OrvResponseCategories,
/// OrvParameterList with OrvDesignColumns, OrvRedundancy, the start values, the estimates with OrvCaseScorer,
/// and OrvSRSCentre. Estimates are kept on the scale of the data and on the internal scale of the fit.
///
/// Calling order, asserted: SetupDependent, BuildParameters, AddPatternToXPrimeX or AddBlockToXPrimeX for
/// each row, FindRedundancies, GetInitialEstimates and the fit, SetEstimates, AddCaseScores for each case of
/// the design pass, ScaleSRSCovariance. As long as nothing failed, each operation that returns a status
/// returns the model's own, which keeps a warning; after an error the model is of no use. BuildSparseRow,
/// StartBlock, FillBlock and ParameterValue may be called from several threads at once; everything else from
/// one.
class TavoModel {
 public:
  /// Nothing is owned; all of it outlives the model. Tables and extractors may be filled later, before
  /// SetupDependent.
  TavoModel(const TavoCompSettings& settings, OrvFactorTables& tables, const OrvRecordExtractor& patternRow,
            const OrvRecordExtractor& dataRow, const OrvCancelInfo& cancel);
  TavoModel(const TavoModel&) = delete;
  TavoModel& operator=(const TavoModel&) = delete;
  ~TavoModel();

  /// Decides the response categories in use and the reference; StatusCode::kOneDependentValue, and the
  /// warning StatusCode::kReferenceNotInUse.
  OrvStatus SetupDependent();
  /// Builds the parameter list; `maxCount` is the tables' count of basic columns.
  /// StatusCode::kTooManyParameters (integers: count, limit; limit 0 when memory ran out),
  /// StatusCode::kCancelled.
  OrvStatus BuildParameters(int maxCount);
  /// Adds one pattern row to X'WX; `parameters` holds one basic parameter index per model effect. False, with
  /// nothing added, after a cancel or when an index is out of range.
  bool AddPatternToXPrimeX(const double* patternRow, const std::vector<int>& parameters);
  /// The same for the rows of a block that was started with all columns.
  bool AddBlockToXPrimeX(const TavoRowBlock& block);
  /// Sweeps X'WX. StatusCode::kDataNotProcessed when no row was added, StatusCode::kCancelled. When
  /// `IsRedundancyCertain` says no, all rows go through AddPreciseBlockToXPrimeX, and this is called again.
  OrvStatus FindRedundancies();
  bool IsRedundancyCertain() const { return fbRedundancyCertain; }
  /// Adds the rows of a block that was started with all columns, in twice the precision.
  void AddPreciseBlockToXPrimeX(OrvPreciseBlock& block) { fRedundancy.AddPrecisely(block); }
  /// The non-redundant parameters as the iteration sees them; known from FindRedundancies on.
  const TavoFitLayout& FitLayout() const { return fLayout; }
  /// See StartValues.
  OrvStatus GetInitialEstimates(std::vector<double>& estimates);
  /// See OrvDesignColumns.
  void BuildSparseRow(const double* patternRow, const std::vector<int>& parameters, std::vector<int>& indices,
                      std::vector<double>& values) const {
    fColumns.BuildSparseRow(patternRow, parameters, fRedundancy, indices, values);
  }
  /// The same for many rows of a pattern; see OrvDesignColumns. The block's entries are those of the
  /// non-redundant columns under their compressed indices, or those of all columns under their basic ones.
  /// Memory that runs out throws std::bad_alloc.
  void StartBlock(const std::vector<int>& parameters, BlockColumns which, TavoRowBlock& block) const;
  void FillBlock(const double* patternRows, std::size_t rowLength, std::size_t rows,
                 TavoRowBlock& block) const {
    fColumns.FillBlock(patternRows, rowLength, rows, block);
  }
  /// See OrvDesignColumns.
  void FillPreciseBlock(const double* patternRows, std::size_t rowLength, OrvPreciseBlock& block) const {
    fColumns.FillPreciseBlock(patternRows, rowLength, block);
  }
  /// Takes the estimates of the non-redundant parameters and the inverse of their information, both on the
  /// internal scale. StatusCode::kTooManyParameters when memory ran out, StatusCode::kCancelled.
  OrvStatus SetEstimates(const std::vector<double>& estimates, const MCSymMatrix& hessianInverse);
  /// Takes the refined end of the same fit, in place of the inverse information. kTooManyParameters when
  /// memory ran out.
  OrvStatus SetPreciseFit(std::unique_ptr<TavoPreciseFit> fit);
  /// Null when the fit was not refined.
  const TavoPreciseFit* PreciseFit() const { return fpPreciseFit.get(); }
  /// Elements of a score total, see OrvUnitScores.
  int ScoreCount() const { return fpPreciseFit == nullptr ? ParameterCount() : AllNonRedundantCount(); }
  /// Score of one data row over all parameters; see OrvCaseScorer::AddScores. Also adds to the centre of the
  /// covariance under simple random sampling and to the classification table. Zero after a cancel.
  void ComputeCaseScores(std::vector<double>& scores, const double* dataRow);
  /// Adds the same values to running sums.
  void AddCaseScores(std::vector<double>& sums, const double* dataRow);
  /// Adds the score of a data row over the non-redundant parameters, of a refined fit. The centre of the
  /// covariance under simple random sampling is then in the basis of its factor.
  void AddPreciseCaseScores(MCCommonMath::PreciseColumn& sums, const double* dataRow);
  /// Scales the SRS centre, see OrvSRSCentre::Scale, and completes the model.
  /// StatusCode::kEmptySubpopulation when no case with weight was scored.
  OrvStatus ScaleSRSCovariance();
  /// Probabilities (by local index, reference last) and the code of the predicted category; 0 and missing
  /// values for a level combination that the estimation data didn't have, and after a cancel. From
  /// SetEstimates on.
  OrvStatus PredictCategory(const double* dataRow, std::vector<double>& probabilities, int& category);
  /// First basic parameter and count of an effect; with an intercept, effect 0 is the intercept. False for an
  /// effect out of range.
  bool GetEffectParameters(int effect, int& first, int& count) const {
    return fParameters.EffectRange(effect, first, count);
  }
  /// The product of the parameter's covariates raised to their powers; 1 without covariates.
  double ParameterValue(const double* row, const OrvRegrParameter& parameter, bool usePatternOffsets) const {
    return fColumns.ParameterValue(row, parameter, usePatternOffsets ? RowKind::kPattern : RowKind::kData);
  }
  /// Fills a dense design row of p values. False for an unknown level combination, whose columns stay 0, or
  /// after a cancel. Not standardised, a column holds its covariate product; standardised, its value on the
  /// internal scale.
  bool FillDesignRow(std::vector<double>& row, const double* dataRow, bool standardise) const;
  /// The categories of a factor (position from 0) that have weight; see tavo::FactorLevels.
  OrvStatus FactorLevels(int factor, int reference, bool isControl, std::vector<int>& levels,
                         std::vector<double>& counts) const;
  /// The rows of a custom hypothesis as numbers; see BuildHypothesisRows. The model's own status isn't
  /// touched.
  OrvStatus BuildHypothesisMatrix(const std::vector<TavoMatrixRow>& rows, MCRectMatrix& L,
                                  bool& isFull) const;

  bool HasIntercept() const { return fSettings.HasIntercept(); }
  int InterceptCount() const { return HasIntercept() ? 1 : 0; }
  int EquationCount() const { return fResponse.LogitCount(); }
  /// Model effects, the intercept included.
  int EffectCount() const { return static_cast<int>(fSettings.Effects().size()) + InterceptCount(); }
  int ParameterCount() const { return fParameters.AllCount(); }
  int BasicParameterCount() const { return fParameters.BasicCount(); }
  int BasicNonRedundantCount() const { return fRedundancy.NonRedundantCount(); }
  int AllNonRedundantCount() const { return fRedundancy.NonRedundantCount() * EquationCount(); }
  int CategoryCount() const { return fResponse.Count(); }
  /// Response category codes in use, reference last.
  const std::vector<int>& Categories() const { return fResponse.Codes(); }
  /// By category code - 1: the position in Categories(), -1 for an empty category.
  const std::vector<int>& LocalCategoryIndices() const { return fResponse.LocalIndices(); }
  const std::vector<double>& WeightedCounts() const { return fResponse.WeightedCounts(); }
  const std::vector<double>& UnweightedCounts() const { return fResponse.UnweightedCounts(); }
  const std::vector<OrvRegrParameter>& AllParameters() const { return fParameters.All(); }
  const std::vector<OrvRegrParameter>& BasicParameters() const { return fParameters.Basic(); }
  /// A set bit marks a non-redundant parameter.
  const MCBitSet& BasicBits() const { return fRedundancy.Bits(); }
  const MCBitSet& AllBits() const { return fAllBits; }
  /// Per basic parameter.
  const std::vector<double>& Centres() const { return fParameters.Centres(); }
  const std::vector<double>& Scales() const { return fParameters.Scales(); }
  /// Per non-redundant basic parameter.
  const std::vector<double>& NonRedundantCentres() const { return fLayout.centres; }
  const std::vector<double>& NonRedundantScales() const { return fLayout.scales; }
  /// Of all parameters, 0 for redundant ones, on the scale of the data; all 0 before SetEstimates.
  const std::vector<double>& Estimates() const { return fEstimates; }
  /// The same on the internal scale; empty before SetEstimates.
  const std::vector<double>& TransformedEstimates() const { return fTransformedEstimates; }
  /// Observed by predicted local index, weighted.
  const MCRectMatrix& ClassificationTable() const { return fClassification; }
  /// The inverse information expanded to all parameters, 0 for redundant ones; null before SetEstimates and
  /// after its release.
  const MCSymMatrix* HessianGI() const { return fpHessianGI.get(); }
  /// Null when the settings don't ask for it, and after its release.
  const MCSymMatrix* SRSCentre() const { return fpSRSCentre == nullptr ? nullptr : &fpSRSCentre->Matrix(); }
  /// Swept on BasicBits by FindRedundancies; null before BuildParameters and after its release.
  const MCSymMatrix* XPrimeX() const { return fRedundancy.XPrimeX(); }
  /// Its diagonal before the sweep.
  const std::vector<double>& XPrimeXDiagonal() const { return fRedundancy.XPrimeXDiagonal(); }
  // Each matrix goes as soon as it has served.
  void ReleaseHessianGI() { fpHessianGI.reset(); }
  void ReleaseSRSCentre() { fpSRSCentre.reset(); }
  void ReleaseXPrimeX() { fRedundancy.ReleaseXPrimeX(); }
  bool IsBuilt() const { return fStage == Stage::kBuilt; }
  const OrvStatus& Status() const { return fStatus; }
  const TavoCompSettings& Settings() const { return fSettings; }

 private:
  /// What is known so far; each stage has all of those before it.
  enum class Stage { kNothing, kResponse, kParameters, kRedundancies, kEstimates, kBuilt };

  OrvStatus Fail(std::uint32_t code);
  OrvStatus FailWithCount(std::int64_t count, std::int32_t limit);
  OrvStatus EndOfLongStep();
  OrvStatus AllocateMatrices();

  const TavoCompSettings& fSettings;
  OrvFactorTables& fTables;
  const OrvRecordExtractor& fPatternRow;
  const OrvRecordExtractor& fDataRow;
  const OrvCancelInfo& fCancel;
  Stage fStage = Stage::kNothing;
  OrvResponseCategories fResponse;
  OrvParameterList fParameters;
  OrvDesignColumns fColumns;
  OrvRedundancy fRedundancy;
  bool fbRedundancyCertain = true;
  MCBitSet fAllBits;
  TavoFitLayout fLayout;
  std::vector<double> fEstimates;
  std::vector<double> fTransformedEstimates;
  std::unique_ptr<MCSymMatrix> fpHessianGI;
  std::unique_ptr<TavoPreciseFit> fpPreciseFit;
  std::unique_ptr<OrvCaseScorer> fpScorer;
  std::unique_ptr<OrvSRSCentre> fpSRSCentre;
  MCRectMatrix fClassification;
  std::vector<double> fWorkValues;  // of one row, by model effect
  OrvStatus fStatus;
};

}  // namespace tavo
