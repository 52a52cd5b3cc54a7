// The universal parser's work: the tokens of one command against the descriptor of its grammar.
//
//   NAME opening tokens /SUBCOMMAND [=] keywords /SUBCOMMAND [=] tokens …
//
// The kind of a subcommand decides how its tokens are read:
//   kTokens  all of them are the value of one nameless parameter;
//   kNamed   KEYWORD = value, or the keyword alone when its kind is kBare;
//   kList    keywords alone, with a value in parentheses, or with = and a value.
// A value of kind kTokens runs to the next "KEYWORD =" (in a list: to the next keyword), any other is one
// token.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "host/command.h"
#include "standalone/command/message_sink.h"

namespace standalone {

/// Reads one command, once, without recursion and in time linear in its tokens. Sends one message per faulty
/// subcommand, reads on behind the next slash, and gives up after a dozen. No argument is owned.
class SyntaxParser {
 public:
  SyntaxParser(const std::vector<host::TokenInfoObj>& tokens, const host::CommandDescriptor& descriptor,
               host::CommandSpec& specification, MessageSink& messages);

  /// True when the command fits its grammar; its `CommandSpec` then holds its subcommands in command order.
  bool Parse();

 private:
  using Descriptor = host::SubComDescriptor;

  void ReadOpeningList();
  bool ReadSubcommand();
  const Descriptor* ReadSubcommandName();
  void ReadTokenList(host::SubComObj& subcommand);
  bool ReadKeywords(const Descriptor& descriptor, host::SubComObj& subcommand);
  const host::ParamDescriptor* ReadKeyword(const Descriptor& descriptor, std::vector<bool>& seen);
  bool ReadValue(const Descriptor& descriptor, const host::ParamDescriptor& param, host::ParamObj& object);
  bool ReportMissingValue(const Descriptor& descriptor, const host::ParamDescriptor& param,
                          const host::ParamObj& object);
  bool ReadParenthesised(const Descriptor& descriptor, host::ParamObj& object);
  void ReadFreeTokens(const Descriptor& descriptor, const host::ParamDescriptor& param,
                      host::ParamObj& object);
  bool CheckRequiredKeywords(const Descriptor& descriptor, const host::SubComObj& subcommand,
                             const std::vector<bool>& seen);
  void CheckRequiredSubcommands();
  void SkipToSubcommand();

  bool AtEnd() const { return fNext >= fTokens.size(); }
  bool AtSlash() const { return IsAt(fNext, host::OperatorCode::kSlash); }
  bool AtSubcommandEnd() const { return AtEnd() || AtSlash(); }
  bool IsAt(std::size_t index, host::OperatorCode code) const;
  bool AtAssignment() const;
  bool AtSlashOfSubcommand() const;
  bool Accept(host::OperatorCode code);

  /// Always false, for `return Report(…)`.
  bool Report(const char* key, std::initializer_list<std::string_view> arguments,
              const host::SourcePosition& position, std::vector<std::string> candidates = {});

  const std::vector<host::TokenInfoObj>& fTokens;
  const host::CommandDescriptor& fDescriptor;
  host::CommandSpec& fSpecification;
  MessageSink& fMessages;
  std::vector<std::string> fSubcommandNames;  // the words that may stand behind a slash
  std::size_t fNext = 1;                      // the next token; the command's name is token 0
  std::size_t fNErrors = 0;
  bool fbUnknownSubcommand = false;
  std::set<const Descriptor*> fSeen;
};

}  // namespace standalone
