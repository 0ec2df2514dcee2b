#pragma once

#include <istream>
#include <set>
#include <string>
#include <vector>

namespace architecture {

using Names = std::set<std::string>;

/// A target of the build, as CMake knows it.
struct Target {
    std::string name;
    /// As CMake writes it: STATIC_LIBRARY, EXECUTABLE and so on.
    std::string kind;
    /// From the top of the project; "." is the top itself.
    std::string folder;
    /// What it links itself, with libraries that are no targets.
    std::vector<std::string> links;
    /// Those of its links whose headers its users see too.
    std::vector<std::string> passes;
    /// Where its own files look for headers.
    std::vector<std::string> includes;
};

/// All targets, in the order of add_subdirectory.
using Graph = std::vector<Target>;

/// Reads what target_graph.cmake has written.
Graph readGraph(std::istream& file);

/// Null if there is none of that name.
const Target* find(const Graph& graph, const std::string& name);

/// The names of all targets whose headers `target` can include.
Names seenFrom(const Graph& graph, const Target& target);

} // namespace architecture
