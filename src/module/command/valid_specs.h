// A checked TAVOREG command.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "component/input/comp_settings.h"
#include "component/input/custom_test.h"
#include "component/input/model_effect.h"
#include "component/input/odds_ratio_spec.h"
#include "host/data.h"
#include "host/files.h"
#include "module/command/category_value.h"
#include "module/command/first_pass_findings.h"
#include "module/command/plan_valid_specs.h"

namespace tavo {

enum class Statistic : int {
  PARAMETER = 0,
  EXP = 1,
  SE = 2,
  TTEST = 3,
  CINTERVAL = 4,
  DEFF = 5,
  DEFFSQRT = 6
};
enum class PrintOption : int {
  SAMPLEINFO = 0,
  VARIABLEINFO = 1,
  SUMMARY = 2,
  GEF = 3,
  LMATRIX = 4,
  COVB = 5,
  CORB = 6,
  CLASSTABLE = 7,
  NONE = 8
};

/// One item of a FACTOR list: a category that can be coded only after the first pass.
struct FactorSpec {
  int variable = -1;    // dictionary index; -1 for a covariate
  bool high = true;     // the highest category in use
  CategoryValue value;  // empty and not high: the lowest
};
/// The same of a CONTROL list.
using ControlSpec = FactorSpec;

/// The items of one ODDSRATIOS subcommand, in the order of its specification's factors and controls.
struct OddsRatioItems {
  std::vector<FactorSpec> factors;
  std::vector<ControlSpec> controls;
};

/// Filled by the command parser and final from then on: read by driver and output, and made into the settings
/// of the component once the first pass has found what only the data can tell. Indices of variables are
/// dictionary indices, -1 not set.
class TavoValidSpecs final : public OrvPlanValidSpecs {
 public:
  /// The plan's columns, then dependent variable, factors, covariates and subpopulation; a variable with
  /// several roles takes one column. The last step of parsing, once only: nothing is set afterwards.
  void NumberColumns() override;
  /// What the component is told: plan, options and limits from here, counts and codes from the first pass.
  /// There is one level count per factor. Effects refer to this object, which must outlive all copies
  /// of the settings. Stop processor and progress listener are the caller's to set.
  TavoCompSettings BuildSettings(const FirstPassFindings& found) const;

  // The dependent variable and its reference: highest, a value, or (neither) lowest.
  void SetDependent(int variable, bool highReference, CategoryValue reference);
  int DependentVariable() const { return fDependent; }
  bool IsHighReference() const { return fbHighReference; }
  const CategoryValue& ReferenceValue() const { return fReference; }
  int DependentColumn() const { return fDependentColumn; }  // record column

  // Predictors. "Used" ones stand in the model; the full lists stay in force for the records.
  void SetFactors(std::vector<int> factors) { fFactors = std::move(factors); }
  void SetCovariates(std::vector<int> covariates) { fCovariates = std::move(covariates); }
  void SetUsedFactors(std::vector<int> factors) { fUsedFactors = std::move(factors); }
  void SetUsedCovariates(std::vector<int> covariates) { fUsedCovariates = std::move(covariates); }
  const std::vector<int>& Factors() const { return fFactors; }
  const std::vector<int>& Covariates() const { return fCovariates; }
  const std::vector<int>& UsedFactors() const { return fUsedFactors; }
  const std::vector<int>& UsedCovariates() const { return fUsedCovariates; }
  /// Record columns of the factors, in order; filled by NumberColumns.
  const std::vector<int>& FactorColumns() const { return fFactorColumns; }
  const std::vector<int>& CovariateColumns() const { return fCovariateColumns; }
  /// Effects over dictionary indices; copied.
  void SetEffects(std::vector<OrvModelEffect> effects) { fEffects = std::move(effects); }
  const std::vector<OrvModelEffect>& Effects() const { return fEffects; }
  /// The same effects over record columns; filled by NumberColumns.
  const std::vector<OrvModelEffect>& RecordEffects() const { return fRecordEffects; }
  void SetIntercept(bool use) { fbUseIntercept = use; }
  void SetShowIntercept(bool show) { fbShowIntercept = show; }
  bool UsesIntercept() const { return fbUseIntercept; }
  bool ShowsIntercept() const { return fbShowIntercept; }

