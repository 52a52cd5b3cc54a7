// A run that goes wrong and what its user must see: exit status, messages, the place in the command.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "survey_files.h"

struct ExpectedMessage {
  bool isError = true;
  std::string key;
  std::string says;  // a part of its sentence: the names and numbers of this case
  // The words of the command over the caret, or words before them, a bar and them: "WITH |xx". Empty when the
  // message has no place in the command.
  std::string at = {};
};

inline ExpectedMessage Error(std::string key, std::string says, std::string at = {}) {
  return {true, std::move(key), std::move(says), std::move(at)};
}
inline ExpectedMessage Warning(std::string key, std::string says, std::string at = {}) {
  return {false, std::move(key), std::move(says), std::move(at)};
}

struct BadInput {
  std::string name;
  Analysis analysis;
  int exitStatus;
  std::vector<ExpectedMessage> messages;
};

inline void PrintTo(const BadInput& input, std::ostream* out) {
  *out << input.name;
}

/// Runs it and compares the exit status, every message of the JSON document, and standard error to the
/// letter.
void ExpectAnswer(const BadInput& input);

/// `kSimple` with more subcommands behind it.
std::string CommandWith(const std::string& more);
/// y by g and x, in two lines without the period at the end.
inline const std::string kSimple = "TAVOREG y BY g WITH x\n  /PLAN FILE='plan.xml'";
