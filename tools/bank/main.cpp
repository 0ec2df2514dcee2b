// quillon-bank: turns the readable table of the factory programs into the bank file that the plug-in loads,
// and back again.
#include "desk/abrupt_end.h"
#include "desk/display.h"
#include "desk/own_output.h"
#include "desk/private_folder.h"
#include "host/library_call.h"
#include "tools/bank/bank_file.h"
#include "tools/bank/bank_table.h"
#include "tools/bank/preset_page.h"
#include "tools/bank/program_loudness.h"
#include "tools/bank/whole_file.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <exception>
#include <filesystem>
#include <string>

namespace {

constexpr int kRefused = 2;

bank::Bank tableAt(const std::string& path) {
    const auto bytes = bank::readWholeFile(path);
    return bank::parseTable({reinterpret_cast<const char*>(bytes.data()), bytes.size()}, path);
}

void compile(const std::string& table, const std::string& output) {
    bank::writeWholeFile(output, bank::bankFileBytes(tableAt(table)));
}

void decompile(const std::string& bankFile, const std::string& output) {
    bank::writeWholeFile(output,
                         bank::tableText(bank::parseBankFile(bank::readWholeFile(bankFile), bankFile)));
}

struct PageOptions {
    std::string library;
    std::string speech;
    std::string pictures;
};

std::string absolutePath(const std::string& path) {
    return std::filesystem::absolute(path).string();
}

void makePage(const std::string& table, const std::string& output, const PageOptions& options) {
    const bank::Bank programs = tableAt(table);
    const std::string page = absolutePath(output);
    const std::filesystem::path pictures = absolutePath(options.pictures);
    const bank::Signal speech = bank::recording(options.speech);
    const std::string library = absolutePath(options.library);
    // The plug-in writes into the current directory when it closes.
    const desk::PrivateFolder folder;
    const bank::Audition audition(library);
    if (audition.chunk() != bank::chunkBytes(programs))
        throw bank::BankError(table + ": the bank beside the library was not made from this table");
    const bank::BankNumbers numbers = bank::measure(audition, programs, speech);
    std::filesystem::create_directories(pictures);
    for (std::size_t number = 0; number < numbers.size(); ++number)
        bank::writeWholeFile((pictures / bank::pictureName(number)).string(), numbers[number].picture);
    const auto folderInPage = pictures.lexically_relative(std::filesystem::path(page).parent_path());
    bank::writeWholeFile(page, bank::pageText(programs, numbers, folderInPage.generic_string()));
}

void tellLoudness(const std::string& table, const std::string& speechFile, const std::string& libraryFile) {
    std::FILE* const output = desk::takeOwnOutput();
    const bank::Bank programs = tableAt(table);
    const bank::Signal speech = bank::recording(speechFile);
    const std::string library = absolutePath(libraryFile);
    const desk::PrivateFolder folder;
    const bank::Audition audition(library, bank::chunkBytes(programs));
    const std::string text = bank::loudnessTable(programs, bank::measureLoudness(audition, programs, speech));
    if (std::fputs(text.c_str(), output) < 0 || std::fflush(output) != 0)
        throw bank::BankError("standard output cannot be written");
}

} // namespace

int main(int argc, char** argv) {
    const desk::AbruptEndWatch watch("quillon-bank", host::LibraryCall::describe);
    // A build must not wait for somebody to click a message of the plug-in away.
    desk::leaveDisplay();
    CLI::App app("Converts between a table of 128 programs and an .fxb bank file.", "quillon-bank");
    app.require_subcommand(1);
    app.set_version_flag("--version", "quillon-bank " QUILLON_VERSION, "Show the tool's version");
    std::string input;
    std::string output;

    CLI::App* compileCommand = app.add_subcommand("compile", "make an .fxb file from a table");
    compileCommand->add_option("table", input, "the table to read")->required();
    compileCommand->add_option("-o,--output", output, "the .fxb file to write")->required();
    compileCommand->callback([&] { compile(input, output); });

    CLI::App* tableCommand = app.add_subcommand("table", "make a table from an .fxb file");
    tableCommand->add_option("bank", input, "the .fxb file to read")->required();
    tableCommand->add_option("-o,--output", output, "the table to write")->required();
    tableCommand->callback([&] { decompile(input, output); });

    PageOptions page;
    CLI::App* pageCommand = app.add_subcommand("page", "measure all programs and write a page about them");
    pageCommand->add_option("table", input, "the table from which the bank beside the library was made")
        ->required();
    pageCommand->add_option("-o,--output", output, "the page to write")->required();
    pageCommand->add_option("--pictures", page.pictures, "the folder for the pictures")->required();
    pageCommand->add_option("--library", page.library, "the plug-in")->required();
    pageCommand->add_option("--speech", page.speech, "a mono recording at 48 kHz")->required();
    pageCommand->callback([&] { makePage(input, output, page); });

    CLI::App* loudnessCommand =
        app.add_subcommand("loudness", "measure how loud all programs of a table are, and print a table");
    loudnessCommand->add_option("table", input, "the table of the programs; it need not be compiled")
        ->required();
    loudnessCommand->add_option("--library", page.library, "the plug-in")->required();
    loudnessCommand->add_option("--speech", page.speech, "a mono recording at 48 kHz")->required();
    loudnessCommand->callback([&] { tellLoudness(input, page.speech, page.library); });

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : kRefused;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return kRefused;
    }
    return 0;
}
