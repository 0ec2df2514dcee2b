// The words of the message box made fit to be drawn.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

/// `text` as UTF-8 that is surely valid. What came from an old file of unknown making is read as Latin-1,
/// byte by byte, wherever it is not.
std::string validUtf8(std::string_view text);

/// Breaks `text` (valid UTF-8) at line feeds and, where a line would be wider than `width`, between words; a
/// word too wide for a line of its own is broken inside. Other control characters are blanks. `widthOf`
/// measures in the same unit.
std::vector<std::string> breakLines(std::string_view text, double width,
                                    const std::function<double(const std::string&)>& widthOf);

} // namespace platform
