#include "tools/render/bulk_display.h"

#include "tools/common/text.h"

#include <cmath>
#include <cstdio>

namespace tools::render {

namespace {

constexpr std::size_t kLineWidth = 78;
constexpr auto kShortestTime = std::chrono::milliseconds(100);

bool isInnerByte(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

/// The first letters of UTF-8, with an ellipsis in place of what does not fit.
std::string cutTo(const std::string& text, std::size_t width) {
    std::size_t letters = 0, end = 0, lastFitting = 0;
    for (; end < text.size(); ++end) {
        if (isInnerByte(text[end]))
            continue;
        if (letters + 1 == width)
            lastFitting = end;
        if (letters == width)
            return text.substr(0, lastFitting) + "\u2026";
        ++letters;
    }
    return text;
}

} // namespace

std::string roughTime(double seconds) {
    if (seconds < 60.0)
        return fixedText(std::ceil(seconds), 0) + " s";
    const auto minutes = static_cast<long long>(std::llround(seconds / 60.0));
    if (minutes < 60)
        return std::to_string(minutes) + " min";
    return std::to_string(minutes / 60) + " h " + std::to_string(minutes % 60) + " min";
}

std::string progressLine(const BulkProgress& progress, std::size_t width) {
    std::string text = std::to_string(progress.finished) + " of " + std::to_string(progress.files) + " done";
    if (progress.failed > 0)
        text += ", " + std::to_string(progress.failed) + " failed";
    if (progress.secondsLeft)
        text += ", about " + roughTime(*progress.secondsLeft) + " left";
    if (!progress.current.empty())
        text += ": " + progress.current;
    return cutTo(text, width);
}

BulkDisplay::~BulkDisplay() {
    clear();
}

void BulkDisplay::clear() {
    if (shown_.empty())
        return;
    std::fputs("\r\033[K", stderr);
    std::fflush(stderr);
    shown_.clear();
}

void BulkDisplay::show(const BulkProgress& progress) {
    const auto now = std::chrono::steady_clock::now();
    if (style_ != Style::line || (!shown_.empty() && now - lastShown_ < kShortestTime))
        return;
    const std::string line = progressLine(progress, kLineWidth);
    if (line == shown_)
        return;
    lastShown_ = now;
    shown_ = line;
    std::fprintf(stderr, "\r\033[K%s", line.c_str());
    std::fflush(stderr);
}

void BulkDisplay::log(const std::string& text) {
    if (style_ == Style::log)
        std::fprintf(stderr, "%s\n", text.c_str());
}

void BulkDisplay::say(const std::string& text) {
    if (style_ == Style::none)
        return;
    clear();
    std::fprintf(stderr, "%s\n", text.c_str());
}

} // namespace tools::render
