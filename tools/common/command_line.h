// What the command lines of all tools have in common.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace CLI {
class App;
}

namespace tools {

/// The path that a word of the command line (UTF-8) means.
std::filesystem::path pathFromWord(const std::string& text);

/// The path made absolute; nothing stays nothing. A library runs in a folder of its own, so every path must
/// be settled before one is loaded.
std::filesystem::path settled(const std::string& text);

/// Reads the command line. Gives the help if that is what was asked for. Throws ToolError with one line about
/// the first thing that is wrong.
std::optional<std::string> parseOrHelp(CLI::App& app, int argumentCount, const char* const* arguments);

/// Throws ToolError if an option that wants something was given an empty text.
void checkNothingIsEmpty(const CLI::App& app);

} // namespace tools
