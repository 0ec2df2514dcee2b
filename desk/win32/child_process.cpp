#include "desk/child_process.h"

#include "platform/win32/wide_text.h"

#include <cstdio>
#include <stdexcept>

namespace desk {

namespace {

/// A word of a command line, so that the program that is started reads it as it is.
std::wstring quoted(const std::wstring& word) {
    std::wstring text = L"\"";
    std::size_t backslashes = 0;
    for (const wchar_t c : word) {
        // Backslashes stand for themselves unless a quotation mark follows.
        if (c == L'"')
            text.append(backslashes + 1, L'\\');
        backslashes = c == L'\\' ? backslashes + 1 : 0;
        text += c;
    }
    text.append(backslashes, L'\\');
    return text + L'"';
}

class Handle {
  public:
    explicit Handle(HANDLE handle = nullptr) : handle_(handle) {}
    ~Handle() {
        if (isValid())
            CloseHandle(handle_);
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    bool isValid() const { return handle_ && handle_ != INVALID_HANDLE_VALUE; }
    HANDLE get() const { return handle_; }
    void take(HANDLE handle) { handle_ = handle; }

  private:
    HANDLE handle_;
};

/// Opens a file that the child inherits.
HANDLE openFor(const std::filesystem::path& file, DWORD access, DWORD disposition) {
    SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
    return CreateFileW(file.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                       &inherited, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
}

/// All children are in it, and end when the last handle to it is closed: at the end of this process, whatever
/// that is.
HANDLE commonJob() {
    static const HANDLE job = [] {
        const HANDLE made = CreateJobObjectW(nullptr, nullptr);
        JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits = {};
        limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
        SetInformationJobObject(made, JobObjectExtendedLimitInformation, &limits, sizeof limits);
        return made;
    }();
    return job;
}

ProcessEnd endFrom(DWORD code) {
    if (code <= 0xFF)
        return {static_cast<int>(code), ""};
    char text[32];
    std::snprintf(text, sizeof text, "exception 0x%08lX", code);
    return {-1, text};
}

} // namespace

class ChildProcess::System {
  public:
    Handle process;
    DWORD id = 0;
};

ChildProcess::ChildProcess(const ChildCommand& command) : system_(std::make_unique<System>()) {
    std::wstring line = quoted(command.program.native());
    for (const std::string& word : command.words)
        line += L' ' + quoted(platform::wide(word));
    const Handle input(openFor("NUL", GENERIC_READ, OPEN_EXISTING));
    const Handle output(openFor(command.output, GENERIC_WRITE, CREATE_ALWAYS));
    const Handle errors(openFor(command.errors, GENERIC_WRITE, CREATE_ALWAYS));
    STARTUPINFOW surroundings = {};
    surroundings.cb = sizeof surroundings;
    surroundings.dwFlags = STARTF_USESTDHANDLES;
    surroundings.hStdInput = input.get();
    surroundings.hStdOutput = output.get();
    surroundings.hStdError = errors.get();
    PROCESS_INFORMATION started = {};
    // Suspended, so that it cannot outlive this process before it is in the job.
    const bool isStarted =
        output.isValid() && errors.isValid() &&
        CreateProcessW(command.program.c_str(), line.data(), nullptr, nullptr, TRUE, CREATE_SUSPENDED,
                       nullptr, command.folder.c_str(), &surroundings, &started);
    if (!isStarted)
        throw std::runtime_error(platform::utf8(command.program.native()) + " cannot be started: error " +
                                 std::to_string(GetLastError()));
    system_->process.take(started.hProcess);
    system_->id = started.dwProcessId;
    AssignProcessToJobObject(commonJob(), started.hProcess);
    ResumeThread(started.hThread);
    CloseHandle(started.hThread);
}

ChildProcess::~ChildProcess() {
    if (end())
        return;
    endByForce();
    WaitForSingleObject(system_->process.get(), INFINITE);
}

std::optional<ProcessEnd> ChildProcess::end() {
    DWORD code = 0;
    if (WaitForSingleObject(system_->process.get(), 0) != WAIT_OBJECT_0 ||
        !GetExitCodeProcess(system_->process.get(), &code))
        return std::nullopt;
    return endFrom(code);
}

void ChildProcess::requestEnd() {}

void ChildProcess::endByForce() {
    constexpr UINT killed = 0xC000013A;
    TerminateProcess(system_->process.get(), killed);
}

std::uint32_t ChildProcess::id() const {
    return system_->id;
}

std::uint32_t ownProcessId() {
    return GetCurrentProcessId();
}

} // namespace desk
