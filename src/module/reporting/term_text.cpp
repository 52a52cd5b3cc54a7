#include "module/reporting/term_text.h"

#include <algorithm>

namespace tavo {

namespace {

constexpr const char* kCross = " * ";

std::string Join(const std::vector<std::string>& texts) {
  std::string joined;
  for (std::size_t i = 0; i < texts.size(); ++i)
    joined += (i == 0 ? "" : kCross) + texts[i];
  return joined;
}

std::string FactorText(const std::vector<FactorTerm>& terms) {
  int top = -1;
  for (const FactorTerm& term : terms)
    top = std::max(top, term.level);
  std::string text;
  for (int level = top; level >= 0; --level) {
    if (level < top) text += "(";
    std::vector<std::string> onLevel;
    for (const FactorTerm& term : terms) {
      if (term.level == level) onLevel.push_back(term.text);
    }
    text += Join(onLevel);
  }
  if (top > 0) text.append(static_cast<std::size_t>(top), ')');
  return text;
}

}  // namespace

std::string TermText(const std::vector<FactorTerm>& factors, const std::vector<std::string>& covariates,
                     bool factorsInParentheses) {
  std::string factorText = FactorText(factors);
  std::string covariateText = Join(covariates);
  if (factorText.empty()) return covariateText;
  if (covariateText.empty()) return factorText;
  return factorsInParentheses ? covariateText + "(" + factorText + ")" : factorText + kCross + covariateText;
}

std::vector<std::string> RepeatedTexts(const std::vector<std::string>& names,
                                       const std::vector<int>& powers) {
  std::vector<std::string> texts;
  for (std::size_t i = 0; i < names.size(); ++i) {
    texts.insert(texts.end(), static_cast<std::size_t>(std::max(powers[i], 0)), names[i]);
  }
  return texts;
}

}  // namespace tavo
