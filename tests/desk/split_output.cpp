// A tool that keeps its standard output to itself while a library would chatter on it.

#include "desk/own_output.h"

#include <cstdio>
#include <stdexcept>
#include <unistd.h>

int main() {
    std::printf("before|");
    try {
        std::FILE* own = desk::takeOwnOutput();
        std::printf("chatter through the stream|");
        std::fflush(stdout);
        if (write(STDOUT_FILENO, "chatter through the descriptor|", 31) < 0)
            return 3;
        std::fprintf(own, "answer");
        if (desk::takeOwnOutput() != own)
            return 2;
    } catch (const std::runtime_error& error) {
        std::fprintf(stderr, "%s", error.what());
        return 1;
    }
    return 0;
}
