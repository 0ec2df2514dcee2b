#include "scenario.h"

#include "reference/reference_engine.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <numeric>
#include <sstream>

namespace scenario {

using namespace reference;

std::uint64_t Random::next() {
    // SplitMix64
    state_ += 0x9E3779B97F4A7C15ull;
    std::uint64_t z = state_;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return z ^ (z >> 31);
}

namespace {

constexpr float kNotANumber = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kGate = 1e-5f;

constexpr std::int32_t kBlockLengths[] = {0, 1, 2, 8, 9, 10, 11, 64, 65, 128, 256, 512, 1024, 4096};
constexpr float kRates[] = {8000.0f,  11025.0f, 22050.0f, 32000.0f, 44100.0f,
                            48000.0f, 88200.0f, 96000.0f, 192000.0f};
constexpr std::int32_t kTapCounts[] = {1,  2,  3,  4,  5,   7,   8,   15,  16,  31,
                                       39, 64, 65, 99, 100, 101, 102, 103, 127, 128};
constexpr Signal kSaneSignals[] = {Signal::kSilence, Signal::kNegativeZero, Signal::kNoise,   Signal::kNoise,
                                   Signal::kNoise,   Signal::kImpulse,      Signal::kSparse,  Signal::kSparse,
                                   Signal::kTone,    Signal::kSquare,       Signal::kDenormal};
constexpr float kLevels[] = {1.0f, 1.0f, 0.5f, 1e-3f, 1e-7f, 1e-11f};
constexpr float kWildValues[] = {-1.0f,  -0.001f,     1.001f,       2.0f,      -2.0f,     10.0f,
                                 -50.0f, 1000.0f,     -3e5f,        1e-30f,    1e9f,      -1e9f,
                                 1e20f,  -1e38f,      3e38f,        1e-40f,    -1e-6f,    1.5f,
                                 -0.0f,  kNotANumber, -kNotANumber, kInfinity, -kInfinity};

/// The value of "Taps #" that gives so many taps.
float valueOfTaps(std::int32_t taps) {
    return taps >= kMaxTaps ? 1.0f : (static_cast<float>(taps) - 0.5f) / 127.0f;
}

/// The value of "Bs Lgh 1" whose base length is about so many samples.
float valueOfLength(double samples, double rate) {
    return static_cast<float>(std::sqrt(std::max(samples - 0.5, 0.0) / (2.0 * rate)));
}

/// A value of "Set" for a read: 0 cubic, 1 linear, 2 whole samples.
float valueOfMode(Random& random, std::int32_t mode) {
    if (mode == 2)
        return random.oneIn(4) ? 1e-9f : 0.0f;
    if (mode == 1) {
        constexpr float values[] = {0.5f, 0.25f, 0.001f, 0.4999f};
        return random.oneOf(values);
    }
    constexpr float values[] = {1.0f, 0.501f, 0.75f, 0.50001f};
    return random.oneOf(values);
}

/// Around the gate: under it, on it, just above, or well open.
float valueAtTheGate(Random& random) {
    const float values[] = {
        0.0f,  1e-6f, 9e-6f, kGate, std::nextafter(kGate, 0.0f), std::nextafter(kGate, 1.0f),
        1e-4f, 0.01f, 0.5f,  1.0f};
    return random.oneOf(values);
}

/// What a person might turn a parameter to. "Set" is left to the family.
float saneValue(Random& random, std::int32_t id, double rate) {
    constexpr float corners[] = {0.0f, 1.0f, 0.5f, 0.25f, 0.3f, 0.9f};
    switch (id) {
    case kBaseLength:
        // Mostly lengths whose echoes come back within the scenario.
        if (random.oneIn(6))
            return random.oneOf(corners);
        return valueOfLength(std::exp2(1.0 + 13.0 * static_cast<double>(random.unit())), rate);
    case kTaps:
        return random.oneIn(3) ? random.unit() : valueOfTaps(random.oneOf(kTapCounts));
    case kFeedback:
        return random.oneIn(3) ? random.oneOf(corners) : random.unit();
    case kDryWet:
        return random.oneIn(2) ? 1.0f : random.unit();
    default:
        return random.oneIn(3) ? random.oneOf(corners) : random.unit();
    }
}

/// Anything at all, within what has one meaning: a sweep beyond the whole memory has none in the linear read,
/// and neither has an amp decay that is not a number.
float wildValue(Random& random, std::int32_t id) {
    for (;;) {
        const float value = random.oneOf(kWildValues);
        if (id == kAmpDecay && std::isnan(value))
            continue;
        if (id == kLfoDepth && value > 20000.0f)
            continue;
        return value;
    }
}

/// Builds one scenario; the families differ in which of these they call how often.
class Author {
  public:
    Author(std::uint64_t seed) : random(seed * 0x2545F4914F6CDD1Dull + 1) { scenario.seed = seed; }

