#include "tools/window/png_file.h"

#include "desk/canvas.h"
#include "tools/common/output_file.h"
#include "tools/common/tool_error.h"

#include <stdexcept>

namespace tools::window {

void writePng(const desk::Picture& picture, const std::filesystem::path& file) {
    OutputFile output(file);
    try {
        desk::writePng(picture, output.temporary());
    } catch (const std::runtime_error& error) {
        throw ToolError(file.string() + " cannot be written: " + error.what());
    }
    output.commit();
}

} // namespace tools::window
