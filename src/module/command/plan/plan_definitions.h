// The descriptions of the format of plan files, which the program carries.
#pragma once

#include <string_view>

namespace tavo {

/// The texts of vorn-tessel-1.0.dtd and vorntessel.xsd. The build makes them from the files, which lie in
/// this folder and are copied beside the program for editors; a run reads neither.
extern const std::string_view kPlanDefinition;
extern const std::string_view kPlanSchema;

}  // namespace tavo
