// The browser is whatever xdg-open says it is. It is started without a shell, so that no letter of a path can
// mean a command, and as a grandchild: the host gets no child that it has not asked for and nobody waits.

#include "../own_browser.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

namespace platform {

namespace {

/// Where the program lies; empty if it does not. Looked up before the fork, after which next to nothing may
/// be done.
std::string findProgram(const std::string& name) {
    const char* path = std::getenv("PATH");
    std::istringstream folders(path ? path : "/usr/local/bin:/usr/bin:/bin");
    for (std::string folder; std::getline(folders, folder, ':');) {
        const std::string program = (folder.empty() ? "." : folder) + "/" + name;
        if (access(program.c_str(), X_OK) == 0)
            return program;
    }
    return {};
}

/// Without a shell there is nobody to take the quotes off.
std::string unquoted(const std::string& argument) {
    if (argument.size() >= 2 && argument.front() == '"' && argument.back() == '"')
        return argument.substr(1, argument.size() - 2);
    return argument;
}

/// Becomes the program. Between fork and exec, other threads' locks are frozen: only calls that take none.
[[noreturn]] void become(const char* program, char* const* arguments) {
    setsid();
    if (fork() != 0)
        _exit(0);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    signal(SIGPIPE, SIG_DFL);
    const int nowhere = open("/dev/null", O_RDWR);
    if (nowhere >= 0)
        for (int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
            dup2(nowhere, stream);
    execv(program, arguments);
    _exit(127);
}

} // namespace

void openOwnBrowser(const std::string& argument) {
    std::string program = findProgram("xdg-open");
    if (program.empty())
        return;
    std::string path = unquoted(argument);
    const std::array<char*, 3> arguments = {program.data(), path.data(), nullptr};
    const pid_t child = fork();
    if (child == 0)
        become(program.c_str(), arguments.data());
    while (child > 0 && waitpid(child, nullptr, 0) < 0 && errno == EINTR)
        continue;
}

} // namespace platform
