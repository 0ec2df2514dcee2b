#include "tools/render/bulk_plan.h"

#include "tools/common/command_line.h"
#include "tools/common/text.h"
#include "tools/common/tool_error.h"

#include <algorithm>
#include <map>
#include <string_view>

namespace tools::render {

namespace {

namespace files = std::filesystem;

constexpr std::string_view kWritableEndings[] = {".wav", ".flac", ".aiff", ".aif", ".ogg", ".w64", ".caf"};

std::string endingFor(const files::path& input) {
    const std::string own = lowered(input.extension().string());
    return std::ranges::find(kWritableEndings, own) == std::end(kWritableEndings) ? ".wav" : own;
}

/// Names of devices on Windows, whatever follows their point.
bool isDevice(std::string_view name) {
    const std::string stem = lowered(name.substr(0, name.find('.')));
    for (const char* device : {"con", "prn", "aux", "nul"})
        if (stem == device)
            return true;
    const bool isPort = stem.starts_with("com") || stem.starts_with("lpt");
    return isPort && stem.size() == 4 && stem[3] >= '1' && stem[3] <= '9';
}

files::path portablePlace(const files::path& place) {
    files::path result;
    for (const files::path& part : place.parent_path())
        result /= pathFromWord(portableName(part.string()));
    return result;
}

std::size_t digitsFor(const std::vector<ProgramName>& programs) {
    std::size_t digits = 3;
    for (const ProgramName& program : programs)
        digits = std::max(digits, std::to_string(program.number).size());
    return digits;
}

} // namespace

std::string portableName(std::string_view name) {
    std::string result(trimmed(name));
    for (char& letter : result) {
        const bool isControl = (letter >= 0 && letter < 0x20) || letter == 0x7F;
        if (isControl || std::string_view("<>:\"/\\|?*").find(letter) != std::string_view::npos)
            letter = '-';
    }
    while (result.ends_with('.') || result.ends_with(' '))
        result.pop_back();
    return isDevice(result) ? "_" + result : result;
}

std::string programLabel(const ProgramName& program, std::size_t digits) {
    std::string number = std::to_string(program.number);
    number.insert(0, digits - std::min(digits, number.size()), '0');
    const std::string name = portableName(program.name);
    return name.empty() ? number : number + ' ' + name;
}

std::vector<BulkJob> planJobs(const std::vector<SoundFile>& inputs, const std::vector<ProgramName>& programs,
                              const files::path& folder, const std::string& ending) {
    std::vector<BulkJob> jobs;
    std::map<std::string, const SoundFile*> taken;
    const std::size_t digits = digitsFor(programs);
    const auto add = [&](const SoundFile& input, std::optional<ProgramName> program) {
        std::string name = portableName(input.place.stem().string());
        if (program)
            name += " - " + programLabel(*program, digits);
        name += ending.empty() ? endingFor(input.file) : ending;
        const files::path place = portablePlace(input.place) / pathFromWord(name);
        const auto [other, isNew] = taken.try_emplace(lowered(place.generic_string()), &input);
        if (!isNew)
            throw ToolError(other->second->file.string() + " and " + input.file.string() +
                            " would both become " + (folder / place).string() +
                            "; give them different names, or render them into different folders");
        jobs.push_back({input.file, folder / place, {}, std::move(program)});
    };
    for (const SoundFile& input : inputs) {
        for (const ProgramName& program : programs)
            add(input, program);
        if (programs.empty())
            add(input, std::nullopt);
    }
    return jobs;
}

} // namespace tools::render
