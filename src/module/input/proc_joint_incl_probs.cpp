#include "module/input/proc_joint_incl_probs.h"

#include <string>
#include <utility>

#include "host/files.h"
#include "host/output.h"

namespace tavo {

OrvProcJointInclProbs::OrvProcJointInclProbs(std::unique_ptr<OrvJProbAdapter> adapter)
    : fpAdapter(std::move(adapter)), fError(fpAdapter == nullptr ? kNoAdapter : kNone) {}

bool OrvProcJointInclProbs::ReadStratum(const std::vector<std::int32_t>& strataKey, Units& units,
                                        std::vector<double>& matrix) {
  if (fpAdapter == nullptr) {
    units.clear();
    matrix.clear();
    return false;
  }
  if (fpAdapter->ReadStratum(strataKey, units, matrix)) return true;
  fError = kStratumNotRead;
  return false;
}

// A file with a fault would make every stratum fail, but only after the whole fit.
std::unique_ptr<OrvProcJointInclProbs> ReadJointInclProbs(OrvInputAdapter& adapter,
                                                          const TavoValidSpecs& specs,
                                                          const host::VORN_DataSource& active) {
  std::string error;
  const auto file = host::UserInputCaseFile::Open(specs.JointProbFile(), error);
  if (file == nullptr) {
    host::BpError(host::Plain(error), host::BpErrorLevel::kError);
    return nullptr;
  }
  auto read =
      std::make_unique<OrvJProbAdapter>(adapter, specs, active, file->DataSource(), !specs.ExcludesMissing());
  if (read->GetError() != OrvJProbAdapter::kNone) return nullptr;
  return std::make_unique<OrvProcJointInclProbs>(std::move(read));
}

}  // namespace tavo
