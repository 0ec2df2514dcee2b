#include "support/own_process.h"

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <stdexcept>

namespace conversation {
namespace {

constexpr rlim_t kLongestRun = 300; // seconds of work, however long others keep the processor

std::string readToTheEnd(int descriptor) {
    std::string text;
    std::array<char, 4096> piece;
    for (;;) {
        const ssize_t count = read(descriptor, piece.data(), piece.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return text;
        text.append(piece.data(), static_cast<std::size_t>(count));
    }
}

int runGuarded(const std::function<void()>& body) {
    try {
        body();
    } catch (const std::exception& error) {
        std::printf("ended by an exception: %s\n", error.what());
        return 2;
    }
    return ::testing::Test::HasFailure() ? 1 : 0;
}

} // namespace

ProcessEnd runInOwnProcess(const std::function<void()>& body) {
    int errorPipe[2];
    if (pipe(errorPipe) != 0)
        throw std::runtime_error("no pipe for a process of its own");
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child < 0)
        throw std::runtime_error("no process of its own");
    if (child == 0) {
        close(errorPipe[0]);
        dup2(errorPipe[1], STDERR_FILENO);
        close(errorPipe[1]);
        const rlimit limit = {kLongestRun, kLongestRun};
        setrlimit(RLIMIT_CPU, &limit);
        const int code = runGuarded(body);
        std::fflush(nullptr);
        _exit(code);
    }
    close(errorPipe[1]);
    ProcessEnd end;
    end.errors = readToTheEnd(errorPipe[0]);
    close(errorPipe[0]);
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    end.exited = WIFEXITED(status);
    end.code = end.exited ? WEXITSTATUS(status) : WTERMSIG(status);
    return end;
}

std::string errorsOf(const std::function<void()>& body) {
    const ProcessEnd end = runInOwnProcess(body);
    EXPECT_TRUE(end.exited && end.code == 0)
        << (end.exited ? "exit code " : "ended by signal ") << end.code << "\nstandard error:\n"
        << end.errors.substr(0, 4000);
    return end.errors;
}

void leaveThePersonsSettingsAlone(const std::string& folder) {
    setenv("HOME", folder.c_str(), 1);
    setenv("XDG_CONFIG_HOME", (folder + "/.config").c_str(), 1);
    unsetenv("DISPLAY");
    unsetenv("WAYLAND_DISPLAY");
}

} // namespace conversation
