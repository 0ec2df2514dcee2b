#include "bench/corners.h"
#include "bench/player.h"
#include "bench/preparation.h"
#include "desk/measuring.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace bench {

namespace {

constexpr std::int32_t kBlock = 64;
constexpr std::size_t kRounds = 3;

/// Prepares a subject up to the block whose page faults count.
using Prepare = void (*)(Subject&, Buffers&);

/// Nothing has glided before.
void prepareFirstGlide(Subject& subject, Buffers& buffers) {
    setCommonValues(subject);
    fillMemory(subject, buffers);
    setTaps(subject, {.taps = 101});
}

/// The median of some new instances, which all live on, so that none gets the memory of another.
template <class Make>
double faultsOfBlock(Make&& make, Prepare prepare) {
    Buffers buffers;
    std::array<std::unique_ptr<ClearableSubject>, kRounds> subjects;
    std::array<double, kRounds> faults{};
    for (std::size_t round = 0; round < kRounds; ++round) {
        subjects[round] = make();
        subjects[round]->setSampleRate(kSampleRate);
        if (prepare)
            prepare(*subjects[round], buffers);
        const std::int64_t before = desk::pageFaultsOfThisThread();
        buffers.play(*subjects[round], kBlock, 1);
        faults[round] = static_cast<double>(desk::pageFaultsOfThisThread() - before);
    }
    std::ranges::sort(faults);
    return faults[kRounds / 2];
}

Corner faultsOf(const std::string& block, Prepare prepare) {
    return {section::kFaults, block, [=](const Corner& corner, const std::string& library, const Take& take) {
                take({corner.section, corner.name, kReference,
                      faultsOfBlock([&] { return builtEffect(library); }, prepare),
                      faultsOfBlock(literalReference, prepare)});
            }};
}

} // namespace

std::vector<Corner> pageFaultCorners() {
    return {faultsOf("first block of 64 of a new instance", nullptr),
            faultsOf("first block of 64 in which 101 taps begin to glide", prepareFirstGlide)};
}

} // namespace bench
