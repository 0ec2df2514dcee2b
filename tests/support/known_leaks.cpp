// Linked into test programs that draw text. The font library keeps what it has found once for the whole
// process and notes down the distance to it in place of its address, where the leak sanitizer cannot follow:
// it reports the same few bytes for one window as for many. Without a sanitizer nobody asks these functions.

extern "C" {

__attribute__((visibility("default"))) const char* __lsan_default_suppressions();
__attribute__((visibility("default"))) const char* __lsan_default_options();

const char* __lsan_default_suppressions() {
    return "leak:libfontconfig\n";
}

const char* __lsan_default_options() {
    return "print_suppressions=0";
}
}
