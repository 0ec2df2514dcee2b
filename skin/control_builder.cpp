// Which control comes of each kind of object, and in which order its tags are read; which tags it has stands
// in skin_table.cpp. Objects are taken one by one; every control goes straight into the frame, above those
// before it.
#include "skin/xml_gui_editor.h"

#include "base/ascii.h"
#include "base/fixed_text.h"
#include "base/truncation.h"
#include "controls/about.h"
#include "controls/displays.h"
#include "platform/message_box.h"
#include "skin/object_reader.h"
#include "skin/skin_menu.h"
#include "skin/skin_slider.h"
#include "skin/skin_table.h"

#include "vstgui/lib/controls/cbuttons.h"
#include "vstgui/lib/controls/cknob.h"
#include "vstgui/lib/controls/csplashscreen.h"
#include "vstgui/lib/controls/cswitch.h"
#include "vstgui/lib/controls/cvumeter.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

namespace skin {

using base::trunc;
using VSTGUI::CBitmap;
using VSTGUI::CControl;
using VSTGUI::COptionMenu;
using VSTGUI::CPoint;
using VSTGUI::CRect;

namespace {

constexpr char kSkinError[] = "Skin Error";
constexpr char kButtonPictureMissing[] = "ZKSKIN: Bitmap not found";

void showTagError(const char* format, const char* tag, const char* object) {
    char text[256];
    std::snprintf(text, sizeof text, format, tag, object);
    platform::showMessage(text, kSkinError, {.icon = platform::MessageIcon::error});
}

/// A folder's name as the menu of skins shows it.
std::string skinTitle(const char* name) {
    if (base::equalIgnoringCase(name, "skin"))
        return "Default Skin";
    std::string title = name;
    if (!title.empty() && title[0] >= 'a' && title[0] <= 'z')
        title[0] = static_cast<char>(title[0] - 'a' + 'A');
    return title;
}

} // namespace

// Tags

int xmlGuiEditor::skinReadTag(const char* objectName, const char* tagName, const SkinObject* object,
                              bool numeric, bool optional, void* destination, SkinContext* context) {
    const SkinTag* const tag = tagName ? findTag(*object, tagName) : nullptr;
    const char* const text = tagName ? (tag ? tag->value : nullptr) : object->text;
    if (!text) {
        if (optional)
            return -1;
        showTagError("Missing tag %s for object %s", tagName ? tagName : "", objectName);
        return 0;
    }
    if (!numeric) {
        base::copyText(static_cast<char*>(destination), text, kTagValueSize - 1);
        return 1;
    }
    int position = 0;
    if (exprEvaluate(&context->constants, text, &position, static_cast<double*>(destination)))
        return 1;
    showTagError("Error calculating value of tag %s for object %s", tagName ? tagName : "", objectName);
    return 0;
}

void xmlGuiEditor::skinReadFont(VSTGUI::CParamDisplay* control, const char* objectName,
                                const SkinObject* object, SkinContext* context) {
    double value = 0.0;
    const auto hasNumber = [&](const char* tag) {
        return skinReadTag(objectName, tag, object, true, true, &value, context) == 1;
    };
    if (hasNumber("font"))
        control->setFont(VSTGUI::makeOwned<VSTGUI::CFontDesc>("font", 0, trunc(value)));
    if (hasNumber("halign"))
        control->setHoriAlign(static_cast<VSTGUI::CHoriTxtAlign>(trunc(value)));
    hasNumber("txtface");
    if (findTag(*object, "transparent")) {
        control->setBackground(background);
        control->setBackOffset(control->getViewSize().getTopLeft());
    }
    const auto withColour = [&](const char* tag, const VSTGUI::CColor& colour, auto setColour) {
        if (const SkinTag* const found = findTag(*object, tag))
            (control->*setColour)(colourOf(found->value).value_or(colour));
    };
    using Text = VSTGUI::CParamDisplay;
    withColour("fontcolor", control->getFontColor(), &Text::setFontColor);
    withColour("backcolor", control->getBackColor(), &Text::setBackColor);
    withColour("framecolor", control->getFrameColor(), &Text::setFrameColor);
    withColour("shadowcolor", control->getShadowColor(), &Text::setShadowColor);
}

void xmlGuiEditor::skinReadDefault(const char* objectName, const SkinObject* object, CControl* control,
                                   SkinContext* context) {
    double value = 0.0;
    const bool isGiven = skinReadTag(objectName, "default", object, true, true, &value, context) == 1;
    control->setDefaultValue(isGiven ? static_cast<float>(value) : control->getValue());
}

// Kinds

int xmlGuiEditor::createControls(const char* name, SkinObject* object, SkinContext* context) {
    const KindRule* const kind = kindNamed(name);
    if (!kind)
        return kUnknownKind;
    ObjectReader reader(*kind, object, context);
    return build(reader);
}

int xmlGuiEditor::build(ObjectReader& object) {
    switch (object.kind().kind) {
    case ObjectKind::constants:
        return buildConstants(object);
    case ObjectKind::background:
        return buildBackground(object);
    case ObjectKind::update:
        return buildUpdate(object);
    case ObjectKind::slider:
        return buildSlider(object);
    case ObjectKind::knob:
        return buildKnob(object);
    case ObjectKind::onOff:
        return buildOnOff(object);
    case ObjectKind::autoDisplay:
        return buildAutoDisplay(object);
    case ObjectKind::display:
        return buildDisplay(object);
    case ObjectKind::anyDisplay:
        return buildAnyDisplay(object);
    case ObjectKind::optionMenu:
        return buildOptionMenu(object);
    case ObjectKind::skinSelector:
        return buildSkinSelector(object);
    case ObjectKind::verticalSwitch:
        return buildSwitch<VSTGUI::CVerticalSwitch>(object);
    case ObjectKind::horizontalSwitch:
        return buildSwitch<VSTGUI::CHorizontalSwitch>(object);
    case ObjectKind::kick:
        return buildKick(object);
    case ObjectKind::about:
        return buildAbout(object);
    case ObjectKind::vuMeter:
        return buildVuMeter(object);
    case ObjectKind::viewTaps:
    case ObjectKind::noteDisplay:
    case ObjectKind::presetsDisplay:
        break;
    }
    return kUnknownKind;
}

void xmlGuiEditor::addControl(const VSTGUI::SharedPointer<CControl>& control) {
    // The frame takes over a reference, and leaves it where it has no memory for the control.
    control->remember();
    try {
        frame->addView(control);
    } catch (...) {
        if (!control->isSubview())
            control->forget();
        throw;
    }
}

void xmlGuiEditor::bindValue(CControl* control, std::int32_t id) {
    if (isParameter(id))
        control->setValue(theEffect().getParameter(id));
}

int xmlGuiEditor::buildConstants(ObjectReader& object) {
    double last = 0.0;
    const auto define = [&](const std::string& line) {
        if (line.size() > kMostConstantBytes)
            std::abort();
        const bool isBareName = line.find('=') == std::string::npos;
        const std::string assignment = isBareName ? line + " = " + std::to_string(trunc(last + 1.0)) : line;
        int position = 0;
        if (!exprEvaluate(&object.context()->constants, assignment.c_str(), &position, &last))
            platform::showMessage("Expression parser error", line.c_str());
    };
    const char* const text = object.object()->text;
    for (const std::string_view line : constantsIn(text ? text : ""))
        define(std::string(line));
    return kDone;
}

int xmlGuiEditor::buildBackground(ObjectReader& object) {
    if (!object.has("filename"))
        return kDone;
    CBitmap* const bitmap = object.picture("filename");
    if (object.hasFailed())
        return kPassedOver;
    background = bitmap;
    const int width = trunc(bitmap->getWidth()), height = trunc(bitmap->getHeight());
    if (object.context()->backgroundOnly)
        rect = {0, 0, static_cast<std::int16_t>(height), static_cast<std::int16_t>(width)};
    else
        object.context()->isWindowMissing = !openFrame(width, height, bitmap, object.context()->parent);
    return kDone;
}

int xmlGuiEditor::buildUpdate(ObjectReader& object) {
    const std::int32_t src = object.integer("src"), dst = object.integer("dst");
    if (object.hasFailed())
        return kPassedOver;
    updateLinks.append({src, dst});
    return kDone;
}

int xmlGuiEditor::buildSlider(ObjectReader& object) {
    const double x = object.number("x"), y = object.number("y"), length = object.number("len");
    const std::int32_t id = object.integer("id"), style = object.integer("style");
    const double xOffset = object.number("xoff", x), yOffset = object.number("yoff", y);
    CBitmap* const ground = object.picture("bitmap_bk", background);
    CBitmap* const handle = object.picture("bitmap_handle");
    if (!object.hasFailed() && !ground)
        object.fail(findTag(*object.object(), "bitmap_handle")->value, "Bitmap not found");
    if (object.hasFailed() || !frame)
        return kPassedOver;

    using VSTGUI::CSlider;
    const bool isVertical = style & CSlider::kVertical;
    const double width = handle->getWidth(), height = handle->getHeight();
    const CRect place = isVertical ? placeOf(x, y, width, length) : placeOf(x, y, length, height);
    const double start = isVertical ? y : x;
    const std::int32_t first = trunc(start), last = trunc(start + length - (isVertical ? height : width));
    // The toolkit wants to hear of exactly one direction.
    const std::int32_t direction = isVertical ? CSlider::kVertical : CSlider::kHorizontal;
    const std::int32_t fullStyle = (style & ~(CSlider::kVertical | CSlider::kHorizontal)) | direction;
    const auto slider = VSTGUI::makeOwned<SkinSlider>(place, this, id, first, last, handle, ground,
                                                      CPoint(trunc(xOffset), trunc(yOffset)), fullStyle);
    addControl(slider);
    bindValue(slider, id);
    skinReadDefault(object.kind().name, object.object(), slider, object.context());
    return kDone;
}

int xmlGuiEditor::buildKnob(ObjectReader& object) {
    const CRect place = object.box();
    const std::int32_t id = object.integer("id");
    const bool isFilm = object.flag("stackbmp").value_or(false);
    const double xOffset = object.number("xoff", place.left), yOffset = object.number("yoff", place.top);
    CBitmap* const ground = object.picture("bitmap_bk", background);
    CBitmap* const handle = object.picture("bitmap_handle");
    if (!object.hasFailed() && handle && !ground)
        object.fail(findTag(*object.object(), "bitmap_handle")->value, "Bitmap not found");
    const std::optional<bool> isTransparent = object.flag("transparent");
    if (object.hasFailed() || !frame)
        return kPassedOver;

    const CPoint offset(trunc(xOffset), trunc(yOffset));
    VSTGUI::SharedPointer<CControl> knob;
    if (isFilm) {
        const double imageHeight = place.getHeight();
        const std::int32_t images =
            handle && imageHeight > 0.0 ? trunc(handle->getHeight() / imageHeight) : 0;
        knob = VSTGUI::makeOwned<VSTGUI::CAnimKnob>(place, this, id, images, imageHeight, handle);
    } else {
        knob = VSTGUI::makeOwned<VSTGUI::CKnob>(place, this, id, ground, handle, offset);
    }
    if (isTransparent)
        knob->setTransparency(*isTransparent);
    addControl(knob);
    bindValue(knob, id);
    skinReadDefault(object.kind().name, object.object(), knob, object.context());
    return kDone;
}

int xmlGuiEditor::buildOnOff(ObjectReader& object) {
    const double x = object.number("x"), y = object.number("y");
    const std::int32_t id = object.integer("id");
    CBitmap* const states = object.picture("bitmap_handle", nullptr, kButtonPictureMissing);
    if (object.hasFailed() || !frame)
        return kPassedOver;
    const CRect place = placeOf(x, y, states->getWidth(), states->getHeight() / 2);
    const auto button = VSTGUI::makeOwned<VSTGUI::COnOffButton>(place, this, id, states, 0);
    addControl(button);
    bindValue(button, id);
    skinReadDefault(object.kind().name, object.object(), button, object.context());
    return kDone;
}

int xmlGuiEditor::buildAutoDisplay(ObjectReader& object) {
    const CRect place = object.box();
    const std::int32_t id = object.integer("id"), style = object.integer("style");
    const std::int32_t link = object.integer("link");
    if (!object.hasFailed() && link > numParams())
        object.fail("Error attempting to link a display to an invalid parameter id", kSkinError,
                    platform::MessageIcon::error);
    CBitmap* const ground = object.picture("bitmap_bk");
    if (object.hasFailed() || !frame)
        return kPassedOver;
    const auto display =
        VSTGUI::makeOwned<controls::CParamDisplayLink>(&theEffect(), link, place, id, ground, style);
    skinReadFont(display, "autodisp", object.object(), object.context());
    displayLinks.append(display);
    addControl(display);
    return kDone;
}

int xmlGuiEditor::buildDisplay(ObjectReader& object) {
    const CRect place = object.box();
    const std::int32_t id = object.integer("id");
    return buildText(object, place, id) ? kDone : kPassedOver;
}

int xmlGuiEditor::buildAnyDisplay(ObjectReader& object) {
    object.setMessageName("display");
    controls::CDisplay* const display = buildText(object, object.box(), kAnyDisplayTag);
    if (!display)
        return kPassedOver;
    anyDisplay = display;
    return kDone;
}

controls::CDisplay* xmlGuiEditor::buildText(ObjectReader& object, const CRect& place, std::int32_t tag) {
    const std::int32_t style = object.integer("style");
    CBitmap* const ground = object.picture("bitmap_bk");
    if (object.hasFailed() || !frame)
        return nullptr;
    const auto display = VSTGUI::makeOwned<controls::CDisplay>(place, ground, style);
    skinReadFont(display, "autodisp", object.object(), object.context());
    display->setTag(tag);
    addControl(display);
    return display;
}

int xmlGuiEditor::buildOptionMenu(ObjectReader& object) {
    const CRect place = object.box();
    const std::int32_t id = object.integer("id"), style = object.integer("style");
    CBitmap* const ground = object.picture("bitmap_bk");
    CBitmap* const activeGround = object.picture("bitmap_bk_active");
    if (object.hasFailed() || !frame)
        return kPassedOver;
    const auto menu = VSTGUI::makeOwned<SkinMenu>(place, this, id, ground, activeGround, style);
    addEntries(menu, *object.object(), id);
    if (isParameter(id)) {
        menuIds.append(id);
        menu->showValue(theEffect().getParameter(id) * static_cast<float>(menu->getNbEntries() - 1));
    }
    skinReadFont(menu, "optionmenu", object.object(), object.context());
    addControl(menu);
    return kDone;
}

void xmlGuiEditor::addEntries(COptionMenu* menu, const SkinObject& object, std::int32_t id) {
    const XmlNode* const list = object.node->child;
    if (!list || !base::equalIgnoringCase(list->name, "list"))
        return fillOptionMenu(menu, id);
    for (const XmlNode* entry = list->child; entry; entry = entry->next)
        if (base::equalIgnoringCase(entry->name, "entry"))
            menu->addEntry(entry->text ? entry->text : "");
}

void xmlGuiEditor::fillOptionMenu(COptionMenu* menu, std::int32_t) {
    const auto submenu = VSTGUI::makeOwned<COptionMenu>();
    submenu->addEntry("Subby");
    submenu->addEntry("Subby2");
    for (const char* title : {"You", "must", "add", "your", "menu", "handler"})
        menu->addEntry(title);
    menu->addEntry(submenu, "sub");
    menu->setValue(0.0f);
}

int xmlGuiEditor::buildSkinSelector(ObjectReader& object) {
    const CRect place = object.box();
    const std::int32_t style = object.integer("style");
    CBitmap* const ground = object.picture("bitmap_bk");
    CBitmap* const activeGround = object.picture("bitmap_bk_active");
    if (object.hasFailed() || !frame)
        return kPassedOver;
    const auto menu = VSTGUI::makeOwned<SkinMenu>(place, this, kSkinSelectorTag, ground, activeGround, style);
    for (const SkinName& name : skinNames)
        menu->addEntry(skinTitle(name.text));
    menu->showValue(static_cast<float>(skinNames.count));
    skinReadFont(menu, "optionmenu", object.object(), object.context());
    addControl(menu);
    return kDone;
}

template <class Switch>
int xmlGuiEditor::buildSwitch(ObjectReader& object) {
    const double x = object.number("x"), y = object.number("y");
    const std::int32_t id = object.integer("id");
    const double entries = object.number("entries");
    // Skins of both kinds name the picture's faults alike.
    object.setMessageName("vswitch");
    CBitmap* const images = object.picture("bitmap_handle");
    if (object.hasFailed() || !frame)
        return kPassedOver;
    const double height = images->getHeight() * (1.0 / entries);
    const CRect place = placeOf(x, y, images->getWidth(), height);
    // Without entries nothing is to be seen, and nothing must be drawn at no place.
    const double imageHeight = std::isfinite(height) ? height : 0.0;
    const std::int32_t count = trunc(entries);
    const auto control = VSTGUI::makeOwned<Switch>(place, this, id, count, imageHeight, count, images);
    addControl(control);
    bindValue(control, id);
    skinReadDefault(object.kind().name, object.object(), control, object.context());
    return kDone;
}

int xmlGuiEditor::buildKick(ObjectReader& object) {
    const double x = object.number("x"), y = object.number("y");
    const std::int32_t id = object.integer("id");
    CBitmap* const states = object.picture("bitmap_handle", nullptr, kButtonPictureMissing);
    const std::optional<bool> isTransparent = object.flag("transparent");
    if (object.hasFailed() || !frame)
        return kPassedOver;
    const CRect place = placeOf(x, y, states->getWidth(), states->getHeight() / 2);
    const auto button = VSTGUI::makeOwned<VSTGUI::CKickButton>(place, this, id, states);
    if (isTransparent)
        button->setTransparency(*isTransparent);
    addControl(button);
    return kDone;
}

int xmlGuiEditor::buildAbout(ObjectReader& object) {
    const CRect area = object.box();
    CBitmap* const picture = object.picture("bitmap_pop", nullptr, kButtonPictureMissing);
    if (object.hasFailed() || !frame || !background)
        return kPassedOver;
    const std::int32_t width = trunc(picture->getWidth()), height = trunc(picture->getHeight());
    CRect shown(0, 0, width, height);
    const std::int32_t left = (trunc(background->getWidth()) - width) / 2;
    const std::int32_t top = (trunc(background->getHeight()) - height) / 2;
    shown.offset(left, top);
    const std::int32_t tag = kFirstAboutTag + aboutCount;
    VSTGUI::SharedPointer<VSTGUI::CSplashScreen> box;
    if (aboutCount == 0)
        box = VSTGUI::makeOwned<controls::CAbout>(area, this, tag, picture, shown);
    else
        box = VSTGUI::makeOwned<VSTGUI::CSplashScreen>(area, this, tag, picture, shown);
    if (aboutCount < static_cast<std::int32_t>(std::size(aboutBoxes)))
        aboutBoxes[aboutCount] = box;
    ++aboutCount;
    addControl(box);
    return kDone;
}

int xmlGuiEditor::buildVuMeter(ObjectReader& object) {
    const double x = object.number("x"), y = object.number("y");
    const std::int32_t id = object.integer("id"), lamps = object.integer("leds"),
                       style = object.integer("style");
    CBitmap* const off = object.picture("bitmap_off");
    CBitmap* const on = object.picture("bitmap_on");
    if (object.hasFailed() || !frame)
        return kPassedOver;
    const CRect place = placeOf(x, y, on->getWidth(), on->getHeight());
    // The meter divides by the number of its lamps.
    const auto meter = VSTGUI::makeOwned<VSTGUI::CVuMeter>(place, on, off, lamps == 0 ? 1 : lamps, style);
    // It shows no parameter; the toolkit would give it the first one's id.
    meter->setTag(kNoTag);
    addControl(meter);
    registerMeter(id, meter);
    return kDone;
}

} // namespace skin
