#include "tools/skin_check/skin_rules.h"

#include "base/ascii.h"
#include "skin/skin_object.h"
#include "skin/skin_table.h"
#include "tools/common/text.h"
#include "tools/skin_check/expression_traps.h"

#include <string>
#include <string_view>
#include <utility>

namespace tools::window {

namespace {

using skin::KindRule;
using skin::ObjectKind;
using skin::TagRule;
using skin::TagType;

/// What of a tag's value reaches the plug-in; the rest is cut.
constexpr std::size_t kMostValueBytes = skin::kTagValueSize - 1;

std::string of(const SourceElement& element) {
    return " of <" + printable(element.name) + ">";
}

bool isColour(std::string_view value) {
    value = trimmed(value);
    if (value.starts_with("0x") || value.starts_with("0X"))
        value.remove_prefix(2);
    return value.size() == 6 && value.find_first_not_of("0123456789abcdefABCDEF") == std::string_view::npos;
}

bool isPlainNo(std::string_view value) {
    return !value.empty() && std::string_view("nN0fF").find(value.front()) != std::string_view::npos;
}

/// What people write for yes and for no that is read the right way.
bool isPlainFlag(std::string_view value) {
    return skin::isYes(value) || isPlainNo(value);
}

class Judge {
  public:
    std::vector<Finding> judge(const SourceElement& root) {
        if (!base::equalIgnoringCase(root.name, "GUI")) {
            find(root.place, "a skin is one element <GUI>, and this one is <" + printable(root.name) + ">");
            return std::move(findings_);
        }
        judgeText(root);
        for (const SourceElement& object : root.children)
            judgeObject(object);
        if (!hasBackground_)
            find(root.place, "the skin has no <background> with a picture, and so no window");
        return std::move(findings_);
    }

  private:
    void find(Place place, std::string text, bool endsTheHost = false) {
        findings_.push_back({place, std::move(text), endsTheHost});
    }

    void judgeObject(const SourceElement& object) {
        const KindRule* const kind = skin::kindNamed(object.name);
        if (!kind)
            return; // the building shows it
        judgeTags(object, *kind);
        if (kind->kind == ObjectKind::constants)
            judgeConstants(object);
        else
            judgeText(object);
        if (kind->kind == ObjectKind::background)
            judgeBackground(object);
        else if (kind->kind == ObjectKind::optionMenu)
            return judgeMenu(object);
        for (const SourceElement& child : object.children)
            find(child.place, "only <optionmenu> may contain elements; this one is ignored");
    }

    void judgeText(const SourceElement& element) {
        if (!element.text.empty())
            find(element.textPlace, "text is ignored here");
    }

    void judgeTags(const SourceElement& object, const KindRule& kind) {
        for (const SourceAttribute& tag : object.attributes) {
            const TagRule* const rule = skin::tagNamed(kind, tag.name);
            if (object.find(tag.name) != &tag)
                find(tag.place, inQuotes(tag.name) + of(object) + " is repeated; the first one counts");
            else if (!rule)
                find(tag.place, std::string("<").append(kind.name) + "> has no tag " + inQuotes(tag.name));
            else
                judgeValue(object, tag, *rule);
        }
    }

    void judgeValue(const SourceElement& object, const SourceAttribute& tag, const TagRule& rule) {
        const std::string name = inQuotes(tag.name) + of(object);
        if (tag.value.size() > kMostValueBytes)
            find(tag.valuePlace, name + " is cut after " + std::to_string(kMostValueBytes) + " characters");
        if (rule.type == TagType::number)
            judgeExpression(tag.value.substr(0, kMostValueBytes), tag.valuePlace, name);
        else if (rule.type == TagType::colour && !isColour(tag.value))
            find(tag.valuePlace,
                 name + " should be six digits for red, green and blue as in FF8000, without #");
        else if (rule.type == TagType::flag && !isPlainFlag(tag.value))
            find(tag.valuePlace, name + " means no: a yes begins with y, Y or 1");
        else if (rule.type == TagType::presence && isPlainNo(tag.value))
            find(tag.valuePlace, name + " counts as yes whatever it says; leave the tag out for no");
        else if (rule.type == TagType::picture && tag.value.empty())
            find(tag.valuePlace, name + " names no picture");
    }

    void judgeExpression(std::string_view text, Place begin, const std::string& name) {
        if (const auto trap = findExpressionTrap(text))
            find(placeWithin(text, trap->offset, begin), name + ": " + trap->text, trap->endsTheHost);
    }

    /// Line by line as the plug-in takes them.
    void judgeConstants(const SourceElement& object) {
        const std::string_view text = object.text;
        for (const std::string_view line : skin::constantsIn(text)) {
            const auto begin = static_cast<std::size_t>(line.data() - text.data());
            const Place place = placeWithin(text, begin, object.textPlace);
            if (line.size() > skin::kMostConstantBytes)
                find(place, "a constant of 256 characters or more crashes the host", true);
            else
                judgeConstant(line, place);
        }
    }

    void judgeConstant(std::string_view line, Place place) {
        const auto trap = findExpressionTrap(line);
        // A bare name takes the next number; if it is none, the plug-in says so.
        const bool isBareName = line.find('=') == std::string_view::npos;
        if (trap && (!isBareName || trap->endsTheHost))
            find(placeWithin(line, trap->offset, place), "the constant: " + trap->text, trap->endsTheHost);
    }

    void judgeBackground(const SourceElement& object) {
        if (!object.find("filename"))
            find(object.place, "<background> without \"filename\" does nothing");
        else if (hasBackground_)
            find(object.place, "a second <background> makes a second window over the first");
        hasBackground_ = hasBackground_ || object.find("filename");
    }

    void judgeMenu(const SourceElement& menu) {
        if (menu.children.empty() || !base::equalIgnoringCase(menu.children.front().name, "list")) {
            find(menu.place,
                 "<optionmenu> needs a <list> of entries as its first element; without one it shows "
                 "meaningless entries");
            return;
        }
        judgeText(menu.children.front());
        for (const SourceElement& entry : menu.children.front().children)
            if (!base::equalIgnoringCase(entry.name, "entry"))
                find(entry.place, "a <list> holds elements <entry>; this one is ignored");
        for (std::size_t i = 1; i < menu.children.size(); ++i)
            find(menu.children[i].place, "only the first element of <optionmenu> is read");
    }

    bool hasBackground_ = false;
    std::vector<Finding> findings_;
};

} // namespace

std::vector<Finding> judgeSkin(const SourceElement& root) {
    return Judge().judge(root);
}

} // namespace tools::window
