#include "platform/files.h"

#include "platform/path_text.h"

#include "ansi_path.h"

#include <algorithm>
#include <array>
#include <limits>
#include <new>
#include <span>
#include <string_view>
#include <utility>

#include <windows.h>

namespace platform {
namespace {

/// An open file, closed with its scope.
class File {
  public:
    File(const std::string& path, DWORD access, DWORD sharing, DWORD creation)
        : handle_(CreateFileA(path.c_str(), access, sharing, nullptr, creation, FILE_ATTRIBUTE_NORMAL,
                              nullptr)) {}
    ~File() { close(); }
    File(File&& other) noexcept : handle_(std::exchange(other.handle_, INVALID_HANDLE_VALUE)) {}
    File& operator=(File&&) = delete;
    explicit operator bool() const { return handle_ != INVALID_HANDLE_VALUE; }
    HANDLE handle() const { return handle_; }
    void close() {
        if (*this)
            CloseHandle(std::exchange(handle_, INVALID_HANDLE_VALUE));
    }

  private:
    HANDLE handle_;
};

DWORD inOneGo(std::size_t size) {
    return static_cast<DWORD>(std::min<std::size_t>(size, std::numeric_limits<DWORD>::max()));
}

using Bytes = std::span<const unsigned char>;

bool writeAll(const File& file, Bytes bytes) {
    while (!bytes.empty()) {
        DWORD put = 0;
        if (!WriteFile(file.handle(), bytes.data(), inOneGo(bytes.size()), &put, nullptr) || put == 0)
            return false;
        bytes = bytes.subspan(put);
    }
    return true;
}

/// Writes from the start of the file on and cuts off what is left behind.
bool overwrite(const File& file, Bytes bytes) {
    return SetFilePointer(file.handle(), 0, nullptr, FILE_BEGIN) == 0 && writeAll(file, bytes) &&
           SetEndOfFile(file.handle());
}

/// Writes into the file itself. If that fails it gets back what it held, as far as it may be read; one that
/// was not there goes again.
bool writeInPlace(const std::string& path, Bytes bytes, bool exists) {
    const auto before = exists ? readWholeFile(path) : std::nullopt;
    File file(path, GENERIC_WRITE, 0, exists ? OPEN_EXISTING : CREATE_NEW);
    if (!file)
        return false;
    if (overwrite(file, bytes))
        return true;
    if (before)
        overwrite(file, *before);
    file.close();
    if (!exists)
        DeleteFileA(path.c_str());
    return false;
}

/// Whether a new file may take the place of this one: not where other names lead to it, or a link.
bool isReplaceable(const File& file, const std::string& path) {
    BY_HANDLE_FILE_INFORMATION information = {};
    return GetFileInformationByHandle(file.handle(), &information) && information.nNumberOfLinks == 1 &&
           !(GetFileAttributesA(path.c_str()) & FILE_ATTRIBUTE_REPARSE_POINT);
}

enum class Replacement { done, refused, failed };

/// After a step that changes no file: whether that folder takes no new files, while those that it holds may
/// still be written. A name of a draft may be too long, and who looks through new files may hold one.
Replacement refusedOrFailed(DWORD error) {
    const bool isRefused = error == ERROR_ACCESS_DENIED || error == ERROR_WRITE_PROTECT ||
                           error == ERROR_PATH_NOT_FOUND || error == ERROR_FILENAME_EXCED_RANGE ||
                           error == ERROR_SHARING_VIOLATION;
    return isRefused ? Replacement::refused : Replacement::failed;
}

/// Makes a file in `folder` under a name that nothing there has, and puts that name behind `folder`.
File makeDraft(std::string& folder) {
    const std::string start = folder + "qmd" + std::to_string(GetCurrentProcessId()) + "-";
    for (int number = 0;; ++number) {
        folder = start + std::to_string(number);
        File draft(folder, GENERIC_WRITE, 0, CREATE_NEW);
        if (draft || GetLastError() != ERROR_FILE_EXISTS)
            return draft;
    }
}

/// Puts the draft in the place of `path`. Throws nothing: whoever made the draft must go on to remove it.
std::error_code placeDraft(const std::string& draft, const std::string& path) try {
    return giveName(pathFromText(draft), pathFromText(path));
} catch (const std::bad_alloc&) {
    return {ERROR_NOT_ENOUGH_MEMORY, std::system_category()};
}

/// Writes a new file and puts it in the place of `path`: a move is the one step that cannot be seen half
/// done. It is on the disk by then, so that a power cut leaves one of the two.
Replacement replaceFile(const std::string& path, Bytes bytes) {
    std::string draft = path.substr(0, folderLength(path));
    File file = makeDraft(draft);
    if (!file)
        return refusedOrFailed(GetLastError());
    const bool isWritten = writeAll(file, bytes) && FlushFileBuffers(file.handle());
    file.close();
    Replacement result = Replacement::failed;
    if (isWritten) {
        const std::error_code error = placeDraft(draft, path);
        if (!error)
            return Replacement::done;
        result = refusedOrFailed(static_cast<DWORD>(error.value()));
    }
    DeleteFileA(draft.c_str());
    return result;
}

/// Who may do what with a file; empty if the system would not say.
using Security = std::vector<unsigned char>;

Security securityOf(const std::filesystem::path& file) {
    DWORD size = 0;
    GetFileSecurityW(file.c_str(), DACL_SECURITY_INFORMATION, nullptr, 0, &size);
    Security security(size);
    const bool isRead =
        size > 0 && GetFileSecurityW(file.c_str(), DACL_SECURITY_INFORMATION, security.data(), size, &size);
    return isRead ? security : Security();
}

void setSecurity(const std::filesystem::path& file, Security security) {
    if (!security.empty())
        SetFileSecurityW(file.c_str(), DACL_SECURITY_INFORMATION, security.data());
}

/// Gives `draft` the rights of `target` and what else a person has marked it with.
void takeOver(const std::filesystem::path& target, const std::filesystem::path& draft) {
    const DWORD attributes = GetFileAttributesW(target.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return;
    constexpr DWORD marks =
        FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;
    SetFileAttributesW(draft.c_str(), (attributes & marks) | FILE_ATTRIBUTE_ARCHIVE);
    setSecurity(draft, securityOf(target));
}

} // namespace

bool fileExists(const std::string& path) {
    return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

std::optional<std::vector<unsigned char>> readWholeFile(const std::string& path, std::size_t limit,
                                                        Sharing sharing) {
    const DWORD others = sharing == Sharing::everybody ? FILE_SHARE_READ | FILE_SHARE_WRITE : 0;
    const File file(path, GENERIC_READ, others, OPEN_EXISTING);
    if (!file)
        return std::nullopt;
    std::vector<unsigned char> content;
    std::array<unsigned char, 65536> piece;
    while (content.size() < limit) {
        const DWORD wanted = inOneGo(std::min(piece.size(), limit - content.size()));
        DWORD got = 0;
        if (!ReadFile(file.handle(), piece.data(), wanted, &got, nullptr) || got == 0)
            break;
        content.insert(content.end(), piece.data(), piece.data() + got);
    }
    return content;
}

std::error_code giveName(const std::filesystem::path& draft, const std::filesystem::path& target) {
    const DWORD attributes = GetFileAttributesW(target.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY))
        return {ERROR_ACCESS_DENIED, std::system_category()};
    const Security own = securityOf(draft);
    takeOver(target, draft);
    // Keeps more of the old file, such as its second streams, but needs one, and a file system that can.
    if (ReplaceFileW(target.c_str(), draft.c_str(), nullptr, REPLACEFILE_IGNORE_MERGE_ERRORS, nullptr,
                     nullptr) ||
        MoveFileExW(draft.c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
        return {};
    const auto error = static_cast<int>(GetLastError());
    // Whoever made the draft must be able to remove it.
    setSecurity(draft, own);
    return {error, std::system_category()};
}

bool writeWholeFile(const std::string& path, const void* data, std::size_t size) {
    const Bytes bytes(static_cast<const unsigned char*>(data), size);
    // What may not be written, or is open elsewhere, may not be replaced either.
    File old(path, GENERIC_WRITE, 0, OPEN_EXISTING);
    if (!old && GetLastError() != ERROR_FILE_NOT_FOUND)
        return false;
    if (old && GetFileType(old.handle()) != FILE_TYPE_DISK)
        return writeAll(old, bytes);
    const bool exists = static_cast<bool>(old);
    Replacement result = Replacement::refused;
    if (!exists || isReplaceable(old, path)) {
        old.close();
        result = replaceFile(path, bytes);
    }
    old.close();
    if (result == Replacement::refused)
        return writeInPlace(path, bytes, exists);
    return result == Replacement::done;
}

} // namespace platform
