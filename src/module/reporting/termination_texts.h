// What is said about how a fit ended.
#pragma once

#include "component/estimation/optimizer.h"

namespace tavo {

/// Dictionary keys: of the note on the last iteration, and of the warning.
struct TerminationTexts {
  const char* note;     // null: none
  bool hasChanges;      // the note shows the last changes
  const char* warning;  // null: the end is as it should be
};

/// The texts of a state; none for kNone and for a state without a meaning.
const TerminationTexts& TextsOf(TerminationState state);

}  // namespace tavo
