#include "tools/bank/whole_file.h"

#include "tools/bank/bank_program.h"
#include "tools/common/input_file.h"
#include "tools/common/output_file.h"
#include "tools/common/tool_error.h"

#include <filesystem>
#include <fstream>

namespace bank {

std::vector<std::uint8_t> readWholeFile(const std::string& path) {
    try {
        return tools::readBytes(path);
    } catch (const tools::ToolError&) {
        throw BankError(path + ": cannot be opened");
    }
}

void writeWholeFile(const std::string& path, std::span<const std::uint8_t> bytes) {
    try {
        tools::OutputFile output(std::filesystem::absolute(path));
        std::ofstream file(output.temporary(), std::ios::binary | std::ios::trunc);
        file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        file.close();
        if (!file)
            throw BankError(path + ": cannot be written");
        output.commit();
    } catch (const tools::ToolError&) {
        throw BankError(path + ": cannot be written");
    }
}

void writeWholeFile(const std::string& path, const std::string& text) {
    writeWholeFile(path, std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
}

} // namespace bank
