#include "platform/threads.h"

#include <pthread.h>

namespace platform {

std::uint64_t currentThread() {
    return pthread_self();
}

} // namespace platform
