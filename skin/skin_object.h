// One object of a skin file as the builder of controls reads it: the element's attributes as a flat list of
// tags.
#pragma once

#include "skin_language/grow_array.h"
#include "skin_language/xml_reader.h"

#include <cstddef>

namespace skin {

/// Room for the text of a tag, its NUL included. What is longer is cut.
constexpr std::size_t kTagValueSize = 128;

/// One attribute; what does not fit is cut.
struct SkinTag {
    char name[64];
    char value[kTagValueSize]; ///< empty for `a=""`
};

/// One child of the root. It refers to the element and may not outlive the tree.
struct SkinObject {
    explicit SkinObject(XmlNode* element);

    GrowArray<SkinTag> tags; ///< in the order of the file
    char* text;              ///< the element's own text, or null
    XmlNode* node;           ///< the element itself, for its children
};

/// The first tag of this name, in any letter case; null if there is none.
const SkinTag* findTag(const SkinObject& object, const char* name);

} // namespace skin
