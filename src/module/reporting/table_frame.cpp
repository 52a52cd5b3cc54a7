#include "module/reporting/table_frame.h"

#include <algorithm>
#include <cassert>

namespace tavo {

namespace {

constexpr std::size_t kLongestString = 255;

/// The parameters of one equation; all equations have the same.
std::vector<OrvRegrParameter> FirstEquation(const TavoOutputStats* stats) {
  if (stats == nullptr || stats->DependentCategories().size() < 2) return {};
  const std::size_t perEquation = stats->Parameters().size() / (stats->DependentCategories().size() - 1);
  return {stats->Parameters().begin(),
          stats->Parameters().begin() + static_cast<std::ptrdiff_t>(perEquation)};
}

/// A cut at most at `end` that doesn't split a UTF-8 character.
std::size_t CharacterEnd(const std::string& text, std::size_t end) {
  while (end > 0 && end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U)
    --end;
  return end;
}

}  // namespace

TavoOutputFrame::TavoOutputFrame(host::BpHeading& heading, const FinishedRun& run)
    : fHeading(heading),
      fRun(run),
      fCategories(run.source, run.adapter),
      fNames(run.specs, run.source, fCategories, FirstEquation(run.stats)) {}

int TavoOutputFrame::EquationCount() const {
  return Stats() == nullptr ? 0 : static_cast<int>(Stats()->DependentCategories().size()) - 1;
}

host::BpVariable TavoOutputFrame::Variable(int variable) const {
  return {Source().GetVariable(static_cast<unsigned>(variable)), host::BpShow::kDefault};
}

host::BpDataValue TavoOutputFrame::Value(int variable, int code) const {
  return fCategories.Shown(variable, code);
}

host::BpDataValue TavoOutputFrame::DependentValue(int localIndex) const {
  assert(Stats() != nullptr);
  return Value(Specs().DependentVariable(),
               Stats()->DependentCategories()[static_cast<std::size_t>(localIndex)]);
}

host::BpComposite TavoOutputFrame::SubpopComposite() const {
  assert(HasSubpopulation());
  host::BpComposite text("Subpopulation ^1 = ^2");
  text.Add(Variable(Specs().DomainVariable()));
  text.Add(fCategories.Shown(Specs().DomainVariable(), Specs().DomainValue().cells.data()));
  return text;
}

void TavoOutputFrame::AddCaptionArguments(host::BpComposite& caption, bool lineFirst) const {
  // Line breaks are arguments of the captions, as each language puts them in its own places.
  const host::BpString line = host::Plain("\r");
  if (lineFirst) caption.Add(line);
  if (HasSubpopulation()) {
    caption.Add(Variable(Specs().DomainVariable()));
    caption.Add(fCategories.Shown(Specs().DomainVariable(), Specs().DomainValue().cells.data()));
    caption.Add(line);
  }
  caption.Add(Dependent());
  caption.Add(DependentValue(EquationCount()));
  caption.Add(line);
  caption.Sublist();
  if (Specs().UsesIntercept()) caption.Add(host::Key("(Intercept)"));
  for (const std::string& effect : EffectNames())
    caption.Add(host::Plain(effect));
  caption.EndSublist();
}

void TavoOutputFrame::ModelCaption(host::BpPivotTable& table) const {
  if (Stats() == nullptr) return;
  host::BpComposite caption(HasSubpopulation() ? "Subpop ^1 = ^2 ^3Dependent ^4 = ^5 ^6Model [%1:, ^1:]7"
                                               : "Dependent ^1 = ^2 ^3 Model [%1:, ^1:]4");
  AddCaptionArguments(caption, false);
  table.Caption(caption);
}

void TavoOutputFrame::IterationCaption(host::BpPivotTable& table) const {
  if (Stats() == nullptr) return;
  host::BpComposite caption(HasSubpopulation()
                                ? "Redundant params ^1Subpop^2^3^4Dependent^5^6^7Model [%1:, ^1:]8"
                                : "Redundant params ^1 Dependent^2^3^4 Model [%1:, ^1:]5");
  AddCaptionArguments(caption, true);
  table.Caption(caption);
}

bool TavoOutputFrame::IsHidden(std::size_t parameter) const {
  assert(Stats() != nullptr);
  return Stats()->Parameters()[parameter].IsIntercept() && !Specs().ShowsIntercept();
}

host::BpCellText TavoOutputFrame::LongTextCell(const std::string& text) {
  if (text.size() <= kLongestString) return host::Plain(text);
  host::BpComposite pieces("[:^1:]1", false);
  pieces.Sublist();
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = CharacterEnd(text, std::min(begin + kLongestString, text.size()));
    pieces.Add(host::Plain(text.substr(begin, end - begin)));
    begin = end;
  }
  pieces.EndSublist();
  return pieces;
}

}  // namespace tavo
