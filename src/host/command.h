// The host's command language: tokens, the descriptor of a command's grammar, and the parser that checks a
// token sequence against a descriptor. The value classes are plain and implemented by the host as they stand;
// only the token sequence itself is the host's own.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace host {

class VORN_DataSource;

/// Where a token stands in its source, for messages. Lines and columns count from 1, columns in characters.
struct SourcePosition {
  int line = 0;  // 0: unknown
  int column = 0;
  int length = 0;
};

/// Operators and reserved words that a command tests for.
enum class OperatorCode : int {
  kNone = 0,
  kTimes = 10,
  kSlash = 11,
  kLeftParenthesis = 13,
  kRightParenthesis = 14,
  kRootSeparator = 16,  // ":" between a root name and a count
  kRowSeparator = 17,   // ";" between the rows of a matrix
  kEquals = 18,
  kTo = 30,
  kWith = 31,
  kBy = 34,
  kAll = 35,
  kLeftBracket = 36,
  kRightBracket = 37
};

enum class TokenKind { kEnd, kName, kWord, kNumber, kLiteral, kOperator };

/// One token. A name (`kName`) is a word that may name a variable; `kWord` is any other word.
class TokenInfoObj {
 public:
  TokenKind kind = TokenKind::kEnd;
  OperatorCode code = OperatorCode::kNone;
  std::string text;   // as written; a literal without its quotes, doubled quotes made single
  double number = 0;  // of a number
  SourcePosition position;

  bool IsVarName() const { return kind == TokenKind::kName; }
  bool IsNumber() const { return kind == TokenKind::kNumber; }
  /// A word, whether or not it may name a variable.
  bool IsString() const { return kind == TokenKind::kWord || kind == TokenKind::kName; }
  bool IsLiteral() const { return kind == TokenKind::kLiteral; }
  bool IsPlainString() const { return kind == TokenKind::kWord; }
  bool IsOperator() const { return kind == TokenKind::kOperator && code < OperatorCode::kTo; }
  bool IsReservedWord() const {
    return code == OperatorCode::kTo || code == OperatorCode::kWith || code == OperatorCode::kBy ||
           code == OperatorCode::kAll;
  }
  OperatorCode getOperatorCode() const { return code; }
  const std::string& getString() const { return text; }
  std::string getUpperString() const;
  double getNumeric() const { return number; }
  const std::string& getVarName() const { return text; }
  std::string getUpperVarName() const { return getUpperString(); }
};

/// The tokens of one command, from its name to its end, made by the host.
class VORN_TokenSequence {
 public:
  virtual ~VORN_TokenSequence() = default;
  virtual const std::vector<TokenInfoObj>& Tokens() const = 0;
};

/// Kinds of subcommands and of parameters in a grammar.
namespace UPSpecTypes {
enum class SubComSpec { kTokens = 0, kNamed = 1, kList = 2 };
enum class ParamSpec {
  kBare = 1,       // the keyword alone
  kTokens = 2,     // a free token list
  kWord = 3,       // one word
  kLiteral = 4,    // a quoted literal
  kNumber = 7,     // one number
  kVariable = 15,  // one variable name
  kFilePath = 20,  // a file path
  kStringOrLiteral = 23
};
enum class BracketOptions { kDefault = 0 };
}  // namespace UPSpecTypes

/// What a grammar says of one keyword of a subcommand.
struct ParamDescriptor {
  std::string name;
  UPSpecTypes::ParamSpec spec = UPSpecTypes::ParamSpec::kBare;
  bool required = false;
  bool valueRequired = true;
  UPSpecTypes::BracketOptions brackets = UPSpecTypes::BracketOptions::kDefault;
  bool slashAllowed = false;
  void allowSlash(bool allowed) { slashAllowed = allowed; }
};

/// What a grammar says of one subcommand.
struct SubComDescriptor {
  std::string name;  // empty for the variable list that opens the command
  UPSpecTypes::SubComSpec spec = UPSpecTypes::SubComSpec::kTokens;
  bool required = false;
  bool repeatable = false;
  std::vector<ParamDescriptor> params;

  void addParamDesc(std::string paramName, UPSpecTypes::ParamSpec paramSpec, bool isRequired,
                    bool isValueRequired = true,
                    UPSpecTypes::BracketOptions options = UPSpecTypes::BracketOptions::kDefault) {
    params.push_back({std::move(paramName), paramSpec, isRequired, isValueRequired, options, false});
  }
  void addParamDesc(ParamDescriptor descriptor) { params.push_back(std::move(descriptor)); }
};

/// The grammar of a command.
struct CommandDescriptor {
  std::string name;
  std::vector<SubComDescriptor> subcommands;
  void addSubComDesc(SubComDescriptor descriptor) { subcommands.push_back(std::move(descriptor)); }
};

/// One keyword that a command gave, with its value tokens. The getters return false when the value is of
/// another type.
class ParamObj {
 public:
  std::string name;                 // as the descriptor writes it; empty for the nameless parameter
  std::vector<TokenInfoObj> value;  // empty for a keyword that stands alone
  SourcePosition position;          // of the keyword

