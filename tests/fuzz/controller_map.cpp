// Any bytes as the controller map, in either of its two places: the entries are those of the file that
// counts, and what is written back is read as the same map.
//
// The first byte says which files there are, the second how long the one in the current directory is.
#include "midi/cc_map.h"

#include "byte_source.h"
#include "platform/files.h"
#include "promise.h"
#include "unattended.h"

#include <array>
#include <cstring>
#include <filesystem>
#include <vector>

namespace {

using Map = std::array<std::int32_t, parameters::kNumParameters>;

constexpr char kFileName[] = "Pluginccmap.bin";

Map mapOf(std::span<const std::uint8_t> bytes) {
    Map map = {};
    if (!bytes.empty())
        std::memcpy(map.data(), bytes.data(), std::min(bytes.size(), sizeof map));
    return map;
}

Map unbound() {
    Map map;
    map.fill(midi::kNoController);
    return map;
}

void put(const std::string& path, bool exists, std::span<const std::uint8_t> bytes) {
    if (exists)
        promise(platform::writeWholeFile(path, bytes.data(), bytes.size()), "a place for the map");
    else
        std::filesystem::remove(path);
}

void promiseMap(const Map& expected, const char* what) {
    for (std::int32_t id = 0; id < parameters::kNumParameters; ++id)
        promise(midi::controllerOf(id) == expected[static_cast<std::size_t>(id)], what);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string folder = Unattended::instance().folder();
    const std::string moduleFolder = folder + "module/";
    std::filesystem::create_directory(moduleFolder);

    ByteSource source(data, size);
    const std::uint8_t places = source.byte();
    const bool isHere = (places & 1) != 0;
    const bool isBeside = (places & 2) != 0;
    const auto here = source.bytes(source.byte());
    const auto beside = source.rest();
    put(folder + kFileName, isHere, here);
    put(moduleFolder + kFileName, isBeside, beside);

    midi::readCcMap(moduleFolder);
    const Map expected = isHere ? mapOf(here) : isBeside ? mapOf(beside) : unbound();
    promiseMap(expected, "the entries of the file that counts");

    midi::writeCcMap();
    const auto written = platform::readWholeFile(folder + kFileName);
    promise(written && written->size() == sizeof(Map), "a map of 84 bytes");
    promise(mapOf(*written) == expected, "the map as it is");
    midi::readCcMap(moduleFolder);
    promiseMap(expected, "the map comes back as it was written");
    return 0;
}
