// Settings as lines "Name=text" of one file, which a person may read, edit and take along. Only the platform
// room and its tests see it.
#pragma once

#include "platform/settings.h"

namespace platform {

class SettingsFile final : public SettingsStore {
  public:
    /// `path` need not exist, nor its folder; an empty one stands for a file that cannot be had.
    explicit SettingsFile(std::string path);

    std::optional<std::string> read(const std::string& name) override;
    /// Makes the file and its folder if they are missing, and puts the new file in the old one's place in one
    /// step. Lines that it does not understand stay as they are. Where the path is a link, the link stays.
    bool write(const std::string& name, const std::string& value) override;

  private:
    std::string path_;
};

/// Where this person's settings lie: below XDG_CONFIG_HOME, else below ".config" in the home folder. Empty
/// for somebody who has neither.
std::string ownSettingsPath();

} // namespace platform
