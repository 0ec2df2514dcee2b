// Opens the editor of a library and closes the effect only when the process ends, as a host does whose
// plug-ins belong to a static object:
//
//   late_host LIBRARY window|effect
//
// "window" closes the editor before the effect. Exits with 0; with 2 if the editor does not open.
#include "vst2/vst2.h"

#include <X11/Xlib.h>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>

namespace {

using namespace vst2;

AEffect* effect = nullptr;
bool closesWindow = false;

std::intptr_t dispatch(std::int32_t opcode, void* ptr = nullptr) {
    return effect->dispatcher(effect, opcode, 0, 0, ptr, 0.0f);
}

std::intptr_t host(AEffect*, std::int32_t opcode, std::int32_t, std::intptr_t, void*, float) {
    return opcode == audioMasterVersion ? kVstVersion : 0;
}

void closeEffect() {
    if (closesWindow)
        dispatch(effEditClose);
    dispatch(effClose);
}

} // namespace

int main(int, char** arguments) {
    Display* const display = XOpenDisplay(nullptr);
    const Window window = XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, 320, 240, 0, 0, 0);
    XMapWindow(display, window);
    XSync(display, False);
    // Before the library registers anything, so that it runs behind that.
    std::atexit(closeEffect);
    void* const library = dlopen(arguments[1], RTLD_NOW);
    const auto enter = reinterpret_cast<VstEntryPoint>(dlsym(library, "VSTPluginMain"));
    effect = enter(host);
    closesWindow = std::strcmp(arguments[2], "window") == 0;
    dispatch(effOpen);
    if (dispatch(effEditOpen, reinterpret_cast<void*>(window)) != 1)
        std::_Exit(2);
    for (int turn = 0; turn < 20; ++turn)
        dispatch(effEditIdle);
    return 0;
}
