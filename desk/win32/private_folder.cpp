// In the system's own letters throughout: the person's name, and with it the path of their temporary files,
// may have letters that the code page of the machine lacks.

#include "desk/private_folder.h"

#include "platform/path_text.h"

#include "left_over.h"

#include <array>
#include <cwchar>
#include <functional>
#include <stdexcept>
#include <system_error>
#include <windows.h>

namespace desk {

namespace {

[[noreturn]] void fail(const char* what) {
    throw std::runtime_error(std::string(what) + ": " +
                             std::system_category().message(static_cast<int>(GetLastError())));
}

/// Calls `visit` with each entry of a folder but the folder itself and the one above it.
void forEachEntry(const std::wstring& folder, const std::function<void(const WIN32_FIND_DATAW&)>& visit) {
    WIN32_FIND_DATAW entry;
    const HANDLE search = FindFirstFileW((folder + L"\\*").c_str(), &entry);
    if (search == INVALID_HANDLE_VALUE)
        return;
    do {
        if (std::wcscmp(entry.cFileName, L".") != 0 && std::wcscmp(entry.cFileName, L"..") != 0)
            visit(entry);
    } while (FindNextFileW(search, &entry));
    FindClose(search);
}

/// A link to a folder goes, and what it leads to stays; what is write-protected goes too.
void removeFolder(const std::wstring& folder) {
    forEachEntry(folder, [&](const WIN32_FIND_DATAW& entry) {
        const std::wstring path = folder + L'\\' + entry.cFileName;
        SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
        if (!(entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY))
            DeleteFileW(path.c_str());
        else if (entry.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT)
            RemoveDirectoryW(path.c_str());
        else
            removeFolder(path);
    });
    RemoveDirectoryW(folder.c_str());
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
void removeLeftOvers(const std::wstring& place) {
    forEachEntry(place, [&](const WIN32_FIND_DATAW& entry) {
        if (isLeftOver(entry))
            removeFolder(place + entry.cFileName);
    });
}

/// Makes a new folder among the person's own temporary files, which others cannot read.
std::wstring makeFolder() {
    std::array<wchar_t, MAX_PATH + 1> place = {};
    GetTempPathW(static_cast<DWORD>(place.size()), place.data());
    removeLeftOvers(place.data());
    const std::wstring process = std::to_wstring(GetCurrentProcessId());
    for (unsigned number = 0;; ++number) {
        std::wstring folder =
            std::wstring(place.data()) + L"quillon-" + process + L'-' + std::to_wstring(number);
        if (CreateDirectoryW(folder.c_str(), nullptr))
            return folder;
        if (GetLastError() != ERROR_ALREADY_EXISTS)
            fail("no private folder can be made");
    }
}

} // namespace

bool isLeftOver(const WIN32_FIND_DATAW& entry) {
    if ((entry.dwFileAttributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT)) !=
        FILE_ATTRIBUTE_DIRECTORY)
        return false;
    unsigned process = 0, number = 0;
    int length = 0;
    std::swscanf(entry.cFileName, L"quillon-%u-%u%n", &process, &number, &length);
    return length > 0 && static_cast<std::size_t>(length) == std::wcslen(entry.cFileName) &&
           !isRunning(process);
}

PrivateFolder::PrivateFolder() {
    std::array<wchar_t, MAX_PATH> current = {};
    const DWORD length = GetCurrentDirectoryW(static_cast<DWORD>(current.size()), current.data());
    if (length == 0 || length >= current.size())
        fail("the current folder cannot be named");
    previous_ = current.data();
    path_ = makeFolder();
    unfinished_.emplace(path_, UnfinishedPath::Kind::folder);
    if (!SetCurrentDirectoryW(path_.c_str())) {
        RemoveDirectoryW(path_.c_str());
        fail("the private folder cannot be entered");
    }
}

PrivateFolder::~PrivateFolder() {
    SetCurrentDirectoryW(previous_.c_str());
    removeFolder(path_.native());
}

std::string PrivateFolder::path() const {
    return platform::textOfPath(path_).value_or(std::string());
}

} // namespace desk
