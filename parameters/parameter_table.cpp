#include "parameters/parameter_table.h"

#include "base/number_text.h"
#include "base/truncation.h"

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

void displayBaseLength(float p, char* text) {
    write(std::to_string(base::trunc(p * p * 1000.0f * 2.0f + 1.0f)), text);
}
void displayTaps(float p, char* text) {
    write(std::to_string(base::trunc(p * 127.0f + 1.0f)), text);
}
void displayLfoRate(float p, char* text) {
    write(threeDecimals(p * 14.0f * p), text);
}
void displayStretch(float p, char* text) {
    write(std::to_string(base::trunc(p * 60.0f - 30.0f)) + " %", text);
}
void displayBipolar(float p, char* text) {
    write(threeDecimals(2.0f * p - 1.0f), text);
}
void displayPlain(float p, char* text) {
    write(threeDecimals(p), text);
}
void displaySet(float p, char* text) {
    write(interpolationModeOf(p) == kWholeSamples ? "LFO Off,Use Pitch Off" : "LFO On,Use Pitch On", text);
}
void displayLowPass(float p, char* text) {
    write(std::to_string(base::trunc(p * 20090.0f * p + 500.0f)), text);
}
void displayHighPass(float p, char* text) {
    write(std::to_string(base::trunc(p * 2400.0f * p + 102.0f)), text);
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

constexpr Parameter table[kNumLiveParameters] = {
    {"Bs Lgh 1", 0.4f, displayBaseLength}, // ms
    {"Taps #", 0.3f, displayTaps},         //
    {"LFO Rt", 0.5f, displayLfoRate},      // Hz
    {"Stretch dly", 0.1f, displayStretch}, //
    {"Amp Decay", 0.0f, displayBipolar},   //
    {"Curve", 0.5f, displayBipolar},       //
    {"Feedback", 0.5f, displayBipolar},    //
    {"LFO Dp", 0.1f, displayPlain},        //
    {"Set", 0.5f, displaySet},             //
    {"Pre LP ", 0.9f, displayLowPass},     // Hz
    {"Pre HP ", 0.3f, displayHighPass},    // Hz
    {"Pre Pan", 0.5f, displayBipolar},     //
    {"Pre Gain", 0.5f, displayGain},       // dB
    {"Stereo", 1.0f, displayBipolar},      //
    {"Dry Wet", 0.5f, displayDryWet},      // dry share, wet share
    {"Out Pan", 0.5f, displayBipolar},     //
    {"Out Gain", 0.5f, displayGain},       // dB
};
constexpr Parameter notUsed = {"not used", 0.0f, displayNothing};

} // namespace

const Parameter& parameter(std::int32_t id) {
    return isLive(id) ? table[id] : notUsed;
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
