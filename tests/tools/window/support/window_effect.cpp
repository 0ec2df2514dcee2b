// An effect with an editor that is easy to know again: one plain window of a colour for each parameter value,
// and a record of what the host has done. Built in several variants.

#include "vst2/vst2.h"

#include <X11/Xlib.h>
#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

using namespace vst2;

namespace {

constexpr int firstWidth = 60, firstHeight = 40, laterWidth = 90;

struct Editor {
    audioMasterCallback host = nullptr;
    Display* display = nullptr;
    Window window = 0;
    float value = 0.0f;
    int turns = 0;
    std::string story;
};

Editor editor;
ERect rect = {0, 0, firstHeight, firstWidth};

/// From black to a full red.
unsigned long colour() {
    return static_cast<unsigned long>(editor.value * 255.0f + 0.5f) << 16;
}

bool open(AEffect* effect, void* parent) {
    editor.story += "open ";
    if (FAILS_TO_OPEN)
        return false;
    editor.display = XOpenDisplay(nullptr);
    if (!editor.display)
        return false;
    if (ASKS_FOR_SIZE) {
        rect.right = laterWidth;
        editor.host(effect, audioMasterSizeWindow, laterWidth, firstHeight, nullptr, 0);
    }
    editor.window = XCreateSimpleWindow(editor.display, reinterpret_cast<Window>(parent), 0, 0,
                                        static_cast<unsigned>(rect.right), firstHeight, 0, 0, 0);
    XMapWindow(editor.display, editor.window);
    XSync(editor.display, False);
    editor.turns = 0;
    return true;
}

/// Draws with the third turn, as editors do that wait for time to pass.
void idle() {
    if (!editor.display || ++editor.turns < 3)
        return;
    XSetWindowBackground(editor.display, editor.window,
                         NEVER_RESTS ? static_cast<unsigned long>(editor.turns) : colour());
    XClearWindow(editor.display, editor.window);
    XSync(editor.display, False);
}

void close() {
    editor.story += "close ";
    if (editor.display)
        XCloseDisplay(editor.display);
    editor.display = nullptr;
}

std::intptr_t dispatcher(AEffect* effect, std::int32_t opcode, std::int32_t, std::intptr_t, void* ptr,
                         float) {
    if (opcode == CRASHES_AT)
        std::raise(SIGSEGV);
    switch (opcode) {
    case effClose:
        delete effect;
        return 1;
    case effEditGetRect:
        *static_cast<ERect**>(ptr) = &rect;
        return 1;
    case effEditOpen:
        return open(effect, ptr);
    case effEditIdle:
        idle();
        return 0;
    case effEditClose:
        close();
        return 0;
    case effGetEffectName:
        std::strcpy(static_cast<char*>(ptr), "Window Effect");
        return 1;
    case effGetParamName:
        std::strcpy(static_cast<char*>(ptr), "Redness");
        return 1;
    default:
        return 0;
    }
}

void setParameter(AEffect*, std::int32_t, float value) {
    editor.value = std::clamp(value, 0.0f, 1.0f);
}

float getParameter(AEffect*, std::int32_t) {
    return editor.value;
}

void process(AEffect*, float**, float**, std::int32_t) {}

} // namespace

extern "C" __attribute__((visibility("default"))) const char* storyOfTheEditor() {
    return editor.story.c_str();
}

extern "C" __attribute__((visibility("default"))) AEffect* VSTPluginMain(audioMasterCallback host) {
    editor.host = host;
    rect.right = firstWidth;
    editor.story.clear();
    auto* effect = new AEffect{};
    effect->magic = kVstMagic;
    effect->dispatcher = dispatcher;
    effect->setParameter = setParameter;
    effect->getParameter = getParameter;
    effect->processReplacing = process;
    effect->numParams = 1;
    effect->numInputs = 2;
    effect->numOutputs = 2;
    effect->flags = effFlagsCanReplacing | (HAS_EDITOR ? effFlagsHasEditor : 0);
    effect->uniqueID = fourCharacterCode("wndw");
    return effect;
}
