#include "support/plugin_folder.h"

#include "support/own_process.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace conversation {

namespace files = std::filesystem;

std::optional<Bytes> readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file)
        return std::nullopt;
    return Bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void writeFile(const std::string& path, std::span<const std::uint8_t> bytes) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (!file.flush())
        throw std::runtime_error("cannot write " + path);
}

void removeFile(const std::string& path) {
    files::remove(path);
}

ModuleCopy::ModuleCopy(const std::string& folder) : folder_(folder) {
    if (!files::create_directory(folder_))
        throw std::runtime_error(folder_ + " exists already");
    files::copy_file(QUILLON_LIBRARY, path());
}

std::string ModuleCopy::path() const {
    return beside(files::path(QUILLON_LIBRARY).filename().string());
}

host::Library& ModuleCopy::library() {
    if (!library_)
        library_ = std::make_unique<host::Library>(path());
    return *library_;
}

PluginFolder::PluginFolder() : module(folder_.path() + "/module") {
    leaveThePersonsSettingsAlone(folder_.path());
}

QuietPlugin::QuietPlugin() {
    writeFile(module.beside(kBankFile), chunkBank(defaultPrograms()));
}

DistinctPlugin::DistinctPlugin() {
    writeFile(module.beside(kBankFile), chunkBank(distinctPrograms()));
}

} // namespace conversation
