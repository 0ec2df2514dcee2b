// quillon-bank COMMAND: tables and banks of programs, programs at a tempo, and the map of MIDI controllers.

#include "desk/abrupt_end.h"
#include "desk/arguments.h"
#include "desk/display.h"
#include "desk/own_output.h"
#include "host/library_call.h"
#include "tools/bank/commands.h"
#include "tools/common/text.h"

#include <cstdio>
#include <exception>

namespace {

constexpr int kExitFailure = 2;

} // namespace

int main(int argumentCount, char** arguments) {
    const desk::AbruptEndWatch watch("quillon-bank", host::LibraryCall::describe);
    // A build must not wait for somebody to click a message of the plug-in away.
    desk::leaveDisplay();
    try {
        const desk::CommandLine line(argumentCount, arguments);
        const bank::Job job = bank::jobFrom(line.count(), line.words());
        bank::runJob(job, desk::takeOwnOutput());
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "quillon-bank: %s\n", tools::printable(error.what()).c_str());
        return kExitFailure;
    }
}
