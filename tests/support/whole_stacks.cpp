// For programs that open windows, under the address sanitizer. Memory that the toolkit forgets is told from
// memory that we forget by who asked for it, and that lies behind libraries whose frames only the slow way of
// looking finds.

extern "C" const char* __asan_default_options();

extern "C" __attribute__((visibility("default"))) const char* __asan_default_options() {
    return "fast_unwind_on_malloc=0";
}
