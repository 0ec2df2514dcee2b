// quillon-render IN OUT: plays an audio file through the plug-in, offline.

#include "desk/abrupt_end.h"
#include "desk/arguments.h"
#include "desk/display.h"
#include "desk/own_output.h"
#include "host/library_call.h"
#include "tools/common/interrupt.h"
#include "tools/common/text.h"
#include "tools/render/job.h"

#include <exception>

namespace {

constexpr int kExitFailure = 2;
constexpr int kExitInterrupted = 130;

int complain(const std::exception& error, int code) {
    std::fprintf(stderr, "quillon-render: %s\n", tools::printable(error.what()).c_str());
    return code;
}

void run(const tools::render::Options& options) {
    std::FILE* const output = desk::takeOwnOutput();
    tools::watchForInterrupts();
    if (options.list)
        tools::render::listEffect(options, output);
    else
        tools::render::renderToFile(options, output);
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
            std::fputs(help->text.c_str(), stdout);
        else
            run(std::get<tools::render::Options>(parsed));
        return 0;
    } catch (const tools::Interrupted& interruption) {
        return complain(interruption, kExitInterrupted);
    } catch (const std::exception& error) {
        return complain(error, kExitFailure);
    }
}
