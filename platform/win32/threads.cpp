#include "platform/threads.h"

#include <windows.h>

namespace platform {

std::uint64_t currentThread() {
    // What the language offers makes a record of each thread that it meets, with handles and under a lock.
    return GetCurrentThreadId();
}

} // namespace platform
