// The toolkit's windows as a host of this system sees them, and what an editor asks of the system for them.

#include "support/plain_window.h"
#include "toolkit/toolkit.h"
#include "toolkit/toolkit_window.h"

#include "vstgui/lib/cframe.h"
#include "vstgui/lib/controls/cknob.h"
#include "vstgui/lib/controls/icontrollistener.h"
#include "vstgui/lib/events.h"
#include "vstgui/lib/platform/platform_win32.h"
#include "vstgui/lib/platform/platformfactory.h"
#include "vstgui/lib/platform/win32/win32factory.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <new>
#include <ole2.h>
#include <thread>
#include <vector>

namespace {

thread_local bool isMemoryOut = false;

} // namespace

// What this program has for new, with an end of memory that a test can bring about.

void* operator new(std::size_t size) {
    if (void* const block = isMemoryOut ? nullptr : std::malloc(size))
        return block;
    throw std::bad_alloc();
}

void operator delete(void* block) noexcept {
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}

namespace {

using test::childrenOf;
using test::PlainWindow;
using toolkit::Toolkit;
using toolkit::ToolkitWindow;
using VSTGUI::CFrame;
using VSTGUI::CPoint;
using VSTGUI::CRect;

/// Whether COM is ready for use on this thread.
bool hasCom() {
    APTTYPE type = {};
    APTTYPEQUALIFIER qualifier = {};
    return CoGetApartmentType(&type, &qualifier) == S_OK;
}

TEST(AToolkit, MakesComReadyAndGivesItBack) {
    std::thread([] {
        ASSERT_FALSE(hasCom());
        {
            const Toolkit first;
            EXPECT_TRUE(hasCom());
            {
                const Toolkit second;
            }
            EXPECT_TRUE(hasCom()) << "one still needs it";
        }
        EXPECT_FALSE(hasCom());
    }).join();
}

TEST(AToolkit, LeavesTheComOfTheHostAsItWas) {
    for (const DWORD kind : {COINIT_APARTMENTTHREADED, COINIT_MULTITHREADED}) {
        std::thread([kind] {
            ASSERT_EQ(CoInitializeEx(nullptr, kind), S_OK);
            {
                const Toolkit toolkit;
            }
            EXPECT_TRUE(hasCom()) << kind;
            CoUninitialize();
            EXPECT_FALSE(hasCom()) << kind;
        }).join();
    }
}

TEST(AToolkit, MayBeGivenBackOnAnotherThread) {
    auto toolkit = std::make_unique<Toolkit>();
    std::thread([&] {
        ASSERT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
        toolkit.reset();
        EXPECT_TRUE(hasCom());
        CoUninitialize();
    }).join();
    OleUninitialize();
}

TEST(AToolkit, IsReadyForAllWhoStartAtOnce) {
    constexpr int starters = 4;
    for (int round = 0; round < 25; ++round) {
        // No std::barrier: here one of those who wait for it may never be woken.
        std::atomic<int> waiting = 0;
        std::atomic<int> ready = 0;
        std::vector<std::thread> threads;
        for (int i = 0; i < starters; ++i)
            threads.emplace_back([&] {
                ++waiting;
                while (waiting < starters)
                    std::this_thread::yield();
                const Toolkit toolkit;
                ready += VSTGUI::getPlatformFactory().asWin32Factory()->getD2DFactory() != nullptr;
            });
        for (std::thread& thread : threads)
            thread.join();
        EXPECT_EQ(ready, starters) << round;
    }
}

/// Counts the views that live.
class CountedView final : public VSTGUI::CView {
  public:
    explicit CountedView(int& count) : CView(CRect(0, 0, 1, 1)), count_(count) { ++count_; }
    ~CountedView() noexcept override { --count_; }

  private:
    int& count_;
};

/// Hands every change of a control on.
class Listener final : public VSTGUI::IControlListener {
  public:
    void valueChanged(VSTGUI::CControl*) override {
        ++changes;
        if (action)
            action();
    }

    int changes = 0;
    std::function<void()> action;
};

class ToolkitWindows : public testing::Test {
  protected:
    static constexpr int width = 200, height = 100;

    ~ToolkitWindows() override { window.close(); }

    CFrame* openFrame(HWND parent) {
        auto* const frame = new CFrame(CRect(0, 0, width, height), nullptr);
        frame->addView(new CountedView(views));
        EXPECT_TRUE(window.open(frame, parent));
        return frame;
    }

    static SIZE sizeOf(HWND window) {
        RECT place = {};
        GetWindowRect(window, &place);
        return {place.right - place.left, place.bottom - place.top};
    }
    static void expectSize(HWND window, int wide, int high, const char* what) {
        EXPECT_EQ(sizeOf(window).cx, wide) << what;
        EXPECT_EQ(sizeOf(window).cy, high) << what;
    }

