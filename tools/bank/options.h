// What the person asked for, read from the command line and checked as far as that goes without opening a
// file.
#pragma once

#include <filesystem>
#include <string>
#include <variant>

namespace bank {

/// Makes a bank file from a table.
struct CompileJob {
    std::filesystem::path table;
    std::filesystem::path output;
};

/// Makes a table from a bank file.
struct TableJob {
    std::filesystem::path bank;
    std::filesystem::path output;
};

/// Makes a bank file with the rhythmic programs set to a tempo.
struct TempoJob {
    double bpm = 0.0;
    std::filesystem::path bank; ///< an .fxb file or a table; empty: the factory bank
    std::filesystem::path output;
};

/// Makes the plug-in's controller map from a text.
struct MapJob {
    std::filesystem::path text;
    std::filesystem::path library; ///< the map goes beside it; empty: beside the plug-ins that are found
    std::filesystem::path output;  ///< the map itself; empty: beside the plug-in
};

/// Prints a controller map as text.
struct PrintMapJob {
    std::filesystem::path map;     ///< empty: the one beside the plug-in
    std::filesystem::path library; ///< empty: the plug-ins that are found
};

/// Measures the programs and writes the page about them.
struct PageJob {
    std::filesystem::path table;
    std::filesystem::path output;
    std::filesystem::path pictures;
    std::filesystem::path library; ///< empty: look for the plug-in near the tool
    std::filesystem::path speech;
};

/// Prints how loud the programs of a table are.
struct LoudnessJob {
    std::filesystem::path table;
    std::filesystem::path library; ///< empty: look for the plug-in near the tool
    std::filesystem::path speech;
};

/// Text to print in place of doing anything.
struct HelpText {
    std::string text;
};

using Job = std::variant<HelpText, CompileJob, TableJob, TempoJob, MapJob, PrintMapJob, PageJob, LoudnessJob>;

/// Reads the command line. Throws ToolError with one line about the first thing that is wrong. All paths come
/// out absolute.
Job jobFrom(int argumentCount, const char* const* arguments);

} // namespace bank
