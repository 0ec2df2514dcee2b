#include "effect/multitap_delay.h"

#include "base/recompute.h"
#include "midi/cc_map.h"
#include "parameters/parameter_table.h"
#include "platform/module_folder.h"

#include <string>

namespace effect {

using namespace parameters;

void MultitapDelay::makePrograms() {
    programs_.allocate();
    if (programs_.size() > 0)
        setProgram(0);
}

void MultitapDelay::startUp() {
    notes_ = {};
    engine_.startUp();
    programs_.clearStaging();
    sampleRate_.store(44100.0f);
    loadDefaultBank();
    setProgram(getProgram());
    host_.updateDisplay();
    if (programs_.size() > 0)
        setProgram(0);
}

void MultitapDelay::loadDefaultBank() {
    // Without a folder there is no bank: a bare name would be sought in the current one.
    const std::string& folder = platform::moduleFolder();
    presets::loadDefaultBank(folder.empty() ? folder : folder + "default.fxb", *this);
}

void MultitapDelay::resume() {
    engine_.prepare(sampleRate_);
    setParameter(-1, 0.0f);
}

void MultitapDelay::setSampleRate(float newRate) {
    sampleRate_.storeInOrder(newRate);
    engine_.prepare(sampleRate_);
}

void MultitapDelay::setParameter(std::int32_t id, float value) {
    tellWindow(id, value);
    storeParameter(id, value);
    applyChange(id);
}

void MultitapDelay::setStoredParameter(std::int32_t id) {
    tellWindow(id, getStoredParameter(id));
    if (programs_.size() > 0)
        loadParameter(id);
    applyChange(id);
}

/// Everything that follows from the new value of a live parameter.
void MultitapDelay::applyChange(std::int32_t id) {
    engine_.computeTapPattern(sampleRate_);
    if (movesTaps(id))
        engine_.armFade();
    if (id == kPreLowPass)
        engine_.designLowPassOnChange(sampleRate_);
    if (id == kPreHighPass)
        engine_.designHighPassOnChange(sampleRate_);
    if (!window_)
        return;
    window_->queueParameterUpdate(id);
    if (window_->isOpen() && shapesPattern(id))
        drawPattern();
}

void MultitapDelay::tellWindow(std::int32_t id, float value) {
    if (!window_)
        return;
    if (shapesPattern(id))
        window_->setParameter(interfaces::kRefreshAll, static_cast<float>(interfaces::kRefreshAll));
    else
        window_->setParameter(id, value);
}

void MultitapDelay::drawPattern() {
    window_->updateTapView(getParameter(kTaps), getParameter(kStretch), getParameter(kBaseLength),
                           getSampleRate(), tapGains());
}

void MultitapDelay::storeParameter(std::int32_t id, float value) {
    if (!isLive(id))
        return;
    if (programs_.size() == 0) {
        engine_.setParameterValue(id, value);
        return;
    }
    programs_.setValue(getProgram(), id, value);
    loadParameter(id);
}

/// Copies the stored value of the current program to the live one, also while another thread sets it.
void MultitapDelay::loadParameter(std::int32_t id) {
    struct Stored {
        std::int32_t program;
        float value;
    };
    base::computeFrom(
        [&] {
            const std::int32_t program = curProgram_.loadInOrder();
            return Stored{program, programs_.value(program, id)};
        },
        [&](const Stored& stored) { engine_.setParameterValue(id, stored.value); });
}

float MultitapDelay::getParameter(std::int32_t id) const {
    return isLive(id) ? engine_.parameterValue(id) : 0.0f;
}

float MultitapDelay::getStoredParameter(std::int32_t id) const {
    return programs_.size() > 0 ? programs_.value(curProgram_.loadInOrder(), id) : getParameter(id);
}

void MultitapDelay::getParameterDisplay(std::int32_t id, char* text) const {
    text[0] = '\0';
    parameter(id).display(getParameter(id), text);
}

void MultitapDelay::setProgram(std::int32_t program) {
    engine_.clearDelayMemory();
    if (program < 0 || program >= programs_.size())
        return;
    curProgram_.storeInOrder(program);
    for (std::int32_t id = 0; id < kNumLiveParameters; ++id)
        loadParameter(id);
    engine_.computeTapPattern(sampleRate_);
    if (window_) {
        window_->setParameter(interfaces::kRefreshAll, static_cast<float>(interfaces::kRefreshAll));
        drawPattern();
    }
    engine_.designLowPassOnChange(sampleRate_);
    engine_.designHighPassOnChange(sampleRate_);
    host_.updateDisplay();
}

void MultitapDelay::setProgramName(const char* name) {
    if (programs_.size() > 0)
        programs_.setName(getProgram(), name);
}

bool MultitapDelay::getProgramName(std::int32_t program, char* text) const {
    if (program < 0 || program >= programs_.size())
        return false;
    programs_.getName(program, text);
    return true;
}

std::int32_t MultitapDelay::getChunk(void** data, bool isPreset) {
    return programs_.size() > 0 ? programs_.getChunk(data, getProgram(), isPreset) : 0;
}

std::int32_t MultitapDelay::setChunk(void* data, std::int32_t byteSize, bool isPreset) {
    const std::int32_t program = getProgram();
    if (programs_.size() > 0)
        programs_.setChunk(data, byteSize, program, isPreset, *this);
    setProgram(program);
    return 1;
}

void MultitapDelay::controlChange(std::int32_t controller, float value) {
    if (window_)
        window_->learnController(controller);
    for (std::int32_t id = 0; id < kNumParameters; ++id)
        if (midi::controllerOf(id) == controller)
            setParameter(id, value);
}

} // namespace effect
