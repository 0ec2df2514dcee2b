// The editor of this plug-in. The skin engine does nearly all of the work; what comes on top is the picture
// of the echoes, a note display, the menu about MIDI controllers above every control of a parameter, and the
// state of learning one.
#pragma once

#include "base/shared.h"
#include "controls/note_display.h"
#include "interfaces/effect_window.h"
#include "midi/learn_machine.h"
#include "parameters/pattern_laws.h"
#include "platform/lock.h"
#include "skin/xml_gui_editor.h"

#include <array>
#include <cstdint>

namespace controls {
class ViewTaps;
} // namespace controls

namespace editor {

using interfaces::TapGains;

class myEditor : public skin::xmlGuiEditor, public interfaces::EffectWindow {
  public:
    /// `tapGain` is the effect's own table, which other threads may rewrite at any time.
    myEditor(interfaces::EditorHost* effect, TapGains tapGain);

    bool open(void* ptr) override;
    void close() override;
    void idle() override { xmlGuiEditor::idle(); }
    /// Arms the learning of a controller if an overlay reports exactly 1.
    void controlChanged(void* context, VSTGUI::CControl* control) override;

    bool isOpen() override { return xmlGuiEditor::isOpen(); }
    void setParameter(std::int32_t id, float value) override { xmlGuiEditor::setParameter(id, value); }
    void queueParameterUpdate(std::int32_t id) override { xmlGuiEditor::queueParameterUpdate(id); }
    /// If there is a window with a picture of the pattern.
    void updateTapView(float tapsValue, float stretchValue, float lengthValue, float sampleRate,
                       TapGains tapGain) override;
    void learnController(std::int32_t controller) override { learn.bind(controller); }

    /// Binds the controller of a Control Change to the control that waits for one.
    void learnFromMidi(const std::uint8_t* midiData) { learn.learnFromMidi(midiData); }

    midi::LearnMachine learn;

  protected:
    int createControls(const char* name, skin::SkinObject* object, skin::SkinContext* context) override;
    void showNotedChanges() override;

  private:
    /// A pattern on its way to the window.
    struct Pattern {
        base::Shared<float> taps, stretch, length, sampleRate;
        std::array<base::Shared<float>, parameters::kMaxTaps> gain;
    };

    int buildViewTaps(ObjectReader& tags);
    int buildNoteDisplay(ObjectReader& tags);
    int readPresetsDisplay(ObjectReader& tags);
    bool tryToAddOverlays();
    void addOverlays();
    void showPattern();

    TapGains effectGains_;
    Pattern pattern_;
    base::Shared<bool> patternNoted_; ///< a thread has left a pattern to be shown

    controls::ViewTaps* viewTaps = nullptr;        ///< not owned
    controls::CNoteDisplay* noteDisplay = nullptr; ///< not owned
    platform::Lock lock;                           ///< for whoever would write notes while the window closes
    std::int8_t note = 0;
    std::int32_t noteMode = controls::kNoNote;
    bool opened = false;
    int openings_ = 0; ///< so far
};

} // namespace editor
