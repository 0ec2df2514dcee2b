#include "house.h"

#include "comparison.h"

#include <fstream>
#include <gtest/gtest.h>
#include <iterator>

namespace architecture {

const Graph& builtGraph() {
    static const Graph graph = [] {
        std::ifstream file(QUILLON_TARGET_GRAPH);
        return readGraph(file);
    }();
    return graph;
}

const Page& writtenPage() {
    static const Page page = readPage(sourceText("docs/architecture.md"));
    return page;
}

const Target* roomIn(const std::string& folder) {
    for (const Target& target : builtGraph())
        if (isRoom(target) && roomFolder(target) == folder)
            return &target;
    return nullptr;
}

std::string sourceText(const std::string& path) {
    std::ifstream file(QUILLON_SOURCE "/" + path);
    EXPECT_TRUE(file.is_open()) << path;
    return std::string(std::istreambuf_iterator<char>(file), {});
}

} // namespace architecture
