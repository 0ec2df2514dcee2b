#include "tools/skin_check/recorded_build.h"

#include "base/ascii.h"
#include "editor/my_editor.h"
#include "interfaces/editor_host.h"
#include "parameters/parameter_table.h"
#include "platform/message_box.h"
#include "platform/module_folder.h"
#include "platform/path_text.h"
#include "platform/settings.h"
#include "skin/skin_context.h"
#include "skin/skin_object.h"
#include "skin/skin_table.h"
#include "toolkit/toolkit.h"
#include "tools/common/text.h"
#include "tools/common/tool_error.h"

#include "vstgui/lib/cbitmap.h"
#include "vstgui/lib/controls/ccontrol.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string>
#include <utility>

namespace tools::window {

namespace {

/// What an editor needs to know of its effect.
class SilentEffect final : public interfaces::EditorHost {
  public:
    std::int32_t getNumParameters() const override { return parameters::kNumParameters; }
    float getParameter(std::int32_t) override { return 0.0f; }
    void setParameter(std::int32_t, float) override {}
    void setParameterAutomated(std::int32_t, float) override {}
    void getParameterName(std::int32_t, char* text) override { *text = '\0'; }
    void getParameterLabel(std::int32_t, char* text) override { *text = '\0'; }
    void getParameterDisplay(std::int32_t, char* text) override { *text = '\0'; }
    float getSampleRate() const override { return 44100.0f; }
    bool bindsControllers() const override { return false; }
    bool beginEdit(std::int32_t) override { return false; }
    bool endEdit(std::int32_t) override { return false; }
    void masterIdle() override {}
    void reportUnreadableSkin(const char* line) override { std::printf("%s\n", line); }
    bool canHostDo(const char*) override { return false; }
    bool sizeWindow(std::int32_t, std::int32_t) override { return false; }
    std::shared_ptr<void> keepAlive() override { return nullptr; }
};

/// Settings in which this skin is chosen.
class FixedChoice final : public platform::SettingsStore {
  public:
    explicit FixedChoice(std::string skin) : skin_(std::move(skin)) {}
    std::optional<std::string> read(const std::string&) override { return skin_; }
    bool write(const std::string&, const std::string&) override { return false; }

  private:
    std::string skin_;
};

struct Message {
    std::string text;
    std::string caption;
};

/// Replaces the message box, the settings and the module folder of this process while it lives.
class ProcessOverrides {
  public:
    explicit ProcessOverrides(const std::filesystem::path& folder) : choice_(textOf(folder.filename())) {
        platform::replaceModuleFolder(textOf(folder.parent_path() / ""));
        platform::replaceSettingsStore(&choice_);
        platform::replaceMessageBox(note, this);
    }
    ~ProcessOverrides() {
        platform::replaceMessageBox(nullptr, nullptr);
        platform::replaceSettingsStore(nullptr);
        platform::replaceModuleFolder({});
    }
    ProcessOverrides(const ProcessOverrides&) = delete;
    ProcessOverrides& operator=(const ProcessOverrides&) = delete;

    std::vector<Message> takeMessages() { return std::exchange(messages_, {}); }

  private:
    static std::string textOf(const std::filesystem::path& path) {
        if (const auto text = platform::textOfPath(path))
            return *text;
        throw ToolError(path.string() + " has letters that plug-ins cannot use");
    }

    static void note(void* context, const char* text, const char* caption, const platform::MessageLook&) {
        static_cast<ProcessOverrides*>(context)->messages_.push_back({text, caption});
    }

    FixedChoice choice_;
    std::vector<Message> messages_;
};

// Messages of the builder that name no tag.
constexpr const char* kBadConstant = "Expression parser error";
constexpr const char* kBadLink = "Error attempting to link a display to an invalid parameter id";

/// Where in the object a message of the builder belongs.
Place placeOf(const Message& message, const SourceElement& object) {
    // A fault in a line of constants has the line for its caption.
    const std::size_t line = object.text.find(message.caption);
    if (message.text == kBadConstant && line != std::string::npos)
        return placeWithin(object.text, line, object.textPlace);
    if (const SourceAttribute* const link = object.find("link"); link && message.text == kBadLink)
        return link->valuePlace;
    for (const SourceAttribute& tag : object.attributes)
        if (message.text.find(" tag " + lowered(tag.name) + " for ") != std::string::npos)
            return tag.valuePlace;
    return object.place;
}

ObjectRole roleOf(const std::string& kindName) {
    const skin::KindRule* const kind = skin::kindNamed(kindName);
    if (!kind)
        return ObjectRole::other;
    switch (kind->kind) {
    case skin::ObjectKind::knob:
    case skin::ObjectKind::slider:
    case skin::ObjectKind::onOff:
    case skin::ObjectKind::verticalSwitch:
    case skin::ObjectKind::horizontalSwitch:
    case skin::ObjectKind::optionMenu:
    case skin::ObjectKind::kick:
        return ObjectRole::control;
    case skin::ObjectKind::autoDisplay:
    case skin::ObjectKind::anyDisplay:
    case skin::ObjectKind::display:
        return ObjectRole::text;
    default:
        return ObjectRole::other;
    }
}

class RecordingEditor final : public editor::myEditor {
  public:
    RecordingEditor(interfaces::EditorHost& owner, const SourceElement& root, ProcessOverrides& overrides)
        : myEditor(&owner, levels()), root_(root), overrides_(overrides) {
        // The pass that only measures has said nothing that the next one does not say.
        overrides_.takeMessages();
    }

