#include "bank/whole_file.h"

#include "bank/bank_program.h"
#include "platform/abrupt_end.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

namespace bank {

std::vector<std::uint8_t> readWholeFile(const std::string& path) {
    std::error_code ignored;
    std::ifstream file(path, std::ios::binary);
    if (!file || std::filesystem::is_directory(path, ignored))
        throw BankError(path + ": cannot be opened");
    std::vector<std::uint8_t> bytes(std::istreambuf_iterator<char>(file), {});
    if (file.bad())
        throw BankError(path + ": cannot be read");
    return bytes;
}

void writeWholeFile(const std::string& path, std::span<const std::uint8_t> bytes) {
    const std::string unfinished = path + ".unfinished";
    const platform::UnfinishedPath watched(unfinished, platform::UnfinishedPath::Kind::file);
    std::ofstream file(unfinished, std::ios::binary | std::ios::trunc);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    file.close();
    std::error_code error;
    if (file)
        std::filesystem::rename(unfinished, path, error);
    if (!file || error) {
        std::error_code ignored;
        std::filesystem::remove(unfinished, ignored);
        throw BankError(path + ": cannot be written");
    }
}

void writeWholeFile(const std::string& path, const std::string& text) {
    writeWholeFile(path, std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
}

} // namespace bank
