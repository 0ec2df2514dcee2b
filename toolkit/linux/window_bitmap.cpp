// A bitmap with a copy on the display. Cairo's XCB back end sends a surface of this process's memory whole at
// each drawing, a film strip of 2 MB for one picture of it.

#include "toolkit/toolkit.h"

#include "vstgui/lib/cbitmap.h"
#include "vstgui/lib/coffscreencontext.h"
#include "vstgui/lib/platform/linux/cairobitmap.h"
#include "vstgui/lib/platform/linux/cairographicscontext.h"
#include "vstgui/lib/platform/linux/x11platform.h"

#include <cairo-xcb.h>
#include <utility>
#include <xcb/xcb.h>

namespace toolkit {

namespace {

using VSTGUI::Cairo::ContextHandle;
using VSTGUI::Cairo::SurfaceHandle;

/// Cairo's side of the connection over which `context` draws a window; null if it draws something else.
cairo_device_t* windowDevice(VSTGUI::CDrawContext& context) {
    // Once a window was open, contexts of memory may name its connection too.
    if (dynamic_cast<VSTGUI::COffscreenContext*>(&context))
        return nullptr;
    const auto* drawing =
        dynamic_cast<VSTGUI::CairoGraphicsDeviceContext*>(context.getPlatformDeviceContext().get());
    const auto* device =
        drawing ? dynamic_cast<const VSTGUI::CairoGraphicsDevice*>(&drawing->getDevice()) : nullptr;
    cairo_device_t* const found = device ? device->get() : nullptr;
    return found && cairo_device_get_type(found) == CAIRO_DEVICE_TYPE_XCB ? found : nullptr;
}

/// The one screen of the toolkit's display; null without a display, and if there are several: a window does
/// not tell on which of them it is, and a copy serves one.
xcb_screen_t* onlyScreen(xcb_connection_t* connection) {
    if (!connection || xcb_connection_has_error(connection))
        return nullptr;
    const xcb_setup_t* const setup = xcb_get_setup(connection);
    return xcb_setup_roots_length(setup) == 1 ? xcb_setup_roots_iterator(setup).data : nullptr;
}

/// The same pixels on the display at the other end of `device`; empty if that cannot be.
SurfaceHandle copyOnDisplay(const SurfaceHandle& pixels, cairo_device_t* device) {
    xcb_connection_t* const connection = VSTGUI::X11::RunLoop::instance().getXcbConnection();
    xcb_screen_t* const screen = onlyScreen(connection);
    if (!screen || cairo_surface_get_type(pixels) != CAIRO_SURFACE_TYPE_IMAGE)
        return {};
    // Nothing is drawn on it: a surface is what another one can be made like.
    const SurfaceHandle model(cairo_xcb_surface_create_for_bitmap(connection, screen, screen->root, 1, 1));
    // A window of a display that is lost has another device than the connection of now.
    if (cairo_surface_get_device(model) != device)
        return {};
    SurfaceHandle copy(cairo_surface_create_similar(model, CAIRO_CONTENT_COLOR_ALPHA,
                                                    cairo_image_surface_get_width(pixels),
                                                    cairo_image_surface_get_height(pixels)));
    // What is too large for the display is made in this process's memory.
    if (cairo_surface_get_type(copy) != CAIRO_SURFACE_TYPE_XCB)
        return {};
    const ContextHandle painter(cairo_create(copy));
    cairo_set_operator(painter, CAIRO_OPERATOR_SOURCE);
    cairo_set_source_surface(painter, pixels, 0, 0);
    cairo_paint(painter);
    return cairo_status(painter) == CAIRO_STATUS_SUCCESS ? copy : SurfaceHandle();
}

class WindowBitmap final : public VSTGUI::CBitmap {
  public:
    WindowBitmap(const VSTGUI::PlatformBitmapPtr& pixels, std::shared_ptr<DisplayMemory> memory)
        : CBitmap(pixels), memory_(std::move(memory)) {}
    ~WindowBitmap() noexcept override { dropCopy(); }

    void draw(VSTGUI::CDrawContext* context, const VSTGUI::CRect& rect, const VSTGUI::CPoint& offset,
              float alpha) override {
        if (CBitmap* const copy = copyFor(*context))
            copy->draw(context, rect, offset, alpha);
        else
            CBitmap::draw(context, rect, offset, alpha);
    }

  private:
    /// What to draw in a window instead; null elsewhere, and where no copy can be kept.
    CBitmap* copyFor(VSTGUI::CDrawContext& context) {
        cairo_device_t* const device = windowDevice(context);
        if (!device)
            return nullptr;
        if (copy_ && device != device_)
            dropCopy();
        if (!copy_)
            makeCopy(device);
        return copy_.get();
    }

    void makeCopy(cairo_device_t* device) {
        const auto pixels = getPlatformBitmap().cast<VSTGUI::Cairo::Bitmap>();
        if (!pixels)
            return;
        const std::size_t bytes =
            4 * static_cast<std::size_t>(pixels->getSize().x) * static_cast<std::size_t>(pixels->getSize().y);
        if (!memory_->take(bytes))
            return;
        const SurfaceHandle surface = copyOnDisplay(pixels->getSurface(), device);
        if (!surface) {
            memory_->giveBack(bytes);
            return;
        }
        // Asked for its size it says 0 by 0, as it is no image of memory; so only draw() knows it.
        const auto onDisplay = VSTGUI::makeOwned<VSTGUI::Cairo::Bitmap>(surface);
        onDisplay->setScaleFactor(pixels->getScaleFactor());
        copy_ = VSTGUI::makeOwned<CBitmap>(onDisplay);
        device_ = device;
        bytes_ = bytes;
    }

    void dropCopy() {
        copy_ = nullptr;
        memory_->giveBack(std::exchange(bytes_, 0));
    }

    std::shared_ptr<DisplayMemory> memory_;
    VSTGUI::SharedPointer<CBitmap> copy_;
    cairo_device_t* device_ = nullptr; ///< of the copy, which keeps it alive
    std::size_t bytes_ = 0;            ///< taken for the copy
};

} // namespace

VSTGUI::SharedPointer<VSTGUI::CBitmap> makeWindowBitmap(const VSTGUI::PlatformBitmapPtr& pixels,
                                                        std::shared_ptr<DisplayMemory> memory) {
    return VSTGUI::makeOwned<WindowBitmap>(pixels, std::move(memory));
}

} // namespace toolkit
