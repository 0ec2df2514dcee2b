#include "recorded_toolkit.h"

#include "toolkit/toolkit.h"

#include "vstgui/lib/cdrawcontext.h"
#include "vstgui/lib/cgraphicspath.h"
#include "vstgui/lib/cgraphicstransform.h"
#include "vstgui/lib/controls/coptionmenu.h"
#include "vstgui/lib/dragging.h"
#include "vstgui/lib/platform/iplatformbitmap.h"
#include "vstgui/lib/platform/iplatformfileselector.h"
#include "vstgui/lib/platform/iplatformfont.h"
#include "vstgui/lib/platform/iplatformframe.h"
#include "vstgui/lib/platform/iplatformgradient.h"
#include "vstgui/lib/platform/iplatformgraphicsdevice.h"
#include "vstgui/lib/platform/iplatformopenglview.h"
#include "vstgui/lib/platform/iplatformoptionmenu.h"
#include "vstgui/lib/platform/iplatformresourceinputstream.h"
#include "vstgui/lib/platform/iplatformstring.h"
#include "vstgui/lib/platform/iplatformtextedit.h"
#include "vstgui/lib/platform/iplatformtimer.h"
#include "vstgui/lib/platform/iplatformviewlayer.h"
#include "vstgui/lib/platform/platformfactory.h"

#include <map>
#include <memory>

namespace VSTGUI {

/// The toolkit's own, which its headers do not show.
void setPlatformFactory(PlatformFactoryPtr&& factory);

} // namespace VSTGUI

namespace test {

using namespace VSTGUI;

namespace {

int measuredTexts = 0;

class Device final : public IPlatformGraphicsDevice {
  public:
    PlatformGraphicsDeviceContextPtr createBitmapContext(const PlatformBitmapPtr&) const override {
        return nullptr;
    }
};

/// Writes a drawing.
class Recorder final : public IPlatformGraphicsDeviceContext {
  public:
    explicit Recorder(Drawing& drawing) : drawing_(drawing) {}

    bool drawLine(LinePair line) const override {
        drawing_.lines.push_back({line.first, line.second, drawing_.frameColour});
        drawing_.order.emplace_back("line");
        return true;
    }
    bool drawRect(CRect area, PlatformGraphicsDrawStyle style) const override {
        const bool filled = style != PlatformGraphicsDrawStyle::Stroked;
        drawing_.boxes.push_back({area, filled, filled ? drawing_.fillColour : drawing_.frameColour});
        drawing_.order.emplace_back("box");
        return true;
    }
    void setFillColor(CColor colour) const override { drawing_.fillColour = colour; }
    void setFrameColor(CColor colour) const override { drawing_.frameColour = colour; }
    void drawText(const Text& text) const {
        drawing_.texts.push_back(text);
        drawing_.order.emplace_back("text");
    }

    const IPlatformGraphicsDevice& getDevice() const override { return device_; }
    PlatformGraphicsPathFactoryPtr getGraphicsPathFactory() const override { return nullptr; }
    bool beginDraw() const override { return true; }
    bool endDraw() const override { return true; }
    bool drawLines(const LineList&) const override { return unexpected("lines"); }
    bool drawPolygon(const PointList&, PlatformGraphicsDrawStyle) const override {
        return unexpected("polygon");
    }
    bool drawArc(CRect, double, double, PlatformGraphicsDrawStyle) const override {
        return unexpected("arc");
    }
    bool drawEllipse(CRect, PlatformGraphicsDrawStyle) const override { return unexpected("ellipse"); }
    bool drawPoint(CPoint, CColor) const override { return unexpected("point"); }
    bool drawBitmap(IPlatformBitmap&, CRect, CPoint, double, BitmapInterpolationQuality) const override {
        return unexpected("bitmap");
    }
    bool clearRect(CRect) const override { return unexpected("clear"); }
    bool drawGraphicsPath(IPlatformGraphicsPath&, PlatformGraphicsPathDrawMode,
                          TransformMatrix*) const override {
        return unexpected("path");
    }
    bool fillLinearGradient(IPlatformGraphicsPath&, const IPlatformGradient&, CPoint, CPoint, bool,
                            TransformMatrix*) const override {
        return unexpected("gradient");
    }
    bool fillRadialGradient(IPlatformGraphicsPath&, const IPlatformGradient&, CPoint, CCoord, CPoint, bool,
                            TransformMatrix*) const override {
        return unexpected("gradient");
    }
    void saveGlobalState() const override {}
    void restoreGlobalState() const override {}
    void setLineStyle(const CLineStyle&) const override {}
    void setLineWidth(CCoord) const override {}
    void setDrawMode(CDrawMode) const override {}
    void setClipRect(CRect) const override {}
    void setGlobalAlpha(double) const override {}
    void setTransformMatrix(const TransformMatrix&) const override {}
    const IPlatformGraphicsDeviceContextBitmapExt* asBitmapExt() const override { return nullptr; }

