#include "tools/render/content_hash.h"

#include "tools/common/tool_error.h"

#include <cstdint>
#include <fstream>
#include <vector>

namespace tools::render {

namespace {

class Hash {
  public:
    void add(std::string_view bytes) {
        std::uint64_t state = state_;
        for (const char byte : bytes)
            state = (state ^ static_cast<unsigned char>(byte)) * 0x100000001b3;
        state_ = state;
    }
    std::string text() const {
        std::string digits(16, '0');
        std::uint64_t rest = state_;
        for (auto digit = digits.rbegin(); digit != digits.rend(); ++digit, rest >>= 4)
            *digit = "0123456789abcdef"[rest & 15];
        return digits;
    }

  private:
    std::uint64_t state_ = 0xcbf29ce484222325;
};

} // namespace

std::string contentHash(std::string_view bytes) {
    Hash hash;
    hash.add(bytes);
    return hash.text();
}

std::string contentHashOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    Hash hash;
    std::vector<char> piece(std::size_t{1} << 20);
    while (stream.read(piece.data(), static_cast<std::streamsize>(piece.size())), stream.gcount() > 0) {
        hash.add({piece.data(), static_cast<std::size_t>(stream.gcount())});
    }
    if (!stream.eof() || stream.bad())
        throw ToolError(file.string() + " cannot be read");
    return hash.text();
}

} // namespace tools::render
