// The value classes of the command language: tokens, and the tree that the parser fills.
#include <algorithm>
#include <cmath>
#include <limits>

#include "host/command.h"
#include "standalone/text/ascii.h"

namespace host {

namespace {

/// The only token of a value, or null.
const TokenInfoObj* OnlyToken(const ParamObj& param) {
  return param.value.size() == 1 ? &param.value.front() : nullptr;
}

bool CopyText(const TokenInfoObj* token, bool isWanted, std::string& out) {
  if (token == nullptr || !isWanted) return false;
  out = token->text;
  return true;
}

}  // namespace

std::string GetUpperString(std::string_view text) {
  return standalone::UpperOf(text);
}

std::string IntegerToString(long value) {
  return std::to_string(value);
}

bool IsValidInteger(double value) {
  return value >= std::numeric_limits<int>::min() && value <= std::numeric_limits<int>::max() &&
         value == std::trunc(value);
}

std::string TokenInfoObj::getUpperString() const {
  return GetUpperString(text);
}

bool ParamObj::getNumberValue(double& out) const {
  const TokenInfoObj* token = OnlyToken(*this);
  if (token == nullptr || !token->IsNumber()) return false;
  out = token->number;
  return true;
}

bool ParamObj::getVarName(std::string& out) const {
  const TokenInfoObj* token = OnlyToken(*this);
  return CopyText(token, token != nullptr && token->IsVarName(), out);
}

bool ParamObj::getLiteral(std::string& out) const {
  const TokenInfoObj* token = OnlyToken(*this);
  return CopyText(token, token != nullptr && token->IsLiteral(), out);
}

bool ParamObj::getStringGeneric(std::string& out) const {
  const TokenInfoObj* token = OnlyToken(*this);
  return CopyText(token, token != nullptr && token->IsString(), out);
}

bool ParamObj::getUpStringGeneric(std::string& out) const {
  if (!getStringGeneric(out)) return false;
  out = GetUpperString(out);
  return true;
}

bool ParamObj::getStringOrLiteral(std::string& out) const {
  return getStringGeneric(out) || getLiteral(out);
}

// A file name needs quotes only when it holds what would cut it.
bool ParamObj::getFilePath(std::string& out) const {
  return getStringOrLiteral(out);
}

const ParamObj* SubComObj::getParamObj(std::string_view paramName) const {
  const std::string sought = GetUpperString(paramName);
  const auto found = std::find_if(params.begin(), params.end(), [&](const ParamObj& param) {
    return GetUpperString(param.name) == sought;
  });
  return found != params.end() ? &*found : nullptr;
}

const SubComObj* CommandSpec::getSubComObj(std::string_view name) const {
  const std::string sought = GetUpperString(name);
  const auto found = std::find_if(subcommands.begin(), subcommands.end(), [&](const SubComObj& subcommand) {
    return GetUpperString(subcommand.name) == sought;
  });
  return found != subcommands.end() ? &*found : nullptr;
}

std::size_t CommandSpec::getSubComObj(std::vector<const SubComObj*>& list, std::string_view name) const {
  const std::string sought = GetUpperString(name);
  list.clear();
  for (const SubComObj& subcommand : subcommands) {
    if (GetUpperString(subcommand.name) == sought) list.push_back(&subcommand);
  }
  return list.size();
}

}  // namespace host
