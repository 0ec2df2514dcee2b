// A host that ends without closing the effect, whose window is open: it unloads the library, which it may
// close after that, or ends its process at once. The exit code tells what went wrong, 0 that nothing did.
#include "vst2/vst2.h"

#include <d2d1.h>
#include <string>
#include <windows.h>

namespace {

using namespace vst2;

enum Outcome : UINT { fine, notOpened, unloadedInUse, toolkitUsedByLoader, fault, misused };

std::intptr_t answerVersion(AEffect*, std::int32_t opcode, std::int32_t, std::intptr_t, void*, float) {
    return opcode == audioMasterVersion ? 2400 : 0;
}

using Release = ULONG(STDMETHODCALLTYPE*)(IUnknown*);

Release realRelease = nullptr;
bool isLoaderAtWork = false; ///< while it takes the library or the process away

ULONG STDMETHODCALLTYPE watchedRelease(IUnknown* object) {
    if (isLoaderAtWork)
        TerminateProcess(GetCurrentProcess(), toolkitUsedByLoader);
    return realRelease(object);
}

/// The loader hides an exception from everybody else.
LONG CALLBACK endAtFault(EXCEPTION_POINTERS* pointers) {
    if (pointers->ExceptionRecord->ExceptionCode == EXCEPTION_ACCESS_VIOLATION)
        TerminateProcess(GetCurrentProcess(), fault);
    return EXCEPTION_CONTINUE_SEARCH;
}

/// From here on notices when something that the toolkit draws with is given back.
void watchToolkit() {
    ID2D1Factory* factory = nullptr;
    D2D1CreateFactory(D2D1_FACTORY_TYPE_MULTI_THREADED, __uuidof(ID2D1Factory), nullptr,
                      reinterpret_cast<void**>(&factory));
    if (!factory)
        ExitProcess(misused);
    // All factories share one table of functions, which begins with QueryInterface, AddRef, Release.
    auto* const table = *reinterpret_cast<Release**>(factory);
    DWORD protection = 0;
    VirtualProtect(table, 3 * sizeof *table, PAGE_READWRITE, &protection);
    realRelease = table[2];
    table[2] = &watchedRelease;
    AddVectoredExceptionHandler(1, &endAtFault);
}

void serveMessages(int rounds) {
    for (int i = 0; i < rounds; ++i) {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
            DispatchMessageW(&message);
        MsgWaitForMultipleObjectsEx(0, nullptr, 5, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
    }
}

} // namespace

int main(int count, char** arguments) {
    if (count != 3)
        return misused;
    const std::string end = arguments[2];
    const HMODULE library = LoadLibraryA(arguments[1]);
    const auto enter = reinterpret_cast<AEffect* (*)(audioMasterCallback)>(
        reinterpret_cast<void*>(GetProcAddress(library, "VSTPluginMain")));
    if (!enter)
        return misused;
    AEffect* const effect = enter(answerVersion);
    const HWND window = CreateWindowW(L"STATIC", L"host", WS_VISIBLE | WS_POPUP, 0, 0, 640, 480, nullptr,
                                      nullptr, GetModuleHandleW(nullptr), nullptr);
    if (effect->dispatcher(effect, effEditOpen, 0, 0, window, 0.0f) != 1)
        return notOpened;
    serveMessages(10);
    watchToolkit();
    isLoaderAtWork = true;
    if (end == "return")
        return fine;
    if (end == "exit")
        ExitProcess(fine);
    char path[MAX_PATH] = "";
    GetModuleFileNameA(library, path, MAX_PATH);
    FreeLibrary(library);
    isLoaderAtWork = false;
    if (!GetModuleHandleA(path))
        ExitProcess(unloadedInUse);
    serveMessages(10);
    if (end == "close") {
        effect->dispatcher(effect, effEditClose, 0, 0, nullptr, 0.0f);
        effect->dispatcher(effect, effClose, 0, 0, nullptr, 0.0f);
    }
    DestroyWindow(window);
    serveMessages(10);
    isLoaderAtWork = true;
    return fine;
}
