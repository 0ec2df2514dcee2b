// What the person asked for, read from the command line and checked as far as that goes without opening a
// file.
#pragma once

#include "tools/common/effect_settings.h"

#include <filesystem>
#include <string>
#include <variant>
#include <vector>

namespace tools::window {

struct Options {
    std::string skin;                 ///< name or folder; empty: the person's own choice
    std::filesystem::path library;    ///< empty: look for the plug-in near the tool
    std::filesystem::path screenshot; ///< empty: show the window and stay
    std::string program;              ///< number or name; empty: as the effect comes up
    std::vector<SettingOption> settings;
    std::filesystem::path newSkin; ///< a folder to create; empty: none
    bool watch = false;
    bool outlines = false;
    bool check = false;
};

/// Text to print in place of doing anything.
struct HelpText {
    std::string text;
};

/// Reads the command line. Throws ToolError with one line about the first thing that is wrong. All paths come
/// out absolute.
std::variant<Options, HelpText> parseOptions(int argumentCount, const char* const* arguments);

} // namespace tools::window
