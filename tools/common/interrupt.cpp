#include "tools/common/interrupt.h"

#include "desk/abrupt_end.h"

namespace tools {

void watchForInterrupts() {
    desk::noteEndRequests();
}

bool isInterrupted() {
    return desk::isEndRequested();
}

void stopIfInterrupted() {
    if (isInterrupted())
        throw Interrupted();
}

} // namespace tools
