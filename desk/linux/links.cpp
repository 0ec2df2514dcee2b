#include "desk/links.h"

namespace desk {

bool makeLink(const std::filesystem::path& target, const std::filesystem::path& link) {
    std::filesystem::create_symlink(target, link);
    return true;
}

void removeLink(const std::filesystem::path& link) {
    std::filesystem::remove(link);
}

} // namespace desk
