#include "skin/object_reader.h"

#include "base/truncation.h"

#include <cstdio>

namespace skin {

using base::trunc;
using VSTGUI::CBitmap;

bool xmlGuiEditor::ObjectReader::isRequired(const char* tag) const {
    const TagRule* const rule = tagNamed(kind_, tag);
    return rule && rule->isRequired;
}

double xmlGuiEditor::ObjectReader::number(const char* tag, double fallback) {
    if (hasFailed_)
        return fallback;
    double value = fallback;
    const bool isNeeded = isRequired(tag);
    const bool isGood = skinReadTag(name_, tag, object_, true, !isNeeded, &value, context_) == 1;
    hasFailed_ = isNeeded && !isGood;
    return isGood ? value : fallback;
}

std::int32_t xmlGuiEditor::ObjectReader::integer(const char* tag, std::int32_t fallback) {
    return trunc(number(tag, static_cast<double>(fallback)));
}

VSTGUI::CRect xmlGuiEditor::ObjectReader::box() {
    const double x = number("x"), y = number("y"), width = number("w"), height = number("h");
    return placeOf(x, y, width, height);
}

std::string xmlGuiEditor::ObjectReader::text(const char* tag) {
    char value[kTagValueSize] = "";
    if (!hasFailed_)
        hasFailed_ = skinReadTag(name_, tag, object_, false, !isRequired(tag), value, context_) == 0;
    return value;
}

std::optional<bool> xmlGuiEditor::ObjectReader::flag(const char* tag) {
    const SkinTag* const found = hasFailed_ ? nullptr : findTag(*object_, tag);
    return found ? std::optional(isYes(found->value)) : std::nullopt;
}

CBitmap* xmlGuiEditor::ObjectReader::picture(const char* tag, CBitmap* fallback, const char* caption) {
    if (hasFailed_ || (!isRequired(tag) && !has(tag)))
        return fallback;
    const std::string name = text(tag);
    CBitmap* const bitmap = hasFailed_ ? nullptr : skinGetBitmap(context_, name.c_str());
    if (!hasFailed_ && !bitmap)
        fail(name, caption);
    return bitmap;
}

void xmlGuiEditor::ObjectReader::fail(const std::string& text, const char* caption,
                                      platform::MessageIcon icon) {
    hasFailed_ = true;
    platform::showMessage(text.c_str(), caption, {.icon = icon});
}

VSTGUI::CRect placeOf(double x, double y, double width, double height) {
    return {static_cast<double>(trunc(x)), static_cast<double>(trunc(y)),
            static_cast<double>(trunc(x + width)), static_cast<double>(trunc(y + height))};
}

std::optional<VSTGUI::CColor> colourOf(const char* text) {
    unsigned value = 0;
    if (std::sscanf(text, "%X", &value) != 1)
        return std::nullopt;
    return VSTGUI::CColor(static_cast<std::uint8_t>(value >> 16), static_cast<std::uint8_t>(value >> 8),
                          static_cast<std::uint8_t>(value), 255);
}

} // namespace skin
