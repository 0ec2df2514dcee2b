#include "target_graph.h"

#include <algorithm>
#include <iterator>
#include <sstream>

namespace architecture {

Graph readGraph(std::istream& file) {
    Graph graph;
    for (std::string line; std::getline(file, line);) {
        std::istringstream words(line);
        std::string what;
        words >> what;
        if (what == "target") {
            Target& target = graph.emplace_back();
            words >> target.name >> target.kind >> target.folder;
        } else if (!graph.empty()) {
            Target& target = graph.back();
            const std::vector<std::string> names(std::istream_iterator<std::string>(words), {});
            if (what == "links")
                target.links = names;
            else if (what == "passes")
                target.passes = names;
            else if (what == "includes")
                target.includes = names;
        }
    }
    return graph;
}

const Target* find(const Graph& graph, const std::string& name) {
    const auto found = std::ranges::find(graph, name, &Target::name);
    return found == graph.end() ? nullptr : &*found;
}

Names seenFrom(const Graph& graph, const Target& target) {
    Names seen;
    std::vector<std::string> open = target.links;
    while (!open.empty()) {
        const Target* next = find(graph, open.back());
        open.pop_back();
        if (next && seen.insert(next->name).second)
            open.insert(open.end(), next->passes.begin(), next->passes.end());
    }
    return seen;
}

} // namespace architecture
