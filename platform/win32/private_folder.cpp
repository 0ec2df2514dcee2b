#include "platform/private_folder.h"

#include "platform/folders.h"

#include <cstdio>
#include <stdexcept>
#include <system_error>
#include <windows.h>

namespace platform {

namespace {

[[noreturn]] void fail(const char* what) {
    throw std::runtime_error(std::string(what) + ": " +
                             std::system_category().message(static_cast<int>(GetLastError())));
}

/// A link to a folder goes, and what it leads to stays; what is write-protected goes too.
void removeFolder(const std::string& folder) {
    for (const std::string& name : listFolder(folder)) {
        const std::string path = folder + '\\' + name;
        const DWORD attributes = GetFileAttributesA(path.c_str());
        SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_NORMAL);
        if (!(attributes & FILE_ATTRIBUTE_DIRECTORY))
            DeleteFileA(path.c_str());
        else if (attributes & FILE_ATTRIBUTE_REPARSE_POINT)
            RemoveDirectoryA(path.c_str());
        else
            removeFolder(path);
    }
    RemoveDirectoryA(folder.c_str());
}

bool isRunning(DWORD process) {
    const HANDLE handle = OpenProcess(SYNCHRONIZE, FALSE, process);
    if (!handle)
        return GetLastError() == ERROR_ACCESS_DENIED;
    const bool isOver = WaitForSingleObject(handle, 0) == WAIT_OBJECT_0;
    CloseHandle(handle);
    return !isOver;
}

/// A library that is loaded for good keeps its file to the end of the process, and with it the folder.
/// Whoever comes next takes that away.
void removeLeftOvers(const std::string& place) {
    for (const std::string& name : listFolder(place)) {
        unsigned process = 0, number = 0;
        int length = 0;
        std::sscanf(name.c_str(), "quillon-%u-%u%n", &process, &number, &length);
        if (length > 0 && static_cast<std::size_t>(length) == name.size() && !isRunning(process))
            removeFolder(place + name);
    }
}

/// Makes a new folder among the person's own temporary files, which others cannot read.
std::string makeFolder() {
    char place[MAX_PATH + 1] = "";
    GetTempPathA(sizeof place, place);
    removeLeftOvers(place);
    const std::string process = std::to_string(GetCurrentProcessId());
    for (unsigned number = 0;; ++number) {
        std::string folder = std::string(place) + "quillon-" + process + '-' + std::to_string(number);
        if (CreateDirectoryA(folder.c_str(), nullptr))
            return folder;
        if (GetLastError() != ERROR_ALREADY_EXISTS)
            fail("no private folder can be made");
    }
}

} // namespace

PrivateFolder::PrivateFolder() {
    char current[MAX_PATH] = "";
    const DWORD length = GetCurrentDirectoryA(sizeof current, current);
    if (length == 0 || length >= sizeof current)
        fail("the current folder cannot be named");
    previous_ = current;
    path_ = makeFolder();
    // The name may be one in the code page of the machine; the system knows it in its own letters.
    wchar_t wide[MAX_PATH] = L"";
    MultiByteToWideChar(CP_ACP, 0, path_.c_str(), -1, wide, MAX_PATH);
    unfinished_.emplace(wide, UnfinishedPath::Kind::folder);
    if (!SetCurrentDirectoryA(path_.c_str())) {
        RemoveDirectoryA(path_.c_str());
        fail("the private folder cannot be entered");
    }
}

PrivateFolder::~PrivateFolder() {
    SetCurrentDirectoryA(previous_.c_str());
    removeFolder(path_);
}

} // namespace platform
