// From the tokens of a TAVOREG command to a checked specification.
#pragma once

#include "host/command.h"
#include "host/data.h"
#include "module/command/valid_specs.h"

namespace tavo {

/// Parses the tokens, reads the plan and checks both against the dictionary. Messages go out at the point of
/// failure. The parser owns what `specs` refers to and must outlive its readers.
class TavoCommandParser {
 public:
  /// Nothing is owned.
  TavoCommandParser(const host::VORN_TokenSequence& tokens, TavoValidSpecs& specs,
                    host::ProcedureDataSource& data);
  ~TavoCommandParser();

  /// Once only. Nonzero for success: what was parsed is final then.
  int Parse();

 private:
  class Impl;
  std::unique_ptr<Impl> fpImpl;
};

}  // namespace tavo
