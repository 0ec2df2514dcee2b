#include "desk/arguments.h"

#include "platform/win32/wide_text.h"

#include <shellapi.h>

namespace desk {

/// main() gets its words in the code page of the machine, which has no place for most of the world's letters.
CommandLine::CommandLine(int count, const char* const* words) : pointers_(words, words + count) {
    int wideCount = 0;
    wchar_t** const wideWords = CommandLineToArgvW(GetCommandLineW(), &wideCount);
    if (!wideWords)
        return;
    for (int i = 0; i < wideCount; ++i)
        words_.push_back(platform::utf8(wideWords[i]));
    LocalFree(static_cast<void*>(wideWords));
    pointers_.clear();
    for (const std::string& word : words_)
        pointers_.push_back(word.c_str());
}

} // namespace desk
