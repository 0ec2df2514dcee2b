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

/// A file that is closed at the end of its scope, and at exec. Not under the number of a standard stream.
class OpenFile {
  public:
    OpenFile(const std::filesystem::path& path, int flags) {
        const int opened = open(path.c_str(), flags | O_CLOEXEC, 0600);
        descriptor_ = opened < 0 ? -1 : fcntl(opened, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
        const int error = errno;
        if (opened >= 0)
            close(opened);
        if (descriptor_ < 0)
            throw std::runtime_error(path.string() +
                                     " cannot be opened: " + std::generic_category().message(error));
    }
    ~OpenFile() { close(descriptor_); }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    /// Makes it that standard stream, too. Between fork and exec.
    bool becomes(int stream) const { return dup2(descriptor_, stream) >= 0; }

  private:
    int descriptor_ = -1;
};

struct Streams {
    explicit Streams(const ChildCommand& command)
        : input("/dev/null", O_RDONLY), output(command.output, O_WRONLY | O_CREAT | O_TRUNC),
          errors(command.errors, O_WRONLY | O_CREAT | O_TRUNC) {}
    OpenFile input, output, errors;
};

/// Between fork and exec, so system calls alone.
[[noreturn]] void become(const ChildCommand& command, const Streams& streams, char* const* words,
                         pid_t parent) {
    constexpr int notStarted = 127;
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    const bool isReady = getppid() == parent && streams.input.becomes(STDIN_FILENO) &&
                         streams.output.becomes(STDOUT_FILENO) && streams.errors.becomes(STDERR_FILENO) &&
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
    words.reserve(texts.size() + 1);
    for (std::string& text : texts)
        words.push_back(text.data());
    words.push_back(nullptr);
    const Streams streams(command);
    const pid_t parent = getpid();
    system_->process = fork();
    if (system_->process == 0)
        become(command, streams, words.data(), parent);
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

std::uint32_t ownProcessId() {
    return static_cast<std::uint32_t>(getpid());
}

} // namespace desk
