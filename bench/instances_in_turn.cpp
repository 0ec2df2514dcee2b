#include "bench/contest.h"
#include "bench/corners.h"
#include "bench/player.h"
#include "bench/preparation.h"
#include "reference/reference_engine.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace bench {

namespace {

constexpr std::int32_t kInstances = 16;
constexpr std::int32_t kBlock = 64;
constexpr std::int32_t kBlocksOfRun = 16;

/// Of the factory bank, by name.
constexpr const char* kPrograms[] = {"Kingston Midnight", "Skipping Stone", "Slow Dawn", "Glass Atrium",
                                     "Nothing, Then All"};

struct Program {
    std::string name;
    std::array<float, reference::kLiveParameters> values{};
    std::string taps; ///< as the effect shows it
};

Program programOf(host::Plugin& plugin, const std::string& name) {
    for (std::int32_t number = 0; number < plugin.numPrograms(); ++number) {
        plugin.setProgram(number);
        if (plugin.programName() != name)
            continue;
        Program program{name, {}, plugin.parameterDisplay(reference::kTaps)};
        for (std::int32_t id = 0; id < reference::kLiveParameters; ++id)
            program.values[static_cast<std::size_t>(id)] = plugin.getParameter(id);
        return program;
    }
    throw std::runtime_error("the factory bank has no program \"" + name + "\"");
}

/// Instances with full memories that are played one after the other, block by block, as a host does.
class Rack {
  public:
    template <class Make>
    explicit Rack(const Make& make) {
        for (std::unique_ptr<ClearableSubject>& subject : subjects_) {
            subject = make();
            subject->setSampleRate(kSampleRate);
            setCommonValues(*subject);
            fillMemory(*subject, buffers_);
        }
    }
    /// The memories stay as they are.
    void setProgram(const Program& program) {
        for (const std::unique_ptr<ClearableSubject>& subject : subjects_) {
            for (std::int32_t id = 0; id < reference::kLiveParameters; ++id)
                subject->setParameter(id, program.values[static_cast<std::size_t>(id)]);
            settle(*subject, buffers_, true);
        }
    }
    Contestant contestant() {
        return {[this] { return run(); }, static_cast<double>(kInstances * kBlock * kBlocksOfRun)};
    }

  private:
    double run() {
        const double start = processorSeconds();
        for (std::int32_t block = 0; block < kBlocksOfRun; ++block)
            for (const std::unique_ptr<ClearableSubject>& subject : subjects_)
                buffers_.play(*subject, kBlock, 1);
        return processorSeconds() - start;
    }
    std::array<std::unique_ptr<ClearableSubject>, kInstances> subjects_;
    Buffers buffers_;
};

/// Made when the first corner is measured and used by all, since filling the memories takes a while.
struct Racks {
    std::optional<Rack> built, reference;
};

} // namespace

std::vector<Corner> instanceCorners(const std::string& library) {
    host::Plugin plugin(loadedLibrary(library), quietHost());
    plugin.open();
    const auto racks = std::make_shared<Racks>();
    std::vector<Corner> corners;
    for (const char* const name : kPrograms) {
        const Program program = programOf(plugin, name);
        const std::string taps = program.taps + (program.taps == "1" ? " tap" : " taps");
        corners.push_back({section::kInstances, program.name + " (" + taps + ")",
                           [racks, program](const Corner& corner, const std::string& path, const Take& take) {
                               if (!racks->built) {
                                   racks->built.emplace([&] { return builtEffect(path); });
                                   racks->reference.emplace(literalReference);
                               }
                               racks->built->setProgram(program);
                               racks->reference->setProgram(program);
                               const std::vector<double> medians = medianNanoseconds(
                                   {racks->built->contestant(), racks->reference->contestant()});
                               take({corner.section, corner.name, kReference, medians[0], medians[1]});
                           }});
    }
    return corners;
}

} // namespace bench
