// The fixed sequence of passes and stages of one run.
#pragma once

#include <memory>
#include <vector>

#include "component/design/joint_incl_probs.h"
#include "component/estimation/model.h"
#include "component/estimation/optimizer.h"
#include "component/frame/orv_cancel_info.h"
#include "component/frame/orv_status.h"
#include "component/inference/inference.h"
#include "component/input/comp_settings.h"
#include "component/input/record_extractor.h"
#include "component/input/record_iterator.h"
#include "component/run/data_tabulator.h"
#include "component/tabulation/factor_tables.h"

namespace tavo {

class TavoPatternTabulator;

/// Owns all working objects of a run. Each stage starts only when the status is no error and nobody
/// cancelled. Pattern data is released before the design pass starts, so the two large tables never stand in
/// memory together.
class TavoAlgorithm {
 public:
  /// `settings` are not owned.
  explicit TavoAlgorithm(const TavoCompSettings& settings);
  ~TavoAlgorithm();

  /// First pass: fills the factor tables. kDataProcessedTwice; kUserError when an effect names a column that
  /// is no predictor of the settings; otherwise the errors of ForEachValidRecord.
  OrvStatus ProcessData(MCCommon::RecordIterator& iterator);
  /// The whole run, ProcessData included. `joint` (not owned): the joint inclusion probabilities, which a
  /// first stage with unequal probabilities without replacement needs (kUserError without them) and no other
  /// design reads. kModelBuiltTwice; kTooManyParameters when memory runs out. The result is an error, or the
  /// last warning, or OK.
  OrvStatus BuildModel(MCCommon::MultiPassRecordIter& iterator, MCOrv::JointInclProbs* joint = nullptr);
  /// Scores one record: categories (reference last), their probabilities, and the predicted category code.
  /// Code 0 and missing probabilities for a record that lacks a covariate of the model or has a level
  /// combination that the estimation data didn't have, and with kOutsideSubpopulation outside it.
  /// kModelNotBuilt, kShortRecord, kCancelled.
  OrvStatus Predict(const MCCommon::Record& record, std::vector<int>& categories,
                    std::vector<double>& probabilities, int& category);

  bool IsModelBuilt() const { return fbModelBuilt; }
  const TavoCompSettings& Settings() const { return fSettings; }
  const OrvFactorTables& FactorTables() const { return fFactorTables; }
  const std::vector<double>& MeanValues() const { return fMeanValues; }
  const TavoModel& Model() const { return fModel; }
  /// Null until the fit.
  const TavoOptimizer* Optimizer() const { return fpOptimizer.get(); }
  /// Null until the variance stage, or when the model has no parameters.
  const TavoInference* Inference() const { return fpInference.get(); }
  int StrataCount() const { return fNStrata; }
  int ClusterCount() const { return fNClusters; }
  const std::vector<OrvStatus>& StatusList() const { return fStatusList; }
  /// The stage (from 1) and the key values behind kInconsistentDesignValue, kMissingInclusionProb and
  /// kPopulationBelowSample; false for other codes.
  bool WarningDetail(const OrvStatus& status, int& stage, std::vector<int>& keyValues) const;

 private:
  bool MayGoOn() const { return !fStatus.IsError() && !fCancel.IsCancelled(); }
  void Merge(const OrvStatus& status);
  void RunStages(MCCommon::MultiPassRecordIter& iterator, MCOrv::JointInclProbs* joint);
  bool SetUpEffects();
  void SetUpModel();
  void ReduceToPatterns(MCCommon::MultiPassRecordIter& iterator);
  void Estimate();
  void ComputeVariances(MCCommon::MultiPassRecordIter& iterator, MCOrv::JointInclProbs* joint);
  OrvStatus FeedDesign(MCCommon::MultiPassRecordIter& iterator, SampleDesign& design,
                       MCOrv::JointInclProbs* joint);
  void ComputeCovariances(const SampleDesign& design);
  void TakeFindings(const TavoDataTabulator& tabulator);
  bool ConstantDetail(int constantVariable, int& stage, std::vector<int>& keyValues) const;
  bool PopulationDetail(int node, int& stage, std::vector<int>& keyValues) const;
  bool LacksCovariate(const MCCommon::Record& record) const;

  const TavoCompSettings& fSettings;
  std::vector<int> fUsedCovariates;  // columns that any effect uses
  OrvRecordExtractor fPatternExtractor;
  OrvRecordExtractor fDataExtractor;
  OrvFactorTables fFactorTables;
  std::unique_ptr<TavoPatternTabulator> fpPatternTabulator;
  int fNStrata = 0;
  int fNClusters = 0;
  std::vector<double> fMeanValues;
  OrvCancelInfo fCancel;
  TavoModel fModel;
  // Of the non-redundant parameters, on the scale of the fit; shared with the optimizer.
  std::vector<double> fEstimates;
  std::unique_ptr<TavoOptimizer> fpOptimizer;
  std::unique_ptr<TavoInference> fpInference;
  std::vector<double> fScoringRow;  // work
  bool fbFactorTableFilled = false;
  bool fbModelBuilt = false;
  OrvStatus fStatus;
  std::vector<DesignFinding> fConstFindings;
  std::vector<OrvKey> fPopulationKeys;
  std::vector<OrvStatus> fStatusList;
};

}  // namespace tavo
