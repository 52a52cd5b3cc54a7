#include "standalone/command/command_reader.h"

#include <array>
#include <utility>

#include "host/data.h"
#include "standalone/command/parser_keys.h"
#include "standalone/text/ascii.h"
#include "standalone/text/numbers.h"

namespace standalone {

namespace {

using host::OperatorCode;
using host::SourcePosition;
using host::TokenKind;

// Enough to mend a file by; a binary file taken for a command file must not fill the memory with messages.
constexpr std::size_t kMaxErrors = 10;
constexpr std::size_t kShownLength = 40;

bool IsQuote(char c) {
  return c == '\'' || c == '"';
}
bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\f' || c == '\v' || c == ',';
}
bool IsLineEnd(char c) {
  return c == '\n' || c == '\r';
}

OperatorCode CodeOfOperator(char c) {
  switch (c) {
    case '*':
      return OperatorCode::kTimes;
    case '/':
      return OperatorCode::kSlash;
    case '(':
      return OperatorCode::kLeftParenthesis;
    case ')':
      return OperatorCode::kRightParenthesis;
    case ':':
      return OperatorCode::kRootSeparator;
    case ';':
      return OperatorCode::kRowSeparator;
    case '=':
      return OperatorCode::kEquals;
    case '[':
      return OperatorCode::kLeftBracket;
    case ']':
      return OperatorCode::kRightBracket;
    default:
      return OperatorCode::kNone;
  }
}

OperatorCode CodeOfWord(std::string_view word) {
  constexpr std::array<std::pair<std::string_view, OperatorCode>, 4> kReserved = {
      {{"TO", OperatorCode::kTo},
       {"WITH", OperatorCode::kWith},
       {"BY", OperatorCode::kBy},
       {"ALL", OperatorCode::kAll}}};
  for (const auto& [text, code] : kReserved) {
    if (IsSameWord(word, text)) return code;
  }
  return OperatorCode::kNone;
}

bool EndsPiece(char c) {
  return IsBlank(c) || IsLineEnd(c) || IsQuote(c) || CodeOfOperator(c) != OperatorCode::kNone;
}

bool IsControl(char32_t code) {
  return code < 0x20 || (code >= 0x7F && code < 0xA0);
}

/// Blanks that word processors put in; they look like a separator and are none.
bool IsTypographicBlank(char32_t code) {
  return code == 0xA0 || (code >= 0x2000 && code <= 0x200B) || code == 0x2028 || code == 0x2029 ||
         code == 0x202F || code == 0x3000 || code == 0xFEFF;
}

/// Quotes, dashes and the minus sign of typesetting. At the front of a piece they stand for the plain
/// character; inside a name they may be meant.
bool IsTypographicMark(char32_t code) {
  return (code >= 0x2010 && code <= 0x2015) || (code >= 0x2018 && code <= 0x201F) || code == 0x2212 ||
         code == 0xAB || code == 0xBB;
}

}  // namespace

std::vector<CommandTokens> CommandReader::Read() {
  while (!fCursor.AtEnd())
    ReadNext();
  EndCommand();
  return std::move(fCommands);
}

void CommandReader::ReadNext() {
  const char c = fCursor.Byte();
  if (fCursor.AtLineEnd()) return EndLine();
  if (IsBlank(c)) return SkipBlank();
  // A line with nothing but a comment is not blank, so comments may stand between the lines of a command.
  fbLineHasContent = true;
  if (fCursor.StartsWith("/*")) return SkipComment();
  if (IsQuote(c)) return ReadLiteral();
  const OperatorCode code = CodeOfOperator(c);
  if (code != OperatorCode::kNone) return ReadOperator(code);
  ReadPiece();
}

void CommandReader::EndLine() {
  if (!fbLineHasContent) EndCommand();
  fbLineHasContent = false;
  fLastByte = '\0';
  fCursor.Advance();
}

void CommandReader::EndCommand() {
  if (fCommand.tokens.empty() && fCommand.errors.empty()) return;
  if (!fCommand.tokens.empty()) {
    const host::TokenInfoObj& first = fCommand.tokens.front();
    if (first.IsString()) {
      fCommand.name = first.getUpperString();
    } else if (fCommand.errors.empty()) {
      AddError(keys::kNoCommandName, {Shortened(first.text, kShownLength)}, first.position);
    }
  }
  fCommands.push_back(std::exchange(fCommand, {}));
}

void CommandReader::SkipBlank() {
  if (fCursor.Byte() == ',' && IsDigit(fLastByte) && IsDigit(fCursor.Byte(1))) {
    AddError(keys::kCommaBetweenDigits, {}, fCursor.Position());
  }
  fLastByte = '\0';
  fCursor.Advance();
}

void CommandReader::SkipComment() {
  const SourcePosition start = fCursor.Position(2);
  fLastByte = '\0';
  fCursor.Advance();
  fCursor.Advance();
  while (!fCursor.AtEnd() && !fCursor.StartsWith("*/"))
    fCursor.Advance();
  if (fCursor.AtEnd()) return AddError(keys::kCommentNotClosed, {}, start);
  fCursor.Advance();
  fCursor.Advance();
}

void CommandReader::ReadOperator(OperatorCode code) {
  const char glyph = fCursor.Byte();
  AddToken(TokenKind::kOperator, {&glyph, 1}, fCursor.Position());
  fCommand.tokens.back().code = code;
  fLastByte = '\0';
  fCursor.Advance();
}

