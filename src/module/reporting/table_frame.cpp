#include "module/reporting/table_frame.h"

#include <algorithm>

namespace tavo {

namespace {

constexpr std::size_t kLongestString = 255;

const TavoOutputStats* StatsOf(TavoProcedureDriver& driver) {
  const TavoOutputStats* stats = nullptr;
  if (driver.Component() != nullptr) driver.Component()->OutputStatistics(stats);
  return stats;
}

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

TavoOutputFrame::TavoOutputFrame(host::BpHeading& heading, TavoProcedureDriver& driver,
                                 const TavoValidSpecs& specs, const host::ProcedureDataSource& source)
    : fHeading(heading), fDriver(driver), fSpecs(specs), fSource(source), fpStats(StatsOf(driver)) {
  fpNames = std::make_unique<TavoParamNames>(specs, source, driver.Adapter(), FirstEquation(fpStats));
}

int TavoOutputFrame::EquationCount() const {
  return fpStats == nullptr ? 0 : static_cast<int>(fpStats->DependentCategories().size()) - 1;
}

host::BpVariable TavoOutputFrame::Variable(int variable) const {
  return {fSource.GetVariable(static_cast<unsigned>(variable)), host::BpShow::kDefault};
}

host::BpDataValue TavoOutputFrame::Value(int variable, int code) const {
  return {fSource.GetVariable(static_cast<unsigned>(variable)),
          fDriver.Adapter().ValueForCode(variable, code)};
}

host::BpDataValue TavoOutputFrame::DependentValue(int localIndex) const {
  return Value(fSpecs.DependentVariable(),
               fpStats->DependentCategories()[static_cast<std::size_t>(localIndex)]);
}

host::BpComposite TavoOutputFrame::SubpopComposite() const {
  host::BpComposite text("Subpopulation ^1 = ^2");
  text.Add(Variable(fSpecs.DomainVariable()));
  text.Add(host::BpDataValue(fSource.GetVariable(static_cast<unsigned>(fSpecs.DomainVariable())),
                             fSpecs.DomainValue().cells.data()));
  return text;
}

void TavoOutputFrame::AddCaptionArguments(host::BpComposite& caption, bool lineFirst) const {
  const host::BpString line = host::Plain("\r");
  if (lineFirst) caption.Add(line);
  if (HasSubpopulation()) {
    caption.Add(Variable(fSpecs.DomainVariable()));
    caption.Add(host::BpDataValue(fSource.GetVariable(static_cast<unsigned>(fSpecs.DomainVariable())),
                                  fSpecs.DomainValue().cells.data()));
    caption.Add(line);
  }
  caption.Add(Dependent());
  caption.Add(DependentValue(EquationCount()));
  caption.Add(line);
  caption.Sublist();
  if (fSpecs.UsesIntercept()) caption.Add(host::Key("(Intercept)"));
  for (const std::string& effect : EffectNames())
    caption.Add(host::Plain(effect));
  caption.EndSublist();
}

void TavoOutputFrame::ModelCaption(host::BpPivotTable& table) const {
  if (fpStats == nullptr) return;
  host::BpComposite caption(HasSubpopulation() ? "Subpop ^1 = ^2 ^3Dependent ^4 = ^5 ^6Model [%1:, ^1:]7"
                                               : "Dependent ^1 = ^2 ^3 Model [%1:, ^1:]4");
  AddCaptionArguments(caption, false);
  table.Caption(caption);
}

void TavoOutputFrame::IterationCaption(host::BpPivotTable& table) const {
  if (fpStats == nullptr) return;
  host::BpComposite caption(HasSubpopulation()
                                ? "Redundant params ^1Subpop^2^3^4Dependent^5^6^7Model [%1:, ^1:]8"
                                : "Redundant params ^1 Dependent^2^3^4 Model [%1:, ^1:]5");
  AddCaptionArguments(caption, true);
  table.Caption(caption);
}

bool TavoOutputFrame::IsHidden(std::size_t parameter) const {
  return fpStats->Parameters()[parameter].IsIntercept() && !fSpecs.ShowsIntercept();
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
