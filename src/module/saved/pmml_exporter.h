// A fitted model as a PMML 4.3 document.
#pragma once

#include <iosfwd>
#include <memory>
#include <vector>

#include "component/frame/orv_cancel_info.h"
#include "component/frame/orv_status.h"
#include "component/numerics/sym_matrix.h"
#include "module/saved/pmml_metadata.h"
#include "module/saved/pmml_model.h"
#include "module/saved/xml_element.h"

namespace tavo {

/// The codes that only the export raises. Integer 0 is the dictionary index of the variable, where there is
/// one.
namespace PMMLStatusCode {
inline constexpr std::uint32_t kBadSubpopulation = 95011;  // not categorical with exactly one category
inline constexpr std::uint32_t kSizesDiffer = 95012;       // of lists or matrices that belong together
inline constexpr std::uint32_t kUnknownVariable = 95013;   // not in the metadata
inline constexpr std::uint32_t kBadFactor = 95014;  // not categorical, no categories, or a level out of range
inline constexpr std::uint32_t kBadDependent = 95015;  // not categorical, or a target that is no category
}  // namespace PMMLStatusCode

/// Writes a GeneralRegressionModel. Calling order: SetTargets (models with a categorical dependent),
/// CheckConsistency, Write.
class OrvPMMLExporter {
 public:
  /// Nothing is owned. The status is kNoDependent without a dependent and kUserError when the lists of the
  /// model don't agree.
  OrvPMMLExporter(const OrvPMMLMetadata& metadata, const OrvPMMLModel& model, const OrvCancelInfo& cancel);

  /// One-based positions in the dependent's category list, the reference last. A reference below 0: that last
  /// one.
  void SetTargets(std::vector<int> categories, int reference);
  /// Checks the model against the metadata and the targets: one of PMMLStatusCode, or kCancelled.
  const OrvStatus& CheckConsistency();
  bool IsConsistencyChecked() const { return fbConsistencyChecked; }
  /// `categoryCounts`: per factor of the model, in order, the weight of each category; one without weight is
  /// left out. `covariance`, or null: of the estimates. The stream gets nothing unless the whole tree could
  /// be built. A stream that fails is the caller's to see.
  const OrvStatus& Write(std::ostream& out, const std::vector<std::vector<double>>& categoryCounts,
                         const MCCommonMath::MCSymMatrix* covariance);
  const OrvStatus& Status() const { return fStatus; }

 private:
  bool Fail(std::uint32_t code, int index = -1);
  bool CheckFactors();
  bool CheckCovariates();
  bool CheckDependent();
  bool CheckSubpopulation();
  bool CheckCox();
  bool CheckParameters();
  bool CheckEstimates();
  bool IsKnown(int variable);
  bool Fits(const MCCommonMath::MCSymMatrix& covariance) const;
  std::unique_ptr<MCCommonXML::XMLElement> BuildTree(const std::vector<std::vector<double>>& categoryCounts,
                                                     const MCCommonMath::MCSymMatrix* covariance) const;

  const OrvPMMLMetadata& fMetadata;
  const OrvPMMLModel& fModel;
  const OrvCancelInfo& fCancel;
  std::vector<int> fTargets;
  int fReference = -1;
  OrvStatus fStatus;
  bool fbConsistencyChecked = false;
};

}  // namespace tavo
