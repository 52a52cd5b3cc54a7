// A plan file as it was read, before it is checked against data.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "host/command.h"
#include "host/data.h"

namespace tavo {

enum class PlanMode : int { NO_MODE = 0, SAMPLE_MODE = 1, ANALYSIS_MODE = 2, VIEW_MODE = 3 };

enum class PlanMethod : int {
  NO_VALUE = 0,
  SIMPLE_WOR = 1,
  SIMPLE_WR = 2,
  SIMPLE_SYSTEMATIC = 3,
  SIMPLE_CHROMY = 4,
  PPS_WOR = 5,
  PPS_WR = 6,
  PPS_SYSTEMATIC = 7,
  PPS_BREWER = 8,
  PPS_MURTHY = 9,
  PPS_SAMPFORD = 10,
  PPS_CHROMY = 11,
  EQUAL_WOR = 12,
  UNEQUAL_WOR = 13,
  WR = 15
};

enum class PlanValueWay : int { NOT_GIVEN = 0, BY_VALUE = 1, BY_VARNAME = 2, BY_VARCATLIST = 3 };
enum class PlanValueKind : int { kNone = 0, SIZE = 1, RATE = 2, POPSIZE = 3, INCLPROB = 4 };
enum class PlanSRSEstimator : int { WR = 15, WOR = 16 };
enum class PlanEstimation : int { DEFAULT = 14, WR = 15 };
enum class PlanPrintOption : int { PRINT_PLAN = 0, PRINT_MATRIX = 1, PRINT_BOTH = 2 };

/// One stage of either section. What follows `valueMatrix` belongs to the sample section.
struct OrvPlanStage {
  int stageNumber = 0;
  std::string label;
  std::vector<host::VornVarName> strata;
  std::vector<host::VornVarName> clusters;
  PlanMethod method = PlanMethod::NO_VALUE;  // of estimation or of selection
  PlanValueKind valueKind = PlanValueKind::kNone;
  PlanValueWay valueWay = PlanValueWay::NOT_GIVEN;
  double value = 0;
  host::VornVarName valueVariable;
  host::VarCatList valueMatrix;
  double minSize = 0;  // bounds of the sample sizes that follow from a rate; 0: none
  double maxSize = 0;
  // Variables that the selection writes.
  host::VornVarName inclusionProbVariable;
  host::VornVarName cumulativeWeightVariable;
  host::VornVarName indexVariable;
  host::VornVarName populationSizeVariable;
  host::VornVarName sampleSizeVariable;
  host::VornVarName sampleRateVariable;
  host::VornVarName weightVariable;
  std::set<std::string> stageVariables;  // upper case names of the stage's cluster variables
};

/// What one section of a plan file says; the mode tells which. Names keep their spelling; names in sets are
/// in upper case.
struct OrvPlanData {
  PlanMode mode = PlanMode::NO_MODE;
  std::string file;
  host::VornVarName weight;          // of the analysis, or of the sample as a whole
  host::VornVarName previousWeight;  // of an earlier selection from which this one was drawn
  PlanSRSEstimator srsEstimator = PlanSRSEstimator::WOR;
  PlanPrintOption printOption = PlanPrintOption::PRINT_PLAN;
  host::VornVarName mosVariable;  // measure of size
  bool mosFromData = false;       // the size of a unit is its number of cases
  double mosMinimum = 0;
  double mosMaximum = 0;
  PlanEstimation estimation = PlanEstimation::DEFAULT;
  std::set<std::string> planVariables;    // every variable named anywhere in the plan
  std::set<std::string> designVariables;  // strata and cluster variables
  std::vector<OrvPlanStage> stages;
};

/// What came of reading a plan. Values are stable.
enum class PlanStatus : int {
  kOK = 0,
  kInvalidFile = 1,
  kInvalidName = 2,
  kRepeatedVariable = 3,
  kIllegalEstimation = 4,
  kPopulationSizeIncorrect = 5,
  kInclusionProbIncorrect = 6,
  kClustersRequired = 7,
  kMatrixVariableInvalid = 8,
  kMatrixCategoriesMismatch = 9,
  kTooManyStages = 10,
  kNoAnalysisDesign = 11,
  kSampleSizeNotPositive = 12,
  kSampleRateNotPositive = 13,
  kNoSampleDesign = 14,
  kIllegalSelection = 15,
  kNoSampleSizeOrRate = 16,
  kNoMOS = 17,
  kNoMOSSource = 18,
  kMinAboveMax = 19,
  kMinMaxNotPositive = 20,
  kClusterMissingInLastStage = 21,
  kRepeatedInSampleDesign = 22,
  kNoPlanSpecifications = 23,
  kIllegalSRSEstimator = 24
};

}  // namespace tavo