  private:
    bool unexpected(const char* what) const {
        drawing_.order.emplace_back(what);
        return true;
    }

    Drawing& drawing_;
    Device device_;
};

class RecordedString final : public IPlatformString {
  public:
    explicit RecordedString(UTF8StringPtr text) { RecordedString::setUTF8String(text); }
    void setUTF8String(UTF8StringPtr text) override { text_ = text ? text : ""; }
    const std::string& text() const { return text_; }

  private:
    std::string text_;
};

/// Letters without any width and 2 pixels high, so that the toolkit puts a centred text's start at the middle
/// of its rectangle and one pixel below.
class RecordedFont final : public IPlatformFont, public IFontPainter {
  public:
    RecordedFont(std::string name, std::int32_t style) : name_(std::move(name)), style_(style) {}

    double getAscent() const override { return -1; }
    double getDescent() const override { return -1; }
    double getLeading() const override { return -1; }
    double getCapHeight() const override { return 2; }
    const IFontPainter* getPainter() const override { return this; }

    void drawString(const PlatformGraphicsDeviceContextPtr& context, IPlatformString* string,
                    const CPoint& start, const CColor& colour, bool antialias) const override {
        const auto& text = dynamic_cast<RecordedString&>(*string).text();
        dynamic_cast<Recorder&>(*context).drawText(
            {text, CPoint(start.x, start.y - 1), colour, name_, style_, antialias});
    }
    CCoord getStringWidth(const PlatformGraphicsDeviceContextPtr&, IPlatformString*, bool) const override {
        ++measuredTexts;
        return 0;
    }

  private:
    std::string name_;
    std::int32_t style_;
};

/// Never due.
class StillTimer final : public IPlatformTimer {
  public:
    bool start(std::uint32_t) override { return true; }
    bool stop() override { return true; }
};

std::map<IPlatformFrameCallback*, RecordedFrame*>& openFrames() {
    static std::map<IPlatformFrameCallback*, RecordedFrame*> frames;
    return frames;
}

class RecordedMenu final : public IPlatformOptionMenu {
  public:
    explicit RecordedMenu(RecordedFrame& frame) : frame_(frame) {}

    void popup(COptionMenu* menu, const Callback& callback) override {
        OpenedMenu opened;
        for (const auto& item : *menu->getItems())
            opened.entries.push_back(item->getTitle().getString());
        opened.place = menu->getViewSize().getTopLeft();
        // The toolkit marks an entry before anybody has chosen.
        if (menu->isCheckStyle())
            menu->checkEntryAlone(0);
        for (const auto& item : *menu->getItems())
            if (item->isChecked())
                opened.ticked.push_back(item->getTitle().getString());
        // The toolkit keeps the menu for its callback.
        opened.choose = [callback, menu](std::int32_t index) { callback(menu, {menu, index}); };
        opened.dismiss = [callback, menu] { callback(menu, {nullptr, -1}); };
        if (frame_.onMenu)
            frame_.onMenu(opened);
        else
            opened.dismiss();
    }

