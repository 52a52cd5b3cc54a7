// The multinomial logit model: what the parameters are and what they equal.
#pragma once

#include <memory>
#include <vector>

#include "estimation/numerics/bit_set.h"
#include "estimation/numerics/rect_matrix.h"
#include "estimation/numerics/sym_matrix.h"
#include "estimation/regr_parameter.h"
#include "frame/orv_cancel_info.h"
#include "frame/orv_status.h"
#include "input/comp_settings.h"
#include "input/record_extractor.h"

namespace tavo {

using MCCommonMath::MCBitSet;
using MCCommonMath::MCRectMatrix;
using MCCommonMath::MCSymMatrix;

class OrvFactorTables;

/// A baseline-category logit. With K response categories, the reference last, there are K-1 logits, each with the same
/// p basic design columns; logit j of a row x is x'b_j, and category j has probability exp(x'b_j) / (1 + sum over all
/// logits). The list of all parameters is the basic list repeated K-1 times: parameter j*p + k is column k of logit j.
///
/// The fit works on an internal scale: column k enters as (v - c)/s with its effect's centre c (only in a model with
/// an intercept) and scale s. Estimates are kept on both scales.
///
/// Calling order: SetRecordLayout, SetupDependent, BuildParameters, AddPatternToXPrimeX for each row,
/// FindRedundancies, GetInitialEstimates, SetCaseCounts, the optimizer with BuildSparseRow, SetEstimates, the design
/// pass with ComputeCaseScores or AddCaseScores, ScaleSRSCovariance. BuildSparseRow and ParameterValue may be called
/// from several threads at once; everything else from one.
class TavoModel {
 public:
  /// Settings and cancel object are lent.
  TavoModel(const TavoCompSettings& settings, const OrvCancelInfo& cancel);
  virtual ~TavoModel();

  /// Positions in the rows of both extractors.
  void SetRecordLayout(const OrvRecordExtractor& patternRow, const OrvRecordExtractor& dataRow);
  /// Decides the response categories in use and the reference. The tables are lent from here on. 95028, 95029 (warning).
  virtual OrvStatus SetupDependent(OrvFactorTables& tables);
  /// Builds the parameter lists; `maxCount` is the tables' count of basic columns. 95045.
  virtual OrvStatus BuildParameters(int maxCount);
  /// Adds one pattern row to X'WX; `parameters` holds one basic parameter index per model effect.
  virtual bool AddPatternToXPrimeX(const double* patternRow, const std::vector<int>& parameters);
  /// Sweeps X'WX: a column that depends on earlier ones is aliased. 95004, 95005, 1.
  virtual OrvStatus FindRedundancies();
  /// Start values of the kept parameters: the exact solution of the model with intercepts only.
  virtual OrvStatus GetInitialEstimates(std::vector<double>& estimates);
  /// Kept design columns of a pattern row: compressed indices (strictly ascending) and values that are not 0. Outputs
  /// are cleared first; they keep their capacity.
  virtual void BuildSparseRow(const double* patternRow, const std::vector<int>& parameters, std::vector<int>& indices,
                              std::vector<double>& values) const;
  /// Takes the estimates of the kept parameters and the inverse of their information, both on the internal scale.
  OrvStatus SetEstimates(const std::vector<double>& estimates, const MCSymMatrix& hessianInverse);
  void SetCaseCounts(double sampleSize, double populationTotal);
  /// Score of one data row, a vector over all parameters: (1 if the response is j, else 0, minus probability j) * x * w.
  /// Also accumulates the central part of the covariance under simple random sampling and the classification table.
  virtual void ComputeCaseScores(std::vector<double>& scores, const double* dataRow);
  /// Adds the same values to running sums.
  void AddCaseScores(std::vector<double>& sums, const double* dataRow);
  /// Scales the SRS centre by N/(n-1), and by 1 - n/N without replacement. Completes the model. 95007.
  OrvStatus ScaleSRSCovariance();
  /// Probabilities (by local index, reference last) and the predicted category code; 0 and missing values for a level
  /// combination that the estimation data didn't have. Ties within machine epsilon: the largest weighted count, then
  /// the largest unweighted count, then the smallest code.
  virtual OrvStatus PredictCategory(const double* dataRow, std::vector<double>& probabilities, int& category);
  /// First basic parameter and count of an effect; with an intercept, effect 0 is the intercept.
  virtual bool GetEffectParameters(int effect, int& first, int& count) const;
  /// The product of the parameter's covariates raised to their powers; 1 without covariates.
  double ParameterValue(const double* row, const OrvRegrParameter& parameter, bool usePatternOffsets) const;
  /// Fills a dense design row of p values. False for an unknown level combination or on a cancel.
  bool FillDesignRow(std::vector<double>& row, const double* dataRow, bool standardise);

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
  const MCSymMatrix* SRSCentre() const { return fpSRSCentre.get(); }
  const MCSymMatrix* XPrimeX() const { return fpXPrimeX.get(); }
  void ReleaseHessianGI() { fpHessianGI.reset(); }
  void ReleaseSRSCentre() { fpSRSCentre.reset(); }
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

  int ChooseReference(const std::vector<int>& used);
  void AppendParameter(const OrvRegrParameter& parameter, double centre, double scale);
  void AppendEffectParameters(int effect);
  void RepeatForOtherLogits();
  OrvStatus AllocateMatrices();
  double DesignValue(const double* row, int effect, int parameter, bool usePatternOffsets) const;
  int BreakTie(const std::vector<int>& tied) const;
  void CountCase(const double* dataRow, int category, double weight);
  bool ScoreRow(const double* dataRow, std::vector<double>& target, bool add);

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
  std::unique_ptr<MCSymMatrix> fpSRSCentre;
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
  std::vector<double> fWorkRow;            // p design values
  std::vector<int> fWorkParameters;        // by effect
  std::vector<double> fWorkProbabilities;  // K
  std::vector<double> fWorkScores;         // all parameters
  std::vector<int> fWorkTied;
  std::vector<double> fWorkValues;
  double fPopulationTotal = 0;
  double fSampleSize = 0;
  long fNCasesWithWeight = 0;
  std::vector<int> fFirstParameter;   // by settings' effect
  std::vector<int> fEffectParameters; // count, by settings' effect
  MCRectMatrix fClassification;       // observed by predicted, local indices, weighted
  OrvStatus fStatus;
};

}  // namespace tavo