    Toolkit toolkit;
    Listener listener;
    int views = 0;
    ToolkitWindow window;
};

TEST_F(ToolkitWindows, DoNotOpenInAWindowThatIsNone) {
    PlainWindow gone(0, 0, 10, 10);
    const HWND late = gone.handle();
    gone.destroy();
    for (const HWND nonsense : {static_cast<HWND>(nullptr), late}) {
        auto* const frame = new CFrame(CRect(0, 0, width, height), nullptr);
        frame->addView(new CountedView(views));
        EXPECT_FALSE(window.open(frame, nonsense));
        frame->addView(new CountedView(views));
        frame->idle();
        window.fitContainers(10, 10);
        EXPECT_EQ(views, 2);
        window.close();
        EXPECT_EQ(views, 0);
    }
}

/// A view for which there is never enough memory.
class Greedy final : public VSTGUI::CView {
  public:
    using CView::CView;
    VSTGUI::CMouseEventResult onMouseDown(CPoint&, const VSTGUI::CButtonState&) override {
        ++presses;
        throw std::bad_alloc();
    }
    int presses = 0;
};

TEST_F(ToolkitWindows, OutliveAMessageThatMemoryIsTooShortFor) {
    const PlainWindow parent(0, 0, width, height);
    CFrame* const frame = openFrame(parent.handle());
    auto* const greedy = new Greedy(CRect(20, 20, 60, 60));
    frame->addView(greedy);
    const HWND own = childrenOf(parent.handle()).front();
    for (int presses = 1; presses <= 2; ++presses) {
        EXPECT_EQ(SendMessageW(own, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(30, 30)), 0);
        EXPECT_EQ(greedy->presses, presses);
    }
    window.close();
    EXPECT_EQ(views, 0);
}

TEST_F(ToolkitWindows, TakeBackEveryFrameTheyWereGiven) {
    const PlainWindow parent(0, 0, width, height);
    openFrame(parent.handle());
    openFrame(parent.handle());
    EXPECT_EQ(childrenOf(parent.handle()).size(), 2u);
    window.close();
    window.close();
    EXPECT_EQ(childrenOf(parent.handle()).size(), 0u);
    EXPECT_EQ(views, 0);
}

TEST_F(ToolkitWindows, MayBeClosedFromInsideTheirOwnEvents) {
    const PlainWindow parent(0, 0, width, height);
    CFrame* const frame = openFrame(parent.handle());
    frame->addView(new VSTGUI::CKnob(CRect(20, 20, 60, 60), &listener, 7, nullptr, nullptr));
    const HWND own = childrenOf(parent.handle()).front();
    int viewsInside = 0;
    listener.action = [&] {
        window.close();
        viewsInside = views;
        EXPECT_FALSE(IsWindowVisible(own));
    };
    SendMessageW(own, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(25, 40));
    SendMessageW(own, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(25, 30));
    EXPECT_EQ(listener.changes, 1);
    EXPECT_EQ(viewsInside, 1);
    EXPECT_EQ(views, 0);
    EXPECT_FALSE(IsWindow(own));
}

TEST_F(ToolkitWindows, WaitForTheOutermostOfTheirEvents) {
    const PlainWindow parent(0, 0, width, height);
    CFrame* const frame = openFrame(parent.handle());
    frame->addView(new VSTGUI::CKnob(CRect(20, 20, 60, 60), &listener, 7, nullptr, nullptr));
    const HWND own = childrenOf(parent.handle()).front();
    listener.action = [&] {
        listener.action = nullptr;
        window.close();
        // As the loop of a menu may bring one.
        SendMessageW(own, WM_MOUSELEAVE, 0, 0);
        EXPECT_EQ(views, 1) << "the event outside is not over";
    };
    SendMessageW(own, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(25, 40));
    SendMessageW(own, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(25, 30));
    EXPECT_EQ(views, 0);
}

TEST(AToolkitWindow, MayGoWithTheLastEditorOfAllInsideItsOwnEvent) {
    const PlainWindow parent(0, 0, 100, 100);
    Listener listener;
    for (int round = 0; round < 2; ++round) {
        auto toolkit = std::make_unique<Toolkit>();
        auto window = std::make_unique<ToolkitWindow>();
        auto* const frame = new CFrame(CRect(0, 0, 100, 100), nullptr);
        frame->addView(new VSTGUI::CKnob(CRect(20, 20, 60, 60), &listener, 7, nullptr, nullptr));
        ASSERT_TRUE(window->open(frame, parent.handle()));
        const HWND own = childrenOf(parent.handle()).front();
        listener.action = [&] {
            window.reset();
            toolkit.reset();
        };
        SendMessageW(own, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(25, 40));
        SendMessageW(own, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(25, 30));
        EXPECT_EQ(toolkit, nullptr);
        EXPECT_FALSE(IsWindow(own));
    }
}

/// While it lives, this program's memory is at its end.
class NoMemory {
  public:
    NoMemory() { isMemoryOut = true; }
    ~NoMemory() { isMemoryOut = false; }
    NoMemory(const NoMemory&) = delete;
    NoMemory& operator=(const NoMemory&) = delete;
};

TEST(AToolkitWindow, KeepsTheToolkitInUseWhereMemoryIsTooShortToWaitForTheEndOfItsEvent) {
    const PlainWindow parent(0, 0, 100, 100);
    Listener listener;
    auto toolkit = std::make_unique<Toolkit>();
    auto window = std::make_unique<ToolkitWindow>();
    auto* const frame = new CFrame(CRect(0, 0, 100, 100), nullptr);
    frame->addView(new VSTGUI::CKnob(CRect(20, 20, 60, 60), &listener, 7, nullptr, nullptr));
    ASSERT_TRUE(window->open(frame, parent.handle()));
    const HWND own = childrenOf(parent.handle()).front();
    const auto* const factory = VSTGUI::getPlatformFactory().asWin32Factory();
    listener.action = [&] {
        {
            const NoMemory isShort;
            window->close();
        }
        window.reset();
        toolkit.reset();
    };
    SendMessageW(own, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(25, 40));
    SendMessageW(own, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(25, 30));
    EXPECT_EQ(listener.changes, 1);
    EXPECT_TRUE(IsWindow(own)) << "it has nobody to take it away";
    EXPECT_FALSE(IsWindowVisible(own));
    // Another editor comes and goes; the frame that stays still needs what the toolkit has.
    {
        const Toolkit next;
    }
    ASSERT_EQ(VSTGUI::getPlatformFactory().asWin32Factory(), factory);
    EXPECT_NE(factory->getD2DFactory(), nullptr);
    InvalidateRect(own, nullptr, FALSE);
    SendMessageW(own, WM_PAINT, 0, 0);
}

TEST_F(ToolkitWindows, PaintOneWindowAtATimeInsideALongGesture) {
    const PlainWindow parent(0, 0, width, height);
    openFrame(parent.handle());
    const HWND own = childrenOf(parent.handle()).front();
    test::serveMessages();
    ASSERT_FALSE(GetUpdateRect(own, nullptr, FALSE));
    InvalidateRect(own, nullptr, FALSE);
    PostMessageW(own, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 5));
    toolkit::paintToolkitWindows();
    EXPECT_FALSE(GetUpdateRect(own, nullptr, FALSE));
    MSG message;
    EXPECT_TRUE(PeekMessageW(&message, own, WM_LBUTTONDOWN, WM_LBUTTONDOWN, PM_REMOVE))
        << "which takes no input";
    toolkit::paintToolkitWindows();
}

