// Where the library that holds this code lies on disk. Everything delivered beside the plug-in (factory bank,
// controller map, skins, help) is found from here.
#pragma once

#include <filesystem>
#include <string>

namespace platform {

/// The folder of the module, absolute and ending in a separator; empty if the system would not say. The
/// same for the library's whole life: a host that changes its current directory changes nothing. Any thread
/// but the audio thread.
const std::string& moduleFolder();

/// The running program itself, in any letters, for starting it again.
std::filesystem::path programPath();

/// The folder of the program, if this code is part of one, in any letters.
std::filesystem::path programFolder();

/// Puts another folder, ending in a separator, in its place, so that a test or a tool can deliver other files
/// to the same code; an empty one brings the module's back. Process-wide; set it before other threads run.
void replaceModuleFolder(std::string newFolder);

} // namespace platform
