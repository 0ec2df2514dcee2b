#include "child_process.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <stdexcept>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace test {

namespace {

/// A nameless file: takes any amount without anybody reading along.
int makeSink() {
    const int sink = memfd_create("output", MFD_CLOEXEC);
    if (sink < 0)
        throw std::runtime_error("no file for a program's output");
    return sink;
}

std::string contentOf(int file) {
    std::string content;
    char block[4096];
    off_t at = 0;
    for (ssize_t got; (got = pread(file, block, sizeof block, at)) > 0; at += got)
        content.append(block, static_cast<std::size_t>(got));
    return content;
}

[[noreturn]] void become(const std::vector<std::string>& arguments, const ChildProcess::Setting& setting,
                         int output, int error) {
    for (const auto& [name, value] : setting.environment) {
        if (value.empty())
            unsetenv(name.c_str());
        else
            setenv(name.c_str(), value.c_str(), 1);
    }
    if (!setting.currentDirectory.empty() && chdir(setting.currentDirectory.c_str()) != 0)
        _exit(126);
    dup2(output, STDOUT_FILENO);
    dup2(error, STDERR_FILENO);
    if (setting.closeStandardOutput)
        close(STDOUT_FILENO);
    if (setting.closeStandardError)
        close(STDERR_FILENO);
    std::vector<char*> pointers;
    for (const std::string& argument : arguments)
        pointers.push_back(const_cast<char*>(argument.c_str()));
    pointers.push_back(nullptr);
    execv(pointers[0], pointers.data());
    _exit(127);
}

} // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& arguments, const Setting& setting)
    : output_(makeSink()), error_(makeSink()) {
    pid_ = fork();
    if (pid_ < 0)
        throw std::runtime_error("no process for " + arguments[0]);
    if (pid_ == 0)
        become(arguments, setting, output_, error_);
}

ChildProcess::~ChildProcess() {
    if (isRunning()) {
        kill(pid_, SIGKILL);
        waitpid(pid_, nullptr, 0);
    }
    close(output_);
    close(error_);
}

bool ChildProcess::isRunning() {
    if (!ended_ && waitpid(pid_, &status_, WNOHANG) == pid_)
        ended_ = true;
    return !ended_;
}

int ChildProcess::wait() {
    if (!waitUntil([this] { return !isRunning(); }))
        return -1;
    return WIFEXITED(status_) ? WEXITSTATUS(status_) : 128 + WTERMSIG(status_);
}

std::string ChildProcess::standardOutput() const {
    return contentOf(output_);
}

std::string ChildProcess::standardError() const {
    return contentOf(error_);
}

} // namespace test
