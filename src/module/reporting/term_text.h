// How the factors and covariates of an effect, or of a parameter, are put together into one text.
#pragma once

#include <string>
#include <vector>

namespace tavo {

/// One factor of a term: how it is written, such as "A" or "[A=1]", and its nesting level (0 innermost).
struct FactorTerm {
  std::string text;
  int level;
};

/// Factors from the outermost level inwards, each deeper level in parentheses, as in A(B(C)); then
/// covariates: "A * x", or "x(A)" with `factorsInParentheses`.
std::string TermText(const std::vector<FactorTerm>& factors, const std::vector<std::string>& covariates,
                     bool factorsInParentheses);

/// Each name as often as its power says.
std::vector<std::string> RepeatedTexts(const std::vector<std::string>& names, const std::vector<int>& powers);

}  // namespace tavo
