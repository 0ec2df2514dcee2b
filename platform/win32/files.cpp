#include "platform/files.h"

#include <algorithm>
#include <array>
#include <limits>

#include <windows.h>

namespace platform {
namespace {

/// An open file, closed with its scope.
class File {
  public:
    File(const std::string& path, DWORD access, DWORD sharing, DWORD creation)
        : handle_(CreateFileA(path.c_str(), access, sharing, nullptr, creation, FILE_ATTRIBUTE_NORMAL,
                              nullptr)) {}
    ~File() {
        if (*this)
            CloseHandle(handle_);
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    explicit operator bool() const { return handle_ != INVALID_HANDLE_VALUE; }
    HANDLE handle() const { return handle_; }

  private:
    HANDLE handle_;
};

DWORD inOneGo(std::size_t size) {
    return static_cast<DWORD>(std::min<std::size_t>(size, std::numeric_limits<DWORD>::max()));
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

bool writeWholeFile(const std::string& path, const void* data, std::size_t size) {
    const File file(path, GENERIC_WRITE, 0, CREATE_ALWAYS);
    if (!file)
        return false;
    const auto* bytes = static_cast<const unsigned char*>(data);
    std::size_t done = 0;
    while (done < size) {
        DWORD put = 0;
        if (!WriteFile(file.handle(), bytes + done, inOneGo(size - done), &put, nullptr) || put == 0)
            return false;
        done += put;
    }
    return true;
}

} // namespace platform
