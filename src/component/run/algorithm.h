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
  /// `settings` are lent.
  explicit TavoAlgorithm(const TavoCompSettings& settings);
  ~TavoAlgorithm();

  /// First pass: fills the factor tables. 95003 when called twice.
  OrvStatus ProcessData(MCCommon::RecordIterator& iterator);
  /// The whole run, ProcessData included. `joint` (lent): the joint inclusion probabilities, which a first
  /// stage with unequal probabilities without replacement needs (91000 without them) and no other design
  /// reads. 95005 when called twice; 95045 when memory runs out. The result is an error, or the last warning,
  /// or OK.
  OrvStatus BuildModel(MCCommon::MultiPassRecordIter& iterator, MCOrv::JointInclProbs* joint = nullptr);
  /// Scores one record: categories (reference last), their probabilities, and the predicted category code.
  /// Code 0 and missing probabilities for a record that lacks a covariate of the model or has a level
  /// combination that the estimation data didn't have, and with 95037 outside the subpopulation. 95006 before
  /// the model is built, 91004 for a short record, 1.
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
  /// The stage and the key values behind 91005, 91008 and 91009; false for other codes.
  bool WarningDetail(const OrvStatus& status, int& stage, std::vector<int>& keyValues) const;

 private:
  bool MayGoOn() const { return !fStatus.IsError() && !fCancel.IsCancelled(); }
  void Merge(const OrvStatus& status);
  void RunStages(MCCommon::MultiPassRecordIter& iterator, MCOrv::JointInclProbs* joint);
  void SetUpExtractors();
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
  std::vector<double> fEstimates;  // of the kept parameters, on the internal scale; shared with the optimizer
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
