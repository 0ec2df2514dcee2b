// What the words of a skin mean: which kinds of object there are and which tags each of them reads. Whatever
// the plug-in would pass over in silence, or read differently from how it looks, is told.
#pragma once

#include "tools/skin_check/skin_source.h"

#include <span>
#include <string_view>
#include <vector>

namespace tools::window {

enum class TagType {
    number,  ///< an expression
    picture, ///< the name of a file
    colour,  ///< six hexadecimal digits
    flag,    ///< y, Y or 1 for yes
    presence ///< its value is not looked at
};

struct TagRule {
    std::string_view name;
    TagType type = TagType::number;
    bool isRequired = true;
};

struct KindRule {
    std::string_view name;
    std::vector<TagRule> tags;
};

/// All kinds of object that the plug-in knows.
std::span<const KindRule> skinKinds();

/// The rule of a kind or tag in any letter case; null if there is no such thing.
const KindRule* kindNamed(std::string_view name);
const TagRule* tagNamed(const KindRule& kind, std::string_view name);

/// What is to be said about the meaning of a skin, apart from what its building shows: the plug-in's own
/// messages and missing pictures. In no particular order.
std::vector<Finding> judgeSkin(const SourceElement& root);

} // namespace tools::window