  // The subpopulation.
  void SetDomain(int variable, CategoryValue value);
  int DomainVariable() const { return fDomain; }
  const CategoryValue& DomainValue() const { return fDomainValue; }

  // Custom tests, one per CUSTOM subcommand, in the order of the command.
  /// Ignored unless there is one label per test; a label may be empty.
  void SetCustomTests(std::vector<OrvCustomTest> tests, std::vector<std::string> labels);
  const std::vector<OrvCustomTest>& CustomTests() const { return fCustomTests; }
  const std::vector<std::string>& CustomTestLabels() const { return fCustomTestLabels; }

  // Odds ratios, one request per ODDSRATIOS subcommand, in the order of the command.
  /// Over dictionary indices. Ignored unless there is one entry of items per request.
  void SetOddsRatios(std::vector<OrvOddsRatioSpec> requests, std::vector<OddsRatioItems> items);
  const std::vector<OrvOddsRatioSpec>& OddsRatios() const { return fOddsRatios; }
  const std::vector<OddsRatioItems>& OddsRatioItemLists() const { return fOddsRatioItems; }
  /// The record form of a request (from 0), over record columns: `factorCodes` and `controlCodes` hold one
  /// code per item, below OrvOddsRatioSpec::kLowest for a covariate's control.
  OrvOddsRatioSpec RecordOddsRatio(std::size_t request, const std::vector<int>& factorCodes,
                                   const std::vector<int>& controlCodes) const;
  /// The value of an item as text, trimmed; empty when the item has none or isn't there.
  std::string FactorItemText(int item, int request) const;
  std::string ControlItemText(int item, int request) const;

  // Criteria. Values out of range are ignored.
  void SetCheckSeparation(int value) { fCheckSeparation = value; }
  void SetConfidenceLevel(double percent);
  void SetDegreesOfFreedom(double df) { fDegreesOfFreedom = df; }
  void SetLogLikConvergence(double value, bool relative);
  void SetMaximumIterations(int value);
  void SetMaximumStepHalving(int value);
  void SetParamConvergence(double value, bool relative);
  void SetSingularity(double value) { fSingularity = value; }
  int CheckSeparation() const { return fCheckSeparation; }
  double ConfidenceLevel() const { return fConfidenceLevel; }  // percent
  double DegreesOfFreedom() const { return fDegreesOfFreedom; }
  double LogLikConvergence() const { return fLogLikConvergence; }
  bool IsLogLikRelative() const { return fbLogLikRelative; }
  int MaximumIterations() const { return fMaximumIterations; }
  int MaximumStepHalving() const { return fMaximumStepHalving; }
  double ParamConvergence() const { return fParamConvergence; }
  bool IsParamRelative() const { return fbParamRelative; }
  double Singularity() const { return fSingularity; }

  // Tests, statistics, printing.
  void SetTestSubcommandUsed(bool used) { fbTestUsed = used; }
  bool IsTestSubcommandUsed() const { return fbTestUsed; }
  void SetTestType(TestType type) { fTestType = type; }
  void SetAdjustment(PAdjustMethod method) { fAdjustment = method; }
  TestType GetTestType() const { return fTestType; }
  PAdjustMethod Adjustment() const { return fAdjustment; }
  bool AddStatistic(Statistic statistic);  // false when it is there already
  bool AddPrintOption(PrintOption option);
  bool Has(Statistic statistic) const;
  bool Has(PrintOption option) const;
  const std::vector<Statistic>& Statistics() const { return fStatistics; }
  const std::vector<PrintOption>& PrintOptions() const { return fPrintOptions; }
  void SetHistoryStep(int step) { fHistoryStep = step; }
  int HistoryStep() const { return fHistoryStep; }

