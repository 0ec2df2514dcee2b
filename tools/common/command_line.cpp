#include "tools/common/command_line.h"

#include "tools/common/tool_error.h"

#include <CLI/CLI.hpp>

namespace tools {

std::filesystem::path pathFromWord(const std::string& text) {
    // From a plain text, one system would take each byte for a letter.
    return std::u8string(text.begin(), text.end());
}

std::filesystem::path settled(const std::string& text) {
    return text.empty() ? std::filesystem::path()
                        : std::filesystem::absolute(pathFromWord(text)).lexically_normal();
}

std::optional<std::string> parseOrHelp(CLI::App& app, int argumentCount, const char* const* arguments) {
    try {
        app.parse(argumentCount, arguments);
    } catch (const CLI::CallForHelp&) {
        return app.help();
    } catch (const CLI::ParseError& error) {
        throw ToolError(error.what());
    }
    return std::nullopt;
}

void checkNothingIsEmpty(const CLI::App& app) {
    for (const CLI::Option* option : app.get_options())
        for (const std::string& value : option->results())
            if (option->get_type_size() > 0 && value.empty())
                throw ToolError(option->get_name() + ": nothing was given");
}

} // namespace tools
