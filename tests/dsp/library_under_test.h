// The built library as a host loads it, in surroundings that belong to the test program alone: an empty
// current folder and home, and no display, so that messages go to standard error and nobody has to click them
// away.
#pragma once

#include "host/plugin.h"

#include <string>
#include <vector>

/// Loaded before the first test, the same for all tests of a program.
const host::Library& libraryUnderTest();

struct NamedLibrary {
    std::string name;
    host::Library library;
};

/// The built library, and after it one like it for each instruction set that it can choose and this processor
/// has, held to that set.
const std::vector<NamedLibrary>& librariesUnderTest();

/// How a host behaves that does not listen: nothing is recorded, so a run may be as long as it likes.
host::HostBehaviour quietHost();
