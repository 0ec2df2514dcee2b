#include "desk/own_output.h"

#include <cerrno>
#include <fcntl.h>
#include <stdexcept>
#include <string>
#include <system_error>
#include <unistd.h>

namespace desk {

namespace {

[[noreturn]] void fail() {
    throw std::runtime_error("standard output cannot be kept apart: " +
                             std::generic_category().message(errno));
}

std::FILE* splitOutput() {
    std::fflush(stdout);
    const int own = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    if (own < 0)
        fail();
    if (dup2(STDERR_FILENO, STDOUT_FILENO) < 0) {
        // With standard error closed there is nowhere to send a library's words but away.
        const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
        if (nowhere < 0 || dup2(nowhere, STDOUT_FILENO) < 0)
            fail();
        close(nowhere);
    }
    std::FILE* stream = fdopen(own, "w");
    if (!stream)
        fail();
    return stream;
}

} // namespace

std::FILE* takeOwnOutput() {
    static std::FILE* const stream = splitOutput();
    return stream;
}

std::FILE* ownInput() {
    return stdin;
}

bool isTerminal(std::FILE* stream) {
    return isatty(fileno(stream)) == 1;
}

} // namespace desk
