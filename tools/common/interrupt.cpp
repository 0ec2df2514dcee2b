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

void stopIfInterrupted() {
    if (hasCome)
        throw Interrupted();
}

} // namespace tools
