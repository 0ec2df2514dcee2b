// Bitmaps that keep a copy on the display: what is drawn, what is sent, and what is kept there.

#include "skin/images.h"
#include "toolkit/toolkit.h"
#include "toolkit/toolkit_window.h"

#include "vstgui/lib/cbitmap.h"
#include "vstgui/lib/cframe.h"
#include "vstgui/lib/coffscreencontext.h"
#include "vstgui/lib/platform/linux/x11platform.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <xcb/xcb.h>

// Xlib defines words that the headers above use, so it comes last.
#include "child_process.h"
#include "virtual_screen.h"

namespace {

using test::Pixel;
using toolkit::DisplayMemory;
using VSTGUI::CBitmap;
using VSTGUI::CColor;
using VSTGUI::CPoint;
using VSTGUI::CRect;

constexpr int kWidth = 200, kHeight = 100, kLeft = 50, kTop = 40;
/// Of a film strip, 4 bytes a pixel.
constexpr int kStripWidth = 60, kStripHeight = 3000;
constexpr std::size_t kStripBytes = 4 * kStripWidth * kStripHeight;
constexpr Pixel kUpper = 0xC08040, kLower = 0x2060A0;

/// Each test has a server of its own, that is gone at its end.
class WindowBitmaps : public testing::Test {
  protected:
    ~WindowBitmaps() override {
        window.close();
        if (screen)
            screen->stopServer();
    }

    void startScreen(int screens = 1) {
        screen = std::make_unique<test::VirtualScreen>("640x480x24", screens);
        setenv("DISPLAY", screen->name().c_str(), 1);
    }

    /// A window with the bitmap as its ground.
    void openWindow(CBitmap* bitmap) {
        const Window parent = XCreateSimpleWindow(screen->display(), screen->root(), kLeft, kTop, kWidth,
                                                  kHeight, 0, 0, 0xFF00FF);
        XMapWindow(screen->display(), parent);
        XSync(screen->display(), False);
        frame = new VSTGUI::CFrame(CRect(0, 0, kWidth, kHeight), nullptr);
        frame->setBackground(bitmap);
        ASSERT_TRUE(window.open(frame, reinterpret_cast<void*>(parent)));
    }

    /// A strip whose upper half has another colour than the lower one.
    static VSTGUI::PlatformBitmapPtr makeStrip() {
        const auto context = VSTGUI::COffscreenContext::create({kStripWidth, kStripHeight});
        context->beginDraw();
        for (const auto& [top, colour] : {std::pair(0, kUpper), std::pair(kStripHeight / 2, kLower)}) {
            context->setFillColor(CColor(static_cast<std::uint8_t>(colour >> 16),
                                         static_cast<std::uint8_t>(colour >> 8),
                                         static_cast<std::uint8_t>(colour)));
            context->drawRect(CRect(0, top, kStripWidth, top + kStripHeight / 2), VSTGUI::kDrawFilled);
        }
        context->endDraw();
        return context->getBitmap()->getPlatformBitmap();
    }

    bool showsPixel(int x, int y, Pixel colour) {
        return test::waitUntil([&, this] {
            toolkit::serveToolkitWindows();
            return screen->pixel(kLeft + x, kTop + y) == colour;
        });
    }

    /// Draws the window anew as often as that, and gives the bytes that it took.
    std::uint64_t bytesToDraw(int times) {
        XSetWindowBackground(screen->display(), childOf(*frame), 0xFF00FF);
        const std::uint64_t before = xcb_total_written(connection());
        for (int i = 0; i < times; ++i) {
            XClearWindow(screen->display(), childOf(*frame));
            XSync(screen->display(), False);
            frame->invalid();
            frame->idle();
            EXPECT_TRUE(showsPixel(10, 10, kUpper));
        }
        return xcb_total_written(connection()) - before;
    }

    static Window childOf(const VSTGUI::CFrame& of) {
        return dynamic_cast<VSTGUI::X11::IX11Frame*>(of.getPlatformFrame())->getX11WindowID();
    }
    static xcb_connection_t* connection() { return VSTGUI::X11::RunLoop::instance().getXcbConnection(); }

