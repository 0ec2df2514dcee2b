#include "tools/render/cut_file.h"

#include <array>
#include <fstream>
#include <string>
#include <string_view>

namespace tools::render {

namespace {

/// From here on, a length in 32 bits means "up to the end".
constexpr std::uint64_t kEndlessFrom = 0x7ffff000;

class ChunkReader {
  public:
    explicit ChunkReader(const std::filesystem::path& path) : file_(path, std::ios::binary) {
        file_.seekg(0, std::ios::end);
        size_ = file_ ? static_cast<std::uint64_t>(file_.tellg()) : 0;
        file_.seekg(0);
    }

    void takeBigEndian() { isBigEndian_ = true; }
    std::uint64_t position() { return static_cast<std::uint64_t>(file_.tellg()); }
    std::uint64_t bytesLeft() { return size_ - position(); }

    /// Four characters; empty behind the end.
    std::string code() {
        std::array<char, 4> text;
        return file_.read(text.data(), text.size()) ? std::string(text.begin(), text.end()) : std::string();
    }
    /// A number of up to 8 bytes; 0 behind the end.
    std::uint64_t number(std::size_t size) {
        std::array<unsigned char, 8> bytes;
        if (!file_.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(size)))
            return 0;
        std::uint64_t number = 0;
        for (std::size_t i = 0; i < size; ++i)
            number = number << 8 | bytes[isBigEndian_ ? i : size - 1 - i];
        return number;
    }
    /// False if that lies behind the end.
    bool skip(std::uint64_t bytes) {
        if (!file_ || bytes > bytesLeft())
            return false;
        file_.seekg(static_cast<std::streamoff>(bytes), std::ios::cur);
        return static_cast<bool>(file_);
    }

  private:
    std::ifstream file_;
    std::uint64_t size_ = 0;
    bool isBigEndian_ = false;
};

std::optional<CutSound> compared(std::uint64_t promised, std::uint64_t present) {
    return promised > present ? std::optional(CutSound{promised, present}) : std::nullopt;
}

/// From behind the form's head up to the sound. `ds64` chunks hold lengths that 32 bits are too few for.
std::optional<CutSound> searchChunks(ChunkReader& file, std::string_view soundCode) {
    std::uint64_t longLength = 0;
    for (std::string code; !(code = file.code()).empty();) {
        std::uint64_t length = file.number(4);
        // AIFF counts two numbers ahead of the sound with it.
        if (code == "SSND" && length >= 8 && file.skip(8))
            length -= 8;
        if (code == soundCode) {
            if (length == 0xffffffff && longLength > 0 && longLength < std::uint64_t{1} << 62)
                return compared(longLength, file.bytesLeft());
            const bool isEndless = length == 0 || length >= kEndlessFrom;
            return isEndless ? std::nullopt : compared(length, file.bytesLeft());
        }
        std::uint64_t toSkip = length + length % 2;
        if (code == "ds64" && length >= 16) {
            file.number(8);
            longLength = file.number(8);
            toSkip -= 16;
        }
        if (!file.skip(toSkip))
            break;
    }
    return std::nullopt;
}

} // namespace

std::optional<CutSound> cutSound(const std::filesystem::path& path) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error))
        return std::nullopt;
    ChunkReader file(path);
    const std::string form = file.code();
    if (form == "RIFX" || form == "FORM")
        file.takeBigEndian();
    if (!file.skip(4))
        return std::nullopt;
    const std::string kind = file.code();
    if (kind == "WAVE" && (form == "RIFF" || form == "RIFX" || form == "RF64" || form == "BW64"))
        return searchChunks(file, "data");
    if (form == "FORM" && (kind == "AIFF" || kind == "AIFC"))
        return searchChunks(file, "SSND");
    return std::nullopt;
}

} // namespace tools::render
