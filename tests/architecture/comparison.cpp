#include "comparison.h"

#include <algorithm>
#include <map>

namespace architecture {

namespace {

using Sentences = std::vector<std::string>;
using Rows = std::vector<Row>;

bool isLinkable(const Target& target) {
    return target.kind == "STATIC_LIBRARY" || target.kind == "INTERFACE_LIBRARY";
}

/// A program, or what a program loads: nothing links it.
bool isLoaded(const Target& target) {
    return target.kind == "EXECUTABLE" || target.kind == "MODULE_LIBRARY" || target.kind == "SHARED_LIBRARY";
}

bool isOfTests(const Target& target) {
    return roomFolder(target).starts_with("tests/");
}

bool isAtTheTop(const Target& target) {
    return target.folder == ".";
}

const Row* rowNamed(const Rows& rows, const std::string& name) {
    const auto found = std::ranges::find(rows, name, &Row::name);
    return found == rows.end() ? nullptr : &*found;
}

std::string withBackticks(const std::string& name) {
    return "`" + name + "`";
}

/// The folders of the rooms among `names`, and the names of the tests' helpers among them.
Names asWritten(const Graph& graph, const Names& names) {
    Names written;
    for (const std::string& name : names)
        if (const Target* target = find(graph, name)) {
            if (isRoom(*target))
                written.insert(roomFolder(*target));
            else if (isOfTests(*target))
                written.insert(name);
        }
    return written;
}

Names linksOf(const Graph& graph, const Target& target) {
    return asWritten(graph, Names(target.links.begin(), target.links.end()));
}

void compareNames(const std::string& who, const Names& table, const Names& build, Sentences& sentences) {
    for (const std::string& name : build)
        if (!table.contains(name))
            sentences.push_back(who + " links " + withBackticks(name) + ", which its row does not name");
    for (const std::string& name : table)
        if (!build.contains(name))
            sentences.push_back(who + " does not link " + withBackticks(name) + ", which its row names");
}

void compareRooms(const Page& page, const Graph& graph, Sentences& sentences) {
    std::map<std::string, const Target*> rooms;
    std::vector<std::string> order;
    for (const Target& target : graph) {
        if (!isRoom(target))
            continue;
        const std::string folder = roomFolder(target);
        if (const auto [other, isNew] = rooms.emplace(folder, &target); !isNew) {
            sentences.push_back(target.name + " is a second room in " + withBackticks(folder) +
                                ", the folder of " + other->second->name);
            continue;
        }
        order.push_back(folder);
        const Row* row = rowNamed(page.rooms, folder);
        if (!row) {
            sentences.push_back(target.name + " in " + withBackticks(folder) +
                                " has no row in the table of rooms");
            continue;
        }
        const Names seen = seenFrom(graph, target);
        compareNames(withBackticks(folder), row->links, asWritten(graph, seen), sentences);
        if (seen.contains("vstgui") != (row->third.find("VSTGUI") != std::string::npos))
            sentences.push_back(withBackticks(folder) +
                                (seen.contains("vstgui") ? " sees" : " does not see") +
                                " VSTGUI, and its row says otherwise");
    }
    std::vector<std::string> rows;
    for (const Row& row : page.rooms)
        if (rooms.contains(row.name))
            rows.push_back(row.name);
    for (std::size_t i = 0; i < std::min(rows.size(), order.size()); ++i)
        if (rows[i] != order[i] && std::ranges::find(rows, order[i]) != rows.end()) {
            sentences.push_back("the table has " + withBackticks(rows[i]) + " where add_subdirectory has " +
                                withBackticks(order[i]));
            break;
        }
}

/// In a table from the ground up, a row may name only rows above it.
void findArrowsUp(const Page& page, Sentences& sentences) {
    Names below;
    for (const Row& row : page.rooms) {
        for (const std::string& name : row.links)
            if (!below.contains(name))
                sentences.push_back(withBackticks(row.name) + " names " + withBackticks(name) +
                                    ", which does not stand above it in the table");
        below.insert(row.name);
    }
}

void findRowsWithoutTarget(const Rows& rows, const Names& present, const std::string& table,
                           Sentences& sentences) {
    Names seen;
    for (const Row& row : rows) {
        if (!present.contains(row.name) && row.only.empty())
            sentences.push_back("the row of " + withBackticks(row.name) + " in the table of " + table +
                                " has no target");
        if (present.contains(row.name) && row.only == "Windows")
            sentences.push_back(withBackticks(row.name) +
                                " is built here, and its row says for Windows only");
        if (!seen.insert(row.name).second)
            sentences.push_back(withBackticks(row.name) + " has two rows in the table of " + table);
    }
}

/// The room whose folder `target` lies in, or an enclosing one.
const Target* roomAround(const Graph& graph, const Target& target) {
    const Target* around = nullptr;
    for (const Target& other : graph)
        if (isRoom(other) && roomFolder(target).starts_with(roomFolder(other)))
            around = &other;
    return around;
}

void compareProgram(const Page& page, const Graph& graph, const Target& target, Sentences& sentences) {
    const Row* row = rowNamed(page.programs, target.name);
    if (!row) {
        sentences.push_back(target.name + " has no row in the table of programs");
        return;
    }
    const Target* room = roomAround(graph, target);
    if (!room || row->second != withBackticks(roomFolder(*room))) {
        sentences.push_back(target.name + " lies in " + withBackticks(roomFolder(target)) + ", not in " +
                            row->second);
        return;
    }
    Names links = linksOf(graph, target);
    if (links.erase(roomFolder(*room)) == 0)
        sentences.push_back(target.name + " does not link its room " + withBackticks(roomFolder(*room)));
    compareNames(target.name, row->links, links, sentences);
}

void compareHelper(const Page& page, const Graph& graph, const Target& target, Sentences& sentences) {
    if (const Row* row = rowNamed(page.helpers, target.name))
        compareNames(target.name, row->links, linksOf(graph, target), sentences);
    else
        sentences.push_back(target.name + " has no row in the table of the tests' helpers");
}

/// Part of a room, compiled with options of its own.
void lookAtPart(const Graph& graph, const Target& target, Sentences& sentences) {
    const Target* room = roomAround(graph, target);
    if (!room) {
        sentences.push_back(target.name + " in " + withBackticks(roomFolder(target)) + " is part of no room");
        return;
    }
    Names allowed = asWritten(graph, seenFrom(graph, *room));
    allowed.insert(roomFolder(*room));
    for (const std::string& name : asWritten(graph, seenFrom(graph, target)))
        if (!allowed.contains(name))
            sentences.push_back(target.name + " links " + withBackticks(name) + ", which its room " +
                                withBackticks(roomFolder(*room)) + " does not see");
}

/// Tests lie in the folder of a room's tests, of the tests of several rooms beside each other, or in one that
/// the page names.
bool isFolderOfTests(const Page& page, std::string folder) {
    for (const std::string system : {"linux/", "win32/"})
        if (folder.ends_with("/" + system))
            folder.resize(folder.size() - system.size());
    const std::string room = folder.substr(std::string("tests/").size());
    return rowNamed(page.testFolders, folder) || std::ranges::any_of(page.rooms, [&](const Row& row) {
               return !room.empty() && row.name.starts_with(room);
           });
}

} // namespace

bool isRoom(const Target& target) {
    return isLinkable(target) && !isOfTests(target) && !isAtTheTop(target);
}

std::string roomFolder(const Target& target) {
    return target.folder + "/";
}

std::vector<std::string> differences(const Page& page, const Graph& graph) {
    Sentences sentences;
    Names present;
    for (const Target& target : graph) {
        present.insert(isRoom(target) ? roomFolder(target) : target.name);
        if (isAtTheTop(target)) {
            if (!rowNamed(page.others, target.name))
                sentences.push_back(target.name +
                                    " is no room and has no row in the table of what is no room");
        } else if (isOfTests(target)) {
            if (isLinkable(target))
                compareHelper(page, graph, target, sentences);
            if (!isFolderOfTests(page, roomFolder(target)))
                sentences.push_back(target.name + " lies in " + withBackticks(roomFolder(target)) +
                                    ", which is the folder of no room's tests");
        } else if (isLoaded(target)) {
            compareProgram(page, graph, target, sentences);
        } else if (target.kind == "OBJECT_LIBRARY") {
            lookAtPart(graph, target, sentences);
        }
    }
    compareRooms(page, graph, sentences);
    findArrowsUp(page, sentences);
    findRowsWithoutTarget(page.rooms, present, "rooms", sentences);
    findRowsWithoutTarget(page.programs, present, "programs", sentences);
    findRowsWithoutTarget(page.helpers, present, "the tests' helpers", sentences);
    findRowsWithoutTarget(page.others, present, "what is no room", sentences);
    return sentences;
}

} // namespace architecture
