// Worker threads of the embedded host.
#pragma once

#include <memory>

#include "host/threads.h"

namespace standalone {

/// A service whose pools keep their threads for their whole life and run tasks in the order of posting. A
/// pool of fewer than one thread has one. Destroying a pool first runs what was posted. When the system
/// refuses a thread, the pool makes do with those it has; with none at all `MakePool` throws
/// std::system_error.
std::unique_ptr<host::TaskThreadService> MakeTaskThreadService();

}  // namespace standalone
