#include "skin_bench.h"

#include "platform/module_folder.h"

#include "vstgui/lib/cbitmap.h"
#include "vstgui/lib/platform/iplatformbitmap.h"
#include "vstgui/lib/platform/platformfactory.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace test {
namespace {

bool isParameter(std::int32_t id) {
    return id >= 0 && id < RecordingEffect::kParameters;
}

void write(char* text, const std::array<std::string, RecordingEffect::kParameters>& texts, std::int32_t id) {
    std::strcpy(text, isParameter(id) ? texts[static_cast<std::size_t>(id)].c_str() : "none");
}

/// Paints bands of equal height, the last of them down to the end.
void paint(VSTGUI::CBitmap& bitmap, const std::vector<VSTGUI::CColor>& bands) {
    const auto pixels = VSTGUI::owned(VSTGUI::CBitmapPixelAccess::create(&bitmap));
    if (!pixels)
        throw std::runtime_error("no picture of this size");
    const auto width = static_cast<std::uint32_t>(bitmap.getWidth());
    const auto height = static_cast<std::uint32_t>(bitmap.getHeight());
    const std::size_t bandHeight = std::max<std::size_t>(height / bands.size(), 1);
    for (std::uint32_t y = 0; y < height; ++y)
        for (std::uint32_t x = 0; x < width; ++x) {
            pixels->setPosition(x, y);
            pixels->setColor(bands[std::min(y / bandHeight, bands.size() - 1)]);
        }
}

void keepMessage(void* bench, const char* text, const char* caption, const platform::MessageLook& look) {
    static_cast<SkinBench*>(bench)->messages.push_back({text, caption, look.icon});
}

} // namespace

void PrintTo(const ParameterChange& change, std::ostream* out) {
    *out << change.id << " to " << change.value;
}

void PrintTo(const HostCall& call, std::ostream* out) {
    *out << "opcode " << call.opcode << " index " << call.index << " value " << call.value << " opt "
         << call.opt << " \"" << call.text << '"';
}

void PrintTo(const Message& message, std::ostream* out) {
    *out << '"' << message.text << "\" titled \"" << message.caption << '"'
         << (message.icon == platform::MessageIcon::error ? " with the icon of an error" : "");
}

// The effect

RecordingEffect::RecordingEffect() : AudioEffectX(&host, 1, kParameters) {
    for (std::size_t id = 0; id < kParameters; ++id) {
        const std::string number = std::to_string(id);
        names[id] = "name " + number;
        displays[id] = "display " + number;
        labels[id] = "label " + number;
    }
}

std::vector<HostCall> RecordingEffect::callsOf(std::int32_t opcode) const {
    std::vector<HostCall> found;
    std::ranges::copy_if(hostCalls, std::back_inserter(found),
                         [opcode](const HostCall& call) { return call.opcode == opcode; });
    return found;
}

void RecordingEffect::setParameter(std::int32_t id, float value) {
    set.push_back({id, value});
    if (isParameter(id))
        values[static_cast<std::size_t>(id)] = value;
    if (whenSet)
        whenSet(id, value);
}

void RecordingEffect::setParameterAutomated(std::int32_t id, float value) {
    automated.push_back({id, value});
    AudioEffectX::setParameterAutomated(id, value);
}

float RecordingEffect::getParameter(std::int32_t id) {
    return isParameter(id) ? values[static_cast<std::size_t>(id)] : 0.0f;
}

void RecordingEffect::getParameterName(std::int32_t id, char* text) {
    write(text, names, id);
}

void RecordingEffect::getParameterDisplay(std::int32_t id, char* text) {
    write(text, displays, id);
}

void RecordingEffect::getParameterLabel(std::int32_t id, char* text) {
    write(text, labels, id);
}

std::intptr_t RecordingEffect::host(vst2::AEffect* effect, std::int32_t opcode, std::int32_t index,
                                    std::intptr_t value, void* ptr, float opt) {
    auto* const asker = static_cast<RecordingEffect*>(static_cast<AudioEffect*>(effect->object));
    const bool hasText = opcode == vst2::audioMasterCanDo && ptr;
    return asker->answer({opcode, index, value, opt, hasText ? static_cast<const char*>(ptr) : ""});
}

std::intptr_t RecordingEffect::answer(const HostCall& call) {
    hostCalls.push_back(call);
    if (whenAsked)
        whenAsked(call);
    return call.opcode == vst2::audioMasterCanDo ? hostCan.contains(call.text) : hostAnswer;
}

// Settings

std::optional<std::string> MemorySettings::read(const std::string& name) {
    const auto found = texts.find(name);
    return found == texts.end() ? std::nullopt : std::optional(found->second);
}

bool MemorySettings::write(const std::string& name, const std::string& value) {
    if (keeps)
        texts[name] = value;
    return keeps;
}

// The bench

SkinBench::SkinBench()
    : folder_(around_.path() + "/plug-in folder/"), effect_(std::make_unique<RecordingEffect>()) {
    makeFolder("");
    platform::replaceModuleFolder(folder_);
    platform::replaceSettingsStore(&settings);
    platform::replaceMessageBox(&keepMessage, this);
}

SkinBench::~SkinBench() {
    effect_.reset();
    platform::replaceMessageBox(nullptr, nullptr);
    platform::replaceSettingsStore(nullptr);
    platform::replaceModuleFolder("");
}

void SkinBench::makeFolder(const std::string& name) const {
    std::filesystem::create_directories(folder_ + name);
}

void SkinBench::writeFile(const std::string& name, const std::string& bytes) const {
    const std::filesystem::path path = folder_ + name;
    std::filesystem::create_directories(path.parent_path());
    std::ofstream file(path, std::ios::binary);
    file << bytes;
    if (!file.flush())
        throw std::runtime_error("cannot write " + path.string());
}

void SkinBench::writeSkin(const std::string& objects, const std::string& skin) const {
    writeFile(skin + "/skin.xml", "<GUI>\n" + objects + "\n</GUI>\n");
}

void SkinBench::drawPicture(const std::string& name, int width, int height,
                            const std::vector<VSTGUI::CColor>& bands, const std::string& skin) const {
    const auto bitmap = VSTGUI::makeOwned<VSTGUI::CBitmap>(width, height);
    paint(*bitmap, bands);
    const auto png =
        VSTGUI::getPlatformFactory().createBitmapMemoryPNGRepresentation(bitmap->getPlatformBitmap());
    writeFile(skin + "/" + name, std::string(png.begin(), png.end()));
}

} // namespace test
