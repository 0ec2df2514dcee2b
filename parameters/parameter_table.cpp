#include "parameters/parameter_table.h"

#include "base/number_text.h"
#include "base/truncation.h"
#include "parameters/pattern_laws.h"

#include <algorithm>
#include <string>

namespace parameters {
namespace {

constexpr std::size_t kDisplayLimit = kDisplayTextSize - 1;

void write(const std::string& display, char* text) {
    // The terminator follows the text at once: hosts may give less room than the limit.
    const std::size_t length = std::min(display.size(), kDisplayLimit);
    display.copy(text, length);
    text[length] = '\0';
}

std::string threeDecimals(float value) {
    return base::fixedText(static_cast<double>(value), 3);
}

std::string wholeNumber(float value) {
    return std::to_string(base::trunc(value));
}

template <const Law& law>
void displayWhole(float p, char* text) {
    write(wholeNumber(law.numberFor(p)), text);
}
template <const Law& law>
void displayThreeDecimals(float p, char* text) {
    write(threeDecimals(law.numberFor(p)), text);
}
void displayBipolar(float p, char* text) {
    displayThreeDecimals<kBipolar>(p, text);
}
void displayBaseLength(float p, char* text) {
    write(wholeNumber(baseLengthOf(p, 1000.0f)), text);
}
void displayStretch(float p, char* text) {
    write(wholeNumber(kStretchPercent.numberFor(p)) + " %", text);
}
void displayPlain(float p, char* text) {
    write(threeDecimals(p), text);
}
void displaySet(float p, char* text) {
    write(interpolationModeOf(p) == kWholeSamples ? "LFO Off,Use Pitch Off" : "LFO On,Use Pitch On", text);
}
void displayGain(float p, char* text) {
    base::dB2string(p, text, 8);
}
void displayDryWet(float p, char* text) {
    write(threeDecimals(1.0f - p) + " / " + threeDecimals(p), text);
}
void displayNothing(float, char* text) {
    text[0] = '\0';
}

constexpr Parameter kTable[kNumLiveParameters] = {
    {"Bs Lgh 1", 0.4f, kLongestGap, displayBaseLength},                      // ms
    {"Taps #", 0.3f, kTapCount, displayWhole<kTapCount>},                    //
    {"LFO Rt", 0.5f, kSweepRate, displayThreeDecimals<kSweepRate>},          // Hz
    {"Stretch dly", 0.1f, kStretchPercent, displayStretch},                  //
    {"Amp Decay", 0.0f, kBipolar, displayBipolar},                           //
    {"Curve", 0.5f, kBipolar, displayBipolar},                               //
    {"Feedback", 0.5f, kBipolar, displayBipolar},                            //
    {"LFO Dp", 0.1f, kPlain, displayPlain},                                  //
    {"Set", 0.5f, kPlain, displaySet},                                       //
    {"Pre LP ", 0.9f, kLowPassFrequency, displayWhole<kLowPassFrequency>},   // Hz
    {"Pre HP ", 0.3f, kHighPassFrequency, displayWhole<kHighPassFrequency>}, // Hz
    {"Pre Pan", 0.5f, kBipolar, displayBipolar},                             //
    {"Pre Gain", 0.5f, kPlain, displayGain},                                 // dB
    {"Stereo", 1.0f, kBipolar, displayBipolar},                              //
    {"Dry Wet", 0.5f, kWetPercent, displayDryWet},                           // dry share, wet share
    {"Out Pan", 0.5f, kBipolar, displayBipolar},                             //
    {"Out Gain", 0.5f, kPlain, displayGain},                                 // dB
};
constexpr Parameter kNotUsed = {"not used", 0.0f, kPlain, displayNothing};

} // namespace

const Parameter& parameter(std::int32_t id) {
    return isLive(id) ? kTable[id] : kNotUsed;
}

std::array<float, kNumParameters> defaultValues() {
    std::array<float, kNumParameters> values;
    for (std::int32_t id = 0; id < kNumParameters; ++id)
        values[static_cast<std::size_t>(id)] = parameter(id).defaultValue;
    return values;
}

std::int32_t interpolationModeOf(float set) {
    return base::trunc(2.0f - (set + set));
}

} // namespace parameters
