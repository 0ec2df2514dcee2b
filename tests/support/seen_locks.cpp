// For programs that open windows, under the thread sanitizer, so that nothing has to be suppressed. Pango
// looks for fonts on threads of its own and hands what it finds on under GLib's locks, which the sanitizer
// does not know, as they are made of system calls: standing before GLib here, each of them is made known to
// it. Fontconfig makes what all its users share at its first use, behind atomic accesses that the sanitizer
// does not see: here that is over before there is a second thread.
#include <dlfcn.h>

extern "C" void __tsan_acquire(void* address);
extern "C" void __tsan_release(void* address);

#define QUILLON_SEEN extern "C" __attribute__((visibility("default")))

namespace {

/// GLib's own function, which ours of the same name stands before.
template <class Function>
Function* behind(Function*, const char* name) {
    static void* const glib = dlopen("libglib-2.0.so.0", RTLD_LAZY);
    return reinterpret_cast<Function*>(dlsym(glib, name));
}

__attribute__((constructor)) void useFontconfig() {
    if (void* const fontconfig = dlopen("libfontconfig.so.1", RTLD_LAZY))
        reinterpret_cast<int (*)()>(dlsym(fontconfig, "FcInit"))();
}

} // namespace

QUILLON_SEEN void g_mutex_lock(void* mutex) {
    static auto* const lock = behind(&g_mutex_lock, "g_mutex_lock");
    lock(mutex);
    __tsan_acquire(mutex);
}

QUILLON_SEEN void g_mutex_unlock(void* mutex) {
    static auto* const unlock = behind(&g_mutex_unlock, "g_mutex_unlock");
    __tsan_release(mutex);
    unlock(mutex);
}

QUILLON_SEEN void g_cond_wait(void* condition, void* mutex) {
    static auto* const wait = behind(&g_cond_wait, "g_cond_wait");
    __tsan_release(mutex);
    wait(condition, mutex);
    __tsan_acquire(mutex);
}

QUILLON_SEEN void g_async_queue_push(void* queue, void* data) {
    static auto* const push = behind(&g_async_queue_push, "g_async_queue_push");
    __tsan_release(queue);
    push(queue, data);
}

QUILLON_SEEN void* g_async_queue_pop(void* queue) {
    static auto* const pop = behind(&g_async_queue_pop, "g_async_queue_pop");
    void* const data = pop(queue);
    __tsan_acquire(queue);
    return data;
}
