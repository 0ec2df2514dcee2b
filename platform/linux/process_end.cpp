// What this library has registered to be run at its end is not run. That would be before a host's own
// destructors, in which it may still close the effect and its window. Nothing is lost by it: once loaded the
// library stays until the process ends.
//
// The linker leads the library's calls of __cxa_atexit() here. Destructors of static objects are registered
// by it.

extern "C" int __wrap___cxa_atexit(void (*)(void*), void*, void*) {
    return 0;
}
