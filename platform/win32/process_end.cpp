// What this library has registered to be run at its end is not run. It would run while the loader holds its
// lock, at the end of the process too, when the libraries behind the toolkit may be gone already. Nothing is
// lost by it: the toolkit goes with the last instance, and the library stays loaded.
//
// The linker leads the library's calls of atexit() here. Destructors of static objects are registered by it.

extern "C" int __wrap_atexit(void (*)()) {
    return 0;
}
