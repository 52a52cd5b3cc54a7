// What an analysis plan says that no run reads.
#pragma once

#include <string>
#include <vector>

#include "module/command/plan/plan_document.h"

namespace tavo {

/// A part of a plan that changes nothing although its author meant something by it.
struct PlanRemark {
  const char* key = "";                 // of its message
  std::vector<std::string> arguments;   // of the message; the first is the word that it is about
  std::vector<std::string> candidates;  // known words, one of which may have been meant
};

/// Unknown elements and attributes of the root's children and of the analysis section, elements that stand
/// there once too often, attributes without which an element says nothing, and counts that are none or don't
/// fit. In document order, with the place as "name:line:column" behind the element's start tag; at most 20.
/// The sample section and the header, which no run reads, are not looked at.
std::vector<PlanRemark> FindPlanRemarks(const PlanDocument& document);

}  // namespace tavo
