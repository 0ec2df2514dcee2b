// A process is known here by its handle, which takes the place of its number.

#include "child_process.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <io.h>
#include <stdexcept>
#include <windows.h>

namespace test {

namespace {

HANDLE processHandle(pid_t process) {
    return reinterpret_cast<HANDLE>(static_cast<std::intptr_t>(process));
}

HANDLE fileHandle(int descriptor) {
    return reinterpret_cast<HANDLE>(_get_osfhandle(descriptor));
}

/// A file that vanishes when it is closed: takes any amount without anybody reading along.
int makeSink() {
    char folder[MAX_PATH], path[MAX_PATH];
    if (!GetTempPathA(MAX_PATH, folder) || !GetTempFileNameA(folder, "out", 0, path))
        throw std::runtime_error("no file for a program's output");
    const HANDLE sink = CreateFileA(path, GENERIC_READ | GENERIC_WRITE,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    CREATE_ALWAYS, FILE_FLAG_DELETE_ON_CLOSE, nullptr);
    const int descriptor =
        sink == INVALID_HANDLE_VALUE ? -1 : _open_osfhandle(reinterpret_cast<std::intptr_t>(sink), 0);
    if (descriptor < 0)
        throw std::runtime_error("no file for a program's output");
    return descriptor;
}

std::string contentOf(int sink) {
    // With a place of its own in the file, as the program shares that of the sink.
    const HANDLE reader =
        ReOpenFile(fileHandle(sink), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, 0);
    std::string content;
    std::array<char, 4096> block;
    for (DWORD got = 0; ReadFile(reader, block.data(), block.size(), &got, nullptr) && got > 0;)
        content.append(block.data(), got);
    CloseHandle(reader);
    return content;
}

/// What a program written in C takes apart into these arguments again.
std::string commandLine(const std::vector<std::string>& arguments) {
    std::string line;
    for (const std::string& argument : arguments) {
        line += line.empty() ? "\"" : " \"";
        std::size_t backslashes = 0;
        for (char c : argument) {
            if (c == '"')
                line.append(backslashes + 1, '\\');
            backslashes = c == '\\' ? backslashes + 1 : 0;
            line += c;
        }
        line.append(backslashes, '\\');
        line += '"';
    }
    return line;
}

/// This process's own environment with some of it changed, each variable ended by a NUL, and all of them.
std::string environmentBlock(const std::map<std::string, std::string>& changes) {
    std::string block;
    char* const own = GetEnvironmentStringsA();
    for (const char* entry = own; *entry; entry += std::strlen(entry) + 1) {
        const std::string variable = entry;
        if (!changes.contains(variable.substr(0, variable.find('=', 1))))
            block += variable + '\0';
    }
    FreeEnvironmentStringsA(own);
    for (const auto& [name, value] : changes)
        if (!value.empty())
            block += name + '=' + value + '\0';
    return block + '\0';
}

HANDLE inheritable(int descriptor) {
    SetHandleInformation(fileHandle(descriptor), HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT);
    return fileHandle(descriptor);
}

} // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& arguments, const Setting& setting)
    : output_(makeSink()), error_(makeSink()) {
    STARTUPINFOA start = {};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdOutput = setting.closeStandardOutput ? nullptr : inheritable(output_);
    start.hStdError = setting.closeStandardError ? nullptr : inheritable(error_);
    std::string command = commandLine(arguments);
    std::string environment = environmentBlock(setting.environment);
    const char* const folder = setting.currentDirectory.empty() ? nullptr : setting.currentDirectory.c_str();
    PROCESS_INFORMATION started = {};
    if (!CreateProcessA(arguments[0].c_str(), command.data(), nullptr, nullptr, TRUE, 0, environment.data(),
                        folder, &start, &started))
        throw std::runtime_error("no process for " + arguments[0]);
    CloseHandle(started.hThread);
    pid_ = reinterpret_cast<std::intptr_t>(started.hProcess);
}

ChildProcess::~ChildProcess() {
    if (isRunning()) {
        TerminateProcess(processHandle(pid_), 1);
        WaitForSingleObject(processHandle(pid_), INFINITE);
    }
    CloseHandle(processHandle(pid_));
    _close(output_);
    _close(error_);
}

bool ChildProcess::isRunning() {
    if (!ended_ && WaitForSingleObject(processHandle(pid_), 0) == WAIT_OBJECT_0) {
        DWORD code = 0;
        GetExitCodeProcess(processHandle(pid_), &code);
        status_ = static_cast<int>(code);
        ended_ = true;
    }
    return !ended_;
}

int ChildProcess::wait() {
    return waitUntil([this] { return !isRunning(); }) ? status_ : -1;
}

std::string ChildProcess::standardOutput() const {
    return contentOf(output_);
}

std::string ChildProcess::standardError() const {
    return contentOf(error_);
}

} // namespace test
