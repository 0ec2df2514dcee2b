#include "desk/own_output.h"

#include <cerrno>
#include <fcntl.h>
#include <io.h>
#include <stdexcept>
#include <string>
#include <system_error>
#include <windows.h>

namespace desk {

namespace {

constexpr int kStandardOutput = 1;
constexpr int kStandardError = 2;

[[noreturn]] void fail(int error) {
    throw std::runtime_error("standard output cannot be kept apart: " +
                             std::generic_category().message(error));
}

HANDLE handleOf(int descriptor) {
    return reinterpret_cast<HANDLE>(_get_osfhandle(descriptor));
}

/// The runtime keeps a descriptor also for a stream that the program was started without.
bool isOpen(int descriptor) {
    return GetFileType(handleOf(descriptor)) != FILE_TYPE_UNKNOWN;
}

/// Sends descriptor 1 to standard error, or away where that is closed.
void divertStandardOutput() {
    if (!isOpen(kStandardError) || _dup2(kStandardError, kStandardOutput) != 0) {
        const int nowhere = _open("NUL", _O_WRONLY);
        if (nowhere < 0 || _dup2(nowhere, kStandardOutput) != 0)
            fail(errno);
        _close(nowhere);
    }
    // A library with a C runtime of its own asks the system and not our descriptors.
    SetStdHandle(STD_OUTPUT_HANDLE, handleOf(kStandardOutput));
}

std::FILE* splitOutput() {
    std::fflush(stdout);
    if (!isOpen(kStandardOutput))
        fail(EBADF);
    const int own = _dup(kStandardOutput);
    if (own < 0)
        fail(errno);
    SetHandleInformation(handleOf(own), HANDLE_FLAG_INHERIT, 0);
    divertStandardOutput();
    // The same bytes as on every other system.
    _setmode(own, _O_BINARY);
    std::FILE* stream = _fdopen(own, "wb");
    if (!stream)
        fail(errno);
    return stream;
}

} // namespace

std::FILE* takeOwnOutput() {
    static std::FILE* const stream = splitOutput();
    return stream;
}

std::FILE* ownInput() {
    _setmode(_fileno(stdin), _O_BINARY);
    return stdin;
}

bool isTerminal(std::FILE* stream) {
    DWORD mode = 0;
    return GetConsoleMode(handleOf(_fileno(stream)), &mode);
}

} // namespace desk
