#include "bench/runs_file.h"

#include <filesystem>
#include <fstream>
#include <iomanip>
#include <sstream>
#include <stdexcept>

namespace bench {

namespace {

constexpr char kHeader[] =
    "when\tprocessor\tinstruction set\tsection\tsituation\tagainst\teffect (ns)\tother (ns)";
constexpr std::size_t kFields = 8;

std::vector<std::string> fieldsOf(const std::string& line) {
    std::vector<std::string> fields;
    std::istringstream text(line);
    for (std::string field; std::getline(text, field, '\t');)
        fields.push_back(field);
    return fields;
}

double numberOf(const std::string& field) {
    std::istringstream text(field);
    double number = 0.0;
    if (!(text >> number) || !text.eof())
        throw std::runtime_error("\"" + field + "\" is no time");
    return number;
}

void add(std::vector<Run>& runs, const std::string& line) {
    const std::vector<std::string> fields = fieldsOf(line);
    if (fields.size() != kFields)
        throw std::runtime_error("a line has " + std::to_string(fields.size()) + " fields");
    if (runs.empty() || runs.back().when != fields[0] || runs.back().instructionSet != fields[2])
        runs.push_back({fields[0], fields[1], fields[2], {}});
    runs.back().results.push_back(
        {fields[3], fields[4], fields[5], numberOf(fields[6]), numberOf(fields[7])});
}

} // namespace

const Result* Run::find(const std::string& section, const std::string& situation) const {
    const Result* found = nullptr;
    for (const Result& result : results)
        if (result.section == section && result.situation == situation)
            if (!found || result.times() < found->times())
                found = &result;
    return found;
}

std::vector<Run> readRuns(const std::string& path) {
    std::vector<Run> runs;
    std::ifstream file(path);
    std::string line;
    if (!std::getline(file, line))
        return runs;
    try {
        if (line != kHeader)
            throw std::runtime_error("the first line is another");
        while (std::getline(file, line))
            add(runs, line);
    } catch (const std::runtime_error& error) {
        throw std::runtime_error(path + " does not hold runs: " + error.what());
    }
    return runs;
}

void appendRun(const std::string& path, const Run& run) {
    const bool isNew = !std::filesystem::exists(path) || std::filesystem::file_size(path) == 0;
    std::ofstream file(path, std::ios::app);
    file << std::fixed << std::setprecision(2);
    if (isNew)
        file << kHeader << "\n";
    for (const Result& result : run.results)
        file << run.when << '\t' << run.processor << '\t' << run.instructionSet << '\t' << result.section
             << '\t' << result.situation << '\t' << result.against << '\t' << result.built << '\t'
             << result.other << "\n";
    if (!file.flush())
        throw std::runtime_error(path + " cannot be written");
}

} // namespace bench
