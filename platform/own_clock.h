// The system's side of the clock. Only the platform room sees it.
#pragma once

#include "platform/clock.h"

namespace platform {

/// The clock of this machine.
Clock& ownClock();

} // namespace platform
