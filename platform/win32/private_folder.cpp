#include "platform/private_folder.h"

#include <filesystem>
#include <stdexcept>
#include <system_error>
#include <windows.h>

namespace platform {

namespace files = std::filesystem;

namespace {

/// Makes a new folder among the person's own temporary files, which others cannot read.
files::path makeFolder() {
    const files::path place = files::temp_directory_path();
    const std::string process = std::to_string(GetCurrentProcessId());
    for (unsigned number = 0;; ++number) {
        const files::path folder = place / ("quillon-" + process + '-' + std::to_string(number));
        if (files::create_directory(folder))
            return folder;
    }
}

/// A link to a folder goes, and what it leads to stays; what is write-protected goes too.
void removeFolder(const files::path& folder) {
    std::error_code ignored;
    for (const files::directory_entry& entry : files::directory_iterator(folder, ignored)) {
        const wchar_t* const path = entry.path().c_str();
        const DWORD attributes = GetFileAttributesW(path);
        SetFileAttributesW(path, FILE_ATTRIBUTE_NORMAL);
        if (!(attributes & FILE_ATTRIBUTE_DIRECTORY))
            DeleteFileW(path);
        else if (attributes & FILE_ATTRIBUTE_REPARSE_POINT)
            RemoveDirectoryW(path);
        else
            removeFolder(entry.path());
    }
    RemoveDirectoryW(folder.c_str());
}

} // namespace

PrivateFolder::PrivateFolder() try {
    previous_ = files::current_path().string();
    const files::path folder = makeFolder();
    path_ = folder.string();
    files::current_path(folder);
} catch (const files::filesystem_error& error) {
    throw std::runtime_error("no private folder can be made: " + error.code().message());
}

PrivateFolder::~PrivateFolder() {
    std::error_code ignored;
    files::current_path(previous_, ignored);
    removeFolder(path_);
}

} // namespace platform
