// Which MIDI controller moves which control, as text that a person writes and as the file
// "Pluginccmap.bin" that the plug-in reads.
//
//   # comment
//   cc 74 = High cut
//   cc 1 = Mix
#pragma once

#include "parameters/parameter_table.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace bank {

/// The name of the file that the plug-in reads.
constexpr char kMapFileName[] = "Pluginccmap.bin";
/// Its length in bytes: a 32-bit number for each parameter id, the lowest byte first.
constexpr std::size_t kMapFileSize = 4 * parameters::kNumParameters;
/// Stands for no controller.
constexpr std::int32_t kUnbound = -1;

/// The controller of each parameter id, kUnbound for none.
using ControllerMap = std::array<std::int32_t, parameters::kNumParameters>;

/// Reads the text. Parameters have the names of the window or those of VST hosts, in any case. Throws
/// BankError with "fileName, line N: what is wrong".
ControllerMap parseControllerMap(std::string_view text, const std::string& fileName);

/// The text that parseControllerMap() reads back, as far as that can be said in it: entries that no
/// controller can have stand in comments, and so do the controls without a controller.
std::string controllerMapText(const ControllerMap& map);

/// The bytes of the file.
std::vector<std::uint8_t> controllerMapBytes(const ControllerMap& map);

/// What the plug-in makes of a file's bytes: entries that are missing are controller 0, and bytes behind the
/// last entry do not count.
ControllerMap controllerMapFrom(std::span<const std::uint8_t> bytes);

/// One line for each controller that moves several controls; empty if none does.
std::string sharedControllersText(const ControllerMap& map);

/// The folders of this plug-in below `folders`, two levels deep at most, in order and each once: those with a
/// VST or CLAP module of its name in them.
std::vector<std::filesystem::path> pluginFolders(const std::vector<std::filesystem::path>& folders);

/// Folders that are known when the tool runs; empty if unknown.
struct KnownFolders {
    std::filesystem::path home;
    std::filesystem::path tool;         ///< the one that the tool lies in
    std::filesystem::path commonFiles;  ///< of Windows, for parts of programs
    std::filesystem::path programFiles; ///< of Windows
};

/// Where hosts look for plug-ins: those of the person's own first.
std::vector<std::filesystem::path> hostFolders(const KnownFolders& known);

} // namespace bank
