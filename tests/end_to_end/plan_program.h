// Calls of tavoreg plan.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "program.h"

using Words = std::vector<std::string>;

inline Words operator+(Words words, const Words& more) {
  words.insert(words.end(), more.begin(), more.end());
  return words;
}

inline ProgramRun Plan(const Words& words, const std::filesystem::path& folder) {
  return RunProgram(Words{"plan"} + words, folder);
}
