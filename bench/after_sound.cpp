#include "bench/contest.h"
#include "bench/corners.h"
#include "bench/player.h"
#include "bench/preparation.h"
#include "reference/reference_engine.h"

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace bench {

namespace {

constexpr std::int32_t kBlock = 64;
constexpr std::int32_t kBatchBlocks = kBatchFrames / kBlock;
/// The programs that are used, by number.
constexpr std::int32_t kFollowing = 0, kStereo = 1;

enum class History { stereoSound, none };

/// One tap, which gives the left channel alone, on an instance that has played a stereo program before, or
/// none. When it is timed, what was left of that in the right channel has long become subnormal.
class FollowingProgram {
  public:
    FollowingProgram(std::unique_ptr<ClearableSubject> subject, History history, Input input, float stereo)
        : subject_(std::move(subject)) {
        subject_->setSampleRate(kSampleRate);
        if (history == History::stereoSound) {
            subject_->setProgram(kStereo);
            const SoundCase before{.taps = 8, .place = Place::close};
            setCommonValues(*subject_);
            setTaps(*subject_, before);
            settle(*subject_, buffers_, glides(before));
        }
        subject_->setProgram(kFollowing);
        setCommonValues(*subject_);
        subject_->setParameter(reference::kStereo, stereo);
        setTaps(*subject_, {.taps = 1});
        buffers_.hold(input);
        buffers_.play(*subject_, kBatchFrames, kMemoryFrames / kBatchFrames);
    }
    Contestant contestant() {
        return {[this] {
                    const double start = processorSeconds();
                    buffers_.play(*subject_, kBlock, kBatchBlocks);
                    return processorSeconds() - start;
                },
                static_cast<double>(kBatchFrames)};
    }

  private:
    std::unique_ptr<ClearableSubject> subject_;
    Buffers buffers_;
};

void compete(const Corner& corner, const Take& take, const std::vector<Contestant>& contestants) {
    const std::vector<double> medians = medianNanoseconds(contestants);
    take({corner.section, corner.name, kReference, medians[0], medians[1]});
    take({corner.section, corner.name, kFresh, medians[0], medians[2]});
}

Corner followingProgram(const std::string& name, Input input, float stereo) {
    return {section::kAfter, name, [=](const Corner& corner, const std::string& library, const Take& take) {
                FollowingProgram built(builtEffect(library), History::stereoSound, input, stereo);
                FollowingProgram reference(literalReference(), History::stereoSound, input, stereo);
                FollowingProgram fresh(builtEffect(library), History::none, input, stereo);
                compete(corner, take, {built.contestant(), reference.contestant(), fresh.contestant()});
            }};
}

Corner silenceAfterSound(std::int32_t taps, const std::string& howLong, std::int32_t silentFrames) {
    const std::string name = std::to_string(taps) + (taps == 1 ? " tap" : " taps") +
                             ", cubic, spread, silence " + howLong + " after a sound";
    return {section::kAfter, name, [=](const Corner& corner, const std::string& library, const Take& take) {
                SoundCase situation{.taps = taps,
                                    .blockFrames = kBlock,
                                    .input = Input::silence,
                                    .silentFrames = silentFrames};
                Player built(builtEffect(library), situation);
                Player reference(literalReference(), situation);
                situation.input = Input::nothing;
                Player fresh(builtEffect(library), situation);
                compete(corner, take, {built.contestant(), reference.contestant(), fresh.contestant()});
            }};
}

} // namespace

std::vector<Corner> afterSoundCorners() {
    constexpr float mono = 0.5f, wide = 0.0f;
    std::vector<Corner> corners = {
        followingProgram("1 tap, cubic, silence after a stereo program with sound", Input::silence, wide),
        followingProgram("1 tap, cubic, sound after a stereo program with sound", Input::noise, wide),
        followingProgram("1 tap, cubic, mono, sound after a stereo program with sound", Input::noise, mono)};
    for (const std::int32_t taps : {1, 8, 128})
        corners.push_back(silenceAfterSound(taps, "3 seconds", kSilentFrames));
    for (const std::int32_t taps : {1, 8})
        corners.push_back(silenceAfterSound(taps, "87 seconds", kMemoryFrames));
    return corners;
}

} // namespace bench
