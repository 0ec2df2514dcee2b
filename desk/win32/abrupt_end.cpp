// What runs at an abrupt end may find any lock taken and the heap damaged: calls of the system on buffers
// that were prepared beforehand, and nothing else.

#include "desk/abrupt_end.h"

#include "../unfinished_paths.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>
#include <windows.h>

namespace desk {

namespace {

constexpr UINT kExitFailure = 2;
constexpr DWORD kPatienceMilliseconds = 10000;
/// The system ends a process five seconds after its console was closed.
constexpr DWORD kConsolePatienceMilliseconds = 4000;
constexpr std::size_t kLongestPath = 4096;
constexpr std::size_t kLongestDescription = 3 * kLongestPath;

const char* toolName = nullptr;
CallDescription describeCall = nullptr;
HANDLE mainThread = nullptr;
/// Handlers may run on several threads at once; one of them ends the process.
std::atomic<bool> isWatched = false, areRequestsNoted = false, isRequestNoted = false;
std::atomic<DWORD> endingThread = 0;

UnfinishedPaths<wchar_t, kLongestPath> unfinished;

/// One line of text, cut where it would not fit. For the thread that ends the process, which may have little
/// stack left.
class Line {
  public:
    Line() {
        add(toolName);
        add(": ");
    }
    void add(const char* text) {
        while (*text && length_ < buffer.size() - 2)
            buffer[length_++] = *text++;
    }
    void addHexadecimal(DWORD number) {
        char digits[] = "0x00000000";
        for (int i = 9; i > 1; --i, number >>= 4)
            digits[i] = "0123456789abcdef"[number & 15];
        add(digits);
    }
    void send() {
        buffer[length_++] = '\r';
        buffer[length_++] = '\n';
        DWORD written = 0;
        WriteFile(GetStdHandle(STD_ERROR_HANDLE), buffer.data(), static_cast<DWORD>(length_), &written,
                  nullptr);
    }

