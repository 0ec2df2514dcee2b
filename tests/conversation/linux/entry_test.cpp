// What only this system lets a test see of loading and starting: the exports by its own tools, a host in
// plain C, and every file that is opened.
#include "support/plugin_folder.h"

#include <sys/inotify.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <sstream>
#include <stdexcept>

namespace conversation {
namespace {

using namespace vst2;

std::string outputOf(const std::string& command) {
    std::FILE* pipe = popen(command.c_str(), "r");
    if (!pipe)
        return "";
    std::string text;
    std::array<char, 4096> piece;
    while (const std::size_t count = std::fread(piece.data(), 1, piece.size(), pipe))
        text.append(piece.data(), count);
    EXPECT_EQ(pclose(pipe), 0) << command;
    return text;
}

std::intptr_t hostOfVersionZero(AEffect*, std::int32_t, std::int32_t, std::intptr_t, void*, float) {
    return 0;
}

/// Sees every file of a folder that is opened from now on.
class OpenedFiles {
  public:
    explicit OpenedFiles(const std::string& folder) : descriptor_(inotify_init1(IN_NONBLOCK)) {
        if (inotify_add_watch(descriptor_, folder.c_str(), IN_OPEN) < 0)
            throw std::runtime_error("cannot watch " + folder);
    }
    ~OpenedFiles() { close(descriptor_); }
    OpenedFiles(const OpenedFiles&) = delete;
    OpenedFiles& operator=(const OpenedFiles&) = delete;

    std::set<std::string> names() {
        std::set<std::string> names;
        alignas(inotify_event) std::array<char, 8192> events;
        const ssize_t size = read(descriptor_, events.data(), events.size());
        for (ssize_t at = 0; at < size;) {
            const auto* event = reinterpret_cast<const inotify_event*>(events.data() + at);
            if (event->len > 0)
                names.insert(event->name);
            at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
        }
        return names;
    }

  private:
    int descriptor_;
};

class ExportsOnLinux : public QuietPlugin {};

TEST_F(ExportsOnLinux, AreThreeNamesAndNothingElse) {
    std::istringstream listing(outputOf(std::string(NM) + " -D --defined-only '" + module.path() + "'"));
    std::set<std::string> names;
    for (std::string address, kind, name; listing >> address >> kind >> name;)
        names.insert(name);
    EXPECT_EQ(names, (std::set<std::string>{"MAIN", "VSTPluginMain", "main"}));
}

TEST_F(ExportsOnLinux, AreFoundByAPlainCHostThatWantsEverySymbolAtOnce) {
    const int status = std::system((std::string(PLAIN_LOADER) + " '" + module.path() + "'").c_str());
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

class EntryPointOnLinux : public QuietPlugin {};

TEST_F(EntryPointOnLinux, ReadsNoFileForAHostOfVersionZero) {
    const Bytes map(84);
    writeFile(module.beside(kMapFile), map);
    writeFile(here(kMapFile), map);
    const host::Library& loaded = library();
    OpenedFiles beside(module.folder()), current(here(""));

    EXPECT_EQ(loaded.entryPoint()(hostOfVersionZero), nullptr);
    EXPECT_EQ(beside.names(), std::set<std::string>());
    EXPECT_EQ(current.names(), std::set<std::string>());

    const host::Plugin plugin(loaded);
    EXPECT_TRUE(beside.names().contains(kBankFile));
    EXPECT_TRUE(current.names().contains(kMapFile));
}

} // namespace
} // namespace conversation
