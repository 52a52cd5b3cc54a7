// What the readers of a command's subcommands share.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "component/input/model_effect.h"
#include "host/command.h"
#include "host/data.h"
#include "module/command/parse_messages.h"
#include "module/command/valid_specs.h"

namespace tavo {

/// The predictors of a command. Once the variable list is read it doesn't change, since effects refer to
/// `all`.
struct CommandPredictors {
  std::vector<int> factors, covariates, all;  // dictionary indices; `all`: factors, then covariates
  std::vector<std::string> factorNames, covariateNames, names;  // as written; `names` beside `all`
  std::map<std::string, int> factorIndex, covariateIndex;       // upper case name to dictionary index

  /// An empty effect over `all`.
  OrvModelEffect MakeEffect() const {
    return {static_cast<int>(factors.size()), static_cast<int>(covariates.size()), &all};
  }
};

/// Specification and data source are not owned. Names in sets are in upper case.
struct ParseContext {
  TavoValidSpecs& specs;
  host::ProcedureDataSource& data;
  TavoParseMessages messages{};

  CommandPredictors predictors{};
  std::set<std::string> commandVariables{};  // every variable of the variable list
  std::set<std::string> designAndDomainVariables{};
  bool interceptOnly = false;

  bool IsCommandVariable(const std::string& name) const {
    return commandVariables.contains(host::GetUpperVarName(name));
  }
  /// Dictionary index of a name, or -1 after a message that suggests the nearest name.
  int FindVariable(const std::string& name, const host::SourcePosition& position = {});
  bool IsNumeric(int variable) const;
};

/// Names of all variables of a dictionary, as candidates for a suggestion.
std::vector<std::string> VariableNames(const host::VORN_DataSource& data);

/// The text of a file name that stands behind a keyword, quoted or as a word; `isLiteral` tells which. False
/// for anything else.
bool ReadFileName(const host::ParamObj& param, std::string& name, bool& isLiteral);

/// Where the value of a keyword begins; the keyword itself when it stands alone.
host::SourcePosition ValuePosition(const host::ParamObj& param);

/// The value that the variable and the text behind it make, or nothing after a message at the token.
std::optional<CategoryValue> ReadValueToken(ParseContext& context, int variable,
                                            const host::TokenInfoObj& token);

}  // namespace tavo