  private:
    static inline std::array<char, kLongestDescription> buffer;
    std::size_t length_ = 0;
};

/// What tells a file from all others of this machine.
struct FileIdentity {
    DWORD volume = 0, high = 0, low = 0;
    bool operator==(const FileIdentity&) const = default;
};

bool identify(HANDLE file, FileIdentity& identity) {
    BY_HANDLE_FILE_INFORMATION information;
    if (!GetFileInformationByHandle(file, &information))
        return false;
    identity = {information.dwVolumeSerialNumber, information.nFileIndexHigh, information.nFileIndexLow};
    return true;
}

/// A file that this process has open cannot be removed.
void closeAllHandlesOf(const wchar_t* path) {
    const HANDLE file = CreateFileW(path, 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, 0, nullptr);
    FileIdentity wanted;
    const bool isKnown = file != INVALID_HANDLE_VALUE && identify(file, wanted);
    if (file != INVALID_HANDLE_VALUE)
        CloseHandle(file);
    constexpr std::uintptr_t highestHandle = 0x10000;
    for (std::uintptr_t number = 4; isKnown && number < highestHandle; number += 4) {
        const auto handle = reinterpret_cast<HANDLE>(number);
        FileIdentity found;
        if (GetFileType(handle) == FILE_TYPE_DISK && identify(handle, found) && found == wanted)
            CloseHandle(handle);
    }
}

void removeFile(const wchar_t* path) {
    if (DeleteFileW(path) || GetLastError() == ERROR_FILE_NOT_FOUND)
        return;
    closeAllHandlesOf(path);
    SetFileAttributesW(path, FILE_ATTRIBUTE_NORMAL);
    DeleteFileW(path);
}

/// The path grows and shrinks in the one buffer. A link to a folder goes, and what it leads to stays. A
/// library that is loaded keeps its file, and with it the folder, to the end of the process.
void removeFolder(wchar_t* path, std::size_t length, int depth) {
    WIN32_FIND_DATAW entry;
    const auto append = [&](const wchar_t* name) {
        std::size_t end = length;
        path[end++] = L'\\';
        while (*name && end < kLongestPath - 1)
            path[end++] = *name++;
        path[end] = 0;
        return end;
    };
    append(L"*");
    const HANDLE search = FindFirstFileW(path, &entry);
    if (search != INVALID_HANDLE_VALUE) {
        do {
            if (std::wcscmp(entry.cFileName, L".") == 0 || std::wcscmp(entry.cFileName, L"..") == 0)
                continue;
            const std::size_t end = append(entry.cFileName);
            if (!(entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY))
                removeFile(path);
            else if (entry.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT)
                RemoveDirectoryW(path);
            else if (depth > 0)
                removeFolder(path, end, depth - 1);
        } while (FindNextFileW(search, &entry));
        FindClose(search);
    }
    path[length] = 0;
    RemoveDirectoryW(path);
}

void removeUnfinished() {
    // The current directory cannot be removed.
    SetCurrentDirectoryW(L"\\");
    unfinished.forEach([](const wchar_t* path, UnfinishedPath::Kind kind) {
        constexpr int deepest = 16;
        static std::array<wchar_t, kLongestPath> buffer;
        const std::size_t length = std::wcslen(path);
        std::wmemcpy(buffer.data(), path, length + 1);
        kind == UnfinishedPath::Kind::file ? removeFile(buffer.data())
                                           : removeFolder(buffer.data(), length, deepest);
    });
}

[[noreturn]] void endProcess(UINT status) {
    removeUnfinished();
    TerminateProcess(GetCurrentProcess(), status);
    for (;;)
        Sleep(INFINITE);
}

/// Makes this thread the one to end the process; another waits for that. One that comes by again has failed
/// at its work, and ends the process without more of it.
void becomeTheOneToEnd(UINT status) {
    const DWORD thread = GetCurrentThreadId();
    DWORD other = 0;
    if (endingThread.compare_exchange_strong(other, thread))
        return;
    if (other == thread)
        TerminateProcess(GetCurrentProcess(), status);
    for (;;)
        Sleep(INFINITE);
}

/// What an end needs of a stack is kept for it, so that also a stack overflow can be told of.
void keepStackForTheEnd() {
    ULONG size = 16 * kLongestPath;
    SetThreadStackGuarantee(&size);
}

const char* exceptionName(DWORD code) {
    switch (code) {
    case EXCEPTION_ACCESS_VIOLATION:
        return "access violation";
    case EXCEPTION_STACK_OVERFLOW:
        return "stack overflow";
    case EXCEPTION_ILLEGAL_INSTRUCTION:
    case EXCEPTION_PRIV_INSTRUCTION:
        return "illegal instruction";
    case EXCEPTION_INT_DIVIDE_BY_ZERO:
    case EXCEPTION_INT_OVERFLOW:
        return "arithmetic error";
    default:
        return nullptr;
    }
}

void addCrash(Line& line) {
    static std::array<char, kLongestDescription> call;
    const bool isInCall = describeCall(call.data(), call.size());
    line.add("crash");
    line.add(isInCall ? " of " : call[0] ? " outside of the calls of " : "");
    line.add(call.data());
    line.add(": ");
}

LONG WINAPI handleException(EXCEPTION_POINTERS* exception) {
    const DWORD code = exception->ExceptionRecord->ExceptionCode;
    becomeTheOneToEnd(code);
    Line line;
    addCrash(line);
    if (const char* name = exceptionName(code)) {
        line.add(name);
    } else {
        line.add("exception ");
        line.addHexadecimal(code);
    }
    line.send();
    endProcess(code);
}

extern "C" void handleAbort(int) {
    constexpr UINT abortStatus = 3; // as without a handler
    becomeTheOneToEnd(abortStatus);
    Line line;
    addCrash(line);
    line.add("abort");
    line.send();
    endProcess(abortStatus);
}

DWORD WINAPI endUnlessDone(void* patience) {
    if (WaitForSingleObject(mainThread, static_cast<DWORD>(reinterpret_cast<std::uintptr_t>(patience))) ==
        WAIT_OBJECT_0)
        return 0;
    constexpr UINT controlC = 0xC000013A;
    becomeTheOneToEnd(controlC);
    endProcess(controlC);
}

/// On a thread that the system makes for it.
BOOL WINAPI handleConsole(DWORD event) {
    const bool isLastWord = event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT;
    const bool isFirst = areRequestsNoted && !isRequestNoted.exchange(true);
    if (!isFirst)
        return static_cast<BOOL>(endUnlessDone(nullptr) == 0);
    const DWORD patience = isLastWord ? kConsolePatienceMilliseconds : kPatienceMilliseconds;
    void* const argument = reinterpret_cast<void*>(static_cast<std::uintptr_t>(patience));
    if (isLastWord) // the process is over as soon as this returns
        endUnlessDone(argument);
    else if (const HANDLE guard = CreateThread(nullptr, 0, endUnlessDone, argument, 0, nullptr))
        CloseHandle(guard);
    return TRUE;
}

/// exit() runs this after what the library itself wants to have run.
void handleExit() {
    if (!isWatched)
        return;
    becomeTheOneToEnd(kExitFailure);
    static std::array<char, kLongestDescription> call;
    const bool isInCall = describeCall(call.data(), call.size());
    Line line;
    line.add("the process was ended by ");
    line.add(isInCall || call[0] ? call.data() : "exit()");
    line.send();
    endProcess(kExitFailure);
}

/// On each thread that begins, whoever made it. For libraries whose C runtime is not this one, the system's
/// own way out comes by here too.
void NTAPI handleLoader(void*, DWORD reason, void*) {
    if (reason == DLL_THREAD_ATTACH && isWatched)
        keepStackForTheEnd();
    if (reason == DLL_PROCESS_DETACH)
        handleExit();
}

} // namespace

// A name that the linker keeps, in the table of what the system calls for each thread and for the process.
extern "C" __attribute__((section(".CRT$XLD"), used)) const PIMAGE_TLS_CALLBACK kQuillonLoader = handleLoader;

AbruptEndWatch::AbruptEndWatch(const char* tool, CallDescription description) {
    toolName = tool;
    describeCall = description;
    DuplicateHandle(GetCurrentProcess(), GetCurrentThread(), GetCurrentProcess(), &mainThread, SYNCHRONIZE,
                    FALSE, 0);
    isWatched = true;
    keepStackForTheEnd();
    SetErrorMode(SetErrorMode(0) | SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
    SetUnhandledExceptionFilter(handleException);
    std::signal(SIGABRT, handleAbort);
    SetConsoleCtrlHandler(handleConsole, TRUE);
    std::atexit(handleExit);
}

AbruptEndWatch::~AbruptEndWatch() {
    isWatched = false;
}

void noteEndRequests() {
    areRequestsNoted = true;
}

bool isEndRequested() {
    return isRequestNoted;
}

UnfinishedPath::UnfinishedPath(const std::filesystem::path& path, Kind kind)
    : place_(unfinished.add(path.native(), kind)) {}

UnfinishedPath::~UnfinishedPath() {
    unfinished.remove(place_);
}

bool makeNewFile(const std::filesystem::path& path) {
    const int file = _wopen(path.c_str(), _O_WRONLY | _O_CREAT | _O_EXCL | _O_BINARY, _S_IREAD | _S_IWRITE);
    return file >= 0 && _close(file) == 0;
}

} // namespace desk
