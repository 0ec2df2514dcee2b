// The editor whose whole look comes from a skin. It reads the skin's file, builds a control for each of its
// objects (control_builder.cpp), listens to them, and keeps controls and parameters in step. Controls are
// bound to parameters by nothing but their tag: one below the number of parameters is a parameter's id.
//
// The editor lives as long as the effect; frame and views exist between open() and close() only. Everything
// runs on the window's thread but setParameter() and queueParameterUpdate(), which come from wherever the
// host changes parameters. A change from another thread never touches a view, as the window may be closing at
// that moment: it is noted, and the next idle() shows it.
#pragma once

#include "interfaces/effect_window.h"
#include "skin/aeff_gui_editor.h"
#include "skin/skin_context.h"
#include "skin_language/grow_array.h"

#include "base/shared.h"
#include "vstgui/lib/controls/icontrollistener.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace controls {
class CDisplay;
class CParamDisplayLink;
} // namespace controls

namespace VSTGUI {
class CBitmap;
class COptionMenu;
class CParamDisplay;
class CSplashScreen;
class CVuMeter;
} // namespace VSTGUI

namespace skin {

struct SkinObject;

/// When control or parameter `src` changes, all views with the tag `dst` are drawn anew.
struct UpdateLink {
    std::int32_t src;
    std::int32_t dst;
};

/// What the entry of a menu does to a parameter.
struct MenuAction {
    std::int16_t menu;
    std::int16_t entry;
    std::int32_t parameter;
    float value; ///< normalised
};

/// Tags with a meaning of their own. Those below the number of parameters are ids.
enum Tag : std::int32_t {
    kNoTag = -1, ///< of what has nothing to do with parameters
    kAnyDisplayTag = 980,
    kSkinSelectorTag = 999,
    kFirstActionMenuTag = 1000,
    kLastActionMenuTag = 1003,
    kFirstAboutTag = 1020,
    /// The bit that marks what lies over a parameter's control; its id stands in the low 16 bits.
    kOverlayBit = 0x100000,
};

/// What became of an object of the skin.
enum Outcome : int {
    kUnknownKind = -1, ///< there is no such kind of object
    kPassedOver = 0,   ///< it has a fault, which has been shown
    kDone = 1,
};

using interfaces::kRefreshAll;

class xmlGuiEditor : public AEffGUIEditor, public VSTGUI::IControlListener {
  public:
    /// Reads the skin once without a window, to know the window's size.
    explicit xmlGuiEditor(interfaces::EditorHost* effect);
    ~xmlGuiEditor() override;

    /// Has getRect() tell the size of the skin that is chosen now; an empty one if there is none that can be
    /// read. While the window is closed.
    void readSize();

    /// Reads the skin and builds its window in the host's window `ptr`. False if there is no skin that can be
    /// read.
    bool open(void* ptr) override;
    void close() override;
    void idle() override;

    /// Shows a parameter's new value, normalised, in the first control that has its id for a tag. Index -1
    /// sets all controls from the effect, kRefreshAll as value the same without scaling menus. Any thread.
    void setParameter(std::int32_t index, float value) override;
    /// Has the views of a parameter drawn at one of the next calls of idle(). Any thread.
    void queueParameterUpdate(std::int32_t id);

    /// The user has moved a control.
    void valueChanged(VSTGUI::CControl* control) override;

    /// Tells the host of the gestures of parameters only: it may use the index for its tables.
    void beginEdit(std::int32_t index) override;
    void endEdit(std::int32_t index) override;

    virtual void parameterUpdated(std::int32_t, float) {}
    virtual void controlChanged(void*, VSTGUI::CControl*) {}
    virtual void registerMeter(std::int32_t, VSTGUI::CVuMeter*) {}
    /// Gives its entries to a menu that the skin lists none for.
    virtual void fillOptionMenu(VSTGUI::COptionMenu* menu, std::int32_t id);

    GrowArray<SkinName> skinNames; ///< of the folders beside the library, in the order of the file system

  protected:
    /// Builds the control for one object of the skin. Gives an Outcome.
    virtual int createControls(const char* name, SkinObject* object, SkinContext* context);

    /// Reads a tag: its text into kTagValueSize bytes or, `numeric`, its value into a double. A null
    /// `tagName` stands for the object's own text. 1: found; 0: a fault was shown; -1: it is not there, and
    /// `optional`.
    static int skinReadTag(const char* objectName, const char* tagName, const SkinObject* object,
                           bool numeric, bool optional, void* destination, SkinContext* context);
    /// Reads the tags for the look of a text control.
    void skinReadFont(VSTGUI::CParamDisplay* control, const char* objectName, const SkinObject* object,
                      SkinContext* context);
    /// Reads what the control goes back to; where it doesn't say, that is the value it has now.
    static void skinReadDefault(const char* objectName, const SkinObject* object, VSTGUI::CControl* control,
                                SkinContext* context);

