// quillon-bank: turns the readable table of the factory programs into the bank file that the plug-in loads,
// and back again.
#include "bank/bank_file.h"
#include "bank/bank_table.h"
#include "bank/whole_file.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <exception>
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

} // namespace

int main(int argc, char** argv) {
    CLI::App app("The factory bank: a table of 128 programs, and the .fxb file made from it.",
                 "quillon-bank");
    app.require_subcommand(1);
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
