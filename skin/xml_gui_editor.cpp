#include "skin/xml_gui_editor.h"

#include "base/ascii.h"
#include "base/truncation.h"
#include "controls/default_values.h"
#include "controls/displays.h"
#include "parameters/parameter_table.h"
#include "platform/clock.h"
#include "platform/folders.h"
#include "platform/message_box.h"
#include "skin/skin_menu.h"
#include "skin/skin_object.h"

#include "vstgui/lib/controls/cbuttons.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <utility>

namespace skin {

using base::trunc;
using VSTGUI::CControl;

namespace {

constexpr std::int32_t kQueueMask = 255;

// What another thread has noted: a bit for each parameter, and two for all of them.
constexpr std::uint32_t kRefreshScaledBit = 1u << 30;
constexpr std::uint32_t kRefreshAllBit = 1u << 31;
static_assert(parameters::kNumParameters <= 30);

constexpr char kRestingHint[] = "Parameter Value";

using XmlTree = std::unique_ptr<XmlNode, decltype(&xmlFreeNode)>;

/// Takes what has gone, such as a menu, from the screen. Windows are drawn 16 ms after a change at the
/// earliest, and while a message stands open not at all.
void drawBeforeMessage() {
    platform::sleepMilliseconds(17);
    toolkit::paintToolkitWindows();
}

} // namespace

xmlGuiEditor::xmlGuiEditor(interfaces::EditorHost* owner) : AEffGUIEditor(owner) {
    controls::resetOnlyControlsWithDefault();
    // No id, so that the first one is not taken for a repetition.
    for (base::Shared<std::int32_t>& entry : updateQueue)
        entry.store(std::numeric_limits<std::int32_t>::min());
    loadSkin(nullptr, true);
}

xmlGuiEditor::~xmlGuiEditor() {
    closeFrame();
}

// The pass over a skin

/// The scope of one pass: no second one starts within it, and the pictures are released at its end.
class xmlGuiEditor::Pass {
  public:
    Pass(xmlGuiEditor& editor, SkinContext& context) : editor_(editor), context_(context) {
        editor_.isReading_ = true;
    }
    ~Pass() {
        editor_.isReading_ = false;
        skinContextRelease(&context_);
        if (!editor_.frame)
            editor_.background = nullptr;
    }
    Pass(const Pass&) = delete;
    Pass& operator=(const Pass&) = delete;

