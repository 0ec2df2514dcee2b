#include "support/tool_run.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <pty.h>
#include <sstream>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace {

void redirect(int descriptor, const std::string& file) {
    const int opened = open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    dup2(opened, descriptor);
    close(opened);
}

[[noreturn]] void become(const std::string& tool, const std::vector<std::string>& arguments) {
    std::vector<char*> words;
    words.push_back(const_cast<char*>(tool.c_str()));
    for (const std::string& argument : arguments)
        words.push_back(const_cast<char*>(argument.c_str()));
    words.push_back(nullptr);
    execv(tool.c_str(), words.data());
    _exit(127);
}

std::string textOf(const std::string& file) {
    const auto bytes = readFile(file);
    return {bytes.begin(), bytes.end()};
}

} // namespace

std::vector<std::string> ToolResult::errorLines() const {
    std::vector<std::string> lines;
    std::istringstream stream(err);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

ToolResult runTool(const ScratchFolder& folder, const std::vector<std::string>& arguments, ErrorEnd errorEnd,
                   const std::string& tool) {
    return RunningTool(folder, arguments, errorEnd, tool).wait();
}

RunningTool::RunningTool(const ScratchFolder& folder, const std::vector<std::string>& arguments,
                         ErrorEnd errorEnd, const std::string& tool) {
    int terminalEnd = -1;
    if (errorEnd == ErrorEnd::terminal && openpty(&terminal_, &terminalEnd, nullptr, nullptr, nullptr) != 0)
        throw std::runtime_error("no terminal can be had");
    process_ = fork();
    if (process_ == 0) {
        redirect(STDOUT_FILENO, own_.file("out"));
        if (terminalEnd >= 0)
            dup2(terminalEnd, STDERR_FILENO);
        else
            redirect(STDERR_FILENO, own_.file("err"));
        setenv("HOME", own_.path().c_str(), 1);
        setenv("XDG_CONFIG_HOME", own_.path().c_str(), 1);
        setenv("TMPDIR", temporary_.path().c_str(), 1);
        unsetenv("DISPLAY");
        if (chdir(folder.path().c_str()) != 0)
            _exit(126);
        become(tool, arguments);
    }
    if (terminalEnd >= 0)
        close(terminalEnd);
}

RunningTool::~RunningTool() {
    if (process_ > 0) {
        kill(static_cast<pid_t>(process_), SIGKILL);
        waitpid(static_cast<pid_t>(process_), nullptr, 0);
    }
    if (terminal_ >= 0)
        close(terminal_);
}

void RunningTool::send(int signal) {
    kill(static_cast<pid_t>(process_), signal);
}

ToolResult RunningTool::wait() {
    ToolResult result;
    if (terminal_ >= 0)
        result.err = readTerminal();
    int status = 0;
    waitpid(static_cast<pid_t>(process_), &status, 0);
    process_ = -1;
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    result.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    result.leftBehind = temporary_.names();
    result.out = textOf(own_.file("out"));
    if (terminal_ < 0)
        result.err = textOf(own_.file("err"));
    return result;
}

/// Until the other end is closed, which is when the tool has ended.
std::string RunningTool::readTerminal() {
    std::string text;
    char piece[4096];
    for (ssize_t length = 0; (length = read(terminal_, piece, sizeof piece)) > 0;)
        text.append(piece, static_cast<std::size_t>(length));
    return text;
}
