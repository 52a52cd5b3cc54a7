#include "standalone/output/content_text.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <stdexcept>

#include "host/data.h"
#include "standalone/output/catalogue.h"
#include "standalone/output/number_text.h"
#include "standalone/output/template.h"
#include "standalone/text/ascii.h"

namespace host {

BpDataValue::BpDataValue(const VORN_Variable* valueVariable, const OBS* valueCells, BpShow show)
    : variable(valueVariable), preference(show) {
  if (variable == nullptr || valueCells == nullptr) return;
  cells.assign(valueCells, valueCells + CellCount(variable->GetType()));
}

BpCellText::BpCellText(const BpComposite& composite)
    : fContent(std::make_shared<const BpComposite>(composite)) {}

BpComposite& BpComposite::Add(BpCellText argument) {
  if (fInSublist) {
    std::get<std::vector<BpCellText>>(fArguments.back()).push_back(std::move(argument));
  } else {
    fArguments.emplace_back(std::move(argument));
  }
  return *this;
}

BpComposite& BpComposite::Sublist() {
  fArguments.emplace_back(std::vector<BpCellText>{});
  fInSublist = true;
  return *this;
}

BpComposite& BpComposite::EndSublist() {
  fInSublist = false;
  return *this;
}

std::string FacSTDictionaryLookUp(std::string_view key) {
  return standalone::CatalogueText(key);
}

}  // namespace host

namespace standalone {

namespace {

template <class... Fs>
struct Overloaded : Fs... {
  using Fs::operator()...;
};
template <class... Fs>
Overloaded(Fs...) -> Overloaded<Fs...>;

using CompositePointer = std::shared_ptr<const host::BpComposite>;

/// Labels from files made elsewhere end lines with CR or CRLF, and a CR on a terminal goes back to the
/// line's start.
std::string WithLineFeeds(std::string text) {
  std::size_t to = 0;
  for (std::size_t from = 0; from < text.size(); ++from) {
    const bool isReturn = text[from] == '\r';
    if (isReturn && from + 1 < text.size() && text[from + 1] == '\n') continue;
    text[to++] = isReturn ? '\n' : text[from];
  }
  text.resize(to);
  return text;
}

std::string DataValueText(const host::BpDataValue& value) {
  if (value.variable == nullptr || value.cells.empty()) return {};
  if (!value.shown.empty()) return value.shown;
  const host::VORN_Variable& variable = *value.variable;
  if (value.preference != host::BpShow::kValue) {
    const std::string* label = variable.GetValueLabels().GetLabel(value.cells.data(), variable.GetType());
    if (label != nullptr && !label->empty()) return *label;
  }
  return ValueText(variable, value.cells.data());
}

std::string StringText(const host::BpString& string) {
  return string.translate ? CatalogueText(string.text) : string.text;
}

std::string CompositeText(const host::BpComposite& composite, bool isMessage) {
  std::vector<TemplateArgument> arguments;
  for (const auto& argument : composite.Arguments()) {
    if (const auto* single = std::get_if<host::BpCellText>(&argument)) {
      arguments.emplace_back(TextOf(*single));
      continue;
    }
    std::vector<std::string> list;
    for (const auto& element : std::get<std::vector<host::BpCellText>>(argument))
      list.push_back(TextOf(element));
    arguments.emplace_back(std::move(list));
  }
  const std::string text = composite.Translate() ? CatalogueText(composite.Template()) : composite.Template();
  return isMessage ? FillMessage(text, std::move(arguments)) : FillTemplate(text, arguments);
}

/// Cells of a value as letters, so that values that print alike are still told apart. -0 is 0.
std::string CellsAsKey(const host::BpDataValue& value) {
  std::string key;
  for (host::OBS cell : value.cells) {
    if (value.variable->IsNumeric() && cell.number == 0) cell.number = 0;
    key.append(reinterpret_cast<const char*>(&cell), sizeof cell);
  }
  return key;
}

std::string CompositeIdentity(const host::BpComposite& composite) {
  std::string identity = "C" + composite.Template();
  const auto append = [&identity](const host::BpCellText& part) {
    const std::string inner = IdentityOf(part);
    identity += std::to_string(inner.size());
    identity += ':';
    identity += inner;
  };
  for (const auto& argument : composite.Arguments()) {
    if (const auto* single = std::get_if<host::BpCellText>(&argument)) {
      append(*single);
    } else {
      identity += '(';
      for (const auto& element : std::get<std::vector<host::BpCellText>>(argument))
        append(element);
      identity += ')';
    }
  }
  return identity;
}

}  // namespace

std::string VariableText(const host::VORN_Variable& variable, host::BpShow show) {
  const bool useLabel = show != host::BpShow::kValue && !variable.GetLabel().empty();
  return useLabel ? variable.GetLabel() : variable.GetName();
}

std::string ValueText(const host::VORN_Variable& variable, const host::OBS* cells) {
  std::string text;
  if (host::ToString(cells, variable.GetFormat(), text) != 0) return {};
  return std::string(Trimmed(text, " "));
}

std::string TextOf(const host::BpCellText& content) {
  return WithLineFeeds(std::visit(
      Overloaded{[](const host::BpString& string) { return StringText(string); },
                 [](const host::BpNumber& number) { return NumberText(number.value, number.format); },
                 [](const host::BpVariable& variable) {
                   return variable.variable == nullptr ? std::string()
                                                       : VariableText(*variable.variable, variable.show);
                 },
                 [](const host::BpDataValue& value) { return DataValueText(value); },
                 [](const CompositePointer& composite) { return CompositeText(*composite, false); }},
      content.Get()));
}

std::string MessageTextOf(const host::BpCellText& content) {
  const auto* composite = std::get_if<CompositePointer>(&content.Get());
  return composite == nullptr ? MessageArgument(TextOf(content))
                              : WithLineFeeds(CompositeText(**composite, true));
}

std::string LabelOf(const host::BpCellText& content) {
  const auto* number = std::get_if<host::BpNumber>(&content.Get());
  return number == nullptr ? TextOf(content) : NumberLabel(number->value, number->format);
}

// The first letter keeps kinds apart: the text "1" is not the number 1. Numbers go by their bits, since two
// that print alike are two labels; adding 0 makes -0 a 0.
std::string IdentityOf(const host::BpCellText& content) {
  return std::visit(
      Overloaded{[&](const host::BpString&) { return "T" + TextOf(content); },
                 [](const host::BpNumber& number) {
                   return "N" + std::to_string(std::bit_cast<std::uint64_t>(number.value + 0.0));
                 },
                 [](const host::BpVariable& variable) {
                   return variable.variable == nullptr ? std::string("V")
                                                       : "V" + variable.variable->GetUpperCaseName();
                 },
                 [](const host::BpDataValue& value) {
                   if (value.variable == nullptr) return std::string("D");
                   return "D" + value.variable->GetUpperCaseName() + "=" + CellsAsKey(value);
                 },
                 [](const CompositePointer& composite) { return CompositeIdentity(*composite); }},
      content.Get());
}

CellContent ContentOf(const host::BpCellText& content) {
  if (const auto* number = std::get_if<host::BpNumber>(&content.Get())) return *number;
  return TextOf(content);
}

std::string KeyOf(const host::BpCellText& content) {
  if (const auto* string = std::get_if<host::BpString>(&content.Get())) return string->text;
  if (const auto* composite = std::get_if<CompositePointer>(&content.Get())) return (*composite)->Template();
  return TextOf(content);
}

}  // namespace standalone