  private:
    xmlGuiEditor& editor_;
    SkinContext& context_;
};

bool xmlGuiEditor::loadSkin(void* parent, bool backgroundOnly) {
    SkinContext context;
    skinContextInit(&context, parent, backgroundOnly, this);
    const Pass pass(*this, context);
    return readSkin(context);
}

bool xmlGuiEditor::tryToLoadSkin(void* parent) try {
    return loadSkin(parent, false);
} catch (const std::bad_alloc&) {
    closeFrame();
    background = nullptr;
    return false;
}

bool xmlGuiEditor::readSkin(SkinContext& context) {
    // Without a path it would be sought in the current directory.
    const auto file = *context.path ? platform::findPath(context.path, "skin.xml") : std::nullopt;
    const XmlTree root(file ? xmlParseFile(file->c_str()) : nullptr, xmlFreeNode);
    if (!root) {
        char line[kPathSize + 32];
        std::snprintf(line, sizeof line, "%s%s skin file missing", context.path, "skin.xml");
        theEffect().reportUnreadableSkin(line);
        return false;
    }
    if (!base::equalIgnoringCase(root->name, "GUI")) {
        theEffect().reportUnreadableSkin("<GUI> node missing");
        return false;
    }
    for (XmlNode* child = root->child; child; child = child->next) {
        if (context.backgroundOnly && !base::equalIgnoringCase(child->name, "background"))
            continue;
        SkinObject object(child);
        createControls(child->name, &object, &context);
        if (context.isWindowMissing || isClosedWhileReading_)
            return false;
    }
    return true;
}

void xmlGuiEditor::readSize() {
    if (isReading_ || frame)
        return;
    rect = {};
    loadSkin(nullptr, true);
}

void xmlGuiEditor::resetLists() {
    displayLinks.clear();
    updateLinks.clear();
    menuIds.clear();
    skinNames.clear();
    aboutCount = 0;
    anyDisplay = nullptr;
    background = nullptr;
}

bool xmlGuiEditor::open(void* ptr) {
    if (isReading_)
        return false;
    // A second open() replaces the first window.
    closeFrame();
    systemWindow.store(ptr);
    resetLists();
    notedChanges_.store(0u);
    const bool loaded = tryToLoadSkin(ptr);
    skinLoaded = 1;
    queueRead.store(0);
    if (std::exchange(isClosedWhileReading_, false)) {
        close();
        return false;
    }
    const bool isShown = frame != nullptr;
    requestFrameSize();
    // The host may have closed it instead.
    return loaded && (frame || !isShown);
}

void xmlGuiEditor::requestFrameSize() {
    if (!frame || !ownWindow())
        return;
    const auto width = static_cast<std::int16_t>(frame->getWidth());
    const auto height = static_cast<std::int16_t>(frame->getHeight());
    const interfaces::EditorRect told = std::exchange(rect, {0, 0, height, width});
    const bool isOther = width != told.right || height != told.bottom;
    // A host that makes room asks for the size again, in its answer or later, and goes by that.
    if (isOther && !(theEffect().canHostDo("sizeWindow") && frame && theEffect().sizeWindow(width, height)))
        rect = told;
}

void xmlGuiEditor::close() {
    skinLoaded = 0;
    if (isReading_) {
        // A message about the skin is open, and the host goes on meanwhile. The pass that shows it still uses
        // the window.
        isClosedWhileReading_ = true;
        return;
    }
    closeFrame();
    background = nullptr;
}

// The window's controls

std::int32_t xmlGuiEditor::numParams() const {
    return theEffect().getNumParameters();
}

std::vector<CControl*> xmlGuiEditor::controls() const {
    std::vector<CControl*> found;
    if (frame)
        frame->forEachChild([&found](VSTGUI::CView* view) {
            if (auto* const control = dynamic_cast<CControl*>(view))
                found.push_back(control);
        });
    return found;
}

bool xmlGuiEditor::isMenuId(std::int32_t tag) const {
    return std::ranges::find(menuIds, tag) != menuIds.end();
}

// From the effect to the window

void xmlGuiEditor::setParameter(std::int32_t index, float value) {
    if (!hasFrame())
        return;
    if (!onWindowThread() || !tryToShow(index, value))
        noteChange(index, value);
}

/// Without enough memory, the next idle() tries again.
bool xmlGuiEditor::tryToShow(std::int32_t index, float value) try {
    if (trunc(value) != kRefreshAll)
        showParameter(index, value);
    else if (skinLoaded)
        showAllParameters();
    return true;
} catch (const std::bad_alloc&) {
    return false;
}

void xmlGuiEditor::noteChange(std::int32_t index, float value) {
    std::uint32_t bits = 0;
    if (trunc(value) == kRefreshAll)
        bits = kRefreshAllBit;
    else if (index == -1)
        bits = kRefreshScaledBit;
    else if (index >= 0 && index < parameters::kNumParameters)
        bits = 1u << index;
    notedChanges_.setBits(bits);
}

void xmlGuiEditor::showNotedChanges() {
    const std::uint32_t bits = notedChanges_.exchange(0);
    if (bits & kRefreshAllBit)
        showAllParameters();
    if (bits & kRefreshScaledBit)
        showParameter(-1, 0.0f);
    for (std::int32_t id = 0; id < parameters::kNumParameters; ++id)
        if (bits & (1u << id))
            showParameter(id, theEffect().getParameter(id));
}

void xmlGuiEditor::showParameter(std::int32_t index, float value) {
    const bool showsAll = index == -1;
    for (CControl* control : controls()) {
        const std::int32_t tag = control->getTag();
        if (isParameter(tag) && (showsAll || tag == index)) {
            if (showsAll)
                value = theEffect().getParameter(tag);
            markLinkedDisplay(tag);
            setShownValue(*control, tag, value);
            control->setDirty(true);
            if (!showsAll) {
                markUpdateLinks(tag);
                return;
            }
        }
        parameterUpdated(index, value);
        if (showsAll)
            parameterUpdated(-1, 0.0f);
    }
}

void xmlGuiEditor::setShownValue(CControl& control, std::int32_t tag, float value) {
    auto* const menu = dynamic_cast<SkinMenu*>(&control);
    if (menu && isMenuId(tag))
        menu->showValue(
            static_cast<float>(trunc(static_cast<float>(menu->getNbEntries() - 1) * value + 0.5f)));
    else if (dynamic_cast<VSTGUI::COnOffButton*>(&control))
        control.setValue(value >= 0.5f ? 1.0f : 0.0f);
    else
        control.setValue(value);
}

void xmlGuiEditor::bringUpToDate(CControl& control) {
    const std::int32_t tag = control.getTag();
    const bool isBoundMenu = dynamic_cast<SkinMenu*>(&control) && isMenuId(tag);
    if (!isParameter(tag) || !(isBoundMenu || controls::hasDefault(control)))
        return;
    setShownValue(control, tag, theEffect().getParameter(tag));
    // Drawn soon, and not dirty: a gesture that is cancelled goes back to the value that was shown last, and
    // a dirty control has forgotten that.
    control.invalid();
}

void xmlGuiEditor::showAllParameters() {
    for (CControl* control : controls()) {
        const std::int32_t tag = control->getTag();
        if (!isParameter(tag))
            continue;
        const float value = theEffect().getParameter(tag);
        if (auto* const menu = dynamic_cast<SkinMenu*>(control))
            menu->showValue(value);
        else
            control->setValue(value);
        control->setDirty(true);
    }
}

void xmlGuiEditor::markLinkedDisplay(std::int32_t id) {
    for (controls::CParamDisplayLink* display : displayLinks)
        if (display->getLink() == id)
            return display->setDirty(true);
}

void xmlGuiEditor::markUpdateLinks(std::int32_t src) {
    for (const UpdateLink& link : updateLinks)
        if (link.src == src)
            for (CControl* control : controls())
                if (control->getTag() == link.dst)
                    control->setDirty(true);
}

void xmlGuiEditor::queueParameterUpdate(std::int32_t id) {
    if (!hasFrame())
        return;
    const std::int32_t write = queueWrite.load() & kQueueMask;
    const std::int32_t next = (write + 1) & kQueueMask;
    const bool isFull = next == queueRead.load();
    const bool isRepeated = updateQueue[(write - 1) & kQueueMask].load() == id;
    if (isFull || isRepeated)
        return;
    updateQueue[write].store(id);
    queueWrite.store(next);
}

// Idle

void xmlGuiEditor::idle() {
    AEffGUIEditor::idle();
    if (!skinLoaded || !frame)
        return;
    showNotedChanges();
    serveQueue();
    if (anyDisplay)
        showHint();
}

void xmlGuiEditor::serveQueue() {
    const std::int32_t read = queueRead.load();
    if (read == (queueWrite.load() & kQueueMask))
        return;
    const std::int32_t id = updateQueue[read].load();
    const std::vector<CControl*> views = controls();
    const auto found = std::ranges::find(views, id, &CControl::getTag);
    if (found != views.end()) {
        const bool isBehind = isParameter(id) && (*found)->getValue() != theEffect().getParameter(id);
        if (!isBehind)
            (*found)->setDirty(true);
    }
    queueRead.store((read + 1) & kQueueMask);
}

void xmlGuiEditor::showHint() {
    char hint[256];
    const std::int32_t id = heldTag();
    if (isParameter(id)) {
        char name[interfaces::kParameterTextSize], display[parameters::kDisplayTextSize];
        char label[interfaces::kParameterTextSize];
        theEffect().getParameterName(id, name);
        theEffect().getParameterDisplay(id, display);
        theEffect().getParameterLabel(id, label);
        std::snprintf(hint, sizeof hint, "%s: %s %s", name, display, label);
    } else {
        std::snprintf(hint, sizeof hint, "%s", kRestingHint);
    }
    if (std::strcmp(hint, anyDisplay->getText()) != 0) {
        anyDisplay->setText(hint);
        anyDisplay->setDirty(true);
    }
    // Always, whatever the skin says: the text must not jump when a control is let go.
    anyDisplay->setHoriAlign(VSTGUI::kLeftText);
}

/// The tag, without the overlay bit, of the control that the mouse holds or that is modal; numParams() if
/// there is none.
std::int32_t xmlGuiEditor::heldTag() const {
    VSTGUI::CView* const focus = leftButtonDown() ? frame->getFocusView() : nullptr;
    const auto* const control = dynamic_cast<CControl*>(focus ? focus : frame->getModalView());
    if (!control)
        return numParams();
    const std::int32_t tag = control->getTag();
    return tag & kOverlayBit ? tag & 0xFFFF : tag;
}

// From the controls to the effect

void xmlGuiEditor::valueChanged(CControl* control) {
    const VSTGUI::SharedPointer<CControl> held(control);
    const std::weak_ptr<bool> life = life_;
    // A menu answers where the toolkit lets no exception through.
    try {
        act(*control);
        if (!life.expired())
            markUpdateLinks(control->getTag());
    } catch (const std::bad_alloc&) {
        // What could not be done is lost; the next change brings all of it up to date.
    }
    if (life.expired())
        // While the message stood open, the host has ended the effect.
        control->setListener(nullptr);
    else
        control->setDirty(true);
}

void xmlGuiEditor::act(CControl& control) {
    const std::int32_t tag = control.getTag();
    if (isParameter(tag))
        applyParameterControl(control, tag);
    else if (tag >= kFirstActionMenuTag && tag <= kLastActionMenuTag)
        runMenuActions(control, tag);
    else if (tag == kSkinSelectorTag)
        selectSkin(control);
}

void xmlGuiEditor::beginEdit(std::int32_t index) {
    if (index >= 0 && isParameter(index))
        AEffGUIEditor::beginEdit(index);
}

void xmlGuiEditor::endEdit(std::int32_t index) {
    if (index >= 0 && isParameter(index))
        AEffGUIEditor::endEdit(index);
}

void xmlGuiEditor::applyParameterControl(CControl& control, std::int32_t tag) {
    float value = control.getValue();
    const auto* const menu = dynamic_cast<VSTGUI::COptionMenu*>(&control);
    if (menu && isMenuId(tag)) {
        const std::int32_t steps = menu->getNbEntries() - 1;
        if (steps == 0)
            return;
        value /= static_cast<float>(steps);
    }
    theEffect().setParameterAutomated(tag, value);
}

void xmlGuiEditor::runMenuActions(CControl& control, std::int32_t tag) {
    const std::int32_t entry = trunc(control.getValue());
    for (const MenuAction& action : menuActions)
        if (action.menu == tag - kFirstActionMenuTag && action.entry == entry)
            theEffect().setParameter(action.parameter, action.value);
    control.setValue(0.0f);
}

void xmlGuiEditor::selectSkin(CControl& control) {
    const float choice = control.getValue();
    const auto count = static_cast<float>(skinNames.count); // the editor may be gone after the message
    const std::int32_t index = trunc(choice);
    auto* const menu = dynamic_cast<SkinMenu*>(&control);
    if (choice < count && index >= 0 && skinSaveName(skinNames[index].text)) {
        if (menu)
            menu->showNoChoice();
        announceChosenSkin();
    }
    if (menu)
        menu->showValue(count);
    else
        control.setValue(count);
}

void xmlGuiEditor::announceChosenSkin() {
    const toolkit::InputPause pause;
    drawBeforeMessage();
    platform::showMessage("The new skin has been selected.\n"
                          "Please close and open this window.\n"
                          "If nothing changes it's probably because your host only hides\n"
                          "the editor windows, so you may have to reopen the plug-in",
                          "SKIN SELECTED!", {.owner = ownWindow()});
}

} // namespace skin
