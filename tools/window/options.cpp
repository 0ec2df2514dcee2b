#include "tools/window/options.h"

#include "tools/common/command_line.h"
#include "tools/common/text.h"
#include "tools/common/tool_error.h"

#include <CLI/CLI.hpp>

namespace tools::window {

namespace {

constexpr const char* kDescription = "Opens the window of a VST 2.4 effect without a host.\n"
                                     "The default effect is the Quillon Multitap Delay.\n";

constexpr const char* kExamples = R"(Examples:
  Open the window:
    quillon-window

  Edit a skin, and see each change as soon as you save it:
    quillon-window --skin "my skins/Copper" --watch

  Check it for mistakes:
    quillon-window --skin "my skins/Copper" --check

  Save a picture of it; this also works without a screen:
    quillon-window --skin "my skins/Copper" --program 3 --set "Feedback=0.8" --screenshot copper.png

  Save a picture with the position, kind and id of every object:
    quillon-window --skin "my skins/Copper" --outlines --screenshot copper.png

  Create a skin as a starting point for your own:
    quillon-window --new-skin "Copper"

--skin does not change the skin that you have chosen in the plug-in: the plug-in runs in a temporary folder, with
its own settings. Names and values of parameters are written as for quillon-render; see quillon-render --help.

--check prints one line per mistake, FILE:LINE:COLUMN: what, and exits with 1 if there are any.)";

struct Words {
    std::string skin, library, screenshot, program, bpm, newSkin;
    std::vector<std::string> settings;
    bool watch = false, check = false, outlines = false, version = false;
};

void addSkinOptions(CLI::App& app, Words& words) {
    const std::string group = "Skin";
    app.add_option("--skin", words.skin,
                   "Open with this skin: the name of a folder beside the library, or\nthe path of any folder")
        ->type_name("NAME|FOLDER")
        ->group(group);
    app.add_flag("--watch", words.watch,
                 "Reopen the window whenever a file of the skin changes, and print\nwhat --check finds")
        ->group(group);
    app.add_flag("--check", words.check, "List mistakes in the skin; open no window")->group(group);
    app.add_option("--new-skin", words.newSkin, "Create a complete skin in this new folder; open no window")
        ->type_name("FOLDER")
        ->group(group);
}

void addEffectOptions(CLI::App& app, Words& words) {
    const std::string group = "Effect";
    app.add_option("--program", words.program, "Start with a program, by number (0 to 127) or by name")
        ->type_name("N|NAME")
        ->group(group);
    app.add_option("--set", words.settings, "Set a parameter, by name or number; may be repeated")
        ->type_name("PARAMETER=VALUE")
        ->allow_extra_args(false)
        ->group(group);
    app.add_option("--bpm", words.bpm, "Tempo of note lengths like 1/8. in --set")
        ->type_name("BPM")
        ->group(group);
    app.add_option("--library", words.library, "Open this VST 2.4 library instead")
        ->type_name("FILE")
        ->group(group);
}

void addOtherOptions(CLI::App& app, Words& words) {
    const std::string group = "Picture and help";
    app.add_option("--screenshot", words.screenshot, "Save a picture of the window, then exit")
        ->type_name("FILE.png")
        ->group(group);
    app.add_flag("--outlines", words.outlines,
                 "Draw the position, kind and id of each object over the picture")
        ->group(group);
    app.set_help_flag("--help,-h", "Show this help")->group(group);
    app.add_flag("--version", words.version, "Show the tool's version")->group(group);
}

void checkCombination(const Words& words) {
    const bool isAboutAWindow = words.check || words.watch || words.outlines || !words.skin.empty() ||
                                !words.library.empty() || !words.screenshot.empty() ||
                                !words.program.empty() || !words.settings.empty() || !words.bpm.empty();
    if (!words.newSkin.empty() && isAboutAWindow)
        throw ToolError("--new-skin opens no window; use it without other options");
    if (words.check && words.skin.empty())
        throw ToolError("--check: choose the skin with --skin");
    if (words.watch && words.skin.empty())
        throw ToolError("--watch: choose the skin with --skin");
    if (words.check &&
        (words.watch || !words.screenshot.empty() || !words.program.empty() || !words.settings.empty()))
        throw ToolError("--check opens no window; use it with --skin and --library only");
    if (words.outlines && words.skin.empty())
        throw ToolError("--outlines: choose the skin with --skin");
    if (words.outlines && words.screenshot.empty())
        throw ToolError("--outlines: choose the picture file with --screenshot");
    const std::string ending = lowered(std::filesystem::path(words.screenshot).extension().string());
    if (!words.screenshot.empty() && ending != ".png")
        throw ToolError(words.screenshot + ": the picture is a PNG, so its name should end in .png");
}

Options optionsFrom(const Words& words) {
    Options options;
    options.skin = words.skin;
    options.library = settled(words.library);
    options.screenshot = settled(words.screenshot);
    options.program = words.program;
    options.settings = settingsFrom(words.settings, tempoFrom(words.bpm));
    options.newSkin = settled(words.newSkin);
    options.watch = words.watch;
    options.outlines = words.outlines;
    options.check = words.check;
    return options;
}

} // namespace

std::variant<Options, HelpText> parseOptions(int argumentCount, const char* const* arguments) {
    CLI::App app(kDescription, "quillon-window");
    Words words;
    addSkinOptions(app, words);
    addEffectOptions(app, words);
    addOtherOptions(app, words);
    app.get_formatter()->column_width(34);
    app.get_formatter()->label("TEXT", "");
    app.footer(kExamples);
    if (const auto help = parseOrHelp(app, argumentCount, arguments))
        return HelpText{*help};
    if (words.version)
        return HelpText{"quillon-window " QUILLON_VERSION "\n"};
    checkNothingIsEmpty(app);
    checkCombination(words);
    return optionsFrom(words);
}

} // namespace tools::window
