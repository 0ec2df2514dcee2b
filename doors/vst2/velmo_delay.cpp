#include "doors/vst2/velmo_delay.h"

#include "base/number_text.h"
#include "base/recompute.h"
#include "editor/my_editor.h"
#include "midi/cc_map.h"
#include "parameters/parameter_table.h"
#include "platform/large_pages.h"
#include "platform/module_folder.h"

#include <cstring>
#include <new>
#include <string_view>

namespace plugin {

using base::copyText;
using namespace parameters;

namespace {

constexpr char kEffectName[] = "velmo_delay";
constexpr char kVendor[] = "Quillon Software";
constexpr char kProduct[] = "Quillon Multitap Delay";
constexpr char kVendorAndProduct[] = "Quillon Software Quillon Multitap Delay";

/// Whether a jump of the taps follows from this parameter, so that it has to be masked.
constexpr bool movesTaps(std::int32_t id) {
    return id == kBaseLength || id == kTaps || id == kStretch;
}

/// Whether the picture of the pattern follows from this parameter.
constexpr bool shapesPattern(std::int32_t id) {
    return movesTaps(id) || id == kAmpDecay || id == kCurve;
}

} // namespace

velmo_delay::velmo_delay(vst2::audioMasterCallback host)
    : AudioEffectX(host, presets::kNumPrograms, kNumParameters) {
    canMono();
    midi::readCcMap(platform::moduleFolder());
    programsAreChunks();
    programs.allocate();
    if (programs.size() > 0)
        setProgram(0);
    if (audioMaster) {
        setNumInputs(2);
        setNumOutputs(2);
        canProcessReplacing();
        setUniqueID(vst2::fourCharacterCode("qlvd"));
    }
    window = new editor::myEditor(this, engine.tapPattern().tapGain);
    setEditor(window);
    window->setKnobMode(VSTGUI::kLinearMode);
    startUp();
    if (programs.size() > 0)
        setProgram(0);
}

void* velmo_delay::operator new(std::size_t size) {
    void* const memory = ::operator new(size, std::align_val_t{platform::kLargePage});
    platform::preferLargePages(memory, size);
    return memory;
}

void velmo_delay::operator delete(void* memory) {
    ::operator delete(memory, std::align_val_t{platform::kLargePage});
}

velmo_delay::~velmo_delay() {
    midi::writeCcMap();
}

void velmo_delay::startUp() {
    notes = {};
    engine.startUp();
    programs.clearStaging();
    sampleRate.store(44100.0f);
    loadDefaultBank();
    setProgram(getProgram());
    updateDisplay();
}

void velmo_delay::loadDefaultBank() {
    // Without a folder there is no bank: a bare name would be sought in the current one.
    const std::string& folder = platform::moduleFolder();
    presets::loadDefaultBank(folder.empty() ? folder : folder + "default.fxb", *this);
}

void velmo_delay::resume() {
    engine.prepare(sampleRate);
    setParameter(-1, 0.0f);
}

void velmo_delay::setSampleRate(float newRate) {
    sampleRate.storeInOrder(newRate);
    engine.prepare(sampleRate);
}

void velmo_delay::processReplacing(float** inputs, float** outputs, std::int32_t sampleFrames) {
    engine.processReplacing(inputs, outputs, sampleFrames);
}

void velmo_delay::setParameter(std::int32_t id, float value) {
    tellWindow(id, value);
    storeParameter(id, value);
    engine.computeTapPattern(sampleRate);
    if (movesTaps(id))
        engine.armFade();
    if (id == kPreLowPass)
        engine.designLowPassOnChange(sampleRate);
    if (id == kPreHighPass)
        engine.designHighPassOnChange(sampleRate);
    window->queueParameterUpdate(id);
    if (window->isOpen() && shapesPattern(id))
        drawPattern();
}

void velmo_delay::tellWindow(std::int32_t id, float value) {
    if (shapesPattern(id))
        window->setParameter(skin::kRefreshAll, static_cast<float>(skin::kRefreshAll));
    else
        window->setParameter(id, value);
}

void velmo_delay::drawPattern() {
    window->updateTapView(getParameter(kTaps), getParameter(kStretch), getParameter(kBaseLength), rate(),
                          engine.tapPattern().tapGain);
}

void velmo_delay::storeParameter(std::int32_t id, float value) {
    if (!isLive(id))
        return;
    if (programs.size() == 0) {
        engine.setParameterValue(id, value);
        return;
    }
    programs.setValue(getProgram(), id, value);
    loadParameter(id);
}

/// The live value follows from the stored one of the current program, also where two threads set it.
void velmo_delay::loadParameter(std::int32_t id) {
    struct Stored {
        std::int32_t program;
        float value;
    };
    base::computeFrom(
        [&] {
            const std::int32_t program = curProgram.loadInOrder();
            return Stored{program, programs.value(program, id)};
        },
        [&](const Stored& stored) { engine.setParameterValue(id, stored.value); });
}

float velmo_delay::getParameter(std::int32_t id) {
    return isLive(id) ? engine.parameterValue(id) : 0.0f;
}

void velmo_delay::setProgram(std::int32_t program) {
    engine.clearDelayMemory();
    if (program < 0 || program >= programs.size())
        return;
    curProgram.storeInOrder(program);
    for (std::int32_t id = 0; id < kNumLiveParameters; ++id)
        loadParameter(id);
    engine.computeTapPattern(sampleRate);
    if (window) {
        window->setParameter(skin::kRefreshAll, static_cast<float>(skin::kRefreshAll));
        drawPattern();
    }
    engine.designLowPassOnChange(sampleRate);
    engine.designHighPassOnChange(sampleRate);
    updateDisplay();
}

void velmo_delay::setProgramName(char* name) {
    if (programs.size() > 0)
        programs.setName(getProgram(), name);
}

void velmo_delay::getProgramName(char* text) {
    getProgramNameIndexed(0, getProgram(), text);
}

bool velmo_delay::getProgramNameIndexed(std::int32_t, std::int32_t index, char* text) {
    if (index < 0 || index >= programs.size())
        return false;
    programs.getName(index, text);
    return true;
}

void velmo_delay::getParameterLabel(std::int32_t, char* text) {
    copyText(text, "", vst2::kVstMaxParamStrLen);
}

void velmo_delay::getParameterDisplay(std::int32_t id, char* text) {
    text[0] = '\0';
    parameter(id).display(getParameter(id), text);
}

void velmo_delay::getParameterName(std::int32_t id, char* text) {
    copyText(text, parameter(id).name, vst2::kVstMaxParamStrLen);
}

std::int32_t velmo_delay::getChunk(void** data, bool isPreset) {
    return programs.size() > 0 ? programs.getChunk(data, getProgram(), isPreset) : 0;
}

std::int32_t velmo_delay::setChunk(void* data, std::int32_t byteSize, bool isPreset) {
    const std::int32_t program = getProgram();
    if (programs.size() > 0)
        programs.setChunk(data, byteSize, program, isPreset);
    setProgram(program);
    return 1;
}

bool velmo_delay::getOutputProperties(std::int32_t index, vst2::VstPinProperties* properties) {
    if (index >= 2)
        return false;
    char number[11];
    int2string(index + 1, number, 10);
    const std::string label = std::string(kProduct) + number;
    copyText(properties->label, label.c_str(), vst2::kVstMaxLabelLen - 1);
    properties->flags = vst2::kVstPinIsActive | vst2::kVstPinIsStereo;
    return true;
}

std::int32_t velmo_delay::processEvents(vst2::VstEvents* events) {
    midi::readEvents(events, notes, *this);
    return 1;
}

void velmo_delay::controlChange(std::int32_t controller, float value) {
    if (window)
        window->learn.bind(controller);
    for (std::int32_t id = 0; id < kNumParameters; ++id)
        if (midi::controllerOf(id) == controller)
            setParameter(id, value);
}

bool velmo_delay::getEffectName(char* name) {
    copyText(name, kEffectName, vst2::kVstMaxEffectNameLen);
    return true;
}

bool velmo_delay::getVendorString(char* text) {
    copyText(text, kVendor, vst2::kVstMaxVendorStrLen);
    return true;
}

bool velmo_delay::getProductString(char* text) {
    copyText(text, kVendorAndProduct, vst2::kVstMaxProductStrLen);
    return true;
}

std::int32_t velmo_delay::canDo(const char* what) {
    const std::string_view capability = what;
    if (capability == "receiveVstEvents" || capability == "receiveVstMidiEvent")
        return 1;
    return capability == "midiProgramNames" ? 0 : -1;
}

} // namespace plugin
