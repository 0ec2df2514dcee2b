#include "bench/peers/outside_programs.h"

#include "bench/contest.h"
#include "bench/peers/faust_contest.h"
#include "bench/player.h"
#include "desk/measuring.h"

#include <fstream>
#include <sstream>

namespace bench {

namespace {

constexpr int kTaps = 128;
constexpr int kRate = 48000;
constexpr double kGapSeconds = 32734.0 / kRate;
constexpr int kShort = 20, kLong = 60; ///< seconds of sound
constexpr int kOutsideRounds = 3;

std::vector<std::string> ffmpegCommand(const OutsideProgram&, int seconds, bool withTaps) {
    std::ostringstream filter;
    filter << "aformat=sample_fmts=fltp";
    if (withTaps) {
        std::ostringstream delays, decays;
        for (int tap = 1; tap <= kTaps; ++tap) {
            delays << (tap > 1 ? "|" : "") << tap * kGapSeconds * 1000.0; // milliseconds
            decays << (tap > 1 ? "|" : "") << 0.9;
        }
        filter << ",aecho=1:1:" << delays.str() << ":" << decays.str();
    }
    const std::string source =
        "anoisesrc=r=" + std::to_string(kRate) + ":a=0.01:d=" + std::to_string(seconds);
    return {"ffmpeg", "-nostdin",   "-v",    "error", "-filter_threads",
            "1",      "-f",         "lavfi", "-i",    source,
            "-af",    filter.str(), "-f",    "null",  "-"};
}

void writeTap(std::ostream& text, const OutsideProgram& program, int tap) {
    const char* const sum = tap % 2 == 1 ? "aleft" : "aright";
    text << "  atap " << program.tapOpcode << " kgap * " << tap;
    if (program.read != Read::whole)
        text << " + asweep";
    text << "\n  " << sum << " = " << sum << " + atap * 0.9\n";
}

void writeMultitap(std::ostream& text) {
    text << "  aleft multitap ain";
    for (int tap = 1; tap <= kTaps; ++tap)
        text << ", " << tap * kGapSeconds << ", 0.9";
    text << "\n";
}

void writeOrchestra(std::ostream& text, const OutsideProgram& program, int seconds, bool withTaps) {
    text << "<CsoundSynthesizer>\n<CsInstruments>\nsr = " << kRate
         << "\nksmps = 64\nnchnls = 2\n0dbfs = 1\ninstr 1\n  ain rand 0.01\n  kgap init " << kGapSeconds
         << "\n  aleft init 0\n  aright init 0\n  aleft = 0\n  aright = 0\n"
         << "  asweep poscil 50 / sr, 3.5\n  asweep = asweep + 50 / sr\n";
    const bool onLine = program.tapOpcode != "multitap";
    if (onLine)
        text << "  aline delayr " << (kTaps + 1) * kGapSeconds << "\n";
    for (int tap = 1; onLine && withTaps && tap <= kTaps; ++tap)
        writeTap(text, program, tap);
    if (onLine)
        text << "  delayw ain\n";
    else if (withTaps)
        writeMultitap(text);
    text << "  outs aleft, aright\nendin\n</CsInstruments>\n<CsScore>\ni 1 0 " << seconds
         << "\n</CsScore>\n</CsoundSynthesizer>\n";
}

std::vector<std::string> csoundCommand(const OutsideProgram& program, int seconds, bool withTaps) {
    const std::string file = "taps.csd";
    std::ofstream text(file);
    writeOrchestra(text, program, seconds, withTaps);
    return {"csound", "--nosound", "--nodisplays", "--messagelevel=0", file};
}

Contestant contestantOf(const OutsideProgram& program, int seconds, bool withTaps) {
    return {[&program, seconds, withTaps] {
                return desk::processorSecondsOf(program.command(program, seconds, withTaps));
            },
            1.0, 0.0, 1};
}

} // namespace

std::vector<OutsideProgram> outsidePrograms() {
    return {{"ffmpeg, aecho", Read::whole, ffmpegCommand, ""},
            {"Csound, multitap", Read::whole, csoundCommand, "multitap"},
            {"Csound, deltap", Read::whole, csoundCommand, "deltap"},
            {"Csound, deltapi", Read::linear, csoundCommand, "deltapi"},
            {"Csound, deltap3", Read::cubic, csoundCommand, "deltap3"}};
}

Result contestWithProgram(const OutsideProgram& program, const std::string& library) {
    const SoundCase situation = peerCase(program.read);
    Player built(builtEffect(library), situation);
    const std::vector<double> medians = medianNanoseconds(
        {built.contestant(), contestantOf(program, kLong, true), contestantOf(program, kShort, true),
         contestantOf(program, kLong, false), contestantOf(program, kShort, false)},
        kOutsideRounds);
    const double taps = (medians[1] - medians[2]) - (medians[3] - medians[4]);
    return {section::kPrograms, situation.name(), program.name, medians[0],
            taps / ((kLong - kShort) * static_cast<double>(kRate))};
}

} // namespace bench
