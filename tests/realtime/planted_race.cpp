// Two threads that write one field, each called by a library of the system that is not built with the thread
// sanitizer: GLib with a list, cairo with the bytes of a picture. The test passes if the sanitizer reports
// it, so that nothing that is passed over for such a library can hide a race of ours.
#include <cstdio>
#include <dlfcn.h>
#include <thread>

namespace {

int planted = 0;

void writeWithoutLock() {
    ++planted;
}

void visitElement(void*, void*) {
    writeWithoutLock();
}

int takeBytes(void*, const unsigned char*, unsigned) {
    writeWithoutLock();
    return 0;
}

template <class Function>
Function* find(const char* library, const char* name) {
    void* const handle = dlopen(library, RTLD_LAZY);
    return reinterpret_cast<Function*>(handle ? dlsym(handle, name) : nullptr);
}

void beneathGlib() {
    const auto prepend = find<void*(void*, void*)>("libglib-2.0.so.0", "g_slist_prepend");
    const auto forEach =
        find<void(void*, void (*)(void*, void*), void*)>("libglib-2.0.so.0", "g_slist_foreach");
    forEach(prepend(nullptr, nullptr), visitElement, nullptr);
}

void beneathCairo() {
    using Write = int(void*, const unsigned char*, unsigned);
    const auto create = find<void*(int, int, int)>("libcairo.so.2", "cairo_image_surface_create");
    const auto write = find<int(void*, Write*, void*)>("libcairo.so.2", "cairo_surface_write_to_png_stream");
    write(create(0, 1, 1), takeBytes, nullptr);
}

void race(void (*beneath)()) {
    std::thread one(beneath), other(beneath);
    one.join();
    other.join();
}

} // namespace

int main(int, char** arguments) {
    race(arguments[1][0] == 'g' ? beneathGlib : beneathCairo);
    std::printf("%d\n", planted);
    return 0;
}
