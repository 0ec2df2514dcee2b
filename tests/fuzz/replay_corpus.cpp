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

} // namespace

int main(int argumentCount, char** arguments) {
    int replayed = 0;
    bool allRead = true;
    for (int i = 1; i < argumentCount; ++i) {
        if (!std::filesystem::is_directory(arguments[i])) {
            allRead &= replay(arguments[i]);
            ++replayed;
            continue;
        }
        for (const auto& entry : std::filesystem::recursive_directory_iterator(arguments[i]))
            if (entry.is_regular_file()) {
                allRead &= replay(entry.path());
                ++replayed;
            }
    }
    std::printf("%d inputs\n", replayed);
    return allRead && replayed > 0 ? 0 : 1;
}
