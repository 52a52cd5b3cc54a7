// The sections of a model document, as the exporter puts them together.
#pragma once

#include <string>
#include <vector>

#include "component/frame/orv_cancel_info.h"
#include "component/numerics/sym_matrix.h"
#include "module/saved/pmml_metadata.h"
#include "module/saved/pmml_model.h"
#include "module/saved/xml_element.h"

namespace tavo {

/// What all sections see of a model that has passed the checks. Built once per document; what it refers to is
/// not owned.
struct PMMLSource {
  const OrvPMMLMetadata& metadata;
  const OrvPMMLModel& model;
  const OrvCancelInfo& cancel;
  const std::vector<int>& targets;
  int reference;
  std::vector<int> usedFactors;     // those that stand in an effect
  std::vector<int> usedCovariates;  // the same
  std::vector<std::string> names;   // of the parameters of one target

  const OrvPMMLVariable& Variable(int index) const { return *metadata.Find(index); }
  const std::string& Category(int variable, int code) const {
    return Variable(variable).categoryValues[static_cast<std::size_t>(code - 1)];
  }
  /// The value of a target by its place in the list.
  const std::string& TargetValue(std::size_t target) const {
    return Category(model.dependent, targets[target]);
  }
  /// Targets that have parameters of their own: all but the reference.
  std::size_t EquationCount() const { return targets.empty() ? 0 : targets.size() - 1; }
};

/// Fills the used lists and the parameter names.
PMMLSource MakePMMLSource(const OrvPMMLMetadata& metadata, const OrvPMMLModel& model,
                          const OrvCancelInfo& cancel, const std::vector<int>& targets, int reference);

/// Who wrote an extension.
inline constexpr const char* kPMMLExtender = "tavoreg";

/// "P" and the number, from 1, with zeros to at least seven digits.
std::string PMMLParameterName(std::size_t number);

// Each appends its element to the parent.
void AddExtension(MCCommonXML::XMLElement& parent, const char* name, const std::string& value);
void AddHeader(MCCommonXML::XMLElement& parent, const OrvPMMLMetadata& metadata);
void AddDataDictionary(MCCommonXML::XMLElement& parent, const PMMLSource& source,
                       const std::vector<std::vector<double>>& categoryCounts);
void AddMiningSchema(MCCommonXML::XMLElement& parent, const PMMLSource& source);
/// The predicted category and the probability of each, for who scores with a multinomial model.
void AddOutput(MCCommonXML::XMLElement& parent, const PMMLSource& source);
void AddParameterList(MCCommonXML::XMLElement& parent, const PMMLSource& source);
/// Those of both lists that have something in them.
void AddPredictorLists(MCCommonXML::XMLElement& parent, const PMMLSource& source);
void AddPPMatrix(MCCommonXML::XMLElement& parent, const PMMLSource& source);
void AddPCovMatrix(MCCommonXML::XMLElement& parent, const PMMLSource& source,
                   const MCCommonMath::MCSymMatrix& covariance);
void AddParamMatrix(MCCommonXML::XMLElement& parent, const PMMLSource& source);
/// Events and baseline hazards of a Cox model.
void AddEventValues(MCCommonXML::XMLElement& parent, const OrvPMMLEvents& events);
void AddBaselineHazards(MCCommonXML::XMLElement& parent, const OrvPMMLCox& cox);

}  // namespace tavo
