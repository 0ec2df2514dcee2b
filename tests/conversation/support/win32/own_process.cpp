#include "support/own_process.h"

#include "desk/display.h"
#include "desk/private_folder.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <fcntl.h>
#include <io.h>
#include <unistd.h>

#include <array>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <stdexcept>

namespace conversation {
namespace {

constexpr const char* kMarker = "QUILLON_TEST_BODY";
constexpr DWORD kLongestRun = 600'000; // milliseconds, however long others keep the processor

/// Takes what is printed to standard error, the library's words included, until it goes.
class CaughtErrors {
  public:
    CaughtErrors() : before_(_dup(STDERR_FILENO)) {
        std::fflush(stderr);
        file_ = unnamedFile();
        if (before_ < 0 || !file_ || _dup2(_fileno(file_), STDERR_FILENO) != 0)
            throw std::runtime_error("standard error cannot be caught");
    }
    ~CaughtErrors() {
        if (before_ >= 0)
            release();
        std::fclose(file_);
    }
    CaughtErrors(const CaughtErrors&) = delete;
    CaughtErrors& operator=(const CaughtErrors&) = delete;

    /// Gives standard error back, and what was caught.
    std::string text() {
        release();
        std::string text;
        std::array<char, 4096> piece;
        std::rewind(file_);
        while (const std::size_t count = std::fread(piece.data(), 1, piece.size(), file_))
            text.append(piece.data(), count);
        return text;
    }

  private:
    /// Gone with its last descriptor. What is written stays as it is, without carriage returns.
    static std::FILE* unnamedFile() {
        std::array<char, MAX_PATH + 1> folder = {}, name = {};
        GetTempPathA(static_cast<DWORD>(folder.size()), folder.data());
        GetTempFileNameA(folder.data(), "err", 0, name.data());
        const int descriptor = _open(name.data(), _O_RDWR | _O_BINARY | _O_TEMPORARY);
        return descriptor < 0 ? nullptr : _fdopen(descriptor, "w+b");
    }

    void release() {
        std::fflush(stderr);
        _dup2(before_, STDERR_FILENO);
        _close(before_);
        before_ = -1;
    }

    int before_;
    std::FILE* file_ = nullptr;
};

/// A process that runs this test program anew, for this one test.
class SameTestAnew {
  public:
    SameTestAnew() {
        const auto* const test = testing::UnitTest::GetInstance()->current_test_info();
        std::array<char, 32768> program = {};
        GetModuleFileNameA(nullptr, program.data(), static_cast<DWORD>(program.size()));
        std::string command = '"' + std::string(program.data()) +
                              "\" --gtest_filter=" + test->test_suite_name() + "." + test->name();
        SetEnvironmentVariableA(kMarker, "1");
        STARTUPINFOA surroundings = {};
        surroundings.cb = sizeof surroundings;
        const bool isStarted = CreateProcessA(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr,
                                              nullptr, &surroundings, &process_);
        SetEnvironmentVariableA(kMarker, nullptr);
        if (!isStarted)
            throw std::runtime_error("no process of its own");
    }
    ~SameTestAnew() {
        CloseHandle(process_.hThread);
        CloseHandle(process_.hProcess);
    }
    SameTestAnew(const SameTestAnew&) = delete;
    SameTestAnew& operator=(const SameTestAnew&) = delete;

    DWORD waitForItsEnd() {
        if (WaitForSingleObject(process_.hProcess, kLongestRun) != WAIT_OBJECT_0)
            TerminateProcess(process_.hProcess, static_cast<UINT>(STATUS_TIMEOUT));
        DWORD code = 0;
        GetExitCodeProcess(process_.hProcess, &code);
        return code;
    }

  private:
    PROCESS_INFORMATION process_ = {};
};

/// Ends this process as the system would, without asking a person or a debugger first.
LONG CALLBACK endWithItsNumber(EXCEPTION_POINTERS* exception) {
    TerminateProcess(GetCurrentProcess(), exception->ExceptionRecord->ExceptionCode);
    return EXCEPTION_EXECUTE_HANDLER;
}

int runGuarded(const std::function<void()>& body) {
    try {
        body();
    } catch (const std::exception& error) {
        std::printf("ended by an exception: %s\n", error.what());
        return 2;
    }
    return ::testing::Test::HasFailure() ? 1 : 0;
}

} // namespace

ProcessEnd runInOwnProcess(const std::function<void()>& body) {
    if (std::getenv(kMarker)) {
        SetUnhandledExceptionFilter(endWithItsNumber);
        const int code = runGuarded(body);
        std::fflush(nullptr);
        std::_Exit(code);
    }
    std::fflush(nullptr);
    // The new process inherits what standard error leads to.
    CaughtErrors errors;
    const DWORD code = SameTestAnew().waitForItsEnd();
    ProcessEnd end;
    // What the system ends a process with has the mark of an error of its own.
    end.exited = (code & 0xC0000000u) != 0xC0000000u;
    end.code = static_cast<int>(code);
    end.errors = errors.text();
    return end;
}

std::string errorsOf(const std::function<void()>& body) {
    const std::filesystem::path folder = std::filesystem::current_path();
    CaughtErrors errors;
    try {
        body();
    } catch (const std::exception& error) {
        ADD_FAILURE() << "ended by an exception: " << error.what();
    }
    std::filesystem::current_path(folder);
    std::setlocale(LC_ALL, "C");
    return errors.text();
}

void leaveThePersonsSettingsAlone(const std::string& folder) {
    static const bool isAway = (desk::leaveDisplay(), true);
    (void)isAway;
    _putenv_s("HOME", folder.c_str());
}

} // namespace conversation
