#include "tools/skin_check/skin_rules.h"

#include "base/ascii.h"
#include "tools/common/text.h"
#include "tools/skin_check/expression_traps.h"

#include <algorithm>
#include <initializer_list>

namespace tools::window {

namespace {

using enum TagType;
using Tags = std::vector<TagRule>;

/// Room for the value of a tag in the plug-in; what is longer is cut.
constexpr std::size_t longestTagValue = 127;
/// A line of constants that is longer ends the process.
constexpr std::size_t longestConstant = 255;

constexpr std::string_view constantsKind = "CONSTANTS";
constexpr std::string_view backgroundKind = "background";
constexpr std::string_view menuKind = "optionmenu";

Tags all(std::initializer_list<Tags> groups) {
    Tags tags;
    for (const Tags& group : groups)
        tags.insert(tags.end(), group.begin(), group.end());
    return tags;
}

std::vector<KindRule> makeKinds() {
    const Tags corner = {{"x"}, {"y"}}, box = {{"x"}, {"y"}, {"w"}, {"h"}};
    const Tags id = {{"id"}}, style = {{"style", number, false}}, goBackTo = {{"default", number, false}};
    const Tags offset = {{"xoff", number, false}, {"yoff", number, false}};
    const Tags handle = {{"bitmap_handle", picture}}, ground = {{"bitmap_bk", picture, false}};
    const Tags grounds = all({ground, {{"bitmap_bk_active", picture, false}}});
    const Tags transparent = {{"transparent", flag, false}};
    const Tags font = {{"font", number, false},       {"halign", number, false},
                       {"txtface", number, false},    {"transparent", presence, false},
                       {"fontcolor", colour, false},  {"backcolor", colour, false},
                       {"framecolor", colour, false}, {"shadowcolor", colour, false}};
    const Tags steps = all({corner, id, {{"entries"}}, handle, goBackTo});
    const Tags film = {{"stackbmp", flag, false}, {"bitmap_handle", picture, false}};
    const Tags lamps = {{"leds"}, {"style"}, {"bitmap_off", picture}, {"bitmap_on", picture}};
    return {
        {constantsKind, {}},
        {backgroundKind, {{"filename", picture, false}}},
        {"update", {{"src"}, {"dst"}}},
        {"slider", all({corner, {{"len"}, {"style"}}, id, offset, ground, handle, goBackTo})},
        {"knob", all({box, id, film, offset, ground, transparent, goBackTo})},
        {"onoff", all({corner, id, handle, goBackTo})},
        {"autodisp", all({box, id, style, {{"link"}}, ground, font})},
        {"display", all({box, id, style, ground, font})},
        {"anydisp", all({box, style, ground, font})},
        {menuKind, all({box, id, style, grounds, font})},
        {"skinselector", all({box, style, grounds, font})},
        {"vswitch", steps},
        {"hswitch", steps},
        {"kick", all({corner, id, handle, transparent})},
        {"about", all({box, {{"bitmap_pop", picture}}})},
        {"vumeter", all({corner, id, lamps})},
        {"ViewTaps", box},
        {"NoteDisplay", all({box, id, {{"fontcolor", colour}, {"backcolor", colour}}})},
        {"PresetsDisplay", all({box, {{"fontcolor", colour}}})},
    };
}

std::string of(const SourceElement& element) {
    return " of <" + printable(element.name) + ">";
}

bool isColour(std::string_view value) {
    value = trimmed(value);
    if (value.starts_with("0x") || value.starts_with("0X"))
        value.remove_prefix(2);
    return value.size() == 6 && value.find_first_not_of("0123456789abcdefABCDEF") == std::string_view::npos;
}

/// What people write for yes and for no that is read the right way.
bool isPlainFlag(std::string_view value) {
    return !value.empty() && std::string_view("yY1nN0fF").find(value.front()) != std::string_view::npos;
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
            find(root.place, "there is no <background> that names a picture, and so no window");
        return std::move(findings_);
    }

  private:
    void find(Place place, std::string text, bool endsTheHost = false) {
        findings_.push_back({place, std::move(text), endsTheHost});
    }

