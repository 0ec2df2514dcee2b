#include "platform/settings.h"

#include "own_settings.h"

namespace platform {

namespace {

SettingsStore* replacement = nullptr;

SettingsStore& currentStore() {
    return replacement ? *replacement : ownSettings();
}

} // namespace

std::optional<std::string> readSetting(const std::string& name) {
    return currentStore().read(name);
}

bool writeSetting(const std::string& name, const std::string& value) {
    return currentStore().write(name, value);
}

void replaceSettingsStore(SettingsStore* store) {
    replacement = store;
}

} // namespace platform