    Random random;
    Scenario scenario;
    float rate = 44100.0f;
    std::int32_t mode = -1; ///< the read that "Set" is held at, or -1 for any

    template <typename Kind>
    void add(Kind action) {
        scenario.actions.emplace_back(std::move(action));
    }

    void set(std::int32_t id, float value) { add(SetParameter{id, value}); }

    void setSanely(std::int32_t id) {
        if (id == kSet)
            set(id, valueOfMode(random, mode >= 0 ? mode : random.below(3)));
        else
            set(id, saneValue(random, id, static_cast<double>(rate)));
    }

    void setAllSanely() {
        for (std::int32_t id = 0; id < kLiveParameters; ++id)
            setSanely(id);
    }

    /// Rate, block size, resume, as a host does it.
    void begin() {
        rate = random.oneOf(kRates);
        add(SetSampleRate{rate});
        add(SetBlockSize{512});
        add(Resume{false});
    }

    void play(std::int32_t frames, std::int32_t times = 1) {
        Blocks blocks;
        blocks.frames = frames;
        blocks.times = times;
        blocks.layout = random.oneIn(2) ? Layout::kSeparate : static_cast<Layout>(random.below(8));
        blocks.signal = random.oneOf(kSaneSignals);
        blocks.level = random.oneOf(kLevels);
        blocks.seed = random.next();
        blocks.misalignment = random.below(4);
        add(blocks);
    }

    std::int32_t anyBlockLength() {
        return random.oneIn(3) ? random.between(1, 1500) : random.oneOf(kBlockLengths);
    }

    void playAny() { play(anyBlockLength(), random.oneIn(3) ? random.between(2, 4) : 1); }

    std::vector<std::uint8_t> bytesOf(std::span<const DelayProgram> programs) {
        const auto* bytes = reinterpret_cast<const std::uint8_t*>(programs.data());
        return {bytes, bytes + programs.size_bytes()};
    }

