// Symbolic links need a right that few people have here. Anybody may make a junction, which leads from one
// folder to another of this machine.

#include "desk/links.h"

#include <cstddef>
#include <cstring>
#include <string>
#include <system_error>
#include <vector>
#include <windows.h>
#include <winioctl.h>

namespace desk {

namespace files = std::filesystem;

namespace {

/// What a folder holds that is a junction, as the file system reads it. Two texts follow, each with its zero.
struct JunctionHead {
    DWORD tag = IO_REPARSE_TAG_MOUNT_POINT;
    WORD dataLength = 0; ///< of all that follows the next field
    WORD reserved = 0;
    WORD nameOffset = 0; ///< in the texts; all in bytes, without the zeros
    WORD nameLength = 0;
    WORD shownOffset = 0;
    WORD shownLength = 0;
};

std::vector<std::byte> junctionTo(const files::path& target) {
    const std::wstring shown = target.lexically_normal().make_preferred().wstring();
    const std::wstring name = L"\\??\\" + shown;
    const auto bytes = [](std::size_t characters) { return static_cast<WORD>(characters * sizeof(wchar_t)); };
    JunctionHead head;
    head.nameLength = bytes(name.size());
    head.shownOffset = bytes(name.size() + 1);
    head.shownLength = bytes(shown.size());
    const std::size_t texts = bytes(name.size() + 1) + bytes(shown.size() + 1);
    head.dataLength = static_cast<WORD>(sizeof head - offsetof(JunctionHead, nameOffset) + texts);
    std::vector<std::byte> all(sizeof head + texts);
    std::memcpy(all.data(), &head, sizeof head);
    std::memcpy(all.data() + sizeof head, name.c_str(), bytes(name.size() + 1));
    std::memcpy(all.data() + sizeof head + head.shownOffset, shown.c_str(), bytes(shown.size() + 1));
    return all;
}

/// False, with nothing made, if the file system knows no junctions.
bool makeJunction(const files::path& target, const files::path& link) {
    if (!CreateDirectoryW(link.c_str(), nullptr))
        return false;
    const HANDLE folder = CreateFileW(link.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                      FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
    bool isMade = false;
    if (folder != INVALID_HANDLE_VALUE) {
        std::vector<std::byte> junction = junctionTo(target);
        DWORD ignored = 0;
        isMade = DeviceIoControl(folder, FSCTL_SET_REPARSE_POINT, junction.data(),
                                 static_cast<DWORD>(junction.size()), nullptr, 0, &ignored, nullptr);
        CloseHandle(folder);
    }
    std::error_code error;
    // A system that says yes and does nothing is not believed.
    if (isMade && (files::is_empty(target, error) || !files::is_empty(link, error)) && !error)
        return true;
    RemoveDirectoryW(link.c_str());
    return false;
}

void copyTree(const files::path& from, const files::path& to) {
    files::create_directory(to);
    for (const files::directory_entry& entry : files::directory_iterator(from)) {
        if (entry.is_directory())
            copyTree(entry.path(), to / entry.path().filename());
        else
            files::copy_file(entry.path(), to / entry.path().filename());
    }
}

} // namespace

bool makeLink(const files::path& target, const files::path& link) {
    if (!files::is_directory(target)) {
        files::copy_file(target, link);
        return false;
    }
    if (makeJunction(target, link))
        return true;
    copyTree(target, link);
    return false;
}

void removeLink(const files::path& link) {
    // To the standard library a junction is a folder like any other, whose content it would remove first.
    const DWORD attributes = GetFileAttributesW(link.c_str());
    const bool isJunction =
        attributes != INVALID_FILE_ATTRIBUTES && attributes & FILE_ATTRIBUTE_REPARSE_POINT;
    if (!isJunction)
        files::remove_all(link);
    else if (!RemoveDirectoryW(link.c_str()))
        throw files::filesystem_error(
            "cannot remove a link", link,
            std::error_code(static_cast<int>(GetLastError()), std::system_category()));
}

} // namespace desk