    RecordedBuild record;

  protected:
    int createControls(const char* name, skin::SkinObject* object, skin::SkinContext* context) override {
        const std::size_t countBefore = controls().size();
        const int result = myEditor::createControls(name, object, context);
        const SourceElement& source = root_.children.at(next_++);
        const auto messages = overrides_.takeMessages();
        for (const Message& message : messages)
            record.findings.push_back({placeOf(message, source), message.caption + ": " + message.text});
        if (messages.empty() && result != 1)
            record.findings.push_back({source.place, whyPassedOver(source, result)});
        notePictures(source, *context);
        noteOutline(source, countBefore);
        return result;
    }

  private:
    static editor::TapGains levels() {
        static const std::array<base::Shared<float>, parameters::kMaxTaps> silence = {};
        return silence;
    }

    static std::string whyPassedOver(const SourceElement& source, int result) {
        const std::string what = std::string("<").append(printable(source.name)) + "> is ignored: ";
        return what + (result < 0 ? "there is no such kind of object" : "it must come after <background>");
    }

    void notePictures(const SourceElement& source, const skin::SkinContext& context) {
        const skin::KindRule* const kind = skin::kindNamed(source.name);
        for (const SourceAttribute& tag : source.attributes) {
            const skin::TagRule* const rule = kind ? skin::tagNamed(*kind, tag.name) : nullptr;
            const bool counts = rule && rule->type == skin::TagType::picture && source.find(tag.name) == &tag;
            if (counts && !tag.value.empty() && isEmpty(tag.value, context))
                record.findings.push_back({tag.valuePlace, whyEmpty(tag.value, context)});
        }
    }

    /// Records the first control that the object added; before it there were `countBefore`.
    void noteOutline(const SourceElement& source, std::size_t countBefore) {
        const auto all = controls();
        if (all.size() <= countBefore)
            return;
        const VSTGUI::CControl& control = *all[countBefore];
        const VSTGUI::CRect place = control.getViewSize();
        ObjectOutline outline = {.kind = printable(source.name),
                                 .role = roleOf(source.name),
                                 .id = std::nullopt,
                                 .left = place.left,
                                 .top = place.top,
                                 .right = place.right,
                                 .bottom = place.bottom};
        if (source.find("id"))
            outline.id = control.getTag();
        record.outlines.push_back(std::move(outline));
    }

    /// Whether the name was asked for and gave a picture of no size.
    static bool isEmpty(const std::string& name, const skin::SkinContext& context) {
        return std::any_of(
            context.bitmaps.begin(), context.bitmaps.end(), [&](const skin::SkinBitmap& known) {
                return base::equalIgnoringCase(known.name, name) && known.bitmap->getWidth() <= 0;
            });
    }

    static std::string whyEmpty(const std::string& name, const skin::SkinContext& context) {
        return "the picture " + inQuotes(name) +
               (toolkit::findPicture(context.path, name)
                    ? " cannot be read: it is truncated, too large, or not a PNG, BMP, JPEG, GIF, TIFF or ICO"
                    : " is not in the skin's folder");
    }

    const SourceElement& root_;
    ProcessOverrides& overrides_;
    std::size_t next_ = 0;
};

} // namespace

RecordedBuild buildRecorded(const std::filesystem::path& folder, const SourceElement& root) {
    ProcessOverrides overrides(folder);
    SilentEffect effect;
    RecordingEditor editor(effect, root, overrides);
    editor.open(nullptr);
    editor.close();
    return std::move(editor.record);
}

} // namespace tools::window
