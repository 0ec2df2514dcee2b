#include "tools/bank/commands.h"

#include "desk/private_folder.h"
#include "platform/module_folder.h"
#include "tools/bank/bank_file.h"
#include "tools/bank/bank_table.h"
#include "tools/bank/controller_map.h"
#include "tools/bank/preset_page.h"
#include "tools/bank/program_loudness.h"
#include "tools/bank/retune.h"
#include "tools/bank/whole_file.h"
#include "tools/common/effect_library.h"
#include "tools/common/input_file.h"
#include "tools/common/tool_error.h"

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace bank {

namespace {

namespace files = std::filesystem;

constexpr std::string_view kBankMagic = "CcnK";
constexpr std::uintmax_t kLongestText = 1u << 20;

std::string_view textOf(const std::vector<std::uint8_t>& bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

bool isBankFile(const std::vector<std::uint8_t>& bytes) {
    return textOf(bytes).starts_with(kBankMagic);
}

Bank tableAt(const files::path& path) {
    const auto bytes = readWholeFile(path);
    if (isBankFile(bytes))
        throw BankError(path.string() + " is a bank file; give the table that it is made from");
    return parseTable(textOf(bytes), path.string());
}

void print(std::FILE* output, const std::string& text) {
    if (std::fputs(text.c_str(), output) < 0 || std::fflush(output) != 0)
        throw BankError("standard output cannot be written");
}

/// A folder that the system names; empty if it does not.
files::path fromEnvironment(const char* name) {
    const char* const value = std::getenv(name);
    return value ? value : "";
}

/// Where the map of an installed plug-in belongs: beside each that is found.
std::vector<files::path> foldersOfPlugins(const files::path& library) {
    if (!library.empty())
        return {tools::libraryPath(library).parent_path()};
    std::vector<files::path> folders =
        hostFolders({fromEnvironment("HOME"), platform::programFolder(),
                     fromEnvironment("COMMONPROGRAMFILES"), fromEnvironment("PROGRAMFILES")});
    std::vector<files::path> found = pluginFolders(folders);
    if (found.empty())
        found.push_back(tools::libraryPath({}).parent_path());
    return found;
}

/// Maps that hosts may read in place of the one beside the plug-in.
std::vector<files::path> mapsReadFirst(const std::vector<files::path>& written) {
    std::vector<files::path> maps;
    std::error_code error;
    for (const files::path& folder : {files::current_path(error), fromEnvironment("HOME")}) {
        const files::path map = folder / kMapFileName;
        const auto isSame = [&](const files::path& other) { return files::equivalent(map, other, error); };
        if (!folder.empty() && files::exists(map, error) && std::ranges::none_of(written, isSame) &&
            std::ranges::none_of(maps, isSame))
            maps.push_back(map);
    }
    return maps;
}

class JobRunner {
  public:
    explicit JobRunner(std::FILE* output) : output_(output) {}

    void operator()(const HelpText& help) const { print(output_, help.text); }

    void operator()(const CompileJob& job) const {
        writeWholeFile(job.output, bankFileBytes(tableAt(job.table)));
    }

    void operator()(const TableJob& job) const {
        Bank bank = parseBankFile(readWholeFile(job.bank), job.bank.string());
        adoptRhythms(bank, builtInFactoryBank());
        writeWholeFile(job.output, tableText(bank));
    }

    void operator()(const TempoJob& job) const {
        const RetunedBank result = retuned(rhythmicBank(job.bank), job.bpm);
        if (result.programs.empty())
            throw BankError(job.bank.string() + " has no program with a rhythm, so there is nothing to set");
        writeWholeFile(job.output, bankFileBytes(result.bank));
        print(output_, retuningText(result, job.bpm));
    }

    void operator()(const MapJob& job) const {
        const std::string text = tools::readText(job.text, kLongestText);
        const ControllerMap map = parseControllerMap(text, job.text.string());
        std::vector<files::path> written;
        if (job.output.empty())
            for (const files::path& folder : foldersOfPlugins(job.library))
                written.push_back(folder / kMapFileName);
        else
            written.push_back(job.output);
        writeWholeFiles(written, controllerMapBytes(map));
        std::string report;
        for (const files::path& path : written)
            report += path.string() + " is written\n";
        report += sharedControllersText(map);
        if (job.output.empty())
            for (const files::path& other : mapsReadFirst(written))
                report += other.string() +
                          " is read instead by hosts that work in that folder: delete it, or "
                          "write it with -o\n";
        print(output_, report);
    }

    void operator()(const PrintMapJob& job) const {
        if (!job.map.empty()) {
            print(output_, mapText(job.map));
            return;
        }
        std::string text;
        files::path missing;
        for (const files::path& folder : foldersOfPlugins(job.library)) {
            const files::path map = folder / kMapFileName;
            std::error_code error;
            if (files::exists(map, error))
                text += "# " + map.string() + '\n' + mapText(map);
            else
                missing = map;
        }
        if (text.empty())
            throw BankError("there is no " + missing.string() + "; give the map to print");
        print(output_, text);
    }

    void operator()(const PageJob& job) const {
        const Bank programs = tableAt(job.table);
        const Signal speech = recording(job.speech.string());
        const files::path library = tools::libraryPath(job.library);
        // The plug-in writes into the current directory when it closes.
        const desk::PrivateFolder folder;
        const Audition audition(library.string());
        if (audition.chunk() != chunkBytes(programs))
            throw BankError(job.table.string() +
                            ": the bank beside the library was not made from this table");
        const BankNumbers numbers = measure(audition, programs, speech);
        files::create_directories(job.pictures);
        for (std::size_t number = 0; number < numbers.size(); ++number)
            writeWholeFile(job.pictures / pictureName(number), numbers[number].picture);
        const auto folderInPage = job.pictures.lexically_relative(job.output.parent_path());
        writeWholeFile(job.output, pageText(programs, numbers, folderInPage.generic_string()));
    }

    void operator()(const LoudnessJob& job) const {
        const Bank programs = tableAt(job.table);
        const Signal speech = recording(job.speech.string());
        const files::path library = tools::libraryPath(job.library);
        const desk::PrivateFolder folder;
        const Audition audition(library.string(), chunkBytes(programs));
        print(output_, loudnessTable(programs, measureLoudness(audition, programs, speech)));
    }

  private:
    static Bank rhythmicBank(const files::path& path) {
        if (path.empty())
            return builtInFactoryBank();
        const auto bytes = readWholeFile(path);
        if (!isBankFile(bytes))
            return parseTable(textOf(bytes), path.string());
        Bank bank = parseBankFile(bytes, path.string());
        adoptRhythms(bank, builtInFactoryBank());
        return bank;
    }

    static std::string mapText(const files::path& path) {
        const auto bytes = tools::readBytes(path, kLongestText);
        std::string text = controllerMapText(controllerMapFrom(bytes));
        if (bytes.size() < kMapFileSize)
            text += "# The file has " + std::to_string(bytes.size()) + " bytes instead of " +
                    std::to_string(kMapFileSize) + "; what is missing counts as controller 0.\n";
        return text;
    }

    std::FILE* output_;
};

} // namespace

void runJob(const Job& job, std::FILE* output) {
    std::visit(JobRunner(output), job);
}

} // namespace bank
