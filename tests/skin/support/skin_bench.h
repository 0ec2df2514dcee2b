// A bench to try skins on: a plug-in's folder that a test fills with skins, an effect that writes down what
// is done to it, and an editor between the two that lets its inside be seen. No window is shown: an editor
// opened with open(nullptr) has a frame with all its controls, which is unseen but real.
#pragma once

#include "desk/private_folder.h"
#include "doors/vst2/audio_effect_x.h"
#include "platform/message_box.h"
#include "platform/settings.h"
#include "skin/xml_gui_editor.h"
#include "toolkit/toolkit.h"

#include "../../toolkit/printed.h"

#include "vstgui/lib/ccolor.h"
#include "vstgui/lib/controls/ccontrol.h"

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <ostream>
#include <set>
#include <string>
#include <vector>

namespace test {

struct ParameterChange {
    std::int32_t id;
    float value; ///< normalised

    bool operator==(const ParameterChange&) const = default;
};

void PrintTo(const ParameterChange& change, std::ostream* out);

/// What the effect has asked its host.
struct HostCall {
    std::int32_t opcode;
    std::int32_t index;
    std::intptr_t value;
    float opt;
    std::string text; ///< of audioMasterCanDo

    bool operator==(const HostCall&) const = default;
};

void PrintTo(const HostCall& call, std::ostream* out);

/// An effect of 21 parameters without sound. Ids outside of them read as 0 and "none".
class RecordingEffect final : public vst2_door::AudioEffectX {
  public:
    static constexpr std::int32_t kParameters = 21;

    RecordingEffect();

    std::array<float, kParameters> values = {};          ///< normalised
    std::array<std::string, kParameters> names;          ///< "name 6"
    std::array<std::string, kParameters> displays;       ///< "display 6"
    std::array<std::string, kParameters> labels;         ///< "label 6"
    std::vector<ParameterChange> automated;              ///< the calls of setParameterAutomated()
    std::vector<ParameterChange> set;                    ///< the calls of setParameter(), from there too
    std::function<void(std::int32_t, float)> whenSet;    ///< called after each of them
    std::vector<HostCall> hostCalls;                     ///< in their order
    std::set<std::string> hostCan;                       ///< what the host says yes to
    std::intptr_t hostAnswer = 1;                        ///< to everything else
    std::function<void(const HostCall& call)> whenAsked; ///< called before the host answers

    /// Those host calls that have this opcode.
    std::vector<HostCall> callsOf(std::int32_t opcode) const;

    void processReplacing(float**, float**, std::int32_t) override {}
    void setParameter(std::int32_t id, float value) override;
    void setParameterAutomated(std::int32_t id, float value) override;
    float getParameter(std::int32_t id) override;
    void getParameterName(std::int32_t id, char* text) override;
    void getParameterDisplay(std::int32_t id, char* text) override;
    void getParameterLabel(std::int32_t id, char* text) override;

  private:
    static std::intptr_t host(vst2::AEffect* effect, std::int32_t opcode, std::int32_t index,
                              std::intptr_t value, void* ptr, float opt);
    std::intptr_t answer(const HostCall& call);
};

/// An editor whose inside a test may look at: ExposedEditor<skin::xmlGuiEditor>.
template <class Editor>
class ExposedEditor : public Editor {
  public:
    using Editor::Editor;

    using Editor::aboutBoxes;
    using Editor::aboutCount;
    using Editor::anyDisplay;
    using Editor::background;
    using Editor::displayLinks;
    using Editor::frame;
    using Editor::inIdleStuff;
    using Editor::lastTicks;
    using Editor::menuActions;
    using Editor::menuIds;
    using Editor::queueRead;
    using Editor::queueWrite;
    using Editor::rect;
    using Editor::skinLoaded;
    using Editor::systemWindow;
    using Editor::updateLinks;
    using Editor::updateQueue;

    using Editor::closeFrame;
    using Editor::controls;
    using Editor::createControls;
    using Editor::isParameter;
    using Editor::loadSkin;
    using Editor::numParams;
    using Editor::openFrame;
    using Editor::skinReadDefault;
    using Editor::skinReadFont;
    using Editor::skinReadTag;

    /// The control at a place in the order of the skin's file; null if there are not that many.
    VSTGUI::CControl* controlAt(std::size_t place) const {
        const auto all = controls();
        return place < all.size() ? all[place] : nullptr;
    }
    /// The first control with this tag; null if there is none.
    VSTGUI::CControl* controlOf(std::int32_t tag) const {
        for (VSTGUI::CControl* control : controls())
            if (control->getTag() == tag)
                return control;
        return nullptr;
    }
};

/// What a message box would have shown.
struct Message {
    std::string text;
    std::string caption;
    platform::MessageIcon icon = platform::MessageIcon::none;

    bool operator==(const Message&) const = default;
};

void PrintTo(const Message& message, std::ostream* out);

/// A person's settings, in memory.
class MemorySettings final : public platform::SettingsStore {
  public:
    std::map<std::string, std::string> texts;
    bool keeps = true; ///< whether writing works

    std::optional<std::string> read(const std::string& name) override;
    bool write(const std::string& name, const std::string& value) override;
};

/// One at a time. Its folder is empty at first; the current directory is another private folder around it.
class SkinBench {
  public:
    SkinBench();
    ~SkinBench();
    SkinBench(const SkinBench&) = delete;
    SkinBench& operator=(const SkinBench&) = delete;

    /// The folder of the plug-in's file, with a slash behind it.
    const std::string& folder() const { return folder_; }
    /// Writes any file below that folder, and the folders that lead to it.
    void writeFile(const std::string& name, const std::string& bytes) const;
    void makeFolder(const std::string& name) const;

    /// Writes the skin.xml of a skin: `objects` within <GUI> and </GUI>.
    void writeSkin(const std::string& objects, const std::string& skin = "Quillon Skin") const;
    /// Writes a picture into a skin, as PNG: `bands` of equal height, one below the other.
    void drawPicture(const std::string& name, int width, int height,
                     const std::vector<VSTGUI::CColor>& bands = {VSTGUI::kGreyCColor},
                     const std::string& skin = "Quillon Skin") const;

    /// Makes an editor for the skin that lies there now and gives it to the effect, in place of an earlier
    /// one.
    template <class Editor = ExposedEditor<skin::xmlGuiEditor>>
    Editor& makeEditor() {
        auto* const made = new Editor(&effect());
        effect().setEditor(made);
        return *made;
    }

    RecordingEffect& effect() { return *effect_; }

    std::vector<Message> messages; ///< shown so far
    MemorySettings settings;

  private:
    desk::PrivateFolder around_;
    std::string folder_;
    toolkit::Toolkit toolkit_;
    std::unique_ptr<RecordingEffect> effect_;
};

} // namespace test
