// A file or folder that is to be found in a second place.
#pragma once

#include <filesystem>

namespace desk {

/// Makes `link` lead to `target`, an absolute path: what changes in the one place has changed in the other.
/// Removing the link leaves the target. Where the system has no such link for the two, `link` becomes a copy
/// of the target, with all that is in it. True for a link, false for a copy. Throws
/// std::filesystem::filesystem_error if neither can be made. Never on the audio thread.
bool makeLink(const std::filesystem::path& target, const std::filesystem::path& link);

/// Takes away what makeLink() has made, and nothing of its target. Throws std::filesystem::filesystem_error.
void removeLink(const std::filesystem::path& link);

} // namespace desk
