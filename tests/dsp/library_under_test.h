// The built library as a host loads it, in surroundings that belong to the test program alone: an empty
// current folder and home, and no display, so that messages go to standard error and nobody has to click them
// away.
#pragma once

#include "host/plugin.h"

/// Loaded before the first test, the same for all tests of a program.
const host::Library& libraryUnderTest();

/// How a host behaves that does not listen: nothing is recorded, so a run may be as long as it likes.
host::HostBehaviour quietHost();
