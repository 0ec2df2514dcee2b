// A library for the tests to load. Like the plug-in, it asks where it lies.

#include "platform/module_folder.h"

extern "C" __attribute__((visibility("default"))) const char* sampleFolder() {
    return platform::moduleFolder().c_str();
}
