// What the person asked for, read from the command line and checked as far as that goes without opening a
// file.
#pragma once

#include "tools/common/effect_settings.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace tools::render {

enum class SampleFormat {
    automatic, ///< 24 bit, or what the file's kind has to offer
    pcm24,
    float32,
};

/// How long to go on after the input's end.
struct TailRule {
    bool automatic = true;
    double seconds = 0.0; ///< if not automatic
};

/// For many files at once.
struct BulkOptions {
    std::vector<std::string> inputs; ///< files, folders and patterns, as written
    std::filesystem::path folder;    ///< for the outputs
    bool isContactSheet = false;
    std::vector<std::string> programs;  ///< as choosePrograms() takes them
    std::string ending;                 ///< of the outputs, with its point; empty: as their inputs have it
    std::size_t jobs = 1;               ///< at the same time
    bool again = false;                 ///< render also what is there already
    std::vector<std::string> words;     ///< options for the rendering of each file
    std::vector<std::string> listWords; ///< those of them that --list takes
    std::vector<std::filesystem::path> files; ///< that the words name
};

struct Options {
    std::filesystem::path input;  ///< if it is standard input, a name for people
    std::filesystem::path output; ///< if it is standard output, a name for people that ends in .wav
    bool readsStandardInput = false;
    bool writesStandardOutput = false;
    std::filesystem::path library; ///< empty: look for the plug-in near the tool
    std::filesystem::path automation;
    std::filesystem::path midi;
    std::filesystem::path chunk;
    std::filesystem::path bank;
    std::filesystem::path plot;
    std::string program; ///< number or name; empty: as the effect comes up
    std::vector<SettingOption> settings;
    std::optional<double> bpm; ///< the tempo of note lengths
    TailRule tail;
    std::optional<double> preRollSeconds; ///< none: long enough for the effect to come to rest
    std::int32_t blockSize = 512;         ///< frames
    SampleFormat format = SampleFormat::automatic;
    std::optional<BulkOptions> bulk; ///< then input, output and plot are empty
    bool list = false;
    bool json = false;
    bool quiet = false;
};

/// Text to print in place of doing anything.
struct HelpText {
    std::string text;
};

/// Reads the command line. Throws ToolError with one line about the first thing that is wrong. All paths come
/// out absolute.
std::variant<Options, HelpText> parseOptions(int argumentCount, const char* const* arguments);

} // namespace tools::render