  private:
    RecordedFrame& frame_;
};

class NoWindow final : public IPlatformFrame {
  public:
    explicit NoWindow(IPlatformFrameCallback* callback) : IPlatformFrame(callback) {}

    SharedPointer<IPlatformOptionMenu> createPlatformOptionMenu() override {
        return makeOwned<RecordedMenu>(*openFrames().at(frame));
    }

    bool getGlobalPosition(CPoint&) const override { return false; }
    bool setSize(const CRect&) override { return true; }
    bool getSize(CRect&) const override { return false; }
    bool getCurrentMousePosition(CPoint&) const override { return false; }
    bool getCurrentMouseButtons(CButtonState&) const override { return false; }
    bool getCurrentModifiers(Modifiers&) const override { return false; }
    bool setMouseCursor(CCursorType) override { return true; }
    bool invalidRect(const CRect&) override { return true; }
    bool scrollRect(const CRect&, const CPoint&) override { return false; }
    bool showTooltip(const CRect&, const char*) override { return false; }
    bool hideTooltip() override { return false; }
    void* getPlatformRepresentation() const override { return nullptr; }
    SharedPointer<IPlatformTextEdit> createPlatformTextEdit(IPlatformTextEditCallback*) override {
        return nullptr;
    }
    SharedPointer<IPlatformViewLayer> createPlatformViewLayer(IPlatformViewLayerDelegate*,
                                                              IPlatformViewLayer*) override {
        return nullptr;
    }
    SharedPointer<IPlatformOpenGLView> createPlatformOpenGLView() override { return nullptr; }
    DragResult doDrag(IDataPackage*, const CPoint&, CBitmap*) override { return kDragError; }
    bool doDrag(const DragDescription&, const SharedPointer<IDragCallback>&) override { return false; }
    PlatformType getPlatformType() const override { return PlatformType::kDefaultNative; }
    void onFrameClosed() override {}
    Optional<UTF8String> convertCurrentKeyEventToText() override { return {}; }
    bool setupGenericOptionMenu(bool, GenericOptionMenuTheme*) override { return false; }
};

class NoDevices final : public IPlatformGraphicsDeviceFactory {
  public:
    PlatformGraphicsDevicePtr getDeviceForScreen(ScreenInfo::Identifier) const override { return nullptr; }
};

class RecordedFactory final : public IPlatformFactory {
  public:
    PlatformFramePtr createFrame(IPlatformFrameCallback* frame, const CRect&, void*, PlatformType,
                                 IPlatformFrameConfig*) const noexcept override {
        return makeOwned<NoWindow>(frame);
    }
    PlatformFontPtr createFont(const UTF8String& name, const CCoord& size,
                               const std::int32_t& style) const noexcept override {
        return makeOwned<RecordedFont>(name.getString() + " " + std::to_string(static_cast<int>(size)),
                                       style);
    }
    PlatformStringPtr createString(UTF8StringPtr text) const noexcept override {
        return makeOwned<RecordedString>(text);
    }
    PlatformTimerPtr createTimer(IPlatformTimerCallback*) const noexcept override {
        return makeOwned<StillTimer>();
    }
    const IPlatformGraphicsDeviceFactory& getGraphicsDeviceFactory() const noexcept override {
        return devices_;
    }

