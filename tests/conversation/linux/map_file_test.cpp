// The controller map where its file cannot be written, as this system lets a test arrange it.
#include "support/plugin_folder.h"

#include <sys/resource.h>

#include <csignal>
#include <filesystem>

namespace conversation {
namespace {

namespace files = std::filesystem;

/// Closes an instance while every file that this process writes ends at `bytes`, as on a full disk.
void closeOnAFullDisk(host::Plugin& plugin, rlim_t bytes) {
    rlimit before = {};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit limit = {bytes, before.rlim_max};
    const auto signal = std::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    plugin.close();
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, signal);
}

using MapOnAFullDisk = QuietPlugin;

TEST_F(MapOnAFullDisk, IsNotBegun) {
    for (const rlim_t room : {0u, 80u}) {
        host::Plugin plugin(library());
        closeOnAFullDisk(plugin, room);
        EXPECT_FALSE(files::exists(here(kMapFile))) << room;
    }
}

TEST_F(MapOnAFullDisk, StaysAsItWas) {
    const Bytes before(84, 7);
    writeFile(here(kMapFile), before);
    host::Plugin plugin(library());
    closeOnAFullDisk(plugin, 40);
    EXPECT_EQ(readFile(here(kMapFile)), before);
    EXPECT_EQ(std::distance(files::directory_iterator(here("")), {}), 2)
        << "the map and the library's folder";
}

} // namespace
} // namespace conversation