    void judgeObject(const SourceElement& object) {
        const KindRule* const kind = kindNamed(object.name);
        if (!kind)
            return; // the building shows it
        judgeTags(object, *kind);
        if (kind->name == constantsKind)
            judgeConstants(object);
        else
            judgeText(object);
        if (kind->name == backgroundKind)
            judgeBackground(object);
        else if (kind->name == menuKind)
            return judgeMenu(object);
        for (const SourceElement& child : object.children)
            find(child.place, "only <optionmenu> has elements inside; this one is not read");
    }

    void judgeText(const SourceElement& element) {
        if (!element.text.empty())
            find(element.textPlace, "text means nothing here");
    }

    void judgeTags(const SourceElement& object, const KindRule& kind) {
        for (const SourceAttribute& tag : object.attributes) {
            const TagRule* const rule = tagNamed(kind, tag.name);
            if (object.find(tag.name) != &tag)
                find(tag.place, inQuotes(tag.name) + of(object) + " is given again; the first one counts");
            else if (!rule)
                find(tag.place, std::string("<").append(kind.name) + "> has no tag " + inQuotes(tag.name));
            else
                judgeValue(object, tag, *rule);
        }
    }

    void judgeValue(const SourceElement& object, const SourceAttribute& tag, const TagRule& rule) {
        const std::string name = inQuotes(tag.name) + of(object);
        if (tag.value.size() > longestTagValue)
            find(tag.valuePlace, name + " is cut behind " + std::to_string(longestTagValue) + " characters");
        if (rule.type == number)
            judgeExpression(tag.value.substr(0, longestTagValue), tag.valuePlace, name);
        else if (rule.type == colour && !isColour(tag.value))
            find(tag.valuePlace,
                 name + " should be six digits for red, green and blue as in FF8000, without #");
        else if (rule.type == flag && !isPlainFlag(tag.value))
            find(tag.valuePlace, name + " means no: a yes begins with y, Y or 1");
        else if (rule.type == presence && !tag.value.empty() &&
                 std::string_view("nN0fF").find(tag.value[0]) != std::string_view::npos)
            find(tag.valuePlace, name + " counts as yes whatever it says; leave the tag out for no");
        else if (rule.type == picture && tag.value.empty())
            find(tag.valuePlace, name + " names no picture");
    }

    void judgeExpression(std::string_view text, Place begin, const std::string& name) {
        if (const auto trap = findExpressionTrap(text))
            find(placeWithin(text, trap->offset, begin), name + ": " + trap->text, trap->endsTheHost);
    }

    /// Line by line as the plug-in takes them.
    void judgeConstants(const SourceElement& object) {
        const std::string_view text = object.text;
        constexpr std::string_view separators = "\n\r,";
        for (std::size_t begin = 0; begin < text.size();) {
            const std::size_t end = std::min(text.find_first_of(separators, begin), text.size());
            const std::string_view line = text.substr(begin, end - begin);
            const Place place = placeWithin(text, begin, object.textPlace);
            if (line.size() > longestConstant)
                find(place, "a constant of 256 characters or more ends the host", true);
            else
                judgeConstant(line, place);
            begin = std::min(text.find_first_not_of("\n\r, \t", end), text.size());
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
                 "entries that mean nothing");
            return;
        }
        judgeText(menu.children.front());
        for (const SourceElement& entry : menu.children.front().children)
            if (!base::equalIgnoringCase(entry.name, "entry"))
                find(entry.place, "a <list> holds elements <entry>; this one is passed over");
        for (std::size_t i = 1; i < menu.children.size(); ++i)
            find(menu.children[i].place, "only the first element of <optionmenu> is read");
    }

    bool hasBackground_ = false;
    std::vector<Finding> findings_;
};

} // namespace

std::span<const KindRule> skinKinds() {
    static const std::vector<KindRule> kinds = makeKinds();
    return kinds;
}

const KindRule* kindNamed(std::string_view name) {
    const auto kinds = skinKinds();
    const auto found = std::ranges::find_if(
        kinds, [&](const KindRule& kind) { return base::equalIgnoringCase(kind.name, name); });
    return found == kinds.end() ? nullptr : &*found;
}

const TagRule* tagNamed(const KindRule& kind, std::string_view name) {
    const auto found = std::ranges::find_if(
        kind.tags, [&](const TagRule& tag) { return base::equalIgnoringCase(tag.name, name); });
    return found == kind.tags.end() ? nullptr : &*found;
}

std::vector<Finding> judgeSkin(const SourceElement& root) {
    return Judge().judge(root);
}

} // namespace tools::window
