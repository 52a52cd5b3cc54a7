#include "standalone/command/syntax_parser.h"

#include <algorithm>
#include <utility>

#include "standalone/command/parser_keys.h"
#include "standalone/text/suggestion.h"
#include "standalone/text/utf8.h"

namespace standalone {

namespace {

using host::OperatorCode;
using host::ParamDescriptor;
using host::ParamObj;
using host::SourcePosition;
using host::SubComDescriptor;
using host::SubComObj;
using host::TokenInfoObj;
using host::UPSpecTypes::ParamSpec;
using host::UPSpecTypes::SubComSpec;

constexpr std::size_t kMaxErrors = 12;
constexpr std::size_t kShownLength = 60;

/// The element of that name, compared without case, or null.
template <class Element>
const Element* FindByName(const std::vector<Element>& elements, std::string_view name) {
  const std::string sought = host::GetUpperString(name);
  const auto found = std::find_if(elements.begin(), elements.end(), [&](const Element& element) {
    return host::GetUpperString(element.name) == sought;
  });
  return found != elements.end() ? &*found : nullptr;
}

template <class Element>
std::vector<std::string> Names(const std::vector<Element>& elements) {
  std::vector<std::string> names;
  for (const Element& element : elements) {
    if (!element.name.empty()) names.push_back(element.name);
  }
  return names;
}

/// A subcommand that a slash can open; the nameless one is no such.
const SubComDescriptor* FindSubcommand(const host::CommandDescriptor& descriptor, const TokenInfoObj& name) {
  return name.IsString() ? FindByName(descriptor.subcommands, name.text) : nullptr;
}

bool IsOfKind(const ParamObj& object, ParamSpec spec) {
  std::string text;
  double number = 0;
  switch (spec) {
    case ParamSpec::kBare:
      return object.value.empty();
    case ParamSpec::kTokens:
      return !object.value.empty();
    case ParamSpec::kWord:
      return object.getStringGeneric(text);
    case ParamSpec::kLiteral:
      return object.getLiteral(text);
    case ParamSpec::kNumber:
      return object.getNumberValue(number);
    case ParamSpec::kVariable:
      return object.getVarName(text);
    case ParamSpec::kFilePath:
      return object.getFilePath(text) && !text.empty();
    case ParamSpec::kStringOrLiteral:
      return object.getStringOrLiteral(text);
  }
  return false;
}

}  // namespace

SyntaxParser::SyntaxParser(const std::vector<TokenInfoObj>& tokens, const host::CommandDescriptor& descriptor,
                           host::CommandSpec& specification, MessageSink& messages)
    : fTokens(tokens),
      fDescriptor(descriptor),
      fSpecification(specification),
      fMessages(messages),
      fSubcommandNames(Names(descriptor.subcommands)) {}

bool SyntaxParser::Parse() {
  ReadOpeningList();
  while (!AtEnd() && fNErrors < kMaxErrors) {
    if (!ReadSubcommand()) SkipToSubcommand();
  }
  if (fNErrors < kMaxErrors) CheckRequiredSubcommands();
  return fNErrors == 0;
}

void SyntaxParser::ReadOpeningList() {
  const Descriptor* descriptor = FindByName(fDescriptor.subcommands, "");
  if (AtSubcommandEnd()) return;
  if (descriptor == nullptr) {
    Report(keys::kNoSubcommandPlace, {fTokens[fNext].text}, fTokens[fNext].position);
    return SkipToSubcommand();
  }
  fSeen.insert(descriptor);
  SubComObj& list = fSpecification.subcommands.emplace_back();
  list.position = fTokens[fNext].position;
  ReadTokenList(list);
}

bool SyntaxParser::ReadSubcommand() {
  const Descriptor* descriptor = ReadSubcommandName();
  if (descriptor == nullptr) return false;
  SubComObj subcommand;
  subcommand.name = descriptor->name;
  subcommand.position = fTokens[fNext].position;
  ++fNext;

  const bool isRepeated = !fSeen.insert(descriptor).second;
  if (isRepeated && !descriptor->repeatable) {
    return Report(keys::kSubcommandRepeated, {descriptor->name}, subcommand.position);
  }
  Accept(OperatorCode::kEquals);
  if (descriptor->spec == SubComSpec::kTokens) {
    ReadTokenList(subcommand);
  } else if (!ReadKeywords(*descriptor, subcommand)) {
    return false;
  }
  fSpecification.subcommands.push_back(std::move(subcommand));
  return true;
}

/// Steps over the slash, up to the name; null when no subcommand is named there.
const SubComDescriptor* SyntaxParser::ReadSubcommandName() {
  const SourcePosition slash = fTokens[fNext++].position;
  if (AtEnd()) {
    Report(keys::kSubcommandNameMissing, {}, slash);
    return nullptr;
  }
  const TokenInfoObj& name = fTokens[fNext];
  const Descriptor* descriptor = FindSubcommand(fDescriptor, name);
  if (descriptor != nullptr) return descriptor;
  if (name.IsString()) {
    fbUnknownSubcommand = true;
    Report(keys::kSubcommandUnknown, {name.text}, name.position, fSubcommandNames);
  } else {
    Report(keys::kSubcommandNameInvalid, {name.text}, name.position);
  }
  return nullptr;
}

void SyntaxParser::ReadTokenList(SubComObj& subcommand) {
  ParamObj& nameless = subcommand.params.emplace_back();
  nameless.position = AtSubcommandEnd() ? subcommand.position : fTokens[fNext].position;
  while (!AtSubcommandEnd())
    nameless.value.push_back(fTokens[fNext++]);
}

bool SyntaxParser::ReadKeywords(const Descriptor& descriptor, SubComObj& subcommand) {
  std::vector<bool> seen(descriptor.params.size(), false);
  while (!AtSubcommandEnd()) {
    const ParamDescriptor* param = ReadKeyword(descriptor, seen);
    if (param == nullptr) return false;
    ParamObj object;
    object.name = param->name;
    object.position = fTokens[fNext].position;
    ++fNext;
    if (!ReadValue(descriptor, *param, object)) return false;
    subcommand.params.push_back(std::move(object));
  }
  return CheckRequiredKeywords(descriptor, subcommand, seen);
}

/// The descriptor of the keyword at the cursor, which stays; null when none can stand there.
const ParamDescriptor* SyntaxParser::ReadKeyword(const Descriptor& descriptor, std::vector<bool>& seen) {
  const TokenInfoObj& keyword = fTokens[fNext];
  const ParamDescriptor* param = keyword.IsString() ? FindByName(descriptor.params, keyword.text) : nullptr;
  if (param == nullptr) {
    Report(keys::kParameterUnknown, {keyword.text, descriptor.name}, keyword.position,
           keyword.IsString() ? Names(descriptor.params) : std::vector<std::string>());
    return nullptr;
  }
  const auto index = static_cast<std::size_t>(param - descriptor.params.data());
  if (seen[index]) {
    Report(keys::kParameterRepeated, {param->name, descriptor.name}, keyword.position);
    return nullptr;
  }
  seen[index] = true;
  return param;
}

bool SyntaxParser::ReadValue(const Descriptor& descriptor, const ParamDescriptor& param, ParamObj& object) {
  const bool hasEquals = IsAt(fNext, OperatorCode::kEquals);
  const bool hasParenthesis = IsAt(fNext + (hasEquals ? 1 : 0), OperatorCode::kLeftParenthesis);
  if (param.spec == ParamSpec::kBare) {
    if (!hasEquals && !hasParenthesis) return true;
    return Report(keys::kValueNotAllowed, {param.name, descriptor.name}, object.position);
  }
  const bool isParenthesised = hasParenthesis && descriptor.spec == SubComSpec::kList;
  if (!hasEquals && !isParenthesised) return ReportMissingValue(descriptor, param, object);

  Accept(OperatorCode::kEquals);
  if (isParenthesised) {
    if (!ReadParenthesised(descriptor, object)) return false;
  } else if (param.spec == ParamSpec::kTokens) {
    ReadFreeTokens(descriptor, param, object);
  } else if (!AtSubcommandEnd() && !AtAssignment()) {
    object.value.push_back(fTokens[fNext++]);
  }
  if (object.value.empty()) {
    return Report(keys::kValueMissing, {param.name, descriptor.name}, object.position);
  }
  if (!IsOfKind(object, param.spec)) {
    return Report(keys::kValueOfWrongType, {param.name, descriptor.name}, object.value.front().position);
  }
  return true;
}

/// A keyword that is followed neither by = nor, in a list, by a parenthesis. True when it may stand alone and
/// does.
bool SyntaxParser::ReportMissingValue(const Descriptor& descriptor, const ParamDescriptor& param,
                                      const ParamObj& object) {
  const bool standsAlone = AtSubcommandEnd() || fTokens[fNext].IsString();
  if (standsAlone && !param.valueRequired) return true;
  // Behind the keyword stands its value, or the next keyword, or nothing.
  const bool nextIsKeyword =
      !AtEnd() && fTokens[fNext].IsString() && FindByName(descriptor.params, fTokens[fNext].text) != nullptr;
  const bool hasNoValue = AtSubcommandEnd() || AtAssignment() || nextIsKeyword;
  return Report(hasNoValue ? keys::kValueMissing : keys::kEqualsExpected, {param.name, descriptor.name},
                object.position);
}

bool SyntaxParser::ReadParenthesised(const Descriptor& descriptor, ParamObj& object) {
  std::size_t depth = 0;
  for (; !AtSubcommandEnd(); ++fNext) {
    const TokenInfoObj& token = fTokens[fNext];
    if (token.code == OperatorCode::kRightParenthesis && --depth == 0) {
      ++fNext;
      return true;
    }
    if (depth > 0) object.value.push_back(token);
    if (token.code == OperatorCode::kLeftParenthesis) ++depth;
  }
  return Report(keys::kParenthesisNotClosed, {object.name, descriptor.name}, object.position);
}

void SyntaxParser::ReadFreeTokens(const Descriptor& descriptor, const ParamDescriptor& param,
                                  ParamObj& object) {
  const bool keywordEnds = descriptor.spec == SubComSpec::kList;
  for (; !AtEnd() && !AtAssignment(); ++fNext) {
    const TokenInfoObj& token = fTokens[fNext];
    if (AtSlash() && (!param.slashAllowed || AtSlashOfSubcommand())) return;
    if (keywordEnds && !object.value.empty() && token.IsString() &&
        FindByName(descriptor.params, token.text) != nullptr) {
      return;
    }
    object.value.push_back(token);
  }
}

bool SyntaxParser::CheckRequiredKeywords(const Descriptor& descriptor, const SubComObj& subcommand,
                                         const std::vector<bool>& seen) {
  for (std::size_t i = 0; i < seen.size(); ++i) {
    const ParamDescriptor& param = descriptor.params[i];
    if (param.required && !seen[i]) {
      return Report(keys::kParameterRequired, {param.name, descriptor.name}, subcommand.position);
    }
  }
  return true;
}

void SyntaxParser::CheckRequiredSubcommands() {
  const SourcePosition place = fTokens.empty() ? SourcePosition() : fTokens.front().position;
  for (const Descriptor& descriptor : fDescriptor.subcommands) {
    if (!descriptor.required || fSeen.contains(&descriptor)) continue;
    if (descriptor.name.empty()) {
      Report(keys::kVariableListRequired, {fDescriptor.name}, place);
    } else if (!fbUnknownSubcommand) {  // else the missing one may be the misspelt one
      Report(keys::kSubcommandRequired, {descriptor.name}, place);
    }
  }
}

/// Moves to the next slash with a word behind it, or to the end.
void SyntaxParser::SkipToSubcommand() {
  while (!AtEnd() && !(AtSlash() && fNext + 1 < fTokens.size() && fTokens[fNext + 1].IsString()))
    ++fNext;
}

bool SyntaxParser::IsAt(std::size_t index, OperatorCode code) const {
  return index < fTokens.size() && fTokens[index].code == code;
}

bool SyntaxParser::AtAssignment() const {
  return !AtEnd() && fTokens[fNext].IsString() && IsAt(fNext + 1, OperatorCode::kEquals);
}

// Inside a value that may hold fractions a slash belongs to the value unless a subcommand's name follows it.
// A word that names none is a mistake in any case: it is taken as a misspelt subcommand when no numerator
// stands in front of the slash or when the word is near a subcommand's name, and as a faulty denominator
// otherwise.
bool SyntaxParser::AtSlashOfSubcommand() const {
  if (fNext + 1 >= fTokens.size() || !fTokens[fNext + 1].IsString()) return false;
  const TokenInfoObj& word = fTokens[fNext + 1];
  if (FindSubcommand(fDescriptor, word) != nullptr || !fTokens[fNext - 1].IsNumber()) return true;
  return !NearestWord(word.text, fSubcommandNames).empty();
}

bool SyntaxParser::Accept(OperatorCode code) {
  if (!IsAt(fNext, code)) return false;
  ++fNext;
  return true;
}

bool SyntaxParser::Report(const char* key, std::initializer_list<std::string_view> arguments,
                          const SourcePosition& position, std::vector<std::string> candidates) {
  ++fNErrors;
  std::vector<std::string> texts;
  for (const std::string_view argument : arguments)
    texts.push_back(Shortened(argument, kShownLength));
  MessageContext context;
  context.position = position;
  if (!candidates.empty()) context.misspelt = texts.front();
  context.candidates = std::move(candidates);
  fMessages.Send(true, key, texts, context);
  return false;
}

}  // namespace standalone
