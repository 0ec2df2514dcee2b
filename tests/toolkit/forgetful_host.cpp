// A host that opens a window, shows it, and ends without closing it.
//
//   forgetful_host PARENT    a window's number; says "shown" when it has drawn for a while, then ends

#include "platform/clock.h"
#include "toolkit/toolkit.h"
#include "toolkit/toolkit_window.h"

#include "vstgui/lib/ccolor.h"
#include "vstgui/lib/cframe.h"

#include <cstdio>
#include <cstdlib>

namespace {

toolkit::ToolkitWindow* forgotten = nullptr;

} // namespace

int main(int count, char** arguments) {
    const toolkit::Toolkit toolkit;
    auto* frame = new VSTGUI::CFrame(VSTGUI::CRect(0, 0, 50, 50), nullptr);
    frame->setBackgroundColor(VSTGUI::kBlueCColor);
    forgotten = new toolkit::ToolkitWindow;
    void* const parent =
        count == 2 ? reinterpret_cast<void*>(std::strtoul(arguments[1], nullptr, 0)) : nullptr;
    if (!forgotten->open(frame, parent))
        return 2;
    for (int turn = 0; turn < 20; ++turn) {
        toolkit::serveToolkitWindows();
        platform::sleepMilliseconds(10);
    }
    std::puts("shown");
    return 0;
}
