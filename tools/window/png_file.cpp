#include "tools/window/png_file.h"

#include "desk/canvas.h"
#include "tools/common/output_file.h"
#include "tools/common/tool_error.h"

#include <stdexcept>

namespace tools::window {

namespace {

/// `write` takes a path and writes the PNG there.
template <typename Write>
void writeWhole(const std::filesystem::path& file, Write write) {
    OutputFile output(file);
    try {
        write(output.temporary());
    } catch (const std::runtime_error& error) {
        throw ToolError(file.string() + " cannot be written: " + error.what());
    }
    output.commit();
}

} // namespace

void writePng(const desk::Picture& picture, const std::filesystem::path& file) {
    writeWhole(file, [&](const std::filesystem::path& draft) { desk::writePng(picture, draft); });
}

void writePng(desk::Canvas& canvas, const std::filesystem::path& file) {
    writeWhole(file, [&](const std::filesystem::path& draft) { canvas.writePng(draft); });
}

} // namespace tools::window
