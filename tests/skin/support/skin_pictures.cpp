#include "skin_pictures.h"

#include "vstgui/lib/coffscreencontext.h"

#include <stdexcept>

namespace test {

std::string sizeOf(const VSTGUI::CBitmap* bitmap) {
    if (!bitmap)
        return "none";
    return std::to_string(static_cast<int>(bitmap->getWidth())) + " x " +
           std::to_string(static_cast<int>(bitmap->getHeight()));
}

DrawnFrame::DrawnFrame(VSTGUI::CFrame& frame) {
    const auto context = VSTGUI::COffscreenContext::create({frame.getWidth(), frame.getHeight()});
    if (!context)
        throw std::runtime_error("a frame without a size cannot be drawn");
    context->beginDraw();
    frame.drawRect(context, frame.getViewSize());
    context->endDraw();
    picture_ = context->getBitmap();
}

VSTGUI::CColor DrawnFrame::pixel(int x, int y) const {
    VSTGUI::CColor colour;
    const auto pixels = VSTGUI::owned(VSTGUI::CBitmapPixelAccess::create(picture_));
    if (!pixels->setPosition(static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y)))
        throw std::out_of_range("there is no such pixel");
    pixels->getColor(colour);
    return colour;
}

VSTGUI::CRect DrawnFrame::boundsOf(const VSTGUI::CColor& wanted) const {
    const auto pixels = VSTGUI::owned(VSTGUI::CBitmapPixelAccess::create(picture_));
    VSTGUI::CRect bounds;
    for (std::uint32_t y = 0; y < pixels->getBitmapHeight(); ++y)
        for (std::uint32_t x = 0; x < pixels->getBitmapWidth(); ++x) {
            VSTGUI::CColor colour;
            pixels->setPosition(x, y);
            pixels->getColor(colour);
            if (colour != wanted)
                continue;
            const VSTGUI::CRect place(x, y, x + 1, y + 1);
            bounds = bounds.isEmpty() ? place : bounds.unite(place);
        }
    return bounds;
}

} // namespace test
