// What the component is told of a run.
#pragma once

#include <memory>
#include <vector>

#include "component/frame/orv_status.h"
#include "component/input/design_stage.h"
#include "component/input/model_effect.h"
#include "host/stop.h"
#include "host/threads.h"

namespace tavo {

class ProgressListener;

/// What a record column holds. Roles from kWeight up mark analysis columns. Those from kTwoValued on belong
/// to the record validator's contract and are set by no setter here.
enum class VariableRole : int {
  kNone = 0,
  kDesignCategory = 1,  // strata, clusters, subpopulation
  kInclusionProbability = 2,
  kPopulationSize = 3,
  kWeight = 4,
  kFactor = 6,
  kCovariate = 7,
  kDependent = 8,
  kTwoValued = 9,
  kCategory = 10,
  kWholeNumber = 11,
  kStartTime = 12
};

enum class SRSEstimator : int { kWithReplacement = 0, kWithoutReplacement = 1 };
enum class DesignVariableKind : int { kStrata = 0, kCluster = 1 };
enum class TestType : int { WaldF = 0, AdjustedWaldF = 1, WaldChiSquare = 2, AdjustedWaldChiSquare = 3 };
enum class PAdjustMethod : int {
  LeastSignificanceDifference = 0,
  Bonferroni = 1,
  SequentialBonferroni = 2,
  Sidak = 3,
  SequentialSidak = 4
};

/// The sample design in record columns. A setter that is given something impossible (a column that has
/// another role, a value out of range) changes nothing and returns false.
class OrvPlanCompSettings {
 public:
  bool AddDesignCategorical(int column, DesignVariableKind kind, int stageNumber);
  /// `type` is kInclProbVariable or kPopSizeVariable (a matrix fills its column the same way).
  bool AddDesignContinuous(int column, InclProbType type, int stageNumber);
  /// `type` is kInclProbValue, value in (0, 1], or kPopSizeValue, a whole number of at least 1.
  bool SetDesignConstant(double value, InclProbType type, int stageNumber);
  bool SetStageEstimator(StageEstimator estimator, int stageNumber);
  bool SetWeightVar(int column);
  void SetSRSEstimator(SRSEstimator estimator) { fSRSEstimator = estimator; }
  /// `service` makes the thread pool; not owned, null means one thread.
  void SetThreads(int count, host::TaskThreadService* service);
  /// Not owned; null: the run can't be stopped from outside.
  void SetStopProcessor(host::MCStopProcessor* processor) { fpStopProcessor = processor; }

  const std::vector<DesignStage>& Stages() const { return fStages; }  // by stage number
  int StageCount() const { return static_cast<int>(fStages.size()); }
  /// Strata then clusters, stage by stage: the columns of a design key.
  const std::vector<int>& CatDesignVars() const { return fCatDesignVars; }
  const std::vector<int>& ContDesignVars() const { return fContDesignVars; }  // in stage order
  int WeightVar() const { return fWeightVar; }
  SRSEstimator GetSRSEstimator() const { return fSRSEstimator; }
  const std::vector<VariableRole>& VariableTypes() const { return fVariableType; }  // by column
  int Threads() const { return fNThreads; }
  host::TaskThreadService* ThreadService() const { return fpThreadService; }
  host::MCStopProcessor* StopProcessor() const { return fpStopProcessor; }

  bool HasClustersInLastStage() const;
  bool IsSingleStageOfEqualProbability() const;
  bool IsFirstStageUnequalProbability() const;
  InclProbType InclusionTypeOfStage(int stageNumber) const;  // kNone for an unknown stage
  /// For each constant design variable (ContDesignVars order): its stage number, and how many leading columns
  /// of the design key tell the stratum in which it is constant: strata and clusters of earlier stages,
  /// strata of its own. False when there is none.
  bool ConstantVariableMap(std::vector<int>& stages, std::vector<int>& positions) const;

 protected:
  /// Checks the stages and the weight; the first fault found: kNoStage, kFirstStageNotOne,
  /// kStageNumbersBroken, kNoWeight, kStageWithoutClusters, kStageWithoutEstimator, kUnequalWorNotFirst,
  /// kEqualWorWithoutProb, kInclusionRateOutOfRange or kPopulationSizeNotWhole.
  OrvStatus CheckPlan() const;
  VariableRole RoleOf(int column) const;
  void SetRole(int column, VariableRole role);
  bool IsFree(int column) const { return column >= 0 && RoleOf(column) == VariableRole::kNone; }

 private:
  DesignStage& FindOrCreateStage(int stageNumber);
  void RebuildDesignVars();

