#include "platform/path_text.h"

namespace platform {

std::filesystem::path pathFromText(const std::string& text) {
    return text;
}

std::optional<std::string> textOfPath(const std::filesystem::path& path) {
    return path.string();
}

} // namespace platform
