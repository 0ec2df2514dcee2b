// What a person has chosen and keeps: across windows, instances, hosts and days. One text for each name, per
// user of the machine. Projects do not carry it and hosts know nothing of it.
#pragma once

#include <optional>
#include <string>

namespace platform {

/// The text kept under `name`; nothing if there is none or it cannot be read. Any thread but the audio
/// thread.
std::optional<std::string> readSetting(const std::string& name);

/// Keeps `value` under `name` in place of what was there; all other settings stay. A reader at the same time
/// sees the old text or the new one and nothing between. False if it could not be kept; then the old text is
/// still there. `value` may hold anything but NUL.
bool writeSetting(const std::string& name, const std::string& value);

/// Where settings are kept.
class SettingsStore {
  public:
    virtual ~SettingsStore() = default;
    virtual std::optional<std::string> read(const std::string& name) = 0;
    virtual bool write(const std::string& name, const std::string& value) = 0;
};

/// Sends every following question to `store` in place of the person's own settings, so that a test can answer
/// it; null brings the person's back. Process-wide; set it before other threads run.
void replaceSettingsStore(SettingsStore* store);

} // namespace platform
