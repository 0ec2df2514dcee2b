// What the tests of child processes start.

#include "desk/arguments.h"
#include "desk/child_process.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

int main(int count, char** arguments) {
    const desk::CommandLine line(count, arguments);
    const std::string action = line.count() > 1 ? line.words()[1] : "";
    if (action == "say") {
        for (int i = 1; i < line.count(); ++i)
            std::printf("[%s]", line.words()[i]);
        std::fprintf(stderr, "done");
    } else if (action == "look") {
        std::printf("%s", std::filesystem::current_path().string().c_str());
        std::fprintf(stderr, std::getchar() == EOF ? "end of input" : "a letter");
    } else if (action == "exit") {
        return std::atoi(line.words()[2]);
    } else if (action == "wait") {
        std::printf("%u", desk::ownProcessId());
        std::fflush(stdout);
        std::this_thread::sleep_for(std::chrono::hours(1));
    } else if (action == "writeAgainAndAgain") {
        for (;;)
            std::ofstream("mark") << "here";
    }
    return 0;
}
