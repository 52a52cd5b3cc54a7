// The session's door for messages, replaced for these tests by one that records.
#pragma once

#include "command_dump.h"

namespace command_test {

/// What `SendMessage` was given since the last clear.
RecordingSink& SessionMessages();

}  // namespace command_test
