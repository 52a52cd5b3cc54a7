#include "standalone/cli/plan_words.h"

#include "module/command/plan/plan_reader.h"
#include "standalone/output/catalogue.h"
#include "standalone/output/template.h"
#include "standalone/text/ascii.h"
#include "standalone/text/suggestion.h"
#include "standalone/text/terminal_text.h"

namespace standalone {

using tavo::PlanMethod;

std::string StatusSentence(tavo::PlanStatus status, const std::string& detail) {
  return FillMessage(CatalogueText(tavo::OrvPlanMessages::Key(status)), {detail});
}

std::string RemarkSentence(const tavo::PlanRemark& remark) {
  const std::string sentence =
      FillTemplate(CatalogueText(remark.key), {remark.arguments.begin(), remark.arguments.end()});
  const std::string nearest = NearestWord(remark.arguments.front(), remark.candidates);
  if (nearest.empty()) return sentence;
  return sentence + ' ' + FillTemplate(CatalogueText("Did you mean ^1?"), {nearest});
}

std::string MethodText(PlanMethod method) {
  switch (method) {
    case PlanMethod::NO_VALUE:
      break;
    case PlanMethod::WR:
      return "with replacement";
    case PlanMethod::EQUAL_WOR:
      return "without replacement, equal probabilities";
    case PlanMethod::UNEQUAL_WOR:
      return "without replacement, unequal probabilities";
    case PlanMethod::SIMPLE_WOR:
      return "simple random, without replacement";
    case PlanMethod::SIMPLE_WR:
      return "simple random, with replacement";
    case PlanMethod::SIMPLE_SYSTEMATIC:
      return "systematic";
    case PlanMethod::SIMPLE_CHROMY:
      return "sequential (Chromy)";
    case PlanMethod::PPS_WOR:
      return "proportional to size, without replacement";
    case PlanMethod::PPS_WR:
      return "proportional to size, with replacement";
    case PlanMethod::PPS_SYSTEMATIC:
      return "proportional to size, systematic";
    case PlanMethod::PPS_BREWER:
      return "proportional to size (Brewer)";
    case PlanMethod::PPS_MURTHY:
      return "proportional to size (Murthy)";
    case PlanMethod::PPS_SAMPFORD:
      return "proportional to size (Sampford)";
    case PlanMethod::PPS_CHROMY:
      return "proportional to size, sequential (Chromy)";
  }
  return "not given";
}

std::string ListText(const std::vector<host::VornVarName>& names) {
  std::string text;
  for (const host::VornVarName& name : names)
    text += (text.empty() ? "" : ", ") + name.Text();
  return text.empty() ? "-" : text;
}

std::string LabelledLine(int depth, const std::string& label, const std::string& value) {
  constexpr std::size_t kLabelWidth = 28;
  const std::string indent(static_cast<std::size_t>(2 * depth), ' ');
  const std::string line = PadRight(indent + label, kLabelWidth) + ' ' + WithoutControls(value);
  return std::string(WithoutTrailingBlanks(line)) + '\n';
}

}  // namespace standalone
