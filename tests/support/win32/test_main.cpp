// The main function of all test programs under wine.
#include <gtest/gtest.h>
#include <windows.h>

#include <cstdio>

int main(int count, char** arguments) {
    testing::InitGoogleTest(&count, arguments);
    const int result = RUN_ALL_TESTS();
    std::fflush(nullptr);
    // At the end of a process wine first kills all other threads, also in the middle of the heap's own work,
    // and then has every library tidy up. Now and then that crashes or hangs, more often on a busy machine.
    // How our modules take the end of a process is tried by the host in tests/window/win32/abrupt_host.cpp.
    TerminateProcess(GetCurrentProcess(), static_cast<UINT>(result));
    return result;
}
