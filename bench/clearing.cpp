#include "bench/contest.h"
#include "bench/corners.h"
#include "bench/player.h"
#include "bench/preparation.h"

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace bench {

namespace {

constexpr std::int32_t kBlock = 64;
/// 0.6 s. The first echo of all patterns here comes after 0.68 s or later.
constexpr std::int32_t kBlocksOfRun = 448;

using Clear = void (*)(ClearableSubject&);

/// A pattern at rest over a memory full of sound, played on, or cleared before each run.
class PatternPlayer {
  public:
    PatternPlayer(std::unique_ptr<ClearableSubject> subject, const SoundCase& situation, Clear clear)
        : subject_(std::move(subject)), clear_(clear) {
        subject_->setSampleRate(kSampleRate);
        setCommonValues(*subject_);
        fillMemory(*subject_, buffers_);
        setTaps(*subject_, situation);
        settle(*subject_, buffers_, glides(situation));
    }
    Contestant contestant() {
        return {[this] {
                    if (clear_)
                        clear_(*subject_);
                    const double start = processorSeconds();
                    buffers_.play(*subject_, kBlock, kBlocksOfRun);
                    return processorSeconds() - start;
                },
                static_cast<double>(kBlock * kBlocksOfRun)};
    }

  private:
    std::unique_ptr<ClearableSubject> subject_;
    Clear clear_;
    Buffers buffers_;
};

/// Without the block's length, and without saying that the pattern rests.
std::string nameOf(const SoundCase& situation) {
    const std::string name = situation.nameWithoutBlocks();
    return name.substr(0, name.find(", at rest"));
}

Corner afterClearing(const SoundCase& situation, const std::string& what, Clear clear) {
    return {section::kClearing, nameOf(situation) + ", from " + what + " to the first echo",
            [=](const Corner& corner, const std::string& library, const Take& take) {
                PatternPlayer built(builtEffect(library), situation, clear);
                PatternPlayer reference(literalReference(), situation, clear);
                PatternPlayer steady(builtEffect(library), situation, nullptr);
                const std::vector<double> medians =
                    medianNanoseconds({built.contestant(), reference.contestant(), steady.contestant()});
                take({corner.section, corner.name, kReference, medians[0], medians[1]});
                take({corner.section, corner.name, kSteady, medians[0], medians[2]});
            }};
}

} // namespace

std::vector<Corner> clearingCorners() {
    std::vector<Corner> corners;
    for (const SoundCase& situation :
         {SoundCase{.taps = 1}, SoundCase{.taps = 8}, SoundCase{}, SoundCase{.read = Read::whole}}) {
        corners.push_back(afterClearing(situation, "a change of program",
                                        [](ClearableSubject& subject) { subject.setProgram(0); }));
        corners.push_back(
            afterClearing(situation, "a resume", [](ClearableSubject& subject) { subject.resume(); }));
    }
    return corners;
}

} // namespace bench
