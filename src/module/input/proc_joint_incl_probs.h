// Joint inclusion probabilities for the component, from the file that the command names.
#pragma once

#include <memory>

#include "component/design/joint_incl_probs.h"
#include "module/command/valid_specs.h"
#include "module/input/jprob_adapter.h"

namespace tavo {

/// Hands the strata of a read file to the design pass.
class OrvProcJointInclProbs final : public MCOrv::JointInclProbs {
 public:
  enum Error : int { kNone = 0, kStratumNotRead = 2, kNoAdapter = 4 };

  explicit OrvProcJointInclProbs(std::unique_ptr<OrvJProbAdapter> adapter);
  bool ReadStratum(const std::vector<std::int32_t>& strataKey, Units& units,
                   std::vector<double>& matrix) override;
  int GetError() const override { return fError; }

 private:
  std::unique_ptr<OrvJProbAdapter> fpAdapter;
  Error fError;
};

/// Opens and reads the file of joint inclusion probabilities that the validated specs name. Null when that
/// fails; the user has been told then.
std::unique_ptr<OrvProcJointInclProbs> ReadJointInclProbs(OrvInputAdapter& adapter,
                                                          const TavoValidSpecs& specs,
                                                          const host::VORN_DataSource& active);

}  // namespace tavo
