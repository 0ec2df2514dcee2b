#include "support/tool_run.h"

#include <windows.h>

#include <sstream>
#include <stdexcept>

namespace {

/// A word of a command line, so that the program that is started reads it as it is.
std::string quoted(const std::string& word) {
    std::string text = "\"";
    std::size_t backslashes = 0;
    for (const char c : word) {
        // Backslashes stand for themselves unless a quotation mark follows.
        if (c == '"')
            text.append(backslashes + 1, '\\');
        backslashes = c == '\\' ? backslashes + 1 : 0;
        text += c;
    }
    text.append(backslashes, '\\');
    return text + '"';
}

/// A file to be inherited by a process.
class Redirection {
  public:
    explicit Redirection(const std::string& file) {
        SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
        handle_ = CreateFileA(file.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS,
                              FILE_ATTRIBUTE_NORMAL, nullptr);
        if (handle_ == INVALID_HANDLE_VALUE)
            throw std::runtime_error("cannot write " + file);
    }
    ~Redirection() { CloseHandle(handle_); }
    Redirection(const Redirection&) = delete;
    Redirection& operator=(const Redirection&) = delete;

    HANDLE handle() const { return handle_; }

  private:
    HANDLE handle_;
};

/// With the ends of lines as the tools write them before the system makes them its own.
std::string textOf(const std::string& file) {
    std::string text;
    for (const std::uint8_t byte : readFile(file)) {
        if (byte == '\n' && text.ends_with('\r'))
            text.pop_back();
        text += static_cast<char>(byte);
    }
    return text;
}

/// Of UTF-8.
std::wstring wide(const std::string& text) {
    const int length = static_cast<int>(text.size());
    std::wstring result(static_cast<std::size_t>(length), 0);
    result.resize(static_cast<std::size_t>(
        MultiByteToWideChar(CP_UTF8, 0, text.data(), length, result.data(), length)));
    return result;
}

HANDLE handleOf(std::intptr_t process) {
    return reinterpret_cast<HANDLE>(process);
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
    if (errorEnd == ErrorEnd::terminal)
        throw std::runtime_error("no terminal can be had");
    std::string command = quoted(tool);
    for (const std::string& argument : arguments)
        command += ' ' + quoted(argument);
    const Redirection out(own_.file("out")), err(own_.file("err"));
    STARTUPINFOW surroundings = {};
    surroundings.cb = sizeof surroundings;
    surroundings.dwFlags = STARTF_USESTDHANDLES;
    surroundings.hStdOutput = out.handle();
    surroundings.hStdError = err.handle();
    wchar_t own[MAX_PATH] = L"";
    GetEnvironmentVariableW(L"TMP", own, MAX_PATH);
    SetEnvironmentVariableW(L"TMP", temporary_.path().c_str());
    PROCESS_INFORMATION started = {};
    const bool isStarted = CreateProcessW(nullptr, wide(command).data(), nullptr, nullptr, TRUE, 0, nullptr,
                                          folder.path().c_str(), &surroundings, &started);
    const DWORD error = GetLastError();
    SetEnvironmentVariableW(L"TMP", own);
    if (!isStarted)
        throw std::runtime_error("cannot start " + tool + ": error " + std::to_string(error));
    CloseHandle(started.hThread);
    process_ = reinterpret_cast<std::intptr_t>(started.hProcess);
}

RunningTool::~RunningTool() {
    if (process_ == -1)
        return;
    TerminateProcess(handleOf(process_), 1);
    CloseHandle(handleOf(process_));
}

void RunningTool::send(int) {
    throw std::runtime_error("no signal can be sent");
}

ToolResult RunningTool::wait() {
    WaitForSingleObject(handleOf(process_), INFINITE);
    DWORD code = 0;
    GetExitCodeProcess(handleOf(process_), &code);
    CloseHandle(handleOf(process_));
    process_ = -1;
    ToolResult result;
    result.exitCode = code <= 0xFF ? static_cast<int>(code) : -1;
    result.leftBehind = temporary_.names();
    result.out = textOf(own_.file("out"));
    result.err = textOf(own_.file("err"));
    return result;
}
