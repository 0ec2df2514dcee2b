// A library with a window of the toolkit's, for a test that loads and unloads it.

#include "toolkit/toolkit.h"
#include "toolkit/toolkit_window.h"

#include "vstgui/lib/cframe.h"
#include "vstgui/lib/controls/ctextlabel.h"

#define SHOWN extern "C" __attribute__((visibility("default")))

namespace {

struct Editor {
    toolkit::Toolkit toolkit;
    toolkit::ToolkitWindow window;
};

} // namespace

/// Opens a blue window with a text in it; null if that fails.
SHOWN void* openSample(void* parent) {
    auto* editor = new Editor;
    auto* frame = new VSTGUI::CFrame(VSTGUI::CRect(0, 0, 50, 50), nullptr);
    frame->setBackgroundColor(VSTGUI::kBlueCColor);
    frame->addView(new VSTGUI::CTextLabel(VSTGUI::CRect(0, 0, 40, 12), "sample"));
    if (editor->window.open(frame, parent))
        return editor;
    delete editor;
    return nullptr;
}

SHOWN void serveSample() {
    toolkit::serveToolkitWindows();
}

SHOWN void closeSample(void* editor) {
    delete static_cast<Editor*>(editor);
}
