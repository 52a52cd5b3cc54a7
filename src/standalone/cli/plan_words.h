// How plans are spoken of.
#pragma once

#include <string>
#include <vector>

#include "module/command/plan/plan_data.h"
#include "module/command/plan/plan_remarks.h"

namespace standalone {

/// The sentence of a status, as a run says it.
std::string StatusSentence(tavo::PlanStatus status, const std::string& detail);
/// The sentence of a remark, as a run says it.
std::string RemarkSentence(const tavo::PlanRemark& remark);
/// A method in words, such as "with replacement".
std::string MethodText(tavo::PlanMethod method);
/// "a, b, c"; a dash for an empty list.
std::string ListText(const std::vector<host::VornVarName>& names);
/// A line with a label and a value; the values stand under each other. Each level of `depth` indents the
/// label by two columns.
std::string LabelledLine(int depth, const std::string& label, const std::string& value);

}  // namespace standalone