  void SetExcludeMissing(bool exclude) { fbExcludeMissing = exclude; }
  bool ExcludesMissing() const { return fbExcludeMissing; }
  host::UserCaseFileSpec& JointProbFile() { return fJointProbFile; }
  const host::UserCaseFileSpec& JointProbFile() const { return fJointProbFile; }

  // New variables of the active data. An empty name or root: not asked for.
  void SetPredictedProbabilities(std::string root, int maximum);
  const std::string& PredictedProbabilityRoot() const { return fPredictedProbabilityRoot; }
  int MaximumPredictedProbabilities() const { return fMaximumPredictedProbabilities; }
  /// `variable`: the existing variable that it replaces, -1 for a new one.
  void SetPredictedValue(std::string name, int variable);
  const std::string& PredictedValueName() const { return fPredictedValueName; }
  int PredictedValueVariable() const { return fPredictedValueVariable; }
  /// The most variables that saving adds to the active data.
  std::int64_t NewVariableCount() const;

  // Output files; not set or empty: not asked for.
  host::UserCaseFileSpec& CovarianceFile() { return fCovarianceFile; }
  const host::UserCaseFileSpec& CovarianceFile() const { return fCovarianceFile; }
  host::UserCaseFileSpec& CorrelationFile() { return fCorrelationFile; }
  const host::UserCaseFileSpec& CorrelationFile() const { return fCorrelationFile; }
  void SetModelFileName(std::string name) { fModelFileName = std::move(name); }
  const std::string& ModelFileName() const { return fModelFileName; }
  void SetParameterFileName(std::string name) { fParameterFileName = std::move(name); }
  const std::string& ParameterFileName() const { return fParameterFileName; }

  /// A value as text by its format, trimmed when `trim` (numbers always are); empty for no value.
  static std::string ValueText(const CategoryValue& value, bool trim);

 private:
  void GiveOptions(TavoCompSettings& settings) const;

  int fDomain = -1;
  CategoryValue fDomainValue;
  int fDomainColumn = -1;
  int fDependent = -1;
  bool fbHighReference = true;
  CategoryValue fReference;
  int fDependentColumn = -1;
  std::vector<int> fFactors, fUsedFactors, fFactorColumns;
  std::vector<int> fCovariates, fUsedCovariates, fCovariateColumns;
  std::vector<int>
      fRecordPredictors;  // record columns: factors, then covariates; effects of the settings refer to it
  std::vector<OrvModelEffect> fEffects, fRecordEffects;
  std::vector<OrvCustomTest> fCustomTests;
  std::vector<std::string> fCustomTestLabels;
  std::vector<OrvOddsRatioSpec> fOddsRatios;
  std::vector<OddsRatioItems> fOddsRatioItems;
  bool fbUseIntercept = true;
  bool fbShowIntercept = true;
  int fCheckSeparation = 20;
  double fConfidenceLevel = 95.0;
  double fDegreesOfFreedom = -1.0;
  double fLogLikConvergence = 0.0;
  bool fbLogLikRelative = true;
  int fMaximumIterations = 100;
  int fMaximumStepHalving = 5;
  double fParamConvergence = 1e-6;
  bool fbParamRelative = true;
  double fSingularity = 1e-12;
  bool fbTestUsed = false;
  TestType fTestType = TestType::WaldF;
  PAdjustMethod fAdjustment = PAdjustMethod::LeastSignificanceDifference;
  std::vector<Statistic> fStatistics;
  std::vector<PrintOption> fPrintOptions;
  int fHistoryStep = 0;
  bool fbExcludeMissing = true;
  host::UserCaseFileSpec fJointProbFile, fCovarianceFile, fCorrelationFile;
  std::string fPredictedProbabilityRoot;
  int fMaximumPredictedProbabilities = 25;
  std::string fPredictedValueName;
  int fPredictedValueVariable = -1;
  std::string fModelFileName, fParameterFileName;
};

}  // namespace tavo
