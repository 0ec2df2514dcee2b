// A folder that belongs to one run of a tool or test and vanishes with it.
#pragma once

#include "desk/abrupt_end.h"

#include <filesystem>
#include <optional>
#include <string>

namespace desk {

/// Makes an empty private folder the current directory; the destructor goes back and removes the folder with
/// all that was left in it, and so does an abrupt end of a process that watches for one. Plug-ins may write
/// into the current directory, and that must not be the person's. Resolve relative paths before. Throws
/// std::runtime_error if no folder can be made.
class PrivateFolder {
  public:
    PrivateFolder();
    ~PrivateFolder();
    PrivateFolder(const PrivateFolder&) = delete;
    PrivateFolder& operator=(const PrivateFolder&) = delete;
    /// As a plug-in in this folder would name it (see path_text.h); empty if it cannot.
    std::string path() const;

  private:
    std::filesystem::path path_;
    std::filesystem::path previous_;
    std::optional<UnfinishedPath> unfinished_;
};

} // namespace desk
