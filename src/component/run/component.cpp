// Invalid settings leave no algorithm: each call then answers with the error that validation found.
#include "component/run/component.h"

#include "component/run/algorithm.h"
#include "component/run/output_stats.h"

namespace tavo {

TavoComponent::TavoComponent(const TavoCompSettings& settings)
    : fCompSettings(settings), fStatus(fCompSettings.Validate()) {
  if (!fStatus.IsError()) fpAlgorithm = std::make_unique<TavoAlgorithm>(fCompSettings);
}

TavoComponent::~TavoComponent() = default;

OrvStatus TavoComponent::BuildModel(MCCommon::MultiPassRecordIter& iterator, MCOrv::JointInclProbs* joint) {
  if (fStatus.IsError()) return fStatus;
  if (fpAlgorithm->IsModelBuilt()) return OrvStatus::Error(StatusCode::kModelBuiltTwice);
  const OrvStatus result = fpAlgorithm->BuildModel(iterator, joint);
  if (!result.IsOK()) fStatus = result;
  return result;
}

bool TavoComponent::IsModelBuilt() const {
  return !fStatus.IsError() && fpAlgorithm->IsModelBuilt();
}

std::vector<OrvStatus> TavoComponent::WarningList() const {
  return fpAlgorithm == nullptr ? std::vector<OrvStatus>() : fpAlgorithm->StatusList();
}

bool TavoComponent::WarningDetail(const OrvStatus& status, int& stage, std::vector<int>& keyValues) const {
  return fpAlgorithm != nullptr && fpAlgorithm->WarningDetail(status, stage, keyValues);
}

OrvStatus TavoComponent::OutputStatistics(const TavoOutputStats*& statistics) {
  statistics = nullptr;
  if (fStatus.IsError()) return fStatus;
  if (!IsModelBuilt()) return OrvStatus::Error(StatusCode::kModelNotBuilt);
  if (fpOutputStats == nullptr) fpOutputStats = std::make_unique<TavoOutputStats>(*fpAlgorithm);
  statistics = fpOutputStats.get();
  return OrvStatus();
}

OrvStatus TavoComponent::Predict(const MCCommon::Record& record, std::vector<int>& categories,
                                 std::vector<double>& probabilities, int& category) {
  category = 0;
  if (fStatus.IsError()) return fStatus;
  return fpAlgorithm->Predict(record, categories, probabilities, category);
}

std::string TavoComponent::StatusText() const {
  const std::string start = "Orv Logistic status: ";
  if (fStatus.IsOK()) return start + "OK";
  return start + (fStatus.IsError() ? "Error " : "Warning ") + std::string(StatusCodeText(fStatus.Code()));
}

}  // namespace tavo
