#include "tools/skin_check/skin_check.h"

#include "base/ascii.h"
#include "platform/files.h"
#include "tools/common/text.h"
#include "tools/common/tool_error.h"
#include "tools/skin_check/recorded_build.h"
#include "tools/skin_check/skin_folder.h"
#include "tools/skin_check/skin_rules.h"

#include <algorithm>
#include <iterator>

namespace tools::window {

namespace {

/// In the order of the file. Of two about the same place, the first is closer to the cause.
void arrange(std::vector<Finding>& findings) {
    const auto isBefore = [](const Finding& a, const Finding& b) { return a.place < b.place; };
    std::stable_sort(findings.begin(), findings.end(), isBefore);
    const auto isSame = [](const Finding& a, const Finding& b) {
        return a.place == b.place && a.text == b.text;
    };
    findings.erase(std::unique(findings.begin(), findings.end(), isSame), findings.end());
}

/// What the text says by itself, and then what it means.
std::vector<Finding> judged(const SkinSource& source) {
    std::vector<Finding> findings = source.findings;
    if (!source.root)
        return findings;
    for (Finding& finding : judgeSkin(*source.root)) {
        // What the reader has taken for text by mistake needs no second word.
        const bool isKnown = std::any_of(source.findings.begin(), source.findings.end(),
                                         [&](const Finding& known) { return known.place == finding.place; });
        if (!isKnown)
            findings.push_back(std::move(finding));
    }
    arrange(findings);
    return findings;
}

} // namespace

std::vector<Finding> checkSkinText(std::string_view text) {
    return judged(readSkinSource(text));
}

SkinText::SkinText(const std::filesystem::path& folder)
    : source_(readSkinSource(skinText(skinFile(folder)))), findings_(judged(source_)) {}

const Finding* SkinText::obstacle() const {
    if (!source_.root)
        return &findings_.back();
    const auto fatal = std::ranges::find_if(findings_, &Finding::endsTheHost);
    return fatal == findings_.end() ? nullptr : &*fatal;
}

std::vector<Finding> SkinText::findingsBuiltIn(const std::filesystem::path& folder) const {
    std::vector<Finding> all = findings_;
    if (obstacle() || !base::equalIgnoringCase(source_.root->name, "GUI"))
        return all;
    std::ranges::move(buildRecorded(folder, *source_.root).findings, std::back_inserter(all));
    arrange(all);
    return all;
}

std::vector<ObjectOutline> SkinText::outlinesBuiltIn(const std::filesystem::path& folder) const {
    if (obstacle() || !base::equalIgnoringCase(source_.root->name, "GUI"))
        return {};
    return buildRecorded(folder, *source_.root).outlines;
}

std::vector<Finding> checkSkin(const std::filesystem::path& folder) {
    return SkinText(folder).findingsBuiltIn(folder);
}

std::string lineFor(const std::filesystem::path& file, const Finding& finding) {
    return printable(file.string()) + ":" + std::to_string(finding.place.line) + ":" +
           std::to_string(finding.place.column) + ": " + printable(finding.text) + "\n";
}

} // namespace tools::window
