// Finding things by name in folders that people put together by hand, on one system for another.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace platform {

/// Separates folders in the paths that this system gives.
extern const char kFolderSeparator;

/// The names of everything in a folder, without the folder itself and the one above it, in the order in which
/// the file system gives them. Empty if the folder cannot be read. Never on the audio thread.
std::vector<std::string> listFolder(const std::string& folder);

/// The true path of `name` below `folder`, as this system opens it; nothing if there is no such thing.
///
/// Skins come from a system where "Images\BG.PNG" finds images/bg.png, and they do here: either slash parts
/// folders, and letter case (of the Latin letters without accents) does not matter. The exact name goes
/// before its look-alikes, and of those the first in byte order is taken, whatever order the folder has.
std::optional<std::string> findPath(const std::string& folder, const std::string& name);

} // namespace platform
