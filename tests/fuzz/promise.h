// How a fuzz target says that a promise was broken.
#pragma once

#include <cstdio>
#include <cstdlib>

/// Ends the process, which a fuzzer takes for a find, if the promise is not kept.
inline void promise(bool kept, const char* what) {
    if (kept)
        return;
    std::fprintf(stderr, "broken promise: %s\n", what);
    std::abort();
}