void CommandReader::ReadLiteral() {
  const char quote = fCursor.Byte();
  const SourcePosition start = fCursor.Position();
  const std::size_t startOffset = fCursor.Offset();
  bool isGood = true;
  std::string text;
  fLastByte = '\0';
  fCursor.Advance();
  // A literal ends on its line: a forgotten quote must not swallow the commands that follow.
  while (!fCursor.AtEnd() && !fCursor.AtLineEnd()) {
    if (fCursor.Byte() == quote) {
      fCursor.Advance();
      if (fCursor.Byte() != quote) return AddToken(TokenKind::kLiteral, text, fCursor.Since(start));
    }
    const std::size_t offset = fCursor.Offset();
    if (fCursor.Byte() != '\t') CheckCharacter(isGood);
    fCursor.Advance();
    text += fCursor.TextSince(offset);
  }
  RecoverFromOpenLiteral(start, fCursor.TextSince(startOffset));
}

// The quote is missing somewhere on the line, so a period at its end most likely still ends the command; the
// commands behind it should not be lost in it.
void CommandReader::RecoverFromOpenLiteral(const SourcePosition& start, std::string_view restOfLine) {
  AddError(keys::kLiteralNotClosed, {}, start);
  while (!restOfLine.empty() && IsBlank(restOfLine.back()))
    restOfLine.remove_suffix(1);
  if (restOfLine.ends_with('.')) EndCommand();
}

void CommandReader::ReadPiece() {
  const SourcePosition start = fCursor.Position();
  const std::size_t startOffset = fCursor.Offset();
  bool isGood = true;
  while (!fCursor.AtEnd() && !EndsPiece(fCursor.Byte())) {
    CheckCharacter(isGood);
    fCursor.Advance();
  }
  std::string_view piece = fCursor.TextSince(startOffset);
  SourcePosition position = fCursor.Since(start);
  fLastByte = piece.back();

  // Only at the end of a line: elsewhere a period belongs to the number or the file name that it stands in.
  const bool endsCommand = piece.back() == '.' && RestOfLineIsBlank();
  if (endsCommand) {
    piece.remove_suffix(1);
    --position.length;
  }
  CheckTypography(piece, position, isGood);
  if (isGood && !piece.empty()) AddPiece(piece, position);
  if (endsCommand) EndCommand();
}

void CommandReader::CheckCharacter(bool& isGood) {
  if (!isGood) return;
  const Utf8Character character = fCursor.Character();
  const char* key = nullptr;
  if (!character.valid) {
    key = keys::kInvalidEncoding;
  } else if (character.code == 0) {
    key = keys::kNulByte;
  } else if (IsControl(character.code)) {
    key = keys::kControlCharacter;
  }
  if (key == nullptr) return;
  isGood = false;
  AddError(key, {}, fCursor.Position());
}

void CommandReader::CheckTypography(std::string_view piece, const SourcePosition& position, bool& isGood) {
  int column = position.column;
  for (std::size_t offset = 0; isGood && offset < piece.size(); ++column) {
    const Utf8Character character = DecodeUtf8(piece, offset);
    if (IsTypographicBlank(character.code) || (offset == 0 && IsTypographicMark(character.code))) {
      isGood = false;
      AddError(keys::kTypographicCharacter, {std::string(piece.substr(offset, character.length))},
               {position.line, column, 1});
    }
    offset += character.length;
  }
}

void CommandReader::AddPiece(std::string_view piece, const SourcePosition& position) {
  if (!IsNumberText(piece)) {
    AddToken(host::ValidateVORNName(piece) ? TokenKind::kName : TokenKind::kWord, piece, position);
    const OperatorCode reserved = CodeOfWord(piece);
    if (reserved == OperatorCode::kNone) return;
    // Reserved words never name a variable, so that "y WITH x" can be read without a dictionary.
    fCommand.tokens.back().kind = TokenKind::kWord;
    fCommand.tokens.back().code = reserved;
    return;
  }
  const std::optional<double> number = NumberFromText(piece);
  if (!number) return AddError(keys::kNumberOutOfRange, {Shortened(piece, kShownLength)}, position);
  AddToken(TokenKind::kNumber, piece, position);
  fCommand.tokens.back().number = *number;
}

bool CommandReader::RestOfLineIsBlank() const {
  CharacterCursor ahead = fCursor;
  while (!ahead.AtEnd() && !ahead.AtLineEnd()) {
    if (ahead.StartsWith("/*")) {
      ahead.Advance();
      ahead.Advance();
      while (!ahead.AtEnd() && !ahead.AtLineEnd() && !ahead.StartsWith("*/"))
        ahead.Advance();
      if (ahead.AtEnd() || ahead.AtLineEnd()) return true;  // a comment may run on over lines
      ahead.Advance();
    } else if (!IsBlank(ahead.Byte()) || ahead.Byte() == ',') {
      return false;
    }
    ahead.Advance();
  }
  return true;
}

void CommandReader::AddToken(TokenKind kind, std::string_view text, const SourcePosition& position) {
  host::TokenInfoObj& token = fCommand.tokens.emplace_back();
  token.kind = kind;
  token.text = text;
  token.position = position;
}

void CommandReader::AddError(const char* key, std::vector<std::string> arguments,
                             const SourcePosition& position) {
  if (fCommand.errors.size() < kMaxErrors) fCommand.errors.push_back({key, std::move(arguments), position});
}

}  // namespace standalone