    /// Reads the skin and builds from it; with `backgroundOnly` nothing but `rect` comes of it.
    bool loadSkin(void* parent, bool backgroundOnly);
    /// Forgets what an earlier window has left in the lists.
    void resetLists();
    std::int32_t numParams() const;
    bool isParameter(std::int32_t tag) const { return tag < numParams(); }
    /// The controls of the window in the order in which they were added; none if it is closed.
    std::vector<VSTGUI::CControl*> controls() const;
    /// Shows what other threads have noted down since the last time.
    virtual void showNotedChanges();
    /// Gives a control that the user is about to move the present value of its parameter, if it is of a kind
    /// that the builder has bound to one; any other stays as it is.
    void bringUpToDate(VSTGUI::CControl& control);

    VSTGUI::CBitmap* background = nullptr;                ///< not owned
    std::uint8_t skinLoaded = 0;                          ///< from open() to close()
    GrowArray<controls::CParamDisplayLink*> displayLinks; ///< not owned
    GrowArray<UpdateLink> updateLinks;
    base::Shared<std::int32_t> updateQueue[256]; ///< a ring of parameter ids
    base::Shared<std::int32_t> queueRead;        ///< 0..255
    base::Shared<std::int32_t> queueWrite;       ///< 0..255
    GrowArray<std::int32_t> menuIds;             ///< parameters that are shown by a menu
    GrowArray<MenuAction> menuActions;
    std::int32_t aboutCount = 0;
    VSTGUI::CSplashScreen* aboutBoxes[4] = {}; ///< not owned
    controls::CDisplay* anyDisplay = nullptr;  ///< shows the parameter in use; not owned

    class ObjectReader;

    /// Puts a control into the frame, above all others.
    void addControl(const VSTGUI::SharedPointer<VSTGUI::CControl>& control);

  private:
    class Pass;

    bool readSkin(SkinContext& context);
    /// loadSkin() with a window. Without enough memory it closes the window again and gives false.
    bool tryToLoadSkin(void* parent);

    /// Shows a change now. False without enough memory.
    bool tryToShow(std::int32_t index, float value);
    /// If the skin has been changed for one of another size: asks the host to make room. A host that does is
    /// told the new size from now on, any other the size of the start.
    void requestFrameSize();

    void noteChange(std::int32_t index, float value);
    void showParameter(std::int32_t index, float value);
    void showAllParameters();
    void setShownValue(VSTGUI::CControl& control, std::int32_t tag, float value);
    void markLinkedDisplay(std::int32_t id);
    void markUpdateLinks(std::int32_t src);
    bool isMenuId(std::int32_t tag) const;

    void serveQueue();
    void showHint();
    std::int32_t heldTag() const;

    /// Does what a control that was used is for.
    void act(VSTGUI::CControl& control);
    void applyParameterControl(VSTGUI::CControl& control, std::int32_t tag);
    void runMenuActions(VSTGUI::CControl& control, std::int32_t tag);
    void selectSkin(VSTGUI::CControl& control);
    void announceChosenSkin();

    int build(ObjectReader& object);
    void bindValue(VSTGUI::CControl* control, std::int32_t id);
    void addEntries(VSTGUI::COptionMenu* menu, const SkinObject& object, std::int32_t id);
    int buildConstants(ObjectReader& object);
    int buildBackground(ObjectReader& object);
    int buildUpdate(ObjectReader& object);
    int buildSlider(ObjectReader& object);
    int buildKnob(ObjectReader& object);
    int buildOnOff(ObjectReader& object);
    int buildAutoDisplay(ObjectReader& object);
    int buildDisplay(ObjectReader& object);
    int buildAnyDisplay(ObjectReader& object);
    controls::CDisplay* buildText(ObjectReader& object, const VSTGUI::CRect& place, std::int32_t tag);
    int buildOptionMenu(ObjectReader& object);
    int buildSkinSelector(ObjectReader& object);
    template <class Switch>
    int buildSwitch(ObjectReader& object);
    int buildKick(ObjectReader& object);
    int buildAbout(ObjectReader& object);
    int buildVuMeter(ObjectReader& object);

    bool isReading_ = false;                                ///< a skin, which may show messages
    bool isClosedWhileReading_ = false;                     ///< by the host, while such a message stood open
    std::shared_ptr<bool> life_ = std::make_shared<bool>(); ///< ends with the editor
    base::Shared<std::uint32_t> notedChanges_; ///< a bit for each parameter, and those for all of them
};

} // namespace skin
