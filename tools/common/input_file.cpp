#include "tools/common/input_file.h"

#include "tools/common/tool_error.h"

#include <cerrno>
#include <fstream>
#include <system_error>

namespace tools {

namespace {

template <typename Bytes>
Bytes readWhole(const std::filesystem::path& path, std::uintmax_t limit) {
    std::error_code error;
    if (std::filesystem::is_directory(path, error))
        throw ToolError(path.string() + " is a folder, not a file");
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw ToolError(path.string() + " cannot be read: " + std::generic_category().message(errno));
    Bytes bytes;
    char piece[65536];
    while (file.read(piece, sizeof piece), file.gcount() > 0) {
        bytes.insert(bytes.end(), piece, piece + file.gcount());
        if (bytes.size() > limit)
            throw ToolError(path.string() + " is too long to be a file of this kind");
    }
    if (file.bad())
        throw ToolError(path.string() + " cannot be read completely");
    return bytes;
}

} // namespace

std::vector<std::uint8_t> readBytes(const std::filesystem::path& path, std::uintmax_t limit) {
    return readWhole<std::vector<std::uint8_t>>(path, limit);
}

std::string readText(const std::filesystem::path& path, std::uintmax_t limit) {
    return readWhole<std::string>(path, limit);
}

} // namespace tools
