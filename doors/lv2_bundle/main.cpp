// Writes the files by which the bundle describes itself. The build runs it:
//
//   quillon-lv2-bundle BANK MODULE WINDOW FOLDER
//
// with the file of the factory bank, the names of the modules in the bundle, and the bundle.
#include "doors/lv2_bundle/description.h"
#include "doors/lv2_bundle/factory_bank.h"
#include "platform/files.h"

#include <cstdio>
#include <exception>
#include <stdexcept>

namespace {

void write(const std::string& path, const std::string& text) {
    if (!platform::writeWholeFile(path, text.data(), text.size()))
        throw std::runtime_error("cannot write " + path);
}

void writeBundle(const std::string& bank, const lv2_bundle::Modules& modules, const std::string& folder) {
    const std::vector<presets::DelayProgram> programs = lv2_bundle::readFactoryBank(bank);
    write(folder + "/manifest.ttl", lv2_bundle::manifest(modules, programs));
    write(folder + "/" + lv2_bundle::kPluginFile, lv2_bundle::plugin());
    write(folder + "/" + lv2_bundle::kPresetsFile, lv2_bundle::presetValues(programs));
}

} // namespace

int main(int count, char** arguments) {
    if (count != 5) {
        std::fputs("quillon-lv2-bundle BANK MODULE WINDOW FOLDER\n", stderr);
        return 2;
    }
    try {
        writeBundle(arguments[1], {arguments[2], arguments[3]}, arguments[4]);
        return 0;
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "quillon-lv2-bundle: %s\n", problem.what());
        return 1;
    }
}
