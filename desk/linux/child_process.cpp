#include "desk/child_process.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace desk {

namespace {

/// Opens `file` under the number of a standard stream. Between fork and exec, so system calls alone.
bool openAs(int stream, const char* file, int flags) {
    const int opened = open(file, flags, 0600);
    if (opened < 0 || dup2(opened, stream) < 0)
        return false;
    if (opened != stream)
        close(opened);
    return true;
}

[[noreturn]] void become(const ChildCommand& command, char* const* words, pid_t parent) {
    constexpr int notStarted = 127;
    constexpr int create = O_WRONLY | O_CREAT | O_TRUNC;
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    const bool isReady = getppid() == parent && openAs(STDIN_FILENO, "/dev/null", O_RDONLY) &&
                         openAs(STDOUT_FILENO, command.output.c_str(), create) &&
                         openAs(STDERR_FILENO, command.errors.c_str(), create) &&
                         chdir(command.folder.c_str()) == 0;
    if (isReady)
        execv(command.program.c_str(), words);
    _exit(notStarted);
}

} // namespace

class ChildProcess::System {
  public:
    pid_t process = -1;
    std::optional<ProcessEnd> end;
};

ChildProcess::ChildProcess(const ChildCommand& command) : system_(std::make_unique<System>()) {
    std::vector<std::string> texts = {command.program.string()};
    texts.insert(texts.end(), command.words.begin(), command.words.end());
    std::vector<char*> words;
    for (std::string& text : texts)
        words.push_back(text.data());
    words.push_back(nullptr);
    const pid_t parent = getpid();
    system_->process = fork();
    if (system_->process == 0)
        become(command, words.data(), parent);
    if (system_->process < 0)
        throw std::runtime_error(command.program.string() +
                                 " cannot be started: " + std::generic_category().message(errno));
}

ChildProcess::~ChildProcess() {
    if (end())
        return;
    endByForce();
    waitpid(system_->process, nullptr, 0);
}

std::optional<ProcessEnd> ChildProcess::end() {
    int status = 0;
    if (system_->end || waitpid(system_->process, &status, WNOHANG) != system_->process)
        return system_->end;
    if (WIFEXITED(status))
        system_->end = ProcessEnd{WEXITSTATUS(status), ""};
    else if (WIFSIGNALED(status))
        system_->end = ProcessEnd{-1, "signal " + std::to_string(WTERMSIG(status))};
    return system_->end;
}

void ChildProcess::requestEnd() {
    if (!end())
        kill(system_->process, SIGTERM);
}

void ChildProcess::endByForce() {
    if (!end())
        kill(system_->process, SIGKILL);
}

std::uint32_t ChildProcess::id() const {
    return static_cast<std::uint32_t>(system_->process);
}

std::filesystem::path ownProgram() {
    std::error_code error;
    const std::filesystem::path link = "/proc/self/exe";
    const std::filesystem::path named = std::filesystem::read_symlink(link, error);
    // A program that has been replaced since can still be started by the link.
    return !error && std::filesystem::equivalent(named, link, error) ? named : link;
}

std::uint32_t ownProcessId() {
    return static_cast<std::uint32_t>(getpid());
}

} // namespace desk