    const toolkit::Toolkit toolkit;
    std::unique_ptr<test::VirtualScreen> screen;
    std::shared_ptr<DisplayMemory> memory = std::make_shared<DisplayMemory>(10 * kStripBytes);
    toolkit::ToolkitWindow window;
    VSTGUI::CFrame* frame = nullptr;
};

TEST_F(WindowBitmaps, AreSentOnceAndThenDrawnFromTheDisplay) {
    startScreen();
    const auto bitmap = toolkit::makeWindowBitmap(makeStrip(), memory);
    openWindow(bitmap);
    ASSERT_TRUE(showsPixel(10, 10, kUpper));
    EXPECT_EQ(memory->free(), 9 * kStripBytes);
    EXPECT_LT(bytesToDraw(20), kStripBytes / 10);
    EXPECT_EQ(memory->free(), 9 * kStripBytes) << "one copy for all drawings";
}

TEST_F(WindowBitmaps, ShowTheSamePixelsAsOrdinaryOnes) {
    startScreen();
    const auto folder = std::string(QUILLON_PICTURES);
    for (const char* name : {"squares.png", "glass.png"}) {
        std::vector<Pixel> shown[2];
        for (const bool isCopied : {false, true}) {
            toolkit::PictureAllowance allowance;
            const auto bitmap = skin::loadImage(folder, name, allowance, isCopied ? memory : nullptr);
            openWindow(nullptr);
            frame->setBackgroundColor(CColor(0x20, 0x90, 0x40));
            auto* const view = new VSTGUI::CView(CRect(0, 0, 4, 3));
            view->setBackground(bitmap);
            frame->addView(view);
            ASSERT_TRUE(showsPixel(20, 20, 0x209040));
            for (int y = 0; y < 3; ++y)
                for (int x = 0; x < 4; ++x)
                    shown[isCopied].push_back(screen->pixel(kLeft + x, kTop + y));
            window.close();
        }
        EXPECT_EQ(shown[0], shown[1]) << name;
    }
}

TEST_F(WindowBitmaps, KeepTheirPixelsAndTheirSize) {
    startScreen();
    const auto pixels = makeStrip();
    const auto bitmap = toolkit::makeWindowBitmap(pixels, memory);
    openWindow(bitmap);
    ASSERT_TRUE(showsPixel(10, 10, kUpper));
    EXPECT_EQ(bitmap->getPlatformBitmap(), pixels);
    EXPECT_EQ(bitmap->getWidth(), kStripWidth);
    EXPECT_EQ(bitmap->getHeight(), kStripHeight);
    EXPECT_TRUE(VSTGUI::owned(VSTGUI::CBitmapPixelAccess::create(bitmap)));
}

TEST_F(WindowBitmaps, AreDrawnWithoutACopyBeforeThereIsADisplay) {
    const auto bitmap = toolkit::makeWindowBitmap(makeStrip(), memory);
    const auto context = VSTGUI::COffscreenContext::create({40, 40});
    context->beginDraw();
    bitmap->draw(context, CRect(0, 0, 40, 40), CPoint(0, kStripHeight / 2), 1.0f);
    context->endDraw();
    EXPECT_EQ(memory->free(), 10 * kStripBytes);
    const auto drawn = VSTGUI::owned(VSTGUI::CBitmapPixelAccess::create(context->getBitmap()));
    CColor colour;
    drawn->getColor(colour);
    EXPECT_EQ(colour, CColor(0x20, 0x60, 0xA0));
}

TEST_F(WindowBitmaps, AreNotCopiedForADrawingInMemory) {
    startScreen();
    openWindow(nullptr);
    const auto bitmap = toolkit::makeWindowBitmap(makeStrip(), memory);
    const auto context = VSTGUI::COffscreenContext::create({40, 40});
    context->beginDraw();
    bitmap->draw(context, CRect(0, 0, 40, 40), CPoint(0, 0), 1.0f);
    context->endDraw();
    EXPECT_EQ(memory->free(), 10 * kStripBytes);
}

TEST_F(WindowBitmaps, AreDrawnWithoutACopyWhereTheDisplayMayKeepNoMore) {
    startScreen();
    memory = std::make_shared<DisplayMemory>(kStripBytes - 1);
    const auto bitmap = toolkit::makeWindowBitmap(makeStrip(), memory);
    openWindow(bitmap);
    EXPECT_TRUE(showsPixel(10, 10, kUpper));
    EXPECT_GT(bytesToDraw(2), kStripBytes);
    EXPECT_EQ(memory->free(), kStripBytes - 1);
}

TEST_F(WindowBitmaps, AreDrawnWithoutACopyOnADisplayOfTwoScreens) {
    startScreen(2);
    const auto bitmap = toolkit::makeWindowBitmap(makeStrip(), memory);
    openWindow(bitmap);
    EXPECT_TRUE(showsPixel(10, 10, kUpper));
    EXPECT_EQ(memory->free(), 10 * kStripBytes);
}

TEST_F(WindowBitmaps, GiveTheDisplayItsMemoryBackWhenTheirWindowHasClosed) {
    startScreen();
    openWindow(toolkit::makeWindowBitmap(makeStrip(), memory));
    ASSERT_TRUE(showsPixel(10, 10, kUpper));
    ASSERT_EQ(memory->free(), 9 * kStripBytes);
    window.close();
    EXPECT_EQ(memory->free(), 10 * kStripBytes);
    const std::uint64_t sent = xcb_total_written(connection());
    xcb_flush(connection());
    EXPECT_EQ(xcb_total_written(connection()), sent) << "told at once, not with the next window";
}

TEST_F(WindowBitmaps, AreCopiedAnewToAnotherDisplay) {
    startScreen();
    const auto bitmap = toolkit::makeWindowBitmap(makeStrip(), memory);
    openWindow(bitmap);
    ASSERT_TRUE(showsPixel(10, 10, kUpper));
    screen->stopServer();
    window.close();
    startScreen();
    openWindow(bitmap);
    ASSERT_TRUE(showsPixel(10, 10, kUpper));
    EXPECT_LT(bytesToDraw(20), kStripBytes / 10);
    EXPECT_EQ(memory->free(), 9 * kStripBytes);
}

} // namespace
