#include "tools/render/passed_sound.h"

#include "desk/own_output.h"
#include "tools/common/interrupt.h"
#include "tools/common/tool_error.h"

#include <array>
#include <fstream>

namespace tools::render {

namespace files = std::filesystem;

namespace {

using Piece = std::array<char, 65536>;

void copyInput(const files::path& target) {
    std::FILE* const input = desk::ownInput();
    if (desk::isTerminal(input))
        throw ToolError("standard input is a terminal; send a sound file to it, or name one in place of -");
    std::ofstream file(target, std::ios::binary);
    Piece piece;
    while (const std::size_t bytes = std::fread(piece.data(), 1, piece.size(), input)) {
        stopIfInterrupted();
        file.write(piece.data(), static_cast<std::streamsize>(bytes));
    }
    stopIfInterrupted();
    if (std::ferror(input) != 0)
        throw ToolError("standard input cannot be read");
    if (!file.flush())
        throw ToolError("standard input cannot be kept in " + target.parent_path().string());
}

} // namespace

PassedSound::PassedSound(const Options& options, std::FILE* output)
    : stream_(output), input_(options.input), outputFile_(options.output) {
    if (options.writesStandardOutput && desk::isTerminal(output))
        throw ToolError(
            "standard output is a terminal; send it to a file or a program, or name a file in place of -");
    if (!options.readsStandardInput && !options.writesStandardOutput)
        return;
    folder_.emplace();
    const files::path folder = files::current_path();
    if (options.writesStandardOutput)
        outputFile_ = folder / "out.wav";
    if (!options.readsStandardInput)
        return;
    input_ = folder / "in";
    copyInput(input_);
}

void PassedSound::deliver(const files::path& sound) const {
    std::ifstream file(sound, std::ios::binary);
    Piece piece;
    do {
        stopIfInterrupted();
        file.read(piece.data(), piece.size());
        const auto bytes = static_cast<std::size_t>(file.gcount());
        if (std::fwrite(piece.data(), 1, bytes, stream_) != bytes)
            throw ToolError("standard output cannot be written");
    } while (file);
    if (!file.eof() || std::fflush(stream_) != 0)
        throw ToolError("standard output cannot be written");
}

} // namespace tools::render
