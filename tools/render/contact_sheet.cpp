#include "tools/render/contact_sheet.h"

#include "tools/common/output_file.h"
#include "tools/common/text.h"
#include "tools/render/audio_file.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>
#include <numeric>
#include <optional>

namespace tools::render {

namespace {

namespace files = std::filesystem;
using Json = nlohmann::json;

/// Text for a place between tags or in an attribute.
std::string escaped(std::string_view text) {
    std::string result;
    for (const char letter : printable(text)) {
        switch (letter) {
        case '&':
            result += "&amp;";
            break;
        case '<':
            result += "&lt;";
            break;
        case '>':
            result += "&gt;";
            break;
        case '"':
            result += "&quot;";
            break;
        case '\'':
            result += "&#39;";
            break;
        default:
            result += letter;
        }
    }
    return result;
}

/// The address of a file from the page in the folder.
std::string addressOf(const files::path& file, const files::path& folder) {
    constexpr std::string_view plain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-._~/";
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string address;
    for (const char letter : file.lexically_relative(folder).generic_string()) {
        const auto byte = static_cast<unsigned char>(letter);
        if (plain.find(letter) != std::string_view::npos)
            address += letter;
        else
            address.append({'%', digits[byte >> 4], digits[byte & 15]});
    }
    return address;
}

std::string filled(std::string_view page, std::string_view place, const std::string& text) {
    std::string result;
    const std::string mark = "{{" + std::string(place) + "}}";
    for (std::size_t at = 0; (at = page.find(mark)) != std::string_view::npos;) {
        result.append(page.substr(0, at)).append(text);
        page.remove_prefix(at + mark.size());
    }
    return result.append(page);
}

std::optional<double> numberAt(const Json& report, const char* pointer) {
    const Json::json_pointer place(pointer);
    if (!report.contains(place) || !report.at(place).is_number())
        return std::nullopt;
    return report.at(place).get<double>();
}

std::string signedText(double number) {
    const std::string text = fixedText(std::abs(number), 1);
    return (text == "0.0" ? "\u00B1" : number < 0.0 ? "\u2212" : "+") + text;
}

/// "1:05.3"
std::string timeText(double seconds) {
    const auto tenths = static_cast<long long>(std::llround(seconds * 10.0));
    const std::string rest = fixedText(static_cast<double>(tenths % 600) / 10.0, 1);
    return std::to_string(tenths / 600) + ":" + (rest.size() < 4 ? "0" : "") + rest;
}

/// What a report says about the sound that came out, or about the one that went in.
class Figures {
  public:
    explicit Figures(const std::string& text) : report_(Json::parse(text, nullptr, false)) {}

    std::optional<double> seconds(const char* frames) const {
        const auto count = numberAt(report_, frames);
        const auto rate = numberAt(report_, "/sampleRate");
        return count && rate && *rate > 0.0 ? std::optional(*count / *rate) : std::nullopt;
    }
    /// Louder or softer than the dry sound, in LU. A mono sound is heard on both sides.
    std::optional<double> loudnessChange() const {
        const auto out = numberAt(report_, "/loudness/integratedLufs");
        const auto in = inputLoudness();
        const bool isWidened =
            numberAt(report_, "/inputChannels") == 1.0 && numberAt(report_, "/channels") == 2.0;
        const double bothSides = isWidened ? 10.0 * std::log10(2.0) : 0.0;
        return in && out ? std::optional(*out - *in - bothSides) : std::nullopt;
    }
    std::optional<double> inputLoudness() const { return numberAt(report_, "/inputLoudness/integratedLufs"); }
    std::optional<double> peak() const { return numberAt(report_, "/peakDbfs"); }

