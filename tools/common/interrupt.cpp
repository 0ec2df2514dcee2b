#include "tools/common/interrupt.h"

#include <csignal>

namespace tools {

namespace {

volatile std::sig_atomic_t hasCome = 0;

extern "C" void takeNote(int) {
    hasCome = 1;
}

} // namespace

void watchForInterrupts() {
    std::signal(SIGINT, takeNote);
    std::signal(SIGTERM, takeNote);
}

bool isInterrupted() {
    return hasCome != 0;
}

void stopIfInterrupted() {
    if (isInterrupted())
        throw Interrupted();
}

} // namespace tools