// The windows around a frame that changes its size

using Containers = ToolkitWindows;

TEST_F(Containers, GrowAndShrinkWithTheFrame) {
    const PlainWindow parent(0, 0, width, height);
    openFrame(parent.handle());
    for (const int size : {300, 120}) {
        window.fitContainers(size, size + 10);
        expectSize(parent.handle(), size, size + 10, "the container");
        expectSize(childrenOf(parent.handle()).front(), size, size + 10, "the frame's window");
    }
}

TEST_F(Containers, KeepTheirBordersUpToTheWidthOfTwoDialogFrames) {
    const int frames = 2 * GetSystemMetrics(SM_CYDLGFRAME);
    ASSERT_GT(frames, 1);
    const PlainWindow outermost(0, 0, width + 2 * frames, height + 40);
    const PlainWindow around(0, 0, width + frames, height + 30, outermost.handle());
    const PlainWindow inside(0, 0, width + 1, height, around.handle());
    openFrame(inside.handle());
    window.fitContainers(300, 310);
    expectSize(childrenOf(inside.handle()).front(), 300, 310, "the frame's window");
    expectSize(inside.handle(), 301, 310, "a border of one pixel");
    expectSize(around.handle(), 300 + frames, 340, "a border of two dialog frames");
    expectSize(outermost.handle(), width + 2 * frames, height + 40, "further than that nobody goes");
}

TEST_F(Containers, WithMoreToShowStayAsTheyAre) {
    for (const SIZE more : {SIZE{81, 0}, SIZE{0, 81}}) {
        const PlainWindow around(0, 0, width + more.cx, height + more.cy);
        const PlainWindow inside(0, 0, width, height, around.handle());
        ToolkitWindow other;
        ASSERT_TRUE(other.open(new CFrame(CRect(0, 0, width, height), nullptr), inside.handle()));
        other.fitContainers(300, 310);
        expectSize(inside.handle(), 300, 310, "the container");
        expectSize(around.handle(), width + more.cx, height + more.cy, "the host's main window");
    }
}

TEST_F(Containers, TakeASmallerOneForOneOfTheSameSize) {
    const PlainWindow around(0, 0, width - 50, height - 50);
    const PlainWindow inside(0, 0, width, height, around.handle());
    openFrame(inside.handle());
    window.fitContainers(300, 310);
    expectSize(around.handle(), 300, 310, "a container that cuts its content");
}

TEST_F(Containers, EndWhereAHostKeepsItsDocuments) {
    const PlainWindow documents(0, 0, width + 10, height + 10, nullptr, L"MDIClient");
    const PlainWindow inside(0, 0, width, height, documents.handle());
    openFrame(inside.handle());
    window.fitContainers(300, 310);
    expectSize(inside.handle(), 300, 310, "the document");
    expectSize(documents.handle(), width + 10, height + 10, "the room for documents");
}

} // namespace
