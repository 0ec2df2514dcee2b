#include "skin/object_reader.h"

#include "base/truncation.h"

namespace skin {

using base::trunc;
using VSTGUI::CBitmap;

double xmlGuiEditor::ObjectReader::number(const char* tag) {
    double value = 0.0;
    if (!isLost_)
        isLost_ = skinReadTag(kind_, tag, object_, true, false, &value, context_) != 1;
    return value;
}

double xmlGuiEditor::ObjectReader::number(const char* tag, double fallback) {
    double value = fallback;
    const bool isGood = !isLost_ && skinReadTag(kind_, tag, object_, true, true, &value, context_) == 1;
    return isGood ? value : fallback;
}

std::int32_t xmlGuiEditor::ObjectReader::integer(const char* tag) {
    return trunc(number(tag));
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
    if (!isLost_)
        isLost_ = skinReadTag(kind_, tag, object_, false, false, value, context_) != 1;
    return value;
}

std::optional<bool> xmlGuiEditor::ObjectReader::flag(const char* tag) {
    const SkinTag* const found = isLost_ ? nullptr : findTag(*object_, tag);
    if (!found)
        return std::nullopt;
    const char first = found->value[0];
    return first == 'y' || first == 'Y' || first == '1';
}

CBitmap* xmlGuiEditor::ObjectReader::picture(const char* tag, const char* caption) {
    const std::string name = text(tag);
    CBitmap* const bitmap = isLost_ ? nullptr : skinGetBitmap(context_, name.c_str());
    if (!isLost_ && !bitmap)
        lose(name, caption);
    return bitmap;
}

CBitmap* xmlGuiEditor::ObjectReader::picture(const char* tag, CBitmap* fallback) {
    return !isLost_ && has(tag) ? picture(tag) : fallback;
}

void xmlGuiEditor::ObjectReader::lose(const std::string& text, const char* caption,
                                      platform::MessageIcon icon) {
    isLost_ = true;
    platform::showMessage(text.c_str(), caption, {.icon = icon});
}

VSTGUI::CRect placeOf(double x, double y, double width, double height) {
    return {static_cast<double>(trunc(x)), static_cast<double>(trunc(y)),
            static_cast<double>(trunc(x + width)), static_cast<double>(trunc(y + height))};
}

} // namespace skin