    DelayProgram saneProgram() {
        DelayProgram program;
        for (std::int32_t id = 0; id < kLiveParameters; ++id)
            program.values[id] = id == kSet ? valueOfMode(random, mode >= 0 ? mode : random.below(3))
                                            : saneValue(random, id, static_cast<double>(rate));
        for (std::int32_t id = kLiveParameters; id < kStoredParameters; ++id)
            program.values[id] = random.unit();
        program.reserved[1] = static_cast<char>(random.below(128));
        return program;
    }
};

void writeOneMode(Author& author, std::int32_t mode) {
    author.mode = mode;
    author.begin();
    author.setAllSanely();
    const std::int32_t rounds = author.random.between(6, 14);
    for (std::int32_t round = 0; round < rounds; ++round) {
        author.playAny();
        for (std::int32_t changes = author.random.below(4); changes > 0; --changes)
            author.setSanely(author.random.below(kLiveParameters));
    }
    author.play(4096, 2);
}

void writeModeChanges(Author& author) {
    author.begin();
    author.setAllSanely();
    for (std::int32_t round = 0; round < 14; ++round) {
        author.playAny();
        author.setSanely(kSet);
        if (author.random.oneIn(2))
            author.setSanely(author.random.below(4));
    }
    author.play(2048, 2);
}

void writeFades(Author& author) {
    author.mode = 2;
    author.begin();
    author.setAllSanely();
    constexpr std::int32_t pattern[] = {kBaseLength, kTaps, kLfoRate, kStretch, kAmpDecay};
    constexpr std::int32_t lengths[] = {-1, 0, 1, 2, 3, 8, 9, 10, 11, 19, 20, 64, 100, 512, 1000, 4096};
    for (std::int32_t round = 0; round < 16; ++round) {
        author.setSanely(author.random.oneOf(pattern));
        const std::int32_t blocks = author.random.between(1, 6);
        const std::int32_t length = author.random.oneOf(lengths);
        for (std::int32_t block = 0; block < blocks; ++block)
            author.play(author.random.oneIn(5) ? author.anyBlockLength() : length);
        if (author.random.oneIn(6)) { // an armed fade that waits in another mode
            author.set(kSet, 0.75f);
            author.setSanely(kTaps);
            if (author.random.oneIn(2))
                author.play(30);
            author.set(kSet, 0.0f);
        }
        if (author.random.oneIn(8))
            author.add(Resume{true});
        if (author.random.oneIn(8))
            author.add(SetProgram{author.random.below(2)});
    }
}

void writeGates(Author& author) {
    author.begin();
    author.setAllSanely();
    constexpr std::int32_t gated[] = {kStereo, kDryWet, kOutPan, kLfoDepth};
    for (std::int32_t round = 0; round < 20; ++round) {
        author.set(author.random.oneOf(gated), valueAtTheGate(author.random));
        if (author.random.oneIn(4))
            author.set(author.random.oneOf(gated), valueAtTheGate(author.random));
        author.playAny();
    }
}

void writePrograms(Author& author) {
    author.begin();
    author.setAllSanely();
    std::vector<DelayProgram> bank(kPrograms);
    for (DelayProgram& program : bank)
        program = author.saneProgram();
    author.add(SetChunk{author.bytesOf(bank), false});
    for (std::int32_t round = 0; round < 16; ++round) {
        author.playAny();
        switch (author.random.below(9)) {
        case 0:
            author.add(SetProgram{author.random.below(kPrograms)});
            break;
        case 1:
            author.add(SetProgram{-1 - author.random.below(5)});
            break;
        case 2:
            author.add(MidiProgramChange{static_cast<std::uint8_t>(author.random.below(256))});
            break;
        case 3: {
            const DelayProgram program = author.saneProgram();
            auto bytes = author.bytesOf({&program, 1});
            bytes.resize(static_cast<std::size_t>(author.random.below(113)));
            author.add(SetChunk{std::move(bytes), true});
            break;
        }
        case 4: {
            const DelayProgram program = author.saneProgram();
            author.add(SetChunk{author.bytesOf({&program, 1}), true});
            break;
        }
        case 5: // refused, and still it clears the memory
            author.add(SetChunk{std::vector<std::uint8_t>(113, 0x3E), true});
            break;
        case 6:
            author.add(MidiControllerOfAll{static_cast<std::uint8_t>(author.random.below(256))});
            break;
        default:
            author.setSanely(author.random.below(kLiveParameters));
        }
    }
}

void writeRates(Author& author) {
    author.begin();
    author.setAllSanely();
    for (std::int32_t round = 0; round < 14; ++round) {
        author.playAny();
        switch (author.random.below(6)) {
        case 0:
            author.add(Resume{author.random.oneIn(2)});
            break;
        case 1:
        case 2:
            author.rate = author.random.oneOf(kRates);
            author.add(SetSampleRate{author.rate});
            if (author.random.oneIn(2))
                author.playAny(); // all taps at the write position
            if (author.random.oneIn(2))
                author.add(Resume{author.random.oneIn(2)});
            else
                author.set(author.random.between(-1, 22), 0.4f);
            break;
        case 3:
            author.add(SetBlockSize{author.random.between(1, 5000)});
            break;
        default:
            author.setSanely(author.random.below(kLiveParameters));
        }
    }
}

void writeHostileHost(Author& author) {
    author.begin();
    author.setAllSanely();
    if (author.random.oneIn(6)) {
        constexpr float rates[] = {0.0f, -44100.0f, kNotANumber, kInfinity, 1.0f, 1e-20f, 1e12f};
        author.add(SetSampleRate{author.random.oneOf(rates)});
        author.add(Resume{true});
    }
    for (std::int32_t round = 0; round < 12; ++round) {
        author.playAny();
        auto& blocks = std::get<Blocks>(author.scenario.actions.back());
        if (author.random.oneIn(8))
            blocks.signal = author.random.oneIn(2) ? Signal::kHuge : Signal::kHostile;
        const std::int32_t id = author.random.below(kLiveParameters);
        if (author.random.oneIn(3) || id == kSet)
            author.setSanely(id);
        else
            author.set(id, wildValue(author.random, id));
    }
}

void writeForeignModes(Author& author) {
    author.scenario.hasForeignModes = true;
    author.begin();
    author.setAllSanely();
    constexpr float values[] = {-0.5f,   -1.0f, 1.5f,        2.0f,      100.0f,
                                -100.0f, 1e20f, kNotANumber, kInfinity, -kInfinity};
    for (std::int32_t round = 0; round < 10; ++round) {
        if (author.random.oneIn(4))
            author.setSanely(kSet);
        else
            author.set(kSet, author.random.oneOf(values));
        author.playAny();
        author.setSanely(author.random.below(4));
    }
}

/// Echoes a few samples long: every tap reads what has only just been written.
void writeShortTimes(Author& author) {
    author.mode = author.random.below(3);
    author.begin();
    author.setAllSanely();
    for (std::int32_t round = 0; round < 12; ++round) {
        const double samples = static_cast<double>(author.random.below(author.random.oneIn(2) ? 12 : 300));
        author.set(kBaseLength, valueOfLength(samples, static_cast<double>(author.rate)));
        author.set(kTaps, valueOfTaps(author.random.oneOf(kTapCounts)));
        author.set(kLfoDepth, author.random.oneIn(3) ? 0.0f : author.random.unit());
        author.set(kFeedback, author.random.oneIn(2) ? 1.0f : author.random.unit());
        if (author.random.oneIn(3))
            author.setSanely(kStretch);
        author.playAny();
        author.playAny();
    }
}

/// Runs the write position over the memory's end, with a tap near the oldest sample and a deep sweep.
void writePastTheWrap(Author& author, std::int32_t mode) {
    author.mode = mode;
    author.rate = 192000.0f;
    author.add(SetSampleRate{author.rate});
    author.add(Resume{false});
    author.setAllSanely();
    author.set(kStretch, 0.5f);
    author.set(kAmpDecay, author.random.oneIn(2) ? 0.5f : 0.7f);
    author.set(kLfoDepth, 1.0f);
    author.set(kLfoRate, 0.2f + 0.8f * author.random.unit());
    author.set(kDryWet, 1.0f);
    // A light pattern glides into place on the long way to the wrap. A heavy one jumps and would cost too
    // much on the way, so it comes only before the wrap, and one tap goes ahead.
    constexpr std::int32_t jumping[] = {102, 103, 127, 128};
    const bool glides = author.scenario.seed % 2 == 0;
    const std::int32_t taps = glides ? author.random.between(1, 9) : author.random.oneOf(jumping);
    // An even pattern whose last tap lies within the sweep's reach of the memory's end.
    const std::int32_t gap = (4194300 - author.random.below(100)) / taps;
    author.set(kBaseLength, valueOfLength(2.0 * gap + 1.0, static_cast<double>(author.rate)));
    author.set(kTaps, valueOfTaps(glides ? taps : 1));
    if (!glides)
        author.set(kSet, 0.0f);
    author.play(4096, 1023);
    auto& approach = std::get<Blocks>(author.scenario.actions.back());
    approach.signal = Signal::kNoise;
    approach.level = 1.0f;
    author.set(kTaps, valueOfTaps(taps));
    author.setSanely(kSet);
    for (std::int32_t block = 0; block < 24; ++block) {
        author.play(author.random.between(1, 700));
        if (author.random.oneIn(4))
            author.set(kLfoDepth, author.random.oneIn(2) ? 1.0f : author.random.unit());
    }
    author.play(4096, 2);
    author.setSanely(kTaps);
    author.setSanely(kBaseLength);
    author.play(1000, 6);
}

/// Every length of block from 1 to 65 at least once, in any order.
void playAllShortBlocks(Author& author) {
    std::array<std::int32_t, 65> lengths;
    std::iota(lengths.begin(), lengths.end(), 1);
    for (std::size_t i = lengths.size() - 1; i > 0; --i)
        std::swap(lengths[i],
                  lengths[static_cast<std::size_t>(author.random.below(static_cast<int>(i) + 1))]);
    for (std::int32_t length : lengths)
        author.play(length);
}

/// The first or the last tap comes back within a sub-block or just outside, loudly, under every length of
/// block.
void writeShortFeedback(Author& author) {
    author.mode = author.random.below(3);
    author.begin();
    author.setAllSanely();
    for (std::int32_t round = 0; round < 3; ++round) {
        // One gap of an even pattern is half the base length.
        const double gap = author.random.oneIn(3) ? author.random.below(30) : author.random.between(56, 72);
        constexpr std::int32_t counts[] = {1, 2, 3, 8, 9, 101, 102, 128};
        author.set(kStretch, author.random.oneIn(3) ? author.random.unit() : 0.5f);
        author.set(kBaseLength, valueOfLength(2.0 * gap, static_cast<double>(author.rate)));
        author.set(kTaps, valueOfTaps(author.random.oneOf(counts)));
        author.set(kFeedback, author.random.oneIn(2) ? 1.0f : 0.0f);
        author.set(kLfoDepth, author.random.oneIn(2) ? 0.0f : author.random.unit());
        author.set(kLfoRate, author.random.unit());
        author.set(kDryWet, 0.9f);
        if (author.random.oneIn(2))
            author.play(20000);
        playAllShortBlocks(author);
    }
}

/// Taps on the way to places far away, so that they overtake each other, the write position and the end of
/// the memory.
void writeCrossingGlides(Author& author) {
    author.mode = author.random.below(2);
    author.begin();
    author.setAllSanely();
    constexpr std::int32_t counts[] = {2, 3, 7, 16, 33, 64, 100, 101};
    for (std::int32_t round = 0; round < 6; ++round) {
        author.set(kTaps, valueOfTaps(author.random.oneOf(counts)));
        author.set(kStretch, author.random.unit());
        author.set(kBaseLength, author.random.oneIn(2) ? author.random.unit() : author.random.unit() * 0.02f);
        author.set(kLfoDepth, author.random.oneIn(3) ? 0.0f : author.random.unit());
        if (author.random.oneIn(3))
            author.set(kSet, author.random.oneIn(2) ? 1.0f : 0.3f);
        for (std::int32_t block = 0; block < 4; ++block)
            author.play(author.random.oneIn(2) ? author.random.between(1, 65)
                                               : author.random.between(100, 1500));
    }
}

/// Programs, rates and resumes between short blocks: the memory is mostly empty, its first echoes are just
/// arriving, and the taps may all sit on the write position.
void writeInterruptions(Author& author) {
    author.begin();
    author.setAllSanely();
    std::vector<DelayProgram> bank(kPrograms);
    for (DelayProgram& program : bank) {
        program = author.saneProgram();
        program.values[kBaseLength] = valueOfLength(author.random.between(4, 400), 44100.0);
        program.values[kDryWet] = 0.8f;
    }
    author.add(SetChunk{author.bytesOf(bank), false});
    for (std::int32_t round = 0; round < 30; ++round) {
        for (std::int32_t block = author.random.between(1, 8); block > 0; --block)
            author.play(author.random.between(1, 65));
        switch (author.random.below(5)) {
        case 0:
        case 1:
            author.add(SetProgram{author.random.below(kPrograms)});
            break;
        case 2:
            author.rate = author.random.oneOf(kRates);
            author.add(SetSampleRate{author.rate});
            break;
        case 3:
            author.add(Resume{true});
            break;
        default:
            author.set(author.random.between(-1, 22), author.random.unit());
        }
    }
}

/// A full memory and short blocks across its end: taps on the oldest sample, taps pinned behind it, taps that
/// the sweep carries over the edge and back, and each of the ways to start anew.
void writeFullMemory(Author& author) {
    author.mode = static_cast<std::int32_t>(author.scenario.seed % 3);
    author.rate = 192000.0f;
    author.add(SetSampleRate{author.rate});
    author.add(Resume{false});
    author.setAllSanely();
    author.set(kStretch, 0.5f);
    author.set(kAmpDecay, 0.5f);
    author.set(kDryWet, 1.0f);
    author.set(kTaps, valueOfTaps(1));
    author.set(kSet, 0.0f);
    author.play(4096, 1023);
    auto& approach = std::get<Blocks>(author.scenario.actions.back());
    approach.signal = Signal::kNoise;
    approach.level = 1.0f;
    for (std::int32_t round = 0; round < 3; ++round) {
        // From 102 taps on nothing glides, so the taps are at the edge at once.
        const std::int32_t taps = author.random.between(102, 128);
        const std::int32_t reach = 4194302 + author.random.between(-80, 3);
        const double gap = author.random.oneIn(3) ? 4194302.0 / author.random.between(60, 101)
                                                  : static_cast<double>(reach) / taps;
        author.set(kBaseLength, valueOfLength(2.0 * gap + 1.0, static_cast<double>(author.rate)));
        author.set(kTaps, valueOfTaps(taps));
        author.setSanely(kSet);
        constexpr float depths[] = {0.0f, 0.005f, 0.02f, 0.3f, 1.0f};
        author.set(kLfoDepth, author.random.oneOf(depths));
        author.set(kLfoRate, author.random.oneIn(3) ? 1.0f : author.random.unit());
        author.set(kFeedback, author.random.unit());
        if (round == 0) // up to the end itself
            author.play(4096 - author.random.between(60, 400));
        playAllShortBlocks(author);
    }
    // Loud feedback within a sub-block, where every slot around the write position holds something.
    author.set(kFeedback, 1.0f);
    author.set(kTaps, valueOfTaps(author.random.between(102, 128)));
    for (std::int32_t round = 0; round < 4; ++round) {
        const double gap = author.random.below(round % 2 == 0 ? 4 : 80);
        author.set(kBaseLength, valueOfLength(2.0 * gap, static_cast<double>(author.rate)));
        for (std::int32_t block = 0; block < 5; ++block)
            author.play(author.random.between(1, 200));
    }
    author.add(SetSampleRate{96000.0f});
    author.play(author.random.between(1, 300));
    author.set(17, 0.0f);
    author.play(author.random.between(1, 300));
    author.add(SetProgram{0});
    author.setSanely(kTaps);
    author.play(2000);
}

/// No number or an infinite one for a parameter, as far as it is settled what follows from it.
float extremeValue(Random& random, std::int32_t id) {
    constexpr float values[] = {kNotANumber, -kNotANumber, kInfinity, -kInfinity};
    if (id == kAmpDecay)
        return random.oneIn(2) ? kInfinity : -kInfinity;
    if (id == kLfoDepth)
        return random.oneIn(2) ? kNotANumber : -kInfinity;
    return random.oneOf(values);
}

/// Forgets every echo and changes nothing else. A host's number of 128 or more would do nothing at all.
void clearAlone(Author& author) {
    constexpr std::int32_t noPrograms[] = {-1, -128, std::numeric_limits<std::int32_t>::min()};
    if (author.random.oneIn(2))
        author.add(SetProgram{author.random.oneOf(noPrograms)});
    else
        author.add(MidiProgramChange{static_cast<std::uint8_t>(author.random.between(0x80, 0xFF))});
}

/// Parameters that are no numbers, blocks that are none or longer than a host's longest, and clearings in the
/// middle of the sound. What stays in the filters or the sweep for ever comes last.
void writeExtremes(Author& author) {
    author.mode = author.random.below(3);
    author.begin();
    author.setAllSanely();
    author.set(kBaseLength, valueOfLength(author.random.between(10, 3000), static_cast<double>(author.rate)));
    constexpr std::int32_t passing[] = {kBaseLength, kTaps, kStretch, kAmpDecay, kCurve, kFeedback};
    constexpr std::int32_t lasting[] = {kLfoRate, kLfoDepth, kStereo,      kDryWet,  kOutPan,
                                        kPrePan,  kPreGain,  kPreHighPass, kOutGain, kPreLowPass};
    constexpr std::int32_t lengths[] = {0,    -1,   -4096, std::numeric_limits<std::int32_t>::min(),
                                        4097, 5000, 8192,  12345};
    for (std::int32_t round = 0; round < 10; ++round) {
        const std::int32_t id = round < 8 ? author.random.oneOf(passing) : author.random.oneOf(lasting);
        author.set(id, extremeValue(author.random, id));
        author.play(author.random.oneOf(lengths));
        author.setSanely(id);
        author.play(author.random.between(1, 700));
        if (author.random.oneIn(2))
            clearAlone(author);
        author.play(author.random.oneIn(2) ? author.random.oneOf(lengths) : author.anyBlockLength());
    }
}

/// Sound, and silence long enough for the filters to come as near to zero as they ever do, or next to it; and
/// sound again.
void writeNearSilence(Author& author) {
    author.begin();
    author.setAllSanely();
    constexpr Signal quiet[] = {Signal::kSilence, Signal::kSilence, Signal::kNegativeZero, Signal::kDenormal,
                                Signal::kNoise};
    constexpr float levels[] = {1e-38f, 1e-39f, 1e-40f, 1e-42f, 1e-44f};
    if (author.random.oneIn(3)) {
        // A low-pass above half the rate grows by itself, and makes all the difference of a state that nobody
        // would hear.
        author.rate = 22050.0f;
        author.add(SetSampleRate{author.rate});
        author.add(Resume{false});
        author.set(kPreLowPass, 1.0f);
        const auto playQuietly = [&](std::int32_t frames, std::int32_t times, Signal signal) {
            author.play(frames, times);
            auto& blocks = std::get<Blocks>(author.scenario.actions.back());
            blocks.signal = signal;
            blocks.level = 1e-43f;
        };
        playQuietly(author.random.between(1, 200), 1, Signal::kSilence);
        playQuietly(author.random.between(1, 9), 1, Signal::kNoise);
        const std::int32_t length = author.random.between(1, 65);
        playQuietly(length, 600 / length, Signal::kSilence);
        author.setSanely(kPreLowPass);
        author.add(Resume{true});
    }
    for (std::int32_t round = 0; round < 6; ++round) {
        author.playAny();
        author.play(1024, author.random.oneIn(3) ? 60 : 12);
        auto& blocks = std::get<Blocks>(author.scenario.actions.back());
        blocks.signal = author.random.oneOf(quiet);
        blocks.level = author.random.oneOf(levels);
        if (author.random.oneIn(2))
            author.setSanely(author.random.below(kLiveParameters));
        if (author.random.oneIn(2))
            author.play(author.random.between(1, 65));
    }
    author.play(1024, 2);
}

/// A channel that has sounded is silent until what is left of it has sunk below the normal numbers and
/// stopped, while the other one sounds on or is silent too.
void writeAfterASound(Author& author) {
    author.begin();
    author.setAllSanely();
    constexpr float places[] = {0.0f, 0.3f, 0.5f, 1.0f};
    for (std::int32_t round = 0; round < 4; ++round) {
        author.set(kTaps, valueOfTaps(author.random.between(2, 40)));
        author.set(kBaseLength,
                   valueOfLength(author.random.between(4, 400), static_cast<double>(author.rate)));
        author.set(kStereo, author.random.oneOf(places));
        author.set(kOutPan, author.random.oneOf(places));
        author.set(kDryWet, author.random.oneOf(places));
        author.play(1024, 8);
        auto& sound = std::get<Blocks>(author.scenario.actions.back());
        sound.signal = Signal::kNoise;
        switch (author.random.below(4)) {
        case 0:
            author.add(Resume{true});
            break;
        case 1:
            author.set(kBaseLength, 1.0f);
            author.add(SetProgram{author.random.below(kPrograms)});
            break;
        default:
            author.set(kTaps, valueOfTaps(1));
        }
        author.play(author.random.oneIn(3) ? 100 : 1024, author.random.between(20, 60));
        auto& after = std::get<Blocks>(author.scenario.actions.back());
        after.signal = author.random.oneIn(2) ? Signal::kSilence : Signal::kNoise;
        author.play(author.random.between(1, 9), 20);
        if (author.random.oneIn(2))
            author.setSanely(kSet);
        author.play(author.random.between(1, 200), 20);
    }
}

/// Blocks of a few frames, as hosts cut them to automate, between longer ones.
void writeShortBlocks(Author& author) {
    author.begin();
    author.setAllSanely();
    for (std::int32_t round = 0; round < 12; ++round) {
        author.set(kTaps, valueOfTaps(author.random.oneOf(kTapCounts)));
        author.set(kBaseLength,
                   valueOfLength(author.random.between(3, 300), static_cast<double>(author.rate)));
        author.setSanely(kSet);
        author.setSanely(kLfoDepth);
        author.set(kFeedback, author.random.unit());
        author.play(author.random.between(9, 700), 2);
        for (std::int32_t times = 0; times < 12; ++times) {
            author.play(author.random.between(1, 9), author.random.between(1, 30));
            if (author.random.oneIn(4))
                author.setSanely(author.random.below(kLiveParameters));
        }
        author.play(author.random.between(64, 80), 3);
        if (author.random.oneIn(3))
            author.add(SetProgram{author.random.below(kPrograms)});
    }
}

const char* titleOf(Family family) {
    constexpr const char* titles[kFamilies] = {"whole samples",
                                               "linear read",
                                               "cubic read",
                                               "changes between the reads",
                                               "fades",
                                               "gates",
                                               "programs, chunks and MIDI",
                                               "sample rates",
                                               "a hostile host",
                                               "\"Set\" outside its range",
                                               "the shortest times",
                                               "whole samples past the wrap",
                                               "linear read past the wrap",
                                               "cubic read past the wrap",
                                               "short feedback",
                                               "crossing glides",
                                               "interruptions",
                                               "a full memory",
                                               "near silence",
                                               "extremes",
                                               "after a sound",
                                               "short blocks"};
    return titles[static_cast<std::size_t>(family)];
}

} // namespace

Scenario make(std::uint64_t seed) {
    Author author(seed);
    const auto family = static_cast<Family>(seed / kSeedsPerFamily % kFamilies);
    author.scenario.title = titleOf(family);
    switch (family) {
    case Family::kWholeSamples:
        writeOneMode(author, 2);
        break;
    case Family::kLinear:
        writeOneMode(author, 1);
        break;
    case Family::kCubic:
        writeOneMode(author, 0);
        break;
    case Family::kModeChanges:
        writeModeChanges(author);
        break;
    case Family::kFades:
        writeFades(author);
        break;
    case Family::kGates:
        writeGates(author);
        break;
    case Family::kPrograms:
        writePrograms(author);
        break;
    case Family::kRates:
        writeRates(author);
        break;
    case Family::kHostileHost:
        writeHostileHost(author);
        break;
    case Family::kForeignModes:
        writeForeignModes(author);
        break;
    case Family::kShortTimes:
        writeShortTimes(author);
        break;
    case Family::kWholeSamplesPastTheWrap:
        writePastTheWrap(author, 2);
        break;
    case Family::kLinearPastTheWrap:
        writePastTheWrap(author, 1);
        break;
    case Family::kCubicPastTheWrap:
        writePastTheWrap(author, 0);
        break;
    case Family::kShortFeedback:
        writeShortFeedback(author);
        break;
    case Family::kCrossingGlides:
        writeCrossingGlides(author);
        break;
    case Family::kInterruptions:
        writeInterruptions(author);
        break;
    case Family::kFullMemory:
        writeFullMemory(author);
        break;
    case Family::kNearSilence:
        writeNearSilence(author);
        break;
    case Family::kExtremes:
        writeExtremes(author);
        break;
    case Family::kAfterASound:
        writeAfterASound(author);
        break;
    case Family::kShortBlocks:
        writeShortBlocks(author);
        break;
    }
    return std::move(author.scenario);
}

// --- In words ---

namespace {

constexpr const char* kSignalNames[] = {"silence",         "negative zeros", "noise",         "an impulse",
                                        "sparse impulses", "a tone",         "a square wave", "denormals",
                                        "huge samples",    "hostile samples"};
constexpr const char* kLayoutNames[] = {"separate buffers",
                                        "in place",
                                        "crossed",
                                        "left in place",
                                        "right in place",
                                        "right output over left input",
                                        "one input for both",
                                        "one input for both, left in place"};

struct Words {
    std::ostringstream& text;