    std::uint64_t getTicks() const noexcept override { return 0; }
    bool getAllFontFamilies(const FontFamilyCallback&) const noexcept override { return false; }
    PlatformBitmapPtr createBitmap(const CPoint&) const noexcept override { return nullptr; }
    PlatformBitmapPtr createBitmap(const CResourceDescription&) const noexcept override { return nullptr; }
    PlatformBitmapPtr createBitmapFromPath(UTF8StringPtr) const noexcept override { return nullptr; }
    PlatformBitmapPtr createBitmapFromMemory(const void*, std::uint32_t) const noexcept override {
        return nullptr;
    }
    PNGBitmapBuffer createBitmapMemoryPNGRepresentation(const PlatformBitmapPtr&) const noexcept override {
        return {};
    }
    PlatformResourceInputStreamPtr
    createResourceInputStream(const CResourceDescription&) const noexcept override {
        return nullptr;
    }
    bool setClipboard(const DataPackagePtr&) const noexcept override { return false; }
    DataPackagePtr getClipboard() const noexcept override { return nullptr; }
    PlatformGradientPtr createGradient() const noexcept override { return nullptr; }
    PlatformFileSelectorPtr createFileSelector(PlatformFileSelectorStyle,
                                               IPlatformFrame*) const noexcept override {
        return nullptr;
    }
    const LinuxFactory* asLinuxFactory() const noexcept override { return nullptr; }
    const MacFactory* asMacFactory() const noexcept override { return nullptr; }
    const Win32Factory* asWin32Factory() const noexcept override { return nullptr; }

  private:
    NoDevices devices_;
};

} // namespace

std::vector<std::string> Drawing::words() const {
    std::vector<std::string> all;
    for (const Text& text : texts)
        all.push_back(text.text);
    return all;
}

void useRecordedToolkit() {
    static const bool done = [] {
        const toolkit::Toolkit toolkit;
        setPlatformFactory(std::make_unique<RecordedFactory>());
        return true;
    }();
    (void)done;
}

Drawing drawingOf(CView& view) {
    Drawing drawing;
    const auto context =
        makeOwned<CDrawContext>(std::make_shared<Recorder>(drawing), CRect(-9999, -9999, 9999, 9999), 1);
    measuredTexts = 0;
    view.draw(context);
    drawing.textsMeasured = measuredTexts;
    return drawing;
}

RecordedFrame::RecordedFrame(const CRect& size) : frame_(nullptr) {
    useRecordedToolkit();
    frame_ = new CFrame(size, nullptr);
    openFrames()[frame_] = this;
    frame_->open(this, PlatformType::kDefaultNative);
    // A window that is not the active one gives nobody the focus.
    static_cast<IPlatformFrameCallback*>(frame_)->platformOnActivate(true);
}

RecordedFrame::~RecordedFrame() {
    close();
}

void RecordedFrame::close() {
    if (!frame_)
        return;
    openFrames().erase(frame_);
    frame_->close();
    frame_ = nullptr;
}

bool RecordedFrame::press(CPoint where, MouseEventButtonState held, Modifiers modifiers,
                          std::uint32_t clicks) {
    MouseDownEvent event(where, held);
    event.modifiers = modifiers;
    event.clickCount = clicks;
    frame_->dispatchEvent(event);
    return event.consumed;
}

bool RecordedFrame::move(CPoint where, MouseEventButtonState held, Modifiers modifiers) {
    MouseMoveEvent event(where, held);
    event.modifiers = modifiers;
    frame_->dispatchEvent(event);
    return event.consumed;
}

bool RecordedFrame::release(CPoint where, MouseEventButtonState heldBefore) {
    MouseUpEvent event(where, heldBefore);
    frame_->dispatchEvent(event);
    return event.consumed;
}

bool RecordedFrame::click(CPoint where, MouseButton button, Modifiers modifiers) {
    const bool taken = press(where, button, modifiers);
    release(where, button);
    return taken;
}

bool RecordedFrame::wheel(CPoint where, double distance) {
    MouseWheelEvent event;
    event.mousePosition = where;
    event.deltaY = distance;
    frame_->dispatchEvent(event);
    return event.consumed;
}

bool RecordedFrame::key(VirtualKey key) {
    KeyboardEvent event;
    event.virt = key;
    frame_->dispatchEvent(event);
    return event.consumed;
}

MouseEventButtonState both(MouseButton one, MouseButton other) {
    MouseEventButtonState state(one);
    state.add(other);
    return state;
}

} // namespace test
