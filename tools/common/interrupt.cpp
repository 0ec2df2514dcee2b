#include "tools/common/interrupt.h"

#include "platform/abrupt_end.h"

namespace tools {

void watchForInterrupts() {
    platform::noteEndRequests();
}

bool isInterrupted() {
    return platform::isEndRequested();
}

void stopIfInterrupted() {
    if (isInterrupted())
        throw Interrupted();
}

} // namespace tools
