#include "platform/own_output.h"

#include <cerrno>
#include <fcntl.h>
#include <io.h>
#include <stdexcept>
#include <string>
#include <system_error>
#include <windows.h>

namespace platform {

namespace {

constexpr int standardOutput = 1;
constexpr int standardError = 2;

[[noreturn]] void fail() {
    throw std::runtime_error("standard output cannot be kept apart: " +
                             std::generic_category().message(errno));
}

HANDLE handleOf(int descriptor) {
    return reinterpret_cast<HANDLE>(_get_osfhandle(descriptor));
}

/// Sends descriptor 1 to standard error, or away where that is closed.
void divertStandardOutput() {
    if (_dup2(standardError, standardOutput) != 0) {
        const int nowhere = _open("NUL", _O_WRONLY);
        if (nowhere < 0 || _dup2(nowhere, standardOutput) != 0)
            fail();
        _close(nowhere);
    }
    // A library with a C runtime of its own asks the system and not our descriptors.
    SetStdHandle(STD_OUTPUT_HANDLE, handleOf(standardOutput));
}

std::FILE* splitOutput() {
    std::fflush(stdout);
    const int own = _dup(standardOutput);
    if (own < 0)
        fail();
    SetHandleInformation(handleOf(own), HANDLE_FLAG_INHERIT, 0);
    divertStandardOutput();
    // The same bytes as on every other system.
    _setmode(own, _O_BINARY);
    std::FILE* stream = _fdopen(own, "wb");
    if (!stream)
        fail();
    return stream;
}

} // namespace

std::FILE* takeOwnOutput() {
    static std::FILE* const stream = splitOutput();
    return stream;
}

bool isTerminal(std::FILE* stream) {
    DWORD mode = 0;
    return GetConsoleMode(handleOf(_fileno(stream)), &mode);
}

} // namespace platform