    void operator()(const Blocks& blocks) const {
        text << blocks.times << " x process(" << blocks.frames << ") "
             << kLayoutNames[static_cast<std::size_t>(blocks.layout)] << ", "
             << kSignalNames[static_cast<std::size_t>(blocks.signal)] << " at " << blocks.level << ", "
             << blocks.misalignment << " samples off alignment";
    }
    void operator()(const SetParameter& set) const {
        text << "setParameter(" << set.id << ", " << set.value << ")  bits 0x" << std::hex
             << std::bit_cast<std::uint32_t>(set.value) << std::dec;
    }
    void operator()(const SetProgram& set) const { text << "setProgram(" << set.program << ")"; }
    void operator()(const MidiProgramChange& change) const {
        text << "MIDI program change " << static_cast<int>(change.program);
    }
    void operator()(const MidiControllerOfAll& controller) const {
        text << "MIDI controller 255, value " << static_cast<int>(controller.value);
    }
    void operator()(const Resume& resume) const {
        text << (resume.suspendFirst ? "suspend, resume" : "resume");
    }
    void operator()(const SetSampleRate& set) const { text << "setSampleRate(" << set.rate << ")"; }
    void operator()(const SetBlockSize& set) const { text << "setBlockSize(" << set.frames << ")"; }
    void operator()(const SetChunk& set) const {
        text << "setChunk of " << set.bytes.size() << " bytes as a " << (set.isPreset ? "preset" : "bank");
        for (std::size_t id = 0; set.isPreset && (id + 1) * sizeof(float) <= set.bytes.size() && id < 17;
             ++id) {
            float value;
            std::memcpy(&value, set.bytes.data() + id * sizeof value, sizeof value);
            text << (id ? ", " : ": ") << value;
        }
    }
};

} // namespace

std::string describe(const Action& action) {
    std::ostringstream text;
    text.precision(9);
    std::visit(Words{text}, action);
    return text.str();
}

// --- Signals ---

namespace {

float hostileSample(Random& random) {
    constexpr float values[] = {kNotANumber, -kNotANumber, kInfinity, -kInfinity, 3e38f, -3e38f, 1e-45f};
    return random.oneIn(400) ? random.oneOf(values) : random.bipolar();
}

float sampleOf(const Blocks& blocks, std::int64_t position, Random& random) {
    switch (blocks.signal) {
    case Signal::kSilence:
        return 0.0f;
    case Signal::kNegativeZero:
        return -0.0f;
    case Signal::kNoise:
        return random.bipolar() * blocks.level;
    case Signal::kImpulse:
        return position == 0 ? blocks.level : 0.0f;
    case Signal::kSparse:
        return random.oneIn(97) ? random.bipolar() * blocks.level : 0.0f;
    case Signal::kTone: // a parabola for each half turn of 200 samples, near enough to a sine
    {
        const float x = static_cast<float>(position % 100) / 100.0f;
        const float half = 4.0f * x * (1.0f - x) * blocks.level;
        return position / 100 % 2 ? -half : half;
    }
    case Signal::kSquare:
        return position / 37 % 2 ? -blocks.level : blocks.level;
    case Signal::kDenormal:
        return random.bipolar() * 1e-39f;
    case Signal::kHuge:
        return random.bipolar() * 1e30f;
    case Signal::kHostile:
        return hostileSample(random);
    }
    return 0.0f;
}

} // namespace

void fill(const Blocks& blocks, std::int64_t position, Random& random, std::span<float> left,
          std::span<float> right) {
    for (std::size_t i = 0; i < left.size(); ++i) {
        left[i] = sampleOf(blocks, position + static_cast<std::int64_t>(i), random);
        right[i] = sampleOf(blocks, position + static_cast<std::int64_t>(i), random);
    }
}

} // namespace scenario
