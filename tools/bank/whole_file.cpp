#include "tools/bank/whole_file.h"

#include "tools/bank/bank_program.h"
#include "tools/common/input_file.h"
#include "tools/common/output_file.h"
#include "tools/common/tool_error.h"

#include <fstream>
#include <memory>

namespace bank {

std::vector<std::uint8_t> readWholeFile(const std::filesystem::path& path) {
    try {
        return tools::readBytes(path);
    } catch (const tools::ToolError& error) {
        throw BankError(error.what());
    }
}

void writeWholeFile(const std::filesystem::path& path, std::span<const std::uint8_t> bytes) {
    writeWholeFiles({path}, bytes);
}

void writeWholeFile(const std::filesystem::path& path, const std::string& text) {
    writeWholeFile(path, std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
}

void writeWholeFiles(const std::vector<std::filesystem::path>& paths,
                     std::span<const std::uint8_t> bytes) try {
    std::vector<std::unique_ptr<tools::OutputFile>> outputs;
    for (const std::filesystem::path& path : paths) {
        outputs.push_back(std::make_unique<tools::OutputFile>(std::filesystem::absolute(path)));
        std::ofstream file(outputs.back()->temporary(), std::ios::binary | std::ios::trunc);
        file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        file.close();
        if (!file)
            throw BankError(path.string() + " cannot be written completely");
    }
    for (const auto& output : outputs)
        output->commit();
} catch (const tools::ToolError& error) {
    throw BankError(error.what());
}

} // namespace bank
