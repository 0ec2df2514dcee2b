#include "editor/my_editor.h"

#include "base/truncation.h"
#include "controls/midi_learn.h"
#include "controls/view_taps.h"
#include "parameters/parameter_table.h"
#include "skin/object_reader.h"
#include "skin/skin_table.h"

#include <limits>
#include <mutex>
#include <new>
#include <string>

namespace editor {

using base::trunc;
using skin::SkinContext;
using skin::SkinObject;

namespace {

/// The number beside the picture. The limit is negative at every rate, so no length is ever at or below it,
/// and what is shown is the rate's alone.
std::int32_t shownMilliseconds(float length, float sampleRate, std::int32_t taps) {
    const std::int32_t total = trunc(parameters::baseLengthOf(length, 1000.0f) * static_cast<float>(taps));
    const std::int32_t limit = trunc(-100664296.0f / sampleRate);
    if (total <= limit)
        return total;
    return limit == std::numeric_limits<std::int32_t>::min() ? limit : -limit;
}

/// The display's colours have no opacity, whatever a skin says.
VSTGUI::CColor clearColour(const std::string& text) {
    VSTGUI::CColor colour = skin::colourOf(text.c_str()).value_or(VSTGUI::kBlackCColor);
    colour.alpha = 0;
    return colour;
}

} // namespace

myEditor::myEditor(interfaces::EditorHost* owner, TapGains tapGain)
    : xmlGuiEditor(owner), effectGains_(tapGain) {}

bool myEditor::open(void* ptr) {
    viewTaps = nullptr;
    noteDisplay = nullptr;
    // A host that is asked for room may close the window and open it again, overlays and all.
    const int opening = ++openings_;
    const bool isShown = xmlGuiEditor::open(ptr);
    opened = isShown && (opening != openings_ || tryToAddOverlays());
    if (!opened) {
        viewTaps = nullptr;
        noteDisplay = nullptr;
    }
    return opened;
}

/// Without enough memory it closes the window again and gives false.
bool myEditor::tryToAddOverlays() try {
    learn.disarm();
    addOverlays();
    return true;
} catch (const std::bad_alloc&) {
    close();
    return false;
}

void myEditor::close() {
    {
        const std::lock_guard guard(lock);
        noteDisplay = nullptr;
    }
    xmlGuiEditor::close();
    viewTaps = nullptr;
    opened = false;
}

/// One for every control of a parameter, above all that the skin has made.
void myEditor::addOverlays() {
    const std::vector<VSTGUI::CControl*> covered = controls();
    for (std::int32_t id = 0; id < numParams(); ++id)
        for (VSTGUI::CControl* control : covered)
            if (control->getTag() == id) {
                const auto overlay = VSTGUI::makeOwned<controls::CMidiLearn>(
                    control->getViewSize(), this, midi::kLearnTagBase + id, control, &theEffect());
                overlay->setRefresh([this](VSTGUI::CControl& below) { bringUpToDate(below); });
                addControl(overlay);
            }
}

void myEditor::controlChanged(void*, VSTGUI::CControl* control) {
    learn.controlChanged(control->getTag(), control->getValue());
}

// The picture of the echoes

void myEditor::updateTapView(float tapsValue, float stretchValue, float lengthValue, float sampleRate,
                             TapGains tapGain) {
    if (!isOpen() || !hasFrame())
        return;
    pattern_.taps.store(tapsValue);
    pattern_.stretch.store(stretchValue);
    pattern_.length.store(lengthValue);
    pattern_.sampleRate.store(sampleRate);
    for (std::size_t tap = 0; tap < tapGain.size(); ++tap)
        pattern_.gain[tap].store(tapGain[tap].load());
    if (onWindowThread())
        showPattern();
    else
        patternNoted_.store(true);
}

void myEditor::showPattern() {
    if (!viewTaps)
        return;
    const std::int32_t taps = parameters::numTapsOf(pattern_.taps.load());
    std::array<float, parameters::kMaxTaps> gain;
    for (std::size_t tap = 0; tap < gain.size(); ++tap)
        gain[tap] = pattern_.gain[tap].load();
    viewTaps->showPattern(gain.data(),
                          shownMilliseconds(pattern_.length.load(), pattern_.sampleRate.load(), taps), taps,
                          parameters::stretchBend(pattern_.stretch.load()));
}

void myEditor::showNotedChanges() {
    xmlGuiEditor::showNotedChanges();
    if (!patternNoted_.load())
        return;
    patternNoted_.store(false);
    showPattern();
}

// What this plug-in adds to the language of skins

int myEditor::createControls(const char* name, SkinObject* object, SkinContext* context) {
    const int result = xmlGuiEditor::createControls(name, object, context);
    const skin::KindRule* const kind = skin::kindNamed(name);
    if (result != skin::kUnknownKind || !kind)
        return result;
    ObjectReader tags(*kind, object, context);
    switch (kind->kind) {
    case skin::ObjectKind::viewTaps:
        return buildViewTaps(tags);
    case skin::ObjectKind::noteDisplay:
        return buildNoteDisplay(tags);
    case skin::ObjectKind::presetsDisplay:
        return readPresetsDisplay(tags);
    default:
        return skin::kUnknownKind;
    }
}

int myEditor::buildViewTaps(ObjectReader& tags) {
    const VSTGUI::CRect place = tags.box();
    if (tags.hasFailed() || !frame)
        return skin::kPassedOver;
    const float taps = theEffect().getParameter(parameters::kTaps);
    const float stretch = theEffect().getParameter(parameters::kStretch);
    const float length = theEffect().getParameter(parameters::kBaseLength);
    const auto view = VSTGUI::makeOwned<controls::ViewTaps>(place);
    addControl(view);
    viewTaps = view;
    updateTapView(taps, stretch, length, theEffect().getSampleRate(), effectGains_);
    return skin::kDone;
}

int myEditor::buildNoteDisplay(ObjectReader& tags) {
    const VSTGUI::CRect place = tags.box();
    const std::int32_t id = tags.integer("id");
    const std::string fontColour = tags.text("fontcolor"), backColour = tags.text("backcolor");
    if (tags.hasFailed() || !frame)
        return skin::kPassedOver;
    const auto display = VSTGUI::makeOwned<controls::CNoteDisplay>(place, this, id, &note, &noteMode);
    display->setBackColor(clearColour(backColour));
    display->setFontColor(clearColour(fontColour));
    addControl(display);
    noteDisplay = display;
    return skin::kDone;
}

/// Makes nothing. A skin may hold one, and messages about its faults name NoteDisplay.
int myEditor::readPresetsDisplay(ObjectReader& tags) {
    tags.setMessageName("NoteDisplay");
    tags.box();
    tags.text("fontcolor");
    return tags.hasFailed() ? skin::kPassedOver : skin::kDone;
}

} // namespace editor