  private:
    Json report_;
};

std::string joined(const std::vector<std::string>& parts) {
    std::string text;
    for (const std::string& part : parts)
        text += (text.empty() ? "" : " \u00B7 ") + part;
    return text;
}

std::string rowText(const ContactSheet& sheet, std::size_t index) {
    const BulkJob& job = sheet.jobs[index];
    const BulkOutcome& outcome = sheet.outcomes[index];
    const Figures figures(outcome.report);
    const std::string number = std::to_string(job.program->number);
    const std::string name = escaped(trimmed(job.program->name));
    const bool isThere = !outcome.report.empty();
    std::vector<std::string> shown;
    std::string row = "<li class=\"sound\" data-number=\"" + number + "\" data-name=\"" + name + "\"";
    if (const auto change = figures.loudnessChange()) {
        row += " data-loudness=\"" + fixedText(*change, 2) + "\"";
        shown.push_back(signedText(*change) + " LU");
    }
    if (const auto peak = figures.peak())
        shown.push_back("peak " + signedText(*peak) + " dBFS");
    if (const auto seconds = figures.seconds("/frames")) {
        row += " data-length=\"" + fixedText(*seconds, 2) + "\"";
        shown.push_back(timeText(*seconds));
    }
    row += ">\n";
    const std::string picture = addressOf(job.plot, sheet.folder);
    if (isThere)
        row += "<a href=\"" + picture + "\"><img src=\"" + picture +
               "\" width=\"1400\" height=\"900\" loading=\"lazy\" alt=\"Picture of " + name + "\"></a>\n";
    else
        row += "<div></div>\n";
    row += "<div><h2><span class=\"number\">" + number + "</span> " + name + "</h2>\n<p class=\"figures\">" +
           (isThere ? joined(shown) : "not rendered: " + escaped(outcome.reason)) + "</p></div>\n";
    row += "<div class=\"player\">";
    if (isThere)
        row += "<audio controls preload=\"none\" src=\"" + addressOf(job.output, sheet.folder) +
               "\" aria-label=\"" + name + "\"></audio>";
    return row + "<p class=\"missing\">This browser cannot play the file.</p></div>\n</li>\n";
}

std::string dryText(const ContactSheet& sheet) {
    std::vector<std::string> shown;
    for (const BulkOutcome& outcome : sheet.outcomes) {
        const Figures figures(outcome.report);
        const auto seconds = figures.seconds("/inputFrames");
        if (!seconds)
            continue;
        if (const auto loudness = figures.inputLoudness())
            shown.push_back(signedText(*loudness) + " LUFS");
        shown.push_back(timeText(*seconds));
        break;
    }
    return "<div class=\"sound dry\"><div><h2>The dry sound</h2>\n<p class=\"figures\">" + joined(shown) +
           "</p></div>\n<div class=\"player\"><audio controls preload=\"none\" src=\"" +
           addressOf(sheet.drySound, sheet.folder) +
           "\" aria-label=\"The dry sound\"></audio><p class=\"missing\">This browser cannot play the "
           "file.</p></div></div>";
}

} // namespace

std::string contactSheetText(const ContactSheet& sheet) {
    // By number, as the page says at first: programs may have been named in another order.
    std::vector<std::size_t> order(sheet.jobs.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::ranges::stable_sort(order, {}, [&](std::size_t i) { return sheet.jobs[i].program->number; });
    std::string rows;
    bool hasLoudness = false;
    for (const std::size_t i : order) {
        rows += rowText(sheet, i);
        hasLoudness = hasLoudness || Figures(sheet.outcomes[i].report).loudnessChange();
    }
    std::string subtitle = "Played through " + escaped(trimmed(sheet.effect)) + ".";
    if (hasLoudness)
        subtitle += " LU: how much louder or softer than the dry sound.";
    std::string page = filled(kContactSheetPage, "rows", rows);
    page = filled(page, "dry", dryText(sheet));
    page = filled(page, "subtitle", subtitle);
    return filled(page, "title", escaped(sheet.input.filename().string()));
}

void arrangeForContactSheet(std::vector<BulkJob>& jobs, const files::path& folder) {
    for (BulkJob& job : jobs) {
        const files::path name = job.output.filename();
        job.output = folder / "sounds" / name;
        job.plot = (folder / "pictures" / name).replace_extension(".png");
    }
}

files::path copyDrySound(const files::path& input, const files::path& folder, const std::string& ending,
                         SampleFormat format) {
    const files::path target = folder / ("dry" + ending);
    AudioReader reader(input);
    OutputFile file(target);
    const OutputKind kind =
        outputKind(target, format, reader.sampleRate(), reader.channels(), reader.frames());
    AudioWriter writer(file.temporary(), target, kind, reader.sampleRate(), reader.channels());
    std::vector<float> block(std::size_t{65536});
    for (;;) {
        const auto samples = static_cast<std::size_t>(reader.read(block) * reader.channels());
        if (samples == 0)
            break;
        writer.write(std::span(block).first(samples));
    }
    writer.finish();
    file.commit();
    return target;
}

} // namespace tools::render
