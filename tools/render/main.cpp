// quillon-render: plays audio files through the plug-in, offline.

#include "desk/abrupt_end.h"
#include "desk/arguments.h"
#include "desk/display.h"
#include "desk/own_output.h"
#include "host/library_call.h"
#include "tools/common/interrupt.h"
#include "tools/common/text.h"
#include "tools/render/bulk.h"
#include "tools/render/job.h"

#include <exception>

namespace {

constexpr int kExitFailure = 2;
constexpr int kExitInterrupted = 130;

int complain(const std::exception& error, int code) {
    std::fprintf(stderr, "quillon-render: %s\n", tools::printable(error.what()).c_str());
    return code;
}

/// Gives the exit code.
int run(const tools::render::Options& options) {
    std::FILE* const output = desk::takeOwnOutput();
    tools::watchForInterrupts();
    if (options.list)
        tools::render::listEffect(options, output);
    else if (options.bulk)
        return tools::render::renderInBulk(options, output) ? 0 : kExitFailure;
    else
        tools::render::renderToFile(options, output);
    return 0;
}

} // namespace

int main(int argumentCount, char** arguments) {
    const desk::AbruptEndWatch watch("quillon-render", host::LibraryCall::describe);
    // A script that renders overnight must not find an effect's message box in the morning.
    desk::leaveDisplay();
    try {
        const desk::CommandLine line(argumentCount, arguments);
        const auto parsed = tools::render::parseOptions(line.count(), line.words());
        if (const auto* help = std::get_if<tools::render::HelpText>(&parsed))
            return std::fputs(help->text.c_str(), stdout) < 0 ? kExitFailure : 0;
        return run(std::get<tools::render::Options>(parsed));
    } catch (const tools::Interrupted& interruption) {
        return complain(interruption, kExitInterrupted);
    } catch (const std::exception& error) {
        return complain(error, kExitFailure);
    }
}
