// The file system forgives letter case by itself, and doubled slashes with it. Both slashes part folders for
// it too; what is given out has only its own, so that a folder can be cut off a path.

#include "platform/folders.h"

#include "platform/files.h"

#include "ansi_path.h"

#include <algorithm>
#include <windows.h>

namespace platform {

namespace {

bool isSlash(char c) {
    return c == '/' || c == '\\';
}

std::string withBackslashes(std::string path) {
    std::replace(path.begin(), path.end(), '/', '\\');
    return path;
}

/// A search through a folder, ended with its scope.
class Search {
  public:
    explicit Search(const std::string& pattern) : handle_(FindFirstFileA(pattern.c_str(), &entry_)) {}
    ~Search() {
        if (handle_ != INVALID_HANDLE_VALUE)
            FindClose(handle_);
    }
    Search(const Search&) = delete;
    Search& operator=(const Search&) = delete;

    bool found() const { return handle_ != INVALID_HANDLE_VALUE; }
    bool next() { return FindNextFileA(handle_, &entry_); }
    std::string name() const { return entry_.cFileName; }

  private:
    WIN32_FIND_DATAA entry_ = {};
    HANDLE handle_;
};

} // namespace

const char kFolderSeparator = '\\';

std::vector<std::string> listFolder(const std::string& folder) {
    std::vector<std::string> names;
    Search search((folder.empty() ? "." : withBackslashes(folder)) + "\\*.*");
    if (!search.found())
        return names;
    do {
        const std::string name = search.name();
        if (name != "." && name != "..")
            names.push_back(name);
    } while (search.next());
    return names;
}

std::optional<std::string> findPath(const std::string& folder, const std::string& name) {
    if (std::all_of(name.begin(), name.end(), isSlash))
        return std::nullopt;
    const bool isJoined = folder.empty() || endsInSeparator(folder);
    const std::string path = withBackslashes(isJoined ? folder + name : folder + '\\' + name);
    return fileExists(path) ? std::optional(path) : std::nullopt;
}

} // namespace platform
