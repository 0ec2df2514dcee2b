// How far two builds of the effect are from each other, where they were made for different systems: one run
// writes down what a build makes of some scenarios, another compares two such records.
//
//   scenario_recording record FILE      with the library that it was built with
//   scenario_recording compare FILE FILE
#include "scenario.h"

#include "desk/private_folder.h"
#include "host/plugin.h"
#include "support/own_process.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <exception>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <vector>

namespace {

using namespace scenario;

constexpr std::uint64_t kRecordedPerFamily = 4;

/// Plays a scenario and keeps all that comes out, both channels of a block after each other.
class Player {
  public:
    explicit Player(const host::Library& library) : plugin_(library, quietHost()) { plugin_.open(); }

    const std::vector<float>& play(const Scenario& scenario) {
        for (const Action& action : scenario.actions)
            std::visit(*this, action);
        return output_;
    }

    void operator()(const Blocks& blocks) {
        if (blocks.frames <= 0)
            return;
        const auto frames = static_cast<std::size_t>(blocks.frames);
        std::vector<float> left(frames), right(frames), out(2 * frames);
        float* inputs[] = {left.data(), right.data()};
        float* outputs[] = {out.data(), out.data() + frames};
        Random random(blocks.seed);
        for (std::int32_t block = 0; block < blocks.times; ++block) {
            fill(blocks, std::int64_t{block} * blocks.frames, random, left, right);
            plugin_.process(inputs, outputs, blocks.frames);
            output_.insert(output_.end(), out.begin(), out.end());
        }
    }
    void operator()(const SetParameter& set) { plugin_.setParameter(set.id, set.value); }
    void operator()(const SetProgram& set) { plugin_.setProgram(set.program); }
    void operator()(const MidiProgramChange& change) { send({0, {0xC3, change.program, 0}}); }
    void operator()(const MidiControllerOfAll& controller) { send({0, {0xB5, 0xFF, controller.value}}); }
    void operator()(const Resume& resume) {
        if (resume.suspendFirst)
            plugin_.suspend();
        plugin_.resume();
    }
    void operator()(const SetSampleRate& set) { plugin_.setSampleRate(set.rate); }
    void operator()(const SetBlockSize& set) { plugin_.setBlockSize(set.frames); }
    void operator()(const SetChunk& set) { plugin_.setChunk(set.bytes, set.isPreset); }

  private:
    static host::HostBehaviour quietHost() {
        host::HostBehaviour behaviour;
        behaviour.record = false;
        return behaviour;
    }
    void send(const host::MidiMessage& message) { plugin_.sendMidi({&message, 1}); }

    host::Plugin plugin_;
    std::vector<float> output_;
};

template <typename Value>
void write(std::ostream& out, const Value* values, std::size_t count) {
    out.write(reinterpret_cast<const char*>(values), static_cast<std::streamsize>(count * sizeof(Value)));
}

template <typename Value>
bool read(std::istream& in, Value* values, std::size_t count) {
    in.read(reinterpret_cast<char*>(values), static_cast<std::streamsize>(count * sizeof(Value)));
    return static_cast<bool>(in);
}

void record(const std::filesystem::path& file) {
    std::ofstream out(file, std::ios::binary);
    const desk::PrivateFolder folder;
    conversation::leaveThePersonsSettingsAlone(folder.path());
    const host::Library library(QUILLON_LIBRARY);
    for (std::uint64_t family = 0; family < kFamilies; ++family)
        for (std::uint64_t index = 0; index < kRecordedPerFamily; ++index) {
            const std::uint64_t seed = seedOf(static_cast<Family>(family), index);
            const std::vector<float> output = Player(library).play(make(seed));
            const std::uint64_t head[] = {seed, output.size()};
            write(out, head, 2);
            write(out, output.data(), output.size());
        }
    if (!out.flush())
        throw std::runtime_error("cannot write " + file.string());
}

struct Take {
    std::uint64_t seed = 0;
    std::vector<float> samples;

    bool readFrom(std::istream& in) {
        std::uint64_t head[2] = {};
        if (!read(in, head, 2))
            return false;
        seed = head[0];
        samples.resize(head[1]);
        return read(in, samples.data(), samples.size());
    }
};

/// What two takes of a scenario have to do with each other.
struct Verdict {
    bool isSame = true;
    bool isFinite = true;
    double decibels = -HUGE_VAL; ///< largest difference, against the loudest sample
};

Verdict compare(const Take& one, const Take& other) {
    if (one.seed != other.seed || one.samples.size() != other.samples.size())
        throw std::runtime_error("the records are of different scenarios");
    Verdict verdict;
    double loudest = 0.0, farthest = 0.0;
    for (std::size_t i = 0; i < one.samples.size(); ++i) {
        const double a = static_cast<double>(one.samples[i]), b = static_cast<double>(other.samples[i]);
        if (!std::isfinite(a) || !std::isfinite(b)) {
            verdict.isFinite = false;
            verdict.isSame &= (std::isnan(a) && std::isnan(b)) || a == b;
            continue;
        }
        verdict.isSame &=
            std::bit_cast<std::uint32_t>(one.samples[i]) == std::bit_cast<std::uint32_t>(other.samples[i]);
        loudest = std::max(loudest, std::abs(a));
        farthest = std::max(farthest, std::abs(a - b));
    }
    if (farthest > 0.0)
        verdict.decibels = 20.0 * std::log10(farthest / loudest);
    return verdict;
}

void compare(const char* file, const char* otherFile) {
    std::ifstream in(file, std::ios::binary), otherIn(otherFile, std::ios::binary);
    Take one, other;
    int count = 0, same = 0;
    double worst = -HUGE_VAL;
    while (one.readFrom(in) && other.readFrom(otherIn)) {
        const Verdict verdict = compare(one, other);
        ++count;
        same += verdict.isSame;
        worst = std::max(worst, verdict.decibels);
        if (!verdict.isSame)
            std::printf("%8llu  %s  %.1f dB\n", static_cast<unsigned long long>(one.seed),
                        verdict.isFinite ? "finite" : "with infinities", verdict.decibels);
    }
    if (count == 0)
        throw std::runtime_error("there is nothing to compare");
    std::printf("%d of %d scenarios are the same, bit for bit; the largest difference is %.1f dB\n", same,
                count, worst);
}

} // namespace

int main(int argc, char** argv) try {
    if (argc == 3 && std::strcmp(argv[1], "record") == 0)
        record(std::filesystem::absolute(argv[2]));
    else if (argc == 4 && std::strcmp(argv[1], "compare") == 0)
        compare(argv[2], argv[3]);
    else
        throw std::runtime_error("record FILE, or compare FILE FILE");
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "scenario_recording: %s\n", error.what());
    return 1;
}
