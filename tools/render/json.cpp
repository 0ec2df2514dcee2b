#include "tools/render/json.h"

#include "tools/common/text.h"

#include <cmath>

namespace tools::render {

namespace {

std::string escaped(unsigned char byte) {
    switch (byte) {
    case '"':
        return "\\\"";
    case '\\':
        return "\\\\";
    case '\n':
        return "\\n";
    case '\r':
        return "\\r";
    case '\t':
        return "\\t";
    default:
        break;
    }
    constexpr char digits[] = "0123456789abcdef";
    return {'\\', 'u', '0', '0', digits[byte >> 4], digits[byte & 15]};
}

bool needsEscape(unsigned char byte) {
    return byte < 0x20 || byte == 0x7F || byte == '"' || byte == '\\';
}

} // namespace

std::string jsonString(std::string_view bytes) {
    std::string result = "\"";
    std::size_t start = 0;
    for (std::size_t i = 0; i <= bytes.size(); ++i) {
        if (i < bytes.size() && !needsEscape(static_cast<unsigned char>(bytes[i])))
            continue;
        result += printable(bytes.substr(start, i - start));
        if (i < bytes.size())
            result += escaped(static_cast<unsigned char>(bytes[i]));
        start = i + 1;
    }
    return result + '"';
}

void JsonWriter::name(std::string_view text) {
    separate();
    text_ += jsonString(text) + ": ";
    afterName_ = true;
}

void JsonWriter::value(double number) {
    std::isfinite(number) ? put(shortText(number)) : null();
}

void JsonWriter::value(float number) {
    std::isfinite(number) ? put(shortText(number)) : null();
}

void JsonWriter::open(char bracket) {
    separate();
    text_ += bracket;
    ++depth_;
    needsComma_ = false;
    isEmpty_ = true;
    afterName_ = false;
}

void JsonWriter::close(char bracket) {
    --depth_;
    if (!isEmpty_)
        newLine();
    text_ += bracket;
    needsComma_ = true;
    isEmpty_ = false;
}

void JsonWriter::put(std::string_view piece) {
    separate();
    text_ += piece;
    needsComma_ = true;
    isEmpty_ = false;
    afterName_ = false;
}

void JsonWriter::separate() {
    if (afterName_) {
        afterName_ = false;
        return;
    }
    if (needsComma_)
        text_ += ',';
    if (depth_ > 0)
        newLine();
    needsComma_ = false;
}

void JsonWriter::newLine() {
    text_ += '\n';
    text_.append(static_cast<std::size_t>(depth_) * 2, ' ');
}

} // namespace tools::render
