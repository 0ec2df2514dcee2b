// The walls between the rooms. The compiler itself is asked, with each room's own include folders, which
// headers a file of that room can reach; a header from across a wall must not be there.

#include "child_process.h"

#include "desk/private_folder.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <sstream>

namespace {

namespace files = std::filesystem;
using test::ChildProcess;
using Names = std::set<std::string>;

/// Who may see whom. Everybody sees their own room.
const std::map<std::string, Names> allowed = {
    {"base", {}},
    {"vst2", {}},
    {"reference", {}},
    {"platform", {}},
    {"parameters", {"base"}},
    {"dsp", {"base", "parameters"}},
    {"presets", {"base", "parameters", "platform", "vst2"}},
    {"midi", {"base", "parameters", "platform", "vst2"}},
    {"plugin_frame", {"base", "parameters", "platform", "vst2"}},
    {"plugin",
     {"base", "dsp", "editor", "editor_displays", "editor_views", "midi", "parameters", "platform",
      "platform_toolkit", "plugin_frame", "presets", "skin", "skin_language", "vst2"}},
    {"platform_canvas", {"platform"}},
    {"platform_toolkit", {"platform"}},
    {"skin_language", {"base"}},
    {"skin_images", {"platform", "platform_toolkit"}},
    {"editor_displays", {"base", "parameters", "platform", "plugin_frame", "vst2"}},
    {"editor_views", {"base", "midi", "parameters", "platform", "plugin_frame", "vst2"}},
    {"skin",
     {"base", "editor_displays", "parameters", "platform", "platform_toolkit", "plugin_frame", "skin_images",
      "skin_language", "vst2"}},
    {"editor",
     {"base", "editor_displays", "editor_views", "midi", "parameters", "platform", "platform_toolkit",
      "plugin_frame", "skin", "skin_language", "vst2"}},
    {"platform_host", {"platform"}},
    {"host", {"platform", "vst2"}},
    {"host_editor", {"host", "platform", "platform_host", "vst2"}},
    {"tool_common", {"host", "platform", "vst2"}},
    {"render", {"host", "platform", "platform_canvas", "tool_common", "vst2"}},
    {"skin_check",
     {"base", "editor", "editor_displays", "editor_views", "host", "midi", "parameters", "platform",
      "platform_toolkit", "plugin_frame", "skin", "skin_language", "tool_common", "vst2"}},
    {"window",
     {"host", "host_editor", "platform", "platform_canvas", "platform_host", "skin_check", "tool_common",
      "vst2"}},
};

/// Each room's include folders, as its own files are compiled.
std::map<std::string, std::vector<std::string>> includeFolders() {
    std::map<std::string, std::vector<std::string>> folders;
    std::ifstream rooms(QUILLON_ROOMS);
    for (std::string line; std::getline(rooms, line);) {
        std::istringstream words(line);
        std::string room;
        words >> room;
        for (std::string folder; words >> folder;)
            folders[room].push_back(folder);
        folders[room];
    }
    return folders;
}

/// The headers that a room shows to others, as they are included.
Names headersOf(const std::string& room) {
    Names headers;
    const files::path view = files::path(QUILLON_VIEWS) / room;
    for (const files::directory_entry& entry : files::recursive_directory_iterator(view))
        if (entry.is_regular_file())
            headers.insert(entry.path().lexically_relative(view).string());
    return headers;
}

struct Compiled {
    int status = -1;
    std::string output;
    std::string messages;
};

/// Hands `source` to the compiler as if it were a file of `room`.
Compiled compileIn(const std::string& room, const std::string& source, const std::string& mode) {
    const desk::PrivateFolder folder;
    std::ofstream("probe.cpp") << source;
    std::vector<std::string> arguments = {QUILLON_COMPILER, "-std=c++20", mode};
    const auto rooms = includeFolders();
    for (const std::string& include : rooms.at(room))
        arguments.push_back("-I" + include);
    arguments.push_back("probe.cpp");
    ChildProcess compiler(arguments, {.environment = {{"LC_ALL", "C"}}, .currentDirectory = folder.path()});
    Compiled result;
    result.status = compiler.wait();
    result.output = compiler.standardOutput();
    result.messages = compiler.standardError();
    return result;
}

/// Those of `headers` that a file of `room` reaches.
Names reachedFrom(const std::string& room, const Names& headers) {
    std::string source;
    for (const std::string& header : headers)
        source += "#if __has_include(\"" + header + "\")\nREACHED " + header + "\n#endif\n";
    const Compiled probe = compileIn(room, source, "-E");
    EXPECT_EQ(probe.status, 0) << probe.messages;
    Names reached;
    std::istringstream lines(probe.output);
    for (std::string line; std::getline(lines, line);)
        if (line.starts_with("REACHED "))
            reached.insert(line.substr(8));
    return reached;
}

Names without(const Names& some, const Names& others) {
    Names rest;
    std::set_difference(some.begin(), some.end(), others.begin(), others.end(),
                        std::inserter(rest, rest.end()));
    return rest;
}

TEST(Rooms, StandInTheTableWithWhatTheyMaySee) {
    for (const auto& [room, folders] : includeFolders())
        EXPECT_TRUE(allowed.contains(room)) << room << " is a new room: say in this test what it may see";
}

TEST(Rooms, SeeTheHeadersOfTheRoomsTheyMaySeeAndNoOther) {
    const auto rooms = includeFolders();
    std::map<std::string, std::string> owners;
    Names all;
    for (const auto& [room, folders] : rooms)
        for (const std::string& header : headersOf(room)) {
            owners[header] = room;
            all.insert(header);
        }
    ASSERT_GT(all.size(), 20u);
    for (const auto& [room, folders] : rooms) {
        if (!allowed.contains(room))
            continue;
        Names expected;
        for (const auto& [header, owner] : owners)
            if (owner == room || allowed.at(room).contains(owner))
                expected.insert(header);
        const Names reached = reachedFrom(room, all);
        EXPECT_EQ(without(reached, expected), Names()) << "is reached from " << room << " and must not be";
        EXPECT_EQ(without(expected, reached), Names()) << "must be reached from " << room << " and is not";
    }
}

TEST(Rooms, LetTheEngineIncludeItsOwnAndTheParameters) {
    const Compiled allowedFile = compileIn(
        "dsp", "#include \"dsp/delay_engine.h\"\n#include \"parameters/parameter_table.h\"\nint x;\n",
        "-fsyntax-only");
    EXPECT_EQ(allowedFile.status, 0) << allowedFile.messages;
}

TEST(Rooms, StopTheEngineFromIncludingTheHostsWorld) {
    for (const std::string header :
         {"doors/vst2/velmo_delay.h", "vst2/vst2.h", "platform/files.h", "host/plugin.h"}) {
        const Compiled forbidden = compileIn(
            "dsp", "#include \"dsp/delay_engine.h\"\n#include \"" + header + "\"\nint x;\n", "-fsyntax-only");
        EXPECT_NE(forbidden.status, 0) << header;
        // Line 2 and nothing else is what the compiler stumbles over, and because the header is not there.
        EXPECT_TRUE(std::regex_search(forbidden.messages,
                                      std::regex("probe\\.cpp:2:.*error: '?" + header +
                                                 "'?(: No such file or directory| file not found)")))
            << forbidden.messages;
    }
}

/// Folders of links hold only for includes by name; a way around the wall would be a path that climbs out.
TEST(Rooms, AreNotLeftByAPathThatClimbsOut) {
    const std::regex climbing("^\\s*#\\s*include\\s*\"([^\"]*\\.\\./[^\"]*)\"");
    const files::path house = QUILLON_SOURCE;
    int seen = 0;
    for (const char* room : {"base", "vst2", "platform", "parameters", "dsp", "presets", "midi", "plugin",
                             "skin", "editor", "host", "reference", "tools"}) {
        if (!files::exists(house / room))
            continue;
        for (const files::directory_entry& entry : files::recursive_directory_iterator(house / room)) {
            if (entry.path().extension() != ".h" && entry.path().extension() != ".cpp")
                continue;
            ++seen;
            std::ifstream source(entry.path());
            for (std::string line; std::getline(source, line);) {
                std::smatch found;
                if (!std::regex_search(line, found, climbing))
                    continue;
                const files::path target = (entry.path().parent_path() / found[1].str()).lexically_normal();
                EXPECT_TRUE(target.string().starts_with((house / room).string() + "/"))
                    << entry.path() << " includes " << found[1];
            }
        }
    }
    EXPECT_GT(seen, 20);
}

} // namespace
