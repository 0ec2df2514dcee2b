// A tool that keeps its standard output to itself while a library would chatter on it, in all three ways.

#include "desk/own_output.h"

#include <cstdio>
#include <io.h>
#include <stdexcept>
#include <windows.h>

int main() {
    std::printf("before|");
    try {
        std::FILE* own = desk::takeOwnOutput();
        std::printf("chatter through the stream|");
        std::fflush(stdout);
        if (_write(1, "chatter through the descriptor|", 31) < 0)
            return 3;
        DWORD written = 0;
        WriteFile(GetStdHandle(STD_OUTPUT_HANDLE), "chatter through the system|", 27, &written, nullptr);
        std::fprintf(own, "answer\n");
        if (desk::takeOwnOutput() != own)
            return 2;
    } catch (const std::runtime_error& error) {
        std::fprintf(stderr, "%s", error.what());
        return 1;
    }
    return 0;
}
