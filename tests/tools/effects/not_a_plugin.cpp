// A library like any other, with no entry point that a host could call.

extern "C" __attribute__((visibility("default"))) int answer() {
    return 42;
}
