#include "doors/vst2/velmo_delay.h"

#include "base/fixed_text.h"
#include "base/product_names.h"
#include "doors/vst2/event_list.h"
#include "editor/my_editor.h"
#include "midi/cc_map.h"
#include "parameters/parameter_table.h"
#include "platform/message_box.h"
#include "platform/module_folder.h"

#include <string>
#include <string_view>

namespace vst2_door {

using base::copyText;

namespace {

constexpr char kEffectName[] = "velmo_delay";

} // namespace

// The host is told of each change of program on the way, so what its record says at each of them matters.
velmo_delay::velmo_delay(vst2::audioMasterCallback host)
    : AudioEffectX(host, presets::kNumPrograms, parameters::kNumParameters) {
    canMono();
    programsAreChunks();
    midi::readCcMap(platform::moduleFolder());
    effect_.makePrograms();
    if (audioMaster) {
        setNumInputs(2);
        setNumOutputs(2);
        canProcessReplacing();
        setUniqueID(vst2::fourCharacterCode("qlvd"));
    }
    auto* const window = new editor::myEditor(this, effect_.tapGains());
    setEditor(window);
    effect_.setWindow(*window);
    window->setKnobMode(VSTGUI::kLinearMode);
    effect_.startUp();
}

velmo_delay::~velmo_delay() {
    midi::writeCcMap();
}

void velmo_delay::reportProblem(const char* text, const char* caption) {
    platform::showMessage(text, caption);
}

void velmo_delay::getParameterLabel(std::int32_t, char* text) {
    copyText(text, "", vst2::kVstMaxParamStrLen);
}

void velmo_delay::getParameterName(std::int32_t id, char* text) {
    copyText(text, parameters::parameter(id).name, vst2::kVstMaxParamStrLen);
}

bool velmo_delay::getProgramNameIndexed(std::int32_t, std::int32_t index, char* text) {
    return effect_.getProgramName(index, text);
}

bool velmo_delay::getOutputProperties(std::int32_t index, vst2::VstPinProperties* properties) {
    if (index >= 2)
        return false;
    char number[11];
    int2string(index + 1, number, 10);
    const std::string label = std::string(base::kProductName) + number;
    copyText(properties->label, label.c_str(), vst2::kVstMaxLabelLen - 1);
    properties->flags = vst2::kVstPinIsActive | vst2::kVstPinIsStereo;
    return true;
}

std::int32_t velmo_delay::processEvents(vst2::VstEvents* events) {
    forEachMessage(events, [this](const midi::Message& message) { effect_.processMidi(message); });
    return 1;
}

bool velmo_delay::getEffectName(char* name) {
    copyText(name, kEffectName, vst2::kVstMaxEffectNameLen);
    return true;
}

bool velmo_delay::getVendorString(char* text) {
    copyText(text, base::kVendorName.data(), vst2::kVstMaxVendorStrLen);
    return true;
}

bool velmo_delay::getProductString(char* text) {
    copyText(text, base::kVendorAndProduct.data(), vst2::kVstMaxProductStrLen);
    return true;
}

std::int32_t velmo_delay::canDo(const char* what) {
    const std::string_view capability = what;
    if (capability == "receiveVstEvents" || capability == "receiveVstMidiEvent")
        return 1;
    return capability == "midiProgramNames" ? 0 : -1;
}

} // namespace vst2_door
