#include "bench/sound_case.h"

namespace bench {

namespace {

constexpr Read kReads[] = {Read::whole, Read::linear, Read::cubic};

void addEachRead(std::vector<SoundCase>& cases, SoundCase situation) {
    for (const Read read : kReads) {
        situation.read = read;
        cases.push_back(situation);
    }
}

} // namespace

std::string SoundCase::nameWithoutBlocks() const {
    constexpr const char* reads[] = {"cubic", "linear", "whole"};
    constexpr const char* places[] = {"spread", "close", "minimum"};
    std::string text = std::to_string(taps) + (taps == 1 ? " tap, " : " taps, ");
    text += reads[static_cast<int>(read)];
    text += std::string(", ") + places[static_cast<int>(place)];
    text += motion == Motion::rest ? ", at rest" : ", gliding";
    return text;
}

std::string SoundCase::name() const {
    std::string text = nameWithoutBlocks() + ", blocks of " + std::to_string(blockFrames);
    if (caches == Caches::cold)
        text += ", cold";
    if (input != Input::noise)
        text += input == Input::silence ? ", silence" : ", never a sound";
    return text;
}

std::vector<SoundCase> soundCases() {
    std::vector<SoundCase> cases;
    for (const std::int32_t taps : {1, 8, 32, 101, 102, 128})
        addEachRead(cases, {.taps = taps});
    addEachRead(cases, {.place = Place::close});
    addEachRead(cases, {.place = Place::minimum});
    for (const Read read : {Read::linear, Read::cubic})
        cases.push_back({.taps = 101, .read = read, .motion = Motion::gliding});
    cases.push_back({.taps = 32, .motion = Motion::gliding});
    for (const std::int32_t frames : {16, 64})
        addEachRead(cases, {.blockFrames = frames});
    addEachRead(cases, {.blockFrames = 64, .caches = Caches::cold});
    cases.push_back({.caches = Caches::cold});
    for (const std::int32_t taps : {1, 8, 128})
        cases.push_back({.taps = taps, .input = Input::silence});
    return cases;
}

std::vector<SoundCase> chosenCases() {
    std::vector<SoundCase> cases;
    cases.push_back({.read = Read::whole});
    cases.push_back({});
    cases.push_back({.blockFrames = 64});
    cases.push_back({.blockFrames = 64, .caches = Caches::cold});
    cases.push_back({.taps = 101, .motion = Motion::gliding});
    for (const std::int32_t taps : {32, 8, 1})
        cases.push_back({.taps = taps});
    cases.push_back({.taps = 8, .input = Input::silence});
    return cases;
}

std::vector<SoundCase> shortBlockRows() {
    return {{.taps = 128}, {.taps = 128, .read = Read::whole}, {.taps = 39}, {.taps = 1}};
}

std::vector<SoundCase> shortBlockCases() {
    std::vector<SoundCase> cases;
    for (SoundCase situation : shortBlockRows())
        for (const std::int32_t frames : kShortBlocks) {
            situation.blockFrames = frames;
            cases.push_back(situation);
        }
    return cases;
}

std::array<SoundCase, 3> costCases(Read read) {
    return {{{.taps = 1, .read = read, .place = Place::close},
             {.taps = 128, .read = read, .place = Place::close},
             {.taps = 128, .read = read, .place = Place::spread}}};
}

} // namespace bench
