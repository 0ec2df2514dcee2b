#include "bench/sound_case.h"

namespace bench {

std::string SoundCase::name() const {
    constexpr const char* reads[] = {"cubic", "linear", "whole"};
    constexpr const char* places[] = {"spread", "close", "minimum"};
    std::string text = std::to_string(taps) + (taps == 1 ? " tap, " : " taps, ");
    text += reads[static_cast<int>(read)];
    text += std::string(", ") + places[static_cast<int>(place)];
    text += motion == Motion::rest ? ", at rest" : ", gliding";
    text += ", blocks of " + std::to_string(blockFrames);
    if (caches == Caches::cold)
        text += ", cold";
    return text;
}

} // namespace bench
