// The walls between the rooms. The compiler itself is asked, with each room's own include folders, which
// headers a file of that room can reach; a header from across a wall must not be there.

#include "child_process.h"
#include "comparison.h"
#include "house.h"

#include "desk/private_folder.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <regex>
#include <sstream>

namespace {

namespace files = std::filesystem;
using namespace architecture;
using test::ChildProcess;

/// All files in a folder and the folders in it; none where there is no such folder.
std::vector<files::path> filesIn(const files::path& folder) {
    std::vector<files::path> found;
    std::error_code missing;
    for (const files::directory_entry& entry : files::recursive_directory_iterator(folder, missing))
        if (entry.is_regular_file())
            found.push_back(entry.path());
    return found;
}

/// The headers that a room shows to others, as they are included.
Names headersOf(const Target& room) {
    Names headers;
    const files::path view = files::path(QUILLON_VIEWS) / room.name;
    for (const files::path& file : filesIn(view))
        headers.insert(file.lexically_relative(view).string());
    return headers;
}

struct Compiled {
    int status = -1;
    std::string output;
    std::string messages;
};

/// Hands `source` to the compiler as if it were a file of `room`.
Compiled compileIn(const Target& room, const std::string& source, const std::string& mode) {
    const desk::PrivateFolder folder;
    std::ofstream("probe.cpp") << source;
    std::vector<std::string> arguments = {QUILLON_COMPILER, "-std=c++20", mode};
    for (const std::string& include : room.includes)
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
Names reachedFrom(const Target& room, const Names& headers) {
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

TEST(Rooms, AndEveryOtherTargetAreWhatThePageSays) {
    ASSERT_GT(builtGraph().size(), 100u);
    for (const std::string& difference : differences(writtenPage(), builtGraph()))
        ADD_FAILURE() << difference;
}

TEST(Rooms, SeeTheHeadersOfTheRoomsTheyMaySeeAndNoOther) {
    std::map<std::string, std::string> owners;
    Names all;
    for (const Target& room : builtGraph())
        if (isRoom(room))
            for (const std::string& header : headersOf(room)) {
                owners[header] = roomFolder(room);
                all.insert(header);
            }
    ASSERT_GT(all.size(), 100u);
    for (const Row& row : writtenPage().rooms) {
        const Target* room = roomIn(row.name);
        if (!room)
            continue;
        Names expected;
        for (const auto& [header, owner] : owners)
            if (owner == row.name || row.links.contains(owner))
                expected.insert(header);
        const Names reached = reachedFrom(*room, all);
        EXPECT_EQ(without(reached, expected), Names())
            << "is reached from " << row.name << " and must not be";
        EXPECT_EQ(without(expected, reached), Names())
            << "must be reached from " << row.name << " and is not";
    }
}

TEST(Rooms, LetTheEngineIncludeItsOwnAndTheParameters) {
    const Compiled allowedFile =
        compileIn(*roomIn("dsp/"),
                  "#include \"dsp/delay_engine.h\"\n#include \"parameters/parameter_table.h\"\nint x;\n",
                  "-fsyntax-only");
    EXPECT_EQ(allowedFile.status, 0) << allowedFile.messages;
}

TEST(Rooms, StopTheEngineFromIncludingTheHostsWorld) {
    for (const std::string header :
         {"doors/vst2/velmo_delay.h", "vst2/vst2.h", "platform/files.h", "host/plugin.h"}) {
        const Compiled forbidden = compileIn(
            *roomIn("dsp/"), "#include \"dsp/delay_engine.h\"\n#include \"" + header + "\"\nint x;\n",
            "-fsyntax-only");
        EXPECT_NE(forbidden.status, 0) << header;
        // Line 2 and nothing else is what the compiler stumbles over, and because the header is not there.
        EXPECT_TRUE(std::regex_search(forbidden.messages,
                                      std::regex("probe\\.cpp:2:.*error: '?" + header +
                                                 "'?(: No such file or directory| file not found)")))
            << forbidden.messages;
    }
}

/// Every #include of a file of a room, with the file that it stands in.
struct Include {
    std::string room;
    files::path file;
    std::string header;
};

std::vector<Include> includesOfRooms() {
    static const std::regex form("^\\s*#\\s*include\\s*\"([^\"]*)\"");
    std::vector<Include> includes;
    for (const Row& row : writtenPage().rooms)
        for (const files::path& path : filesIn(files::path(QUILLON_SOURCE) / row.name)) {
            const std::string ending = path.extension().string();
            if (ending != ".h" && ending != ".cpp" && ending != ".c" && ending != ".in")
                continue;
            std::ifstream source(path);
            std::smatch found;
            for (std::string line; std::getline(source, line);)
                if (std::regex_search(line, found, form))
                    includes.push_back({row.name, path, found[1]});
        }
    return includes;
}

/// Folders of links hold only for includes by name; a way around the wall would be a path that climbs out.
TEST(Rooms, AreNotLeftByAPathThatClimbsOut) {
    const std::vector<Include> includes = includesOfRooms();
    EXPECT_GT(includes.size(), 500u);
    for (const Include& include : includes) {
        if (include.header.find("../") == std::string::npos)
            continue;
        const files::path target = (include.file.parent_path() / include.header).lexically_normal();
        EXPECT_TRUE(target.string().starts_with((files::path(QUILLON_SOURCE) / include.room).string()))
            << include.file << " includes " << include.header;
    }
}

/// Windows' and Linux' own words stay in the rooms whose row says that they may speak to the system.
TEST(Rooms, IncludeTheHeadersOfOneSystemWhereTheirRowSaysTheSystem) {
    Names speakers;
    for (const Row& row : writtenPage().rooms)
        if (row.third.find("the system") != std::string::npos)
            speakers.insert(row.name);
    EXPECT_TRUE(speakers.contains("platform/"));
    int seen = 0;
    for (const Include& include : includesOfRooms()) {
        if (!include.header.starts_with("platform/linux/") && !include.header.starts_with("platform/win32/"))
            continue;
        ++seen;
        EXPECT_TRUE(speakers.contains(include.room)) << include.file << " includes " << include.header;
    }
    EXPECT_GT(seen, 5);
}

} // namespace
