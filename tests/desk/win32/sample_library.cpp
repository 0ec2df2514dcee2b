// A library for the tests to load. Like the plug-in, it asks where it lies.

#include "platform/module_folder.h"

#include <windows.h>

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID reserved);

extern "C" __declspec(dllexport) const char* sampleFolder() {
    return platform::moduleFolder().c_str();
}

/// The loader calls this one by itself; the tests ask what it answers.
extern "C" __declspec(dllexport) BOOL WINAPI sampleDllMain(HINSTANCE module, DWORD reason, LPVOID reserved) {
    return DllMain(module, reason, reserved);
}
