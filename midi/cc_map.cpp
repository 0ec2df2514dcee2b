#include "midi/cc_map.h"

#include "platform/files.h"

#include <algorithm>
#include <new>

namespace midi {
namespace {

constexpr char kFileName[] = "Pluginccmap.bin";

using Entries = std::array<std::int32_t, parameters::kNumParameters>;

Entries allEntries(std::int32_t controller) {
    Entries entries;
    entries.fill(controller);
    return entries;
}

} // namespace

std::array<SharedController, parameters::kNumParameters> ccMap;

std::int32_t controllerOf(std::int32_t id) {
    return ccMap[static_cast<std::size_t>(id)].load();
}

void bindController(std::int32_t id, std::int32_t controller) {
    ccMap[static_cast<std::size_t>(id)].store(controller);
}

void readCcMap(const std::string& moduleFolder) {
    const std::string path = platform::fileExists(kFileName) ? kFileName : moduleFolder + kFileName;
    const auto content = platform::readWholeFile(path, sizeof(Entries), platform::Sharing::nobody);
    Entries entries = allEntries(content ? 0 : kNoController);
    if (content)
        std::copy(content->begin(), content->end(), reinterpret_cast<unsigned char*>(entries.data()));
    for (std::int32_t id = 0; id < parameters::kNumParameters; ++id)
        bindController(id, entries[static_cast<std::size_t>(id)]);
}

void writeCcMap() try {
    Entries entries;
    for (std::int32_t id = 0; id < parameters::kNumParameters; ++id)
        entries[static_cast<std::size_t>(id)] = controllerOf(id);
    platform::writeWholeFile(kFileName, entries.data(), sizeof entries);
} catch (const std::bad_alloc&) {
    // The file stays as it was.
}

} // namespace midi
