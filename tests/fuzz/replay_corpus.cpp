// Runs every kept input of a fuzz target through it, without a fuzzer. Takes files and folders.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

/// False if the file can't be read.
bool replay(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
    if (!file) {
        std::fprintf(stderr, "cannot read %s\n", path.string().c_str());
        return false;
    }
    // Standing last on the screen, it names the input that went wrong.
    std::fprintf(stderr, "%s\n", path.string().c_str());
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    return true;
}

/// The files that are named, and those of folders that are. Whole paths, as a target may work in a folder of
/// its own.
std::vector<std::filesystem::path> filesOf(int argumentCount, char** arguments) {
    std::vector<std::filesystem::path> files;
    for (int i = 1; i < argumentCount; ++i) {
        const auto path = std::filesystem::absolute(arguments[i]);
        if (!std::filesystem::is_directory(path)) {
            files.push_back(path);
            continue;
        }
        for (const auto& entry : std::filesystem::recursive_directory_iterator(path))
            if (entry.is_regular_file())
                files.push_back(entry.path());
    }
    return files;
}

} // namespace

int main(int argumentCount, char** arguments) {
    const auto files = filesOf(argumentCount, arguments);
    bool allRead = true;
    for (const auto& file : files)
        allRead &= replay(file);
    std::printf("%d inputs\n", static_cast<int>(files.size()));
    return allRead && !files.empty() ? 0 : 1;
}
