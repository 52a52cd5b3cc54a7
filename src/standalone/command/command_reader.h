// The tokeniser of command files.
//
// A text is cut at blanks and commas, operators, quotes and line ends; what lies between two cuts is one
// piece, and a piece that reads as a whole as a number is a number, any other a word. So "1/2" is three
// tokens and "-1/2" too, but "2-1" is one word (the language has no arithmetic), and a file name such as
// plan-2.xml needs no quotes. A comma is a blank: lists may be written with commas. Between two digits it is
// refused, since 0,5 may mean one number or two.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "standalone/command/character_cursor.h"
#include "standalone/command/command_file.h"

namespace standalone {

/// Reads a text once, from front to end, in linear time.
class CommandReader {
 public:
  explicit CommandReader(std::string_view text) : fCursor(text) {}
  std::vector<CommandTokens> Read();

 private:
  void ReadNext();
  void EndLine();
  void EndCommand();
  void SkipBlank();
  void SkipComment();
  void ReadOperator(host::OperatorCode code);
  void ReadLiteral();
  void RecoverFromOpenLiteral(const host::SourcePosition& start, std::string_view restOfLine);
  void ReadPiece();
  /// Checks the character at the cursor; reports at most one bad character per piece.
  void CheckCharacter(bool& isGood);
  void CheckTypography(std::string_view piece, const host::SourcePosition& position, bool& isGood);
  void AddPiece(std::string_view piece, const host::SourcePosition& position);
  bool RestOfLineIsBlank() const;

  void AddToken(host::TokenKind kind, std::string_view text, const host::SourcePosition& position);
  void AddError(const char* key, std::vector<std::string> arguments, const host::SourcePosition& position);

  CharacterCursor fCursor;
  bool fbLineHasContent = false;  // a token or a comment stands on the line
  char fLastByte = '\0';          // the byte in front of the cursor when it ended a piece
  CommandTokens fCommand;
  std::vector<CommandTokens> fCommands;
};

}  // namespace standalone