  const std::string& getParamName() const { return name; }
  const std::vector<TokenInfoObj>& getTokenList() const { return value; }
  /// True when the keyword stands alone, without a value.
  bool isLeadingToken() const { return value.empty(); }
  bool getNumberValue(double& out) const;
  bool getVarName(std::string& out) const;
  bool getLiteral(std::string& out) const;
  bool getStringGeneric(std::string& out) const;    // one word, as written; for file names also name.ending
  bool getUpStringGeneric(std::string& out) const;  // the same in upper case
  bool getStringOrLiteral(std::string& out) const;
  bool getFilePath(std::string& out) const;
};

/// One subcommand that a command gave.
class SubComObj {
 public:
  std::string name;
  std::vector<ParamObj> params;
  SourcePosition position;

  const std::string& getSubComName() const { return name; }
  /// The parameter of that name (compared without case), or null.
  const ParamObj* getParamObj(std::string_view paramName) const;
  /// The nameless parameter of a subcommand of kind kTokens.
  const ParamObj* exportParamObj() const { return params.empty() ? nullptr : &params.front(); }
};

/// What a command gave: filled by the parser.
class CommandSpec {
 public:
  std::vector<SubComObj> subcommands;  // in the order of the command

  std::size_t getSubComListSize() const { return subcommands.size(); }
  const SubComObj* getSubComObj(std::string_view name) const;
  /// All occurrences in command order; returns their count.
  std::size_t getSubComObj(std::vector<const SubComObj*>& list, std::string_view name) const;
};

/// Checks a token sequence against a descriptor. Reports its own syntax errors to the host, with the place,
/// the line and a caret, and the nearest known word; unknown keywords, missing required ones, repeated
/// subcommands and values of a wrong type are all its errors.
class UniversalParser {
 public:
  UniversalParser(const VORN_TokenSequence& tokens, CommandSpec& specification,
                  const CommandDescriptor& descriptor)
      : fTokens(tokens), fSpecification(specification), fDescriptor(descriptor) {}
  /// 0 on success.
  int getCommandSpecifications();

 private:
  const VORN_TokenSequence& fTokens;
  CommandSpec& fSpecification;
  const CommandDescriptor& fDescriptor;
};

/// Sends the messages of a command's interpreter. The key is the message's English template, which the host's
/// catalogue turns into the sentence that a person reads; arguments replace ^1 to ^5.
class ParserMessage {
 public:
  void SetCommandName(std::string name) { fCommandName = std::move(name); }
  void SetProcedureTitle(std::string title) { fTitle = std::move(title); }
  /// The token that the next message is about: the host shows the line with a caret under it. Forgotten after
  /// use.
  void SetPosition(const SourcePosition& position) { fPosition = position; }
  /// The known words among which the next message may suggest the nearest to its first argument. Forgotten
  /// after use.
  void SetCandidates(std::vector<std::string> words) { fCandidates = std::move(words); }
  /// A text put in front of the next message, such as the stage of a plan; empty for none. Forgotten after
  /// use.
  void SetGroupText(std::string text) { fGroupText = std::move(text); }
  void GenericError(std::string_view key, const std::vector<std::string>& arguments);
  void GenericWarning(std::string_view key, const std::vector<std::string>& arguments);

 private:
  void Send(std::string_view key, const std::vector<std::string>& arguments, bool isError);

  std::string fCommandName, fTitle, fGroupText;
  SourcePosition fPosition;
  std::vector<std::string> fCandidates;
};

/// True for a double that has an integer value within the range of a 32-bit integer.
bool IsValidInteger(double value);
/// ASCII letters in upper case, other bytes as they are.
std::string GetUpperString(std::string_view text);
/// A whole number in decimal digits.
std::string IntegerToString(long value);

/// A table of values by category lists: the matrix form of sizes and probabilities in a plan. Rows keep their
/// order; lists and values are texts and numbers as the plan file holds them.
class VarCatList {
 public:
  void addVarName(std::string name) { fVariables.push_back(std::move(name)); }
  void addStringToCatList(std::string category) { fOpenRow.push_back(std::move(category)); }
  /// True when the open row has one category per variable.
  bool isCatListOK() const { return !fVariables.empty() && fOpenRow.size() == fVariables.size(); }
  /// Closes the open row with its value.
  void addCatList(double value) {
    fRows.push_back({std::move(fOpenRow), value});
    fOpenRow.clear();
  }
  void dropOpenRow() { fOpenRow.clear(); }
  const std::vector<std::string>& copyVarList() const { return fVariables; }
  std::size_t getMapSize() const { return fRows.size(); }
  struct Row {
    std::vector<std::string> categories;
    double value = 0;
  };
  const std::vector<Row>& copyMapKeyVal() const { return fRows; }

 private:
  std::vector<std::string> fVariables;
  std::vector<std::string> fOpenRow;
  std::vector<Row> fRows;
};

}  // namespace host
