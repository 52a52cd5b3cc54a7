// The door of the statistical core.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "component/design/joint_incl_probs.h"
#include "component/frame/orv_status.h"
#include "component/input/comp_settings.h"
#include "component/input/record_iterator.h"

namespace tavo {

class TavoAlgorithm;
class TavoOutputStats;

/// Takes settings and a stream of records, and answers with a fitted model and its design-based statistics.
/// Knows nothing of a host. See examples/component_only.cpp for a whole use.
class TavoComponent {
 public:
  /// Copies and validates the settings; predictor lists to which their effects refer are not owned.
  explicit TavoComponent(const TavoCompSettings& settings);
  ~TavoComponent();

  /// Runs all stages. Once only: a second call answers kModelBuiltTwice and changes nothing. `joint` (not
  /// owned): the joint inclusion probabilities of a first stage with unequal probabilities without
  /// replacement.
  OrvStatus BuildModel(MCCommon::MultiPassRecordIter& iterator, MCOrv::JointInclProbs* joint = nullptr);

  const OrvStatus& Status() const { return fStatus; }
  bool IsModelBuilt() const;
  /// Warnings in order of arrival, none twice.
  std::vector<OrvStatus> WarningList() const;
  /// The stage (from 1) and the codes of the stratum or unit behind a design status; false for other codes.
  bool WarningDetail(const OrvStatus& status, int& stage, std::vector<int>& keyValues) const;
  /// The results, which the component owns; kModelNotBuilt and null before the model is built.
  OrvStatus OutputStatistics(const TavoOutputStats*& statistics);
  /// Scores one record; see TavoAlgorithm::Predict.
  OrvStatus Predict(const MCCommon::Record& record, std::vector<int>& categories,
                    std::vector<double>& probabilities, int& category);
  const TavoCompSettings& Settings() const { return fCompSettings; }
  /// A one-line diagnostic text of the state.
  std::string StatusText() const;

 private:
  TavoCompSettings fCompSettings;
  std::unique_ptr<TavoAlgorithm> fpAlgorithm;  // null when validation failed
  std::unique_ptr<TavoOutputStats> fpOutputStats;
  OrvStatus fStatus;
};

}  // namespace tavo
