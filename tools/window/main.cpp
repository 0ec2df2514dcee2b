// quillon-window: opens the plug-in's editor in a window of its own.

#include "desk/abrupt_end.h"
#include "desk/arguments.h"
#include "desk/own_output.h"
#include "host/library_call.h"
#include "tools/common/interrupt.h"
#include "tools/common/text.h"
#include "tools/window/new_skin.h"
#include "tools/window/showing.h"

#include <exception>

namespace {

using namespace tools;

constexpr int kExitFound = 1;
constexpr int kExitFailure = 2;
constexpr int kExitInterrupted = 130;

int complain(const std::exception& error, int code) {
    std::fprintf(stderr, "quillon-window: %s\n", printable(error.what()).c_str());
    return code;
}

int run(const window::Options& options) {
    std::FILE* const output = desk::takeOwnOutput();
    watchForInterrupts();
    if (!options.newSkin.empty()) {
        window::makeSkin(options.newSkin);
        return 0;
    }
    if (options.check)
        return window::checkSkinFor(options, output) ? 0 : kExitFound;
    window::openEditor(options);
    return 0;
}

} // namespace

int main(int argumentCount, char** arguments) {
    const desk::AbruptEndWatch watch("quillon-window", host::LibraryCall::describe);
    try {
        const desk::CommandLine line(argumentCount, arguments);
        const auto parsed = window::parseOptions(line.count(), line.words());
        if (const auto* help = std::get_if<window::HelpText>(&parsed)) {
            std::fputs(help->text.c_str(), stdout);
            return 0;
        }
        return run(std::get<window::Options>(parsed));
    } catch (const Interrupted& interruption) {
        return complain(interruption, kExitInterrupted);
    } catch (const std::exception& error) {
        return complain(error, kExitFailure);
    }
}
