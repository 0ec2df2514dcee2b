#include "settings_file.h"

#include "../own_settings.h"
#include "base/product_names.h"
#include "platform/files.h"

#include <cstdlib>
#include <filesystem>
#include <pwd.h>
#include <string_view>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <vector>

namespace platform {

namespace {

namespace fs = std::filesystem;

/// A folder's name may hold a line end on this system; a line of the file may not.
std::string escaped(const std::string& value) {
    std::string text;
    for (char c : value) {
        if (c == '\\')
            text += "\\\\";
        else if (c == '\n')
            text += "\\n";
        else if (c == '\r')
            text += "\\r";
        else
            text += c;
    }
    return text;
}

/// A backslash before anything else is one that a person has typed, and means itself.
std::string unescaped(std::string_view text) {
    std::string value;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char next = text[i] == '\\' && i + 1 < text.size() ? text[i + 1] : '\0';
        if (next == '\\' || next == 'n' || next == 'r') {
            value += next == 'n' ? '\n' : next == 'r' ? '\r' : '\\';
            ++i;
        } else {
            value += text[i];
        }
    }
    return value;
}

/// The lines of the file without their ends, none if there is no file; nothing if there is one that cannot be
/// read.
std::optional<std::vector<std::string>> readLines(const std::string& path) {
    const auto content = readWholeFile(path);
    if (!content && fileExists(path))
        return std::nullopt;
    std::vector<std::string> lines;
    if (!content)
        return lines;
    std::string line;
    for (unsigned char c : *content) {
        if (c == '\n')
            lines.push_back(std::exchange(line, {}));
        else
            line += static_cast<char>(c);
    }
    if (!line.empty())
        lines.push_back(line);
    // A file that went through an editor of the other system.
    for (std::string& each : lines)
        if (each.ends_with('\r'))
            each.pop_back();
    return lines;
}

std::string homeFolder() {
    const char* home = std::getenv("HOME");
    if (home && *home)
        return home;
    passwd entry = {};
    passwd* found = nullptr;
    std::vector<char> texts(16384);
    if (getpwuid_r(getuid(), &entry, texts.data(), texts.size(), &found) == 0 && found && found->pw_dir)
        return found->pw_dir;
    return {};
}

/// Looks for the file at each question: a host may set up its environment after it has loaded us.
class OwnSettings final : public SettingsStore {
  public:
    std::optional<std::string> read(const std::string& name) override {
        return SettingsFile(ownSettingsPath()).read(name);
    }
    bool write(const std::string& name, const std::string& value) override {
        return SettingsFile(ownSettingsPath()).write(name, value);
    }
};

} // namespace

SettingsFile::SettingsFile(std::string path) : path_(std::move(path)) {}

std::optional<std::string> SettingsFile::read(const std::string& name) {
    const auto lines = readLines(path_);
    if (!lines)
        return std::nullopt;
    for (const std::string& line : *lines)
        if (line.starts_with(name + "="))
            return unescaped(std::string_view(line).substr(name.size() + 1));
    return std::nullopt;
}

bool SettingsFile::write(const std::string& name, const std::string& value) {
    if (path_.empty())
        return false;
    std::error_code error;
    const fs::path target = fs::weakly_canonical(path_, error);
    if (error)
        return false;
    fs::create_directories(target.parent_path(), error);
    const auto lines = readLines(target);
    if (!lines)
        return false;
    std::string text;
    bool placed = false;
    for (const std::string& line : *lines) {
        const bool isOurs = line.starts_with(name + "=");
        if (isOurs && placed)
            continue;
        text += isOurs ? name + "=" + escaped(value) : line;
        text += '\n';
        placed = placed || isOurs;
    }
    if (!placed)
        text += name + "=" + escaped(value) + "\n";
    return writeWholeFile(target, text.data(), text.size());
}

std::string ownSettingsPath() {
    const char* configuration = std::getenv("XDG_CONFIG_HOME");
    std::string folder;
    // A relative path there is to be taken for none.
    if (configuration && *configuration == '/')
        folder = configuration;
    else if (const std::string home = homeFolder(); !home.empty())
        folder = home + "/.config";
    else
        return {};
    return folder.append("/")
        .append(base::kVendorName)
        .append("/")
        .append(base::kProductName)
        .append(".conf");
}

SettingsStore& ownSettings() {
    static OwnSettings settings;
    return settings;
}

} // namespace platform
