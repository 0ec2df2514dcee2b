// The memory of an instance: of large pages where the system has them, and what a host gets where there is
// none.
#include "support/echoes.h"
#include "support/plugin_folder.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <new>

namespace {

/// What the library is not given at the moment.
struct Refused {
    bool instance = false;
    bool programs = false;
} refused;

/// Refuses one of the library's requests while it lives.
class Refusal {
  public:
    explicit Refusal(bool Refused::* request) : request_(request) { refused.*request_ = true; }
    ~Refusal() { refused.*request_ = false; }
    Refusal(const Refusal&) = delete;
    Refusal& operator=(const Refusal&) = delete;

  private:
    bool Refused::* request_;
};

} // namespace

// The library finds these in place of the standard ones. An instance asks for aligned memory, and its
// programs for memory that may be missing; nothing else does either.
void* operator new(std::size_t size, std::align_val_t alignment) {
    const auto step = static_cast<std::size_t>(alignment);
    void* const memory =
        refused.instance ? nullptr : std::aligned_alloc(step, (size + step - 1) / step * step);
    if (!memory)
        throw std::bad_alloc();
    return memory;
}
void operator delete(void* memory, std::align_val_t) noexcept {
    std::free(memory);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return refused.programs ? nullptr : std::malloc(size);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    std::free(memory);
}
void* operator new[](std::size_t size) {
    void* const memory = std::malloc(size);
    if (!memory)
        throw std::bad_alloc();
    return memory;
}

namespace conversation {
namespace {

using namespace vst2;

class InstanceMemory : public QuietPlugin {
  protected:
    /// What the system notes about the mapping around a place in memory.
    static std::string flagsAt(std::uintptr_t place) {
        std::ifstream maps("/proc/self/smaps");
        bool isHere = false;
        for (std::string line; std::getline(maps, line);) {
            unsigned long first = 0, last = 0;
            if (std::sscanf(line.c_str(), "%lx-%lx ", &first, &last) == 2)
                isHere = first <= place && place < last;
            else if (isHere && line.starts_with("VmFlags:"))
                return line;
        }
        return "";
    }
};

TEST_F(InstanceMemory, IsAskedForInLargePages) {
    if (!std::filesystem::exists("/sys/kernel/mm/transparent_hugepage"))
        GTEST_SKIP() << "this system has no large pages to ask for";
    const host::Plugin plugin(library());
    constexpr std::uintptr_t halfOfTheDelayMemory = 8 * 1024 * 1024;
    const auto begin = reinterpret_cast<std::uintptr_t>(plugin.effect()->object);
    EXPECT_NE(flagsAt(begin + halfOfTheDelayMemory).find(" hg"), std::string::npos);
}

class NoMemory : public QuietPlugin {};

TEST_F(NoMemory, ForAnInstanceGivesTheHostNoRecord) {
    const auto entryPoint = library().entryPoint();
    const audioMasterCallback host = [](AEffect*, std::int32_t, std::int32_t, std::intptr_t, void*,
                                        float) -> std::intptr_t { return kVstVersion; };
    {
        const Refusal refusal(&Refused::instance);
        EXPECT_EQ(entryPoint(host), nullptr);
    }
    AEffect* const effect = entryPoint(host);
    ASSERT_NE(effect, nullptr);
    EXPECT_EQ(effect->dispatcher(effect, effClose, 0, 0, nullptr, 0.0f), 1);
}

class NoMemoryForPrograms : public NoMemory {
  protected:
    static host::Plugin make(const host::Library& library) {
        const Refusal refusal(&Refused::programs);
        return host::Plugin(library);
    }
    host::Plugin plugin = make(library());
};

TEST_F(NoMemoryForPrograms, GivesNoChunkAndTakesNone) {
    EXPECT_TRUE(plugin.getChunk(false).empty());
    EXPECT_TRUE(plugin.getChunk(true).empty());
    EXPECT_EQ(plugin.setChunk(bytesOf(defaultPrograms()), false), 1);
    EXPECT_TRUE(plugin.getChunk(false).empty());
}

TEST_F(NoMemoryForPrograms, HasNoNamesAndSelectsNoProgram) {
    plugin.setProgramName("Anything");
    EXPECT_EQ(plugin.programName(0), std::nullopt);
    plugin.setProgram(5);
    EXPECT_EQ(plugin.getProgram(), 0);
}

TEST_F(NoMemoryForPrograms, StillPlaysWithTheParametersThatAreSet) {
    choosePlainEchoes(plugin);
    EXPECT_GT(loudestEchoAcross(plugin, [] {}), kAudible);
}

} // namespace
} // namespace conversation