  std::vector<DesignStage> fStages;
  std::vector<int> fCatDesignVars;
  std::vector<int> fContDesignVars;
  int fWeightVar = -1;
  SRSEstimator fSRSEstimator = SRSEstimator::kWithoutReplacement;
  std::vector<VariableRole> fVariableType;
  int fNThreads = 1;
  host::TaskThreadService* fpThreadService = nullptr;
  host::MCStopProcessor* fpStopProcessor = nullptr;
};

/// The whole of the settings. Copied by value into the component; pointers stay shared. Effects refer to
/// predictor lists of their maker, which must outlive the component.
class TavoCompSettings : public OrvPlanCompSettings {
 public:
  /// The plan check, then kNoDependent without a dependent variable, kEmptyModel without intercept and
  /// effects.
  OrvStatus Validate() const;

  void SetIntercept(bool use) { fbIntercept = use; }
  bool HasIntercept() const { return fbIntercept; }

  /// `reference`: 0 highest category in use, -1 lowest, otherwise that code. Refused when one is already set.
  bool SetDependent(int column, int categories, int reference);
  bool SetSubpop(int column, int code);
  int AddFactor(int column, int categories);  // position, or -1
  int AddCovariate(int column);               // position, or -1
  bool AddEffect(const OrvModelEffect& effect);
  void SetConfidence(double p);  // in [0, 1), otherwise ignored
  void SetDegreesOfFreedom(double df) { fDegreesOfFreedom = df; }
  void SetTestType(TestType type) { fTestType = type; }
  void SetAdjustment(PAdjustMethod method) { fAdjustment = method; }
  void SetTolerance(double tolerance) { fTolerance = tolerance; }
  void SetNeedSRS(bool need) { fbNeedSRS = need; }
  void SetLogLikAbsolute(bool absolute) { fbLogLikAbsolute = absolute; }
  void SetParamAbsolute(bool absolute) { fbParamAbsolute = absolute; }
  void SetProgressListener(ProgressListener* listener) { fpProgressListener = listener; }
  bool SetLogLikCriterion(double value);
  bool SetParamCriterion(double value);
  bool SetMaxIterations(int value);
  bool SetStartingIteration(int value);  // separation is checked from this iteration on; 0: never
  bool SetMaxStepHalving(int value);
  bool SetHistoryFrequency(int value);

  int SubpopVar() const { return fSubpopVar; }
  int SubpopValue() const { return fSubpopValue; }
  int Dependent() const { return fDependent; }
  int DependentCategories() const { return fDependentCategories; }
  int DependentReference() const { return fDependentReference; }
  const std::vector<int>& Factors() const { return fFactors; }
  const std::vector<int>& FactorSizes() const { return fFactorSizes; }
  const std::vector<int>& Covariates() const { return fCovariates; }
  const std::vector<OrvModelEffect>& Effects() const { return fEffects; }
  double Tolerance() const { return fTolerance; }
  double Confidence() const { return fConfidence; }
  /// The degrees of freedom of all tests and intervals: those set when above 0, otherwise first-stage units
  /// minus strata (Korn and Graubard 1990). The one place of this rule.
  double DegreesOfFreedom(int units, int strata) const;
  TestType GetTestType() const { return fTestType; }
  PAdjustMethod Adjustment() const { return fAdjustment; }
  ProgressListener* GetProgressListener() const { return fpProgressListener; }
  double LogLikCriterion() const { return fLogLikCriterion; }
  double ParamCriterion() const { return fParamCriterion; }
  int MaxIterations() const { return fMaxIterations; }
  int MaxStepHalving() const { return fMaxStepHalving; }
  int StartingIteration() const { return fStartingIteration; }
  bool IsLogLikAbsolute() const { return fbLogLikAbsolute; }
  bool IsParamAbsolute() const { return fbParamAbsolute; }
  int HistoryFrequency() const { return fHistoryFrequency; }
  bool NeedsSRS() const { return fbNeedSRS; }

 private:
  int fSubpopVar = -1;
  int fSubpopValue = 0;
  int fDependent = -1;
  int fDependentCategories = 2;
  int fDependentReference = 0;
  std::vector<int> fFactors;
  std::vector<int> fFactorSizes;
  std::vector<int> fCovariates;
  bool fbIntercept = true;
  double fTolerance = 1e-12;
  std::vector<OrvModelEffect> fEffects;
  double fConfidence = 0.95;
  double fDegreesOfFreedom = -1.0;  // not above 0: the design's
  TestType fTestType = TestType::WaldF;
  PAdjustMethod fAdjustment = PAdjustMethod::LeastSignificanceDifference;
  ProgressListener* fpProgressListener = nullptr;
  double fLogLikCriterion = 0.0;
  double fParamCriterion = 1e-6;
  int fMaxIterations = 100;
  int fMaxStepHalving = 5;
  int fStartingIteration = 20;
  bool fbLogLikAbsolute = false;
  bool fbParamAbsolute = false;
  int fHistoryFrequency = 1;
  bool fbNeedSRS = true;
};

}  // namespace tavo
