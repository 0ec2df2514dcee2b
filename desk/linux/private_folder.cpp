#include "desk/private_folder.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <system_error>

namespace desk {

namespace files = std::filesystem;

PrivateFolder::PrivateFolder() {
    std::error_code error;
    previous_ = files::current_path(error);
    if (error)
        throw std::runtime_error("the current folder cannot be named: " + error.message());
    std::string path = (previous_ / files::temp_directory_path(error) / "quillon-XXXXXX").string();
    if (error || !mkdtemp(path.data()))
        throw std::runtime_error("no private folder can be made: " +
                                 (error ? error : std::error_code(errno, std::generic_category())).message());
    path_ = path;
    unfinished_.emplace(path_, UnfinishedPath::Kind::folder);
    files::current_path(path_, error);
    if (error) {
        std::error_code ignored;
        files::remove(path_, ignored);
        throw std::runtime_error(path + " cannot be entered: " + error.message());
    }
}

PrivateFolder::~PrivateFolder() {
    std::error_code ignored;
    files::current_path(previous_, ignored);
    files::remove_all(path_, ignored);
}

std::string PrivateFolder::path() const {
    return path_.string();
}

} // namespace desk
